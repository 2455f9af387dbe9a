#include "Schema.h"

#include "Engine.h"
#include "OdbcSource.h"
#include "platform/Files.h"

#include <QHash>

namespace db {

namespace {

constexpr ColumnType N = ColumnType::Number;
constexpr ColumnType T = ColumnType::Text;
constexpr ColumnType D = ColumnType::Date;

QVector<Table> buildSchema() {
    return {
        {QStringLiteral("Vorlane"),
         {{QStringLiteral("IndexID"), N},
          {QStringLiteral("DocDate"), D, Indexed},
          {QStringLiteral("FollowupDate"), D, Indexed},
          {QStringLiteral("TypeID"), N, Indexed},
          {QStringLiteral("CatID"), N, Indexed},
          {QStringLiteral("SubCatID"), N, Indexed},
          {QStringLiteral("ChildCatID"), N, Indexed},
          {QStringLiteral("Title1"), T, TextSearch},
          {QStringLiteral("Title2"), T, TextSearch},
          {QStringLiteral("FilePath"), T},
          {QStringLiteral("FileID"), N, Indexed},
          {QStringLiteral("Bookmark"), T, TextSearch},
          {QStringLiteral("Remarks"), T, TextSearch},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentType"),
         {{QStringLiteral("TypeID"), N}, {QStringLiteral("DocType"), T}, {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentCategory"),
         {{QStringLiteral("CatID"), N},
          {QStringLiteral("DocCategory"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentSubCategory"),
         {{QStringLiteral("SubCatID"), N},
          {QStringLiteral("CatID"), N, Indexed},
          {QStringLiteral("SubCategory"), T},
          {QStringLiteral("UpdatedBy"), N}}},
        {QStringLiteral("DocumentChildCategory"),
         {{QStringLiteral("ChildCatID"), N},
          {QStringLiteral("CatID"), N, Indexed},
          {QStringLiteral("SubCatID"), N, Indexed},
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
          {QStringLiteral("UserName"), T, Scrambled},
          {QStringLiteral("Password"), T, Scrambled},
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
          {QStringLiteral("DocTitle2"), T}},
         false},
        // Its two "date" columns receive whatever text the result list shows.
        {QStringLiteral("PrintSearchResult"),
         {{QStringLiteral("Title1"), T},
          {QStringLiteral("Title2"), T},
          {QStringLiteral("DocDate"), T},
          {QStringLiteral("FollowUpDate"), T},
          {QStringLiteral("Bookmark"), T},
          {QStringLiteral("Remarks"), T},
          {QStringLiteral("FileNumber"), T},
          {QStringLiteral("FilePath"), T}},
         false},
        // The text read from the soft copy of each document, with the file as it was then (its
        // size in bytes and its modification time in UTC, as texts compared only for equality)
        // and the state of the reading: "read", "waiting", "unreadable", "missing" or "notext" (a
        // kind of file whose text is not read), with its reason. A seat reading it holds the row
        // through ClaimedBy and ClaimedAt (UTC, ISO 8601). Every document has its row, kept by
        // triggers on both engines: it comes waiting with the document, carries its date (the
        // waiting are read newest first, through one index), goes with it, and waits again when
        // the document's path changes.
        {QStringLiteral("SoftCopy"),
         {{QStringLiteral("IndexID"), N},
          {QStringLiteral("DocDate"), D},
          {QStringLiteral("ReadPath"), T},
          {QStringLiteral("FileSize"), T},
          {QStringLiteral("FileTime"), T},
          {QStringLiteral("ReadState"), T},
          {QStringLiteral("Reason"), T},
          {QStringLiteral("SoftText"), T, TextSearch},
          {QStringLiteral("ClaimedBy"), T},
          {QStringLiteral("ClaimedAt"), T}},
         true,
         true},
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

namespace {

const Column* findColumn(const QString& table, const QString& column) {
    if (const Table* t = findTable(table))
        for (const Column& c : t->columns)
            if (c.name.compare(column, Qt::CaseInsensitive) == 0)
                return &c;
    return nullptr;
}

} // namespace

bool isDateColumn(const QString& table, const QString& column) {
    const Column* c = findColumn(table, column);
    return c && c->type == ColumnType::Date;
}

QStringList Table::textSearchColumns() const {
    QStringList out;
    for (const Column& c : columns)
        if (c.textSearch())
            out << c.name;
    return out;
}

bool isTextSearchColumn(const QString& table, const QString& column) {
    const Column* c = findColumn(table, column);
    return c && c->textSearch();
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

void createServerDatabase(const QString& dataSource, const QString& user, const QString& password,
                          const QString& scrambledUserName, const QString& scrambledPassword) {
    openOdbcSource(dataSource, user, password)
        ->createSchema(dataSource, scrambledUserName, scrambledPassword);
}

} // namespace db
