#pragma once

#include "datastore/Ado.h"

#include <QString>

class QWidget;
namespace platform {
class ComboBox;
class ListBox;
} // namespace platform

// The shared routines of every screen: the process-wide connection and the read-only data
// routines. The routines below OpenConnection show a failure themselves (critical icon, the
// data layer's description) and return the default that their callers expect.
namespace GenMod {

// The process-wide connection, alive only during one operation.
inline db::ConnectionPtr Conn;

// Makes a new connection in Conn to the data source "Vorlane". On failure shows the
// message and returns false.
bool OpenConnection();
// Releases Conn.
void CloseConnection();
// The error path of a writing routine: rolls back when the routine noted its transaction
// open (a failing rollback is passed over: the release discards the transaction anyway),
// then releases Conn.
void AbandonConnection(bool inTransaction);

// Reads the rights level of the row of `statement` and sets Session::CurrentUserID.
QString ReadUserRights(const QString& statement);

// Centres a child screen in the main window's inner area.
void CenterForm(QWidget* form);
QString FixQuotes(const QString& value);
QString GetFieldValue(const QString& fields, const QString& source);
bool RecordExists(const QString& fields, const QString& source);
void FillCombo(const QString& fields, const QString& source, platform::ComboBox* target);
void FillList(const QString& fields, const QString& source, platform::ListBox* target);
void FillUserList(const QString& fields, const QString& source, platform::ListBox* target);
qint32 FindItemIndex(const QString& value, platform::ComboBox* target);
qint32 NextID(const QString& field, const QString& table);
// Each character to its Windows-1252 byte, 255 minus it, back to a character. A character
// outside that code page becomes one that no Windows-1252 text scrambles into, another for each
// character. Its own inverse, for every text.
QString ScrambleText(const QString& text);

// The connection password and user of the data source.
inline const QString DataSourceName = QStringLiteral("Vorlane");
inline const QString DataSourceUser = QStringLiteral("Admin");
inline const QString DataSourcePassword = QStringLiteral("tarvo@48213");

} // namespace GenMod
