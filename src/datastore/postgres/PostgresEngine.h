#pragma once

#include "datastore/QtSqlEngine.h"

namespace db {

// A database on a PostgreSQL server, reached through its ODBC driver. Beginning a transaction
// takes one lock that every seat's writing transaction takes (a transaction-level advisory lock,
// let go at its end), so that NextID and the Insert after it run for one seat at a time, as on
// the embedded file. The wait for it is bounded by the timeout.
class PostgresEngine : public QtSqlEngine {
  public:
    explicit PostgresEngine(SqlStore store);

    void setTimeout(int seconds) override;
    // Reads the rows through PostgresRows.h: a select that gives many rows comes in pages, and
    // each value is read without the Qt driver's work per value; a column of another type than
    // those of the schema (integers, dates, texts) is read through the Qt driver.
    std::unique_ptr<Cursor> query(const QString& text) override;
    // All rows at once through the Qt driver.
    Rows select(const QString& text) override;
    void beginTransaction() override;
    // A rollback also undoes a wait set inside the transaction: it is set again before the next
    // statement.
    void rollbackTransaction() override;
    // After checking that the database knows every alphabet's letter case (UTF-8 and a UTF-8
    // locale) and holds none of the tables (PostgresSchema.cpp).
    void createSchema(const QString& dataSource, const QString& scrambledUserName,
                      const QString& scrambledPassword) override;

    // Gives a database made before the later tables (Table::addedLater) those tables, their
    // indexes and triggers, when the login may create them; otherwise it stays as it is. Costs
    // one look-up in the catalogue when nothing is missing.
    void openLaterTables();

  private:
    int m_timeout = -1; // the wait in force on the server, in seconds; -1 before the first
};

} // namespace db
