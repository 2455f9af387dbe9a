#include "frmDocChildCat.h"

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

frmDocChildCat& frmDocChildCat::instance() {
    static auto* form = new frmDocChildCat;
    return *form;
}

QWidget* frmDocChildCat::build() {
    ScreenBuilder screen(QStringLiteral("frmDocChildCat"), QStringLiteral("Document Child Category"));
    screen.addComboField(ui.lblDocCategory, QStringLiteral("Document Category :"), ui.cboDocCategory);
    screen.addComboField(ui.lblDocSubCategory, QStringLiteral("Document Sub-Category :"),
                         ui.cboDocSubCategory);
    screen.addTextField(ui.lblDocChildCategory, QStringLiteral("Document Child Category :"), ui.txtChildCat,
                        NameLength);
    screen.addListBelow(ui.lstChildCategory, ListHeight);
    screen.addButtons(createCmdButtons(screen.window(), editCaptions()));
    connect(ui.cboDocCategory, &platform::ComboBox::Click, this, [this] { cboDocCategory_Click(); });
    connect(ui.lstChildCategory, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstChildCategory_DblClick(); }); });
    return screen.finish();
}

void frmDocChildCat::Form_Load() {
    prepareWindow();
    // No hourglass on this screen. The sub-categories wait for a choice of category.
    readAtLoad(Pointer::Unchanged, [this] {
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), ui.cboDocCategory);
        FieldCaptions::Apply({
            FieldCaptions::label(ui.lblDocCategory, QStringLiteral("DocCat"),
                                 QStringLiteral("Document Category :")),
            FieldCaptions::label(ui.lblDocSubCategory, QStringLiteral("DocSubCat"),
                                 QStringLiteral("Document Sub-Category :")),
            FieldCaptions::label(ui.lblDocChildCategory, QStringLiteral("DocChildCat"),
                                 QStringLiteral("Document Child Category :")),
            FieldCaptions::formCaption(window(), QStringLiteral("DocChildCat"),
                                       QStringLiteral("Document Child Category")),
        });
    });
}

void frmDocChildCat::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetChildCategoryForm();
        break;
    case 1:
        ShowChildCategoryList();
        break;
    case 2:
        SaveChildCategory();
        break;
    case 3:
        Unload();
        break;
    default:
        break;
    }
}

// Refills the sub-categories of the chosen category, with none chosen. Also runs nested
// inside LoadChildCategory, while the load's recordset is open.
void frmDocChildCat::cboDocCategory_Click() {
    refillBelow(ui.cboDocCategory, QStringLiteral("SubCatID, SubCategory"),
                QStringLiteral("DocumentSubcategory where CatID="), QStringLiteral(" order by SubCategory"),
                ui.cboDocSubCategory);
}

void frmDocChildCat::ResetChildCategoryForm() {
    resetRecord(ui.lstChildCategory, [this] { ClearChildCategoryFields(); });
}

// Both parent boxes keep their items; only the choices go.
void frmDocChildCat::ClearChildCategoryFields() {
    clearTextBoxesAndKey();
    ui.cboDocCategory->setListIndex(-1);
    ui.cboDocSubCategory->setListIndex(-1);
}

void frmDocChildCat::ShowChildCategoryList() {
    showRecordList(ui.lstChildCategory, [this] {
        GenMod::FillList(QStringLiteral("ChildCatID, ChildCategory"),
                         QStringLiteral("DocumentChildCategory order by ChildCategory"), ui.lstChildCategory);
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocChildCat::lstChildCategory_DblClick() {
    if (const auto key = chosenKey(ui.lstChildCategory))
        LoadChildCategory(*key);
}

void frmDocChildCat::LoadChildCategory(qint16 key) {
    loadRecord(key,
               QStringLiteral("Select * from DocumentChildCategory where ChildCatID=") + QString::number(key),
               ui.lstChildCategory, [this](db::Recordset& rs) {
                   // Choosing the category refills the sub-categories (twice: FindItemIndex picks
                   // the first category on its way), so the sub-category is looked up after it.
                   auto* category = ui.cboDocCategory.get();
                   category->setListIndex(
                       GenMod::FindItemIndex(platform::CStr(rs.Fields(QStringLiteral("CatID"))), category));
                   auto* subCategory = ui.cboDocSubCategory.get();
                   subCategory->setListIndex(GenMod::FindItemIndex(
                       platform::CStr(rs.Fields(QStringLiteral("SubCatID"))), subCategory));
                   ui.txtChildCat->setText(TrimStr(rs.Fields(QStringLiteral("childcategory"))));
               });
}

void frmDocChildCat::SaveChildCategory() {
    const QString name = TrimStr(ui.txtChildCat->text());
    auto* category = ui.cboDocCategory.get();
    auto* subCategory = ui.cboDocSubCategory.get();
    // The parents are read only when the statement is built: after the duplicate test and NextID.
    const auto catKey = [category] { return QString::number(category->ItemData(category->ListIndex())); };
    const auto subCatKey = [subCategory] {
        return QString::number(subCategory->ItemData(subCategory->ListIndex()));
    };

    SaveSteps steps;
    steps.required = {
        {[category] { return category->ListIndex() == -1; },
         QStringLiteral("Please specify Document Category.")},
        {[subCategory] { return subCategory->ListIndex() == -1; },
         QStringLiteral("Please specify Document Sub-Category.")},
        {[&] { return name.isEmpty(); }, QStringLiteral("Please specify Document Child Category.")},
    };
    // One name in the whole table, whatever its parents.
    steps.duplicateFields = QStringLiteral("ChildCategory");
    steps.duplicateSource = [&] {
        QString source =
            QStringLiteral("DocumentChildCategory where childCategory='") + name + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and ChildCatID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Document Child Category not allowed.");
    steps.keyColumn = QStringLiteral("ChildCatID");
    steps.table = QStringLiteral("DocumentChildCategory");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into DocumentChildCategory values(") + QString::number(CurrentRowID) +
               QStringLiteral(",") + catKey() + QStringLiteral(",") + subCatKey() + QStringLiteral(",'") +
               GenMod::FixQuotes(name) + QStringLiteral("',") + QString::number(Session::CurrentUserID) +
               QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update DocumentChildCategory set CatID=") + catKey() +
               QStringLiteral(" , subcatID=") + subCatKey() + QStringLiteral(" ,ChildCategory='") +
               GenMod::FixQuotes(name) + QStringLiteral("', UpdatedBy=") +
               QString::number(Session::CurrentUserID) + QStringLiteral(" where childCatID=") +
               QString::number(CurrentRowID);
    };
    steps.reset = [this] { ResetChildCategoryForm(); };
    saveRecord(steps);
}
