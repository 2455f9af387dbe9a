#include "MsgBox.h"

#include "MousePointer.h"
#include "TestState.h"

#include <QApplication>
#include <QMessageBox>

namespace platform {

QString appTitle() {
    return QStringLiteral("Vorlane");
}

int MsgBox(const QString& prompt, int style) {
    const bool yesNo = (style & 7) == vbYesNo;
    auto& state = detail::testState();
    if (state.enabled) {
        state.messages.append({prompt, style});
        if (!state.answers.isEmpty())
            return state.answers.dequeue();
        return yesNo ? vbNo : vbOK;
    }

    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(appTitle());
    box.setText(prompt);
    box.setAccessibleName(appTitle());
    box.setAccessibleDescription(prompt);
    switch (style & 0x70) {
    case vbCritical:
        box.setIcon(QMessageBox::Critical);
        break;
    case vbQuestion:
        box.setIcon(QMessageBox::Question);
        break;
    case vbExclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case vbInformation:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        break;
    }
    if (yesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::No);
    } else {
        box.setStandardButtons(QMessageBox::Ok);
    }
    // A message always shows the normal pointer, whatever a long step had set.
    const int pointer = mousePointer();
    setMousePointer(vbDefault);
    const int answer = box.exec();
    setMousePointer(pointer);
    switch (answer) {
    case QMessageBox::Yes:
        return vbYes;
    case QMessageBox::No:
        return vbNo;
    default:
        return vbOK;
    }
}

} // namespace platform
