#include "Engine.h"

#include "Dialect.h"
#include "OdbcSource.h"
#include "SqliteEngine.h"

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

std::unique_ptr<Cursor> Engine::query(const QString& text) {
    return std::make_unique<ReadCursor>(select(text));
}

std::unique_ptr<Engine> openEngine(const QString& dataSource, const QString& user, const QString& password,
                                   int timeoutSeconds) {
    if (testFactory())
        return testFactory()(dataSource);
    if (odbcKnows(dataSource))
        return openOdbcSource(dataSource, user, password);
    return SqliteEngine::openEmbedded(timeoutSeconds);
}

const Dialect& defaultDialect() {
    static const SqliteDialect dialect;
    return dialect;
}

void test::setEngineFactory(EngineFactory factory) {
    testFactory() = std::move(factory);
}

} // namespace db
