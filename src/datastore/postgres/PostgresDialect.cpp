#include "PostgresDialect.h"
#include "datastore/Schema.h"
#include "datastore/SqlText.h"

namespace db {

Dialect::Rewrites PostgresDialect::rewrites(const QVector<sql::Token>& tokens) const {
    Rewrites out;
    for (int i = 0; i < tokens.size(); ++i) {
        if (!sql::isKeyword(tokens[i], "like"))
            continue;
        // Letters of every alphabet match regardless of case, as on the embedded file.
        out[i].replacement = QStringLiteral("ILIKE");
        // A text column compares as plain text: the form that its trigram index serves.
        int column = sql::previousToken(tokens, i);
        if (column >= 0 && sql::isKeyword(tokens[column], "not"))
            column = sql::previousToken(tokens, column);
        if (column >= 0 && isTextColumnName(sql::nameOf(tokens[column])))
            out[column].after += QStringLiteral("::text");
        // The screens' patterns know only '%' and '_': a backslash in them is a backslash. Only a
        // pattern that is one text standing alone, without an escape of its own, says so.
        const int pattern = sql::skipSpace(tokens, i + 1);
        if (pattern >= tokens.size() || tokens[pattern].kind != sql::TokenKind::String)
            continue;
        const int next = sql::skipSpace(tokens, pattern + 1);
        if (next >= tokens.size() || sql::isPunct(tokens[next], ")") || sql::isPunct(tokens[next], ",") ||
            (tokens[next].kind == sql::TokenKind::Word && !sql::isKeyword(tokens[next], "escape")))
            out[pattern].after += QStringLiteral(" ESCAPE ''");
    }
    return out;
}

} // namespace db
