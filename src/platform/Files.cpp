#include "Files.h"

#include "Error.h"
#include "TestState.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace platform {

QString appPath() {
    const QString& overridden = detail::testState().appPath;
    if (!overridden.isEmpty())
        return overridden;
    return QCoreApplication::applicationDirPath();
}

QString joinPath(const QString& folder, const QString& relative) {
    QString rel = relative;
    rel.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (rel.startsWith(QLatin1Char('/')))
        rel.remove(0, 1);
    return QDir(folder).filePath(rel);
}

QString Dir(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() || !info.isFile() || info.isHidden())
        return QString();
    return info.fileName();
}

bool fileExists(const QString& path) {
    return QFileInfo(path).isFile();
}
bool folderExists(const QString& path) {
    return QFileInfo(path).isDir();
}

void FileCopy(const QString& source, const QString& destination) {
    if (!QFileInfo(source).isFile())
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    if (!QFileInfo(QFileInfo(destination).absolutePath()).isDir())
        throw Error(ErrPathNotFound, QStringLiteral("Path not found"));
    if (QFileInfo::exists(destination) && !QFile::remove(destination))
        throw Error(ErrPermissionDenied, QStringLiteral("Permission denied"));
    if (!QFile::copy(source, destination))
        throw Error(ErrPermissionDenied, QStringLiteral("Permission denied"));
    // A copy is a file of its own: writable even where the source was read-only.
    QFile::setPermissions(destination, QFile::permissions(destination) | QFile::WriteOwner);
}

// Deletes the one file named, never more. The platform's own delete took a name holding "*"
// or "?" as a pattern and deleted every file that it matched; here such a name is taken as it
// stands, so it deletes the one file of exactly that name or fails as a missing file does.
// A file marked read-only stays, as it does on the platform.
void Kill(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile())
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    if (!(info.permissions() & QFile::WriteOwner))
        throw Error(ErrPathFileAccess, QStringLiteral("Path/File access error"));
    if (!QFile::remove(path))
        throw Error(ErrPermissionDenied, QStringLiteral("Permission denied"));
}

void SetAttr(const QString& path, int attributes) {
    if (!QFileInfo::exists(path))
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    QFile::Permissions perms = QFile::permissions(path);
    if (attributes & vbReadOnly)
        perms &= ~(QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther);
    else
        perms |= QFile::WriteOwner | QFile::WriteUser;
    if (!QFile::setPermissions(path, perms))
        throw Error(ErrPermissionDenied, QStringLiteral("Permission denied"));
}

int GetAttr(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    int attributes = vbNormal;
    // The read-only attribute is the file's own mark, whoever asks (root may write anyway).
    if (!(info.permissions() & QFile::WriteOwner))
        attributes |= vbReadOnly;
    if (info.isHidden())
        attributes |= vbHidden;
    if (info.isDir())
        attributes |= 16;
    return attributes;
}

} // namespace platform
