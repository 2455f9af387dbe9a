#include "DocumentRows.h"

#include "datastore/Ado.h"
#include "platform/Conversions.h"
#include "session/GenMod.h"

#include <QCoreApplication>
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

DocumentRows::DocumentRows(int columns, QObject* parent) : platform::ListRows(parent), m_columns(columns) {}

void DocumentRows::append(const QVariant* values) {
    m_scratch.clear();
    for (int c = 0; c < m_columns; ++c)
        putValue(m_scratch, values[c]);
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
    std::vector<QVariant> values(fields.size());
    try {
        for (; !rs.eof(); rs.MoveNext()) {
            for (qsizetype c = 0; c < fields.size(); ++c) {
                const QVariant value = rs.Fields(position[size_t(c)]);
                values[size_t(c)] =
                    fields[c].date && value.typeId() == QMetaType::QDate
                        ? value
                        : QVariant(fields[c].date ? platform::CStr(value) : platform::TrimStr(value));
            }
            rows->append(values.data());
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
