#include "Engine.h"

#include "Errors.h"
#include "OdbcSource.h"
#include "datastore/postgres/PostgresEngine.h"
#include "datastore/sqlite/SqliteDialect.h"
#include "datastore/sqlite/SqliteEngine.h"

#include <QDate>
#include <optional>

namespace db {

namespace {

test::EngineFactory& testFactory() {
    static test::EngineFactory factory;
    return factory;
}

// The rows of a select read at once, handed out one at a time.
class ReadCursor : public Cursor {
  public:
    explicit ReadCursor(Rows rows) : m_rows(std::move(rows)) {}
    QStringList names() const override { return m_rows.names; }
    bool next() override { return ++m_position < m_rows.values.size(); }
    QVariant value(int column) const override { return m_rows.values[m_position][column]; }

  private:
    Rows m_rows;
    qsizetype m_position = -1;
};

} // namespace

bool utf8Text(const QVariant& value, QByteArray& text) {
    if (!value.isValid() || value.isNull())
        return false;
    text = value.typeId() == QMetaType::QDate ? value.toDate().toString(Qt::ISODate).toUtf8()
                                              : value.toString().toUtf8();
    return true;
}

bool Cursor::utf8(int column, QByteArray& text) const {
    return utf8Text(value(column), text);
}

std::unique_ptr<Cursor> Engine::query(const QString& text) {
    return std::make_unique<ReadCursor>(select(text));
}

void Engine::createSchema(const QString& dataSource, const QString&, const QString&) {
    throw platform::Error(
        ErrDataSourceNotFound,
        QStringLiteral("The data source %1 cannot be set up by this program.").arg(dataSource));
}

EngineKind chooseEngine(const QString& dataSource, const QString& dbms) {
    const bool sqlite = dbms.contains(QLatin1String("sqlite"), Qt::CaseInsensitive);
    if (dataSource.isEmpty() && sqlite)
        return EngineKind::Sqlite;
    if (sqlite)
        throw platform::Error(ErrDataSourceNotFound,
                              QStringLiteral("The data source %1 runs on SQLite through ODBC, which this "
                                             "program does not use: remove the data source to use the "
                                             "database file directly.")
                                  .arg(dataSource));
    if (!dataSource.isEmpty() && dbms.contains(QLatin1String("postgres"), Qt::CaseInsensitive))
        return EngineKind::Postgres;
    throw platform::Error(ErrDataSourceNotFound,
                          QStringLiteral("The data source %1 runs on %2, which this program cannot use.")
                              .arg(dataSource, dbms.isEmpty() ? QStringLiteral("an unknown engine") : dbms));
}

namespace {

// Opens the engine that chooseEngine gives for the DBMS behind `odbc`, or for the embedded file,
// which is SQLite's, without it.
std::unique_ptr<Engine> openChosen(const QString& dataSource, std::optional<OdbcConnection> odbc,
                                   int timeoutSeconds) {
    switch (chooseEngine(odbc ? dataSource : QString(), odbc ? odbc->dbms : QStringLiteral("SQLite"))) {
    case EngineKind::Sqlite:
        return SqliteEngine::openEmbedded(timeoutSeconds);
    case EngineKind::Postgres: {
        auto engine = std::make_unique<PostgresEngine>(std::move(odbc.value().store));
        engine->openLaterTables();
        engine->keepWhenDone(odbc->key);
        return engine;
    }
    }
    Q_UNREACHABLE();
}

} // namespace

std::unique_ptr<Engine> openEngine(const QString& dataSource, const QString& user, const QString& password,
                                   int timeoutSeconds) {
    if (testFactory())
        return testFactory()(dataSource);
    if (odbcKnows(dataSource))
        return openOdbcSource(dataSource, user, password);
    return openChosen(dataSource, std::nullopt, timeoutSeconds);
}

std::unique_ptr<Engine> openOdbcSource(const QString& name, const QString& user, const QString& password) {
    return openChosen(name, connectOdbcSource(name, user, password), -1);
}

const Dialect& defaultDialect() {
    static const SqliteDialect dialect;
    return dialect;
}

void test::setEngineFactory(EngineFactory factory) {
    testFactory() = std::move(factory);
}

} // namespace db
