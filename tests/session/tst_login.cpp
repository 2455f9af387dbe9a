#include "session/GenMod.h"
#include "session/Session.h"
#include "session/frmLogin.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using testsupport::messages;

class TestLogin : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        frmLogin::setOnLoggedIn([this] { ++m_loggedIn; });
        frmLogin::setOnEnd([this] { ++m_ended; });
    }
    void init() {
        m_env = testsupport::startCase();
        testsupport::setSession(0, QString());
        m_loggedIn = 0;
        screen->Show();
    }
    void cleanup() { testsupport::endCase(m_env); }

    void emptyFieldsAreAskedForInOrder() {
        login("   ", "   ");
        QCOMPARE(messages(), QStringList{"48:Please specify Username."});
        login("admin", "");
        QCOMPARE(messages(), QStringList{"48:Please specify Password."});
        QCOMPARE(m_loggedIn, 0);
    }

    void goodLoginFillsTheSessionAndOpensTheMainWindow() {
        login("  admin ", " admin  ");
        QVERIFY(messages().isEmpty());
        QCOMPARE(m_loggedIn, 1);
        QVERIFY(!screen->isLoaded());
        QCOMPARE(Session::UserRights, QStringLiteral("Modify"));
        QCOMPARE(Session::CurrentUserID, qint16(1));
        QVERIFY(!GenMod::Conn);
    }

    void wrongPasswordKeepsTheScreenAsItWas() {
        login("admin", "Admin");
        QCOMPARE(messages(), QStringList{"48:Invalid Username or Password."});
        QCOMPARE(box("txtUserName")->text(), QStringLiteral("admin"));
        QCOMPARE(box("txtPassword")->text(), QStringLiteral("Admin"));
        login("admin", "admin"); // no limit on attempts
        QCOMPARE(m_loggedIn, 1);
    }

    void craftedNamesNeverLogAnyoneIn_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        // Texts that scramble into clauses of the login's statement.
        const auto s = [](const char* t) { return GenMod::ScrambleText(QString::fromLatin1(t)); };
        QTest::newRow("or clause in both") << s("x' or 'a'='a") << s("x' or 'a'='a");
        QTest::newRow("real name, or clause") << QStringLiteral("admin") << s("x' or '1'='1");
        QTest::newRow("comment") << s("admin'--") << QStringLiteral("anything");
        QTest::newRow("second statement") << s("x'; delete from Logins; select '") << QStringLiteral("pw");
        QTest::newRow("quote from code 216") << QString(QChar(216)) << QString(QChar(216));
        QTest::newRow("outside the code page")
            << QStringLiteral("\u03A9\u4E2D") << QStringLiteral("\U0001F600");
        QTest::newRow("double quotes") << s("\"admin\"") << s("\"admin\"");
    }
    void craftedNamesNeverLogAnyoneIn() {
        QFETCH(QString, user);
        QFETCH(QString, password);
        login(user, password);
        QCOMPARE(m_loggedIn, 0);
        QCOMPARE(messages().constLast(), QStringLiteral("48:Invalid Username or Password."));
        QCOMPARE(m_env->count("Logins"), 1);
        QVERIFY(screen->isLoaded());
    }

    void longPastedTextIsCutAtTheLimit() {
        box("txtUserName")->insert(QString(10000, QLatin1Char('a')));
        QCOMPARE(box("txtUserName")->text().size(), 50);
        box("txtPassword")->setText(QStringLiteral("admin"));
        QTest::mouseClick(button("cmdLogin"), Qt::LeftButton);
        QCOMPARE(messages(), QStringList{"48:Invalid Username or Password."});
    }

    void aFailedRightsReadStillLogsIn() {
        // A Logins table without its rights columns: the rights cannot be read.
        m_env->exec("create table L2 as select UserID, UserName, Password, UpdatedBy from Logins");
        m_env->exec("drop table Logins");
        m_env->exec("alter table L2 rename to Logins");
        Session::UserRights = QStringLiteral("stale");
        login("admin", "admin");
        QCOMPARE(testsupport::messageKinds(), QStringList{"16:"});
        QCOMPARE(m_loggedIn, 1);
        QVERIFY(Session::UserRights.isEmpty());
    }

    void keyboardWorksTheScreen() {
        auto* user = box("txtUserName");
        user->setText(QStringLiteral("admin"));
        box("txtPassword")->setText(QStringLiteral("admin"));
        QTest::keyClick(box("txtPassword"), Qt::Key_Return);
        QCOMPARE(m_loggedIn, 1);
    }

    void escapeAndCancelEndTheProgram() {
        const int before = m_ended;
        QTest::keyClick(box("txtUserName"), Qt::Key_Escape);
        QTest::mouseClick(button("cmdCancel"), Qt::LeftButton);
        QCOMPARE(m_ended, before + 2);
    }

  private:
    QLineEdit* box(const char* name) { return screen.ctl<QLineEdit>(name); }
    QPushButton* button(const char* name) { return screen.ctl<QPushButton>(name); }
    void login(const QString& user, const QString& password) {
        screen.paste("txtUserName", user);
        screen.paste("txtPassword", password);
        QTest::mouseClick(button("cmdLogin"), Qt::LeftButton);
    }

    std::unique_ptr<testsupport::TestEnvironment> m_env;
    testsupport::Screen<frmLogin> screen;
    int m_loggedIn = 0;
    int m_ended = 0;
};

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
