#include "Schema.h"

#include "DateTexts.h"
#include "Dialect.h"
#include "Engine.h"
#include "Errors.h"
#include "OdbcSource.h"
#include "SqlText.h"
#include "TextIndex.h"
#include "platform/Error.h"
#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

namespace db {

namespace {

constexpr ColumnType N = ColumnType::Number;
constexpr ColumnType T = ColumnType::Text;
constexpr ColumnType D = ColumnType::Date;

QVector<Table> buildSchema() {
    return {
        {QStringLiteral("Vorlane"),
         {{QStringLiteral("IndexID"), N},
          {QStringLiteral("DocDate"), D},
          {QStringLiteral("FollowupDate"), D},
          {QStringLiteral("TypeID"), N},
          {QStringLiteral("CatID"), N},
          {QStringLiteral("SubCatID"), N},
          {QStringLiteral("ChildCatID"), N},
          {QStringLiteral("Title1"), T},
          {QStringLiteral("Title2"), T},
          {QStringLiteral("FilePath"), T},
          {QStringLiteral("FileID"), N},
          {QStringLiteral("Bookmark"), T},
          {QStringLiteral("Remarks"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentType"),
         {{QStringLiteral("TypeID"), N}, {QStringLiteral("DocType"), T}, {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentCategory"),
         {{QStringLiteral("CatID"), N},
          {QStringLiteral("DocCategory"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentSubCategory"),
         {{QStringLiteral("SubCatID"), N},
          {QStringLiteral("CatID"), N},
          {QStringLiteral("SubCategory"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentChildCategory"),
         {{QStringLiteral("ChildCatID"), N},
          {QStringLiteral("CatID"), N},
          {QStringLiteral("SubCatID"), N},
          {QStringLiteral("ChildCategory"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("File"),
         {{QStringLiteral("FileID"), N},
          {QStringLiteral("FileNumber"), T},
          {QStringLiteral("Particulars"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("References"),
         {{QStringLiteral("RefID"), N},
          {QStringLiteral("RefName"), T},
          {QStringLiteral("Particulars"), T},
          {QStringLiteral("OnlineLink"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("Contacts"),
         {{QStringLiteral("ContactID"), N},
          {QStringLiteral("FullName"), T},
          {QStringLiteral("Add1"), T},
          {QStringLiteral("Add2"), T},
          {QStringLiteral("Add3"), T},
          {QStringLiteral("Phone"), T},
          {QStringLiteral("Cell"), T},
          {QStringLiteral("Fax"), T},
          {QStringLiteral("Email"), T},
          {QStringLiteral("Remarks"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("Logins"),
         {{QStringLiteral("UserID"), N},
          {QStringLiteral("UserName"), T},
          {QStringLiteral("Password"), T},
          {QStringLiteral("View"), N},
          {QStringLiteral("Save"), N},
          {QStringLiteral("Modify"), N},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("Personal"),
         {{QStringLiteral("ID"), N},
          {QStringLiteral("FullName"), T},
          {QStringLiteral("Add1"), T},
          {QStringLiteral("Add2"), T},
          {QStringLiteral("Add3"), T},
          {QStringLiteral("Phone"), T},
          {QStringLiteral("Cell"), T},
          {QStringLiteral("Fax"), T},
          {QStringLiteral("Email"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("FieldCaptions"),
         {{QStringLiteral("DocType"), T},
          {QStringLiteral("DocCat"), T},
          {QStringLiteral("DocSubCat"), T},
          {QStringLiteral("DocChildCat"), T},
          {QStringLiteral("DocTitle1"), T},
          {QStringLiteral("DocTitle2"), T}}},
        // Its two "date" columns receive whatever text the result list shows.
        {QStringLiteral("PrintSearchResult"),
         {{QStringLiteral("Title1"), T},
          {QStringLiteral("Title2"), T},
          {QStringLiteral("DocDate"), T},
          {QStringLiteral("FollowUpDate"), T},
          {QStringLiteral("Bookmark"), T},
          {QStringLiteral("Remarks"), T},
          {QStringLiteral("FileNumber"), T},
          {QStringLiteral("FilePath"), T}}},
    };
}

// Lower-case name -> spelling of its first appearance (tables before their columns).
const QHash<QString, QString>& canonicalNames() {
    static const QHash<QString, QString> names = [] {
        QHash<QString, QString> out;
        for (const Table& t : schema()) {
            out.insert(t.name.toLower(), t.name);
            for (const Column& c : t.columns)
                if (!out.contains(c.name.toLower()))
                    out.insert(c.name.toLower(), c.name);
        }
        return out;
    }();
    return names;
}

bool hasOwnKey(const Table& t) {
    return t.name != QLatin1String("FieldCaptions") && t.name != QLatin1String("PrintSearchResult");
}

enum class Store { Embedded, Server };

bool isScrambled(const Table& t, const Column& c) {
    return t.name == QLatin1String("Logins") &&
           (c.name == QLatin1String("UserName") || c.name == QLatin1String("Password"));
}

QString columnDefinition(Store store, const Table& t, const Column& c, bool key) {
    // The server tells quoted names apart by case: a column there is spelled as the dialects
    // quote its name (canonicalName), where two tables spell it differently.
    const QString name = store == Store::Server ? canonicalName(c.name) : c.name;
    QString def = QLatin1Char('"') + name + QLatin1Char('"');
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
        // regardless of case: a collation of the connection's own on the file, citext on the
        // server.
        if (isScrambled(t, c))
            def += QStringLiteral(" TEXT");
        else
            def +=
                store == Store::Embedded ? QStringLiteral(" TEXT COLLATE NOCASE") : QStringLiteral(" CITEXT");
        break;
    }
    return def;
}

QStringList creationStatements(Store store) {
    QStringList out;
    if (store == Store::Server)
        out << QStringLiteral("CREATE EXTENSION IF NOT EXISTS citext")
            << QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm");
    for (const Table& t : schema()) {
        QStringList cols;
        for (int i = 0; i < t.columns.size(); ++i)
            cols << columnDefinition(store, t, t.columns[i], i == 0 && hasOwnKey(t));
        out << QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(t.name, cols.join(QStringLiteral(", ")));
    }
    // Searches filter and order by the dates and the classification keys. Text columns get no
    // ordinary index: they compare regardless of case.
    const char* const indexes[][2] = {
        {"Vorlane", "DocDate"},
        {"Vorlane", "FollowupDate"},
        {"Vorlane", "TypeID"},
        {"Vorlane", "CatID"},
        {"Vorlane", "SubCatID"},
        {"Vorlane", "ChildCatID"},
        {"Vorlane", "FileID"},
        {"DocumentSubCategory", "CatID"},
        {"DocumentChildCategory", "CatID"},
        {"DocumentChildCategory", "SubCatID"},
    };
    for (const auto& ix : indexes)
        out << QStringLiteral("CREATE INDEX \"ix%1%2\" ON \"%1\" (\"%2\")")
                   .arg(QLatin1String(ix[0]), QLatin1String(ix[1]));
    // The contains-search of the four texts of the documents goes through an index of their own:
    // trigrams of the texts, on the server of each column as plain text (PostgresDialect).
    if (store == Store::Embedded) {
        out << textIndexStatements();
    } else {
        for (const char* column : {"Title1", "Title2", "Bookmark", "Remarks"})
            out << QStringLiteral("CREATE INDEX \"ixVorlane%1Trigrams\" ON \"Vorlane\" "
                                  "USING gin ((\"%1\"::text) gin_trgm_ops)")
                       .arg(QLatin1String(column));
    }
    return out;
}

} // namespace

const QVector<Table>& schema() {
    static const QVector<Table> tables = buildSchema();
    return tables;
}

const Table* findTable(const QString& name) {
    for (const Table& t : schema())
        if (t.name.compare(name, Qt::CaseInsensitive) == 0)
            return &t;
    return nullptr;
}

bool isDateColumn(const QString& table, const QString& column) {
    const Table* t = findTable(table);
    if (!t)
        return false;
    for (const Column& c : t->columns)
        if (c.type == ColumnType::Date && c.name.compare(column, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

bool isTextColumnName(const QString& name) {
    for (const Table& t : schema())
        for (const Column& c : t.columns)
            if (c.type == ColumnType::Text && c.name.compare(name, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

bool isSchemaName(const QString& name) {
    return canonicalNames().contains(name.toLower());
}

QString canonicalName(const QString& name) {
    return canonicalNames().value(name.toLower(), name);
}

QString databaseFolder() {
    return platform::joinPath(platform::appPath(), QStringLiteral("Database"));
}
QString databaseFile() {
    return platform::joinPath(databaseFolder(), QStringLiteral("Vorlane.mdb"));
}
QString backupFolder() {
    return platform::joinPath(databaseFolder(), QStringLiteral("Backup"));
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
            statements << creationStatements(Store::Embedded);
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

namespace db {

void createServerDatabase(const QString& dataSource, const QString& user, const QString& password,
                          const QString& scrambledUserName, const QString& scrambledPassword) {
    const auto engine = openOdbcSource(dataSource, user, password);
    if (!dynamic_cast<const PostgresDialect*>(&engine->dialect()))
        throw platform::Error(
            ErrDataSourceNotFound,
            QStringLiteral("The data source %1 is not on a PostgreSQL server.").arg(dataSource));
    // Letter case is ignored through the database's character classes: they must know every
    // alphabet.
    const Rows locale = engine->select(QStringLiteral("SELECT pg_encoding_to_char(encoding), datctype FROM "
                                                      "pg_database WHERE datname = current_database()"));
    const QString encoding = locale.values.value(0).value(0).toString();
    const QString ctype = locale.values.value(0).value(1).toString();
    if (encoding != QLatin1String("UTF8") || !(ctype.contains(QLatin1String("UTF-8"), Qt::CaseInsensitive) ||
                                               ctype.contains(QLatin1String("utf8"), Qt::CaseInsensitive)))
        throw platform::Error(ErrStatement,
                              QStringLiteral("The database of %1 has the encoding %2 and the character "
                                             "classes %3; it needs UTF8 and a UTF-8 locale (for example "
                                             "C.UTF-8).")
                                  .arg(dataSource, encoding, ctype));
    QStringList names;
    for (const Table& t : schema())
        names << sql::quoteString(t.name.toLower());
    const Rows existing = engine->select(
        QStringLiteral(
            "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() "
            "AND lower(table_name) IN (%1)")
            .arg(names.join(QLatin1Char(','))));
    if (!existing.values.isEmpty())
        throw platform::Error(ErrStatement,
                              QStringLiteral("The database of %1 already holds the table %2; it is "
                                             "left as it is.")
                                  .arg(dataSource, existing.values.first().first().toString()));
    engine->beginTransaction();
    try {
        for (const QString& statement : creationStatements(Store::Server))
            engine->execute(statement);
        engine->insert(QStringLiteral("Logins"), {{QStringLiteral("UserID"), 1},
                                                  {QStringLiteral("UserName"), scrambledUserName},
                                                  {QStringLiteral("Password"), scrambledPassword},
                                                  {QStringLiteral("View"), 0},
                                                  {QStringLiteral("Save"), 0},
                                                  {QStringLiteral("Modify"), 1},
                                                  {QStringLiteral("UpdatedBy"), 1}});
        engine->commitTransaction();
    } catch (...) {
        engine->rollbackTransaction();
        throw;
    }
}

} // namespace db
