#pragma once

#include "session/EditCycle.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

// The settings of the office and of this machine's user: the four viewer programs that open
// the soft copies and the OCR languages in which their text is read (kept per system user, not
// per login), the office's names of the six classification fields (kept in the database), and
// the purge of old documents and the state of the soft copies, which only the first user may
// reach. The screen has no edit cycle; it unloads after a save.
class frmSettings : public RecordForm {
    Q_OBJECT
  public:
    static frmSettings& instance();

    void cmd_Click(int index) override;
    void cmdDelete_Click();
    void lblDeleteFiles_Click();
    void cmdSoftCopies_Click();

    // Lets the user pick the viewer program of a kind: "Image", "Word", "Excel" or "PDF".
    void BrowseViewerPath(const QString& kind);
    void SaveSettings();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmSettings() = default;
    QLineEdit* pathBox(const QString& kind) const;
    // The boxes of the six field names, in the order of the table's columns.
    QList<QLineEdit*> nameBoxes() const;
    // Lists the OCR languages of this machine, the chosen ones ticked.
    void loadOcrLanguages();
    QStringList tickedOcrLanguages() const;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QLabel, lblImg);
        UI_CONTROL(QLineEdit, txtImagePath);
        UI_CONTROL(QLabel, lblWord);
        UI_CONTROL(QLineEdit, txtWordPath);
        UI_CONTROL(QLabel, lblExcel);
        UI_CONTROL(QLineEdit, txtExcelPath);
        UI_CONTROL(QLabel, lblPDF);
        UI_CONTROL(QLineEdit, txtPDFPath);
        UI_CONTROL(QLabel, lblOcrLanguages);
        UI_CONTROL(QListWidget, lstOcrLanguages);
        UI_CONTROL(platform::CommandButton, cmdSoftCopies);
        UI_CONTROL(QLabel, Label4);
        UI_CONTROL(QLabel, lblDocType);
        UI_CONTROL(QLineEdit, txtDocType);
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(QLineEdit, txtDocCat);
        UI_CONTROL(QLabel, lblDocSubCat);
        UI_CONTROL(QLineEdit, txtDocSubCat);
        UI_CONTROL(QLabel, lblDocChildCat);
        UI_CONTROL(QLineEdit, txtDocChildCat);
        UI_CONTROL(QLabel, lblDocTitle1);
        UI_CONTROL(QLineEdit, txtDocTitle1);
        UI_CONTROL(QLabel, lblDocTitle2);
        UI_CONTROL(QLineEdit, txtDocTitle2);
        UI_CONTROL(QLabel, Label2);
        UI_CONTROL(QLabel, Label3);
        UI_CONTROL(platform::DatePicker, dtpDelete);
        UI_CONTROL(QLabel, lblDeleteFiles);
        UI_CONTROL(QCheckBox, chkFiles);
        UI_CONTROL(platform::CommandButton, cmdDelete);
        UI_CONTROL(QLabel, lblProcess);
        UI_CONTROL(platform::CommandButton, cmdMoveSoftCopies);
    };
    Controls ui;
};
