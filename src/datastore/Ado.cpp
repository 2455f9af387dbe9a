#include "Ado.h"

#include "Dialect.h"
#include "Schema.h"
#include "SqlText.h"
#include "SqliteFolding.h"

#include <QDate>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUrl>
#include <QUuid>

#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>

namespace db {

namespace {

// The engine's own words, without Qt's wrapping.
QString describe(const QSqlError& e) {
    QString text = e.databaseText().trimmed();
    if (text.isEmpty())
        text = e.driverText().trimmed();
    if (text.isEmpty())
        text = QStringLiteral("The data store refused the statement.");
    return text;
}

// The value of "Data Source=" in a connection string, or the string itself when it is a bare name.
QString dataSourceName(const QString& connectionString) {
    if (!connectionString.contains(QLatin1Char('=')))
        return connectionString.trimmed();
    for (const QString& part : connectionString.split(QLatin1Char(';'))) {
        const int eq = part.indexOf(QLatin1Char('='));
        if (eq > 0 && part.left(eq).trimmed().compare(QLatin1String("Data Source"), Qt::CaseInsensitive) == 0)
            return part.mid(eq + 1).trimmed();
    }
    return QString();
}

QString connectionStringValue(const QString& connectionString, const QStringList& keys) {
    for (const QString& part : connectionString.split(QLatin1Char(';'))) {
        const int eq = part.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        const QString key = part.left(eq).trimmed();
        for (const QString& k : keys)
            if (key.compare(k, Qt::CaseInsensitive) == 0)
                return part.mid(eq + 1).trimmed();
    }
    return QString();
}

// True when the unixODBC driver manager knows a user or system data source of that name.
bool odbcKnows(const QString& name) {
    if (name.isEmpty())
        return false;
    SQLHENV env = SQL_NULL_HENV;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env)))
        return false;
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    bool found = false;
    SQLCHAR dsn[SQL_MAX_DSN_LENGTH + 1];
    SQLCHAR description[512];
    SQLSMALLINT dsnLength = 0, descriptionLength = 0;
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    while (!found && SQL_SUCCEEDED(SQLDataSources(env, direction, dsn, sizeof dsn, &dsnLength, description,
                                                  sizeof description, &descriptionLength))) {
        direction = SQL_FETCH_NEXT;
        found =
            QString::fromLocal8Bit(reinterpret_cast<const char*>(dsn)).compare(name, Qt::CaseInsensitive) ==
            0;
    }
    SQLFreeHandle(SQL_HANDLE_ENV, env);
    return found;
}

QString odbcDbmsName(const QSqlDatabase& store) {
    const QVariant handle = store.driver()->handle();
    if (qstrcmp(handle.typeName(), "SQLHANDLE") != 0)
        return QString();
    SQLHANDLE hdbc = *static_cast<const SQLHANDLE*>(handle.data());
    if (!hdbc)
        return QString();
    SQLCHAR name[256] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(hdbc, SQL_DBMS_NAME, name, sizeof name, &length)))
        return QString();
    return QString::fromUtf8(reinterpret_cast<const char*>(name));
}

sqlite3* sqliteHandle(const QSqlDatabase& store) {
    const QVariant handle = store.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.data());
}

} // namespace

struct Connection::Impl {
    QString name;
    QSqlDatabase store;
    std::unique_ptr<Dialect> dialect;
    sqlite3* sqlite = nullptr; // the embedded file's engine, for lock waits and column types
    bool open = false;
    bool inTransaction = false;
    int timeoutSeconds = 30;

    void requireOpen() const {
        if (!open)
            throw platform::Error(ErrObjectClosed, TextObjectClosed);
    }

    void applyTimeout(int seconds) {
        timeoutSeconds = seconds;
        if (sqlite)
            sqlite3_busy_timeout(sqlite, seconds <= 0 ? 0 : seconds * 1000);
    }

