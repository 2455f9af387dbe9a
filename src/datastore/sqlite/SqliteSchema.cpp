#include "DateTexts.h"
#include "LaterTables.h"
#include "TextIndex.h"
#include "datastore/Errors.h"
#include "datastore/Schema.h"
#include "platform/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace db {

namespace {

QString columnDefinition(const Column& c, bool key) {
    QString def = QLatin1Char('"') + c.name + QLatin1Char('"');
    switch (c.type) {
    case ColumnType::Number:
        def += key ? QStringLiteral(" INTEGER PRIMARY KEY") : QStringLiteral(" INTEGER");
        break;
    case ColumnType::Date:
        def += QStringLiteral(" DATE");
        break;
    case ColumnType::Text:
        // The scrambled columns have no letter case: folding would only equate unrelated
        // characters (the scrambled "a" and "q" are a case pair). Every other text compares
        // regardless of case, through a collation of the connection's own (SqliteFolding.h).
        def += c.scrambled() ? QStringLiteral(" TEXT") : QStringLiteral(" TEXT COLLATE NOCASE");
        break;
    }
    return def;
}

// The tables of the schema, the ordinary indexes of their marked columns (text columns get none:
// they compare regardless of case) and the contains-search indexes of the file.
QStringList creationStatements() {
    QStringList out;
    for (const Table& t : schema())
        out << createTableStatement(t);
    for (const Table& t : schema())
        for (const Column& c : t.columns)
            if (c.indexed())
                out << QStringLiteral("CREATE INDEX \"ix%1%2\" ON \"%1\" (\"%2\")").arg(t.name, c.name);
    out << textIndexStatements() << followStatements();
    return out;
}

} // namespace

QString createTableStatement(const Table& t) {
    QStringList cols;
    for (int i = 0; i < t.columns.size(); ++i)
        cols << columnDefinition(t.columns[i], i == 0 && t.keyed);
    return QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(t.name, cols.join(QStringLiteral(", ")));
}

void createDatabase(const QString& path, const QString& scrambledUserName, const QString& scrambledPassword) {
    constexpr int ErrFileAlreadyExists = 58;
    if (QFileInfo::exists(path))
        throw platform::Error(ErrFileAlreadyExists, QStringLiteral("File already exists: %1").arg(path));
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw platform::Error(platform::ErrPathNotFound, QStringLiteral("Path not found: %1").arg(folder));

    const QString name =
        QStringLiteral("vorlane-create-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    QString failure;
    {
        QSqlDatabase store = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        store.setDatabaseName(path);
        if (!store.open()) {
            failure = store.lastError().databaseText();
        } else {
            QSqlQuery q(store);
            QStringList statements{QStringLiteral("PRAGMA journal_mode=DELETE"), QStringLiteral("BEGIN")};
            statements << creationStatements();
            statements << QStringLiteral("INSERT INTO \"Logins\" VALUES (1, ?, ?, 0, 0, 1, 1)")
                       << QStringLiteral("PRAGMA user_version = %1").arg(DateTextsConvertedVersion)
                       << QStringLiteral("COMMIT");
            for (const QString& sql : statements) {
                bool ok;
                if (sql.startsWith(QLatin1String("INSERT"))) {
                    ok = q.prepare(sql);
                    q.addBindValue(scrambledUserName);
                    q.addBindValue(scrambledPassword);
                    ok = ok && q.exec();
                } else {
                    ok = q.exec(sql);
                }
                if (!ok) {
                    failure = q.lastError().databaseText();
                    if (failure.isEmpty())
                        failure = q.lastError().text();
                    break;
                }
                q.finish();
            }
            q = QSqlQuery();
            store.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!failure.isNull()) {
        QFile::remove(path);
        throw platform::Error(ErrStatement,
                              failure.isEmpty() ? QStringLiteral("Cannot create %1").arg(path) : failure);
    }
}

} // namespace db
