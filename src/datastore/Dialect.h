#pragma once

#include <QHash>
#include <QString>
#include <QVector>

namespace db {

namespace sql {
struct Token;
}

// Translates a statement as the screens write it into the text that one engine runs.
// The screens' dialect:
//  - names of tables and columns regardless of letter case; reserved names stand bare;
//  - date literals between '#' signs, "dd-MMM-yy" or "dd/MMM/yyyy" as the running locale writes
//    them (sql::parseScreenDate); two-digit years 30-99 are 19xx, 00-29 are 20xx;
//  - a quoted "dd/MMM/yyyy" text put into a date column by an Insert or an Update's set list is a
//    date (the schema says which columns are dates), and a text there that is no date is refused;
//  - `like` with '%' and '_', and '=' on texts, without regard to letter case; a `like` on one
//    of the four texts of the documents may be served by their contains-search index;
//  - one statement per call: text after ';' is refused, and "--" or "/*" outside quotes
//    are errors, not comments.
// The engines share the translation of names, dates and texts; each adds what it writes
// differently.
class Dialect {
  public:
    virtual ~Dialect() = default;
    // Throws platform::Error(ErrStatement, description) for a statement it refuses.
    QString translate(const QString& statement) const;

    // A token in the translation that the engines share: names quoted in the schema's spelling,
    // date literals as ISO texts.
    static QString translateToken(const sql::Token& t);
    // A name of the schema, quoted in the schema's spelling.
    static QString quotedName(const QString& name);

    // Text that an engine puts before and after one token of a statement, and the token
    // written otherwise when `replacement` is not null.
    struct Rewrite {
        QString before;
        QString replacement;
        QString after;
    };
    using Rewrites = QHash<int, Rewrite>;

  protected:
    // The rewrites of this engine for the tokens of one statement, by token index.
    virtual Rewrites rewrites(const QVector<sql::Token>& tokens) const = 0;
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

  protected:
    Rewrites rewrites(const QVector<sql::Token>& tokens) const override;

  private:
    bool m_textIndex;
};

// PostgreSQL: the tables hold their texts as citext, so that '=' ignores letter case as the
// screens expect. `like` becomes ILIKE, without an escape character, on the column as plain text
// so that the trigram index of the four texts of the documents serves a contains-search.
class PostgresDialect : public Dialect {
  protected:
    Rewrites rewrites(const QVector<sql::Token>& tokens) const override;
};

} // namespace db
