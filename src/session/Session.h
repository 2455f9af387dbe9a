#pragma once

#include <QString>

// The values of the logged-in user, set at login and kept until the program ends.
namespace Session {

inline qint16 CurrentUserID = 0;
// "User", "Save", "Modify", or empty when no rights column of the user's row is set.
inline QString UserRights;

// The two rights tests that every Save makes before anything else. Shows the message
// and returns false when the user may not save; `editMode` says whether a loaded row
// would be changed.
bool MaySave(bool editMode);

// The program's part of the per-user settings store: application "Vorlane", section
// "Settings". Shared by every login under one system user.
QString setting(const QString& key, const QString& defaultValue = QString());
void saveSetting(const QString& key, const QString& value);

} // namespace Session
