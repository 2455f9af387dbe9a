#pragma once

#include <QSortFilterProxyModel>
#include <QString>

class QWidget;

namespace platform {

// True for a filter whose patterns all name programs ("Viewer|*.exe;*.exe"). The open dialog
// then offers the executable files, whatever their names, and starts in /usr/bin.
bool isProgramFilter(const QString& filter);

// Keeps the folders and the executable files of a file dialog's list.
class ProgramFilesOnly : public QSortFilterProxyModel {
  public:
    explicit ProgramFilesOnly(QObject* parent = nullptr);

  protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
};

// A filter in the form "description|*.a;*.b|..." as the dialogs take it: "description (*.a
// *.b);;...", each pattern matching without regard to case; "*.exe" becomes "*".
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
