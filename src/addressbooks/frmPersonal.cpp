#include "frmPersonal.h"

#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

using platform::TrimStr;

namespace {
constexpr int FieldWidth = 360;
} // namespace

frmPersonal& frmPersonal::instance() {
    static auto* form = new frmPersonal;
    return *form;
}

QWidget* frmPersonal::build() {
    ScreenBuilder screen(QStringLiteral("frmPersonal"), QStringLiteral("Personal details"));
    screen.addField(ui.lblName, QStringLiteral("Name :"), ui.txtName)->setMinimumWidth(FieldWidth);
    screen.addField(ui.lblAddress, QStringLiteral("Address :"), ui.txtAdd1);
    screen.addFieldUnder(ui.txtAdd2);
    screen.addFieldUnder(ui.txtAdd3);
    screen.addField(ui.lblPhone, QStringLiteral("Phone No. :"), ui.txtPhone);
    screen.addField(ui.lblCell, QStringLiteral("Cell No. :"), ui.txtCell);
    screen.addField(ui.lblFax, QStringLiteral("Fax No. :"), ui.txtFax);
    screen.addField(ui.lblEmail, QStringLiteral("Email :"), ui.txtEmail);
    // No Edit here: Save is cmd(1) and Close cmd(2).
    screen.addButtons(
        createCmdButtons(screen.window(), {QStringLiteral("Reset"), QStringLiteral("Save"),
                                           QStringLiteral("Close"), QStringLiteral("Print Letterhead")}));
    return screen.finish();
}

// Any row at all counts as the row: Save then updates key 1. Without a connection the screen
// opens empty, to insert.
void frmPersonal::Form_Load() {
    prepareWindow();
    EditMode = false;
    readAtLoad(Pointer::Unchanged, [this] {
        EditMode = GenMod::RecordExists(QStringLiteral("*"), QStringLiteral("Personal"));
        if (EditMode)
            LoadPersonal();
    });
}

void frmPersonal::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetPersonalForm();
        break;
    case 1:
        SavePersonal();
        break;
    case 2:
        Unload();
        break;
    case 3:
        PrintLetterhead();
        break;
    default:
        break;
    }
}

// Expects an open connection; errors reach the caller.
void frmPersonal::LoadPersonal() {
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from Personal where ID=1"), GenMod::Conn, db::adOpenStatic,
            db::adLockReadOnly, -1);
    if (!rs.eof()) {
        const auto field = [&rs](const char* column) {
            return TrimStr(rs.Fields(QString::fromLatin1(column)));
        };
        ui.txtName->setText(field("FullName"));
        ui.txtAdd1->setText(field("Add1"));
        ui.txtAdd2->setText(field("Add2"));
        ui.txtAdd3->setText(field("Add3"));
        ui.txtPhone->setText(field("Phone"));
        ui.txtCell->setText(field("Cell"));
        ui.txtFax->setText(field("Fax"));
        ui.txtEmail->setText(field("Email"));
    }
    rs.Close();
}

// Empties the boxes only: EditMode stays, so a Save after it overwrites the stored row.
void frmPersonal::ResetPersonalForm() {
    platform::clearTextBoxes(window());
}

// With rights "Save" the row can be written once, while the table is empty. A connection that
// cannot be opened skips the writing, yet the save is reported and the screen closes.
void frmPersonal::SavePersonal() {
    if (!Session::MaySave(EditMode))
        return;
    const QString name = TrimStr(ui.txtName->text());
    if (name.isEmpty()) {
        platform::MsgBox(QStringLiteral("Please specify name."), platform::vbExclamation);
        return;
    }
    const auto q = [](QLineEdit* box) { return GenMod::FixQuotes(TrimStr(box->text())); };
    const QString user = QString::number(Session::CurrentUserID);

    bool InTransaction = false;
    try {
        if (GenMod::OpenConnection()) {
            GenMod::Conn->BeginTrans();
            InTransaction = true;
            if (EditMode)
                GenMod::Conn->Execute(
                    QStringLiteral("Update Personal set FullName='") + q(ui.txtName) +
                        QStringLiteral("',Add1='") + q(ui.txtAdd1) + QStringLiteral("', Add2='") +
                        q(ui.txtAdd2) + QStringLiteral("',Add3='") + q(ui.txtAdd3) +
                        QStringLiteral("', Phone='") + q(ui.txtPhone) + QStringLiteral("', Cell='") +
                        q(ui.txtCell) + QStringLiteral("', Fax='") + q(ui.txtFax) +
                        QStringLiteral("',Email='") + q(ui.txtEmail) + QStringLiteral("',UpdatedBy=") + user +
                        QStringLiteral(" where ID=1"),
                    -1);
            else
                GenMod::Conn->Execute(QStringLiteral("Insert into Personal Values(1,'") + q(ui.txtName) +
                                          QStringLiteral("','") + q(ui.txtAdd1) + QStringLiteral("','") +
                                          q(ui.txtAdd2) + QStringLiteral("', '") + q(ui.txtAdd3) +
                                          QStringLiteral("','") + q(ui.txtPhone) + QStringLiteral("','") +
                                          q(ui.txtCell) + QStringLiteral("','") + q(ui.txtFax) +
                                          QStringLiteral("','") + q(ui.txtEmail) + QStringLiteral("',") +
                                          user + QStringLiteral(")"),
                                      -1);
            GenMod::Conn->CommitTrans();
            InTransaction = false;
            GenMod::CloseConnection();
        }
    } catch (const platform::Error& e) {
        GenMod::AbandonConnection(InTransaction);
        platform::MsgBox(e.description(), platform::vbCritical);
        return;
    }
    // A small s, unlike the other screens.
    platform::MsgBox(QStringLiteral("Saved successfully."), platform::vbInformation);
    EditMode = true;
    Unload();
}

// Both letterheads on every press, from what the data store held when they were first read,
// not from the boxes. A failure is told and the program goes on.
void frmPersonal::PrintLetterhead() {
    untrapped([] { reports::PrintLetterhead(); });
}
