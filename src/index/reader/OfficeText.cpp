#include "index/reader/Readers.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <quazip.h>
#include <quazipfile.h>
#include <utility>

namespace reader {

namespace {

// What an office file keeps its words in: a zip of XML parts. The OOXML files (docx, xlsx) hold
// their text in <t> elements; the OpenDocument files (odt, ods) in paragraphs and headings.
struct Kind {
    QRegularExpression parts; // the entries read, in the zip's order
    QStringList textElements; // local names of the elements whose text is kept
};

const Kind& kindOf(const QString& suffix) {
    static const Kind docx{QRegularExpression(QStringLiteral(
                               "^word/(document|header\\d*|footer\\d*|footnotes|endnotes)\\.xml$")),
                           {QStringLiteral("t")}};
    static const Kind xlsx{
        QRegularExpression(QStringLiteral("^xl/(sharedStrings|worksheets/sheet\\d+)\\.xml$")),
        {QStringLiteral("t")}};
    static const Kind odf{QRegularExpression(QStringLiteral("^content\\.xml$")),
                          {QStringLiteral("p"), QStringLiteral("h")}};
    if (suffix == QLatin1String("docx"))
        return docx;
    if (suffix == QLatin1String("xlsx"))
        return xlsx;
    return odf;
}

[[noreturn]] void damaged() {
    throw Failure{Damaged, QStringLiteral("The file is damaged or not an office document of its kind.")};
}

void endLine(QString& text) {
    if (!text.isEmpty() && !text.endsWith(QLatin1Char('\n')))
        text += QLatin1Char('\n');
}

// The words of one XML part: the text of the kind's text elements, paragraphs, cells and shared
// strings on lines of their own, tabs and spaces as they stand.
void appendXmlText(const QByteArray& xml, const Kind& kind, QString& text) {
    // A spreadsheet cell's value is kept, unless it stands for a shared string (read from its own
    // part), a truth value or an error.
    static const QStringList cellsWithoutText{QStringLiteral("s"), QStringLiteral("b"), QStringLiteral("e")};
    QXmlStreamReader reader(xml);
    int inText = 0;
    QString cellType;
    bool inValue = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            const QStringView name = reader.name();
            if (kind.textElements.contains(name))
                ++inText;
            else if (name == QLatin1String("tab"))
                text += QLatin1Char('\t');
            else if (name == QLatin1String("br") || name == QLatin1String("line-break"))
                text += QLatin1Char('\n');
            else if (name == QLatin1String("s") && inText > 0) // OpenDocument's run of spaces
                text += QString(qMax(1, reader.attributes().value(QLatin1String("text:c")).toInt()),
                                QLatin1Char(' '));
            else if (name == QLatin1String("c"))
                cellType = reader.attributes().value(QLatin1String("t")).toString();
            else if (name == QLatin1String("v") && !cellsWithoutText.contains(cellType)) {
                inValue = true;
                ++inText;
            }
            break;
        }
        case QXmlStreamReader::EndElement: {
            const QStringView name = reader.name();
            if (kind.textElements.contains(name) ||
                (name == QLatin1String("v") && std::exchange(inValue, false)))
                --inText;
            if (name == QLatin1String("p") || name == QLatin1String("h") || name == QLatin1String("si") ||
                name == QLatin1String("c"))
                endLine(text);
            break;
        }
        case QXmlStreamReader::Characters:
            if (inText > 0)
                text += reader.text();
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        damaged();
    endLine(text);
}

} // namespace

// The text of a docx, xlsx, odt or ods file. The parts are unpacked piece by piece and counted:
// a file that unpacks to more than the limit (a zip bomb) is refused before it fills the memory.
QString readOffice(const QString& path, const Limits& limits) {
    const Kind& kind = kindOf(QFileInfo(path).suffix().toLower());
    QuaZip zip(path);
    if (!zip.open(QuaZip::mdUnzip))
        damaged();
    QString text;
    qint64 unpacked = 0;
    bool found = false;
    for (bool more = zip.goToFirstFile(); more; more = zip.goToNextFile()) {
        if (!kind.parts.match(zip.getCurrentFileName()).hasMatch())
            continue;
        found = true;
        QuaZipFile part(&zip);
        if (!part.open(QIODevice::ReadOnly))
            damaged();
        QByteArray xml;
        char buffer[1 << 16];
        qint64 n = 0;
        while ((n = part.read(buffer, sizeof buffer)) > 0) {
            unpacked += n;
            if (unpacked > limits.unpackedBytes)
                throw Failure{TooLarge, QStringLiteral("The file unpacks to more than %1 MB; it is not read.")
                                            .arg(QString::number(limits.unpackedBytes >> 20))};
            xml.append(buffer, n);
        }
        part.close();
        if (n < 0 || part.getZipError() != UNZ_OK)
            damaged();
        appendXmlText(xml, kind, text);
    }
    if (!found || zip.getZipError() != UNZ_OK)
        damaged();
    return text;
}

} // namespace reader
