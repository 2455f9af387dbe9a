// The owner's details driven by their controls: insert then update of the one row, the reset
// that keeps EditMode, the "Save" user who writes the row once, a save that closes the screen
// (also when the data store is away), and both letterheads from what the table holds.
#include "addressbooks/frmPersonal.h"
#include "app/MDI.h"
#include "app/Startup.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved successfully.");
const char* const Boxes[] = {"txtName",  "txtAdd1", "txtAdd2", "txtAdd3",
                             "txtPhone", "txtCell", "txtFax",  "txtEmail"};

frmPersonal& form() {
    return frmPersonal::instance();
}

void press(int index) {
    testsupport::press(form(), index);
}

void enter(const QString& fields) {
    const QStringList parts = fields.split(QLatin1Char('|'));
    for (int i = 0; i < 8; ++i)
        testsupport::type(form(), QString::fromLatin1(Boxes[i]), parts.value(i));
}

QString shown() {
    QStringList parts;
    for (const char* box : Boxes)
        parts << testsupport::text(form(), QString::fromLatin1(box));
    return parts.join(QLatin1Char('|'));
}

QString printed(reports::Report& report, const char* control) {
    return report.pages().pages.value(0).textOf(QString::fromLatin1(control)).join(QLatin1Char('/'));
}

} // namespace

