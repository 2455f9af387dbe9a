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

bool isConnective(const Token& t) {
    return sql::isKeyword(t, "and") || sql::isKeyword(t, "or");
}

// True when what follows tokens[last] may follow a term of a filter.
bool endsTermAt(const QVector<Token>& tokens, int last) {
    const int next = skipSpace(tokens, last + 1);
    return next >= tokens.size() || endsFilterTerm(tokens[next]);
}

// Where the terms joined to the connective at `connective` begin, walked back over them.
struct JoinedTerms {
    enum Start { AtClause, InParenthesis, Elsewhere } start;
    int open = -1; // the '(' around them, when InParenthesis
};

// True when `t`, met walking back from the connective at `connective` outside any parenthesis,
// shows that the terms are not a filter's: a list, a case, an assignment, or the "and" of a
// between (a between before any other connective).
bool stopsJoinedTerms(const QVector<Token>& tokens, int connective, const Token& t, bool connectivePassed) {
    if (sql::isKeyword(t, "between"))
        return !connectivePassed && sql::isKeyword(tokens[connective], "and");
    return isPunct(t, ",") ||
           isAnyKeyword(t, {"select", "when", "then", "else", "by", "set", "values", "from", "distinct",
                            "all", "limit", "offset", "using", "returning"});
}

JoinedTerms joinedTermsStart(const QVector<Token>& tokens, int connective) {
    bool connectivePassed = false;
    int depth = 0;
    for (int j = connective - 1; j >= 0; --j) {
        const Token& t = tokens[j];
        if (t.kind == TokenKind::Space)
            continue;
        if (isPunct(t, ")") || sql::isKeyword(t, "end")) {
            ++depth;
        } else if (isPunct(t, "(") || sql::isKeyword(t, "case")) {
            if (depth > 0)
                --depth;
            else
                return isPunct(t, "(") ? JoinedTerms{JoinedTerms::InParenthesis, j}
                                       : JoinedTerms{JoinedTerms::Elsewhere};
        } else if (depth > 0) {
            continue;
        } else if (opensFilter(t)) {
            return {JoinedTerms::AtClause};
        } else if (isConnective(t)) {
            connectivePassed = true;
        } else if (stopsJoinedTerms(tokens, connective, t, connectivePassed)) {
            return {JoinedTerms::Elsewhere};
        }
    }
    return {JoinedTerms::Elsewhere};
}

// True when tokens[first..last] is a term joined by and/or alone (through parentheses) to the
// start of a where, on or having clause. The index test joined to the like by "and" is False
// where the like is Null (a document without that text); only there does that select the same
// rows as the like alone.
bool isFilterTerm(const QVector<Token>& tokens, int first, int last) {
    for (;;) {
        if (!endsTermAt(tokens, last))
            return false;
        const int before = previousToken(tokens, first);
        if (before < 0)
            return false;
        if (opensFilter(tokens[before]))
            return true;
        int open = before;
        if (isConnective(tokens[before])) {
            const JoinedTerms terms = joinedTermsStart(tokens, before);
            if (terms.start != JoinedTerms::InParenthesis)
                return terms.start == JoinedTerms::AtClause;
            open = terms.open;
        } else if (!isPunct(tokens[before], "(")) {
            return false;
        }
        // The parenthesised group is the term that must stand in the filter now.
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
