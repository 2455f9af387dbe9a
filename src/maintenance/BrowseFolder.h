#pragma once

#include <QString>

// The folder browser through which the backup's folder is chosen.
namespace BrowseFolder {

// Lets the user choose a folder, starting at `startFolder` (when it exists), over the window of
// handle `ownerHandle` (0: no owner), under `title` when it is not empty. Only folders can be
// chosen. Returns the chosen folder, or an empty string when the user cancels.
QString SelectFolder(const QString& startFolder, qint32& ownerHandle, const QString& title);

} // namespace BrowseFolder
