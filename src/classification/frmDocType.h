#pragma once

#include "session/EditCycle.h"

class QLabel;
class QLineEdit;
namespace platform {
class ListBox;
}

// The document types, the first level of the classification (table DocumentType).
class frmDocType : public RecordForm {
    Q_OBJECT
  public:
    static frmDocType& instance();

    void cmd_Click(int index) override;
    void lstType_DblClick();

    void ResetTypeForm();
    void ClearTypeFields();
    void ShowTypeList();
    void SaveType();
    void LoadType(qint16 key);

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmDocType() = default;
    QLabel* lblDocType() const;
    QLineEdit* txtDocType() const;
    platform::ListBox* lstType() const;
};
