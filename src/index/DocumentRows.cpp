#include "DocumentRows.h"

#include "datastore/Ado.h"
#include "platform/Conversions.h"
#include "platform/Error.h"
#include "session/GenMod.h"

#include <QCoreApplication>
#include <QDate>
#include <QLocale>
#include <limits>

namespace {

constexpr qsizetype BlockSize = 1 << 20;

// A value is a kind byte followed by its payload: a day number in four bytes, or a text's
// length (seven bits per byte) and its UTF-8 bytes.
enum Kind : char { TextValue = 0, DateValue = 1 };

void putLength(QByteArray& out, quint32 length) {
    while (length >= 0x80) {
        out.append(char((length & 0x7f) | 0x80));
        length >>= 7;
    }
    out.append(char(length));
}

quint32 takeLength(const char*& p) {
    quint32 length = 0;
    int shift = 0;
    while (true) {
        const auto byte = quint8(*p++);
        length |= quint32(byte & 0x7f) << shift;
        if (!(byte & 0x80))
            return length;
        shift += 7;
    }
}

} // namespace

DocumentRows::DocumentRows(int columns, QObject* parent) : platform::ListRows(parent), m_columns(columns) {}

void DocumentRows::beginRow() {
    m_scratch.clear();
}

void DocumentRows::addText(QByteArrayView utf8) {
    m_scratch.append(char(TextValue));
    putLength(m_scratch, quint32(utf8.size()));
    m_scratch.append(utf8);
}

void DocumentRows::addDate(const QDate& date) {
    const qint64 day = date.toJulianDay();
    if (!date.isValid() || day < std::numeric_limits<qint32>::min() ||
        day > std::numeric_limits<qint32>::max()) {
        addText(date.toString(Qt::ISODate).toUtf8());
        return;
    }
    const auto number = quint32(qint32(day));
    m_scratch.append(char(DateValue));
    for (int shift = 0; shift < 32; shift += 8)
        m_scratch.append(char((number >> shift) & 0xff));
}

void DocumentRows::endRow() {
    if (m_blocks.isEmpty() || m_blocks.last().capacity() - m_blocks.last().size() < m_scratch.size()) {
        QByteArray block;
        block.reserve(qMax(BlockSize, m_scratch.size()));
        m_blocks.append(block);
    }
    QByteArray& block = m_blocks.last();
    m_starts.push_back(quint64(m_blocks.size() - 1) << 32 | quint64(block.size()));
    block.append(m_scratch);
}

void DocumentRows::publish() {
    const int total = int(m_starts.size());
    if (total == m_published)
        return;
    beginInsertRows(QModelIndex(), m_published, total - 1);
    m_published = total;
    endInsertRows();
}

void DocumentRows::clear() {
    beginResetModel();
    m_blocks.clear();
    m_starts.clear();
    m_starts.shrink_to_fit();
    m_published = 0;
    endResetModel();
}

int DocumentRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_published;
}

QString DocumentRows::text(int row, int column) const {
    if (row < 0 || row >= m_published || column < 0 || column >= m_columns)
        return QString();
    const quint64 start = m_starts[size_t(row)];
    const char* p = m_blocks[qsizetype(start >> 32)].constData() + (start & 0xffffffffu);
    for (int c = 0;; ++c) {
        const char kind = *p++;
        if (kind == DateValue) {
            if (c == column) {
                quint32 number = 0;
                for (int shift = 0; shift < 32; shift += 8)
                    number |= quint32(quint8(*p++)) << shift;
                // The month's short name in the running system's language.
                return QLocale().toString(QDate::fromJulianDay(qint32(number)),
                                          QStringLiteral("dd/MMM/yyyy"));
            }
            p += 4;
            continue;
        }
        const quint32 length = takeLength(p);
        if (c == column)
            return QString::fromUtf8(p, qsizetype(length));
        p += length;
    }
}

namespace {
// The rows that a list shows before it reads the rest.
constexpr int FirstRows = 100;

// A text without the white space at its ends, as a trimmed string has it.
QByteArray trimmed(const QByteArray& utf8) {
    if (utf8.isEmpty())
        return utf8;
    // A character outside ASCII at an end may be white space of its own kind.
    if (quint8(utf8.front()) >= 0x80 || quint8(utf8.back()) >= 0x80)
        return QString::fromUtf8(utf8).trimmed().toUtf8();
    return utf8.trimmed();
}
} // namespace

void readDocuments(platform::ListView* list, const QString& statement, const QList<ShownField>& fields) {
    auto* rows = static_cast<DocumentRows*>(list->rows());
    db::Recordset rs;
    // Forward-only: the rows are read once, front to back, so any number of them fits.
    rs.Open(statement, GenMod::Conn, db::adOpenForwardOnly, db::adLockReadOnly, -1);
    rows->clear();
    std::vector<int> position;
    for (const ShownField& field : fields)
        position.push_back(rs.FieldIndex(QString::fromLatin1(field.name)));
    QByteArray text;
    try {
        for (; !rs.eof(); rs.MoveNext()) {
            rows->beginRow();
            for (qsizetype c = 0; c < fields.size(); ++c) {
                const int at = position[size_t(c)];
                if (fields[c].date) {
                    const QVariant value = rs.Fields(at);
                    if (value.typeId() == QMetaType::QDate)
                        rows->addDate(value.toDate());
                    else
                        rows->addText(platform::CStr(value).toUtf8());
                    continue;
                }
                if (!rs.FieldUtf8(at, text))
                    throw platform::invalidUseOfNull();
                rows->addText(trimmed(text));
            }
            rows->endRow();
            if (rows->appended() == FirstRows) {
                rows->publish();
                list->show();
                QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            }
        }
        rs.Close();
    } catch (...) {
        rows->publish();
        throw;
    }
    rows->publish();
}
