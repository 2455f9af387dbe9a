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
//  - `like` with '%' and '_', and '=' on texts, without regard to letter case; a `like` on a
//    column that the schema marks for text search may be served by an index of the engine;
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

} // namespace db
