#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"
#include "session/Form.h"

#include <QLabel>
#include <QLineEdit>

// When an office moves its soft copies to another folder (a new disk, a renamed share), the
// paths of the documents under the old folder are rewritten to the new one in one transaction,
// all or nothing. The texts read from the soft copies stay with their documents. Only the
// first user reaches it, from Settings.
class frmMoveSoftCopies : public Form {
    Q_OBJECT
  public:
    static frmMoveSoftCopies& instance();

    void cmdBrowseOld_Click();
    void cmdBrowseNew_Click();
    void cmdCount_Click();
    void cmdMove_Click();
    void cmdClose_Click();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmMoveSoftCopies() : Form(true) {}

    // The two folders as typed, checked: false after the message that says what is wrong.
    bool TakeFolders(bool newMustExist, QString& oldFolder, QString& newFolder);

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblOldFolder);
        UI_CONTROL(QLineEdit, txtOldFolder);
        UI_CONTROL(platform::CommandButton, cmdBrowseOld);
        UI_CONTROL(QLabel, lblNewFolder);
        UI_CONTROL(QLineEdit, txtNewFolder);
        UI_CONTROL(platform::CommandButton, cmdBrowseNew);
        UI_CONTROL(QLabel, lblCounts);
        UI_CONTROL(platform::CommandButton, cmdCount);
        UI_CONTROL(platform::CommandButton, cmdMove);
        UI_CONTROL(platform::CommandButton, cmdClose);
    };
    Controls ui;
};
