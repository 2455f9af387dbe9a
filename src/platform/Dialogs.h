#pragma once

#include <QString>

class QWidget;

namespace platform {

// A filter in the form "description|*.a;*.b|..." as the dialogs take it: "description (*.a
// *.b);;...", each pattern matching without regard to case.
QString dialogFilter(const QString& filter);

// The file-open dialog. `filter` takes the form "description|*.a;*.b|description|*.c".
// Returns the chosen path, or an empty string on cancel.
QString showOpenDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialDir = QString());

// The file-save dialog, same filter form as showOpenDialog; asks before overwriting a file.
// Returns the chosen path, or an empty string on cancel.
QString showSaveDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialPath = QString());

// The folder browser: starts in `startFolder`, returns the chosen folder or an empty string on cancel.
QString browseForFolder(const QString& startFolder, QWidget* owner, const QString& title);

// Shows a dialog modally over its owner and returns when it closes. Under test it is shown
// modal but without waiting, so that the test can work it.
void showModal(QWidget* dialog);

} // namespace platform