class TestPersonal : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString stored() const {
        return env
            ->scalar(
                "select "
                "ID||'|'||FullName||'|'||Add1||'|'||Add2||'|'||Add3||'|'||Phone||'|'||Cell||'|'||Fax||'|'||"
                "Email||'|'||UpdatedBy from Personal")
            .toString();
    }

  private slots:
    void init() {
        form().Unload();
        form().EditMode = false;
        reports::VorlaneDE::instance().reset();
        env = std::make_unique<testsupport::TestEnvironment>();
        testsupport::setSession(1, QStringLiteral("Modify"));
        messages();
    }
    void cleanup() {
        form().Unload();
        reports::VorlaneDE::instance().reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        env.reset();
    }

    void theScreenAsDesigned() {
        form().Show();
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Personal details"));
        const QList<std::pair<const char*, const char*>> captions = {
            {"lblName", "Name :"},     {"lblAddress", "Address :"}, {"lblPhone", "Phone No. :"},
            {"lblCell", "Cell No. :"}, {"lblFax", "Fax No. :"},     {"lblEmail", "Email :"}};
        for (const auto& [label, caption] : captions)
            QCOMPARE(testsupport::ctl<QLabel>(form(), QString::fromLatin1(label))->text(),
                     QString::fromLatin1(caption));
        const QStringList buttons{"Reset", "Save", "Close", "Print Letterhead"};
        for (int i = 0; i < buttons.size(); ++i)
            QCOMPARE(form().cmd(i)->text(), buttons[i]);
        QCOMPARE(form().cmd(4), nullptr);
        QCOMPARE(testsupport::tabOrder(form().window()),
                 QStringList({"txtName", "txtAdd1", "txtAdd2", "txtAdd3", "txtPhone", "txtCell", "txtFax",
                              "txtEmail", "cmd(0)", "cmd(1)", "cmd(2)", "cmd(3)"}));
    }

    // The first save inserts key 1 and closes; the next opening shows it and saves update it.
    // Reset keeps EditMode, so typing a name over it empties the other columns.
    void insertThenUpdate() {
        form().Show();
        QVERIFY(!form().EditMode);
        QCOMPARE(shown(), QStringLiteral("|||||||"));
        enter("   |1 Quay St||||||");
        press(1);
        QCOMPARE(messages(), QStringList({"48:Please specify name."}));
        QVERIFY(form().isLoaded());

        enter(" Hale & Partners |St Mary's Rd|Westport||01632 960101|07700 900101||office@hale.example");
        press(1);
        QCOMPARE(messages(), QStringList({Saved}));
        QVERIFY(!form().isLoaded());
        QCOMPARE(stored(),
                 QStringLiteral("1|Hale & Partners|St Mary`s Rd|Westport||01632 960101|07700 900101||"
                                "office@hale.example|1"));

        form().Show();
        QVERIFY(form().EditMode);
        QCOMPARE(shown(), QStringLiteral("Hale & Partners|St Mary`s Rd|Westport||01632 960101|07700 900101||"
                                         "office@hale.example"));
        press(0);
        QCOMPARE(shown(), QStringLiteral("|||||||"));
        QVERIFY(form().EditMode);
        testsupport::setSession(4, QStringLiteral("Modify"));
        enter("Hale Partners LLP|||||||");
        press(1);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("Personal"), 1);
        QCOMPARE(stored(), QStringLiteral("1|Hale Partners LLP||||||||4"));
    }

    void rightsComeFirst() {
        testsupport::setSession(2, QStringLiteral("User"));
        form().Show();
        press(1);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));

        // "Save" writes the row once, while the table is empty.
        testsupport::setSession(3, QStringLiteral("Save"));
        enter("First|||||||");
        press(1);
        QCOMPARE(messages(), QStringList({Saved}));
        form().Show();
        enter("Second|||||||");
        press(1);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
        QCOMPARE(stored(), QStringLiteral("1|First||||||||3"));
    }

    // Without the data store the screen opens empty to insert; a save reports success after
    // the connection's error and closes, though nothing was written. A failing statement is
    // told, and the screen stays with its values.
    void aMissingDatabase() {
        env->exec("insert into Personal values(1,'Kept','','','','','','','',1)");
        form().EditMode = true;
        env->removeDatabase();
        form().Show();
        QVERIFY(!form().EditMode);
        QCOMPARE(messages().size(), 1);
        enter("Lost|||||||");
        press(1);
        const QStringList told = messages();
        QCOMPARE(told.size(), 2);
        QVERIFY2(told[0].startsWith("48:Database not found !"), qPrintable(told[0]));
        QCOMPARE(told[1], Saved);
        QVERIFY(!form().isLoaded());
        QVERIFY(form().EditMode);

        env->createDatabase();
        form().Show();
        QVERIFY(!form().EditMode);
        env->exec("drop table Personal");
        enter("Hale|||||||");
        press(1);
        const QStringList failed = messages();
        QCOMPARE(failed.size(), 1);
        QVERIFY2(failed[0].startsWith("16:"), qPrintable(failed[0]));
        QVERIFY(form().isLoaded());
        QCOMPARE(shown(), QStringLiteral("Hale|||||||"));
        QVERIFY(!GenMod::Conn);
    }

    // Both letterheads on every press, from the table as first read, not from the boxes: an
    // empty table still shows both, and a row saved since is not seen by the next press.
    void bothLetterheadsFromTheTable() {
        form().Show();
        enter("Typed only|||||||");
        press(3);
        for (reports::Report* report : {&reports::RptLetterHead(), &reports::RptLetterHead2()}) {
            QVERIFY(report->isShown());
            QCOMPARE(printed(*report, "txtFullName"), QString());
        }
        press(1);
        QCOMPARE(messages(), QStringList({Saved}));
        form().Show();
        press(3);
        QCOMPARE(printed(reports::RptLetterHead(), "txtFullName"), QString());
        QCOMPARE(printed(reports::RptLetterHead2(), "txtFullName"), QString());
        QCOMPARE(messages(), QStringList());

        // The toolbar entry opens the screen inside the main window, with the row filled in.
        form().Unload();
        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().entryClick(QStringLiteral("ImgPersonal"));
        QVERIFY(qobject_cast<QMdiSubWindow*>(form().window()->parentWidget()));
        QCOMPARE(shown(), QStringLiteral("Typed only|||||||"));
        form().Unload();
        MDI::instance().Unload();
    }
};

QTEST_MAIN(TestPersonal)
#include "tst_personal.moc"
