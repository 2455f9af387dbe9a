#pragma once

#include "BusyWait.h"
#include "datastore/QtSqlEngine.h"

struct sqlite3;

namespace db {

class SqliteDialect;

// The embedded database file, Database/Vorlane.mdb in the program's folder. Waits for the
// file's write lock up to the timeout, takes that lock when a transaction begins, and compares
// texts without regard to the case of any letter. The contains-search index of the documents'
// texts is built at the first open of a database made without it (TextIndex.h).
class SqliteEngine : public QtSqlEngine {
  public:
    // Opens the existing file; a missing file, or one that holds no tables, fails with
    // ErrDataSourceNotFound. The file is never created here.
    static std::unique_ptr<SqliteEngine> openEmbedded(int timeoutSeconds);

    void setTimeout(int seconds) override;
    void beginTransaction() override;
    void commitTransaction() override;
    void rollbackTransaction() override;

    // Steps the file's own statement: a row is read, and a value converted, when asked for.
    std::unique_ptr<Cursor> query(const QString& text) override;

  private:
    // Takes `dialect` over.
    SqliteEngine(SqlStore store, SqliteDialect* dialect);

    SqliteDialect* m_dialect;
    sqlite3* m_handle;
    BusyWait m_busy;
};

} // namespace db
