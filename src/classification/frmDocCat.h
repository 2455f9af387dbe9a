#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

// The document categories, the second level of the classification and the parents of the
// sub-categories (table DocumentCategory).
class frmDocCat : public RecordForm {
    Q_OBJECT
  public:
    static frmDocCat& instance();

    void cmd_Click(int index) override;
    void lstCategory_DblClick();

    void ResetCategoryForm();
    void ClearCategoryFields();
    void ShowCategoryList();
    void SaveCategory();
    void LoadCategory(qint16 key);

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmDocCat() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(QLineEdit, txtDocCategory);
        UI_CONTROL(platform::ListBox, lstCategory);
    };
    Controls ui;
};
