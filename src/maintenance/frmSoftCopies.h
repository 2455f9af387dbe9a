#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"
#include "session/Form.h"

#include <QLabel>

// The state of the soft copies' reading, for the first user: how many documents have their
// text, wait to be read, could not be read (by reason), have no file at their path, or are of a
// kind whose text is not read; then the documents whose file is missing, so that the office can
// put the files back. It only reads; Refresh reads again.
class frmSoftCopies : public Form {
    Q_OBJECT
  public:
    static frmSoftCopies& instance();

    // The most documents with a missing file that the list shows; a note tells how many more.
    int MissingShown = 500;

    void cmdRefresh_Click();
    void cmdClose_Click();

  protected:
    QWidget* build() override;
    void Form_Load() override;

  private:
    frmSoftCopies() : Form(true) {}
    // Reads the counts, the reasons and the missing files on the open connection.
    void readStates();
    void readMissing(qint64 missing);

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, lblStates);
        UI_CONTROL(platform::ListView, lstStates);
        UI_CONTROL(QLabel, lblReasons);
        UI_CONTROL(platform::ListView, lstReasons);
        UI_CONTROL(QLabel, lblMissing);
        UI_CONTROL(platform::ListView, lstMissing);
        UI_CONTROL(QLabel, lblMore);
        UI_CONTROL(platform::CommandButton, cmdRefresh);
        UI_CONTROL(platform::CommandButton, cmdClose);
    };
    Controls ui;
};
