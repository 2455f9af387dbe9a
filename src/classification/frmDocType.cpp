#include "frmDocType.h"

#include "ClassificationLayout.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "session/FieldCaptions.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QLabel>
#include <QLineEdit>

using classification::ListHeight;
using classification::NameLength;
using platform::TrimStr;

frmDocType& frmDocType::instance() {
    static auto* form = new frmDocType;
    return *form;
}

QWidget* frmDocType::build() {
    ScreenBuilder screen(QStringLiteral("frmDocType"), QStringLiteral("Document Type"));
    screen.addTextField(ui.lblDocType, QStringLiteral("Document Type :"), ui.txtDocType, NameLength);
    screen.addListBelow(ui.lstType, ListHeight);
    screen.addButtons(createCmdButtons(screen.window(), editCaptions()));
    connect(ui.lstType, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstType_DblClick(); }); });
    return screen.finish();
}

void frmDocType::Form_Load() {
    prepareWindow();
    readAtLoad(Pointer::Hourglass, [this] {
        FieldCaptions::Apply({
            FieldCaptions::label(ui.lblDocType, QStringLiteral("DocType"), QStringLiteral("Document Type :")),
            FieldCaptions::formCaption(window(), QStringLiteral("DocType"), QStringLiteral("Document Type")),
        });
    });
}

void frmDocType::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetTypeForm();
        break;
    case 1:
        ShowTypeList();
        break;
    case 2:
        SaveType();
        break;
    case 3:
        Unload();
        break;
    default:
        break;
    }
}

void frmDocType::ResetTypeForm() {
    resetRecord(ui.lstType, [this] { ClearTypeFields(); });
}

void frmDocType::ClearTypeFields() {
    clearTextBoxesAndKey();
}

void frmDocType::ShowTypeList() {
    showRecordList(ui.lstType, [this] {
        GenMod::FillList(QStringLiteral("TypeID, DocType"), QStringLiteral("DocumentType order by DocType"),
                         ui.lstType);
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocType::lstType_DblClick() {
    if (const auto key = chosenKey(ui.lstType))
        LoadType(*key);
}

void frmDocType::LoadType(qint16 key) {
    loadRecord(
        key, QStringLiteral("Select * from DocumentType where TypeID=") + QString::number(key), ui.lstType,
        [this](db::Recordset& rs) { ui.txtDocType->setText(TrimStr(rs.Fields(QStringLiteral("DocType")))); });
}

void frmDocType::SaveType() {
    const QString name = TrimStr(ui.txtDocType->text());
    SaveSteps steps;
    steps.required = {{[&] { return name.isEmpty(); }, QStringLiteral("Please specify Document type.")}};
    steps.duplicateFields = QStringLiteral("DocType");
    steps.duplicateSource = [&] {
        QString source = QStringLiteral("DocumentType where DocType='") + name + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and TypeID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Document Type not allowed.");
    steps.keyColumn = QStringLiteral("TypeID");
    steps.table = QStringLiteral("DocumentType");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into DocumentType values(") + QString::number(CurrentRowID) +
               QStringLiteral(",'") + GenMod::FixQuotes(name) + QStringLiteral("',") +
               QString::number(Session::CurrentUserID) + QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update DocumentType set DocType='") + GenMod::FixQuotes(name) +
               QStringLiteral("', UpdatedBy=") + QString::number(Session::CurrentUserID) +
               QStringLiteral(" where TypeID=") + QString::number(CurrentRowID);
    };
    steps.reset = [this] { ResetTypeForm(); };
    saveRecord(steps);
}
