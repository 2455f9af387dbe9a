#include "Engine.h"

#include "Dialect.h"
#include "OdbcSource.h"
#include "SqliteEngine.h"

#include <QDate>

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
