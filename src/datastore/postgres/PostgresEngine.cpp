#include "PostgresEngine.h"

#include "PostgresDialect.h"
#include "PostgresRows.h"
#include "datastore/Errors.h"
#include "datastore/OdbcSource.h"

namespace db {

namespace {

// The key of the writers' lock: any number that nothing else on the database uses.
constexpr qint64 WriteLockKey = 0x566f726c616e65; // "Vorlane"

} // namespace

PostgresEngine::PostgresEngine(SqlStore store)
    : QtSqlEngine(std::move(store), std::make_unique<PostgresDialect>()) {}

void PostgresEngine::setTimeout(int seconds) {
    if (seconds == m_timeout)
        return;
    execute(QStringLiteral("SET lock_timeout = %1").arg(qMax(0, seconds) * 1000));
    m_timeout = seconds;
}

std::unique_ptr<Cursor> PostgresEngine::query(const QString& text) {
    if (void* connection = odbcHandle(database()))
        if (auto rows = openServerRows(connection, text, [this] { return inTransaction(); }))
            return rows;
    return QtSqlEngine::query(text);
}

Rows PostgresEngine::select(const QString& text) {
    return readRows(*QtSqlEngine::query(text));
}

void PostgresEngine::beginTransaction() {
    QtSqlEngine::beginTransaction();
    try {
        execute(QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(WriteLockKey));
    } catch (...) {
        try {
            rollbackTransaction();
        } catch (const platform::Error&) {
            // The connection is gone: so is its transaction.
        }
        throw;
    }
}

void PostgresEngine::rollbackTransaction() {
    m_timeout = -1;
    QtSqlEngine::rollbackTransaction();
}

} // namespace db
