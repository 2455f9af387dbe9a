#include "Schema.h"

#include "Errors.h"
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

QString columnDefinition(const Table& t, const Column& c, bool key) {
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
        // characters (the scrambled "a" and "q" are a case pair).
        if (t.name == QLatin1String("Logins") &&
            (c.name == QLatin1String("UserName") || c.name == QLatin1String("Password")))
            def += QStringLiteral(" TEXT");
        else
            def += QStringLiteral(" TEXT COLLATE NOCASE");
        break;
    }
    return def;
}

QStringList creationStatements() {
    QStringList out;
    for (const Table& t : schema()) {
        QStringList cols;
        for (int i = 0; i < t.columns.size(); ++i)
            cols << columnDefinition(t, t.columns[i], i == 0 && hasOwnKey(t));
        out << QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(t.name, cols.join(QStringLiteral(", ")));
    }
    // Searches filter and order by the dates and the classification keys. Text columns get no
    // ordinary index: the connections fold their case with a collation of their own.
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
    // The contains-search of the four texts of the documents goes through an index of their own.
    out << textIndexStatements();
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
            statements << creationStatements();
            statements << QStringLiteral("INSERT INTO \"Logins\" VALUES (1, ?, ?, 0, 0, 1, 1)")
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
