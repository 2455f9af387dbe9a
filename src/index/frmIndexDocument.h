#pragma once

#include "index/PreviewPane.h"
#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

// The record of one document (table Vorlane): its two dates, its place in the four-level
// classification, two titles, the path of its soft copy, the hard-copy file that holds the
// paper, a bookmark and remarks. Edit lists every document, newest first.
class frmIndexDocument : public RecordForm {
    Q_OBJECT
  public:
    static frmIndexDocument& instance();

    void cmd_Click(int index) override;
    void cboDocCategory_Click();
    void cboDocSubCategory_Click();
    void lstDocs_DblClick();

    void ResetDocumentForm();
    void BrowseSoftCopy();
    void SaveDocument();
    void ShowDocumentList();
    void FillDocumentList();
    void LoadDocument(qint32 DocumentID);

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmIndexDocument() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocDate);
        UI_CONTROL(platform::DatePicker, dtpDocDate);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(platform::DatePicker, dtpFollowUp);
        UI_CONTROL(QLabel, lblDocType);
        UI_CONTROL(platform::ComboBox, cboDocType);
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(platform::ComboBox, cboDocCategory);
        UI_CONTROL(QLabel, lblDocSubCat);
        UI_CONTROL(platform::ComboBox, cboDocSubCategory);
        UI_CONTROL(QLabel, lblDocChildCat);
        UI_CONTROL(platform::ComboBox, cboDocChildCategory);
        UI_CONTROL(QLabel, lblTitle1);
        UI_CONTROL(QLineEdit, txtTitle1);
        UI_CONTROL(QLabel, lblTitle2);
        UI_CONTROL(QLineEdit, txtTitle2);
        UI_CONTROL(QLabel, lblFilePath);
        UI_CONTROL(QLineEdit, txtFilePath);
        UI_CONTROL(QLabel, lblFile);
        UI_CONTROL(platform::ComboBox, cboFile);
        UI_CONTROL(QLabel, lblBookmark);
        UI_CONTROL(QLineEdit, txtBookmark);
        UI_CONTROL(QLabel, lblRemarks);
        UI_CONTROL(QPlainTextEdit, txtRemarks);
        UI_CONTROL(platform::ListView, lstDocs);
        UI_CONTROL(QCheckBox, chkPreview);
        UI_CONTROL(PreviewPane, fraPreview);
    };
    Controls ui;
};
