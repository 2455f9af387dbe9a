#include "SqliteEngine.h"

#include "DateTexts.h"
#include "LaterTables.h"
#include "SqliteDialect.h"
#include "SqliteFolding.h"
#include "TextIndex.h"
#include "datastore/Errors.h"
#include "datastore/Schema.h"

#include <QDate>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QUrl>

#include <cstring>
#include <sqlite3.h>

namespace db {

namespace {

sqlite3* sqliteHandle(const QSqlDatabase& store) {
    const QVariant handle = store.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.data());
}

[[noreturn]] void fail(sqlite3* handle) {
    throw platform::Error(ErrStatement,
                          QString::fromUtf16(static_cast<const char16_t*>(sqlite3_errmsg16(handle))));
}

// 'yyyy-MM-dd', the form in which dates are stored; anything else is no date.
QDate storedDate(const unsigned char* text, int length) {
    if (length != 10 || text[4] != '-' || text[7] != '-')
        return QDate();
    int parts[3] = {0, 0, 0};
    const int starts[3] = {0, 5, 8};
    const int lengths[3] = {4, 2, 2};
    for (int p = 0; p < 3; ++p)
        for (int i = starts[p]; i < starts[p] + lengths[p]; ++i) {
            if (text[i] < '0' || text[i] > '9')
                return QDate();
            parts[p] = parts[p] * 10 + (text[i] - '0');
        }
    return QDate(parts[0], parts[1], parts[2]);
}

// A statement of the file stepped row by row. A value is converted only when it is read, and
// a result column that is a column of a table, however the statement names it, is a date
// when the schema says so.
class SqliteCursor : public Cursor {
  public:
    SqliteCursor(sqlite3* handle, const QString& text) : m_handle(handle) {
        const void* tail = nullptr;
        if (sqlite3_prepare16_v2(handle, text.utf16(), int(text.size() * sizeof(QChar)), &m_statement,
                                 &tail) != SQLITE_OK)
            fail(handle);
        if (!m_statement)
            throw platform::Error(ErrStatement, QStringLiteral("The statement is empty."));
        const auto* rest = static_cast<const QChar*>(tail);
        const auto* end = text.constData() + text.size();
        if (rest && QStringView(rest, end).trimmed().size() > 0) {
            sqlite3_finalize(m_statement);
            throw platform::Error(ErrStatement,
                                  QStringLiteral("Unable to execute multiple statements at a time"));
        }
        const int count = sqlite3_column_count(m_statement);
        for (int i = 0; i < count; ++i) {
            m_names << QString::fromUtf16(
                static_cast<const char16_t*>(sqlite3_column_name16(m_statement, i)));
            m_dates << isDateColumn(QString::fromUtf8(sqlite3_column_table_name(m_statement, i)),
                                    QString::fromUtf8(sqlite3_column_origin_name(m_statement, i)));
        }
    }
    ~SqliteCursor() override { sqlite3_finalize(m_statement); }
    SqliteCursor(const SqliteCursor&) = delete;
    SqliteCursor& operator=(const SqliteCursor&) = delete;

    QStringList names() const override { return m_names; }

    bool next() override {
        switch (sqlite3_step(m_statement)) {
        case SQLITE_ROW:
            return true;
        case SQLITE_DONE:
            return false;
        default:
            fail(m_handle);
        }
    }

    QVariant value(int column) const override {
        switch (sqlite3_column_type(m_statement, column)) {
        case SQLITE_NULL:
            return QVariant();
        case SQLITE_INTEGER:
            return QVariant(qint64(sqlite3_column_int64(m_statement, column)));
        case SQLITE_FLOAT:
            return QVariant(sqlite3_column_double(m_statement, column));
        case SQLITE_BLOB: {
            const auto* data = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
            return QVariant(QByteArray(data, sqlite3_column_bytes(m_statement, column)));
        }
        default:
            break;
        }
        // Texts are kept as UTF-8 in the file and read as such, without a conversion by the engine.
        const unsigned char* text = sqlite3_column_text(m_statement, column);
        const int length = sqlite3_column_bytes(m_statement, column);
        if (m_dates.value(column)) {
            const QDate date = storedDate(text, length);
            if (date.isValid())
                return QVariant(date);
        }
        return QVariant(QString::fromUtf8(reinterpret_cast<const char*>(text), length));
    }

    bool utf8(int column, QByteArray& text) const override {
        if (sqlite3_column_type(m_statement, column) == SQLITE_NULL)
            return false;
        // The file keeps its texts in UTF-8: they are taken as they lie.
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
        const int length = sqlite3_column_bytes(m_statement, column);
        text.resize(length); // keeps the buffer of the last value
        std::memcpy(text.data(), bytes, size_t(length));
        return true;
    }

  private:
    sqlite3* m_handle;
    sqlite3_stmt* m_statement = nullptr;
    QStringList m_names;
    QVector<bool> m_dates;
};

} // namespace

SqliteEngine::SqliteEngine(SqlStore store, SqliteDialect* dialect)
    : QtSqlEngine(std::move(store), std::unique_ptr<Dialect>(dialect)), m_dialect(dialect),
      m_handle(sqliteHandle(database())) {
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
    std::unique_ptr<SqliteEngine> engine(new SqliteEngine(std::move(store), new SqliteDialect()));
    engine->setTimeout(timeoutSeconds);
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
    // Without the index (a seat that may not write the file, or one that found the file locked too
    // long) every like reads all documents, as before the index existed.
    // A database made before the later tables gets them first, so that their indexes follow.
    openLaterTables(engine->m_handle);
    engine->m_dialect->setTextIndex(openTextIndex(engine->m_handle) != TextIndexState::Unavailable);
    // Dates that an earlier version kept as texts become dates, once; a seat that cannot write
    // the file reads them as texts, as before.
    convertDateTexts(engine->m_handle);
    return engine;
}

void SqliteEngine::setTimeout(int seconds) {
    if (m_handle)
        m_busy.install(m_handle, seconds <= 0 ? 0 : seconds * 1000);
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

std::unique_ptr<Cursor> SqliteEngine::query(const QString& text) {
    if (!m_handle)
        return QtSqlEngine::query(text);
    return std::make_unique<SqliteCursor>(m_handle, text);
}

} // namespace db
