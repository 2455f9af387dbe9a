// The owner's details driven by their controls: insert then update of the one row, the reset
// that keeps EditMode, a save that closes the screen (also when the data store is away), and
// both letterheads from what the table holds.
#include "addressbooks/frmPersonal.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved successfully.");
const QString Boxes = QStringLiteral("txtName txtAdd1 txtAdd2 txtAdd3 txtPhone txtCell txtFax txtEmail");

QString printed(reports::Report& report, const char* control) {
    return report.pages().pages.value(0).textOf(QString::fromLatin1(control)).join(QLatin1Char('/'));
}

} // namespace

class TestPersonal : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmPersonal> screen;

    void enter(const QString& fields) const { screen.typeEach(Boxes, fields); }
    QString shown() const { return screen.values(Boxes); }

    QString stored() const {
        return env
            ->scalar(
                "select "
                "ID||'|'||FullName||'|'||Add1||'|'||Add2||'|'||Add3||'|'||Phone||'|'||Cell||'|'||Fax||'|'||"
                "Email||'|'||UpdatedBy from Personal")
            .toString();
    }

  private slots:
    void init() { env = testsupport::startCase(); }
    void cleanup() { testsupport::endCase(env); }

    // The first save inserts key 1 and closes; the next opening shows it and saves update it.
    // Reset keeps EditMode, so typing a name over it empties the other columns.
    void insertThenUpdate() {
        screen->Show();
        QVERIFY(!screen->EditMode);
        QCOMPARE(shown(), QStringLiteral("|||||||"));
        enter("   |1 Quay St||||||");
        QCOMPARE(screen.pressed(1), QStringList({"48:Please specify name."}));
        QVERIFY(screen->isLoaded());

        enter(" Hale & Partners |St Mary's Rd|Westport||01632 960101|07700 900101||office@hale.example");
        QCOMPARE(screen.pressed(1), QStringList({Saved}));
        QVERIFY(!screen->isLoaded());
        QCOMPARE(stored(),
                 QStringLiteral("1|Hale & Partners|St Mary`s Rd|Westport||01632 960101|07700 900101||"
                                "office@hale.example|1"));

        screen->Show();
        QVERIFY(screen->EditMode);
        QCOMPARE(shown(), QStringLiteral("Hale & Partners|St Mary`s Rd|Westport||01632 960101|07700 900101||"
                                         "office@hale.example"));
        screen.press(0);
        QCOMPARE(shown(), QStringLiteral("|||||||"));
        QVERIFY(screen->EditMode);
        testsupport::setSession(4, QStringLiteral("Modify"));
        enter("Hale Partners LLP|||||||");
        QCOMPARE(screen.pressed(1), QStringList({Saved}));
        QCOMPARE(env->count("Personal"), 1);
        QCOMPARE(stored(), QStringLiteral("1|Hale Partners LLP||||||||4"));
    }

    // Without the data store the screen opens empty to insert; a save reports success after
    // the connection's error and closes, though nothing was written. A failing statement is
    // told, and the screen stays with its values.
    void aMissingDatabase() {
        env->exec("insert into Personal values(1,'Kept','','','','','','','',1)");
        screen->EditMode = true;
        env->removeDatabase();
        screen->Show();
        QVERIFY(!screen->EditMode);
        QCOMPARE(messages().size(), 1);
        enter("Lost|||||||");
        screen.press(1);
        QCOMPARE(messages(),
                 QStringList(
                     {"48:Database not found !\nPlease check your ODBC Datasource Configuration.", Saved}));
        QVERIFY(!screen->isLoaded());
        QVERIFY(screen->EditMode);

        env->createDatabase();
        screen->Show();
        QVERIFY(!screen->EditMode);
        env->exec("drop table Personal");
        enter("Hale|||||||");
        screen.press(1);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QVERIFY(screen->isLoaded());
        QCOMPARE(shown(), QStringLiteral("Hale|||||||"));
        QVERIFY(!GenMod::Conn);
    }

    // Print Letterhead shows both letterheads from the table, not from the boxes.
    void bothLetterheadsFromTheTable() {
        screen->Show();
        enter("Typed only|||||||");
        screen.press(3);
        for (reports::Report* report : {&reports::RptLetterHead(), &reports::RptLetterHead2()}) {
            QVERIFY(report->isShown());
            QCOMPARE(printed(*report, "txtFullName"), QString());
        }
        QCOMPARE(messages(), QStringList());
    }
};

QTEST_MAIN(TestPersonal)
#include "tst_personal.moc"
