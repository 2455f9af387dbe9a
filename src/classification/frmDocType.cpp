#include "frmDocType.h"

#include "ClassificationLayout.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "session/FieldCaptions.h"
#include "session/GenMod.h"
#include "session/Session.h"

#include <QLabel>
#include <QLineEdit>

using platform::TrimStr;

frmDocType& frmDocType::instance() {
    static auto* form = new frmDocType;
    return *form;
}

QLabel* frmDocType::lblDocType() const {
    return control<QLabel>(QStringLiteral("lblDocType"));
}
QLineEdit* frmDocType::txtDocType() const {
    return control<QLineEdit>(QStringLiteral("txtDocType"));
}
platform::ListBox* frmDocType::lstType() const {
    return control<platform::ListBox>(QStringLiteral("lstType"));
}

QWidget* frmDocType::build() {
    classification::ScreenBuilder screen(QStringLiteral("frmDocType"), QStringLiteral("Document Type"));
    screen.addTextField(QStringLiteral("lblDocType"), QStringLiteral("Document Type :"),
                        QStringLiteral("txtDocType"));
    auto* list = screen.addList(QStringLiteral("lstType"));
    screen.addButtons(createCmdButtons(screen.window(), classification::cmdCaptions()));
    connect(list, &platform::ListBox::DblClick, this, [this] { untrapped([this] { lstType_DblClick(); }); });
    return screen.finish();
}

void frmDocType::Form_Load() {
    prepareWindow();
    readAtLoad(true, [this] {
        FieldCaptions::Apply({
            FieldCaptions::label(lblDocType(), QStringLiteral("DocType"), QStringLiteral("Document Type :")),
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
    resetRecord(lstType(), [this] { ClearTypeFields(); });
}

void frmDocType::ClearTypeFields() {
    clearTextBoxesAndKey();
}

void frmDocType::ShowTypeList() {
    showRecordList(lstType(), [this] {
        GenMod::FillList(QStringLiteral("TypeID, DocType"), QStringLiteral("DocumentType order by DocType"),
                         lstType());
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocType::lstType_DblClick() {
    if (const auto key = chosenKey(lstType()))
        LoadType(*key);
}

void frmDocType::LoadType(qint16 key) {
    loadRecord(
        key, QStringLiteral("Select * from DocumentType where TypeID=") + QString::number(key), lstType(),
        [this](db::Recordset& rs) { txtDocType()->setText(TrimStr(rs.Fields(QStringLiteral("DocType")))); });
}

void frmDocType::SaveType() {
    const QString name = TrimStr(txtDocType()->text());
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
