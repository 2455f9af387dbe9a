#pragma once

#include "session/Form.h"

#include <functional>

class QLineEdit;

// The login screen "Vorlane Login".
class frmLogin : public Form {
    Q_OBJECT
  public:
    static frmLogin& instance();

    void cmdLogin_Click();
    void cmdCancel_Click();

    // What follows a good login (the main window) and what ends the program; set at start-up.
    static void setOnLoggedIn(std::function<void()> action);
    static void setOnEnd(std::function<void()> action);

  protected:
    QWidget* build() override;

  private:
    frmLogin() : Form(false) {}
};
