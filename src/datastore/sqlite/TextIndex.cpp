#include "TextIndex.h"

#include "datastore/Schema.h"
#include "platform/MousePointer.h"

#include <QHash>
#include <QVector>
#include <algorithm>
#include <sqlite3.h>

namespace db {

namespace {

// The tables of the schema that have columns marked for text search.
QVector<const Table*> indexedTables() {
    QVector<const Table*> out;
    for (const Table& t : schema())
        if (!t.textSearchColumns().isEmpty())
            out << &t;
    return out;
}

QString quoted(const QString& name) {
    return QLatin1Char('"') + name + QLatin1Char('"');
}

// The key and the marked columns of `t` as the triggers hand them over, each after `prefix`.
QString values(const Table& t, const QString& prefix) {
    QStringList out{prefix + quoted(t.key())};
    for (const QString& c : t.textSearchColumns())
        out << prefix + quoted(c);
    return out.join(QStringLiteral(", "));
}

QString columnList(const Table& t) {
    QStringList out;
    for (const QString& c : t.textSearchColumns())
        out << quoted(c);
    return out.join(QStringLiteral(", "));
}

// The index of a table is an external-content one over the table (content_rowid its key): it
// keeps only the index, not a second copy of the texts, and 'rebuild' fills it from the table when
// a database made before it gets it. The triggers use the engine's own statements alone, so every
// writer keeps it right: this program on any seat, an earlier version of it, or the sqlite3
// shell. The delete and update triggers hand the index the old texts, exactly those that the
// insert trigger gave it. No column sizes are kept: nothing ranks the rows.
QString createTable(const Table& t) {
    return QStringLiteral("CREATE VIRTUAL TABLE %1 USING fts5(%2, content='%3', content_rowid='%4', "
                          "tokenize='trigram', columnsize=0)")
        .arg(quoted(textIndexName(t.name)), columnList(t), t.name, t.key());
}

QString insertion(const Table& t) {
    return QStringLiteral("INSERT INTO %1(rowid, %2) VALUES (%3); ")
        .arg(quoted(textIndexName(t.name)), columnList(t), values(t, QStringLiteral("new.")));
}

QString deletion(const Table& t) {
    const QString index = quoted(textIndexName(t.name));
    return QStringLiteral("INSERT INTO %1(%1, rowid, %2) VALUES ('delete', %3); ")
        .arg(index, columnList(t), values(t, QStringLiteral("old.")));
}

// The full-text table and its insert, delete and update triggers.
QStringList statements(const Table& t) {
    const QString trigger = textIndexName(t.name);
    return {createTable(t),
            QStringLiteral("CREATE TRIGGER %1 AFTER INSERT ON %2 BEGIN %3END")
                .arg(quoted(trigger + QStringLiteral("Insert")), quoted(t.name), insertion(t)),
            QStringLiteral("CREATE TRIGGER %1 AFTER DELETE ON %2 BEGIN %3END")
                .arg(quoted(trigger + QStringLiteral("Delete")), quoted(t.name), deletion(t)),
            QStringLiteral("CREATE TRIGGER %1 AFTER UPDATE OF %2, %3 ON %4 BEGIN %5%6END")
                .arg(quoted(trigger + QStringLiteral("Update")), quoted(t.key()), columnList(t),
                     quoted(t.name), deletion(t), insertion(t))};
}

// The names of the four parts of the index of `t`.
QStringList partNames(const Table& t) {
    const QString index = textIndexName(t.name);
    return {index, index + QStringLiteral("Insert"), index + QStringLiteral("Delete"),
            index + QStringLiteral("Update")};
}

// The names of every index's four parts.
QStringList partNames() {
    QStringList out;
    for (const Table* t : indexedTables())
        out << partNames(*t);
    return out;
}

// True when the database has every part of the indexes whose parts are `names`.
bool allPresent(sqlite3* handle, const QStringList& names) {
    QStringList quotedNames;
    for (const QString& n : names)
        quotedNames << QLatin1Char('\'') + n + QLatin1Char('\'');
    const QByteArray sql = QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name IN (%1)")
                               .arg(quotedNames.join(QStringLiteral(", ")))
                               .toUtf8();
    sqlite3_stmt* statement = nullptr;
    int count = -1;
    if (sqlite3_prepare_v2(handle, sql.constData(), -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        count = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return count == names.size();
}

bool allPresent(sqlite3* handle) {
    return allPresent(handle, partNames());
}

bool run(sqlite3* handle, const char* sql) {
    return sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool run(sqlite3* handle, const QString& sql) {
    return run(handle, sql.toUtf8().constData());
}

// Builds every index that misses a part inside the open write transaction; a part left by an
// interrupted or altered database goes first, so that each index is whole and matches its table.
// A whole index stays: a table added later gets its own without the documents' being rebuilt.
bool build(sqlite3* handle) {
    for (const Table* t : indexedTables()) {
        if (allPresent(handle, partNames(*t)))
            continue;
        const QString index = quoted(textIndexName(t->name));
        const QString trigger = textIndexName(t->name);
        const QStringList create = statements(*t);
        const QStringList steps{
            QStringLiteral("DROP TRIGGER IF EXISTS %1").arg(quoted(trigger + QStringLiteral("Insert"))),
            QStringLiteral("DROP TRIGGER IF EXISTS %1").arg(quoted(trigger + QStringLiteral("Delete"))),
            QStringLiteral("DROP TRIGGER IF EXISTS %1").arg(quoted(trigger + QStringLiteral("Update"))),
            QStringLiteral("DROP TABLE IF EXISTS %1").arg(index),
            create[0],
            QStringLiteral("INSERT INTO %1(%1) VALUES ('rebuild')").arg(index),
            create[1],
            create[2],
            create[3],
        };
        for (const QString& sql : steps)
            if (!run(handle, sql))
                return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------------
// Where the index and the like disagree on letter case.
//
// The like folds both sides with Qt's case folding; the trigram tokenizer folds what it stores
// and what it looks for with the engine's own table. The two agree for most letters, but not
// for all: the like takes the old Cyrillic forms (U+1C80...) for their modern letters, and
// Cherokee, Georgian or Osage small letters for their capitals, where the tokenizer keeps them
// apart. A document holding such a form would be missed by an index search for the ordinary
// letter. So a character of the pattern stands in the full-text query for every form that the
// index may have stored for the letters that the like takes for it: one representative per
// form. Both foldings are asked of the running libraries, once per process.

struct FoldVariants {
    bool usable = false;
    // Characters whose like-equals the tokenizer folds apart -> one representative per fold.
    QHash<char32_t, QVector<char32_t>> variants;
};

// The trigram tokenizer's folding of each of `characters`, or an empty list when the engine
// cannot tell.
QVector<char32_t> tokenizerFolding(const QVector<char32_t>& characters) {
    sqlite3* memory = nullptr;
    QVector<char32_t> folded;
    if (sqlite3_open_v2(":memory:", &memory, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        sqlite3_close(memory);
        return folded;
    }
    fts5_api* api = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(memory, "SELECT fts5(?1)", -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_pointer(statement, 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
        sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    void* context = nullptr;
    fts5_tokenizer tokenizer{};
    Fts5Tokenizer* trigram = nullptr;
    const char* options[] = {"case_sensitive", "0"};
    if (api && api->xFindTokenizer(api, "trigram", &context, &tokenizer) == SQLITE_OK &&
        tokenizer.xCreate(context, options, 2, &trigram) == SQLITE_OK) {
        // Each character starts one trigram, whose first character is its folding; two blanks
        // at the end give the last ones their trigrams.
        QByteArray text;
        QHash<int, int> characterAt; // byte offset -> index in `characters`
        for (int i = 0; i < characters.size(); ++i) {
            characterAt.insert(int(text.size()), i);
            text += QString::fromUcs4(&characters[i], 1).toUtf8();
        }
        text += "  ";
        struct Collect {
            const QHash<int, int>* at;
            QVector<char32_t>* out;
        };
        folded.fill(0, characters.size());
        Collect collect{&characterAt, &folded};
        const auto onToken = [](void* ctx, int, const char* token, int length, int start, int) -> int {
            auto* c = static_cast<Collect*>(ctx);
            const auto it = c->at->constFind(start);
            if (it != c->at->cend()) {
                const QList<uint> first = QString::fromUtf8(token, length).toUcs4();
                if (!first.isEmpty())
                    (*c->out)[*it] = first.front();
            }
            return SQLITE_OK;
        };
        if (tokenizer.xTokenize(trigram, &collect, FTS5_TOKENIZE_DOCUMENT, text.constData(), int(text.size()),
                                onToken) != SQLITE_OK ||
            std::count(folded.cbegin(), folded.cend(), char32_t(0)) > 0)
            folded.clear();
        tokenizer.xDelete(trigram);
    }
    sqlite3_close(memory);
    return folded;
}

FoldVariants computeFoldVariants() {
    FoldVariants result;
    // The groups of characters that the like takes for one another: those of the same folding.
    // Qt folds a text character by character, each as QChar::toCaseFolded folds it.
    QHash<char32_t, QVector<char32_t>> groups;
    for (char32_t c = 1; c < 0x110000; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        if (const char32_t folded = QChar::toCaseFolded(c); folded != c)
            groups[folded].push_back(c);
    }
    QVector<char32_t> members;
    for (auto it = groups.begin(); it != groups.end(); ++it) {
        if (QChar::toCaseFolded(it.key()) == it.key())
            it.value().push_back(it.key());
        members += it.value();
    }
    const QVector<char32_t> tokenizerFolded = tokenizerFolding(members);
    if (tokenizerFolded.size() != members.size())
        return result;
    QHash<char32_t, char32_t> tokenFold;
    for (int i = 0; i < members.size(); ++i)
        tokenFold.insert(members[i], tokenizerFolded[i]);

    for (const QVector<char32_t>& group : std::as_const(groups)) {
        QVector<char32_t> folds;
        QVector<char32_t> representatives;
        for (char32_t c : group) {
            if (!folds.contains(tokenFold.value(c))) {
                folds.push_back(tokenFold.value(c));
                representatives.push_back(c);
            }
        }
        if (representatives.size() > 1)
            for (char32_t c : group)
                result.variants.insert(c, representatives);
    }
    result.usable = true;
    return result;
}

const FoldVariants& foldVariants() {
    static const FoldVariants variants = computeFoldVariants();
    return variants;
}

// The full-text query's limits: a pattern of any length gives a query of bounded work.
constexpr int MinimumRun = 3;     // the index holds trigrams
constexpr int LongestPhrase = 32; // characters of one phrase
constexpr int MostPhrases = 6;    // phrases looked for, the longest ones
constexpr int MostSpellings = 8;  // spellings of one phrase for the folds the like joins

struct Phrase {
    QVector<char32_t> characters;
    int spellings = 1;
};

QString quotedPhrase(const QVector<char32_t>& characters) {
    QString text = QString::fromUcs4(characters.constData(), characters.size());
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// Every spelling of `phrase`, each character replaced by its representatives in turn.
QStringList spellings(const Phrase& phrase, const FoldVariants& folds) {
    QVector<QVector<char32_t>> out{{}};
    for (char32_t c : phrase.characters) {
        const QVector<char32_t> forms = folds.variants.value(c, {c});
        QVector<QVector<char32_t>> next;
        for (const QVector<char32_t>& prefix : std::as_const(out))
            for (char32_t form : forms)
                next.push_back(prefix + QVector<char32_t>{form});
        out = next;
    }
    QStringList quoted;
    for (const QVector<char32_t>& s : std::as_const(out))
        quoted << quotedPhrase(s);
    return quoted;
}

} // namespace

QString textIndexName(const QString& table) {
    return table + QStringLiteral("Text");
}

QStringList textIndexStatements() {
    QStringList out;
    for (const Table* t : indexedTables())
        out << statements(*t);
    return out;
}

TextIndexState openTextIndex(sqlite3* handle) {
    if (!handle)
        return TextIndexState::Unavailable;
    if (allPresent(handle))
        return TextIndexState::Present;
    // The write lock first, then the test again: another seat may have built it meanwhile.
    if (!run(handle, "BEGIN IMMEDIATE"))
        return TextIndexState::Unavailable;
    if (allPresent(handle))
        return run(handle, "COMMIT") ? TextIndexState::Present : TextIndexState::Unavailable;
    const int pointer = platform::mousePointer();
    platform::setMousePointer(platform::vbHourglass);
    const bool built = build(handle) && run(handle, "COMMIT");
    if (!built)
        run(handle, "ROLLBACK");
    platform::setMousePointer(pointer);
    return built ? TextIndexState::Built : TextIndexState::Unavailable;
}

QString textIndexQuery(const QString& pattern) {
    const FoldVariants& folds = foldVariants();
    if (!folds.usable)
        return QString();

    // The runs of literal characters: '%' and '_' are wildcards, and a lone surrogate or a NUL
    // is nothing the index can look for.
    QVector<QVector<char32_t>> runs{{}};
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        char32_t code = c.unicode();
        if (c.isHighSurrogate() && i + 1 < pattern.size() && pattern[i + 1].isLowSurrogate()) {
            code = QChar::surrogateToUcs4(c, pattern[i + 1]);
            ++i;
        } else if (c.isSurrogate() || code == 0 || c == QLatin1Char('%') || c == QLatin1Char('_')) {
            if (!runs.back().isEmpty())
                runs.push_back({});
            continue;
        }
        runs.back().push_back(code);
    }

    // Each run cut into phrases of three characters or more whose spellings stay few.
    QVector<Phrase> phrases;
    for (const QVector<char32_t>& r : std::as_const(runs)) {
        int start = 0;
        while (r.size() - start >= MinimumRun) {
            Phrase p;
            int end = start;
            while (end < r.size() && end - start < LongestPhrase) {
                const int forms = int(folds.variants.value(r[end], {r[end]}).size());
                if (p.spellings * forms > MostSpellings)
                    break;
                p.spellings *= forms;
                ++end;
            }
            if (end - start >= MinimumRun) {
                p.characters = r.mid(start, end - start);
                phrases.push_back(p);
                start = end;
            } else {
                ++start;
            }
        }
    }
    if (phrases.isEmpty())
        return QString();
    std::stable_sort(phrases.begin(), phrases.end(), [](const Phrase& a, const Phrase& b) {
        return a.characters.size() > b.characters.size();
    });
    phrases.resize(std::min(int(phrases.size()), MostPhrases));

    QStringList parts;
    for (const Phrase& p : std::as_const(phrases)) {
        const QStringList forms = spellings(p, folds);
        parts << (forms.size() == 1
                      ? forms.front()
                      : QLatin1Char('(') + forms.join(QStringLiteral(" OR ")) + QLatin1Char(')'));
    }
    return parts.join(QStringLiteral(" AND "));
}

} // namespace db
