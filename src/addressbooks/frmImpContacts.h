#pragma once

#include "SearchPanel.h"
#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

// The important contacts (table Contacts): names with postal address, phone numbers and
// remarks, found again through a search panel by a part of the name.
class frmImpContacts : public RecordForm {
    Q_OBJECT
  public:
    static frmImpContacts& instance();

    void cmd_Click(int index) override;
    void chkShowAll_Click();
    void lblShowAll_Click();
    void cmdSearch_Click();
    void lstContacts_DblClick();

    void ResetContactForm();
    void ClearContactFields();
    void ShowContactList();
    void FillContactList();
    void LoadContact(qint16 key);
    void SaveContact();
    void PrintContactList();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmImpContacts() = default;

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
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QPlainTextEdit, txtRemarks);
        UI_CONTROL(QFrame, fraList);
        UI_CONTROL(QLabel, lblSearchRef);
        UI_CONTROL(QLineEdit, txtSearchName);
        UI_CONTROL(platform::CommandButton, cmdSearch);
        UI_CONTROL(QCheckBox, chkShowAll);
        UI_CONTROL(QLabel, lblShowAll);
        UI_CONTROL(platform::ListView, lstContacts);
    };
    Controls ui;
    SearchPanel panel{ui.fraList,   ui.lblSearchRef, ui.txtSearchName,
                      ui.cmdSearch, ui.chkShowAll,   ui.lblShowAll};
};
