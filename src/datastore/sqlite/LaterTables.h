#pragma once

#include <QString>
#include <QStringList>

struct sqlite3;

// The tables that the schema marks as added after the first version (Table::addedLater), and the
// triggers that make a soft copy's row follow its document.
namespace db {

struct Table;

// The Create Table statement of `t` in the embedded file (SqliteSchema.cpp).
QString createTableStatement(const Table& t);

// The triggers on Vorlane that keep each document's soft copy row: a new document brings it,
// waiting; deleting a document deletes it; changing the path makes it wait to be read again, and
// changing the date carries the date over. Then the index of the waiting, newest first. Every
// writer of the file keeps this, whatever its version.
QStringList followStatements();

// Makes sure the database of `handle` has every later table and the triggers: a database made
// before them gets them once, in one write transaction that tests again after taking the write
// lock. Never throws; false when they are missing and could not be made (a read-only or busy
// file).
bool openLaterTables(sqlite3* handle);

} // namespace db
