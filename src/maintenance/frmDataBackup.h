#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"
#include "session/Form.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>

// The data store as a file, on the machine that holds it: Step 1 compacts it in place, Step 2
// copies it as Backup.mdb into a folder of the user's choice. Neither reads or writes a table,
// and neither asks for rights again: the toolbar keeps the level "User" out.
class frmDataBackup : public Form {
    Q_OBJECT
  public:
    static frmDataBackup& instance();

    void cmdRepair_Click();
    void cmdBrowse_Click();
    void cmdStartBackup_Click();
    void cmd_Click();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmDataBackup() : Form(true) {}

    // True when the data store is the file `path` of this machine.
    static bool DataFileExists(const QString& path);
    // Cuts a separator that ends the chosen path, but leaves the root whole.
    void CutTrailingSeparator();

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, ImgDatabase);
        UI_CONTROL(QFrame, Shape1);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(platform::CommandButton, cmdRepair);
        UI_CONTROL(QFrame, Shape2);
        UI_CONTROL(QLabel, Label2);
        UI_CONTROL(QLabel, lblBackupPath);
        UI_CONTROL(QLineEdit, txtPath);
        UI_CONTROL(platform::CommandButton, cmdBrowse);
        UI_CONTROL(platform::CommandButton, cmdStartBackup);
        UI_CONTROL(QFrame, Line1);
        UI_CONTROL(platform::CommandButton, cmd);
    };
    Controls ui;
};
