#pragma once

#include <QString>
#include <QStringList>

struct sqlite3;

// The contains-search indexes of the embedded file: for each table with columns that the schema
// marks for text search (Column::textSearch), a trigram full-text table over those columns, kept
// by triggers on the table, so that `like '%text%'` on them need not read every row. They are no
// tables of the system: the schema's list of tables does not hold them.
namespace db {

// The name of the full-text table of `table` ("VorlaneText" for Vorlane).
QString textIndexName(const QString& table);

// The statements that create every table's index and its triggers, table by table (the full-text
// table, then its insert, delete and update triggers), for a database whose tables are empty.
QStringList textIndexStatements();

// What openTextIndex found.
enum class TextIndexState {
    Present,    // the database had it
    Built,      // it was missing and has been built now
    Unavailable // it is missing and could not be built (the file is read-only, or busy too long)
};

// Makes sure the database of `handle` has every index: a database made before one existed gets it
// built once, in one write transaction that tests again for it after taking the write lock, so
// that two seats opening together build it once. The hourglass shows while it is built.
// Never throws: a database that cannot get it goes on without it.
TextIndexState openTextIndex(sqlite3* handle);

// The full-text query (for `<column> MATCH '<query>'` on the index) that finds at least every
// document whose text is like `pattern` under the connections' case folding, or an empty text
// when the pattern holds no run of three characters that the index can look for. The rows it
// finds still need the like itself: it finds more rows than the like, never fewer.
QString textIndexQuery(const QString& pattern);

} // namespace db
