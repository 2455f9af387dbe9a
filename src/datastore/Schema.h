#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace db {

enum class ColumnType { Number, Text, Date };

// What a column asks of the engines besides its type; the marks combine.
enum ColumnMark : unsigned {
    Plain = 0,
    // Searches filter and order by it: it gets an ordinary index of its own.
    Indexed = 1,
    // A text that the screens search for a part of (`like '%text%'`): the engines keep an index of
    // its trigrams, so that such a like need not read every row of the table.
    TextSearch = 2,
    // A scrambled text (a user's name or password): it has no letter case, and compares exactly.
    Scrambled = 4,
};

struct Column {
    QString name;
    ColumnType type;
    unsigned marks = Plain;

    bool indexed() const { return (marks & Indexed) != 0; }
    bool textSearch() const { return (marks & TextSearch) != 0; }
    bool scrambled() const { return (marks & Scrambled) != 0; }
};

struct Table {
    QString name;
    QVector<Column> columns; // in the order of the positional Insert
    // The first column is the table's key. A table that the text search covers has one.
    bool keyed = true;
    // Added after the first version: a database made before it gets it at its first open.
    bool addedLater = false;

    // The key's name; empty for a table without one.
    QString key() const { return keyed ? columns.first().name : QString(); }
    // The columns marked for text search, in the table's order.
    QStringList textSearchColumns() const;
};

// The thirteen tables of the data store, columns in their binding order.
const QVector<Table>& schema();
// The table of that name regardless of case, or nullptr.
const Table* findTable(const QString& name);
// True when `column` of `table` holds dates, both names regardless of case.
bool isDateColumn(const QString& table, const QString& column);
// True when `column` of `table` is marked for text search, both names regardless of case.
bool isTextSearchColumn(const QString& table, const QString& column);
// True when some table has a text column of that name, regardless of case.
bool isTextColumnName(const QString& name);
// True when `name` is a table or column name of the schema, regardless of case.
bool isSchemaName(const QString& name);
// The name as the schema spells it, or `name` itself when unknown.
QString canonicalName(const QString& name);

// Paths of the embedded store, relative to the program's folder.
QString databaseFolder(); // <program folder>/Database
QString databaseFile();   // <program folder>/Database/Vorlane.mdb
QString backupFolder();   // <program folder>/Database/Backup

// Creates a new embedded database file with the schema and the first user
// (UserID 1, level Modify) whose name and password are given already scrambled.
// Refuses (throws platform::Error) when the file exists. The statements are SQLite's
// (sqlite/SqliteSchema.cpp).
void createDatabase(const QString& path, const QString& scrambledUserName, const QString& scrambledPassword);

// Creates the schema, its indexes and the first user, as createDatabase does, in the database
// of a data source on a server, with the login that the data source's entry names or else
// `user` and `password` (openOdbcSource). The engine of the data source writes the statements
// and checks the database first (Engine::createSchema). Refuses (throws platform::Error) a
// database that holds any of the tables already.
void createServerDatabase(const QString& dataSource, const QString& user, const QString& password,
                          const QString& scrambledUserName, const QString& scrambledPassword);

} // namespace db
