#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"
#include "session/Form.h"

#include <QLabel>
#include <QLineEdit>
#include <functional>

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

    // The controls, each under its object name.
    struct Controls {
        UI_CONTROL(QLabel, Label1);
        UI_CONTROL(QLabel, Label2);
        UI_CONTROL(QLabel, Label3);
        UI_CONTROL(QLineEdit, txtUserName);
        UI_CONTROL(QLineEdit, txtPassword);
        UI_CONTROL(platform::CommandButton, cmdLogin);
        UI_CONTROL(platform::CommandButton, cmdCancel);
    };
    Controls ui;
};
