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

frmLoginDetails& screen() {
    return frmLoginDetails::instance();
}

QString boxes() {
    QString out;
    for (const char* name : {"chkView", "chkAdd", "chkEdit"})
        out += ctl<QCheckBox>(screen(), name)->isChecked() ? QLatin1Char('1') : QLatin1Char('0');
    return out;
}

void clickCaption(const char* label) {
    QTest::mouseClick(ctl<QLabel>(screen(), label), Qt::LeftButton);
}

} // namespace

class TestLoginDetails : public QObject {
    Q_OBJECT
    std::unique_ptr<TestEnvironment> env;

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
    void fill(const QString& name, const QString& password) {
        ctl<QLineEdit>(screen(), "txtUserName")->setText(name);
        ctl<QLineEdit>(screen(), "txtPassword")->setText(password);
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
        screen().Unload();
        screen().EditMode = false;
        screen().CurrentRowID = 0;
        env = std::make_unique<TestEnvironment>();
        setSession(1, QStringLiteral("Modify"));
        screen().Show();
        messages();
    }
    void cleanup() {
        screen().Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        env.reset();
    }

    void theScreenOpensAsDesignedAndWorksFromTheKeyboard() {
        QWidget* w = screen().window();
        QVERIFY(QTest::qWaitForWindowActive(w));
        QCOMPARE(w->windowTitle(), QStringLiteral("Login details"));
        for (const auto& [label, caption] : {std::pair{"lblEmail", "User name :"},
                                             {"Label1", "Password :"},
                                             {"lblView", "Only View :"},
                                             {"lblSave", "Save data :"},
                                             {"lblModify", "Modify data :"}})
            QCOMPARE(ctl<QLabel>(screen(), label)->text(), QString::fromLatin1(caption));
        QCOMPARE(ctl<QCheckBox>(screen(), "chkAdd")->accessibleName(), QStringLiteral("Save data :"));
        QCOMPARE(boxes(), QStringLiteral("100"));
        QVERIFY(!isShown(screen(), "lstUsers"));
        auto* password = ctl<QLineEdit>(screen(), "txtPassword");
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        QCOMPARE(password->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, password),
                 int('$'));
        QCOMPARE(password->maxLength(), 25);
        type(screen(), "txtUserName", QString(30, QLatin1Char('n')));
        QCOMPARE(text(screen(), "txtUserName").size(), 25);
        QCOMPARE(tabOrder(w), (QStringList{"txtUserName", "txtPassword", "chkView", "chkAdd", "chkEdit",
                                           "lstUsers", "cmd(0)", "cmd(1)", "cmd(2)", "cmd(3)"}));
        // Space ticks a box; Escape throws nothing typed away.
        QTest::keyClick(ctl<QCheckBox>(screen(), "chkEdit"), Qt::Key_Space);
        QCOMPARE(boxes(), QStringLiteral("001"));
        QTest::keyClick(ctl<QWidget>(screen(), "txtUserName"), Qt::Key_Escape);
        QCOMPARE(text(screen(), "txtUserName").size(), 25);
        screen().Unload();

