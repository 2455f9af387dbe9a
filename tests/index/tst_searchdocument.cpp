// The search screen driven by its controls: the statement and the sentence of each criterion
// alone and mixed, the rules of the date pickers, Reset, the count, a fill ended by a Null, a
// refused statement, and printing the result under the sentence with the office's captions.
#include "index/frmSearchDocument.h"
#include "platform/Controls.h"
#include "reports/Reports.h"
#include "session/Session.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Base =
    QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID ");
const QString Order = QStringLiteral(" order by I.DocDate");
const QString NoViewer =
    QStringLiteral("16:Program executable not found.\nPlease verify path under Settings.");

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
    testsupport::Screen<frmSearchDocument> screen;

    // The statement and the sentence of the controls as they stand.
    QPair<QString, QString> built() const {
        const QString statement = screen->BuildSearchStatement();
        return {statement, screen->QueryDescription};
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void init() {
        env = testsupport::startCase();
        testsupport::setSession(3, QStringLiteral("User")); // searching needs no rights
        env->exec("insert into DocumentType values(1,'Letter',1),(2,'Invoice',1)");
        env->exec("insert into DocumentCategory values(1,'Accounts',1),(4,'Legal',1)");
        env->exec("insert into DocumentSubCategory values(7,4,'Leases',1)");
        env->exec("insert into DocumentChildCategory values(9,4,7,'Shops',1)");
        env->exec("insert into File values(1,'F-001','Tax',1),(2,'F-002','Bank',1)");
        env->exec("insert into Vorlane values(1,'2026-03-05','2026-04-01',2,4,7,9,'Lease O`Brien','shop',"
                  "'/d/1.pdf',2,'p1','rent',1)");
        env->exec("insert into Vorlane values(2,'2024-01-10','2024-02-01',1,1,7,9,'Tax return','',"
                  "'/d/2.pdf',1,'p2','',1)");
        env->exec("insert into Vorlane values(3,'2025-06-01','2025-07-01',1,4,7,9,'Lease renewal','',"
                  "'/d/3.pdf',1,'p3','',1)");
        screen->Show();
        messages();
    }
    void cleanup() { testsupport::endCase(env); }

    // Each criterion alone, then a mix: the statement and the sentence to the character.
    void eachCriterionAloneAndMixed() {
        QCOMPARE(built(), qMakePair(Base + Order, QString()));
        const auto alone = [&](const std::function<void()>& set, const QString& piece,
                               const QString& sentence) {
            screen->ResetSearchForm();
            set();
            QCOMPARE(built(),
                     qMakePair(Base + QStringLiteral("Where ") + piece + QLatin1Char(' ') + Order, sentence));
        };
        alone([&] { screen.pick("cboDocType", "Invoice"); }, "I.TypeID=2", "Doc. Type : Invoice");
        alone([&] { screen.pick("cboDocCategory", "Legal"); }, "I.CatID=4", " Doc. Category : Legal");
        alone([&] { screen.pick("cboDocSubCategory", "Leases"); }, "I.SubCatID=7",
              " Doc. Sub-Category : Leases");
        alone([&] { screen.pick("cboDocChildCategory", "Shops"); }, "I.ChildCatID=9",
              " Doc. Child Category : Shops");
        alone([&] { screen.type("txtTitle1", "  O'Brien "); }, "I.Title1 like '%O`Brien%'",
              " Doc. Title 1 : O'Brien");
        alone([&] { screen.type("txtTitle2", "10%_off"); }, "I.Title2 like '%10%_off%'",
              " Doc. Title 2 : 10%_off");
        alone([&] { screen.type("txtBookmark", "p1"); }, "I.Bookmark like '%p1%'", " Bookmark : p1");
        alone([&] { screen.type("txtRemarks", "rent"); }, "I.remarks like '%rent%'", " Remarks : rent");
        alone(
            [&] {
                screen.ctl<platform::DatePicker>("dtpDocFrom")->setValue(QDate(2026, 3, 5));
                screen.ctl<platform::DatePicker>("dtpDocTo")->setValue(QDate(2027, 1, 9));
            },
            "I.DocDate >= #05-Mar-26# and I.DocDate <=#09-Jan-27#",
            " Document date between : 05-Mar-2026 and 09-Jan-2027");
        // The follow-up range's sentence reads the document-date pickers, empty here.
        alone([&] { screen.ctl<platform::DatePicker>("dtpFollowUpFrom")->setValue(QDate(2025, 7, 1)); },
              "I.FollowupDate >= #01-Jul-25# and I.FollowupDate <=#01-Jul-25#",
              " Follow-up date between :  and ");
        alone([&] { screen.pick("cboFileNo", "F-002"); }, "I.FileID=2", " File Number : F-002");

        screen->ResetSearchForm();
        screen.pick("cboFileNo", "F-001");
        screen.type("txtTitle1", "lease");
        screen.pick("cboDocType", "Letter");
        QCOMPARE(built(),
                 qMakePair(Base + "Where I.TypeID=1 and I.Title1 like '%lease%' and I.FileID=1 " + Order,
                           QStringLiteral("Doc. Type : Letter Doc. Title 1 : lease File Number : F-001")));
    }

    // From is copied to To, Null included; a To cleared while From holds a date takes it
    // again; To alone switches nothing on but the Where.
    void theRangesStayTwoSided() {
        auto* from = screen.ctl<platform::DatePicker>("dtpDocFrom");
        auto* to = screen.ctl<platform::DatePicker>("dtpDocTo");
        from->checkBox()->setChecked(true); // the user ticks From
        QCOMPARE(to->Value(), from->Value());
        from->setValue(QDate(2024, 1, 1));
        QCOMPARE(to->Value().toDate(), QDate(2024, 1, 1));
        to->setValue(QDate(2025, 12, 31));
        to->checkBox()->setChecked(false); // the user clears To
        QCOMPARE(to->Value().toDate(), QDate(2024, 1, 1));
        from->checkBox()->setChecked(false);
        QVERIFY(!to->Value().isValid());

        screen.ctl<platform::DatePicker>("dtpFollowUpTo")->setValue(QDate(2025, 1, 1));
        QVERIFY(!screen.ctl<platform::DatePicker>("dtpFollowUpFrom")->Value().isValid());
        QCOMPARE(built().first, Base + QStringLiteral("Where ") + Order);
    }

    // Rows arrive in date order with the count; a refused statement leaves them and the
    // engine's text is shown; Reset keeps the count and the lower lists' items.
    void searchCountRefusalAndReset() {
        screen.pick("cboDocCategory", "Legal");
        screen.pick("cboDocSubCategory", "Leases");
        screen.press("cmdSearch");
        QCOMPARE(messages(), QStringList());
        QCOMPARE(screen.rows("lstList"),
                 QStringList({"3|Lease renewal||01/Jun/2025|01/Jul/2025|p3||F-001|/d/3.pdf",
                              "1|Lease O`Brien|shop|05/Mar/2026|01/Apr/2026|p1|rent|F-002|/d/1.pdf"}));
        QCOMPARE(screen.ctl<QLabel>("lblNoOfRecords")->text(), QStringLiteral("(2 Record/s found)"));

        screen->ResetSearchForm();
        screen.type("txtTitle1", "   ");
        screen.press("cmdSearch");
        QCOMPARE(messages().size(), 1);
        QCOMPARE(screen.ctl<QLabel>("lblNoOfRecords")->text(),
                 QStringLiteral("(0 Record/s found)")); // Reset emptied the list
        screen.type("txtTitle1", "lease");
        screen.press("cmdSearch");
        QCOMPARE(screen.rows("lstList").size(), 2);
        screen.paste("txtTitle1", "   ");
        screen.press("cmdSearch");
        QCOMPARE(messages().size(), 1);
        QCOMPARE(screen.rows("lstList").size(), 2);

        screen->ResetSearchForm();
        QCOMPARE(screen.ctl<QLabel>("lblNoOfRecords")->text(), QStringLiteral("(2 Record/s found)"));
        QCOMPARE(screen.rows("lstList"), QStringList());
        QVERIFY(screen.text("txtTitle1").isEmpty());
        QCOMPARE(screen.choice("cboDocSubCategory"), QString());
        QCOMPARE(screen.items("cboDocSubCategory"), QStringList({"Leases"}));
        QVERIFY(screen->QueryDescription.isEmpty());
    }

    // A key of a million or more goes into the statement as plain digits, and the search finds
    // its documents.
    void largeKeys() {
        env->exec("insert into File values(1234567,'F-1M','Archive',1)");
        env->exec("update Vorlane set FileID=1234567 where IndexID=2");
        screen->Unload();
        screen->Show();
        screen.pick("cboFileNo", "F-1M");
        screen.ctl<platform::DatePicker>("dtpDocFrom")->setValue(QDate(2024, 1, 1));
        screen.ctl<platform::DatePicker>("dtpDocTo")->setValue(QDate(2024, 1, 31));
        QCOMPARE(built().first, Base +
                                    "Where I.DocDate >= #01-Jan-24# and I.DocDate <=#31-Jan-24# and "
                                    "I.FileID=1234567 " +
                                    Order);
        screen.press("cmdSearch");
        QCOMPARE(messages(), QStringList());
        QCOMPARE(screen.rows("lstList").size(), 1);
        QVERIFY(screen.rows("lstList").constFirst().startsWith(QLatin1String("2|Tax return|")));
    }

    // A document whose file is gone has no file number: the list ends before it.
    void aDocumentWithoutItsFileEndsTheList() {
        env->exec("update Vorlane set FileID=99 where IndexID=3");
        screen.press("cmdSearch");
        QCOMPARE(messages(), QStringList({"16:Invalid use of Null"}));
        QCOMPARE(screen.rows("lstList").size(), 1);
        QCOMPARE(screen.ctl<QLabel>("lblNoOfRecords")->text(), QStringLiteral("(1 Record/s found)"));
    }

    // The print copies the listed rows one column off and prints them under the sentence of
    // the controls as they stand now, headed by the screen's own title captions.
    void printingTheResult() {
        screen.press(2);
        QVERIFY(!reports::rptSearchReport().isShown()); // nothing listed, nothing printed
        QCOMPARE(env->count("PrintSearchResult"), 0);

        screen.type("txtTitle1", "lease");
        screen.press("cmdSearch");
        screen.type("txtBookmark", "p1");
        QCOMPARE(screen.pressed(2), QStringList());
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
        screen->ResetSearchForm();
        screen.press("cmdSearch");
        QCOMPARE(screen.pressed(2), QStringList({"16:refused"}));
        QCOMPARE(env->count("PrintSearchResult"), 2);
        env->allow("PrintSearchResult");

        // No criteria print "All Records"; the office's names head the columns.
        screen->Unload();
        env->exec("insert into FieldCaptions values('Section','Matter','Area','Topic','Invoice No','Party')");
        screen->Show();
        QCOMPARE(screen.ctl<QLabel>("lblTitle1")->text(), QStringLiteral("Invoice No :"));
        screen.press("cmdSearch");
        screen.press(2);
        QCOMPARE(env->count("PrintSearchResult"), 3);
        QCOMPARE(printed("ReportHeader", "lblQuery"), QStringLiteral("All Records"));
        QCOMPARE(printed("PageHeader", "lblDocTitle1"), QStringLiteral("Invoice No /"));
        QCOMPARE(printed("PageHeader", "lblDocTitle2"), QStringLiteral("Party "));
    }

    // A double click opens the soft copy in the viewer of its kind: the kind is the last four
    // characters of the trimmed path without dots, and a kind not known starts nothing.
    void quickViewByTheKindOfTheFile() {
        screen->lstList_DblClick(); // an empty list: nothing
        QCOMPARE(messages(), QStringList());
        Session::saveSetting(QStringLiteral("Image"), QStringLiteral("/usr/bin/eog"));
        Session::saveSetting(QStringLiteral("Word"), QStringLiteral("/usr/bin/lowriter --view"));
        Session::saveSetting(QStringLiteral("PDF"), QStringLiteral("xdg-open"));
        // The path, and the command started or the message shown.
        const QList<QPair<QString, QString>> cases = {
            {"/d/scan.JPG", "/usr/bin/eog \"/d/scan.JPG\""},
            {"/d/scan.jpg   ", "/usr/bin/eog \"/d/scan.jpg\""},
            {"/d/photo.png", ""},
            {"/d/photo.jpeg", ""},
            {"/d/d.oc", "/usr/bin/lowriter --view \"/d/d.oc\""},
            {"/d/sheets/xlsx", NoViewer}, // the Excel viewer is not set
            {"/d/zxls", ""},
            {"", ""},
            {"/d/my \"big\" file.pdf", "xdg-open \"/d/my \"big\" file.pdf\""},
        };
        for (const auto& [path, outcome] : cases) {
            env->exec(QStringLiteral("update Vorlane set FilePath='%1' where IndexID=1")
                          .arg(QString(path).replace(QLatin1Char('\''), QStringLiteral("''"))));
            screen.press("cmdSearch");
            screen.dblClick("lstList", "1");
            const QStringList told = messages() + platform::test::takeStartedCommands();
            QCOMPARE(told, outcome.isEmpty() ? QStringList() : QStringList({outcome}));
        }

        // A viewer that is no program: the message, and the list stays as it was.
        platform::test::setShellChecksProgram(true);
        Session::saveSetting(QStringLiteral("PDF"), QStringLiteral("/no/such/viewer"));
        screen.dblClick("lstList", "1");
        QCOMPARE(messages(), QStringList({NoViewer}));
        QCOMPARE(screen.rows("lstList").size(), 3);
        platform::test::setShellChecksProgram(false);
    }

    // The text read from a soft copy finds its document, joined to the other criteria by "and",
    // a quote searched as it stands in the file; the printed query line names it.
    void findsBySoftCopyText() {
        env->exec(
            "update SoftCopy set ReadState='read', SoftText='Dear Mr O''Brien, the shop' where IndexID=1");
        env->exec("update SoftCopy set ReadState='read', SoftText='Renewal of the lease, clause 7' where "
                  "IndexID=3");
        screen.type("txtTitle1", "lease");
        screen.type("txtSoftCopyText", " o'brien ");
        QCOMPARE(built(), qMakePair(Base +
                                        "Where I.Title1 like '%lease%' and I.IndexID in (select S.IndexID "
                                        "from SoftCopy S where S.SoftText like '%o''brien%') " +
                                        Order,
                                    QStringLiteral(" Doc. Title 1 : lease Soft Copy Text : o'brien")));
        screen.press("cmdSearch");
        QCOMPARE(messages(), QStringList());
        QCOMPARE(screen.rows("lstList").size(), 1);
        QVERIFY(screen.rows("lstList").constFirst().startsWith(QLatin1String("1|")));

        screen->ResetSearchForm();
        screen.type("txtSoftCopyText", "CLAUSE 7");
        screen.press("cmdSearch");
        QCOMPARE(screen.rows("lstList").size(), 1);
        QVERIFY(screen.rows("lstList").constFirst().startsWith(QLatin1String("3|")));
        QCOMPARE(screen.pressed(2), QStringList());
        QCOMPARE(printed("ReportHeader", "lblQuery"), QStringLiteral("Soft Copy Text : CLAUSE 7"));
    }
};

QTEST_MAIN(TestSearchDocument)
#include "tst_searchdocument.moc"
