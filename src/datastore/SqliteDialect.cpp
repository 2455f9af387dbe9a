#include "Dialect.h"
#include "Errors.h"
#include "Schema.h"
#include "SqlText.h"
#include "TextIndex.h"

#include <QHash>
#include <QSet>
#include <functional>
#include <initializer_list>

namespace db {

namespace {

using sql::Token;
using sql::TokenKind;

[[noreturn]] void refuse(const QString& why) {
    throw platform::Error(ErrStatement, why);
}

QString quotedName(const QString& name) {
    QString n = canonicalName(name);
    n.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + n + QLatin1Char('"');
}

// Index of the next token that is not blank, from `i` on; tokens.size() when none.
int skipSpace(const QVector<Token>& tokens, int i) {
    while (i < tokens.size() && tokens[i].kind == TokenKind::Space)
        ++i;
    return i;
}

QString nameOf(const Token& t) {
    return t.kind == TokenKind::Word || t.kind == TokenKind::Bracketed || t.kind == TokenKind::Quoted
               ? t.text
               : QString();
}

// A '...' text that reads as a date becomes the engine's date; anything else stays as written.
void convertDateText(Token& t) {
    if (t.kind != TokenKind::String)
        return;
    if (const auto date = sql::parseScreenDate(sql::stringValue(t.text)))
        t.text = QLatin1Char('\'') + date->toString(Qt::ISODate) + QLatin1Char('\'');
}

// Insert into T [(c1, c2, ...)] values (v1, v2, ...): each value goes to its column.
void convertInsertDates(QVector<Token>& tokens, int start) {
    int i = skipSpace(tokens, start + 1);
    if (i >= tokens.size() || !sql::isKeyword(tokens[i], "into"))
        return;
    i = skipSpace(tokens, i + 1);
    if (i >= tokens.size())
        return;
    const Table* table = findTable(nameOf(tokens[i]));
    if (!table)
        return;
    QStringList columns;
    for (const Column& c : table->columns)
        columns << c.name;
    i = skipSpace(tokens, i + 1);
    if (i < tokens.size() && tokens[i].text == QLatin1String("(")) {
        columns.clear();
        for (++i; i < tokens.size() && tokens[i].text != QLatin1String(")"); ++i)
            if (const QString n = nameOf(tokens[i]); !n.isEmpty())
                columns << n;
        i = skipSpace(tokens, i + 1);
    }
    if (i >= tokens.size() || !sql::isKeyword(tokens[i], "values"))
        return;
    i = skipSpace(tokens, i + 1);
    if (i >= tokens.size() || tokens[i].text != QLatin1String("("))
        return;
    int depth = 0;
    int position = 0;
    int valueStart = -1;
    int valueTokens = 0;
    auto finishValue = [&] {
        if (valueTokens == 1 && position < columns.size() && isDateColumn(table->name, columns[position]))
            convertDateText(tokens[valueStart]);
        ++position;
        valueStart = -1;
        valueTokens = 0;
    };
    for (++i; i < tokens.size(); ++i) {
        Token& t = tokens[i];
        if (t.kind == TokenKind::Space)
            continue;
        if (t.kind == TokenKind::Punct && t.text == QLatin1String("(")) {
            ++depth;
        } else if (t.kind == TokenKind::Punct && t.text == QLatin1String(")")) {
            if (depth == 0) {
                finishValue();
                return;
            }
            --depth;
        } else if (depth == 0 && t.kind == TokenKind::Punct && t.text == QLatin1String(",")) {
            finishValue();
            continue;
        }
        if (valueStart < 0)
            valueStart = i;
        ++valueTokens;
    }
}

// Update T set c1 = v1, c2 = v2 ... [where ...]: a lone text put into a date column.
void convertUpdateDates(QVector<Token>& tokens, int start) {
    int i = skipSpace(tokens, start + 1);
    if (i >= tokens.size())
        return;
    const Table* table = findTable(nameOf(tokens[i]));
    i = skipSpace(tokens, i + 1);
    if (!table || i >= tokens.size() || !sql::isKeyword(tokens[i], "set"))
        return;
    ++i;
    while (i < tokens.size()) {
        i = skipSpace(tokens, i);
        if (i >= tokens.size() || sql::isKeyword(tokens[i], "where"))
            return;
        const QString column = nameOf(tokens[i]);
        int eq = skipSpace(tokens, i + 1);
        if (eq >= tokens.size() || tokens[eq].text != QLatin1String("="))
            return;
        int v = skipSpace(tokens, eq + 1);
        int after = skipSpace(tokens, v + 1);
        const bool lone = after >= tokens.size() || tokens[after].text == QLatin1String(",") ||
                          sql::isKeyword(tokens[after], "where") ||
                          tokens[after].kind == TokenKind::Semicolon;
        if (v < tokens.size() && lone && isDateColumn(table->name, column))
            convertDateText(tokens[v]);
        // On to the next assignment: past the value, at the depth of the set list.
        int depth = 0;
        for (i = v; i < tokens.size(); ++i) {
            const Token& t = tokens[i];
            if (t.text == QLatin1String("(") && t.kind == TokenKind::Punct)
                ++depth;
            else if (t.text == QLatin1String(")") && t.kind == TokenKind::Punct)
                --depth;
            else if (depth == 0 && (t.text == QLatin1String(",") || sql::isKeyword(t, "where")))
                break;
        }
        if (i < tokens.size() && tokens[i].text == QLatin1String(","))
            ++i;
    }
}

// ---------------------------------------------------------------------------------------------
// The contains-search index for `like` on the texts of the documents.

bool isPunct(const Token& t, const char* text) {
    return t.kind == TokenKind::Punct && t.text == QLatin1String(text);
}

// Index of the token before `i` that is not blank; -1 when none.
int previousToken(const QVector<Token>& tokens, int i) {
    for (--i; i >= 0; --i)
        if (tokens[i].kind != TokenKind::Space)
            return i;
    return -1;
}

bool isAnyKeyword(const Token& t, std::initializer_list<const char*> keywords) {
    for (const char* k : keywords)
        if (sql::isKeyword(t, k))
            return true;
    return false;
}

// Which qualifiers of the statement name Vorlane, and which other tables it reads. Every name of
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

