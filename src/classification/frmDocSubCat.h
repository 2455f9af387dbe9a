#pragma once

#include "session/EditCycle.h"

class QLabel;
class QLineEdit;
namespace platform {
class ComboBox;
class ListBox;
} // namespace platform

// The sub-categories, the third level of the classification, each under one category
// (table DocumentSubCategory).
class frmDocSubCat : public RecordForm {
    Q_OBJECT
  public:
    static frmDocSubCat& instance();

    void cmd_Click(int index) override;
    void lstSubCategory_DblClick();

    void ResetSubCategoryForm();
    void ClearSubCategoryFields();
    void ShowSubCategoryList();
    void SaveSubCategory();
    void LoadSubCategory(qint16 key);

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmDocSubCat() = default;
    QLabel* lblDocCategory() const;
    QLabel* lblDocSubCategory() const;
    platform::ComboBox* cboDocCategory() const;
    QLineEdit* txtDocSubCat() const;
    platform::ListBox* lstSubCategory() const;
};
