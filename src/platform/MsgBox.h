#pragma once

#include <QString>

namespace platform {

// Button and icon codes of a message box, added together as the style.
enum MsgBoxStyle : int {
    vbOKOnly = 0,
    vbYesNo = 4,
    vbCritical = 16,
    vbQuestion = 32,
    vbExclamation = 48,
    vbInformation = 64,
};

// Answers of a message box.
enum MsgBoxResult : int { vbOK = 1, vbCancel = 2, vbYes = 6, vbNo = 7 };

// The application's title, shown on every message box.
QString appTitle();

// Shows a modal message box titled with the application's title and returns the answer.
int MsgBox(const QString& prompt, int style = vbOKOnly);

} // namespace platform
