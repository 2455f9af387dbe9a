#include "TextIndex.h"

#include "platform/MousePointer.h"

#include <QHash>
#include <QVector>
#include <algorithm>
#include <sqlite3.h>

namespace db {

namespace {

const char* const IndexedColumns[] = {"Title1", "Title2", "Bookmark", "Remarks"};

// The table is an external-content one over Vorlane (content_rowid IndexID): it keeps only the
// index, not a second copy of the texts, and 'rebuild' fills it from Vorlane when a database
// made before it gets it. The triggers use the engine's own statements alone, so every writer
// keeps it right: this program on any seat, an earlier version of it, or the sqlite3 shell.
// The delete and update triggers hand the index the old texts, exactly those that the insert
// trigger gave it. No column sizes are kept: nothing ranks the rows.
const char* const CreateTable =
    "CREATE VIRTUAL TABLE \"VorlaneText\" USING fts5(\"Title1\", \"Title2\", \"Bookmark\", \"Remarks\", "
    "content='Vorlane', content_rowid='IndexID', tokenize='trigram', columnsize=0)";
const char* const CreateInsertTrigger =
    "CREATE TRIGGER \"VorlaneTextInsert\" AFTER INSERT ON \"Vorlane\" BEGIN "
    "INSERT INTO \"VorlaneText\"(rowid, \"Title1\", \"Title2\", \"Bookmark\", \"Remarks\") "
    "VALUES (new.\"IndexID\", new.\"Title1\", new.\"Title2\", new.\"Bookmark\", new.\"Remarks\"); END";
const char* const CreateDeleteTrigger =
    "CREATE TRIGGER \"VorlaneTextDelete\" AFTER DELETE ON \"Vorlane\" BEGIN "
    "INSERT INTO \"VorlaneText\"(\"VorlaneText\", rowid, \"Title1\", \"Title2\", \"Bookmark\", \"Remarks\") "
    "VALUES ('delete', old.\"IndexID\", old.\"Title1\", old.\"Title2\", old.\"Bookmark\", old.\"Remarks\"); "
    "END";
const char* const CreateUpdateTrigger =
    "CREATE TRIGGER \"VorlaneTextUpdate\" AFTER UPDATE OF \"IndexID\", \"Title1\", \"Title2\", \"Bookmark\", "
    "\"Remarks\" ON \"Vorlane\" BEGIN "
    "INSERT INTO \"VorlaneText\"(\"VorlaneText\", rowid, \"Title1\", \"Title2\", \"Bookmark\", \"Remarks\") "
    "VALUES ('delete', old.\"IndexID\", old.\"Title1\", old.\"Title2\", old.\"Bookmark\", old.\"Remarks\"); "
    "INSERT INTO \"VorlaneText\"(rowid, \"Title1\", \"Title2\", \"Bookmark\", \"Remarks\") "
    "VALUES (new.\"IndexID\", new.\"Title1\", new.\"Title2\", new.\"Bookmark\", new.\"Remarks\"); END";

// How many of the index's four parts the database has.
int partsPresent(sqlite3* handle) {
    sqlite3_stmt* statement = nullptr;
    int count = -1;
    if (sqlite3_prepare_v2(handle,
                           "SELECT count(*) FROM sqlite_master WHERE name IN ('VorlaneText', "
                           "'VorlaneTextInsert', 'VorlaneTextDelete', 'VorlaneTextUpdate')",
                           -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        count = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return count;
}

bool run(sqlite3* handle, const char* sql) {
    return sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Builds the index inside the open write transaction; a part left by an interrupted or altered
// database goes first, so that the index is whole and matches the documents.
bool build(sqlite3* handle) {
    const char* const statements[] = {
        "DROP TRIGGER IF EXISTS \"VorlaneTextInsert\"",
        "DROP TRIGGER IF EXISTS \"VorlaneTextDelete\"",
        "DROP TRIGGER IF EXISTS \"VorlaneTextUpdate\"",
        "DROP TABLE IF EXISTS \"VorlaneText\"",
        CreateTable,
        "INSERT INTO \"VorlaneText\"(\"VorlaneText\") VALUES ('rebuild')",
        CreateInsertTrigger,
        CreateDeleteTrigger,
        CreateUpdateTrigger,
    };
    for (const char* sql : statements)
        if (!run(handle, sql))
            return false;
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

bool isIndexedTextColumn(const QString& column) {
    for (const char* c : IndexedColumns)
        if (column.compare(QLatin1String(c), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

QStringList textIndexStatements() {
    return {QString::fromLatin1(CreateTable), QString::fromLatin1(CreateInsertTrigger),
            QString::fromLatin1(CreateDeleteTrigger), QString::fromLatin1(CreateUpdateTrigger)};
}

TextIndexState openTextIndex(sqlite3* handle) {
    if (!handle)
        return TextIndexState::Unavailable;
    if (partsPresent(handle) == 4)
        return TextIndexState::Present;
    // The write lock first, then the test again: another seat may have built it meanwhile.
    if (!run(handle, "BEGIN IMMEDIATE"))
        return TextIndexState::Unavailable;
    if (partsPresent(handle) == 4)
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
