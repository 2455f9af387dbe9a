#include "frmDocCat.h"

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

frmDocCat& frmDocCat::instance() {
    static auto* form = new frmDocCat;
    return *form;
}

QLabel* frmDocCat::lblDocCategory() const {
    return control<QLabel>(QStringLiteral("lblDocCategory"));
}
QLineEdit* frmDocCat::txtDocCategory() const {
    return control<QLineEdit>(QStringLiteral("txtDocCategory"));
}
platform::ListBox* frmDocCat::lstCategory() const {
    return control<platform::ListBox>(QStringLiteral("lstCategory"));
}

QWidget* frmDocCat::build() {
    classification::ScreenBuilder screen(QStringLiteral("frmDocCat"), QStringLiteral("Document Category"));
    screen.addTextField(QStringLiteral("lblDocCategory"), QStringLiteral("Document Category :"),
                        QStringLiteral("txtDocCategory"));
    auto* list = screen.addList(QStringLiteral("lstCategory"));
    screen.addButtons(createCmdButtons(screen.window(), classification::cmdCaptions()));
    connect(list, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstCategory_DblClick(); }); });
    return screen.finish();
}

void frmDocCat::Form_Load() {
    prepareWindow();
    readAtLoad(true, [this] {
        FieldCaptions::Apply({
            FieldCaptions::label(lblDocCategory(), QStringLiteral("DocCat"),
                                 QStringLiteral("Document Category :")),
            FieldCaptions::formCaption(window(), QStringLiteral("DocCat"),
                                       QStringLiteral("Document Category")),
        });
    });
}

void frmDocCat::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetCategoryForm();
        break;
    case 1:
        ShowCategoryList();
        break;
    case 2:
        SaveCategory();
        break;
    case 3:
        Unload();
        break;
    default:
        break;
    }
}

void frmDocCat::ResetCategoryForm() {
    resetRecord(lstCategory(), [this] { ClearCategoryFields(); });
}

void frmDocCat::ClearCategoryFields() {
    clearTextBoxesAndKey();
}

void frmDocCat::ShowCategoryList() {
    showRecordList(lstCategory(), [this] {
        GenMod::FillList(QStringLiteral("CatID, DocCategory"),
                         QStringLiteral("DocumentCategory order by DocCategory"), lstCategory());
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocCat::lstCategory_DblClick() {
    if (const auto key = chosenKey(lstCategory()))
        LoadCategory(*key);
}

void frmDocCat::LoadCategory(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from DocumentCategory where CatID=") + QString::number(key),
               lstCategory(), [this](db::Recordset& rs) {
                   txtDocCategory()->setText(TrimStr(rs.Fields(QStringLiteral("DocCategory"))));
               });
}

void frmDocCat::SaveCategory() {
    const QString name = TrimStr(txtDocCategory()->text());
    SaveSteps steps;
    steps.required = {{[&] { return name.isEmpty(); }, QStringLiteral("Please specify Document Category.")}};
    steps.duplicateFields = QStringLiteral("DocCategory");
    steps.duplicateSource = [&] {
        QString source = QStringLiteral("DocumentCategory where DocCategory='") + name + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and CatID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Document Category not allowed.");
    steps.keyColumn = QStringLiteral("CatID");
    steps.table = QStringLiteral("DocumentCategory");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into DocumentCategory values(") + QString::number(CurrentRowID) +
               QStringLiteral(",'") + GenMod::FixQuotes(name) + QStringLiteral("',") +
               QString::number(Session::CurrentUserID) + QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update DocumentCategory set DocCategory='") + GenMod::FixQuotes(name) +
               QStringLiteral("', UpdatedBy=") + QString::number(Session::CurrentUserID) +
               QStringLiteral(" where CatID=") + QString::number(CurrentRowID);
    };
    steps.reset = [this] { ResetCategoryForm(); };
    saveRecord(steps);
}
