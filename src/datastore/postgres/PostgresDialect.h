#pragma once

#include "datastore/Dialect.h"

namespace db {

// PostgreSQL: the tables hold their texts as citext, so that '=' ignores letter case as the
// screens expect. `like` becomes ILIKE, without an escape character, on the column as plain text
// so that the trigram index of a column marked for text search serves a contains-search
// (PostgresSchema.cpp).
class PostgresDialect : public Dialect {
  protected:
    Rewrites rewrites(const QVector<sql::Token>& tokens) const override;
};

} // namespace db
