#pragma once

#include "session/EditCycle.h"

class QLabel;
class QLineEdit;
namespace platform {
class ListBox;
}

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
    QLabel* lblDocCategory() const;
    QLineEdit* txtDocCategory() const;
    platform::ListBox* lstCategory() const;
};
