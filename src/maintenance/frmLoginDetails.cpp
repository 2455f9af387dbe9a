#include "frmLoginDetails.h"

#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/Error.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

using platform::TrimStr;

namespace {

constexpr int NameLength = 25;
constexpr int ListHeight = 110;

// A check box's value: 0 clear, 1 ticked, 2 greyed.
int value(const QCheckBox* box) {
    switch (box->checkState()) {
    case Qt::Checked:
        return 1;
    case Qt::PartiallyChecked:
        return 2;
    default:
        return 0;
    }
}

// Setting the value from code raises the box's click, as a user's click does, when it changes.
void setValue(QCheckBox* box, int newValue) {
    static const Qt::CheckState states[] = {Qt::Unchecked, Qt::Checked, Qt::PartiallyChecked};
    if (newValue < 0 || newValue > 2)
        throw platform::Error(380, QStringLiteral("Invalid property value"));
    box->setCheckState(states[newValue]);
}

// A caption flips its box: a ticked box is cleared, any other ticked.
void flip(QCheckBox* box) {
    setValue(box, value(box) == 1 ? 0 : 1);
}

QString number(qint64 n) {
    return QString::number(n);
}

} // namespace

frmLoginDetails& frmLoginDetails::instance() {
    static auto* form = new frmLoginDetails;
    return *form;
}

QWidget* frmLoginDetails::build() {
    ScreenBuilder screen(QStringLiteral("frmLoginDetails"), QStringLiteral("Login details"));
    screen.addTextField(ui.lblEmail, QStringLiteral("User name :"), ui.txtUserName, NameLength);
    auto* password = screen.addTextField(ui.Label1, QStringLiteral("Password :"), ui.txtPassword, NameLength);
    platform::setPasswordCharacter(password, QLatin1Char('$'));
    screen.addCheckField(ui.lblView, QStringLiteral("Only View :"), ui.chkView, [this] { lblView_Click(); });
    screen.addCheckField(ui.lblSave, QStringLiteral("Save data :"), ui.chkAdd, [this] { lblSave_Click(); });
    screen.addCheckField(ui.lblModify, QStringLiteral("Modify data :"), ui.chkEdit,
                         [this] { lblModify_Click(); });
    screen.addLine(ui.Line1);
    // As designed, a new screen proposes the lowest rights.
    ui.chkView->setChecked(true);
    // The list lies exactly over the fields: its own wish for room does not make the screen taller.
    auto* list = screen.addListOver(ui.lstUsers, ListHeight);
    QSizePolicy policy = list->sizePolicy();
    policy.setVerticalPolicy(QSizePolicy::Ignored);
    list->setSizePolicy(policy);
    screen.addButtons(createCmdButtons(screen.window(), editCaptions()));

    connect(ui.chkView, &QCheckBox::stateChanged, this, [this] { chkView_Click(); });
    connect(ui.chkAdd, &QCheckBox::stateChanged, this, [this] { chkAdd_Click(); });
    connect(ui.chkEdit, &QCheckBox::stateChanged, this, [this] { chkEdit_Click(); });
    connect(ui.lstUsers, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstUsers_DblClick(); }); });
    return screen.finish();
}

// Reads nothing and resets nothing: the boxes stand as designed.
void frmLoginDetails::Form_Load() {
    prepareWindow();
}

void frmLoginDetails::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetUserForm();
        break;
    case 1:
        ShowUserList();
        break;
    case 2:
        SaveUser();
        break;
    case 3:
        Unload();
        break;
    default:
        break;
    }
}

void frmLoginDetails::chkView_Click() {
    if (value(ui.chkView) == 1) {
        setValue(ui.chkAdd, 0);
        setValue(ui.chkEdit, 0);
    }
}

void frmLoginDetails::chkAdd_Click() {
    if (value(ui.chkAdd) == 1) {
        setValue(ui.chkView, 0);
        setValue(ui.chkEdit, 0);
    }
}

void frmLoginDetails::chkEdit_Click() {
    if (value(ui.chkEdit) == 1) {
        setValue(ui.chkView, 0);
        setValue(ui.chkAdd, 0);
    }
}

void frmLoginDetails::lblView_Click() {
    flip(ui.chkView);
    chkView_Click();
}

