#include "SqlText.h"

#include "Errors.h"

namespace db::sql {

namespace {

[[noreturn]] void refuse(const QString& why) {
    throw platform::Error(ErrStatement, why);
}

bool isWordStart(QChar c) {
    return c.isLetter() || c == QLatin1Char('_') || c.unicode() >= 0x80;
}
bool isWordChar(QChar c) {
    return isWordStart(c) || c.isDigit() || c == QLatin1Char('$');
}

} // namespace

bool isKeyword(const Token& t, const char* keyword) {
    return t.kind == TokenKind::Word && t.text.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
}

bool isAnyKeyword(const Token& t, std::initializer_list<const char*> keywords) {
    for (const char* k : keywords)
        if (isKeyword(t, k))
            return true;
    return false;
}

bool isPunct(const Token& t, const char* text) {
    return t.kind == TokenKind::Punct && t.text == QLatin1String(text);
}

int skipSpace(const QVector<Token>& tokens, int i) {
    while (i < tokens.size() && tokens[i].kind == TokenKind::Space)
        ++i;
    return i;
}

int previousToken(const QVector<Token>& tokens, int i) {
    for (--i; i >= 0; --i)
        if (tokens[i].kind != TokenKind::Space)
            return i;
    return -1;
}

QString nameOf(const Token& t) {
    return t.kind == TokenKind::Word || t.kind == TokenKind::Bracketed || t.kind == TokenKind::Quoted
               ? t.text
               : QString();
}

QVector<Token> tokenize(const QString& s) {
    QVector<Token> out;
    const int n = s.size();
    int i = 0;
    auto closing = [&](QChar close, const char* what) {
        const int start = i + 1;
        const int end = s.indexOf(close, start);
        if (end < 0)
            refuse(
                QStringLiteral("Syntax error: unterminated %1 in the statement.").arg(QLatin1String(what)));
        i = end + 1;
        return s.mid(start, end - start);
    };
    while (i < n) {
        const QChar c = s[i];
        if (c.isSpace()) {
            const int start = i;
            while (i < n && s[i].isSpace())
                ++i;
            out.push_back({TokenKind::Space, s.mid(start, i - start)});
        } else if (c == QLatin1Char('\'')) {
            const int start = i++;
            for (;;) {
                if (i >= n)
                    refuse(QStringLiteral("Syntax error: unterminated text in the statement."));
                if (s[i] == QLatin1Char('\'')) {
                    if (i + 1 < n && s[i + 1] == QLatin1Char('\'')) {
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                ++i;
            }
            out.push_back({TokenKind::String, s.mid(start, i - start)});
        } else if (c == QLatin1Char('"')) {
            out.push_back({TokenKind::Quoted, closing(QLatin1Char('"'), "quoted name")});
        } else if (c == QLatin1Char('`')) {
            out.push_back({TokenKind::Bracketed, closing(QLatin1Char('`'), "quoted name")});
        } else if (c == QLatin1Char('[')) {
            out.push_back({TokenKind::Bracketed, closing(QLatin1Char(']'), "bracketed name")});
        } else if (c == QLatin1Char('#')) {
            out.push_back({TokenKind::DateLiteral, closing(QLatin1Char('#'), "date")});
        } else if (c.isDigit() || (c == QLatin1Char('.') && i + 1 < n && s[i + 1].isDigit())) {
            const int start = i;
            while (i < n && (s[i].isDigit() || s[i] == QLatin1Char('.')))
                ++i;
            if (i < n && (s[i] == QLatin1Char('e') || s[i] == QLatin1Char('E')) && i + 1 < n &&
                (s[i + 1].isDigit() || ((s[i + 1] == QLatin1Char('+') || s[i + 1] == QLatin1Char('-')) &&
                                        i + 2 < n && s[i + 2].isDigit()))) {
                i += 2;
                while (i < n && s[i].isDigit())
                    ++i;
            }
            out.push_back({TokenKind::Number, s.mid(start, i - start)});
        } else if (isWordStart(c)) {
            const int start = i;
            while (i < n && isWordChar(s[i]))
                ++i;
            out.push_back({TokenKind::Word, s.mid(start, i - start)});
        } else if (c == QLatin1Char(';')) {
            out.push_back({TokenKind::Semicolon, QStringLiteral(";")});
            ++i;
        } else {
            const QString two = s.mid(i, 2);
            if (two == QLatin1String("--") || two == QLatin1String("/*"))
                refuse(QStringLiteral("Syntax error: \"%1\" outside quotes in the statement.").arg(two));
            static const QString twoChar[] = {QStringLiteral("<="), QStringLiteral(">="),
                                              QStringLiteral("<>"), QStringLiteral("!="),
                                              QStringLiteral("||")};
            bool matched = false;
            for (const QString& op : twoChar)
                if (two == op) {
                    out.push_back({TokenKind::Punct, op});
                    i += 2;
                    matched = true;
                    break;
                }
            if (matched)
                continue;
            static const QString single = QStringLiteral("(),.=<>+-*/%&|?:!");
            if (!single.contains(c))
                refuse(QStringLiteral("Syntax error: unexpected character \"%1\" in the statement.").arg(c));
            out.push_back({TokenKind::Punct, QString(c)});
            ++i;
        }
    }
    return out;
}

QString stringValue(const QString& literal) {
    QString inner = literal.mid(1, literal.size() - 2);
    inner.replace(QStringLiteral("''"), QStringLiteral("'"));
    return inner;
}

QString quoteString(const QString& value) {
    QString v = value;
    v.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + v + QLatin1Char('\'');
}

} // namespace db::sql
