#pragma once

#include "index/PreviewPane.h"
#include "session/EditCycle.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

// Finds documents by any mix of eleven criteria, lists them and prints the list with the
// criteria written out as a sentence above it. Every user may search; the screen writes
// nothing but the rows of the printed list. It has no row of its own to edit: it has the
// record screens' window set-up and array of action buttons, not their edit cycle.
class frmSearchDocument : public CommandForm {
    Q_OBJECT
  public:
    static frmSearchDocument& instance();

    // The readable sentence of the criteria, rebuilt by each BuildSearchStatement.
    QString QueryDescription;

    void cmd_Click(int index) override;
    void cmdSearch_Click();
    void lstList_DblClick();
    void lstList_SelectionChanged();
    void cboDocCategory_Click();
    void cboDocSubCategory_Click();
    void dtpDocFrom_Change();
    void dtpDocTo_Change();
    void dtpFollowUpFrom_Change();
    void dtpFollowUpTo_Change();

    void ResetSearchForm();
    QString BuildSearchStatement();
    void FillResultList(const QString& statement);
    void PrintSearchList();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmSearchDocument() = default;

    // The steps of build.
    void buildCriteria(QWidget* w, QGridLayout* grid, QList<QWidget*>& order);
    platform::ListView* buildResultList(QWidget* w);
    QHBoxLayout* buildBottomRow(QWidget* w, QList<QWidget*>& order);
    void connectHandlers();
    // The steps of BuildSearchStatement.
    bool anyCriterion() const;
    void addClassificationCriteria(QString& statement);
    void addTextCriteria(QString& statement);
    void addSoftCopyCriterion(QString& statement);
    void addDateCriteria(QString& statement);

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblDocType);
        UI_CONTROL(platform::ComboBox, cboDocType);
        UI_CONTROL(QLabel, lblDocCategory);
        UI_CONTROL(platform::ComboBox, cboDocCategory);
        UI_CONTROL(QLabel, lblDocSubCat);
        UI_CONTROL(platform::ComboBox, cboDocSubCategory);
        UI_CONTROL(QLabel, lblDocChildCat);
        UI_CONTROL(platform::ComboBox, cboDocChildCategory);
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(platform::ComboBox, cboFileNo);
        UI_CONTROL(QLabel, lblTitle1);
        UI_CONTROL(QLineEdit, txtTitle1);
        UI_CONTROL(QLabel, lblTitle2);
        UI_CONTROL(QLineEdit, txtTitle2);
        UI_CONTROL(QLabel, lblBookmark);
        UI_CONTROL(QLineEdit, txtBookmark);
        UI_CONTROL(QLabel, lblRemarks);
        UI_CONTROL(QLineEdit, txtRemarks);
        UI_CONTROL(QLabel, lblSoftCopyText);
        UI_CONTROL(QLineEdit, txtSoftCopyText);
        UI_CONTROL(QLabel, lblDocDate);
        UI_CONTROL(platform::DatePicker, dtpDocFrom);
        UI_CONTROL(QLabel, lblDocDateTo);
        UI_CONTROL(platform::DatePicker, dtpDocTo);
        UI_CONTROL(QLabel, lblFollowupdate);
        UI_CONTROL(platform::DatePicker, dtpFollowUpFrom);
        UI_CONTROL(QLabel, lblFollowupDateTo);
        UI_CONTROL(platform::DatePicker, dtpFollowUpTo);
        UI_CONTROL(platform::CommandButton, cmdSearch);
        UI_CONTROL(platform::ListView, lstList);
        UI_CONTROL(QLabel, lblNoOfRecords);
        UI_CONTROL(QCheckBox, chkPreview);
        UI_CONTROL(PreviewPane, fraPreview);
    };
    Controls ui;
};
