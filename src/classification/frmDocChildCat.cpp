#include "frmDocChildCat.h"

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

frmDocChildCat& frmDocChildCat::instance() {
    static auto* form = new frmDocChildCat;
    return *form;
}

QLabel* frmDocChildCat::lblDocCategory() const {
    return control<QLabel>(QStringLiteral("lblDocCategory"));
}
QLabel* frmDocChildCat::lblDocSubCategory() const {
    return control<QLabel>(QStringLiteral("lblDocSubCategory"));
}
QLabel* frmDocChildCat::lblDocChildCategory() const {
    return control<QLabel>(QStringLiteral("lblDocChildCategory"));
}
platform::ComboBox* frmDocChildCat::cboDocCategory() const {
    return control<platform::ComboBox>(QStringLiteral("cboDocCategory"));
}
platform::ComboBox* frmDocChildCat::cboDocSubCategory() const {
    return control<platform::ComboBox>(QStringLiteral("cboDocSubCategory"));
}
QLineEdit* frmDocChildCat::txtChildCat() const {
    return control<QLineEdit>(QStringLiteral("txtChildCat"));
}
platform::ListBox* frmDocChildCat::lstChildCategory() const {
    return control<platform::ListBox>(QStringLiteral("lstChildCategory"));
}

QWidget* frmDocChildCat::build() {
    classification::ScreenBuilder screen(QStringLiteral("frmDocChildCat"),
                                         QStringLiteral("Document Child Category"));
    auto* category =
        screen.addComboField(QStringLiteral("lblDocCategory"), QStringLiteral("Document Category :"),
                             QStringLiteral("cboDocCategory"));
    screen.addComboField(QStringLiteral("lblDocSubCategory"), QStringLiteral("Document Sub-Category :"),
                         QStringLiteral("cboDocSubCategory"));
    screen.addTextField(QStringLiteral("lblDocChildCategory"), QStringLiteral("Document Child Category :"),
                        QStringLiteral("txtChildCat"));
    auto* list = screen.addList(QStringLiteral("lstChildCategory"));
    screen.addButtons(createCmdButtons(screen.window(), classification::cmdCaptions()));
    connect(category, &platform::ComboBox::Click, this, [this] { cboDocCategory_Click(); });
    connect(list, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstChildCategory_DblClick(); }); });
    return screen.finish();
}

void frmDocChildCat::Form_Load() {
    prepareWindow();
    // No hourglass on this screen. The sub-categories wait for a choice of category.
    readAtLoad(false, [this] {
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), cboDocCategory());
        FieldCaptions::Apply({
            FieldCaptions::label(lblDocCategory(), QStringLiteral("DocCat"),
                                 QStringLiteral("Document Category :")),
            FieldCaptions::label(lblDocSubCategory(), QStringLiteral("DocSubCat"),
                                 QStringLiteral("Document Sub-Category :")),
            FieldCaptions::label(lblDocChildCategory(), QStringLiteral("DocChildCat"),
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
    auto* category = cboDocCategory();
    if (category->ListIndex() == -1)
        return;
    try {
        if (!GenMod::OpenConnection())
            return;
        GenMod::FillCombo(QStringLiteral("SubCatID, SubCategory"),
                          QStringLiteral("DocumentSubcategory where CatID=") +
                              QString::number(category->ItemData(category->ListIndex())) +
                              QStringLiteral(" order by SubCategory"),
                          cboDocSubCategory());
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

void frmDocChildCat::ResetChildCategoryForm() {
    resetRecord(lstChildCategory(), [this] { ClearChildCategoryFields(); });
}

// Both parent boxes keep their items; only the choices go.
void frmDocChildCat::ClearChildCategoryFields() {
    clearTextBoxesAndKey();
    cboDocCategory()->setListIndex(-1);
    cboDocSubCategory()->setListIndex(-1);
}

void frmDocChildCat::ShowChildCategoryList() {
    showRecordList(lstChildCategory(), [this] {
        GenMod::FillList(QStringLiteral("ChildCatID, ChildCategory"),
                         QStringLiteral("DocumentChildCategory order by ChildCategory"), lstChildCategory());
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocChildCat::lstChildCategory_DblClick() {
    if (const auto key = chosenKey(lstChildCategory()))
        LoadChildCategory(*key);
}

void frmDocChildCat::LoadChildCategory(qint16 key) {
    loadRecord(key,
               QStringLiteral("Select * from DocumentChildCategory where ChildCatID=") + QString::number(key),
               lstChildCategory(), [this](db::Recordset& rs) {
                   // Choosing the category refills the sub-categories (twice: FindItemIndex picks
                   // the first category on its way), so the sub-category is looked up after it.
                   auto* category = cboDocCategory();
                   category->setListIndex(
                       GenMod::FindItemIndex(platform::CStr(rs.Fields(QStringLiteral("CatID"))), category));
                   auto* subCategory = cboDocSubCategory();
                   subCategory->setListIndex(GenMod::FindItemIndex(
                       platform::CStr(rs.Fields(QStringLiteral("SubCatID"))), subCategory));
                   txtChildCat()->setText(TrimStr(rs.Fields(QStringLiteral("childcategory"))));
               });
}

void frmDocChildCat::SaveChildCategory() {
    const QString name = TrimStr(txtChildCat()->text());
    auto* category = cboDocCategory();
    auto* subCategory = cboDocSubCategory();
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
