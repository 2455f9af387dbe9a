#include "frmDocSubCat.h"

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

frmDocSubCat& frmDocSubCat::instance() {
    static auto* form = new frmDocSubCat;
    return *form;
}

QLabel* frmDocSubCat::lblDocCategory() const {
    return control<QLabel>(QStringLiteral("lblDocCategory"));
}
QLabel* frmDocSubCat::lblDocSubCategory() const {
    return control<QLabel>(QStringLiteral("lblDocSubCategory"));
}
platform::ComboBox* frmDocSubCat::cboDocCategory() const {
    return control<platform::ComboBox>(QStringLiteral("cboDocCategory"));
}
QLineEdit* frmDocSubCat::txtDocSubCat() const {
    return control<QLineEdit>(QStringLiteral("txtDocSubCat"));
}
platform::ListBox* frmDocSubCat::lstSubCategory() const {
    return control<platform::ListBox>(QStringLiteral("lstSubCategory"));
}

QWidget* frmDocSubCat::build() {
    classification::ScreenBuilder screen(QStringLiteral("frmDocSubCat"),
                                         QStringLiteral("Document Sub-Category"));
    screen.addComboField(QStringLiteral("lblDocCategory"), QStringLiteral("Document Category :"),
                         QStringLiteral("cboDocCategory"));
    screen.addTextField(QStringLiteral("lblDocSubCategory"), QStringLiteral("Document Sub-Category :"),
                        QStringLiteral("txtDocSubCat"));
    auto* list = screen.addList(QStringLiteral("lstSubCategory"));
    screen.addButtons(createCmdButtons(screen.window(), classification::cmdCaptions()));
    connect(list, &platform::ListBox::DblClick, this,
            [this] { untrapped([this] { lstSubCategory_DblClick(); }); });
    // The category box has no click handler on this screen.
    return screen.finish();
}

void frmDocSubCat::Form_Load() {
    prepareWindow();
    // No hourglass on this screen.
    readAtLoad(false, [this] {
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), cboDocCategory());
        FieldCaptions::Apply({
            FieldCaptions::label(lblDocCategory(), QStringLiteral("DocCat"),
                                 QStringLiteral("Document Category :")),
            FieldCaptions::label(lblDocSubCategory(), QStringLiteral("DocSubCat"),
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
    resetRecord(lstSubCategory(), [this] { ClearSubCategoryFields(); });
}

// The category keeps its items; only the choice goes.
void frmDocSubCat::ClearSubCategoryFields() {
    clearTextBoxesAndKey();
    cboDocCategory()->setListIndex(-1);
}

void frmDocSubCat::ShowSubCategoryList() {
    showRecordList(lstSubCategory(), [this] {
        GenMod::FillList(QStringLiteral("SubCatID, SubCategory"),
                         QStringLiteral("DocumentSubCategory order by SubCategory"), lstSubCategory());
    });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmDocSubCat::lstSubCategory_DblClick() {
    if (const auto key = chosenKey(lstSubCategory()))
        LoadSubCategory(*key);
}

void frmDocSubCat::LoadSubCategory(qint16 key) {
    loadRecord(key,
               QStringLiteral("Select * from DocumentSubCategory where SubCatID=") + QString::number(key),
               lstSubCategory(), [this](db::Recordset& rs) {
                   auto* category = cboDocCategory();
                   category->setListIndex(
                       GenMod::FindItemIndex(platform::CStr(rs.Fields(QStringLiteral("CatID"))), category));
                   txtDocSubCat()->setText(TrimStr(rs.Fields(QStringLiteral("SubCategory"))));
               });
}

void frmDocSubCat::SaveSubCategory() {
    const QString name = TrimStr(txtDocSubCat()->text());
    auto* category = cboDocCategory();
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
