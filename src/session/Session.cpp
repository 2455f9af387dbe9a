#include "Session.h"

#include "platform/MsgBox.h"
#include "platform/Settings.h"

namespace Session {

bool MaySave(bool editMode) {
    if (UserRights == QLatin1String("User")) {
        platform::MsgBox(QStringLiteral("You donot have rights to Save or Modify data."),
                         platform::vbExclamation);
        return false;
    }
    if (UserRights != QLatin1String("Modify") && editMode) {
        platform::MsgBox(QStringLiteral("You donot have rights to Modify data."), platform::vbExclamation);
        return false;
    }
    return true;
}

QString setting(const QString& key, const QString& defaultValue) {
    return platform::GetSetting(QStringLiteral("Vorlane"), QStringLiteral("Settings"), key, defaultValue);
}

void saveSetting(const QString& key, const QString& value) {
    platform::SaveSetting(QStringLiteral("Vorlane"), QStringLiteral("Settings"), key, value);
}

} // namespace Session
