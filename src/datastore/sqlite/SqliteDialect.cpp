#include "SqliteDialect.h"
#include "TextIndex.h"
#include "datastore/Schema.h"
#include "datastore/SqlText.h"

#include <QHash>
#include <QSet>

namespace db {

namespace {

using sql::isAnyKeyword;
using sql::isPunct;
using sql::nameOf;
using sql::previousToken;
using sql::skipSpace;
using sql::Token;
using sql::TokenKind;

// The contains-search indexes for `like` on the columns marked for text search.

// Which tables the qualifiers of the statement name, and which tables it reads. Every name of
// a table that is not part of a qualified column is taken for a use of that table.
class TableUses {
  public:
    explicit TableUses(const QVector<Token>& tokens) {
        for (int i = 0; i < tokens.size(); ++i) {
            const Table* table = findTable(nameOf(tokens[i]));
            const int before = previousToken(tokens, i);
            const int after = skipSpace(tokens, i + 1);
            if (!table || (before >= 0 && isPunct(tokens[before], ".")) ||
                (after < tokens.size() && isPunct(tokens[after], ".")))
                continue;
            QString alias = table->name;
            int a = after;
            if (a < tokens.size() && sql::isKeyword(tokens[a], "as"))
                a = skipSpace(tokens, a + 1);
            if (a < tokens.size() && !nameOf(tokens[a]).isEmpty() && !endsTableName(tokens[a]))
                alias = nameOf(tokens[a]);
            m_uses[alias.toLower()].insert(table->name);
            m_tables.insert(table->name);
        }
    }

    // The one table that `qualifier` names in this statement, or an empty text.
    QString tableOf(const QString& qualifier) const {
        const QSet<QString> tables = m_uses.value(qualifier.toLower());
        return tables.size() == 1 ? *tables.cbegin() : QString();
    }

    // The one table of this statement that has a column of that name, or an empty text: a column
    // standing without qualifier can only be that table's.
    QString onlyOwnerOf(const QString& column) const {
        QString owner;
        for (const QString& name : m_tables) {
            for (const Column& c : findTable(name)->columns) {
                if (c.name.compare(column, Qt::CaseInsensitive) != 0)
                    continue;
                if (!owner.isEmpty())
                    return QString();
                owner = name;
            }
        }
        return owner;
    }

  private:
    static bool endsTableName(const Token& t) {
        return isAnyKeyword(t, {"where",   "left",    "right",   "full",      "inner",  "outer", "cross",
                                "natural", "join",    "on",      "using",     "order",  "group", "having",
                                "limit",   "union",   "except",  "intersect", "window", "set",   "values",
                                "select",  "default", "indexed", "not"});
    }

