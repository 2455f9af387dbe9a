#include "PostgresEngine.h"
#include "datastore/Errors.h"
#include "datastore/Schema.h"
#include "datastore/SqlText.h"

namespace db {

namespace {

QString columnDefinition(const Column& c, bool key) {
    // The server tells quoted names apart by case: a column there is spelled as the dialects
    // quote its name (canonicalName), where two tables spell it differently.
    QString def = QLatin1Char('"') + canonicalName(c.name) + QLatin1Char('"');
    switch (c.type) {
    case ColumnType::Number:
        def += key ? QStringLiteral(" INTEGER PRIMARY KEY") : QStringLiteral(" INTEGER");
        break;
    case ColumnType::Date:
        def += QStringLiteral(" DATE");
        break;
    case ColumnType::Text:
        // The scrambled columns have no letter case (see SqliteSchema.cpp); every other text
        // compares regardless of case as citext.
        def += c.scrambled() ? QStringLiteral(" TEXT") : QStringLiteral(" CITEXT");
        break;
    }
    return def;
}

// The extensions, the tables of the schema, the ordinary indexes of their marked columns and
// the trigram index of each column marked for text search, on the column as plain text
// (PostgresDialect).
QStringList creationStatements() {
    QStringList out{QStringLiteral("CREATE EXTENSION IF NOT EXISTS citext"),
                    QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm")};
    for (const Table& t : schema()) {
        QStringList cols;
        for (int i = 0; i < t.columns.size(); ++i)
            cols << columnDefinition(t.columns[i], i == 0 && t.keyed);
        out << QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(t.name, cols.join(QStringLiteral(", ")));
    }
    for (const Table& t : schema())
        for (const Column& c : t.columns)
            if (c.indexed())
                out << QStringLiteral("CREATE INDEX \"ix%1%2\" ON \"%1\" (\"%2\")").arg(t.name, c.name);
    for (const Table& t : schema())
        for (const QString& column : t.textSearchColumns())
            out << QStringLiteral("CREATE INDEX \"ix%1%2Trigrams\" ON \"%1\" USING gin ((\"%2\"::text) "
                                  "gin_trgm_ops)")
                       .arg(t.name, column);
    return out;
}

} // namespace

void PostgresEngine::createSchema(const QString& dataSource, const QString& scrambledUserName,
                                  const QString& scrambledPassword) {
    // Letter case is ignored through the database's character classes: they must know every
    // alphabet.
    const Rows locale = select(QStringLiteral("SELECT pg_encoding_to_char(encoding), datctype FROM "
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
    const Rows existing =
        select(QStringLiteral("SELECT table_name FROM information_schema.tables WHERE table_schema = "
                              "current_schema() AND lower(table_name) IN (%1)")
                   .arg(names.join(QLatin1Char(','))));
    if (!existing.values.isEmpty())
        throw platform::Error(ErrStatement,
                              QStringLiteral("The database of %1 already holds the table %2; it is "
                                             "left as it is.")
                                  .arg(dataSource, existing.values.first().first().toString()));
    beginTransaction();
    try {
        for (const QString& statement : creationStatements())
            execute(statement);
        insert(QStringLiteral("Logins"), {{QStringLiteral("UserID"), 1},
                                          {QStringLiteral("UserName"), scrambledUserName},
                                          {QStringLiteral("Password"), scrambledPassword},
                                          {QStringLiteral("View"), 0},
                                          {QStringLiteral("Save"), 0},
                                          {QStringLiteral("Modify"), 1},
                                          {QStringLiteral("UpdatedBy"), 1}});
        commitTransaction();
    } catch (...) {
        rollbackTransaction();
        throw;
    }
}

} // namespace db
