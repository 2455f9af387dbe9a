#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace db {

enum class ColumnType { Number, Text, Date };

struct Column {
    QString name;
    ColumnType type;
};

struct Table {
    QString name;
    QVector<Column> columns; // in the order of the positional Insert
};

// The twelve tables of the data store, columns in their binding order.
const QVector<Table>& schema();
// The table of that name regardless of case, or nullptr.
const Table* findTable(const QString& name);
// True when `column` of `table` holds dates, both names regardless of case.
bool isDateColumn(const QString& table, const QString& column);
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
// Refuses (throws platform::Error) when the file exists.
void createDatabase(const QString& path, const QString& scrambledUserName, const QString& scrambledPassword);

// Creates the schema, its indexes and the first user, as createDatabase does, in the database
// of a data source on a PostgreSQL server, with the login that the data source's entry names
// or else `user` and `password` (openOdbcSource). Refuses (throws platform::Error) a database
// that holds any of the tables already.
void createServerDatabase(const QString& dataSource, const QString& user, const QString& password,
                          const QString& scrambledUserName, const QString& scrambledPassword);

} // namespace db
