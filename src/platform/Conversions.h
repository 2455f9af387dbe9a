#pragma once

#include <QDate>
#include <QString>
#include <QVariant>

// The conversions that the screens apply to values read from controls and recordsets.
// Each throws platform::Error with the platform's number where a conversion fails.
namespace platform {

// The error of a Null used where a value is needed: 94 "Invalid use of Null".
class Error;
Error invalidUseOfNull();
// Text of a value; a Null (invalid or null QVariant) fails with 94 "Invalid use of Null".
// Numbers come out as plain decimals.
QString CStr(const QVariant& value);
// A number as plain decimal digits, as a statement takes it: 1234567, never 1.23457e+06; a
// fraction with as many digits as it needs and a point.
QString NumberText(double number);
// Trimmed text of a value; fails on Null like CStr.
QString TrimStr(const QVariant& value);
// 16-bit signed integer, rounded half to even: 6 "Overflow" outside -32768..32767,
// 13 "Type mismatch" for a text that is no number, 94 for Null.
qint16 CInt(const QVariant& value);
// 32-bit signed integer, the same rules for its range.
qint32 CLng(const QVariant& value);
// A double: 13 for a text that is no number, 94 for Null.
double CDbl(const QVariant& value);
// The number at the start of a text, 0 when it starts with none; never fails.
double Val(const QString& text);
// A date: 94 for Null, 13 for a value that is no date (texts as "yyyy-MM-dd" or "dd/MMM/yyyy").
QDate CDate(const QVariant& value);
// A date as text in the running system's language, such as "dd/MMM/yyyy"; a Null gives "".
QString FormatDate(const QVariant& value, const QString& format);
// True for a Null value.
bool IsNull(const QVariant& value);

} // namespace platform
