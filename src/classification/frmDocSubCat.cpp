#include "frmDocSubCat.h"

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

frmDocSubCat& frmDocSubCat::instance() {
    static auto* form = new frmDocSubCat;
    return *form;
}

QWidget* frmDocSubCat::build() {
    ScreenBuilder screen(QStringLiteral("frmDocSubCat"), QStringLiteral("Document Sub-Category"));
    screen.addComboField(ui.lblDocCategory, QStringLiteral("Document Category :"), ui.cboDocCategory);
    screen.addTextField(ui.lblDocSubCategory, QStringLiteral("Document Sub-Category :"), ui.txtDocSubCat,
                        NameLength);
    screen.addListBelow(ui.lstSubCategory, ListHeight);
    screen.addButtons(createCmdButtons(screen.window(), editCaptions()));
    connect(ui.lstSubCategory, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstSubCategory_DblClick(); }); });
    // The category box has no click handler on this screen.
    return screen.finish();
}

void frmDocSubCat::Form_Load() {
    prepareWindow();
    // No hourglass on this screen.
    readAtLoad(Pointer::Unchanged, [this] {
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), ui.cboDocCategory);
        FieldCaptions::Apply({
            FieldCaptions::label(ui.lblDocCategory, QStringLiteral("DocCat"),
                                 QStringLiteral("Document Category :")),
            FieldCaptions::label(ui.lblDocSubCategory, QStringLiteral("DocSubCat"),
                                 QStringLiteral("Document Sub-Category :")),
            FieldCaptions::formCaption(window(), QStringLiteral("DocSubCat"),
                                       QStringLiteral("Document Sub-Category")),
        });
    });
}

void frmDocSubCat::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetSubCategoryForm();
        break;
    case 1:
        ShowSubCategoryList();
        break;
    case 2:
        SaveSubCategory();
        break;
    case 3:
        Unload();
        break;
    default:
        break;
    }
}

void frmDocSubCat::ResetSubCategoryForm() {
    resetRecord(ui.lstSubCategory, [this] { ClearSubCategoryFields(); });
}

// The category keeps its items; only the choice goes.
void frmDocSubCat::ClearSubCategoryFields() {
    clearTextBoxesAndKey();
    ui.cboDocCategory->setListIndex(-1);
}

void frmDocSubCat::ShowSubCategoryList() {
    showRecordList(ui.lstSubCategory, [this] {
        GenMod::FillList(QStringLiteral("SubCatID, SubCategory"),
                         QStringLiteral("DocumentSubCategory order by SubCategory"), ui.lstSubCategory);
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocSubCat::lstSubCategory_DblClick() {
    if (const auto key = chosenKey(ui.lstSubCategory))
        LoadSubCategory(*key);
}

void frmDocSubCat::LoadSubCategory(qint16 key) {
    loadRecord(key,
               QStringLiteral("Select * from DocumentSubCategory where SubCatID=") + QString::number(key),
               ui.lstSubCategory, [this](db::Recordset& rs) {
                   auto* category = ui.cboDocCategory.get();
                   category->setListIndex(
                       GenMod::FindItemIndex(platform::CStr(rs.Fields(QStringLiteral("CatID"))), category));
                   ui.txtDocSubCat->setText(TrimStr(rs.Fields(QStringLiteral("SubCategory"))));
               });
}

void frmDocSubCat::SaveSubCategory() {
    const QString name = TrimStr(ui.txtDocSubCat->text());
    auto* category = ui.cboDocCategory.get();
    // The parent is read only when the statement is built: after the duplicate test and NextID.
    const auto catKey = [category] { return QString::number(category->ItemData(category->ListIndex())); };

    SaveSteps steps;
    steps.required = {
        {[category] { return category->ListIndex() == -1; },
         QStringLiteral("Please specify Document Category.")},
        {[&] { return name.isEmpty(); }, QStringLiteral("Please specify Document Sub-Category.")},
    };
    // One name in the whole table, whatever its category.
    steps.duplicateFields = QStringLiteral("SubCategory");
    steps.duplicateSource = [&] {
        QString source =
            QStringLiteral("DocumentSubCategory where SubCategory='") + name + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and SubCatID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Document Sub-Category not allowed.");
    steps.keyColumn = QStringLiteral("SubCatID");
    steps.table = QStringLiteral("DocumentSubCategory");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into DocumentSubCategory values(") + QString::number(CurrentRowID) +
               QStringLiteral(",") + catKey() + QStringLiteral(",'") + GenMod::FixQuotes(name) +
               QStringLiteral("',") + QString::number(Session::CurrentUserID) + QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update DocumentSubCategory set CatID=") + catKey() +
               QStringLiteral(" , SubCategory='") + GenMod::FixQuotes(name) +
               QStringLiteral("', UpdatedBy=") + QString::number(Session::CurrentUserID) +
               QStringLiteral(" where SubCatID=") + QString::number(CurrentRowID);
    };
    steps.reset = [this] { ResetSubCategoryForm(); };
    saveRecord(steps);
}
