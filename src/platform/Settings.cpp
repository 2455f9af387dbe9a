#include "Settings.h"

#include "Error.h"
#include "TestState.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <memory>

namespace platform {

namespace {
// One settings file per application in the user's configuration folder, sections as groups.
std::unique_ptr<QSettings> open(const QString& appName) {
    QString folder = detail::testState().settingsFolder;
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QDir().mkpath(folder);
    return std::make_unique<QSettings>(QDir(folder).filePath(appName + QStringLiteral(".conf")),
                                       QSettings::IniFormat);
}
} // namespace

QString GetSetting(const QString& appName, const QString& section, const QString& key,
                   const QString& defaultValue) {
    auto settings = open(appName);
    return settings->value(section + QLatin1Char('/') + key, defaultValue).toString();
}

void SaveSetting(const QString& appName, const QString& section, const QString& key, const QString& value) {
    auto settings = open(appName);
    settings->setValue(section + QLatin1Char('/') + key, value);
    settings->sync();
    if (settings->status() != QSettings::NoError)
        throw Error(ErrPathFileAccess,
                    QStringLiteral("The settings could not be written to \"%1\".").arg(settings->fileName()));
}

} // namespace platform
