#include "OdbcSource.h"

#include "Dialect.h"
#include "Errors.h"
#include "QtSqlEngine.h"

#include <QSqlDriver>
#include <QSqlError>

#include <sql.h>
#include <sqlext.h>

namespace db {

namespace {

QString dbmsName(const QSqlDatabase& store) {
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

std::unique_ptr<Engine> openOdbcSource(const QString& name, const QString& user, const QString& password) {
    SqlStore store(QStringLiteral("QODBC"));
    QSqlDatabase& source = store.database();
    source.setDatabaseName(name);
    source.setUserName(user);
    source.setPassword(password);
    if (!source.open()) {
        const QSqlError e = source.lastError();
        const bool login = e.nativeErrorCode().contains(QLatin1String("28000")) ||
                           e.databaseText().contains(QLatin1String("28000"));
        throw platform::Error(login ? ErrLoginFailed : ErrDataSourceNotFound, QtSqlEngine::describe(e));
    }
    // The DBMS behind the source decides the engine.
    const QString dbms = dbmsName(source);
    if (dbms.contains(QLatin1String("sqlite"), Qt::CaseInsensitive))
        return std::make_unique<QtSqlEngine>(std::move(store), std::make_unique<SqliteDialect>());
    throw platform::Error(ErrDataSourceNotFound,
                          QStringLiteral("The data source %1 runs on %2, which this program cannot use.")
                              .arg(name, dbms.isEmpty() ? QStringLiteral("an unknown engine") : dbms));
}

} // namespace db
