#pragma once

#include <QString>

namespace platform {

// The per-user settings store, by application, section and key.
QString GetSetting(const QString& appName, const QString& section, const QString& key,
                   const QString& defaultValue = QString());
// Throws platform::Error 75 when the store cannot be written.
void SaveSetting(const QString& appName, const QString& section, const QString& key, const QString& value);

} // namespace platform
