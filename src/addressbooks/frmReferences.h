#pragma once

#include "SearchPanel.h"
#include "session/EditCycle.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

// The internet references (table References): named links to web pages with free notes,
// found again through a search panel by a part of their name.
class frmReferences : public RecordForm {
    Q_OBJECT
  public:
    static frmReferences& instance();

    void cmd_Click(int index) override;
    void chkShowAll_Click();
    void lblShowAll_Click();
    void cmdSearch_Click();
    void lstRef_DblClick();

    void ResetReferenceForm();
    void ClearReferenceFields();
    void ShowReferenceList();
    void FillReferenceList();
    void LoadReference(qint16 key);
    void SaveReference();
    void PrintReferenceList();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmReferences() = default;

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblName);
        UI_CONTROL(QLineEdit, txtRefName);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QPlainTextEdit, txtParticulars);
        UI_CONTROL(QLabel, lblPhone);
        UI_CONTROL(QLineEdit, txtLink);
        UI_CONTROL(QFrame, fraList);
        UI_CONTROL(QLabel, lblSearchRef);
        UI_CONTROL(QLineEdit, txtSearchName);
        UI_CONTROL(platform::CommandButton, cmdSearch);
        UI_CONTROL(QCheckBox, chkShowAll);
        UI_CONTROL(QLabel, lblShowAll);
        UI_CONTROL(platform::ListView, lstRef);
    };
    Controls ui;
    SearchPanel panel{ui.fraList,   ui.lblSearchRef, ui.txtSearchName,
                      ui.cmdSearch, ui.chkShowAll,   ui.lblShowAll};
};
