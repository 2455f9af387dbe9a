#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

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

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(platform::ComboBox, cboDocCategory);
        UI_CONTROL(QLabel, lblDocSubCategory);
        UI_CONTROL(QLineEdit, txtDocSubCat);
        UI_CONTROL(platform::ListBox, lstSubCategory);
    };
    Controls ui;
};
