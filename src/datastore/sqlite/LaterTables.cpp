#include "LaterTables.h"

#include "datastore/Schema.h"

#include <algorithm>
#include <sqlite3.h>

namespace db {

namespace {

const char* const FollowDelete = "SoftCopyFollowsDelete";
const char* const FollowPath = "SoftCopyFollowsPath";

bool run(sqlite3* handle, const QString& sql) {
    return sqlite3_exec(handle, sql.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool exists(sqlite3* handle, const QString& name) {
    sqlite3_stmt* statement = nullptr;
    bool found = false;
    if (sqlite3_prepare_v2(handle, "SELECT 1 FROM sqlite_master WHERE name=?1 COLLATE NOCASE", -1, &statement,
                           nullptr) == SQLITE_OK) {
        const QByteArray bytes = name.toUtf8();
        sqlite3_bind_text(statement, 1, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
        found = sqlite3_step(statement) == SQLITE_ROW;
    }
    sqlite3_finalize(statement);
    return found;
}

// The names of what this open makes, each with its statement.
QList<std::pair<QString, QString>> parts() {
    QList<std::pair<QString, QString>> out;
    for (const Table& t : schema())
        if (t.addedLater)
            out.append({t.name, createTableStatement(t)});
    const QStringList triggers = followStatements();
    out.append({QString::fromLatin1(FollowDelete), triggers[0]});
    out.append({QString::fromLatin1(FollowPath), triggers[1]});
    return out;
}

bool allPresent(sqlite3* handle) {
    const auto all = parts();
    return std::all_of(all.cbegin(), all.cend(), [handle](const auto& p) { return exists(handle, p.first); });
}

} // namespace

QStringList followStatements() {
    // The path compares as written: another letter case may name another file.
    return {
        QStringLiteral("CREATE TRIGGER \"%1\" AFTER DELETE ON \"Vorlane\" BEGIN DELETE FROM \"SoftCopy\" "
                       "WHERE \"IndexID\" = old.\"IndexID\"; END")
            .arg(QString::fromLatin1(FollowDelete)),
        QStringLiteral("CREATE TRIGGER \"%1\" AFTER UPDATE OF \"FilePath\" ON \"Vorlane\" WHEN "
                       "old.\"FilePath\" COLLATE BINARY IS NOT new.\"FilePath\" BEGIN UPDATE \"SoftCopy\" "
                       "SET \"ReadState\" = 'waiting', \"Reason\" = NULL, \"SoftText\" = NULL WHERE "
                       "\"IndexID\" = new.\"IndexID\"; END")
            .arg(QString::fromLatin1(FollowPath))};
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
    for (const auto& [name, statement] : parts())
        if (made && !exists(handle, name))
            made = run(handle, statement);
    made = made && run(handle, QStringLiteral("COMMIT"));
    if (!made)
        run(handle, QStringLiteral("ROLLBACK"));
    return made;
}

} // namespace db
