#pragma once

#include "QtSqlEngine.h"

namespace db {

// True when the unixODBC driver manager knows a user or system data source of that name.
bool odbcKnows(const QString& name);

// The ODBC connection handle of an open connection through the Qt ODBC driver; null for another
// driver's.
void* odbcHandle(const QSqlDatabase& store);

// A key of the data source's own entry in odbc.ini; empty when the entry has none.
QString entryValue(const QString& name, const char* key);

// An open connection to a data source through ODBC.
struct OdbcConnection {
    SqlStore store;
    QString dbms; // the name the DBMS gives itself (SQL_DBMS_NAME)
    QString key;  // the source and login, for the connections kept idle
};

// Connects to the data source through ODBC, or takes a connection kept idle for the same source
// and login that still answers. The login is as openOdbcSource says; so are the failures.
OdbcConnection connectOdbcSource(const QString& name, const QString& user, const QString& password);

// Connects to the data source through ODBC and hands back the engine for the DBMS behind it
// (chooseEngine).
// The login is the one the data source's entry names, when it names one (its password from the
// entry or from the server's own password file); otherwise `user` and `password`. A refused login fails with
// ErrLoginFailed; an unreachable source, or a DBMS this program cannot use, with ErrDataSourceNotFound.
std::unique_ptr<Engine> openOdbcSource(const QString& name, const QString& user, const QString& password);

} // namespace db