    // Runs engine text that returns no rows.
    void run(const QString& text) {
        QString failure;
        {
            QSqlQuery q(store);
            if (!q.exec(text))
                failure = describe(q.lastError());
        }
        if (!failure.isNull())
            throw platform::Error(ErrStatement, failure);
    }

    void release() {
        if (open && inTransaction) {
            // A released connection discards what it has not committed.
            try {
                if (sqlite)
                    run(QStringLiteral("ROLLBACK"));
                else
                    store.rollback();
            } catch (const platform::Error&) {
            }
        }
        inTransaction = false;
        open = false;
        sqlite = nullptr;
        if (store.isValid()) {
            store.close();
            store = QSqlDatabase();
            QSqlDatabase::removeDatabase(name);
        }
    }

    void openEmbedded(int timeout) {
        const QString path = databaseFile();
        if (!QFileInfo(path).isFile())
            throw platform::Error(ErrDataSourceNotFound,
                                  QStringLiteral("Could not find the database file '%1'.").arg(path));
        store = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        // mode=rw: a file that vanished since the check is not created anew.
        QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
        url.setQuery(QStringLiteral("mode=rw"));
        store.setDatabaseName(url.toString(QUrl::FullyEncoded));
        store.setConnectOptions(
            QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(qMax(0, timeout) * 1000));
        if (!store.open())
            throw platform::Error(ErrDataSourceNotFound,
                                  QStringLiteral("Cannot open the database file '%1': %2")
                                      .arg(path, describe(store.lastError())));
        sqlite = sqliteHandle(store);
        installUnicodeFolding(sqlite);
        // Opening succeeds on any file; reading the catalogue tells a database from anything else.
        QString failure;
        {
            QSqlQuery q(store);
            if (!q.exec(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type='table'")))
                failure = describe(q.lastError());
            else if (!q.next() || q.value(0).toInt() == 0)
                failure = QStringLiteral("the file holds no tables");
        }
        if (!failure.isNull())
            throw platform::Error(
                ErrDataSourceNotFound,
                QStringLiteral("Cannot open the database file '%1': %2").arg(path, failure));
        dialect = std::make_unique<SqliteDialect>();
    }

    void openOdbc(const QString& dsn, const QString& user, const QString& password) {
        store = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
        store.setDatabaseName(dsn);
        store.setUserName(user);
        store.setPassword(password);
        if (!store.open()) {
            const QSqlError e = store.lastError();
            const bool login = e.nativeErrorCode().contains(QLatin1String("28000")) ||
                               e.databaseText().contains(QLatin1String("28000"));
            throw platform::Error(login ? ErrLoginFailed : ErrDataSourceNotFound, describe(e));
        }
        const QString dbms = odbcDbmsName(store);
        if (dbms.contains(QLatin1String("sqlite"), Qt::CaseInsensitive))
            dialect = std::make_unique<SqliteDialect>();
        else
            throw platform::Error(
                ErrDataSourceNotFound,
                QStringLiteral("The data source %1 runs on %2, which this program cannot use.")
                    .arg(dsn, dbms.isEmpty() ? QStringLiteral("an unknown engine") : dbms));
    }
};

Connection::Connection() : m_impl(std::make_unique<Impl>()) {
    m_impl->name = QStringLiteral("vorlane-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
}

Connection::~Connection() {
    m_impl->release();
}

void Connection::Open(const QString& connectionString, const QString& userID, const QString& password, int) {
    Impl& d = *m_impl;
    d.release();
    const QString dsn = dataSourceName(connectionString);
    const QString user =
        userID.isEmpty()
            ? connectionStringValue(connectionString, {QStringLiteral("User ID"), QStringLiteral("UID")})
            : userID;
    const QString pass =
        password.isEmpty()
            ? connectionStringValue(connectionString, {QStringLiteral("Password"), QStringLiteral("PWD")})
            : password;
    try {
        if (odbcKnows(dsn))
            d.openOdbc(dsn, user, pass);
        else
            d.openEmbedded(CommandTimeout);
    } catch (...) {
        d.dialect.reset();
        d.release();
        throw;
    }
    d.open = true;
    d.applyTimeout(CommandTimeout);
}

bool Connection::isOpen() const {
    return m_impl->open;
}

void Connection::Execute(const QString& statement, int) {
    Impl& d = *m_impl;
    d.requireOpen();
    const QString text = d.dialect->translate(statement);
    d.applyTimeout(CommandTimeout);
    d.run(text);
}

void Connection::BeginTrans() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.inTransaction)
        throw platform::Error(ErrStatement,
                              QStringLiteral("A transaction is already open on this connection."));
    d.applyTimeout(CommandTimeout);
    if (d.sqlite) {
        // The write lock at once, so that no other seat reads the same maximum key meanwhile.
        d.run(QStringLiteral("BEGIN IMMEDIATE"));
    } else if (!d.store.transaction()) {
        throw platform::Error(ErrStatement, describe(d.store.lastError()));
    }
    d.inTransaction = true;
}

void Connection::CommitTrans() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (!d.inTransaction)
        throw platform::Error(ErrStatement, QStringLiteral("No transaction is open on this connection."));
    d.applyTimeout(CommandTimeout);
    if (d.sqlite)
        d.run(QStringLiteral("COMMIT"));
    else if (!d.store.commit())
        throw platform::Error(ErrStatement, describe(d.store.lastError()));
    d.inTransaction = false;
}