    // `qualifier` names Vorlane, and nothing else, in this statement.
    bool namesVorlane(const QString& qualifier) const {
        const QSet<QString> tables = m_uses.value(qualifier.toLower());
        return tables.size() == 1 && tables.contains(QStringLiteral("Vorlane"));
    }

    // A column of that name standing without qualifier can only be Vorlane's.
    bool onlyVorlaneHas(const QString& column) const {
        if (!m_tables.contains(QStringLiteral("Vorlane")))
            return false;
        for (const QString& name : m_tables) {
            if (name == QLatin1String("Vorlane"))
                continue;
            for (const Column& c : findTable(name)->columns)
                if (c.name.compare(column, Qt::CaseInsensitive) == 0)
                    return false;
        }
        return true;
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
                } else if (sql::isKeyword(t, "between") && !connectivePassed &&
                           sql::isKeyword(tokens[before], "and")) {
                    return false; // the "and" of a between
                } else if (isPunct(t, ",") ||
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

// Text put before and after a like of the statement.
struct LikeRewrite {
    QString before;
    QString after;
};

// Each `[<qualifier>.]<text column> like '<pattern>'` of a select that the index can serve, by
// the index of its first and last token: the rows the index offers, and the like as written.
QHash<int, LikeRewrite> textIndexRewrites(const QVector<Token>& tokens,
                                          const std::function<QString(const Token&)>& translateToken) {
    QHash<int, LikeRewrite> rewrites;
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
        if (!isIndexedTextColumn(columnName))
            continue;
        int start = column;
        QString owner;
        if (const int dot = previousToken(tokens, column); dot >= 0 && isPunct(tokens[dot], ".")) {
            start = previousToken(tokens, dot);
            if (start < 0 || !uses.namesVorlane(nameOf(tokens[start])))
                continue;
            owner = translateToken(tokens[start]) + QLatin1Char('.');
        } else if (!uses.onlyVorlaneHas(columnName)) {
            continue;
        }
        if (!isFilterTerm(tokens, start, pattern))
            continue;
        const QString query = textIndexQuery(sql::stringValue(tokens[pattern].text));
        if (query.isEmpty())
            continue;
        const QString before =
            QStringLiteral("(%1\"IndexID\" IN (SELECT rowid FROM \"%2\" WHERE %3 MATCH %4) AND ")
                .arg(owner, QLatin1String(TextIndexTable), quotedName(columnName), sql::quoteString(query));
        rewrites[start].before += before;
        rewrites[pattern].after += QStringLiteral(")");
    }
    return rewrites;
}

} // namespace

QString SqliteDialect::translate(const QString& statement) const {
    QVector<Token> tokens = sql::tokenize(statement);

    // One statement: a lone ";" at the end is let through, anything after it is refused.
    for (int i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind != TokenKind::Semicolon)
            continue;
        if (skipSpace(tokens, i + 1) < tokens.size())
            refuse(QStringLiteral("Characters found after end of SQL statement."));
        tokens.resize(i);
        break;
    }

    const int first = skipSpace(tokens, 0);
    if (first < tokens.size()) {
        if (sql::isKeyword(tokens[first], "insert"))
            convertInsertDates(tokens, first);
        else if (sql::isKeyword(tokens[first], "update"))
            convertUpdateDates(tokens, first);
    }

    const auto translateToken = [](const Token& t) -> QString {
        switch (t.kind) {
        case TokenKind::Word:
            return isSchemaName(t.text) ? quotedName(t.text) : t.text;
        case TokenKind::Bracketed:
            return quotedName(t.text);
        case TokenKind::Quoted:
            // Double quotes enclose a text for the screens, unless they name a table or column.
            return isSchemaName(t.text) ? quotedName(t.text) : sql::quoteString(t.text);
        case TokenKind::DateLiteral: {
            const auto date = sql::parseScreenDate(t.text);
            if (!date)
                refuse(QStringLiteral("Syntax error in date in query expression '#%1#'.").arg(t.text));
            return QLatin1Char('\'') + date->toString(Qt::ISODate) + QLatin1Char('\'');
        }
        case TokenKind::Semicolon:
            return QString();
        default:
            return t.text;
        }
    };

    const QHash<int, LikeRewrite> rewrites =
        m_textIndex ? textIndexRewrites(tokens, translateToken) : QHash<int, LikeRewrite>();
    QString out;
    out.reserve(statement.size() + 32);
    for (int i = 0; i < tokens.size(); ++i) {
        const auto rewrite = rewrites.constFind(i);
        if (rewrite != rewrites.cend())
            out += rewrite->before;
        out += translateToken(tokens[i]);
        if (rewrite != rewrites.cend())
            out += rewrite->after;
    }
    return out;
}

} // namespace db
