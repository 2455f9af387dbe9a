#pragma once

#include "Engine.h"

#include <QSqlDatabase>
#include <optional>

class QSqlError;

namespace db {

// A Qt SQL connection of its own, under a name that no other connection uses. Dropping it
// closes and unregisters the connection.
class SqlStore {
  public:
    explicit SqlStore(const QString& driver);
    SqlStore(SqlStore&& other) noexcept;
    SqlStore& operator=(SqlStore&&) = delete;
    ~SqlStore();

    QSqlDatabase& database() { return m_database; }

  private:
    QSqlDatabase m_database;
};

// Open connections to a server that their engines have let go of, kept for the next engine of
// the program's main thread that opens the same source with the same login. The screens open
// a connection for each operation, and a server's login costs many times a statement (and its
// driver learns each table's columns once per connection). At most two wait per login; the
// rest close.
namespace idle {
// A kept connection for `key`, or none. The caller tests that it still answers.
std::optional<SqlStore> take(const QString& key);
// Keeps `store` for `key`, or closes it when two already wait or this is not the main thread.
void keep(const QString& key, SqlStore store);
// Closes every kept connection (a database made anew, or the program ending).
void clear();
} // namespace idle

// An engine reached through a Qt SQL driver: statements, selects and inserts through the
// driver, transactions through the driver's own. Dates go to the store as ISO text, the form in
// which the dialects write date literals, and come back as the driver types them: a driver that
// gives a date column's values as texts needs an engine that reads them itself (SqliteEngine).
class QtSqlEngine : public Engine {
  public:
    // `store` is open.
    QtSqlEngine(SqlStore store, std::unique_ptr<Dialect> dialect);
    ~QtSqlEngine() override;

    const Dialect& dialect() const override;
    void setTimeout(int seconds) override;
    void execute(const QString& text) override;
    // Reads the rows of query() to the end.
    Rows select(const QString& text) override;
    std::unique_ptr<Cursor> query(const QString& text) override;
    void insert(const QString& table, const FieldValues& values) override;
    void beginTransaction() override;
    void commitTransaction() override;
    void rollbackTransaction() override;

    // The engine's own words, without Qt's wrapping.
    static QString describe(const QSqlError& e);

    // When the engine is done, its connection is kept for the next engine of `key` (see idle),
    // unless a transaction was left open on it.
    void keepWhenDone(const QString& key) { m_keepFor = key; }

  protected:
    QSqlDatabase& database() { return m_store.database(); }
    // A transaction begun through beginTransaction and not yet ended.
    bool inTransaction() const { return m_inTransaction; }
    // The rows of `cursor`, read to the end.
    static Rows readRows(Cursor& cursor);

  private:
    SqlStore m_store;
    std::unique_ptr<Dialect> m_dialect;
    QString m_keepFor;
    bool m_inTransaction = false;
};

} // namespace db
