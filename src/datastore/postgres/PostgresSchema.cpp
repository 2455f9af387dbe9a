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

QString createTable(const Table& t) {
    QStringList cols;
    for (int i = 0; i < t.columns.size(); ++i)
        cols << columnDefinition(t.columns[i], i == 0 && t.keyed);
    return QStringLiteral("CREATE TABLE \"%1\" (%2)").arg(t.name, cols.join(QStringLiteral(", ")));
}

// The ordinary indexes of the marked columns of `t` and the trigram index of each column marked
// for text search, on the column as plain text (PostgresDialect).
QStringList indexStatements(const Table& t) {
    QStringList out;
    for (const Column& c : t.columns)
        if (c.indexed())
            out << QStringLiteral("CREATE INDEX \"ix%1%2\" ON \"%1\" (\"%2\")").arg(t.name, c.name);
    for (const QString& column : t.textSearchColumns())
        out << QStringLiteral("CREATE INDEX \"ix%1%2Trigrams\" ON \"%1\" USING gin ((\"%2\"::text) "
                              "gin_trgm_ops)")
                   .arg(t.name, column);
    return out;
}

// The triggers that keep each document's soft copy row, whoever writes: a new document brings
// it, waiting; deleting a document deletes it; changing its path (as written: another letter
// case may name another file) makes it wait to be read again, unless the text was read from the
// file that the path now names (the soft copies' folder moved), and changing its date carries the
// date over. Then the index of the waiting, newest first.
QStringList followStatements() {
    return {
        QStringLiteral(
            "CREATE OR REPLACE FUNCTION \"SoftCopyFollows\"() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
            "IF TG_OP = 'DELETE' THEN DELETE FROM \"SoftCopy\" WHERE \"IndexID\" = OLD.\"IndexID\"; "
            "RETURN OLD; END IF; "
            "IF TG_OP = 'INSERT' THEN INSERT INTO \"SoftCopy\" (\"IndexID\", \"DocDate\", \"ReadState\") "
            "VALUES (NEW.\"IndexID\", NEW.\"DocDate\", 'waiting') ON CONFLICT DO NOTHING; RETURN NEW; END "
            "IF; "
            "IF OLD.\"DocDate\" IS DISTINCT FROM NEW.\"DocDate\" THEN UPDATE \"SoftCopy\" SET \"DocDate\" "
            "= NEW.\"DocDate\" WHERE \"IndexID\" = NEW.\"IndexID\"; END IF; "
            "IF OLD.\"FilePath\"::text IS DISTINCT FROM NEW.\"FilePath\"::text THEN UPDATE \"SoftCopy\" "
            "SET \"ReadState\" = 'waiting', \"Reason\" = NULL, \"SoftText\" = NULL WHERE \"IndexID\" = "
            "NEW.\"IndexID\" AND \"ReadPath\"::text IS DISTINCT FROM NEW.\"FilePath\"::text; END IF; RETURN "
            "NEW; "
            "END $$"),
        QStringLiteral("CREATE TRIGGER \"SoftCopyFollowsInsert\" AFTER INSERT ON \"Vorlane\" FOR EACH ROW "
                       "EXECUTE FUNCTION \"SoftCopyFollows\"()"),
        QStringLiteral("CREATE TRIGGER \"SoftCopyFollowsDelete\" AFTER DELETE ON \"Vorlane\" FOR EACH ROW "
                       "EXECUTE FUNCTION \"SoftCopyFollows\"()"),
        QStringLiteral("CREATE TRIGGER \"SoftCopyFollowsUpdate\" AFTER UPDATE OF \"FilePath\", \"DocDate\" "
                       "ON \"Vorlane\" FOR EACH ROW EXECUTE FUNCTION \"SoftCopyFollows\"()"),
        QStringLiteral("CREATE INDEX \"ixSoftCopyQueue\" ON \"SoftCopy\" (\"ReadState\", \"DocDate\", "
                       "\"IndexID\")")};
}

// The extensions, the tables of the schema, their indexes and the triggers.
QStringList creationStatements() {
    QStringList out{QStringLiteral("CREATE EXTENSION IF NOT EXISTS citext"),
                    QStringLiteral("CREATE EXTENSION IF NOT EXISTS pg_trgm")};
    for (const Table& t : schema())
        out << createTable(t);
    for (const Table& t : schema())
        out << indexStatements(t);
    return out << followStatements();
}

// The statements that give a database made before them the later tables, or none (also for a
// database without the documents' table, which the set-up tool has yet to fill). A look-up in
// the catalogue only: it comes with every connection.
QStringList laterStatements(PostgresEngine& engine) {
    QVector<const Table*> later;
    QStringList probes{QStringLiteral("(to_regclass('\"Vorlane\"') IS NOT NULL)::int"),
                       // The function of the triggers as an earlier version made it.
                       QStringLiteral("(to_regproc('\"SoftCopyFollows\"') IS NOT NULL AND "
                                      "position('\"ReadPath\"' in pg_get_functiondef(to_regproc("
                                      "'\"SoftCopyFollows\"'))) = 0)::int")};
    for (const Table& t : schema())
        if (t.addedLater) {
            later << &t;
            probes << QStringLiteral("(to_regclass('\"%1\"') IS NOT NULL)::int").arg(t.name);
        }
    const Rows found = engine.select(QStringLiteral("SELECT ") + probes.join(QStringLiteral(", ")));
    const QVariantList present = found.values.value(0);
    QStringList out;
    if (present.isEmpty() || present[0].toInt() == 0)
        return out;
    for (int i = 0; i < later.size(); ++i)
        if (present.value(i + 2).toInt() == 0)
            out << createTable(*later[i]) << indexStatements(*later[i]);
    // The documents of before come waiting, as a new one does.
    if (!out.isEmpty())
        out << followStatements()
            << QStringLiteral("INSERT INTO \"SoftCopy\" (\"IndexID\", \"DocDate\", \"ReadState\") SELECT "
                              "\"IndexID\", \"DocDate\", 'waiting' FROM \"Vorlane\" ON CONFLICT DO NOTHING");
    else if (present.value(1).toInt() != 0)
        out << followStatements().constFirst();
    return out;
}

} // namespace

void PostgresEngine::openLaterTables() {
    try {
        if (laterStatements(*this).isEmpty())
            return;
        // Under the writers' lock, and looked for again: another seat may have made them meanwhile.
        beginTransaction();
        try {
            for (const QString& statement : laterStatements(*this))
                execute(statement);
            commitTransaction();
        } catch (...) {
            rollbackTransaction();
            throw;
        }
    } catch (const platform::Error&) {
        // A login that may not create tables goes on without them.
    }
}

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
