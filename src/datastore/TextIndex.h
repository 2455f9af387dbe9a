#pragma once

#include <QString>
#include <QStringList>

struct sqlite3;

// The contains-search index of the embedded file: a trigram full-text table over the four texts
// of the documents (Title1, Title2, Bookmark, Remarks), kept by triggers on Vorlane, so that
// `like '%text%'` on them need not read every document. It is no table of the system: the
// schema's list of tables does not hold it.
namespace db {

// The name of the full-text table.
inline constexpr const char* TextIndexTable = "VorlaneText";

// True for the four columns of Vorlane that the index holds, in any letter case.
bool isIndexedTextColumn(const QString& column);

// The statements that create the index and its triggers, for a database whose Vorlane is empty.
QStringList textIndexStatements();

// What openTextIndex found.
enum class TextIndexState {
    Present,    // the database had it
    Built,      // it was missing and has been built now
    Unavailable // it is missing and could not be built (the file is read-only, or busy too long)
};

// Makes sure the database of `handle` has the index: a database made before it existed gets it
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