    QHash<QString, QSet<QString>> m_uses; // lower-case qualifier -> tables it names
    QSet<QString> m_tables;
};

// The index of the ')' that closes the '(' at `open`; tokens.size() when none.
int closingParenthesis(const QVector<Token>& tokens, int open) {
    int depth = 0;
    for (int i = open; i < tokens.size(); ++i) {
        if (isPunct(tokens[i], "("))
            ++depth;
        else if (isPunct(tokens[i], ")") && --depth == 0)
            return i;
    }
    return int(tokens.size());
}

bool opensFilter(const Token& t) {
    return isAnyKeyword(t, {"where", "on", "having"});
}

// What may follow a term of a where, on or having clause.
bool endsFilterTerm(const Token& t) {
    return isPunct(t, ")") || isPunct(t, ",") ||
           isAnyKeyword(t, {"and", "or", "order", "group", "limit", "having", "union", "except", "intersect",
                            "window", "where", "join", "left", "right", "full", "inner", "cross", "natural"});
}

// True when tokens[first..last] is a term joined by and/or alone (through parentheses) to the
// start of a where, on or having clause. The index test joined to the like by "and" is False
// where the like is Null (a document without that text); only there does that select the same
// rows as the like alone.
bool isFilterTerm(const QVector<Token>& tokens, int first, int last) {
    for (;;) {
        const int next = skipSpace(tokens, last + 1);
        if (next < tokens.size() && !endsFilterTerm(tokens[next]))
            return false;
        const int before = previousToken(tokens, first);
        if (before < 0)
            return false;
        if (opensFilter(tokens[before]))
            return true;
        int open = -1;
        if (isPunct(tokens[before], "(")) {
            open = before;
        } else if (sql::isKeyword(tokens[before], "and") || sql::isKeyword(tokens[before], "or")) {
            // Back over the other terms to the clause or to the parenthesis around them.
            bool connectivePassed = false;
            int depth = 0;
            for (int j = before - 1; j >= 0 && open < 0; --j) {
                const Token& t = tokens[j];
                if (t.kind == TokenKind::Space)
                    continue;
                if (isPunct(t, ")") || sql::isKeyword(t, "end")) {
                    ++depth;
                } else if (isPunct(t, "(") || sql::isKeyword(t, "case")) {
                    if (depth == 0 && isPunct(t, "("))
                        open = j;
                    else if (depth == 0)
                        return false;
                    else
                        --depth;
                } else if (depth > 0) {
                    continue;
                } else if (opensFilter(t)) {
                    return true;
                } else if (sql::isKeyword(t, "and") || sql::isKeyword(t, "or")) {
                    connectivePassed = true;
                } else if ((sql::isKeyword(t, "between") && !connectivePassed &&
                            sql::isKeyword(tokens[before], "and")) || // the "and" of a between
                           isPunct(t, ",") ||
                           isAnyKeyword(t, {"select", "when", "then", "else", "by", "set", "values", "from",
                                            "distinct", "all", "limit", "offset", "using", "returning"})) {
                    return false;
                }
            }
            if (open < 0)
                return false;
        } else {
            return false;
        }
        first = open;
        last = closingParenthesis(tokens, open);
        if (last >= tokens.size())
            return false;
    }
}

// Each `[<qualifier>.]<text column> like '<pattern>'` of a select that the index can serve, by
// the index of its first and last token: the rows the index offers, and the like as written.
Dialect::Rewrites textIndexRewrites(const QVector<Token>& tokens) {
    Dialect::Rewrites rewrites;
    const int first = skipSpace(tokens, 0);
    if (first >= tokens.size() || !sql::isKeyword(tokens[first], "select"))
        return rewrites;
    const TableUses uses(tokens);
    for (int like = 0; like < tokens.size(); ++like) {
        if (!sql::isKeyword(tokens[like], "like"))
            continue;
        const int column = previousToken(tokens, like);
        const int pattern = skipSpace(tokens, like + 1);
        if (column < 0 || pattern >= tokens.size() || tokens[pattern].kind != TokenKind::String)
            continue;
        const QString columnName = nameOf(tokens[column]);
        int start = column;
        QString owner;
        QString table;
        if (const int dot = previousToken(tokens, column); dot >= 0 && isPunct(tokens[dot], ".")) {
            start = previousToken(tokens, dot);
            if (start < 0)
                continue;
            table = uses.tableOf(nameOf(tokens[start]));
            owner = Dialect::translateToken(tokens[start]) + QLatin1Char('.');
        } else {
            table = uses.onlyOwnerOf(columnName);
        }
        if (table.isEmpty() || !isTextSearchColumn(table, columnName))
            continue;
        if (!isFilterTerm(tokens, start, pattern))
            continue;
        const QString query = textIndexQuery(sql::stringValue(tokens[pattern].text));
        if (query.isEmpty())
            continue;
        const QString before =
            QStringLiteral("(%1\"%2\" IN (SELECT rowid FROM \"%3\" WHERE %4 MATCH %5) AND ")
                .arg(owner, findTable(table)->key(), textIndexName(table), Dialect::quotedName(columnName),
                     sql::quoteString(query));
        rewrites[start].before += before;
        rewrites[pattern].after += QStringLiteral(")");
    }
    return rewrites;
}

} // namespace

Dialect::Rewrites SqliteDialect::rewrites(const QVector<Token>& tokens) const {
    return m_textIndex ? textIndexRewrites(tokens) : Rewrites();
}

} // namespace db
