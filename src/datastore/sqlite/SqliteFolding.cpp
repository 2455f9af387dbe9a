#include "SqliteFolding.h"

#include <QString>
#include <sqlite3.h>

namespace db {

namespace {

// The engine prefers a collation in the store's own encoding, UTF-8, so the override takes it too.
int compareNoCase(void*, int lengthA, const void* a, int lengthB, const void* b) {
    return QString::compare(QString::fromUtf8(static_cast<const char*>(a), lengthA),
                            QString::fromUtf8(static_cast<const char*>(b), lengthB), Qt::CaseInsensitive);
}

// '%' any run of characters, '_' one character; both sides already case-folded.
bool matches(const QString& pattern, const QString& text) {
    int p = 0, t = 0, starP = -1, starT = 0;
    while (t < text.size()) {
        // A '%' of the pattern is always a wildcard, also where the text holds a '%' itself.
        if (p < pattern.size() && pattern[p] == QLatin1Char('%')) {
            starP = p++;
            starT = t;
        } else if (p < pattern.size() && (pattern[p] == QLatin1Char('_') || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (starP >= 0) {
            p = starP + 1;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == QLatin1Char('%'))
        ++p;
    return p == pattern.size();
}

QString argument(sqlite3_value* v) {
    return QString(reinterpret_cast<const QChar*>(sqlite3_value_text16(v)),
                   sqlite3_value_bytes16(v) / int(sizeof(QChar)));
}

// like(pattern, text), as the engine calls it for "text like pattern".
void likeFunction(sqlite3_context* ctx, int, sqlite3_value** args) {
    if (sqlite3_value_type(args[0]) == SQLITE_NULL || sqlite3_value_type(args[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    sqlite3_result_int(ctx, matches(argument(args[0]).toCaseFolded(), argument(args[1]).toCaseFolded()));
}

} // namespace

bool installUnicodeFolding(sqlite3* handle) {
    if (!handle)
        return false;
    const int collation =
        sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, nullptr, compareNoCase, nullptr);
    const int like = sqlite3_create_function_v2(handle, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                                nullptr, likeFunction, nullptr, nullptr, nullptr);
    return collation == SQLITE_OK && like == SQLITE_OK;
}

} // namespace db
