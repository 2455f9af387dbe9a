#pragma once

#include "session/Form.h"

// The about picture: a window without caption that a click on the picture or on "X" closes.
class frmAbout : public Form {
    Q_OBJECT
  public:
    static frmAbout& instance();
    void Form_Click();
    void lblClose_Click();

  protected:
    QWidget* build() override;

  private:
    frmAbout() : Form(false) {}
};
