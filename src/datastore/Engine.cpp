#include "Engine.h"

#include "Dialect.h"
#include "OdbcSource.h"
#include "SqliteEngine.h"

namespace db {

std::unique_ptr<Engine> openEngine(const QString& dataSource, const QString& user, const QString& password,
                                   int timeoutSeconds) {
    if (odbcKnows(dataSource))
        return openOdbcSource(dataSource, user, password);
    return SqliteEngine::openEmbedded(timeoutSeconds);
}

const Dialect& defaultDialect() {
    static const SqliteDialect dialect;
    return dialect;
}

} // namespace db