void Connection::RollbackTrans() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (!d.inTransaction)
        throw platform::Error(ErrStatement, QStringLiteral("No transaction is open on this connection."));
    d.inTransaction = false;
    if (d.sqlite)
        d.run(QStringLiteral("ROLLBACK"));
    else if (!d.store.rollback())
        throw platform::Error(ErrStatement, describe(d.store.lastError()));
}

bool Connection::inTransaction() const {
    return m_impl->inTransaction;
}

const Dialect& Connection::dialect() const {
    static const SqliteDialect fallback;
    if (m_impl->dialect)
        return *m_impl->dialect;
    return fallback;
}

// ---------------------------------------------------------------------------------------------

struct Recordset::Impl {
    ConnectionPtr connection;
    QString source;
    int cursorType = adOpenForwardOnly;
    int lockType = adLockReadOnly;
    bool open = false;
    QStringList names;
    QVector<QVector<QVariant>> rows;
    int position = 0;
    // AddNew in progress: the named values of the new row.
    bool adding = false;
    QVector<QPair<QString, QVariant>> pending;

    void requireOpen() const {
        if (!open)
            throw platform::Error(ErrObjectClosed, TextObjectClosed);
    }

    int fieldIndex(const QString& name) const {
        for (int i = 0; i < names.size(); ++i)
            if (names[i].compare(name, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }

    // Columns declared DATE, as the embedded engine reports them for this statement.
    QVector<bool> dateColumns(const QString& text, int count) const {
        QVector<bool> dates(count, false);
        sqlite3* handle = connection->impl().sqlite;
        if (!handle)
            return dates;
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare16_v2(handle, text.utf16(), int(text.size() * sizeof(QChar)), &stmt, nullptr) !=
                SQLITE_OK ||
            !stmt) {
            sqlite3_finalize(stmt);
            return dates;
        }
        for (int i = 0; i < count && i < sqlite3_column_count(stmt); ++i) {
            const char* declared = sqlite3_column_decltype(stmt, i);
            dates[i] = declared && qstricmp(declared, "DATE") == 0;
        }
        sqlite3_finalize(stmt);
        return dates;
    }

    void load() {
        Connection::Impl& c = connection->impl();
        c.requireOpen();
        const QString text = c.dialect->translate(source);
        // A recordset reads; whatever else its text says is refused before it can run.
        static const QRegularExpression select(QStringLiteral("^\\s*select\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
        if (!select.match(text).hasMatch())
            throw platform::Error(ErrStatement,
                                  QStringLiteral("Only a Select statement can open a recordset."));
        c.applyTimeout(connection->CommandTimeout);
        QString failure;
        names.clear();
        rows.clear();
        {
            QSqlQuery q(c.store);
            q.setForwardOnly(true);
            if (!q.exec(text)) {
                failure = describe(q.lastError());
            } else {
                const QSqlRecord record = q.record();
                for (int i = 0; i < record.count(); ++i)
                    names << record.fieldName(i);
                const QVector<bool> dates = dateColumns(text, record.count());
                while (q.next()) {
                    QVector<QVariant> row(record.count());
                    for (int i = 0; i < record.count(); ++i)
                        row[i] = convert(q.value(i), dates[i]);
                    rows.push_back(std::move(row));
                }
                if (q.lastError().isValid())
                    failure = describe(q.lastError());
            }
        }
        if (!failure.isNull()) {
            names.clear();
            rows.clear();
            throw platform::Error(ErrStatement, failure);
        }
        position = 0;
    }

    static QVariant convert(const QVariant& v, bool date) {
        if (v.isNull())
            return QVariant();
        if (date && v.typeId() == QMetaType::QString) {
            const QDate d = QDate::fromString(v.toString(), Qt::ISODate);
            return d.isValid() ? QVariant(d) : v;
        }
        if (v.typeId() == QMetaType::Int || v.typeId() == QMetaType::LongLong)
            return QVariant(v.toLongLong());
        return v;
    }

    const QVariant& value(int index) const {
        requireOpen();
        if (index < 0 || index >= names.size())
            throw platform::Error(ErrItemNotFound, TextItemNotFound);
        if (position < 0 || position >= rows.size())
            throw platform::Error(ErrNoCurrentRecord, TextNoCurrentRecord);
        return rows[position][index];
    }

    // The one table that a "Select ... from T [where ...] [order by ...]" reads, or empty.
    QString singleTable() const {
        const QVector<sql::Token> tokens = sql::tokenize(source);
        int from = -1;
        for (int i = 0; i < tokens.size(); ++i)
            if (sql::isKeyword(tokens[i], "from")) {
                if (from >= 0)
                    return QString();
                from = i;
            }
        if (from < 0)
            return QString();
        int i = from + 1;
        while (i < tokens.size() && tokens[i].kind == sql::TokenKind::Space)
            ++i;
        if (i >= tokens.size() ||
            (tokens[i].kind != sql::TokenKind::Word && tokens[i].kind != sql::TokenKind::Bracketed))
            return QString();
        const QString table = tokens[i].text;
        for (++i; i < tokens.size(); ++i) {
            const sql::Token& t = tokens[i];
            if (t.kind == sql::TokenKind::Space || t.kind == sql::TokenKind::Semicolon)
                continue;
            if (sql::isKeyword(t, "where") || sql::isKeyword(t, "order"))
                break;
            return QString(); // a join, an alias or a second table
        }
        return table;
    }
};

Recordset::Recordset() : m_impl(std::make_unique<Impl>()) {}
Recordset::~Recordset() = default;

void Recordset::Open(const QString& source, const ConnectionPtr& connection, int cursorType, int lockType,
                     int) {
    Impl& d = *m_impl;
    if (d.open)
        Close();
    if (!connection || !connection->isOpen())
        throw platform::Error(ErrObjectClosed, TextObjectClosed);
    d.connection = connection;
    d.source = source;
    d.cursorType = cursorType == adOpenUnspecified ? adOpenForwardOnly : cursorType;
    d.lockType = lockType == adLockUnspecified ? adLockReadOnly : lockType;
    try {
        d.load();
    } catch (...) {
        d.connection.reset();
        throw;
    }
    d.open = true;
}

void Recordset::Requery() {
    Impl& d = *m_impl;
    d.requireOpen();
    d.adding = false;
    d.pending.clear();
    d.load();
}

void Recordset::Close() {
    Impl& d = *m_impl;
    d.requireOpen();
    d.open = false;
    d.adding = false;
    d.pending.clear();
    d.rows.clear();
    d.names.clear();
    d.connection.reset();
}

int Recordset::State() const {
    return m_impl->open ? adStateOpen : adStateClosed;
}

bool Recordset::eof() const {
    m_impl->requireOpen();
    return m_impl->position >= m_impl->rows.size();
}

bool Recordset::bof() const {
    m_impl->requireOpen();
    return m_impl->rows.isEmpty() || m_impl->position < 0;
}

void Recordset::MoveNext() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.position >= d.rows.size())
        throw platform::Error(ErrNoCurrentRecord, TextNoCurrentRecord);
    ++d.position;
}

void Recordset::MoveFirst() {
    m_impl->requireOpen();
    m_impl->position = 0;
}

int Recordset::RecordCount() const {
    const Impl& d = *m_impl;
    d.requireOpen();
    return d.cursorType == adOpenForwardOnly ? -1 : int(d.rows.size());
}

int Recordset::FieldCount() const {
    m_impl->requireOpen();
    return int(m_impl->names.size());
}

QString Recordset::FieldName(int index) const {
    const Impl& d = *m_impl;
    d.requireOpen();
    if (index < 0 || index >= d.names.size())
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    return d.names[index];
}

QVariant Recordset::Fields(const QString& name) const {
    m_impl->requireOpen();
    const int index = m_impl->fieldIndex(name);
    if (index < 0)
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    return m_impl->value(index);
}

QVariant Recordset::Fields(int index) const {
    return m_impl->value(index);
}

void Recordset::AddNew() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.lockType == adLockReadOnly || d.cursorType == adOpenStatic || d.singleTable().isEmpty())
        throw platform::Error(ErrNotSupported, TextNotUpdatable);
    d.adding = true;
    d.pending.clear();
}

