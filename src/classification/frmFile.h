#pragma once

#include "session/EditCycle.h"

class QLabel;
class QLineEdit;
namespace platform {
class ListView;
}

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
    void followList();
    QLineEdit* txtFileNo() const;
    QLineEdit* txtParticulars() const;
    platform::ListView* lstFile() const;
};
