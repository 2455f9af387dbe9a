#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

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

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(platform::ComboBox, cboDocCategory);
        UI_CONTROL(QLabel, lblDocSubCategory);
        UI_CONTROL(platform::ComboBox, cboDocSubCategory);
        UI_CONTROL(QLabel, lblDocChildCategory);
        UI_CONTROL(QLineEdit, txtChildCat);
        UI_CONTROL(platform::ListBox, lstChildCategory);
    };
    Controls ui;
};
