#include "Dialect.h"

#include "DateText.h"
#include "Errors.h"
#include "Schema.h"
#include "SqlText.h"

namespace db {

namespace {

using sql::Token;
using sql::TokenKind;

[[noreturn]] void refuse(const QString& why) {
    throw platform::Error(ErrStatement, why);
}

// A '...' text put into a date column becomes the engine's date; a text that is no date is
// refused. Any other value (Null, a number, an expression) stays as written.
void convertDateText(Token& t, const QString& column) {
    if (t.kind != TokenKind::String)
        return;
    const QDate date = sql::columnDate(sql::stringValue(t.text), column);
    t.text = QLatin1Char('\'') + date.toString(Qt::ISODate) + QLatin1Char('\'');
}

// Insert into T [(c1, c2, ...)] values (v1, v2, ...)[, (...)]: each value goes to its column.
void convertInsertDates(QVector<Token>& tokens, int start) {
    int i = sql::skipSpace(tokens, start + 1);
    if (i >= tokens.size() || !sql::isKeyword(tokens[i], "into"))
        return;
    i = sql::skipSpace(tokens, i + 1);
    if (i >= tokens.size())
        return;
    const Table* table = findTable(sql::nameOf(tokens[i]));
    if (!table)
        return;
    QStringList columns;
    for (const Column& c : table->columns)
        columns << c.name;
    i = sql::skipSpace(tokens, i + 1);
    if (i < tokens.size() && tokens[i].text == QLatin1String("(")) {
        columns.clear();
        for (++i; i < tokens.size() && tokens[i].text != QLatin1String(")"); ++i)
            if (const QString n = sql::nameOf(tokens[i]); !n.isEmpty())
                columns << n;
        i = sql::skipSpace(tokens, i + 1);
    }
    if (i >= tokens.size() || !sql::isKeyword(tokens[i], "values"))
        return;
    // One row of values after the other, separated by commas.
    for (i = sql::skipSpace(tokens, i + 1); i < tokens.size() && sql::isPunct(tokens[i], "(");
         i = sql::skipSpace(tokens, i + 1)) {
        int depth = 0;
        int position = 0;
        int valueStart = -1;
        int valueTokens = 0;
        auto finishValue = [&] {
            if (valueTokens == 1 && position < columns.size() && isDateColumn(table->name, columns[position]))
                convertDateText(tokens[valueStart], canonicalName(columns[position]));
            ++position;
            valueStart = -1;
            valueTokens = 0;
        };
        for (++i; i < tokens.size(); ++i) {
            Token& t = tokens[i];
            if (t.kind == TokenKind::Space)
                continue;
            if (sql::isPunct(t, "(")) {
                ++depth;
            } else if (sql::isPunct(t, ")")) {
                if (depth == 0) {
                    finishValue();
                    break;
                }
                --depth;
            } else if (depth == 0 && sql::isPunct(t, ",")) {
                finishValue();
                continue;
            }
            if (valueStart < 0)
                valueStart = i;
            ++valueTokens;
        }
        i = sql::skipSpace(tokens, i + 1);
        if (i >= tokens.size() || !sql::isPunct(tokens[i], ","))
            return;
    }
}

// Update T set c1 = v1, c2 = v2 ... [where ...]: a lone text put into a date column.
void convertUpdateDates(QVector<Token>& tokens, int start) {
    int i = sql::skipSpace(tokens, start + 1);
    if (i >= tokens.size())
        return;
    const Table* table = findTable(sql::nameOf(tokens[i]));
    i = sql::skipSpace(tokens, i + 1);
    if (!table || i >= tokens.size() || !sql::isKeyword(tokens[i], "set"))
        return;
    ++i;
    while (i < tokens.size()) {
        i = sql::skipSpace(tokens, i);
        if (i >= tokens.size() || sql::isKeyword(tokens[i], "where"))
            return;
        const QString column = sql::nameOf(tokens[i]);
        int eq = sql::skipSpace(tokens, i + 1);
        if (eq >= tokens.size() || tokens[eq].text != QLatin1String("="))
            return;
        int v = sql::skipSpace(tokens, eq + 1);
        int after = sql::skipSpace(tokens, v + 1);
        const bool lone = after >= tokens.size() || tokens[after].text == QLatin1String(",") ||
                          sql::isKeyword(tokens[after], "where") ||
                          tokens[after].kind == TokenKind::Semicolon;
        if (v < tokens.size() && lone && isDateColumn(table->name, column))
            convertDateText(tokens[v], canonicalName(column));
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

} // namespace

QString Dialect::quotedName(const QString& name) {
    QString n = canonicalName(name);
    n.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + n + QLatin1Char('"');
}

QString Dialect::translateToken(const Token& t) {
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
}

QString Dialect::translate(const QString& statement) const {
    QVector<Token> tokens = sql::tokenize(statement);

    // One statement: a lone ";" at the end is let through, anything after it is refused.
    for (int i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind != TokenKind::Semicolon)
            continue;
        if (sql::skipSpace(tokens, i + 1) < tokens.size())
            refuse(QStringLiteral("Characters found after end of SQL statement."));
        tokens.resize(i);
        break;
    }

    const int first = sql::skipSpace(tokens, 0);
    if (first < tokens.size()) {
        if (sql::isKeyword(tokens[first], "insert"))
            convertInsertDates(tokens, first);
        else if (sql::isKeyword(tokens[first], "update"))
            convertUpdateDates(tokens, first);
    }

    const Rewrites changes = rewrites(tokens);
    QString out;
    out.reserve(statement.size() + 32);
    for (int i = 0; i < tokens.size(); ++i) {
        const auto change = changes.constFind(i);
        if (change == changes.cend()) {
            out += translateToken(tokens[i]);
            continue;
        }
        out += change->before;
        out += change->replacement.isNull() ? translateToken(tokens[i]) : change->replacement;
        out += change->after;
    }
    return out;
}

} // namespace db