void frmLoginDetails::lblSave_Click() {
    flip(ui.chkAdd);
    chkAdd_Click();
}

void frmLoginDetails::lblModify_Click() {
    flip(ui.chkEdit);
    chkEdit_Click();
}

void frmLoginDetails::ResetUserForm() {
    resetRecord(ui.lstUsers, [this] { ClearUserFields(); });
    setValue(ui.chkView, 1);
}

void frmLoginDetails::ClearUserFields() {
    clearTextBoxesAndKey();
    for (auto* box : window()->findChildren<QCheckBox*>())
        setValue(box, 0);
}

void frmLoginDetails::ShowUserList() {
    showRecordList(ui.lstUsers, [this] {
        GenMod::FillUserList(QStringLiteral("UserID, UserName"),
                             QStringLiteral("Logins order by UserName DESC"), ui.lstUsers);
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmLoginDetails::lstUsers_DblClick() {
    if (const auto key = chosenKey(ui.lstUsers))
        LoadUser(*key);
}

void frmLoginDetails::LoadUser(qint16 key) {
    loadRecord(
        key, QStringLiteral("Select * from Logins where UserID=") + number(key), ui.lstUsers,
        [this](db::Recordset& rs) {
            ui.txtUserName->setText(GenMod::ScrambleText(TrimStr(rs.Fields(QStringLiteral("UserName")))));
            ui.txtPassword->setText(GenMod::ScrambleText(TrimStr(rs.Fields(QStringLiteral("Password")))));
            setValue(ui.chkView, platform::CInt(rs.Fields(QStringLiteral("View"))));
            setValue(ui.chkAdd, platform::CInt(rs.Fields(QStringLiteral("Save"))));
            setValue(ui.chkEdit, platform::CInt(rs.Fields(QStringLiteral("Modify"))));
        });
}

// The name and the password go into the statements scrambled, without a quote swap: a
// character that scrambles into a quote breaks the statement, and the save fails.
void frmLoginDetails::SaveUser() {
    const QString name = TrimStr(ui.txtUserName->text());
    const QString password = TrimStr(ui.txtPassword->text());
    const auto rights = [this] {
        return number(value(ui.chkView)) + QLatin1Char(',') + number(value(ui.chkAdd)) + QLatin1Char(',') +
               number(value(ui.chkEdit));
    };
    SaveSteps steps;
    steps.required = {
        {[&] { return name.isEmpty(); }, QStringLiteral("Please specify User name.")},
        {[&] { return password.isEmpty(); }, QStringLiteral("Please specify Password.")},
        {[this] { return value(ui.chkAdd) == 0 && value(ui.chkEdit) == 0 && value(ui.chkView) == 0; },
         QStringLiteral("Please specify Data rights.")},
    };
    steps.duplicateFields = QStringLiteral("UserName");
    steps.duplicateSource = [&] {
        QString source = QStringLiteral("Logins where username='") + GenMod::ScrambleText(name);
        if (EditMode)
            return source + QStringLiteral("' and UserID <>") + number(CurrentRowID);
        return source + QLatin1Char('\'');
    };
    steps.duplicateMessage = QStringLiteral("Duplicate username not allowed.");
    steps.keyColumn = QStringLiteral("UserID");
    steps.table = QStringLiteral("Logins");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into Logins values(") + number(CurrentRowID) + QStringLiteral(",'") +
               GenMod::ScrambleText(name) + QStringLiteral("','") + GenMod::ScrambleText(password) +
               QStringLiteral("',") + rights() + QLatin1Char(',') + number(Session::CurrentUserID) +
               QLatin1Char(')');
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update Logins Set UserName='") + GenMod::ScrambleText(name) +
               QStringLiteral("',Password='") + GenMod::ScrambleText(password) + QStringLiteral("',View=") +
               number(value(ui.chkView)) + QStringLiteral(",Save=") + number(value(ui.chkAdd)) +
               QStringLiteral(",Modify=") + number(value(ui.chkEdit)) + QStringLiteral(",UpdatedBy=") +
               number(Session::CurrentUserID) + QStringLiteral(" where UserID=") + number(CurrentRowID);
    };
    steps.reset = [this] { ResetUserForm(); };
    saveRecord(steps);
}
