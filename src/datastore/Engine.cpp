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

} // namespace

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
