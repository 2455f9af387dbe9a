// The file register driven by its controls: the required number, duplicates, the list view
// with its hidden key lying over the fields, the lifecycle, and printing the register.
#include "classification/frmFile.h"
#include "platform/Controls.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");
const QString Duplicate = QStringLiteral("48:Duplicate File number not allowed.");

QStringList printedNumbers() {
    QStringList out;
    for (const auto& page : reports::RptFileList().pages().pages)
        out << page.textOf(QStringLiteral("txtFileNumber"));
    return out;
}

} // namespace

class TestFileRegister : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmFile> screen;

    // The rows of the list as "key|number|particulars".
    void enter(const QString& number, const QString& particulars) const {
        screen.type("txtFileNo", number);
        screen.type("txtParticulars", particulars);
    }
    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from File where FileID=%2").arg(column).arg(id))
            .toString();
    }

  private slots:
    void init() { env = testsupport::startCase(); }
    void cleanup() { testsupport::endCase(env); }

    // The list lies over both text boxes and leaves every button free; while it is shown the
    // keyboard works the list and the buttons only. The screen opens without the data store.
    void theListCoversTheFieldsAndKeyboardUseWorks() {
        env->removeDatabase();
        screen->Show();
        QCOMPARE(messages(), QStringList());
        env->createDatabase();
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        QWidget* w = screen.window();
        w->resize(w->sizeHint());
        QCoreApplication::processEvents();

        screen.press(1);
        QVERIFY(screen.isShown("lstFile"));
        QCoreApplication::processEvents();
        const QRect cover = screen.ctl<platform::ListView>("lstFile")->geometry();
        // Compared in the window's coordinates, since the boxes lie in a panel of their own.
        const auto inWindow = [&](const char* name) {
            QWidget* box = screen.ctl(name);
            return QRect(box->mapTo(w, QPoint(0, 0)), box->size());
        };
        QVERIFY(cover.contains(inWindow("txtFileNo")));
        QVERIFY(cover.contains(inWindow("txtParticulars")));
        // Labels and boxes keep visible gaps between them.
        QVERIFY(inWindow("txtParticulars").top() - inWindow("txtFileNo").bottom() > 4);
        QVERIFY(inWindow("txtFileNo").left() - inWindow("lblEmail").right() > 4);
        for (int i = 0; i < 5; ++i) {
            QVERIFY(!cover.intersects(screen->cmd(i)->geometry()));
            QVERIFY(w->rect().contains(screen->cmd(i)->geometry()));
        }
        QCOMPARE(screen.focus(), screen.ctl<platform::ListView>("lstFile"));

        // Tab from the list reaches the buttons, never the covered boxes.
        QStringList visited;
        QWidget* at = screen.ctl<platform::ListView>("lstFile");
        for (int i = 0; i < 7; ++i) {
            at = at->nextInFocusChain();
            while (!(at->focusPolicy() & Qt::TabFocus) || !w->isAncestorOf(at) || !at->isVisibleTo(w))
                at = at->nextInFocusChain();
            visited << at->objectName();
        }
        QCOMPARE(visited,
                 QStringList({"cmd(0)", "cmd(1)", "cmd(2)", "cmd(3)", "cmd(4)", "lstFile", "cmd(0)"}));

        // Arrow to the row and Enter loads it; the boxes take the keyboard again.
        QTest::keyClick(screen.ctl<platform::ListView>("lstFile"), Qt::Key_Down);
        QTest::keyClick(screen.ctl<platform::ListView>("lstFile"), Qt::Key_Return);
        QVERIFY(screen->EditMode);
        QVERIFY(!screen.isShown("lstFile"));
        QCOMPARE(screen.focus(), screen.ctl("txtFileNo"));
        QVERIFY(screen.ctl("txtParticulars")->focusPolicy() & Qt::TabFocus);
        QCOMPARE(messages(), QStringList());
    }

    // Only the number is required; the particulars may stay empty: stored as an empty text,
    // which the list reads back.
    void onlyTheNumberIsRequired() {
        screen->Show();
        testsupport::setSession(3, QStringLiteral("Save"));
        enter("   ", "Bank statements");
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify File Number."}));
        QCOMPARE(screen.text("txtParticulars"), QStringLiteral("Bank statements"));

        enter("  F-001  ", "");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("FileNumber||'|'||Particulars||'|'||UpdatedBy", 1), QStringLiteral("F-001||3"));
        QCOMPARE(screen.text("txtFileNo"), QString());
        QVERIFY(!screen->EditMode);
    }

    void theNumberIsUniqueAndTheParticularsMayRepeat() {
        env->exec("insert into File values(1,'F-001','Tax returns',1),(2,'A-7','Leases',1)");
        screen->Show();

        // A new row: the same number in other letter case is the same number.
        enter("f-001", "Other");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        QCOMPARE(screen.values("txtFileNo txtParticulars"), QStringLiteral("f-001|Other"));
        QVERIFY(!GenMod::Conn);

        // Same particulars as another file.
        enter("F-002", "Tax returns");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 3), QStringLiteral("Tax returns"));

        // An edited row may keep its own number, but not take another's.
        screen.press(1);
        screen.dblClick("lstFile", "A-7", 1);
        screen.type("txtParticulars", "Leases and deeds");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 2), QStringLiteral("Leases and deeds"));
        screen.press(1);
        screen.dblClick("lstFile", "A-7", 1);
        screen.type("txtFileNo", "F-002");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 2);
        screen.type("txtFileNo", "a-8");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("FileNumber", 2), QStringLiteral("a-8"));
        QCOMPARE(env->count("File"), 3);
    }

    void anApostrophe() {
        env->exec("insert into File values(1,'O`Neil 1','Estate',1)");
        screen->Show();
        // In the number it breaks the duplicate test, which says so and reads as no duplicate;
        // the row is stored with a back-tick.
        enter("O'Neil 1", "Estate");
        screen.press(2);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:", Saved}));
        QCOMPARE(stored("FileNumber", 2), QStringLiteral("O`Neil 1"));

        // In the particulars alone it passes quietly.
        enter("F-9", "Tom's deeds");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 3), QStringLiteral("Tom`s deeds"));
    }

    void theListSortsAsTextAndLoadsThroughItsHiddenKey() {
        env->exec("insert into File values(1,'9','Nine',1),(2,'10','  Ten  ',1),(3,'B-2','Two',1)");
        screen->Show();
        enter("typed", "kept");

        screen.press(1);
        QCOMPARE(screen.rows("lstFile"), QStringList({"2|10|Ten", "1|9|Nine", "3|B-2|Two"}));
        // Edit does not touch what was typed, and a second Edit fills afresh.
        QCOMPARE(screen.text("txtFileNo"), QStringLiteral("typed"));
        env->exec("insert into File values(4,'1','One',1)");
        screen.press(1);
        QCOMPARE(screen.rows("lstFile"), QStringList({"4|1|One", "2|10|Ten", "1|9|Nine", "3|B-2|Two"}));

        screen.dblClick("lstFile", "10", 1);
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 2);
        QCOMPARE(screen.values("txtFileNo txtParticulars"), QStringLiteral("10|Ten"));
        QVERIFY(!screen.isShown("lstFile"));
        QCOMPARE(messages(), QStringList());
    }

    // The key passes through 16 bits: 32767 loads, 40000 is an overflow; an empty list or
    // no row chosen loads nothing.
    void theDoubleClickReadsTheKeyThroughSixteenBits() {
        screen->Show();
        screen.press(1);
        emit screen.ctl<platform::ListView>("lstFile")->DblClick(); // empty list: nothing
        QCOMPARE(messages(), QStringList());

        env->exec("insert into File values(40000,'Big','Past the limit',1),(32767,'Edge','At the limit',1)");
        screen.press(1);
        screen.dblClick("lstFile", "Big", 1);
        QCOMPARE(messages(), QStringList({"16:Overflow"}));
        QVERIFY(!screen->EditMode);
        QVERIFY(screen.isShown("lstFile"));
        screen.ctl<platform::ListView>("lstFile")->setCurrentIndex(QModelIndex());
        emit screen.ctl<platform::ListView>("lstFile")->DblClick();
        QCOMPARE(messages().size(), 1);

        screen.dblClick("lstFile", "Edge", 1);
        QCOMPARE(screen->CurrentRowID, 32767);
        QCOMPARE(screen.text("txtParticulars"), QStringLiteral("At the limit"));
        QCOMPARE(messages(), QStringList());
    }

    void aNullParticularsEndsTheFillWithTheRowsReadSoFar() {
        env->exec("insert into File values(1,'A-1','First',1),(2,'B-1',NULL,1),(3,'C-1','Third',1)");
        screen->Show();
        screen.press(1);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QVERIFY(screen.isShown("lstFile"));
        QCOMPARE(screen.rows("lstFile"), QStringList({"1|A-1|First"}));
        QVERIFY(!GenMod::Conn);
        screen.dblClick("lstFile", "A-1", 1);
        QCOMPARE(screen->CurrentRowID, 1);
        QCOMPARE(messages(), QStringList());
    }

    // Close keeps the instance's values, but opening again starts with a new row.
    void closeDropsTypedTextAndReopeningStartsNew() {
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        screen->Show();
        screen.press(1);
        screen.dblClick("lstFile", "F-001", 1);
        screen.type("txtParticulars", "Changed but not saved");
        screen.press(3);
        QVERIFY(!screen->isLoaded());
        QVERIFY(screen->EditMode);
        QCOMPARE(stored("Particulars", 1), QStringLiteral("Tax returns"));

        screen->Show();
        QVERIFY(!screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 0);
        QCOMPARE(screen.text("txtFileNo"), QString());
        QVERIFY(!screen.isShown("lstFile"));
        enter("F-002", "Post");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(env->count("File"), 2);
        QCOMPARE(stored("Particulars", 1), QStringLiteral("Tax returns"));
    }

    // Print List shows the register in number order to any user, whatever the list shows; a
    // missing database is told in the data layer's own words, which name the missing file or
    // the server that is not there, and printing goes on once the database is back.
    void printListAndAMissingDatabase() {
        env->exec("insert into File values(1,'F-002','Tax returns',1),(2,'F-001','Bank statements',1)");
        testsupport::setSession(2, QStringLiteral("User"));
        screen->Show();
        QCOMPARE(screen.pressed(4), QStringList());
        QVERIFY(!screen.isShown("lstFile"));
        QVERIFY(reports::RptFileList().isShown());
        QCOMPARE(printedNumbers(), QStringList({"F-001", "F-002"}));
        QCOMPARE(reports::RptFileList().pages().pages[0].textOf("txtParticulars"),
                 QStringList({"Bank statements", "Tax returns"}));

        reports::VorlaneDE::instance().reset();
        env->removeDatabase();
        screen.press(4);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].startsWith("16:") &&
                     shown[0].contains(testsupport::onServer() ? "connection to server" : "Vorlane.mdb"),
                 qPrintable(shown[0]));
        QCOMPARE(reports::VorlaneDE::instance().rscmdFileList().State(), int(db::adStateClosed));
        QVERIFY(screen->isLoaded());
        env->createDatabase();
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        QCOMPARE(screen.pressed(4), QStringList());
        QCOMPARE(printedNumbers(), QStringList({"F-001"}));
    }
};

QTEST_MAIN(TestFileRegister)
#include "tst_file.moc"
