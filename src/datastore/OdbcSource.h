#pragma once

#include "Engine.h"

namespace db {

// True when the unixODBC driver manager knows a user or system data source of that name.
bool odbcKnows(const QString& name);

// Connects to the data source through ODBC and hands back the engine for the DBMS behind it.
// A refused login fails with ErrLoginFailed; an unreachable source, or a DBMS this program
// cannot use, with ErrDataSourceNotFound.
std::unique_ptr<Engine> openOdbcSource(const QString& name, const QString& user, const QString& password);

} // namespace db
