#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

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

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocType);
        UI_CONTROL(QLineEdit, txtDocType);
        UI_CONTROL(platform::ListBox, lstType);
    };
    Controls ui;
};
