#pragma once

#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>

// The register of hard-copy files (table File): each paper file's number and particulars.
class frmFile : public RecordForm {
    Q_OBJECT
  public:
    static frmFile& instance();

    void cmd_Click(int index) override;
    void lstFile_DblClick();

    void ResetFileForm();
    void ClearFileFields();
    void ShowFileList();
    void FillFileList();
    void LoadFile(qint16 key);
    void SaveFile();
    void PrintFileList();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmFile() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblEmail);
        UI_CONTROL(QLineEdit, txtFileNo);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QLineEdit, txtParticulars);
        UI_CONTROL(platform::ListView, lstFile);
    };
    Controls ui;
};
