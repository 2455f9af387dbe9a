#include "DocumentRows.h"

#include <QDate>
#include <QLocale>
#include <QStringEncoder>
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

// The work buffer of the encoder, kept between rows.
QByteArray& encoded() {
    static QByteArray buffer;
    return buffer;
}

void putValue(QByteArray& out, const QVariant& value) {
    if (value.typeId() == QMetaType::QDate) {
        const qint64 day = value.toDate().toJulianDay();
        if (day >= std::numeric_limits<qint32>::min() && day <= std::numeric_limits<qint32>::max()) {
            const auto number = quint32(qint32(day));
            out.append(char(DateValue));
            for (int shift = 0; shift < 32; shift += 8)
                out.append(char((number >> shift) & 0xff));
            return;
        }
    }
    const QString text = value.toString();
    // Encoded straight into the row: at most three bytes for each UTF-16 unit.
    QByteArray& utf8 = encoded();
    utf8.resize(text.size() * 3);
    QStringEncoder encoder(QStringEncoder::Utf8);
    const char* end = encoder.appendToBuffer(utf8.data(), text);
    const auto length = quint32(end - utf8.constData());
    out.append(char(TextValue));
    putLength(out, length);
    out.append(utf8.constData(), qsizetype(length));
}

} // namespace

void DocumentRows::append(const QVariant (&values)[Columns]) {
    m_scratch.clear();
    for (const QVariant& value : values)
        putValue(m_scratch, value);
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
    if (row < 0 || row >= m_published || column < 0 || column >= Columns)
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
