#pragma once

#include <QString>

namespace db {

// Translates a statement as the screens write it into the text that one engine runs.
// The screens' dialect:
//  - names of tables and columns regardless of letter case; reserved names stand bare;
//  - date literals between '#' signs, "dd-MMM-yy" or "dd/MMM/yyyy", month names of the
//    running locale or English; two-digit years 30-99 are 19xx, 00-29 are 20xx;
//  - a quoted "dd/MMM/yyyy" text put into a date column by a positional Insert or an
//    Update's set list is a date (the schema says which columns are dates);
//  - `like` with '%' and '_', and '=' on texts, without regard to letter case; a `like` on one
//    of the four texts of the documents may be served by their contains-search index;
//  - one statement per call: text after ';' is refused, and "--" or "/*" outside quotes
//    are errors, not comments.
class Dialect {
  public:
    virtual ~Dialect() = default;
    // Throws platform::Error(ErrStatement, description) for a statement it refuses.
    virtual QString translate(const QString& statement) const = 0;
};

class SqliteDialect : public Dialect {
  public:
    // `textIndex`: the database has the contains-search index (TextIndex.h). Then a select's
    // `like '<pattern>'` on Title1, Title2, Bookmark or Remarks of Vorlane, standing as a term of
    // a where, on or having clause, looks its candidates up in the index when the pattern holds
    // three characters in a row to look for, and still tests each of them with the like.
    explicit SqliteDialect(bool textIndex = false) : m_textIndex(textIndex) {}
    void setTextIndex(bool present) { m_textIndex = present; }
    bool textIndex() const { return m_textIndex; }

    QString translate(const QString& statement) const override;

  private:
    bool m_textIndex;
};

} // namespace db
