#pragma once

#include "session/EditCycle.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>

// The users who may log in (table Logins): a name, a password and one rights level each. Names
// and passwords are stored scrambled; the list and the boxes show them plain. Every user may
// open the screen, list the users and load one; Save tests the rights as on every screen. No
// user is ever deleted.
class frmLoginDetails : public RecordForm {
    Q_OBJECT
  public:
    static frmLoginDetails& instance();

    void cmd_Click(int index) override;
    void lstUsers_DblClick();
    // A box that becomes ticked clears the other two; one that is cleared changes nothing else.
    void chkView_Click();
    void chkAdd_Click();
    void chkEdit_Click();
    // The captions flip their box and run its click once more.
    void lblView_Click();
    void lblSave_Click();
    void lblModify_Click();

    void ResetUserForm();
    void ClearUserFields();
    void ShowUserList();
    void LoadUser(qint16 key);
    void SaveUser();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmLoginDetails() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblEmail);
        UI_CONTROL(QLineEdit, txtUserName);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QLineEdit, txtPassword);
        UI_CONTROL(QLabel, lblView);
        UI_CONTROL(QCheckBox, chkView);
        UI_CONTROL(QLabel, lblSave);
        UI_CONTROL(QCheckBox, chkAdd);
        UI_CONTROL(QLabel, lblModify);
        UI_CONTROL(QCheckBox, chkEdit);
        UI_CONTROL(QFrame, Line1);
        UI_CONTROL(platform::ListBox, lstUsers);
    };
    Controls ui;
};
