#include "DateTexts.h"

#include "datastore/DateText.h"
#include "datastore/Schema.h"
#include "platform/MousePointer.h"

#include <QHash>
#include <QStringList>
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

// Each text of a date column that reads as a date, with the date it stands for.
using Conversions = QHash<QByteArray, QByteArray>;

// Reads the texts of one date column, each distinct one once (through the column's index).
bool readTexts(sqlite3* handle, const QString& table, const QString& column, Conversions& conversions) {
    // Dates lie in the file as 'yyyy-MM-dd'; the texts to look at are all others.
    const QString select = QStringLiteral("SELECT DISTINCT %2 FROM %1 WHERE typeof(%2) = 'text' AND "
                                          "%2 NOT GLOB '[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]'")
                               .arg(quoted(table), quoted(column));
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, select.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        return false;
    int step;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
        const QByteArray text(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                              sqlite3_column_bytes(statement, 0));
        if (const auto date = sql::parseDateOfAnyLanguage(QString::fromUtf8(text)))
            conversions.insert(text, date->toString(Qt::ISODate).toUtf8());
    }
    sqlite3_finalize(statement);
    return step == SQLITE_DONE;
}

// The statements that make again the indexes of `table` that hold any of `columns`.
bool indexesOn(sqlite3* handle, const QString& table, const QStringList& columns, QStringList& definitions,
               QStringList& names) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(
            handle,
            "SELECT m.name, m.sql FROM sqlite_master AS m WHERE m.type = 'index' AND m.sql IS NOT "
            "NULL AND m.tbl_name = ?1 COLLATE NOCASE AND EXISTS (SELECT 1 FROM "
            "pragma_index_info(m.name) AS i WHERE instr(?2, ',' || lower(i.name) || ',') > 0)",
            -1, &statement, nullptr) != SQLITE_OK)
        return false;
    const QByteArray name = table.toUtf8();
    const QByteArray list =
        (QLatin1Char(',') + columns.join(QLatin1Char(',')).toLower() + QLatin1Char(',')).toUtf8();
    sqlite3_bind_text(statement, 1, name.constData(), int(name.size()), SQLITE_STATIC);
    sqlite3_bind_text(statement, 2, list.constData(), int(list.size()), SQLITE_STATIC);
    int step;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
        names << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
        definitions << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 1)));
    }
    sqlite3_finalize(statement);
    return step == SQLITE_DONE;
}

// The date of a text that reads as one; any other value as it is.
void dateOfText(sqlite3_context* context, int, sqlite3_value** arguments) {
    const auto* conversions = static_cast<const Conversions*>(sqlite3_user_data(context));
    if (sqlite3_value_type(arguments[0]) == SQLITE_TEXT) {
        const QByteArray text =
            QByteArray::fromRawData(reinterpret_cast<const char*>(sqlite3_value_text(arguments[0])),
                                    sqlite3_value_bytes(arguments[0]));
        if (const auto it = conversions->constFind(text); it != conversions->cend()) {
            sqlite3_result_text(context, it->constData(), int(it->size()), SQLITE_TRANSIENT);
            return;
        }
    }
    sqlite3_result_value(context, arguments[0]);
}

// Converts the texts of the date columns of one table, inside the open transaction. The rows to
// change are written in one pass over the table; the indexes of those columns are made again after
// it, which at a million documents is many times faster than keeping them up to date row by row.
bool convertTable(sqlite3* handle, const QString& table, const QStringList& columns) {
    Conversions conversions;
    for (const QString& column : columns)
        if (!readTexts(handle, table, column, conversions))
            return false;
    if (conversions.isEmpty())
        return true;
    QStringList indexes, names;
    if (!indexesOn(handle, table, columns, indexes, names))
        return false;
    for (const QString& name : std::as_const(names))
        if (!run(handle, QStringLiteral("DROP INDEX %1").arg(quoted(name)).toUtf8()))
            return false;
    if (sqlite3_create_function_v2(handle, "vorlane_date_of_text", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                   &conversions, dateOfText, nullptr, nullptr, nullptr) != SQLITE_OK)
        return false;
    QStringList set, changed;
    for (const QString& column : columns) {
        set << QStringLiteral("%1 = vorlane_date_of_text(%1)").arg(quoted(column));
        changed << QStringLiteral("vorlane_date_of_text(%1) IS NOT %1").arg(quoted(column));
    }
    bool ok = run(
        handle, QStringLiteral("UPDATE %1 SET %2 WHERE %3")
                    .arg(quoted(table), set.join(QStringLiteral(", ")), changed.join(QStringLiteral(" OR ")))
                    .toUtf8());
    sqlite3_create_function_v2(handle, "vorlane_date_of_text", 1, SQLITE_UTF8, nullptr, nullptr, nullptr,
                               nullptr, nullptr);
    for (const QString& index : std::as_const(indexes))
        ok = ok && run(handle, index.toUtf8());
    return ok;
}

bool convert(sqlite3* handle) {
    for (const Table& table : schema()) {
        QStringList dates;
        for (const Column& column : table.columns)
            if (column.type == ColumnType::Date)
                dates << column.name;
        if (!dates.isEmpty() && tableExists(handle, table.name) && !convertTable(handle, table.name, dates))
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
