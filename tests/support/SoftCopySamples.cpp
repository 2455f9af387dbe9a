#include "SoftCopySamples.h"

#include "reports/ReportEngine.h"

#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <quazip.h>
#include <quazipfile.h>

namespace testsupport {

QImage wordsPicture(const QString& words, int points) {
    QImage image(1400, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(reports::reportFont({double(points), true}));
    painter.drawText(image.rect(), Qt::AlignCenter, words);
    return image;
}

void writePdf(const QString& path, const QString& words, bool scanned) {
    QPdfWriter writer(path);
    QPainter painter(&writer);
    if (scanned) {
        painter.drawImage(QRect(0, 0, writer.width(), writer.width() * 3 / 14), wordsPicture(words));
    } else {
        painter.setFont(reports::reportFont({14.0}));
        painter.drawText(QPointF(300, 600), words);
    }
}

void writeZip(const QString& path, const QString& entry, const QByteArray& data, const QString& entry2,
              const QByteArray& data2) {
    QuaZip zip(path);
    zip.open(QuaZip::mdCreate);
    for (const auto& [name, bytes] : {std::pair(entry, data), std::pair(entry2, data2)}) {
        QuaZipFile file(&zip);
        if (!name.isEmpty() && file.open(QIODevice::WriteOnly, QuaZipNewInfo(name)))
            file.write(bytes);
    }
    zip.close();
}

void writeFile(const QString& path, const QByteArray& data) {
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(data);
}

void writeBadPdfs(const QString& damaged, const QString& locked, const QString& from) {
    QFile pdf(from);
    pdf.open(QIODevice::ReadOnly);
    writeFile(damaged, pdf.read(pdf.size() / 3));
    // Encrypted for a user password that the empty one does not match.
    const QByteArray key = "<" + QByteArray(64, 'a') + ">";
    writeFile(locked,
              "%PDF-1.4\n1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n2 0 obj <</Type/Pages/Kids[]/Count "
              "0>> endobj\n3 0 obj <</Filter/Standard/V 1/R 2/O" +
                  key + "/U" + key + "/P -4>> endobj\ntrailer <</Root 1 0 R/Encrypt 3 0 R/Size 4>>\n%%EOF\n");
}

QByteArray docxBody(const QByteArray& words) {
    return "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"><w:body>"
           "<w:p><w:r><w:t>" +
           words + "</w:t></w:r></w:p></w:body></w:document>";
}

QByteArray odtContent(const QByteArray& words) {
    return "<office:document-content xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
           "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\"><office:body><office:text>"
           "<text:p>" +
           words + "</text:p></office:text></office:body></office:document-content>";
}

} // namespace testsupport
