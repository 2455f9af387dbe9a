#pragma once

#include <QDate>
#include <QString>
#include <optional>

// Dates as the screens write them into statements, read back by the data layer.
namespace db::sql {

// "dd-MMM-yy", "dd/MMM/yyyy" (and the other separator or year width) as QLocale writes them in
// the running language: the day's and the year's digits of any script, a month's short or long
// name of the running locale or of English, in any letter case, with or without its closing dot.
// A name may hold blanks, digits or the separator itself ("1月", "thg 1", "12-р сар"). Where a
// name reads differently in the running locale and in English, the running locale wins. Two-digit
// years 30-99 are 19xx, 00-29 are 20xx.
std::optional<QDate> parseScreenDate(const QString& text);

// The same, and when the month's name is neither the running locale's nor English, the name of
// any language that Qt knows, where all of them that use it mean the same month. For texts whose
// writer's language is unknown.
std::optional<QDate> parseDateOfAnyLanguage(const QString& text);

// "yyyy-MM-dd", the form in which the stores keep a date.
std::optional<QDate> parseStoredDate(const QString& text);

// The date that a text put into the date column `column` stands for: one of the screens' forms or
// the stored form. Throws platform::Error(ErrStatement) for any other text, so that a date column
// never holds a text.
QDate columnDate(const QString& text, const QString& column);

} // namespace db::sql
