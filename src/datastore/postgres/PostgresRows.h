#pragma once

#include "datastore/Engine.h"

#include <functional>

namespace db {

// The rows of one select on the server, read through a statement of their own on the connection
// `connection` (an ODBC connection handle), many rows per call of the driver, each value typed
// as the Qt driver types it: integers as qint64, dates as QDate, texts as QString.
//
// A select that the server expects to give more than PagedAbove rows is read through a server
// cursor, PageRows rows at a time, so that the program holds one page of it; a smaller one is
// read at once, as the driver reads every select, so that the server plans it as it plans any
// statement. The cursor needs a transaction: outside one of the engine's own
// (`inTransaction`), the rows open one that ends with them.
//
// Returns null when a column is of a type that these rows do not read (the caller reads such a
// select through the Qt driver); throws platform::Error with the server's words when the
// statement is refused.
std::unique_ptr<Cursor> openServerRows(void* connection, const QString& text,
                                       std::function<bool()> inTransaction);

namespace server {
inline constexpr int PagedAbove = 100000;
inline constexpr int PageRows = 5000;
} // namespace server

} // namespace db
