#include "LaterTables.h"

#include "datastore/Schema.h"

#include <algorithm>
#include <sqlite3.h>

namespace db {

namespace {

const char* const FollowInsert = "SoftCopyFollowsInsert";
const char* const FollowDelete = "SoftCopyFollowsDelete";
const char* const FollowPath = "SoftCopyFollowsPath";
const char* const FollowDate = "SoftCopyFollowsDate";
const char* const Queue = "ixSoftCopyQueue";
const char* const FollowNames[] = {FollowInsert, FollowDelete, FollowPath, FollowDate, Queue};

bool run(sqlite3* handle, const QString& sql) {
    return sqlite3_exec(handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

// What the file holds under a name: nothing, what this version makes, or a trigger of an earlier
// version (made again; a table or an index is never made again).
enum class Held { Nothing, Current, EarlierTrigger };

Held held(sqlite3* handle, const QString& name, const QString& statement) {
    sqlite3_stmt* query = nullptr;
    Held found = Held::Nothing;
    if (sqlite3_prepare_v2(handle, "SELECT type, sql FROM sqlite_master WHERE name=?1 COLLATE NOCASE", -1,
                           &query, nullptr) == SQLITE_OK) {
        const QByteArray bytes = name.toUtf8();
        sqlite3_bind_text(query, 1, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        if (sqlite3_step(query) == SQLITE_ROW) {
            const auto text = [query](int column) {
                return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(query, column)));
            };
            found = text(0) == QLatin1String("trigger") && text(1) != statement ? Held::EarlierTrigger
                                                                                : Held::Current;
        }
    }
    sqlite3_finalize(query);
    return found;
}

// The names of what this open makes, each with its statement.
QList<std::pair<QString, QString>> parts() {
    QList<std::pair<QString, QString>> out;
    for (const Table& t : schema())
        if (t.addedLater)
            out.append({t.name, createTableStatement(t)});
    const QStringList follow = followStatements();
    for (int i = 0; i < follow.size(); ++i)
        out.append({QString::fromLatin1(FollowNames[i]), follow[i]});
    return out;
}

bool allPresent(sqlite3* handle) {
    const auto all = parts();
    return std::all_of(all.cbegin(), all.cend(),
                       [handle](const auto& p) { return held(handle, p.first, p.second) == Held::Current; });
}

} // namespace

QStringList followStatements() {
    // The path compares as written: another letter case may name another file. A path that names
    // the very file the text was read from keeps the text (the soft copies' folder moved).
    return {QStringLiteral("CREATE TRIGGER \"%1\" AFTER INSERT ON \"Vorlane\" BEGIN INSERT OR IGNORE INTO "
                           "\"SoftCopy\" (\"IndexID\", \"DocDate\", \"ReadState\") VALUES (new.\"IndexID\", "
                           "new.\"DocDate\", 'waiting'); END")
                .arg(QString::fromLatin1(FollowInsert)),
            QStringLiteral("CREATE TRIGGER \"%1\" AFTER DELETE ON \"Vorlane\" BEGIN DELETE FROM \"SoftCopy\" "
                           "WHERE \"IndexID\" = old.\"IndexID\"; END")
                .arg(QString::fromLatin1(FollowDelete)),
            QStringLiteral(
                "CREATE TRIGGER \"%1\" AFTER UPDATE OF \"FilePath\" ON \"Vorlane\" WHEN "
                "old.\"FilePath\" COLLATE BINARY IS NOT new.\"FilePath\" BEGIN UPDATE \"SoftCopy\" "
                "SET \"ReadState\" = 'waiting', \"Reason\" = NULL, \"SoftText\" = NULL WHERE "
                "\"IndexID\" = new.\"IndexID\" AND \"ReadPath\" COLLATE BINARY IS NOT new.\"FilePath\"; "
                "END")
                .arg(QString::fromLatin1(FollowPath)),
            QStringLiteral(
                "CREATE TRIGGER \"%1\" AFTER UPDATE OF \"DocDate\" ON \"Vorlane\" BEGIN UPDATE "
                "\"SoftCopy\" SET \"DocDate\" = new.\"DocDate\" WHERE \"IndexID\" = new.\"IndexID\"; END")
                .arg(QString::fromLatin1(FollowDate)),
            QStringLiteral("CREATE INDEX \"%1\" ON \"SoftCopy\" (\"ReadState\", \"DocDate\", \"IndexID\")")
                .arg(QString::fromLatin1(Queue))};
}

bool openLaterTables(sqlite3* handle) {
    if (!handle)
        return false;
    if (allPresent(handle))
        return true;
    // The write lock first, then the test again: another seat may have made them meanwhile.
    if (!run(handle, QStringLiteral("BEGIN IMMEDIATE")))
        return false;
    bool made = true;
    for (const auto& [name, statement] : parts()) {
        const Held now = made ? held(handle, name, statement) : Held::Current;
        if (now == Held::EarlierTrigger)
            made = run(handle, QStringLiteral("DROP TRIGGER \"%1\"").arg(name));
        if (made && now != Held::Current) {
            made = run(handle, statement);
            // The documents of before come waiting, as a new one does.
            if (made && name == QLatin1String(FollowInsert))
                made = run(handle, QStringLiteral("INSERT OR IGNORE INTO \"SoftCopy\" (\"IndexID\", "
                                                  "\"DocDate\", \"ReadState\") SELECT \"IndexID\", "
                                                  "\"DocDate\", 'waiting' FROM \"Vorlane\""));
        }
    }
    made = made && run(handle, QStringLiteral("COMMIT"));
    if (!made)
        run(handle, QStringLiteral("ROLLBACK"));
    return made;
}

} // namespace db