void Recordset::setField(const QString& name, const QVariant& value) {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.fieldIndex(name) < 0)
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    if (!d.adding)
        throw platform::Error(ErrNotSupported, TextNotUpdatable);
    for (auto& p : d.pending)
        if (p.first.compare(name, Qt::CaseInsensitive) == 0) {
            p.second = value;
            return;
        }
    d.pending.push_back({name, value});
}

void Recordset::Update() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (!d.adding)
        return;
    const QString tableName = d.singleTable();
    QStringList columns, marks;
    QVariantList values;
    for (const auto& [name, value] : d.pending) {
        columns << name;
        marks << QStringLiteral("?");
        const bool date = isDateColumn(tableName, name);
        QVariant stored = value;
        if (date && value.typeId() == QMetaType::QDate)
            stored = value.toDate().toString(Qt::ISODate);
        else if (date && value.typeId() == QMetaType::QString)
            if (const auto parsed = sql::parseScreenDate(value.toString()))
                stored = parsed->toString(Qt::ISODate);
        values << stored;
    }
    Connection::Impl& c = d.connection->impl();
    c.requireOpen();
    QString text = columns.isEmpty()
                       ? QStringLiteral("Insert into %1 default values").arg(tableName)
                       : QStringLiteral("Insert into %1 (%2) values (%3)")
                             .arg(tableName, columns.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
    text = c.dialect->translate(text);
    c.applyTimeout(d.connection->CommandTimeout);
    QString failure;
    {
        QSqlQuery q(c.store);
        if (!q.prepare(text)) {
            failure = describe(q.lastError());
        } else {
            for (const QVariant& v : values)
                q.addBindValue(v);
            if (!q.exec())
                failure = describe(q.lastError());
        }
    }
    if (!failure.isNull())
        throw platform::Error(ErrStatement, failure);

    QVector<QVariant> row(d.names.size());
    for (const auto& [name, value] : d.pending)
        row[d.fieldIndex(name)] = value;
    d.rows.push_back(std::move(row));
    d.position = int(d.rows.size()) - 1;
    d.adding = false;
    d.pending.clear();
}

const QString& Recordset::source() const {
    return m_impl->source;
}

} // namespace db
