#include "DateTexts.h"

#include "DateText.h"
#include "Schema.h"
#include "platform/MousePointer.h"

#include <QStringList>
#include <QVector>
#include <sqlite3.h>

namespace db {

namespace {

int userVersion(sqlite3* handle) {
    sqlite3_stmt* statement = nullptr;
    int version = -1;
    if (sqlite3_prepare_v2(handle, "PRAGMA user_version", -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        version = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return version;
}

bool run(sqlite3* handle, const QByteArray& sql) {
    return sqlite3_exec(handle, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

QString quoted(const QString& name) {
    return QLatin1Char('"') + name + QLatin1Char('"');
}

bool tableExists(sqlite3* handle, const QString& table) {
    sqlite3_stmt* statement = nullptr;
    bool found = false;
    if (sqlite3_prepare_v2(handle,
                           "SELECT 1 FROM sqlite_master WHERE type='table' AND name=?1 COLLATE NOCASE", -1,
                           &statement, nullptr) == SQLITE_OK) {
        const QByteArray name = table.toUtf8();
        sqlite3_bind_text(statement, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        found = sqlite3_step(statement) == SQLITE_ROW;
    }
    sqlite3_finalize(statement);
    return found;
}

// Converts the texts of one date column, inside the open transaction. Each distinct text is read
// once and written with one update through the column's index.
bool convertColumn(sqlite3* handle, const QString& table, const QString& column) {
    // Dates lie in the file as 'yyyy-MM-dd'; the texts to look at are all others.
    const QString select = QStringLiteral("SELECT DISTINCT %2 FROM %1 WHERE typeof(%2) = 'text' AND "
                                          "%2 NOT GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]'")
                               .arg(quoted(table), quoted(column));
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, select.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        return false;
    QVector<QPair<QByteArray, QByteArray>> changes; // text -> its date
    int step;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
        const QByteArray text(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                              sqlite3_column_bytes(statement, 0));
        if (const auto date = sql::parseDateOfAnyLanguage(QString::fromUtf8(text)))
            changes.push_back({text, date->toString(Qt::ISODate).toUtf8()});
    }
    sqlite3_finalize(statement);
    if (step != SQLITE_DONE)
        return false;
    const QString update =
        QStringLiteral("UPDATE %1 SET %2 = ?1 WHERE %2 = ?2").arg(quoted(table), quoted(column));
    if (sqlite3_prepare_v2(handle, update.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        return false;
    bool ok = true;
    for (const auto& [text, date] : std::as_const(changes)) {
        sqlite3_bind_text(statement, 1, date.constData(), int(date.size()), SQLITE_STATIC);
        sqlite3_bind_text(statement, 2, text.constData(), int(text.size()), SQLITE_STATIC);
        ok = sqlite3_step(statement) == SQLITE_DONE;
        sqlite3_reset(statement);
        if (!ok)
            break;
    }
    sqlite3_finalize(statement);
    return ok;
}

bool convert(sqlite3* handle) {
    for (const Table& table : schema()) {
        QStringList dates;
        for (const Column& column : table.columns)
            if (column.type == ColumnType::Date)
                dates << column.name;
        if (dates.isEmpty() || !tableExists(handle, table.name))
            continue;
        for (const QString& column : std::as_const(dates))
            if (!convertColumn(handle, table.name, column))
                return false;
    }
    return run(handle,
               QByteArrayLiteral("PRAGMA user_version = ") + QByteArray::number(DateTextsConvertedVersion));
}

} // namespace

DateTextsState convertDateTexts(sqlite3* handle) {
    if (!handle)
        return DateTextsState::Unavailable;
    if (userVersion(handle) >= DateTextsConvertedVersion)
        return DateTextsState::Done;
    // The write lock first, then the test again: another seat may have converted meanwhile.
    if (!run(handle, "BEGIN IMMEDIATE"))
        return DateTextsState::Unavailable;
    if (userVersion(handle) >= DateTextsConvertedVersion)
        return run(handle, "COMMIT") ? DateTextsState::Done : DateTextsState::Unavailable;
    const int pointer = platform::mousePointer();
    platform::setMousePointer(platform::vbHourglass);
    const bool converted = convert(handle) && run(handle, "COMMIT");
    if (!converted)
        run(handle, "ROLLBACK");
    platform::setMousePointer(pointer);
    return converted ? DateTextsState::Converted : DateTextsState::Unavailable;
}

} // namespace db
