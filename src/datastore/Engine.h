#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>

namespace db {

class Dialect;

// The rows of one select, read to the end. NULL is an invalid QVariant; values of the schema's
// date columns come as QDate, integers as qint64.
struct Rows {
    QStringList names;
    QVector<QVector<QVariant>> values;
};

// The rows of one select, read one at a time: the engine reads a row only when asked for
// it, so a select of any size needs the memory of one row. A cursor lives no longer than
// its engine; dropping it ends the statement.
class Cursor {
  public:
    virtual ~Cursor() = default;
    virtual QStringList names() const = 0;
    // Moves to the next row (the first, at the start); false when there is none left.
    virtual bool next() = 0;
    // A value of the current row, typed as in Rows.
    virtual QVariant value(int column) const = 0;
    // The text of a value of the current row in UTF-8, for readers that keep texts as such;
    // false for a Null. A date gives its ISO form.
    virtual bool utf8(int column, QByteArray& text) const;
};

// The text of a value in UTF-8 (a date in its ISO form); false for a Null.
bool utf8Text(const QVariant& value, QByteArray& text);

// Named values of one new row, in the order they were given.
using FieldValues = QVector<QPair<QString, QVariant>>;

// What differs between the engines beneath a Connection. An engine is open from its
// construction to its destruction; texts it runs are already in its dialect. Every failure is
// thrown as platform::Error with the engine's own description.
class Engine {
  public:
    virtual ~Engine() = default;

    // The translation of the screens' statements for this engine.
    virtual const Dialect& dialect() const = 0;
    // Seconds to wait for the store's write lock, applied before each statement.
    virtual void setTimeout(int seconds) = 0;

    // Runs one statement that returns no rows.
    virtual void execute(const QString& text) = 0;
    // Runs one select and reads all its rows.
    virtual Rows select(const QString& text) = 0;
    // Runs one select and hands its rows out one at a time. The rows are read when asked
    // for; an engine without a way of its own reads them all at once.
    virtual std::unique_ptr<Cursor> query(const QString& text);
    // Adds one row to `table` (named as the screens name it); a value of a date column comes as
    // QDate, any other as the screen gave it.
    virtual void insert(const QString& table, const FieldValues& values) = 0;

    // Beginning a transaction takes the write lock at once, so that two seats cannot both read
    // the same maximum key inside their transactions.
    virtual void beginTransaction() = 0;
    virtual void commitTransaction() = 0;
    virtual void rollbackTransaction() = 0;

    // Creates the tables of the schema, their indexes and the first user (UserID 1, level Modify,
    // name and password given scrambled) in the empty database of the data source `dataSource`,
    // after the engine's own checks of that database. An engine that is not set up this way
    // refuses with ErrDataSourceNotFound.
    virtual void createSchema(const QString& dataSource, const QString& scrambledUserName,
                              const QString& scrambledPassword);
};

// The engines beneath a Connection. Each has its folder under src/datastore.
enum class EngineKind {
    Sqlite,  // the embedded file (sqlite/)
    Postgres // a PostgreSQL server reached through ODBC (postgres/)
};

// The one choice of the engine: for the DBMS that names itself `dbms` (ODBC's SQL_DBMS_NAME),
// reached through the ODBC data source `dataSource`, or, when `dataSource` is empty, the embedded
// file. Throws ErrDataSourceNotFound with the reason for what this program does not use: SQLite
// through ODBC (the program reads the file itself, with its own dates, letter case and text
// index), or a DBMS it does not know.
EngineKind chooseEngine(const QString& dataSource, const QString& dbms);

// Opens the data source of that name: through ODBC when unixODBC knows it, otherwise the
// embedded database file. `timeoutSeconds` bounds the wait for the store while opening.
std::unique_ptr<Engine> openEngine(const QString& dataSource, const QString& user, const QString& password,
                                   int timeoutSeconds);

// The dialect of a connection that is not open.
const Dialect& defaultDialect();

namespace test {
// Makes openEngine hand out the engines of `factory` instead of opening a data source; an
// empty function restores the data sources.
using EngineFactory = std::function<std::unique_ptr<Engine>(const QString& dataSource)>;
void setEngineFactory(EngineFactory factory);
} // namespace test

} // namespace db
