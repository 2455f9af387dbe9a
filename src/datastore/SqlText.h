#pragma once

#include <QString>
#include <QVector>
#include <initializer_list>

// The pieces of a statement as the screens write it. Shared by the dialects and the recordset.
namespace db::sql {

enum class TokenKind {
    Space,
    Word, // identifier or keyword
    Number,
    String,      // '...' with '' inside; text holds the whole literal, quotes included
    Quoted,      // "..." ; text holds the content
    Bracketed,   // `...` or [...] ; text holds the content
    DateLiteral, // #...# ; text holds the content
    Semicolon,
    Punct,
};

struct Token {
    TokenKind kind;
    QString text;
};

// Splits `statement` into tokens. Throws platform::Error(ErrStatement) on an unterminated
// quote, a comment ("--" or "/*") outside quotes, or an unknown character.
QVector<Token> tokenize(const QString& statement);

// The content of a '...' literal with its doubled quotes undone.
QString stringValue(const QString& literal);
// A '...' literal holding `value`.
QString quoteString(const QString& value);

bool isKeyword(const Token& t, const char* keyword);
bool isAnyKeyword(const Token& t, std::initializer_list<const char*> keywords);
bool isPunct(const Token& t, const char* text);

// Index of the next token that is not blank, from `i` on; tokens.size() when none.
int skipSpace(const QVector<Token>& tokens, int i);
// Index of the token before `i` that is not blank; -1 when none.
int previousToken(const QVector<Token>& tokens, int i);
// The name a word, a bracketed or a double-quoted token stands for; empty for any other token.
QString nameOf(const Token& t);

} // namespace db::sql
