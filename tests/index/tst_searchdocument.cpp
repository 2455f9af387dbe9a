// The search screen driven by its controls: the statement and the sentence of each criterion
// alone and mixed, the rules of the date pickers, Reset, the count, a fill ended by a Null, a
// refused statement, and printing the result under the sentence with the office's captions.
#include "index/frmSearchDocument.h"
#include "platform/Controls.h"
#include "reports/Reports.h"
#include "reports/VorlaneDE.h"
#include "session/Session.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Base =
    QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID ");
const QString Order = QStringLiteral(" order by I.DocDate");

frmSearchDocument& form() {
    return frmSearchDocument::instance();
}

template <class T = QWidget> T* ctl(const char* name) {
    return testsupport::ctl<T>(form(), QString::fromLatin1(name));
}

platform::DatePicker* picker(const char* name) {
    return ctl<platform::DatePicker>(name);
}

void pick(const char* box, const char* item) {
    testsupport::pick(form(), QString::fromLatin1(box), QString::fromLatin1(item));
}

void type(const char* box, const QString& text) {
    testsupport::type(form(), QString::fromLatin1(box), text);
}

QStringList rows() {
    return testsupport::listRows(form(), QStringLiteral("lstList"));
}

void search() {
    testsupport::press(form(), QStringLiteral("cmdSearch"));
}

QString count() {
    return ctl<QLabel>("lblNoOfRecords")->text();
}

QString printed(const char* section, const char* control) {
    return reports::rptSearchReport()
        .Sections(QString::fromLatin1(section))
        .Controls(QString::fromLatin1(control))
        .Caption();
}

} // namespace

class TestSearchDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    // The statement and the sentence of the controls as they stand.
    QPair<QString, QString> built() {
        const QString statement = form().BuildSearchStatement();
        return {statement, form().QueryDescription};
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void init() {
        form().Unload();
        reports::VorlaneDE::instance().reset();
        env = std::make_unique<testsupport::TestEnvironment>();
        testsupport::setSession(3, QStringLiteral("User")); // searching needs no rights
        env->exec("insert into DocumentType values(1,'Letter',1)");
        env->exec("insert into DocumentType values(2,'Invoice',1)");
        env->exec("insert into DocumentCategory values(1,'Accounts',1)");
        env->exec("insert into DocumentCategory values(4,'Legal',1)");
        env->exec("insert into DocumentSubCategory values(7,4,'Leases',1)");
        env->exec("insert into DocumentChildCategory values(9,4,7,'Shops',1)");
        env->exec("insert into File values(1,'F-001','Tax',1)");
        env->exec("insert into File values(2,'F-002','Bank',1)");
        env->exec("insert into Vorlane values(1,'2026-03-05','2026-04-01',2,4,7,9,'Lease O`Brien','shop',"
                  "'/d/1.pdf',2,'p1','rent',1)");
        env->exec("insert into Vorlane values(2,'2024-01-10','2024-02-01',1,1,7,9,'Tax return','',"
                  "'/d/2.pdf',1,'p2','',1)");
        env->exec("insert into Vorlane values(3,'2025-06-01','2025-07-01',1,4,7,9,'Lease renewal','',"
                  "'/d/3.pdf',1,'p3','',1)");
        form().Show();
        messages();
    }
    void cleanup() {
        form().Unload();
        reports::VorlaneDE::instance().reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        env.reset();
    }

    void theScreenAsDesigned() {
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Search Document"));
        const QList<QPair<const char*, const char*>> labels = {
            {"lblDocType", "Doc. Type :"},
            {"lblDocCategory", "Doc. Category :"},
            {"lblDocSubCat", "Doc. Sub-Category :"},
            {"lblDocChildCat", "Doc. Child Category :"},
            {"lblTitle1", "Doc. Title 1 :"},
            {"lblTitle2", "Doc. Title 2 :"},
            {"lblBookmark", "Bookmark :"},
            {"lblRemarks", "Remarks :"},
            {"Label1", "File No. :"},
            {"lblDocDate", "Doc. Date between :"},
            {"lblDocDateTo", "and :"},
            {"lblFollowupdate", "Follow-up Date between :"},
            {"lblFollowupDateTo", "and :"}};
        for (const auto& [name, caption] : labels) {
            QCOMPARE(ctl<QLabel>(name)->text(), QString::fromLatin1(caption));
            QVERIFY(ctl<QLabel>(name)->buddy());
        }
        QCOMPARE(ctl<QPushButton>("cmdSearch")->text(), QStringLiteral("Search"));
        const QStringList captions{"Reset", "Close", "Print Search List"};
        for (int i = 0; i < 3; ++i)
            QCOMPARE(form().cmd(i)->text(), captions[i]);
        QCOMPARE(count(), QStringLiteral("(0 Record/s found)"));
        for (const char* name : {"dtpDocFrom", "dtpDocTo", "dtpFollowUpFrom", "dtpFollowUpTo"})
            QVERIFY(!picker(name)->Value().isValid());
        auto* list = ctl<platform::ListView>("lstList");
        QVERIFY(list->isColumnHidden(0) && list->isColumnHidden(8));
        QCOMPARE(list->model()->headerData(6, Qt::Horizontal).toString(), QStringLiteral("Remark"));
        QCOMPARE(testsupport::tabOrder(form().window()),
                 QStringList({"cboDocType", "cboDocCategory", "cboDocSubCategory", "cboDocChildCategory",
                              "cboFileNo", "txtTitle1", "txtTitle2", "txtBookmark", "txtRemarks",
                              "dtpDocFrom", "dtpDocTo", "dtpFollowUpFrom", "dtpFollowUpTo", "cmdSearch",
                              "lstList", "cmd(0)", "cmd(1)", "cmd(2)"}));
    }

    // Each criterion alone, then a mix: the statement and the sentence to the character.
    void eachCriterionAloneAndMixed() {
        QCOMPARE(built(), qMakePair(Base + Order, QString()));
        const auto alone = [&](const std::function<void()>& set, const QString& piece,
                               const QString& sentence) {
            form().ResetSearchForm();
            set();
            QCOMPARE(built(),
                     qMakePair(Base + QStringLiteral("Where ") + piece + QLatin1Char(' ') + Order, sentence));
        };
        alone([] { pick("cboDocType", "Invoice"); }, "I.TypeID=2", "Doc. Type : Invoice");
        alone([] { pick("cboDocCategory", "Legal"); }, "I.CatID=4", " Doc. Category : Legal");
        alone([] { pick("cboDocSubCategory", "Leases"); }, "I.SubCatID=7", " Doc. Sub-Category : Leases");
        alone([] { pick("cboDocChildCategory", "Shops"); }, "I.ChildCatID=9", " Doc. Child Category : Shops");
        alone([] { type("txtTitle1", "  O'Brien "); }, "I.Title1 like '%O`Brien%'",
              " Doc. Title 1 : O'Brien");
        alone([] { type("txtTitle2", "10%_off"); }, "I.Title2 like '%10%_off%'", " Doc. Title 2 : 10%_off");
        alone([] { type("txtBookmark", "p1"); }, "I.Bookmark like '%p1%'", " Bookmark : p1");
        alone([] { type("txtRemarks", "rent"); }, "I.remarks like '%rent%'", " Remarks : rent");
        alone(
            [] {
                picker("dtpDocFrom")->setValue(QDate(2026, 3, 5));
                picker("dtpDocTo")->setValue(QDate(2027, 1, 9));
            },
            "I.DocDate >= #05-Mar-26# and I.DocDate <=#09-Jan-27#",
            " Document date between : 05-Mar-2026 and 09-Jan-2027");
        // The follow-up range's sentence reads the document-date pickers, empty here.
        alone([] { picker("dtpFollowUpFrom")->setValue(QDate(2025, 7, 1)); },
              "I.FollowupDate >= #01-Jul-25# and I.FollowupDate <=#01-Jul-25#",
              " Follow-up date between :  and ");
        alone([] { pick("cboFileNo", "F-002"); }, "I.FileID=2", " File Number : F-002");

        form().ResetSearchForm();
        pick("cboFileNo", "F-001");
        type("txtTitle1", "lease");
        pick("cboDocType", "Letter");
        QCOMPARE(built(),
                 qMakePair(Base + "Where I.TypeID=1 and I.Title1 like '%lease%' and I.FileID=1 " + Order,
                           QStringLiteral("Doc. Type : Letter Doc. Title 1 : lease File Number : F-001")));
    }

    // From is copied to To, Null included; a To cleared while From holds a date takes it
    // again; To alone switches nothing on but the Where.
    void theRangesStayTwoSided() {
        auto* from = picker("dtpDocFrom");
        auto* to = picker("dtpDocTo");
        from->checkBox()->setChecked(true); // the user ticks From
        QCOMPARE(to->Value(), from->Value());
        from->setValue(QDate(2024, 1, 1));
        QCOMPARE(to->Value().toDate(), QDate(2024, 1, 1));
        to->setValue(QDate(2025, 12, 31));
        to->checkBox()->setChecked(false); // the user clears To
        QCOMPARE(to->Value().toDate(), QDate(2024, 1, 1));
        from->checkBox()->setChecked(false);
        QVERIFY(!to->Value().isValid());

        picker("dtpFollowUpTo")->setValue(QDate(2025, 1, 1));
        QVERIFY(!picker("dtpFollowUpFrom")->Value().isValid());
        QCOMPARE(built().first, Base + QStringLiteral("Where ") + Order);
    }

    // Rows arrive in date order with the count; a refused statement leaves them and the
    // engine's text is shown; Reset keeps the count and the lower lists' items.
    void searchCountRefusalAndReset() {
        pick("cboDocCategory", "Legal");
        pick("cboDocSubCategory", "Leases");
        search();
        QCOMPARE(messages(), QStringList());
        QCOMPARE(rows(),
                 QStringList({"3|Lease renewal||01/Jun/2025|01/Jul/2025|p3||F-001|/d/3.pdf",
                              "1|Lease O`Brien|shop|05/Mar/2026|01/Apr/2026|p1|rent|F-002|/d/1.pdf"}));
        QCOMPARE(count(), QStringLiteral("(2 Record/s found)"));

        form().ResetSearchForm();
        type("txtTitle1", "   ");
        search();
        QCOMPARE(messages().size(), 1);
        QCOMPARE(count(), QStringLiteral("(0 Record/s found)")); // Reset emptied the list
        type("txtTitle1", "lease");
        search();
        QCOMPARE(rows().size(), 2);
        ctl<QLineEdit>("txtTitle1")->setText(QStringLiteral("   "));
        search();
        QCOMPARE(messages().size(), 1);
        QCOMPARE(rows().size(), 2);

        form().ResetSearchForm();
        QCOMPARE(count(), QStringLiteral("(2 Record/s found)"));
        QCOMPARE(rows(), QStringList());
        QVERIFY(ctl<QLineEdit>("txtTitle1")->text().isEmpty());
        QCOMPARE(ctl<platform::ComboBox>("cboDocSubCategory")->ListIndex(), -1);
        QCOMPARE(testsupport::items(form(), QStringLiteral("cboDocSubCategory")), QStringList({"Leases"}));
        QVERIFY(form().QueryDescription.isEmpty());
    }

    // A key of a million or more goes into the statement as plain digits, and the search finds
    // its documents; so do dates typed into the boxes as clerks type them.
    void largeKeysAndTypedDates() {
        env->exec("insert into File values(1234567,'F-1M','Archive',1)");
        env->exec("update Vorlane set FileID=1234567 where IndexID=2");
        form().Unload();
        form().Show();
        pick("cboFileNo", "F-1M");
        picker("dtpDocFrom")->setValue(QDate(2020, 1, 1));
        for (const char* name : {"dtpDocFrom", "dtpDocTo"}) {
            QLineEdit* box = picker(name)->dateBox();
            box->selectAll();
            QTest::keyClicks(box, name == QByteArray("dtpDocFrom") ? "1.1.24" : "31/Jan/2024");
            QTest::keyClick(box, Qt::Key_Return);
        }
        QCOMPARE(built().first, Base +
                                    "Where I.DocDate >= #01-Jan-24# and I.DocDate <=#31-Jan-24# and "
                                    "I.FileID=1234567 " +
                                    Order);
        search();
        QCOMPARE(messages(), QStringList());
        QCOMPARE(rows().size(), 1);
        QVERIFY(rows().first().startsWith(QLatin1String("2|Tax return|")));
    }

    // A criterion of any length is searched or refused with a message, and the screen goes on.
    void aVeryLongCriterion() {
        ctl<QLineEdit>("txtRemarks")->setText(QString(10000, QLatin1Char('r')));
        search();
        QVERIFY(messages().size() <= 1);
        QCOMPARE(rows(), QStringList());
        ctl<QLineEdit>("txtRemarks")->setText(QStringLiteral("rent"));
        search();
        QCOMPARE(rows().size(), 1);
    }

    // A document whose file is gone has no file number: the list ends before it.
    void aDocumentWithoutItsFileEndsTheList() {
        env->exec("update Vorlane set FileID=99 where IndexID=3");
        search();
        QCOMPARE(messages(), QStringList({"16:Invalid use of Null"}));
        QCOMPARE(rows().size(), 1);
        QCOMPARE(count(), QStringLiteral("(1 Record/s found)"));
    }

    // The print copies the listed rows one column off and prints them under the sentence of
    // the controls as they stand now, headed by the screen's own title captions.
    void printingTheResult() {
        testsupport::press(form(), 2);
        QVERIFY(!reports::rptSearchReport().isShown()); // nothing listed, nothing printed
        QCOMPARE(env->count("PrintSearchResult"), 0);

        type("txtTitle1", "lease");
        search();
        type("txtBookmark", "p1");
        testsupport::press(form(), 2);
        QCOMPARE(messages(), QStringList());
        QCOMPARE(env->count("PrintSearchResult"), 2);
        QCOMPARE(env->scalar("select Title1||'|'||Title2||'|'||DocDate||'|'||FilePath from PrintSearchResult "
                             "where Title1='1'")
                     .toString(),
                 QStringLiteral("1|Lease O`Brien|shop|F-002"));
        QCOMPARE(printed("ReportHeader", "lblQuery"), QStringLiteral("Doc. Title 1 : lease Bookmark : p1"));
        QCOMPARE(printed("PageHeader", "lblDocTitle1"), QStringLiteral("Doc. Title 1 /"));
        QCOMPARE(printed("PageHeader", "lblDocTitle2"), QStringLiteral("Doc. Title 2 "));
        QVERIFY(reports::rptSearchReport().hasRendered());

        // A failing copy leaves the rows of the last print.
        env->refuse("insert", "PrintSearchResult", "refused", "Title1", "3");
        form().ResetSearchForm();
        search();
        testsupport::press(form(), 2);
        QCOMPARE(messages(), QStringList({"16:refused"}));
        QCOMPARE(env->count("PrintSearchResult"), 2);
        env->allow("PrintSearchResult");

        // No criteria print "All Records"; the office's names head the columns.
        form().Unload();
        env->exec("insert into FieldCaptions values('Section','Matter','Area','Topic','Invoice No','Party')");
        form().Show();
        QCOMPARE(ctl<QLabel>("lblTitle1")->text(), QStringLiteral("Invoice No :"));
        search();
        testsupport::press(form(), 2);
        QCOMPARE(env->count("PrintSearchResult"), 3);
        QCOMPARE(printed("ReportHeader", "lblQuery"), QStringLiteral("All Records"));
        QCOMPARE(printed("PageHeader", "lblDocTitle1"), QStringLiteral("Invoice No /"));
        QCOMPARE(printed("PageHeader", "lblDocTitle2"), QStringLiteral("Party "));
    }

    // A double click opens the soft copy in the viewer of its kind: the kind is the last four
    // characters of the trimmed path without dots, and a kind not known starts nothing.
    void quickViewByTheKindOfTheFile() {
        form().lstList_DblClick(); // an empty list: nothing
        QCOMPARE(messages(), QStringList());
        Session::saveSetting(QStringLiteral("Image"), QStringLiteral("/usr/bin/eog"));
        Session::saveSetting(QStringLiteral("Word"), QStringLiteral("/usr/bin/lowriter --view"));
        Session::saveSetting(QStringLiteral("PDF"), QStringLiteral("xdg-open"));
        const QList<QPair<QString, QString>> cases = {
            {"/d/scan.JPG", "/usr/bin/eog \"/d/scan.JPG\""},
            {"/d/scan.jpg   ", "/usr/bin/eog \"/d/scan.jpg\""},
            {"/d/photo.png", ""},
            {"/d/photo.jpeg", ""},
            {"/d/d.oc", "/usr/bin/lowriter --view \"/d/d.oc\""},
            {"/d/sheets/xlsx", "excel"}, // the Excel viewer is not set
            {"/d/zxls", ""},
            {"", ""},
            {"/d/my \"big\" file.pdf", "xdg-open \"/d/my \"big\" file.pdf\""},
        };
        for (const auto& [path, started] : cases) {
            env->exec(QStringLiteral("update Vorlane set FilePath='%1' where IndexID=1")
                          .arg(QString(path).replace(QLatin1Char('\''), QStringLiteral("''"))));
            search();
            testsupport::dblClick(form(), QStringLiteral("lstList"), QStringLiteral("1"));
            const QStringList shown = messages();
            const QStringList commands = platform::test::takeStartedCommands();
            if (started == QLatin1String("excel")) {
                QCOMPARE(
                    shown,
                    QStringList({"16:Program executable not found.\nPlease verify path under Settings."}));
                QCOMPARE(commands, QStringList());
            } else {
                QCOMPARE(shown, QStringList());
                QCOMPARE(commands, started.isEmpty() ? QStringList() : QStringList({started}));
            }
        }

        // A viewer that is no program: the message, and the list stays as it was.
        platform::test::setShellChecksProgram(true);
        Session::saveSetting(QStringLiteral("PDF"), QStringLiteral("/no/such/viewer"));
        testsupport::dblClick(form(), QStringLiteral("lstList"), QStringLiteral("1"));
        QCOMPARE(messages(),
                 QStringList({"16:Program executable not found.\nPlease verify path under Settings."}));
        QCOMPARE(rows().size(), 3);
        platform::test::setShellChecksProgram(false);
    }
};

QTEST_MAIN(TestSearchDocument)
#include "tst_searchdocument.moc"
