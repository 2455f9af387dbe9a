#pragma once

#include <QString>

namespace platform {

// The program's folder: the folder of the executable (overridable under test).
QString appPath();

// Joins a folder and a relative path with the platform's separator.
QString joinPath(const QString& folder, const QString& relative);

// The plain file name of `path` when a normal file exists there, else the empty string.
QString Dir(const QString& path);

bool fileExists(const QString& path);
bool folderExists(const QString& path);

// File operations; each throws platform::Error with the platform's number and text on failure.
void FileCopy(const QString& source, const QString& destination);
// Deletes exactly the file named (no patterns): 53 when there is none, 75 when it is marked
// read-only, 70 when the folder refuses.
void Kill(const QString& path);
enum FileAttribute : int { vbNormal = 0, vbReadOnly = 1, vbHidden = 2, vbSystem = 4, vbArchive = 32 };
void SetAttr(const QString& path, int attributes);
int GetAttr(const QString& path);

} // namespace platform
