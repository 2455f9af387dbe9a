#include "ServerOffice.h"

#include "Process.h"

#include "datastore/Engine.h"
#include "datastore/OdbcSource.h"
#include "datastore/QtSqlEngine.h"
#include "datastore/Schema.h"
#include "session/GenMod.h"

#include <QProcess>
#include <stdexcept>

namespace bench {

namespace {

const QString Source = QStringLiteral("Vorlane");
// The table by which the benchmark knows a database it filled itself.
const QString Marker = QStringLiteral("vorlanebenchoffice");

std::runtime_error failure(const QString& what) {
    return std::runtime_error(what.toStdString());
}

std::unique_ptr<db::Engine> open() {
    return db::openOdbcSource(Source, GenMod::DataSourceUser, GenMod::DataSourcePassword);
}

// Runs statements in one session of psql, as written: a failure throws.
QByteArray runPsql(const QString& statements) {
    const Run run = runProgram(
        psqlCommand(QStringLiteral("SET client_min_messages = error; SET maintenance_work_mem = '512MB'; ") +
                    statements),
        true);
    if (!run.ok())
        throw failure(QStringLiteral("psql failed on: %1").arg(statements));
    return run.output;
}

// Empties the database when it holds nothing or an earlier office of the benchmark.
void emptyDatabase() {
    const auto engine = open();
    const db::Rows tables = engine->select(QStringLiteral(
        "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema()"));
    bool ours = false;
    for (const auto& row : tables.values)
        ours = ours || row.first().toString() == Marker;
    if (!tables.values.isEmpty() && !ours)
        throw failure(QStringLiteral("the database of the data source %1 holds tables of its own; the "
                                     "benchmark fills only an empty database")
                          .arg(Source));
    for (const auto& row : tables.values)
        engine->execute(QStringLiteral("DROP TABLE IF EXISTS \"%1\" CASCADE").arg(row.first().toString()));
    // So are the functions of the triggers; those of the extensions stay.
    runPsql(QStringLiteral(
        "DO $$ DECLARE f regprocedure; BEGIN FOR f IN SELECT p.oid::regprocedure FROM pg_proc p WHERE "
        "p.pronamespace = current_schema()::regnamespace AND NOT EXISTS (SELECT 1 FROM pg_depend d WHERE "
        "d.objid = p.oid AND d.deptype = 'e') LOOP EXECUTE 'DROP FUNCTION ' || f || ' CASCADE'; END LOOP; "
        "END $$"));
}

// Copies the rows of `table` from the file to the server: the sqlite3 shell writes them as CSV,
// psql reads them.
void copyTable(const QString& database, const QString& table) {
    QProcess reader, writer;
    reader.setStandardOutputProcess(&writer);
    writer.setProcessChannelMode(QProcess::ForwardedChannels);
    writer.start(QStringLiteral("psql"), {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-v"),
                                          QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-c"),
                                          QStringLiteral("\\copy \"%1\" from stdin csv").arg(table)});
    reader.start(QStringLiteral("sqlite3"), {QStringLiteral("-batch"), QStringLiteral("-csv"), database,
                                             QStringLiteral("select * from \"%1\"").arg(table)});
    const bool done = reader.waitForFinished(-1) && writer.waitForFinished(-1);
    if (!done || reader.exitCode() != 0 || writer.exitCode() != 0)
        throw failure(QStringLiteral("copying the table %1 to the server failed").arg(table));
}

} // namespace

bool serverKnown() {
    return db::odbcKnows(Source);
}

void reachServerWithPsql() {
    const std::pair<const char*, const char*> keys[] = {
        {"PGHOST", "Servername"}, {"PGPORT", "Port"}, {"PGDATABASE", "Database"},
        {"PGUSER", "Username"},   {"PGUSER", "UID"},  {"PGPASSWORD", "Password"}};
    for (const auto& [variable, key] : keys)
        if (const QString value = db::entryValue(Source, key); !value.isEmpty())
            qputenv(variable, value.toLocal8Bit());
}

QStringList psqlCommand(const QString& statement) {
    return {QStringLiteral("psql"),
            QStringLiteral("-X"),
            QStringLiteral("-q"),
            QStringLiteral("-A"),
            QStringLiteral("-t"),
            QStringLiteral("-c"),
            statement};
}

void loadServerOffice(const QString& database) {
    emptyDatabase();
    db::createServerDatabase(Source, GenMod::DataSourceUser, GenMod::DataSourcePassword, QString(),
                             QString());
    {
        const auto engine = open();
        engine->execute(QStringLiteral("CREATE TABLE \"%1\" (made date)").arg(Marker));
        engine->execute(QStringLiteral("DELETE FROM \"Logins\""));
    }
    db::idle::clear();
    // The rows are copied as they are, without the triggers of the documents (a document copied
    // would make its soft copy's row, which is copied too), and the indexes of the soft copies
    // are built once after their rows.
    const QStringList indexes =
        QString::fromUtf8(runPsql(QStringLiteral("SELECT indexname || '|' || indexdef FROM pg_indexes WHERE "
                                                 "tablename = 'SoftCopy' AND indexname <> 'SoftCopy_pkey'")))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QString drop = QStringLiteral("ALTER TABLE \"Vorlane\" DISABLE TRIGGER USER; ");
    QString create;
    for (const QString& index : indexes) {
        drop += QStringLiteral("DROP INDEX \"%1\"; ").arg(index.section(QLatin1Char('|'), 0, 0));
        create += index.section(QLatin1Char('|'), 1) + QStringLiteral("; ");
    }
    runPsql(drop);
    for (const db::Table& table : db::schema())
        copyTable(database, table.name);
    runPsql(create + QStringLiteral("ALTER TABLE \"Vorlane\" ENABLE TRIGGER USER; ANALYZE"));
}

} // namespace bench
