#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

// The owner's details (table Personal): the one row, key 1, with the name, address, phone
// numbers and mail address of this installation's owner, from which the letterheads print.
// There is no list: EditMode here tells whether the row exists, and so whether Save updates
// or inserts. Save closes the screen.
class frmPersonal : public RecordForm {
    Q_OBJECT
  public:
    static frmPersonal& instance();

    void cmd_Click(int index) override;

    void ResetPersonalForm();
    void LoadPersonal();
    void SavePersonal();
    void PrintLetterhead();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmPersonal() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblName);
        UI_CONTROL(QLineEdit, txtName);
        UI_CONTROL(QLabel, lblAddress);
        UI_CONTROL(QLineEdit, txtAdd1);
        UI_CONTROL(QLineEdit, txtAdd2);
        UI_CONTROL(QLineEdit, txtAdd3);
        UI_CONTROL(QLabel, lblPhone);
        UI_CONTROL(QLineEdit, txtPhone);
        UI_CONTROL(QLabel, lblCell);
        UI_CONTROL(QLineEdit, txtCell);
        UI_CONTROL(QLabel, lblFax);
        UI_CONTROL(QLineEdit, txtFax);
        UI_CONTROL(QLabel, lblEmail);
        UI_CONTROL(QLineEdit, txtEmail);
    };
    Controls ui;
};
