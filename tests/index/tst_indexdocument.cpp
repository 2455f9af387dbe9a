// The document entry screen driven by its controls: the order of Save's tests with rights,
// messages and focus; the statements' values with their quirks; the cascading pick lists; the
// list of all documents and the load of a row back into the fields; the data store failing.
#include "datastore/Ado.h"
#include "index/frmIndexDocument.h"
#include "index/frmSearchDocument.h"
#include "maintenance/frmSettings.h"
#include "platform/Controls.h"
#include "platform/MsgBox.h"
#include "platform/Settings.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>
#include <thread>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");

frmIndexDocument& form() {
    return frmIndexDocument::instance();
}

template <class T = QWidget> T* ctl(const char* name) {
    return testsupport::ctl<T>(form(), QString::fromLatin1(name));
}

platform::ComboBox* combo(const char* name) {
    return ctl<platform::ComboBox>(name);
}

void press(int index) {
    testsupport::press(form(), index);
}

void pick(const char* box, const char* item) {
    testsupport::pick(form(), QString::fromLatin1(box), QString::fromLatin1(item));
}

QStringList items(const char* box) {
    return testsupport::items(form(), QString::fromLatin1(box));
}

QStringList rows() {
    return testsupport::listRows(form(), QStringLiteral("lstDocs"));
}

bool listShown() {
    return testsupport::isShown(form(), QStringLiteral("lstDocs"));
}

void browse(const QString& path) {
    platform::test::nextOpenFile(path);
    press(4);
}

} // namespace

class TestIndexDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from Vorlane where IndexID=%2").arg(column).arg(id))
            .toString();
    }

    // Types, categories A to D with their sub- and child categories, and two files. Category
    // D holds sub-category D1 (three children) and D2 (five children).
    void classification() const {
        env->exec("insert into DocumentType values(1,'Letter',1)");
        env->exec("insert into DocumentType values(2,'Invoice',1)");
        const char* categories[] = {"A", "B", "C", "D"};
        for (int i = 0; i < 4; ++i)
            env->exec(QStringLiteral("insert into DocumentCategory values(%1,'%2',1)")
                          .arg(i + 1)
                          .arg(categories[i]));
        env->exec("insert into DocumentSubCategory values(1,1,'A1',1)");
        env->exec("insert into DocumentSubCategory values(2,1,'A2',1)");
        env->exec("insert into DocumentSubCategory values(3,4,'D1',1)");
        env->exec("insert into DocumentSubCategory values(4,4,'D2',1)");
        env->exec("insert into DocumentChildCategory values(1,1,1,'A1 first',1)");
        env->exec("insert into DocumentChildCategory values(2,1,2,'A2 first',1)");
        for (int i = 0; i < 3; ++i)
            env->exec(QStringLiteral("insert into DocumentChildCategory values(%1,4,3,'D1 child %2',1)")
                          .arg(10 + i)
                          .arg(i));
        for (int i = 0; i < 5; ++i)
            env->exec(QStringLiteral("insert into DocumentChildCategory values(%1,4,4,'D2 child %2',1)")
                          .arg(20 + i)
                          .arg(i));
        env->exec("insert into File values(1,'F-001','Tax',1)");
        env->exec("insert into File values(2,'F-002','Bank',1)");
    }

    // A document under category A, ready to save.
    void fillValid(const QString& title = QStringLiteral("Lease agreement")) const {
        pick("cboDocType", "Letter");
        pick("cboDocCategory", "A");
        pick("cboDocSubCategory", "A1");
        pick("cboDocChildCategory", "A1 first");
        pick("cboFile", "F-002");
        testsupport::type(form(), QStringLiteral("txtTitle1"), title);
        browse(QStringLiteral("/home/office/Scans/lease.PDF"));
    }

    void document(int id, const char* date, const char* title) const {
        env->exec(QStringLiteral(
                      "insert into Vorlane values(%1,'%2','%2',1,1,1,1,'%3','','/d/%1.pdf',1,'p%1','',1)")
                      .arg(id)
                      .arg(QLatin1String(date), QLatin1String(title)));
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom)); }

    void init() {
        env = testsupport::startRecordCase(form());
        classification();
    }
    void cleanup() { testsupport::endRecordCase(form(), env); }

    void theScreenAsDesigned() {
        form().Show();
        QCOMPARE(messages(), QStringList());
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Index Document"));
        for (const char* name : {"dtpDocDate", "dtpFollowUp"}) {
            auto* picker = ctl<platform::DatePicker>(name);
            QVERIFY(picker->checkBox()->isHidden());
            QCOMPARE(picker->customFormat(), QStringLiteral("dd/MMM/yyyy"));
            QCOMPARE(picker->Value().toDate(), QDate::currentDate());
        }
        QCOMPARE(ctl<QLineEdit>("txtTitle1")->maxLength(), 200);
        QCOMPARE(ctl<QLineEdit>("txtTitle2")->maxLength(), 200);
        QCOMPARE(ctl<QLineEdit>("txtBookmark")->maxLength(), 200);
        QCOMPARE(ctl<QLineEdit>("txtFilePath")->maxLength(), 250);
        QVERIFY(ctl<QLineEdit>("txtFilePath")->isReadOnly());
        QCOMPARE(ctl<QLabel>("lblFilePath")->buddy(), ctl("txtFilePath"));
        QCOMPARE(ctl<QLabel>("Label1")->text(), QStringLiteral("Follow-up Date :"));
        QCOMPARE(ctl<QLabel>("lblFile")->text(), QStringLiteral("Hard Copy File No. :"));
        const QStringList captions{"Reset", "Edit", "Save", "Close", "Browse"};
        for (int i = 0; i < captions.size(); ++i)
            QCOMPARE(form().cmd(i)->text(), captions[i]);
        // The path box takes no Tab; Browse follows the second title.
        QCOMPARE(
            testsupport::tabOrder(form().window()),
            QStringList({"dtpDocDate", "dtpFollowUp", "cboDocType", "cboDocCategory", "cboDocSubCategory",
                         "cboDocChildCategory", "txtTitle1", "txtTitle2", "cmd(4)", "cboFile", "txtBookmark",
                         "txtRemarks", "lstDocs", "cmd(0)", "cmd(1)", "cmd(2)", "cmd(3)"}));
        QVERIFY(!listShown());
        auto* list = ctl<platform::ListView>("lstDocs");
        QStringList headers;
        for (int c = 0; c < list->model()->columnCount(); ++c)
            headers << list->model()->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(headers,
                 QStringList({"IndexID", "Title 1", "Title 2", "Doc. Date", "Followup Date", "Bookmark"}));
        QVERIFY(list->isColumnHidden(0));
        // The three lists of the load; the lower two wait for a choice.
        QCOMPARE(items("cboDocType"), QStringList({"Invoice", "Letter"}));
        QCOMPARE(items("cboDocCategory"), QStringList({"A", "B", "C", "D"}));
        QCOMPARE(items("cboFile"), QStringList({"F-001", "F-002"}));
        QVERIFY(items("cboDocSubCategory").isEmpty());
    }

    // The settings' names hold only while the table cannot be read; the table's row wins,
    // and an empty table gives the defaults with " :".
    void captionsFromTheSettingsAndTheTable() {
        platform::SaveSetting("Vorlane", "Settings", "DocTypeCaption", "Department :");
        env->removeDatabase();
        form().Show();
        messages();
        QCOMPARE(ctl<QLabel>("lblDocType")->text(), QStringLiteral("Department :"));
        QCOMPARE(ctl<QLabel>("lblTitle1")->text(), QStringLiteral("Document Title 1"));
        QCOMPARE(ctl<QLabel>("lblTitle2")->text(), QStringLiteral("Document Title 2"));
        form().Unload();

        env->createDatabase();
        form().Show();
        QCOMPARE(ctl<QLabel>("lblDocType")->text(), QStringLiteral("Document Type :"));
        QCOMPARE(ctl<QLabel>("lblTitle2")->text(), QStringLiteral("Document Title 2 :"));
        form().Unload();

        env->exec("insert into FieldCaptions values('Department','Matter','Area','Topic','Subject','Party')");
        form().Show();
        QCOMPARE(ctl<QLabel>("lblDocType")->text(), QStringLiteral("Department :"));
        QCOMPARE(ctl<QLabel>("lblDocChildCat")->text(), QStringLiteral("Topic :"));
        QCOMPARE(ctl<QLabel>("lblTitle1")->text(), QStringLiteral("Subject :"));
        QCOMPARE(ctl("txtTitle2")->accessibleName(), QStringLiteral("Party :"));
    }

    // Rights first, then the six required choices in their order; only the later steps move
    // the focus, the path's to the Browse button.
    void saveTestsInOrderWithRightsAndFocus() {
        form().Show();
        testsupport::setSession(2, QStringLiteral("User"));
        fillValid();
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));
        press(0);

        testsupport::setSession(3, QStringLiteral("Save"));
        QWidget* before = ctl("txtTitle1");
        before->setFocus();
        const QList<QPair<QString, const char*>> steps = {
            {"Please specify Document Type.", nullptr},
            {"Please specify Document Category.", nullptr},
            {"Please specify Document Sub-Category.", "cboDocSubCategory"},
            {"Please specify Document Child Category.", "cboDocChildCategory"},
            {"Please specify File path.", "cmd(4)"},
            {"Please select File number.", "cboFile"},
        };
        const std::function<void()> fix[] = {
            [] { pick("cboDocType", "Invoice"); },          [] { pick("cboDocCategory", "A"); },
            [] { pick("cboDocSubCategory", "A2"); },        [] { pick("cboDocChildCategory", "A2 first"); },
            [] { browse(QStringLiteral("/scans/x.jpg")); }, [] { pick("cboFile", "F-001"); },
        };
        for (int i = 0; i < steps.size(); ++i) {
            before->setFocus();
            press(2);
            QCOMPARE(messages(), QStringList({QStringLiteral("48:") + steps[i].first}));
            QCOMPARE(form().window()->focusWidget(), steps[i].second ? ctl(steps[i].second) : before);
            fix[i]();
        }
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("Vorlane"), 1);
        QCOMPARE(stored("ChildCatID", 1), QStringLiteral("2"));
        QCOMPARE(stored("UpdatedBy", 1), QStringLiteral("3"));
        // After the save the choices are gone but the lower lists keep their items.
        QCOMPARE(combo("cboDocType")->ListIndex(), -1);
        QCOMPARE(combo("cboDocChildCategory")->ListIndex(), -1);
        QCOMPARE(items("cboDocChildCategory"), QStringList({"A2 first"}));
        QVERIFY(ctl<QLineEdit>("txtFilePath")->text().isEmpty());

        // A "Save" user may load a row but not change it.
        press(1);
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
    }

    // The child category is read at the position of the chosen category: with category D
    // (position 3) a child list of three fails, one of five stores its fourth item's key.
    void theChildCategoryIsReadAtTheCategorysPosition() {
        form().Show();
        pick("cboDocType", "Letter");
        pick("cboDocCategory", "D");
        pick("cboDocSubCategory", "D1");
        pick("cboDocChildCategory", "D1 child 0");
        pick("cboFile", "F-001");
        browse(QStringLiteral("/scans/d.pdf"));
        press(2);
        QCOMPARE(messages(), QStringList({"16:Invalid property array index"}));
        QCOMPARE(env->count("Vorlane"), 0);
        QCOMPARE(form().CurrentRowID, 1); // the unused key of the failed insert

        pick("cboDocSubCategory", "D2");
        pick("cboDocChildCategory", "D2 child 0");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("ChildCatID", 1), QStringLiteral("23"));
    }

    // Dates typed into the boxes key by key are saved as typed; a text that is no date leaves
    // the box at its former date.
    void typedDatesAreSavedAsTyped() {
        form().Show();
        fillValid();
        const auto typeDate = [this](const char* name, const char* typed) {
            QLineEdit* box = ctl<platform::DatePicker>(name)->dateBox();
            box->selectAll();
            QTest::keyClicks(box, typed);
            QTest::keyClick(box, Qt::Key_Return);
        };
        typeDate("dtpDocDate", "15/Mar/2026");
        typeDate("dtpFollowUp", "1.4.26");
        typeDate("dtpFollowUp", "31/Feb/2026");
        QVERIFY(!ctl<platform::DatePicker>("dtpFollowUp")->refusal().isEmpty());
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("DocDate", 1), QStringLiteral("2026-03-15"));
        QCOMPARE(stored("FollowupDate", 1), QStringLiteral("2026-04-01"));
    }

    // A quote breaks a new row's statement but is turned into a back-tick in a changed row's;
    // in the path it breaks both. Long and non-Latin texts go in and come back whole.
    void quotesLongTextsAndForeignScripts() {
        form().Show();
        fillValid(QStringLiteral("O'Brien lease"));
        press(2);
        QCOMPARE(messages().size(), 1);
        QCOMPARE(env->count("Vorlane"), 0);
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtTitle1")), QStringLiteral("O'Brien lease"));

        const QString remarks = QString(10000, QLatin1Char('r'));
        const QString title = QStringLiteral("Łódź – 東京 ") + QString(186, QLatin1Char('t'));
        ctl<QLineEdit>("txtTitle1")->setText(title); // pasted: no keys for these scripts
        ctl<QPlainTextEdit>("txtRemarks")->setPlainText(remarks);
        ctl<platform::DatePicker>("dtpDocDate")->setValue(QDate(2026, 3, 5));
        ctl<platform::DatePicker>("dtpFollowUp")->setValue(QDate(2025, 9, 30)); // "Sept" here
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("DocDate", 1), QStringLiteral("2026-03-05"));
        QCOMPARE(stored("FollowupDate", 1), QStringLiteral("2025-09-30"));
        QCOMPARE(stored("FilePath", 1), QStringLiteral("/home/office/Scans/lease.PDF"));

        press(1);
        QCOMPARE(rows(), QStringList({QStringLiteral("1|%1||05/Mar/2026|30/Sept/2025|").arg(title)}));
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtTitle1")), title);
        QCOMPARE(ctl<QPlainTextEdit>("txtRemarks")->toPlainText(), remarks);
        QCOMPARE(ctl<platform::DatePicker>("dtpFollowUp")->Value().toDate(), QDate(2025, 9, 30));
        testsupport::type(form(), QStringLiteral("txtTitle1"), QStringLiteral("O'Brien lease"));
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("Title1", 1), QStringLiteral("O`Brien lease"));
        QCOMPARE(env->count("Vorlane"), 1);

        press(1);
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        browse(QStringLiteral("/scans/o'brien.pdf"));
        press(2);
        QCOMPARE(messages().size(), 1);
        QCOMPARE(stored("FilePath", 1), QStringLiteral("/home/office/Scans/lease.PDF"));
        QVERIFY(form().EditMode);
        // A cancelled dialog keeps the path.
        browse(QString());
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtFilePath")),
                 QStringLiteral("/scans/o'brien.pdf"));
    }

    // Each level refills only the next: a new category leaves the child list of the earlier
    // sub-category, and a category without sub-categories stops the save there.
    void theCascadeTouchesOnlyTheNextLevel() {
        form().Show();
        pick("cboDocCategory", "D");
        QCOMPARE(items("cboDocSubCategory"), QStringList({"D1", "D2"}));
        pick("cboDocSubCategory", "D1");
        QCOMPARE(items("cboDocChildCategory"), QStringList({"D1 child 0", "D1 child 1", "D1 child 2"}));
        pick("cboDocChildCategory", "D1 child 1");
        pick("cboDocCategory", "A");
        QCOMPARE(items("cboDocSubCategory"), QStringList({"A1", "A2"}));
        QCOMPARE(combo("cboDocSubCategory")->ListIndex(), -1);
        QCOMPARE(combo("cboDocChildCategory")->currentText(), QStringLiteral("D1 child 1"));

        pick("cboDocType", "Letter");
        pick("cboDocCategory", "B");
        QVERIFY(items("cboDocSubCategory").isEmpty());
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));
    }

    // Newest first; a loaded row puts every field back, with each level refilled for the
    // row's parent even when it is not first in its list. A row whose keys no longer fit
    // loads with nothing chosen at that level; a row gone meanwhile leaves the form new.
    void theListAndTheLoad() {
        document(1, "2024-01-10", "Oldest");
        document(2, "2026-03-05", "Newest");
        document(3, "2025-06-01", "Middle");
        env->exec("update Vorlane set CatID=4, SubCatID=4, ChildCatID=22, FileID=2, TypeID=2, "
                  "Title2='second', Remarks='  spaced  ' where IndexID=3");
        env->exec("update Vorlane set CatID=4, SubCatID=1, ChildCatID=2 where IndexID=1");
        form().Show();
        ctl<QLineEdit>("txtTitle2")->setText(QStringLiteral("typed"));
        press(1);
        QVERIFY(listShown());
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtTitle2")), QString());
        QCOMPARE(rows(), QStringList({"2|Newest||05/Mar/2026|05/Mar/2026|p2",
                                      "3|Middle|second|01/Jun/2025|01/Jun/2025|p3",
                                      "1|Oldest||10/Jan/2024|10/Jan/2024|p1"}));
        press(1);
        QCOMPARE(rows().size(), 3);

        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("3"));
        QVERIFY(!listShown());
        QVERIFY(form().EditMode);
        QCOMPARE(form().CurrentRowID, 3);
        QCOMPARE(combo("cboDocType")->currentText(), QStringLiteral("Invoice"));
        QCOMPARE(combo("cboDocCategory")->currentText(), QStringLiteral("D"));
        QCOMPARE(combo("cboDocSubCategory")->currentText(), QStringLiteral("D2"));
        QCOMPARE(combo("cboDocChildCategory")->currentText(), QStringLiteral("D2 child 2"));
        QCOMPARE(combo("cboFile")->currentText(), QStringLiteral("F-002"));
        QCOMPARE(ctl<platform::DatePicker>("dtpDocDate")->Value().toDate(), QDate(2025, 6, 1));
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtFilePath")), QStringLiteral("/d/3.pdf"));
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtBookmark")), QStringLiteral("p3"));
        QCOMPARE(ctl<QPlainTextEdit>("txtRemarks")->toPlainText(), QStringLiteral("spaced"));
        QCOMPARE(messages(), QStringList());

        // Sub-category 1 is not under category D: nothing chosen there, D's list stays.
        press(1);
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        QCOMPARE(combo("cboDocCategory")->currentText(), QStringLiteral("D"));
        QCOMPARE(combo("cboDocSubCategory")->ListIndex(), -1);
        QCOMPARE(items("cboDocSubCategory"), QStringList({"D1", "D2"}));
        QCOMPARE(combo("cboDocChildCategory")->ListIndex(), -1);
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));

        press(1);
        env->exec("delete from Vorlane where IndexID=2");
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("2"));
        QVERIFY(!listShown());
        QVERIFY(!form().EditMode);
        QCOMPARE(form().CurrentRowID, 0);
        QCOMPARE(messages(), QStringList());
    }

    // A Null in a shown column ends the list at that row with the message; the rows before
    // it stay listed.
    void aNullEndsTheFill() {
        document(1, "2026-01-01", "First");
        document(2, "2025-01-01", "Second");
        document(3, "2024-01-01", "Third");
        env->exec("update Vorlane set Bookmark=NULL where IndexID=2");
        form().Show();
        press(1);
        QCOMPARE(messages(), QStringList({"16:Invalid use of Null"}));
        QVERIFY(listShown());
        QCOMPARE(rows(), QStringList({"1|First||01/Jan/2026|01/Jan/2026|p1"}));
        // In the load the Null only leaves the field empty.
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        env->exec("update Vorlane set Title1=NULL, DocDate=NULL where IndexID=1");
        press(1);
        press(1); // the message of the first row again, the list empty
        messages();
        QCOMPARE(rows(), QStringList());
        QTest::keyClick(ctl("lstDocs"), Qt::Key_Return);
        QCOMPARE(messages(), QStringList());
    }

    // The data store going away between operations: each one tells it and the screen stays
    // usable; a failed save writes nothing.
    void theDataStoreGoingAway() {
        document(1, "2026-01-01", "First");
        form().Show();
        press(1);
        QCOMPARE(rows().size(), 1);
        press(0);
        fillValid();
        env->removeDatabase();
        press(2);
        QCOMPARE(messages().size(), 1);
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtTitle1")), QStringLiteral("Lease agreement"));
        // Edit shows the list all the same, with the rows of its last filling.
        press(1);
        QCOMPARE(messages().size(), 1);
        QVERIFY(listShown());
        QCOMPARE(rows().size(), 1);
        testsupport::dblClick(form(), QStringLiteral("lstDocs"), QStringLiteral("1"));
        QCOMPARE(messages().size(), 1);
        QVERIFY(listShown());
        env->createDatabase();
        classification();
        press(0);
        fillValid();
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
    }

    // The server stopping while a save waits on its Insert: the save tells it, nothing of it
    // stays, and once the server is back the same save goes through.
    void theServerStoppingMidSave() {
        if (!testsupport::onServer())
            QSKIP("The server stops; the embedded file has none.");
        form().Show();
        fillValid();
        std::atomic<bool> locked = false;
        std::thread other([&] {
            {
                QSqlDatabase db =
                    QSqlDatabase::addDatabase(QStringLiteral("QODBC"), QStringLiteral("blocker"));
                db.setDatabaseName(GenMod::DataSourceName);
                db.open();
                QSqlQuery q(db);
                q.exec("BEGIN");
                // Reads go on; the save's Insert waits.
                q.exec("LOCK TABLE \"Vorlane\" IN EXCLUSIVE MODE");
                locked = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(500));
                env->takeDatabaseAway();
            }
            QSqlDatabase::removeDatabase(QStringLiteral("blocker"));
        });
        while (!locked)
            std::this_thread::yield();
        press(2);
        other.join();
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].startsWith(QLatin1String("16:")), qPrintable(shown[0]));
        env->bringDatabaseBack();
        QCOMPARE(env->count("Vorlane"), 0);
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("Vorlane"), 1);
    }

    // Another seat holding the write lock makes this save wait for it, and then take the key
    // after the other seat's row.
    void twoSeatsNeverShareAKey() {
        form().Show();
        fillValid();
        testsupport::OtherSeat other([](const auto& seat) {
            seat->Execute("insert into Vorlane "
                          "values(1,'2026-01-01','2026-01-01',1,1,1,1,'other','','/o.pdf',1,'','',2)");
        });
        press(2);
        QVERIFY(other.finish());
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("Vorlane"), 2);
        QCOMPARE(stored("Title1", 2), QStringLiteral("Lease agreement"));
    }

    void underOtherLanguages_data() {
        QTest::addColumn<QString>("locale");
        for (const char* name : {"de_DE", "fr_FR", "ru_RU", "ar_EG", "ja_JP", "tr_TR"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    // Languages whose month names the screens write with a dot, in digits of their own or holding
    // digits: two documents saved, listed newest first, found by a range of dates and purged.
    void underOtherLanguages() {
        QFETCH(QString, locale);
        const QLocale language(locale);
        QLocale::setDefault(language);
        const auto restore = qScopeGuard([] {
            frmSearchDocument::instance().Unload();
            frmSettings::instance().Unload();
            QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
        });
        const auto shown = [&](const QDate& d) {
            return language.toString(d, QStringLiteral("dd/MMM/yyyy"));
        };
        const QDate older(2024, 2, 29), newer(2025, 9, 1);
        form().Show();
        for (const QDate& date : {older, newer}) {
            fillValid(QString::number(date.year()));
            ctl<platform::DatePicker>("dtpDocDate")->setValue(date);
            ctl<platform::DatePicker>("dtpFollowUp")->setValue(date);
            press(2);
        }
        QCOMPARE(messages(), QStringList({Saved, Saved}));
        press(1);
        QCOMPARE(rows(), QStringList({QStringLiteral("2|2025||%1|%1|").arg(shown(newer)),
                                      QStringLiteral("1|2024||%1|%1|").arg(shown(older))}));

        const frmSearchDocument& search = frmSearchDocument::instance();
        frmSearchDocument::instance().Show();
        testsupport::ctl<platform::DatePicker>(search, "dtpDocFrom")->setValue(QDate(2025, 1, 1));
        testsupport::ctl<platform::DatePicker>(search, "dtpDocTo")->setValue(newer);
        testsupport::press(search, "cmdSearch");
        QCOMPARE(testsupport::listRows(search, "lstList"),
                 QStringList(
                     QStringLiteral("2|2025||%1|%1|||F-002|/home/office/Scans/lease.PDF").arg(shown(newer))));

        const frmSettings& settings = frmSettings::instance();
        frmSettings::instance().Show();
        testsupport::ctl<platform::DatePicker>(settings, "dtpDelete")->setValue(newer);
        platform::test::answerNext(platform::vbYes);
        testsupport::press(settings, "cmdDelete");
        QCOMPARE(messages(),
                 QStringList(QStringLiteral("68:Confirm once again whether to proceed or not.\nAll "
                                            "records before %1 will be deleted.")
                                 .arg(shown(newer))));
        QCOMPARE(env->count("Vorlane"), 1);
        QCOMPARE(stored("DocDate", 2), QStringLiteral("2025-09-01"));
    }
};

QTEST_MAIN(TestIndexDocument)
#include "tst_indexdocument.moc"
