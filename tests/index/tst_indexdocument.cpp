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

#include <QLabel>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>
#include <atomic>
#include <thread>

using testsupport::messages;

namespace {
const QString Saved = QStringLiteral("64:Saved Successfully.");
} // namespace

class TestIndexDocument : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmIndexDocument> screen;

    void browse(const QString& path) const {
        platform::test::nextOpenFile(path);
        screen.press(4);
    }
    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from Vorlane where IndexID=%2").arg(column).arg(id))
            .toString();
    }

    // Types, categories A to D with their sub- and child categories, and two files. Category
    // D holds sub-category D1 (three children) and D2 (five children).
    void classification() const {
        env->exec("insert into DocumentType values(1,'Letter',1),(2,'Invoice',1)");
        env->exec("insert into DocumentCategory values(1,'A',1),(2,'B',1),(3,'C',1),(4,'D',1)");
        env->exec(
            "insert into DocumentSubCategory values(1,1,'A1',1),(2,1,'A2',1),(3,4,'D1',1),(4,4,'D2',1)");
        env->exec("insert into DocumentChildCategory values(1,1,1,'A1 first',1),(2,1,2,'A2 first',1)");
        for (int i = 0; i < 5; ++i) {
            if (i < 3)
                env->exec(QStringLiteral("insert into DocumentChildCategory values(%1,4,3,'D1 child %2',1)")
                              .arg(10 + i)
                              .arg(i));
            env->exec(QStringLiteral("insert into DocumentChildCategory values(%1,4,4,'D2 child %2',1)")
                          .arg(20 + i)
                          .arg(i));
        }
        env->exec("insert into File values(1,'F-001','Tax',1),(2,'F-002','Bank',1)");
    }

    // A document under category A, ready to save.
    void fillValid(const QString& title = QStringLiteral("Lease agreement")) const {
        screen.pick("cboDocType", "Letter");
        screen.pick("cboDocCategory", "A");
        screen.pick("cboDocSubCategory", "A1");
        screen.pick("cboDocChildCategory", "A1 first");
        screen.pick("cboFile", "F-002");
        screen.type("txtTitle1", title);
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
        env = testsupport::startCase();
        classification();
    }
    void cleanup() { testsupport::endCase(env); }

    // The settings' names hold only while the table cannot be read; the table's row wins.
    void captionsFromTheSettingsAndTheTable() {
        platform::SaveSetting("Vorlane", "Settings", "DocTypeCaption", "Department :");
        env->removeDatabase();
        screen->Show();
        messages();
        QCOMPARE(screen.ctl<QLabel>("lblDocType")->text(), QStringLiteral("Department :"));
        QCOMPARE(screen.ctl<QLabel>("lblTitle1")->text(), QStringLiteral("Document Title 1"));
        screen->Unload();

        env->createDatabase();
        env->exec("insert into FieldCaptions values('Department','Matter','Area','Topic','Subject','Party')");
        screen->Show();
        QCOMPARE(screen.ctl<QLabel>("lblDocType")->text(), QStringLiteral("Department :"));
        QCOMPARE(screen.ctl<QLabel>("lblDocChildCat")->text(), QStringLiteral("Topic :"));
    }

    // Rights first, then the six required choices in their order; only the later steps move
    // the focus, the path's to the Browse button.
    void saveTestsInOrderWithRightsAndFocus() {
        screen->Show();
        testsupport::setSession(3, QStringLiteral("Save"));
        QWidget* before = screen.ctl("txtTitle1");
        const QList<QPair<QString, const char*>> steps = {
            {"Please specify Document Type.", nullptr},
            {"Please specify Document Category.", nullptr},
            {"Please specify Document Sub-Category.", "cboDocSubCategory"},
            {"Please specify Document Child Category.", "cboDocChildCategory"},
            {"Please specify File path.", "cmd(4)"},
            {"Please select File number.", "cboFile"},
        };
        const std::function<void()> fix[] = {
            [&] { screen.pick("cboDocType", "Invoice"); },
            [&] { screen.pick("cboDocCategory", "A"); },
            [&] { screen.pick("cboDocSubCategory", "A2"); },
            [&] { screen.pick("cboDocChildCategory", "A2 first"); },
            [&] { browse(QStringLiteral("/scans/x.jpg")); },
            [&] { screen.pick("cboFile", "F-001"); },
        };
        for (int i = 0; i < steps.size(); ++i) {
            before->setFocus();
            QCOMPARE(screen.pressed(2), QStringList({QStringLiteral("48:") + steps[i].first}));
            QCOMPARE(screen.focus(), steps[i].second ? screen.ctl(steps[i].second) : before);
            fix[i]();
        }
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("ChildCatID||'|'||UpdatedBy", 1), QStringLiteral("2|3"));
        // After the save the choices are gone but the lower lists keep their items.
        QCOMPARE(screen.values("cboDocType cboDocChildCategory txtFilePath"), QStringLiteral("||"));
        QCOMPARE(screen.items("cboDocChildCategory"), QStringList({"A2 first"}));
    }

    // The child category is read at the position of the chosen category: with category D
    // (position 3) a child list of three fails, one of five stores its fourth item's key.
    void theChildCategoryIsReadAtTheCategorysPosition() {
        screen->Show();
        screen.pick("cboDocType", "Letter");
        screen.pick("cboDocCategory", "D");
        screen.pick("cboDocSubCategory", "D1");
        screen.pick("cboDocChildCategory", "D1 child 0");
        screen.pick("cboFile", "F-001");
        browse(QStringLiteral("/scans/d.pdf"));
        QCOMPARE(screen.pressed(2), QStringList({"16:Invalid property array index"}));
        QCOMPARE(env->count("Vorlane"), 0);
        QCOMPARE(screen->CurrentRowID, 1); // the unused key of the failed insert

        screen.pick("cboDocSubCategory", "D2");
        screen.pick("cboDocChildCategory", "D2 child 0");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("ChildCatID", 1), QStringLiteral("23"));
    }

    // A quote breaks a new row's statement but is turned into a back-tick in a changed row's;
    // in the path it breaks both. Long and non-Latin texts go in and come back whole.
    void quotesLongTextsAndForeignScripts() {
        screen->Show();
        fillValid(QStringLiteral("O'Brien lease"));
        screen.press(2);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QCOMPARE(env->count("Vorlane"), 0);

        const QString remarks = QString(10000, QLatin1Char('r'));
        const QString title = QStringLiteral("Łódź – 東京 ") + QString(186, QLatin1Char('t'));
        screen.paste("txtTitle1", title);
        screen.paste("txtRemarks", remarks);
        screen.ctl<platform::DatePicker>("dtpDocDate")->setValue(QDate(2026, 3, 5));
        screen.ctl<platform::DatePicker>("dtpFollowUp")->setValue(QDate(2025, 9, 30)); // "Sept" here
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("DocDate||'|'||FollowupDate||'|'||FilePath", 1),
                 QStringLiteral("2026-03-05|2025-09-30|/home/office/Scans/lease.PDF"));

        screen.press(1);
        QCOMPARE(screen.rows("lstDocs"),
                 QStringList({QStringLiteral("1|%1||05/Mar/2026|30/Sept/2025|").arg(title)}));
        screen.dblClick("lstDocs", "1");
        QCOMPARE(screen.values("txtTitle1 txtRemarks dtpFollowUp"), title + "|" + remarks + "|2025-09-30");
        screen.type("txtTitle1", "O'Brien lease");
        screen.type("txtBookmark", "Tom's tab");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("Title1||'|'||Bookmark", 1), QStringLiteral("O`Brien lease|Tom`s tab"));
        QCOMPARE(env->count("Vorlane"), 1);

        screen.press(1);
        screen.dblClick("lstDocs", "1");
        browse(QStringLiteral("/scans/o'brien.pdf"));
        screen.press(2);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QCOMPARE(stored("FilePath", 1), QStringLiteral("/home/office/Scans/lease.PDF"));
        QVERIFY(screen->EditMode);
        // A cancelled dialog keeps the path.
        browse(QString());
        QCOMPARE(screen.text("txtFilePath"), QStringLiteral("/scans/o'brien.pdf"));
    }

    // The load fills the three upper lists; each level refills only the next: a new category
    // leaves the child list of the earlier sub-category, and a category without
    // sub-categories stops the save there.
    void theCascadeTouchesOnlyTheNextLevel() {
        screen->Show();
        QCOMPARE(screen.items("cboDocType"), QStringList({"Invoice", "Letter"}));
        QCOMPARE(screen.items("cboFile"), QStringList({"F-001", "F-002"}));
        QVERIFY(screen.items("cboDocSubCategory").isEmpty());
        screen.pick("cboDocCategory", "D");
        QCOMPARE(screen.items("cboDocSubCategory"), QStringList({"D1", "D2"}));
        screen.pick("cboDocSubCategory", "D1");
        QCOMPARE(screen.items("cboDocChildCategory"),
                 QStringList({"D1 child 0", "D1 child 1", "D1 child 2"}));
        screen.pick("cboDocChildCategory", "D1 child 1");
        screen.pick("cboDocCategory", "A");
        QCOMPARE(screen.items("cboDocSubCategory"), QStringList({"A1", "A2"}));
        QCOMPARE(screen.values("cboDocSubCategory cboDocChildCategory"), QStringLiteral("|D1 child 1"));

        screen.pick("cboDocType", "Letter");
        screen.pick("cboDocCategory", "B");
        QVERIFY(screen.items("cboDocSubCategory").isEmpty());
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify Document Sub-Category."}));
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
        screen->Show();
        screen.paste("txtTitle2", "typed");
        screen.press(1);
        QVERIFY(screen.isShown("lstDocs"));
        QCOMPARE(screen.text("txtTitle2"), QString());
        QCOMPARE(screen.rows("lstDocs"), QStringList({"2|Newest||05/Mar/2026|05/Mar/2026|p2",
                                                      "3|Middle|second|01/Jun/2025|01/Jun/2025|p3",
                                                      "1|Oldest||10/Jan/2024|10/Jan/2024|p1"}));
        screen.press(1);
        QCOMPARE(screen.rows("lstDocs").size(), 3);

        screen.dblClick("lstDocs", "3");
        QVERIFY(!screen.isShown("lstDocs"));
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 3);
        QCOMPARE(screen.values("cboDocType cboDocCategory cboDocSubCategory cboDocChildCategory cboFile "
                               "dtpDocDate txtFilePath txtBookmark txtRemarks"),
                 QStringLiteral("Invoice|D|D2|D2 child 2|F-002|2025-06-01|/d/3.pdf|p3|spaced"));
        QCOMPARE(messages(), QStringList());

        // Sub-category 1 is not under category D: nothing chosen there, D's list stays.
        screen.press(1);
        screen.dblClick("lstDocs", "1");
        QCOMPARE(screen.values("cboDocCategory cboDocSubCategory cboDocChildCategory"),
                 QStringLiteral("D||"));
        QCOMPARE(screen.items("cboDocSubCategory"), QStringList({"D1", "D2"}));
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify Document Sub-Category."}));

        screen.press(1);
        env->exec("delete from Vorlane where IndexID=2");
        screen.dblClick("lstDocs", "2");
        QVERIFY(!screen.isShown("lstDocs"));
        QVERIFY(!screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 0);
        QCOMPARE(messages(), QStringList());
    }

    // A Null in a shown column ends the list at that row with the message; the rows before
    // it stay listed.
    void aNullEndsTheFill() {
        document(1, "2026-01-01", "First");
        document(2, "2025-01-01", "Second");
        document(3, "2024-01-01", "Third");
        env->exec("update Vorlane set Bookmark=NULL where IndexID=2");
        screen->Show();
        QCOMPARE(screen.pressed(1), QStringList({"16:Invalid use of Null"}));
        QVERIFY(screen.isShown("lstDocs"));
        QCOMPARE(screen.rows("lstDocs"), QStringList({"1|First||01/Jan/2026|01/Jan/2026|p1"}));
        // In the load the Null only leaves the field empty.
        screen.dblClick("lstDocs", "1");
        env->exec("update Vorlane set Title1=NULL, DocDate=NULL where IndexID=1");
        screen.press(1);
        screen.press(1); // the message of the first row again, the list empty
        messages();
        QCOMPARE(screen.rows("lstDocs"), QStringList());
        QTest::keyClick(screen.ctl("lstDocs"), Qt::Key_Return);
        QCOMPARE(messages(), QStringList());
    }

    // Edit shows the list even when the data store cannot be reached, with the rows of its
    // last filling; a row picked then is not loaded.
    void theListWithoutTheDataStore() {
        document(1, "2026-01-01", "First");
        screen->Show();
        screen.press(1);
        env->removeDatabase();
        screen.press(1);
        QCOMPARE(messages().size(), 1);
        QVERIFY(screen.isShown("lstDocs"));
        QCOMPARE(screen.rows("lstDocs").size(), 1);
        screen.dblClick("lstDocs", "1");
        QCOMPARE(messages().size(), 1);
        QVERIFY(screen.isShown("lstDocs"));
        QVERIFY(!screen->EditMode);
    }

    // The server stopping while a save waits on its Insert: the save tells it, nothing of it
    // stays, and once the server is back the same save goes through.
    void theServerStoppingMidSave() {
        if (!testsupport::onServer())
            QSKIP("The server stops; the embedded file has none.");
        screen->Show();
        fillValid();
        std::atomic<bool> locked = false;
        QString blockerError;
        std::thread other([&] {
            {
                QSqlDatabase db =
                    QSqlDatabase::addDatabase(QStringLiteral("QODBC"), QStringLiteral("blocker"));
                db.setDatabaseName(GenMod::DataSourceName);
                QSqlQuery q(db);
                // Reads go on; the save's Insert waits.
                if (!db.open() || !q.exec("BEGIN") || !q.exec("LOCK TABLE \"Vorlane\" IN EXCLUSIVE MODE"))
                    blockerError = db.lastError().text() + q.lastError().text();
                locked = true;
                // The server stops once the Insert waits on the lock, however slow the seat is.
                for (int i = 0; blockerError.isEmpty() && i < 600; ++i) {
                    QSqlQuery waiting(db);
                    // The waiting save's connection ends first: a server that stops ends the
                    // blocker's too, and the save could take the lock in between.
                    if (waiting.exec("SELECT count(pg_terminate_backend(pid)) FROM pg_stat_activity "
                                     "WHERE wait_event_type = 'Lock'") &&
                        waiting.next() && waiting.value(0).toInt() > 0)
                        break;
                    std::this_thread::sleep_for(std::chrono::milliseconds(50));
                }
                env->takeDatabaseAway();
            }
            QSqlDatabase::removeDatabase(QStringLiteral("blocker"));
        });
        while (!locked)
            std::this_thread::yield();
        screen.press(2);
        other.join();
        QVERIFY2(blockerError.isEmpty(), qPrintable(blockerError));
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        env->bringDatabaseBack();
        QCOMPARE(env->count("Vorlane"), 0);
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(env->count("Vorlane"), 1);
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
        screen->Show();
        for (const QDate& date : {older, newer}) {
            fillValid(QString::number(date.year()));
            screen.ctl<platform::DatePicker>("dtpDocDate")->setValue(date);
            screen.ctl<platform::DatePicker>("dtpFollowUp")->setValue(date);
            screen.press(2);
        }
        QCOMPARE(messages(), QStringList({Saved, Saved}));
        screen.press(1);
        QCOMPARE(screen.rows("lstDocs"), QStringList({QStringLiteral("2|2025||%1|%1|").arg(shown(newer)),
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
