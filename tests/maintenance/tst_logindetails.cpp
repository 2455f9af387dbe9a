// The user accounts screen driven by its controls: the rights boxes, the list in the store's
// order, the rights levels at Save, the scrambled statements, and the login that must agree
// with what the screen stored.
#include "maintenance/frmLoginDetails.h"
#include "session/GenMod.h"
#include "session/Session.h"
#include "session/frmLogin.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using namespace testsupport;

namespace {
const QString Saved = QStringLiteral("64:Saved Successfully.");
} // namespace

class TestLoginDetails : public QObject {
    Q_OBJECT
    std::unique_ptr<TestEnvironment> env;
    Screen<frmLoginDetails> screen;

    // The View, Save and Modify boxes, "0|1|0" for Save.
    QString boxes() const { return screen.values("chkView chkAdd chkEdit"); }

    void addUser(int id, const QString& name, const QString& password, const char* rights) const {
        env->exec(QStringLiteral("insert into Logins values(%1,'%2','%3',%4,1)")
                      .arg(id)
                      .arg(GenMod::ScrambleText(name), GenMod::ScrambleText(password), rights));
    }
    QString stored(int id, const char* column) const {
        return env->scalar(QStringLiteral("select %1 from Logins where UserID=%2").arg(column).arg(id))
            .toString();
    }
    // The View, Save and Modify marks of a row, "010" for Save.
    QString rights(int id) const { return stored(id, "View") + stored(id, "Save") + stored(id, "Modify"); }
    void fill(const QString& name, const QString& password) const {
        screen.paste("txtUserName", name);
        screen.paste("txtPassword", password);
    }
    // Logs in through the login screen; true when the main window would open. The session of
    // the test stays as it was.
    bool logsIn(const QString& name, const QString& password) {
        const qint16 user = Session::CurrentUserID;
        const QString rights = Session::UserRights;
        int opened = 0;
        frmLogin::setOnLoggedIn([&] { ++opened; });
        frmLogin::instance().Show();
        frmLogin::instance().control<QLineEdit>("txtUserName")->setText(name);
        frmLogin::instance().control<QLineEdit>("txtPassword")->setText(password);
        frmLogin::instance().cmdLogin_Click();
        frmLogin::instance().Unload();
        frmLogin::setOnLoggedIn({});
        setSession(user, rights);
        messages();
        return opened == 1;
    }

  private slots:
    void init() {
        env = startCase();
        screen->Show();
    }
    void cleanup() { endCase(env); }

    // The password shows "$" for each character; Space ticks a box.
    // The load neither resets nor reads: a row loaded before Close is still the one Save updates.
    void theKeyboardAndTheLoad() {
        auto* password = screen.ctl<QLineEdit>("txtPassword");
        QCOMPARE(password->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, password),
                 int('$'));
        QVERIFY(QTest::qWaitForWindowActive(screen.window()));
        QTest::keyClick(screen.ctl<QCheckBox>("chkEdit"), Qt::Key_Space);
        QCOMPARE(boxes(), QStringLiteral("0|0|1"));
        screen->Unload();

