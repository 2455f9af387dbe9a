#pragma once

#include "session/EditCycle.h"

class QLabel;
class QLineEdit;
namespace platform {
class ComboBox;
class ListBox;
} // namespace platform

// The child categories, the fourth level of the classification, each under one
// sub-category and carrying its category too (table DocumentChildCategory).
class frmDocChildCat : public RecordForm {
    Q_OBJECT
  public:
    static frmDocChildCat& instance();

    void cmd_Click(int index) override;
    void lstChildCategory_DblClick();
    void cboDocCategory_Click();

    void ResetChildCategoryForm();
    void ClearChildCategoryFields();
    void ShowChildCategoryList();
    void SaveChildCategory();
    void LoadChildCategory(qint16 key);

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmDocChildCat() = default;
    QLabel* lblDocCategory() const;
    QLabel* lblDocSubCategory() const;
    QLabel* lblDocChildCategory() const;
    platform::ComboBox* cboDocCategory() const;
    platform::ComboBox* cboDocSubCategory() const;
    QLineEdit* txtChildCat() const;
    platform::ListBox* lstChildCategory() const;
};