        // The load neither resets nor reads: a row loaded before Close is still the one Save updates.
        screen().EditMode = true;
        screen().CurrentRowID = 1;
        screen().Show();
        QVERIFY(screen().EditMode);
        QCOMPARE(screen().CurrentRowID, 1);
        QCOMPARE(boxes(), QStringLiteral("100"));
        QVERIFY(messages().isEmpty());
    }

    void theRightsBoxesExcludeEachOtherOnlyWhenTicked() {
        ctl<QCheckBox>(screen(), "chkAdd")->click();
        QCOMPARE(boxes(), QStringLiteral("010"));
        ctl<QCheckBox>(screen(), "chkAdd")->click(); // clearing a box touches no other
        QCOMPARE(boxes(), QStringLiteral("000"));
        ctl<QCheckBox>(screen(), "chkView")->click();
        ctl<QCheckBox>(screen(), "chkEdit")->click();
        QCOMPARE(boxes(), QStringLiteral("001"));
        // A caption flips its box and the rest follows as for a click on the box.
        clickCaption("lblView");
        QCOMPARE(boxes(), QStringLiteral("100"));
        clickCaption("lblView");
        QCOMPARE(boxes(), QStringLiteral("000"));
        clickCaption("lblSave");
        QCOMPARE(boxes(), QStringLiteral("010"));
        clickCaption("lblModify");
        QCOMPARE(boxes(), QStringLiteral("001"));
        // Set from code, as a loaded row sets them: the later box wins.
        addUser(2, "both", "pw", "1,0,1");
        press(screen(), 1);
        dblClick(screen(), "lstUsers", "both");
        QCOMPARE(boxes(), QStringLiteral("001"));
        press(screen(), 0);
        QCOMPARE(boxes(), QStringLiteral("100"));
        QCOMPARE(text(screen(), "txtUserName"), QString());
    }

    void theListShowsPlainNamesInTheStoresOrderAndLoadsARow() {
        addUser(2, "bob", "b-pw", "0,1,0");
        addUser(3, QStringLiteral("Жанна"), QStringLiteral("пароль"), "1,0,0");
        addUser(4, "carol", "c'pw", "0,0,1");
        press(screen(), 1);
        QVERIFY(isShown(screen(), "lstUsers"));
        // Descending by the scrambled text, with no sort of its own.
        QCOMPARE(listRows(screen(), "lstUsers"), (QStringList{"Жанна", "admin", "carol", "bob"}));
        dblClick(screen(), "lstUsers", "carol");
        QVERIFY(!isShown(screen(), "lstUsers"));
        QVERIFY(screen().EditMode);
        QCOMPARE(screen().CurrentRowID, 4);
        QCOMPARE(text(screen(), "txtUserName"), QStringLiteral("carol"));
        QCOMPARE(text(screen(), "txtPassword"), QStringLiteral("c'pw"));
        QCOMPARE(boxes(), QStringLiteral("001"));
        dblClick(screen(), "lstUsers", "Жанна");
        QCOMPARE(text(screen(), "txtPassword"), QStringLiteral("пароль"));

        // A key beyond 16 bits cannot pass the double click; an empty list does nothing.
        addUser(40000, "big", "pw", "1,0,0");
        press(screen(), 1);
        dblClick(screen(), "lstUsers", "big");
        QCOMPARE(messages(), QStringList{"16:Overflow"});
        QCOMPARE(screen().CurrentRowID, 3);
        env->exec("delete from Logins");
        press(screen(), 1);
        QTest::keyClick(ctl<QWidget>(screen(), "lstUsers"), Qt::Key_Return);
        QVERIFY(messages().isEmpty());
    }

    void saveTestsRightsFirstThenTheFieldsInOrder() {
        setSession(2, QStringLiteral("User"));
        ctl<QCheckBox>(screen(), "chkView")->click();
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{"48:You donot have rights to Save or Modify data."});
        setSession(2, QStringLiteral("Save"));
        press(screen(), 2);
        fill("   ", "pw");
        press(screen(), 2);
        fill("clerk", "  ");
        press(screen(), 2);
        fill("clerk", "pw");
        press(screen(), 2);
        QCOMPARE(messages(), (QStringList{"48:Please specify User name.", "48:Please specify User name.",
                                          "48:Please specify Password.", "48:Please specify Data rights."}));
        QCOMPARE(text(screen(), "txtUserName"), QStringLiteral("clerk")); // the fields stay

        // "Save" adds a user, with any level, but may not change one.
        clickCaption("lblModify");
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});
        QCOMPARE(env->count("Logins"), 2);
        QCOMPARE(boxes(), QStringLiteral("100"));
        press(screen(), 1);
        dblClick(screen(), "lstUsers", "clerk");
        for (const char* level : {"Save", ""}) {
            setSession(2, QString::fromLatin1(level));
            press(screen(), 2);
            QCOMPARE(messages(), QStringList{"48:You donot have rights to Modify data."});
        }
        setSession(2, QStringLiteral("User"));
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{"48:You donot have rights to Save or Modify data."});
    }

    void savedRowsHoldScrambledTextsAndTheRightsAsNumbers() {
        setSession(7, QStringLiteral("Modify"));
        fill("  clerk ", "O'Brien \"x\"");
        ctl<QCheckBox>(screen(), "chkAdd")->click();
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});
        QCOMPARE(stored(2, "UserName"), GenMod::ScrambleText("clerk"));
        QCOMPARE(stored(2, "Password"), GenMod::ScrambleText("O'Brien \"x\""));
        QCOMPARE(rights(2), QStringLiteral("010"));
        QCOMPARE(stored(2, "UpdatedBy"), QStringLiteral("7"));
        QVERIFY(logsIn("clerk", "O'Brien \"x\""));

        // The same name again is a duplicate; the row's own name is not.
        fill("clerk", "other");
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{"48:Duplicate username not allowed."});
        QCOMPARE(env->count("Logins"), 2);
        press(screen(), 1);
        dblClick(screen(), "lstUsers", "clerk");
        type(screen(), "txtPassword", "new secret");
        clickCaption("lblModify");
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});
        QVERIFY(!screen().EditMode);
        QCOMPARE(rights(2), QStringLiteral("001"));
        QVERIFY(logsIn("clerk", "new secret"));
        QVERIFY(!logsIn("clerk", "O'Brien \"x\""));
        // Renaming onto another user's name is a duplicate too.
        press(screen(), 1);
        dblClick(screen(), "lstUsers", "clerk");
        type(screen(), "txtUserName", "admin");
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{"48:Duplicate username not allowed."});
        QVERIFY(screen().EditMode);
    }

    // The character of code 216 scrambles into a quote: the duplicate test fails and reads as
    // none, then the Insert or Update fails, and nothing is written.
    void theCharacterThatScramblesIntoAQuoteBreaksTheSave() {
        fill(QStringLiteral("\u00D8le"), "pw");
        press(screen(), 2);
        QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY(shown[0].startsWith("16:") && shown[1].startsWith("16:"));
        QCOMPARE(env->count("Logins"), 1);
        QCOMPARE(text(screen(), "txtUserName"), QStringLiteral("\u00D8le"));

        press(screen(), 1);
        dblClick(screen(), "lstUsers", "admin");
        type(screen(), "txtPassword", QStringLiteral("x\u00D8 or 1=1"));
        press(screen(), 2);
        shown = messages();
        QCOMPARE(shown.size(), 1);
        QVERIFY(shown[0].startsWith("16:"));
        QVERIFY(screen().EditMode);
        QVERIFY(logsIn("admin", "admin"));
    }

    // Names outside Windows-1252 are told apart character by character; a row converted from
    // the old system (scrambled byte by byte in Windows-1252) still lists, loads and logs in.
    void theLoginAndTheScreenAgreeOnEveryName() {
        const QString name = QStringLiteral("Жанна");
        const QString password = QStringLiteral("пароль");
        fill(name, password);
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});
        QVERIFY(logsIn(name, password));
        QVERIFY(!logsIn("?????", "??????"));
        QVERIFY(!logsIn(QStringLiteral("Жанны"), password));
        QVERIFY(!logsIn(name, QStringLiteral("парол\u044C\u044C")));
        fill(QStringLiteral("Жанны"), password); // another name of the same length is no duplicate
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});

        // "Müller" / "Grüße €" as the old system stored them: 255 minus each Windows-1252 byte.
        env->exec(QStringLiteral("insert into Logins values(9,'\u00B2\u0003\u201C\u201C\u0161\u008D',"
                                 "'\u00B8\u008D\u0003 \u0161\u00DF\u007F',0,1,0,1)"));
        press(screen(), 1);
        dblClick(screen(), "lstUsers", QStringLiteral("Müller"));
        QCOMPARE(text(screen(), "txtPassword"), QStringLiteral("Grüße \u20AC"));
        QCOMPARE(boxes(), QStringLiteral("010"));
        press(screen(), 2); // written back unchanged
        QCOMPARE(messages(), QStringList{Saved});
        QCOMPARE(stored(9, "UserName"), QStringLiteral("\u00B2\u0003\u201C\u201C\u0161\u008D"));
        QVERIFY(logsIn(QStringLiteral("Müller"), QStringLiteral("Grüße \u20AC")));

        // Names and passwords of the full 25 characters, with quotes and foreign letters.
        const QString longName = QStringLiteral("O'Hara \"Ζωή\" 张伟 Ey-Arz-xy");
        const QString longPassword = QStringLiteral("p\"'w😀") + QString(19, QLatin1Char('z'));
        QCOMPARE(longName.size(), 25);
        QCOMPARE(longPassword.size(), 25); // the emoji counts as two
        fill(longName + QLatin1Char('!'), longPassword);
        QCOMPARE(text(screen(), "txtUserName"), longName);
        press(screen(), 2);
        QCOMPARE(messages(), QStringList{Saved});
        QVERIFY(logsIn(longName, longPassword));
        QVERIFY(!logsIn(longName, longPassword.left(24)));
    }
};

QTEST_MAIN(TestLoginDetails)
#include "tst_logindetails.moc"
