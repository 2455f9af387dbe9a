#include "OdbcSource.h"

#include "Errors.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>

#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>

namespace db {

namespace {

QString dbmsName(const QSqlDatabase& store) {
    SQLHANDLE hdbc = odbcHandle(store);
    if (!hdbc)
        return QString();
    SQLCHAR name[256] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(hdbc, SQL_DBMS_NAME, name, sizeof name, &length)))
        return QString();
    return QString::fromUtf8(reinterpret_cast<const char*>(name));
}

} // namespace

void* odbcHandle(const QSqlDatabase& store) {
    const QVariant handle = store.driver()->handle();
    // The driver hands its connection handle out as a SQLHANDLE, which Qt 6 names void*.
    if (qstrcmp(handle.typeName(), "SQLHANDLE") != 0 && qstrcmp(handle.typeName(), "void*") != 0)
        return nullptr;
    return *static_cast<void* const*>(handle.data());
}

QString entryValue(const QString& name, const char* key) {
    char value[512] = {};
    const QByteArray section = name.toLocal8Bit();
    SQLGetPrivateProfileString(section.constData(), key, "", value, sizeof value, "odbc.ini");
    return QString::fromLocal8Bit(value);
}

namespace {

bool namesUser(const QString& name) {
    for (const char* key : {"Username", "UserName", "UID", "User"})
        if (!entryValue(name, key).isEmpty())
            return true;
    return false;
}

// A refusal of the login: the ODBC state of a refused authorization, or the server's own words
// for it (the PostgreSQL driver reports every failed connection as 08001).
bool refusedLogin(const QSqlError& e) {
    const QString text = e.nativeErrorCode() + QLatin1Char(' ') + e.databaseText();
    for (const char* sign : {"28000", "28P01", "password authentication failed", "no password supplied",
                             "authentication failed for user"})
        if (text.contains(QLatin1String(sign), Qt::CaseInsensitive))
            return true;
    return false;
}

} // namespace

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

namespace {

// A connection kept from an earlier engine that still answers: the server may have gone away
// or restarted since.
std::optional<SqlStore> answeringIdle(const QString& key) {
    while (auto store = idle::take(key)) {
        bool answers = false;
        {
            QSqlQuery q(store->database());
            answers = q.exec(QStringLiteral("SELECT 1")) && q.next();
        }
        if (answers)
            return store;
    }
    return std::nullopt;
}

} // namespace

OdbcConnection connectOdbcSource(const QString& name, const QString& user, const QString& password) {
    const QString key = name + QLatin1Char('\n') + user + QLatin1Char('\n') + password;
    std::optional<SqlStore> kept = answeringIdle(key);
    if (!kept) {
        SqlStore store(QStringLiteral("QODBC"));
        QSqlDatabase& source = store.database();
        source.setDatabaseName(name);
        // The login of the entry itself, with its password or the one in the server's password
        // file, takes precedence over the program's.
        if (!namesUser(name)) {
            source.setUserName(user);
            source.setPassword(password);
        }
        if (!source.open()) {
            const QSqlError e = source.lastError();
            throw platform::Error(refusedLogin(e) ? ErrLoginFailed : ErrDataSourceNotFound,
                                  QtSqlEngine::describe(e));
        }
        kept.emplace(std::move(store));
    }
    QString dbms = dbmsName(kept->database());
    return OdbcConnection{std::move(*kept), std::move(dbms), key};
}

} // namespace db
