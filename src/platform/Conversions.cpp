#include "Conversions.h"

#include "Error.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>
#include <cmath>

namespace platform {

Error invalidUseOfNull() {
    return Error(94, QStringLiteral("Invalid use of Null"));
}

namespace {
Error typeMismatch() {
    return Error(ErrTypeMismatch, QStringLiteral("Type mismatch"));
}
Error overflow() {
    return Error(ErrOverflow, QStringLiteral("Overflow"));
}

double toNumber(const QVariant& value) {
    if (IsNull(value))
        throw invalidUseOfNull();
    bool ok = false;
    double number = 0;
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? -1 : 0;
    case QMetaType::QString: {
        const QString text = value.toString().trimmed();
        number = text.toDouble(&ok);
        if (!ok)
            throw typeMismatch();
        return number;
    }
    default:
        number = value.toDouble(&ok);
        if (!ok)
            throw typeMismatch();
        return number;
    }
}

double roundHalfEven(double x) {
    return std::nearbyint(x);
}
} // namespace

QDate CDate(const QVariant& value) {
    if (IsNull(value))
        throw invalidUseOfNull();
    if (value.typeId() == QMetaType::QDate)
        return value.toDate();
    if (value.typeId() == QMetaType::QDateTime)
        return value.toDateTime().date();
    const QString text = value.toString().trimmed();
    QDate date = QDate::fromString(text, Qt::ISODate);
    if (!date.isValid())
        date = QLocale().toDate(text, QStringLiteral("dd/MMM/yyyy"));
    if (!date.isValid())
        throw typeMismatch();
    return date;
}

bool IsNull(const QVariant& value) {
    return !value.isValid() || value.isNull();
}

QString CStr(const QVariant& value) {
    if (IsNull(value))
        throw invalidUseOfNull();
    if (value.typeId() == QMetaType::QDate)
        return value.toDate().toString(QStringLiteral("dd/MM/yyyy"));
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return NumberText(value.toDouble());
    return value.toString();
}

QString NumberText(double number) {
    return QString::number(number, 'f', QLocale::FloatingPointShortest);
}

QString FormatDate(const QVariant& value, const QString& format) {
    if (IsNull(value))
        return QString();
    return QLocale().toString(CDate(value), format);
}

QString TrimStr(const QVariant& value) {
    return CStr(value).trimmed();
}

qint16 CInt(const QVariant& value) {
    const double rounded = roundHalfEven(toNumber(value));
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw overflow();
    return static_cast<qint16>(rounded);
}

qint32 CLng(const QVariant& value) {
    const double rounded = roundHalfEven(toNumber(value));
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        throw overflow();
    return static_cast<qint32>(rounded);
}

double CDbl(const QVariant& value) {
    return toNumber(value);
}

double Val(const QString& text) {
    static const QRegularExpression number(
        QStringLiteral("^\\s*([-+]?\\d*\\.?\\d+(?:[eE][-+]?\\d+)?|[-+]?\\d+\\.?)"));
    const auto match = number.match(text);
    if (!match.hasMatch())
        return 0;
    return match.captured(1).toDouble();
}

} // namespace platform
