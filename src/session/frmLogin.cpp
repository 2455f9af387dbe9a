#include "frmLogin.h"

#include "GenMod.h"
#include "Session.h"
#include "platform/Controls.h"
#include "platform/MsgBox.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

namespace {

std::function<void()> g_onLoggedIn;
std::function<void()> g_onEnd = [] { QCoreApplication::exit(0); };

// The login window: Enter presses Login, Escape and closing the frame end the program.
class LoginWindow : public QDialog {
  public:
    using QDialog::QDialog;
    void reject() override { frmLogin::instance().cmdCancel_Click(); }

  protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        frmLogin::instance().cmdCancel_Click();
    }
    void paintEvent(QPaintEvent*) override {
        static const QPixmap background(QStringLiteral(":/images/LoginBackground"));
        QPainter p(this);
        if (!background.isNull())
            p.drawPixmap(rect(), background);
    }
};

// True when a row of the login's statement holds exactly the typed name and password. A name
// or password that reads as a clause of the statement finds rows, but never its own text.
bool exactUserRow(const QString& statement, const QString& scrambledName, const QString& scrambledPassword) {
    db::Recordset rs;
    rs.Open(statement, GenMod::Conn, db::adOpenStatic, db::adLockReadOnly, -1);
    bool found = false;
    while (!found && !rs.eof()) {
        found = rs.Fields(QStringLiteral("UserName")).toString() == scrambledName &&
                rs.Fields(QStringLiteral("Password")).toString() == scrambledPassword;
        rs.MoveNext();
    }
    rs.Close();
    return found;
}

} // namespace

frmLogin& frmLogin::instance() {
    static auto* form = new frmLogin;
    return *form;
}

void frmLogin::setOnLoggedIn(std::function<void()> action) {
    g_onLoggedIn = std::move(action);
}
void frmLogin::setOnEnd(std::function<void()> action) {
    g_onEnd = std::move(action);
}

QWidget* frmLogin::build() {
    auto* w = new LoginWindow;
    w->setObjectName(QStringLiteral("frmLogin"));
    w->setWindowTitle(QStringLiteral("Vorlane Login"));
    w->setFixedSize(420, 230);

    auto* title = ui.Label1.make(w);
    title->setText(QStringLiteral("Vorlane"));
    QFont big = title->font();
    big.setPointSize(22);
    big.setBold(true);
    title->setFont(big);
    auto* label2 = ui.Label2.make(w);
    label2->setText(QStringLiteral("Username :"));
    auto* label3 = ui.Label3.make(w);
    label3->setText(QStringLiteral("Password :"));
    auto* user = ui.txtUserName.make(w);
    user->setMaxLength(50);
    auto* password = ui.txtPassword.make(w);
    password->setMaxLength(50);
    platform::setPasswordCharacter(password, QLatin1Char('$'));
    // Enter in a box presses Login; Enter on a focused button presses that button.
    auto* login = ui.cmdLogin.make(w);
    login->setText(QStringLiteral("Login"));
    login->setDefault(true);
    auto* cancel = ui.cmdCancel.make(w);
    cancel->setText(QStringLiteral("Cancel"));
    platform::setBuddy(label2, user);
    platform::setBuddy(label3, password);

    auto* grid = new QGridLayout(w);
    grid->setContentsMargins(32, 20, 32, 24);
    grid->setVerticalSpacing(10);
    grid->addWidget(title, 0, 0, 1, 3, Qt::AlignLeft);
    grid->setRowStretch(1, 1);
    grid->addWidget(label2, 2, 0);
    grid->addWidget(user, 2, 1, 1, 2);
    grid->addWidget(label3, 3, 0);
    grid->addWidget(password, 3, 1, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(login);
    buttons->addWidget(cancel);
    grid->addLayout(buttons, 4, 0, 1, 3);

    QWidget::setTabOrder(user, password);
    QWidget::setTabOrder(password, login);
    QWidget::setTabOrder(login, cancel);
    user->setFocus();

    QObject::connect(login, &QPushButton::clicked, this, [this] { cmdLogin_Click(); });
    QObject::connect(cancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    return w;
}

void frmLogin::cmdLogin_Click() {
    const QString userName = ui.txtUserName->text().trimmed();
    const QString password = ui.txtPassword->text().trimmed();
    if (userName.isEmpty()) {
        platform::MsgBox(QStringLiteral("Please specify Username."), platform::vbExclamation);
        return;
    }
    if (password.isEmpty()) {
        platform::MsgBox(QStringLiteral("Please specify Password."), platform::vbExclamation);
        return;
    }
    try {
        if (!GenMod::OpenConnection())
            return;
        const QString name = GenMod::ScrambleText(userName);
        const QString secret = GenMod::ScrambleText(password);
        const QString where = QStringLiteral("UserName='") + name + QStringLiteral("' and Password='") +
                              secret + QStringLiteral("'");
        if (!GenMod::RecordExists(QStringLiteral("UserID"), QStringLiteral("Logins where ") + where) ||
            !exactUserRow(QStringLiteral("Select UserName, Password from Logins where ") + where, name,
                          secret)) {
            GenMod::CloseConnection();
            platform::MsgBox(QStringLiteral("Invalid Username or Password."), platform::vbExclamation);
            return;
        }
        Session::UserRights = GenMod::ReadUserRights(
            QStringLiteral("Select UserID, View, Save, Modify from Logins where ") + where);
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
        return;
    }
    Unload();
    if (g_onLoggedIn)
        g_onLoggedIn();
}

void frmLogin::cmdCancel_Click() {
    if (g_onEnd)
        g_onEnd();
}
