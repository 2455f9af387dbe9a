#pragma once

#include "datastore/Dialect.h"

namespace db {

class SqliteDialect : public Dialect {
  public:
    // `textIndex`: the database has the contains-search indexes (TextIndex.h). Then a select's
    // `like '<pattern>'` on a column that the schema marks for text search (Column::textSearch),
    // standing as a term of a where, on or having clause, looks its candidates up in the index when the
    // pattern holds three characters in a row to look for, and still tests each of them with the like.
    explicit SqliteDialect(bool textIndex = false) : m_textIndex(textIndex) {}
    void setTextIndex(bool present) { m_textIndex = present; }
    bool textIndex() const { return m_textIndex; }

  protected:
    Rewrites rewrites(const QVector<sql::Token>& tokens) const override;

  private:
    bool m_textIndex;
};

} // namespace db
