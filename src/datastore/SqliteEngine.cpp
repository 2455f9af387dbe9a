#include "SqliteEngine.h"

#include "Dialect.h"
#include "Errors.h"
#include "Schema.h"
#include "SqliteFolding.h"

#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QUrl>

#include <sqlite3.h>

namespace db {

namespace {

sqlite3* sqliteHandle(const QSqlDatabase& store) {
    const QVariant handle = store.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.data());
}

} // namespace

SqliteEngine::SqliteEngine(SqlStore store)
    : QtSqlEngine(std::move(store), std::make_unique<SqliteDialect>()), m_handle(sqliteHandle(database())) {
    installUnicodeFolding(m_handle);
}

std::unique_ptr<SqliteEngine> SqliteEngine::openEmbedded(int timeoutSeconds) {
    const QString path = databaseFile();
    if (!QFileInfo(path).isFile())
        throw platform::Error(ErrDataSourceNotFound,
                              QStringLiteral("Could not find the database file '%1'.").arg(path));
    SqlStore store(QStringLiteral("QSQLITE"));
    // mode=rw: a file that vanished since the check is not created anew.
    QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    url.setQuery(QStringLiteral("mode=rw"));
    store.database().setDatabaseName(url.toString(QUrl::FullyEncoded));
    store.database().setConnectOptions(
        QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(qMax(0, timeoutSeconds) * 1000));
    if (!store.database().open())
        throw platform::Error(ErrDataSourceNotFound, QStringLiteral("Cannot open the database file '%1': %2")
                                                         .arg(path, describe(store.database().lastError())));
    std::unique_ptr<SqliteEngine> engine(new SqliteEngine(std::move(store)));
    // Opening succeeds on any file; reading the catalogue tells a database from anything else.
    QString failure;
    try {
        const Rows tables =
            engine->select(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type='table'"));
        if (tables.values.isEmpty() || tables.values[0][0].toInt() == 0)
            failure = QStringLiteral("the file holds no tables");
    } catch (const platform::Error& e) {
        failure = e.description();
    }
    if (!failure.isNull())
        throw platform::Error(ErrDataSourceNotFound,
                              QStringLiteral("Cannot open the database file '%1': %2").arg(path, failure));
    return engine;
}

void SqliteEngine::setTimeout(int seconds) {
    if (m_handle)
        sqlite3_busy_timeout(m_handle, seconds <= 0 ? 0 : seconds * 1000);
}

void SqliteEngine::beginTransaction() {
    // The write lock at once, so that no other seat reads the same maximum key meanwhile.
    execute(QStringLiteral("BEGIN IMMEDIATE"));
}

void SqliteEngine::commitTransaction() {
    execute(QStringLiteral("COMMIT"));
}

void SqliteEngine::rollbackTransaction() {
    execute(QStringLiteral("ROLLBACK"));
}

// Each result column that is a column of a table, however the statement names or aliases it,
// is a date when the schema says so.
QVector<bool> SqliteEngine::dateColumns(const QString& text, int count) {
    QVector<bool> dates(count, false);
    sqlite3_stmt* stmt = nullptr;
    if (!m_handle ||
        sqlite3_prepare16_v2(m_handle, text.utf16(), int(text.size() * sizeof(QChar)), &stmt, nullptr) !=
            SQLITE_OK ||
        !stmt) {
        sqlite3_finalize(stmt);
        return dates;
    }
    for (int i = 0; i < count && i < sqlite3_column_count(stmt); ++i)
        dates[i] = isDateColumn(QString::fromUtf8(sqlite3_column_table_name(stmt, i)),
                                QString::fromUtf8(sqlite3_column_origin_name(stmt, i)));
    sqlite3_finalize(stmt);
    return dates;
}

} // namespace db
