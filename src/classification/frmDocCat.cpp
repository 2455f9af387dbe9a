#include "frmDocCat.h"

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

frmDocCat& frmDocCat::instance() {
    static auto* form = new frmDocCat;
    return *form;
}

QWidget* frmDocCat::build() {
    ScreenBuilder screen(QStringLiteral("frmDocCat"), QStringLiteral("Document Category"));
    screen.addTextField(ui.lblDocCategory, QStringLiteral("Document Category :"), ui.txtDocCategory,
                        NameLength);
    screen.addListBelow(ui.lstCategory, ListHeight);
    screen.addButtons(createCmdButtons(screen.window(), editCaptions()));
    connect(ui.lstCategory, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstCategory_DblClick(); }); });
    return screen.finish();
}

void frmDocCat::Form_Load() {
    prepareWindow();
    readAtLoad(Pointer::Hourglass, [this] {
        FieldCaptions::Apply({
            FieldCaptions::label(ui.lblDocCategory, QStringLiteral("DocCat"),
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
    resetRecord(ui.lstCategory, [this] { ClearCategoryFields(); });
}

void frmDocCat::ClearCategoryFields() {
    clearTextBoxesAndKey();
}

void frmDocCat::ShowCategoryList() {
    showRecordList(ui.lstCategory, [this] {
        GenMod::FillList(QStringLiteral("CatID, DocCategory"),
                         QStringLiteral("DocumentCategory order by DocCategory"), ui.lstCategory);
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocCat::lstCategory_DblClick() {
    if (const auto key = chosenKey(ui.lstCategory))
        LoadCategory(*key);
}

void frmDocCat::LoadCategory(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from DocumentCategory where CatID=") + QString::number(key),
               ui.lstCategory, [this](db::Recordset& rs) {
                   ui.txtDocCategory->setText(TrimStr(rs.Fields(QStringLiteral("DocCategory"))));
               });
}

void frmDocCat::SaveCategory() {
    const QString name = TrimStr(ui.txtDocCategory->text());
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