        screen->EditMode = true;
        screen->CurrentRowID = 1;
        screen->Show();
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 1);
        QCOMPARE(boxes(), QStringLiteral("1|0|0"));
        QVERIFY(messages().isEmpty());
    }

    void theRightsBoxesExcludeEachOtherOnlyWhenTicked() {
        screen.ctl<QCheckBox>("chkAdd")->click();
        QCOMPARE(boxes(), QStringLiteral("0|1|0"));
        screen.ctl<QCheckBox>("chkAdd")->click(); // clearing a box touches no other
        QCOMPARE(boxes(), QStringLiteral("0|0|0"));
        screen.ctl<QCheckBox>("chkView")->click();
        screen.ctl<QCheckBox>("chkEdit")->click();
        QCOMPARE(boxes(), QStringLiteral("0|0|1"));
        // A caption flips its box and the rest follows as for a click on the box.
        screen.click("lblView");
        QCOMPARE(boxes(), QStringLiteral("1|0|0"));
        screen.click("lblView");
        QCOMPARE(boxes(), QStringLiteral("0|0|0"));
        screen.click("lblSave");
        QCOMPARE(boxes(), QStringLiteral("0|1|0"));
        screen.click("lblModify");
        QCOMPARE(boxes(), QStringLiteral("0|0|1"));
        // Set from code, as a loaded row sets them: the later box wins.
        addUser(2, "both", "pw", "1,0,1");
        screen.press(1);
        screen.dblClick("lstUsers", "both");
        QCOMPARE(boxes(), QStringLiteral("0|0|1"));
        screen.press(0);
        QCOMPARE(boxes(), QStringLiteral("1|0|0"));
        QCOMPARE(screen.text("txtUserName"), QString());
    }

    void theListShowsPlainNamesInTheStoresOrderAndLoadsARow() {
        addUser(2, "bob", "b-pw", "0,1,0");
        addUser(3, QStringLiteral("Жанна"), QStringLiteral("пароль"), "1,0,0");
        addUser(4, "carol", "c'pw", "0,0,1");
        screen.press(1);
        QVERIFY(screen.isShown("lstUsers"));
        // Descending by the scrambled text, with no sort of its own.
        QCOMPARE(screen.rows("lstUsers"), (QStringList{"Жанна", "admin", "carol", "bob"}));
        screen.dblClick("lstUsers", "carol");
        QVERIFY(!screen.isShown("lstUsers"));
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 4);
        QCOMPARE(screen.values("txtUserName txtPassword chkView chkAdd chkEdit"),
                 QStringLiteral("carol|c'pw|0|0|1"));
        screen.dblClick("lstUsers", "Жанна");
        QCOMPARE(screen.text("txtPassword"), QStringLiteral("пароль"));
    }

    // The fields in their order; a "Save" user adds a user of any level.
    void saveTestsTheFieldsInOrder() {
        setSession(2, QStringLiteral("Save"));
        screen.ctl<QCheckBox>("chkView")->click();
        screen.press(2);
        fill("   ", "pw");
        screen.press(2);
        fill("clerk", "  ");
        screen.press(2);
        fill("clerk", "pw");
        QCOMPARE(screen.pressed(2),
                 (QStringList{"48:Please specify User name.", "48:Please specify User name.",
                              "48:Please specify Password.", "48:Please specify Data rights."}));
        QCOMPARE(screen.text("txtUserName"), QStringLiteral("clerk")); // the fields stay
        screen.click("lblModify");
        QCOMPARE(screen.pressed(2), QStringList{Saved});
        QCOMPARE(rights(2), QStringLiteral("001"));
        QCOMPARE(boxes(), QStringLiteral("1|0|0"));
    }

    void savedRowsHoldScrambledTextsAndTheRightsAsNumbers() {
        setSession(7, QStringLiteral("Modify"));
        fill("  clerk ", "O'Brien \"x\"");
        screen.ctl<QCheckBox>("chkAdd")->click();
        QCOMPARE(screen.pressed(2), QStringList{Saved});
        QCOMPARE(stored(2, "UserName"), GenMod::ScrambleText("clerk"));
        QCOMPARE(stored(2, "Password"), GenMod::ScrambleText("O'Brien \"x\""));
        QCOMPARE(rights(2), QStringLiteral("010"));
        QCOMPARE(stored(2, "UpdatedBy"), QStringLiteral("7"));
        QVERIFY(logsIn("clerk", "O'Brien \"x\""));

        // The same name again is a duplicate; the row's own name is not.
        fill("clerk", "other");
        QCOMPARE(screen.pressed(2), QStringList{"48:Duplicate username not allowed."});
        QCOMPARE(env->count("Logins"), 2);
        screen.press(1);
        screen.dblClick("lstUsers", "clerk");
        screen.type("txtPassword", "new secret");
        screen.click("lblModify");
        QCOMPARE(screen.pressed(2), QStringList{Saved});
        QVERIFY(!screen->EditMode);
        QCOMPARE(rights(2), QStringLiteral("001"));
        QVERIFY(logsIn("clerk", "new secret"));
        QVERIFY(!logsIn("clerk", "O'Brien \"x\""));
        // Renaming onto another user's name is a duplicate too.
        screen.press(1);
        screen.dblClick("lstUsers", "clerk");
        screen.type("txtUserName", "admin");
        QCOMPARE(screen.pressed(2), QStringList{"48:Duplicate username not allowed."});
        QVERIFY(screen->EditMode);
    }

    // The character of code 216 scrambles into a quote: the duplicate test fails and reads as
    // none, then the Insert or Update fails, and nothing is written.
    void theCharacterThatScramblesIntoAQuoteBreaksTheSave() {
        fill(QStringLiteral("\u00D8le"), "pw");
        screen.press(2);
        QCOMPARE(messageKinds(), QStringList({"16:", "16:"}));
        QCOMPARE(env->count("Logins"), 1);
        QCOMPARE(screen.text("txtUserName"), QStringLiteral("\u00D8le"));

        screen.press(1);
        screen.dblClick("lstUsers", "admin");
        screen.type("txtPassword", QStringLiteral("x\u00D8 or 1=1"));
        screen.press(2);
        QCOMPARE(messageKinds(), QStringList{"16:"});
        QVERIFY(screen->EditMode);
        QVERIFY(logsIn("admin", "admin"));
    }

    // A row converted from the old system (scrambled byte by byte in Windows-1252) still lists,
    // loads and logs in; names of the full 25 characters, foreign and quoted, log in.
    void theLoginAndTheScreenAgreeOnEveryName() {
        // "Müller" / "Grüße €" as the old system stored them: 255 minus each Windows-1252 byte.
        env->exec(QStringLiteral("insert into Logins values(9,'\u00B2\u0003\u201C\u201C\u0161\u008D',"
                                 "'\u00B8\u008D\u0003 \u0161\u00DF\u007F',0,1,0,1)"));
        screen.press(1);
        screen.dblClick("lstUsers", QStringLiteral("Müller"));
        QCOMPARE(screen.text("txtPassword"), QStringLiteral("Grüße \u20AC"));
        QCOMPARE(boxes(), QStringLiteral("0|1|0"));
        screen.press(2); // written back unchanged
        QCOMPARE(messages(), QStringList{Saved});
        QCOMPARE(stored(9, "UserName"), QStringLiteral("\u00B2\u0003\u201C\u201C\u0161\u008D"));
        QVERIFY(logsIn(QStringLiteral("Müller"), QStringLiteral("Grüße \u20AC")));

        // Names and passwords of the full 25 characters, with quotes and foreign letters.
        const QString longName = QStringLiteral("O'Hara \"Ζωή\" 张伟 Ey-Arz-xy");
        const QString longPassword = QStringLiteral("p\"'w😀") + QString(19, QLatin1Char('z'));
        fill(longName + QLatin1Char('!'), longPassword);
        QCOMPARE(screen.text("txtUserName"), longName);
        QCOMPARE(screen.pressed(2), QStringList{Saved});
        QVERIFY(logsIn(longName, longPassword));
        QVERIFY(!logsIn(longName, longPassword.left(24)));
    }
};

QTEST_MAIN(TestLoginDetails)
#include "tst_logindetails.moc"
