#include "index/reader/Readers.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <cmath>
#include <poppler-qt6.h>

namespace reader {

namespace {

// The longest text a preview shows of a text or office file.
constexpr int kPreviewText = 256 * 1024;

Preview previewPdf(const QString& path, int page, int width, const Limits& limits) {
    const std::unique_ptr<Poppler::Document> document = openPdf(path);
    Preview out;
    out.pages = document->numPages();
    const std::unique_ptr<Poppler::Page> shown = document->page(qBound(1, page, out.pages) - 1);
    if (!shown)
        throw Failure{Damaged, QStringLiteral("The PDF file is damaged and cannot be read.")};
    // The resolution that gives the width asked for, within the limit of pixels.
    const QSizeF inches = shown->pageSizeF() / 72.0;
    double dpi = inches.width() > 0 ? width / inches.width() : 72.0;
    const double area = inches.width() * inches.height();
    if (area > 0 && area * dpi * dpi > double(limits.maxPixels))
        dpi = std::sqrt(double(limits.maxPixels) / area);
    out.image = shown->renderToImage(dpi, dpi);
    if (out.image.isNull())
        throw Failure{Damaged, QStringLiteral("The page cannot be shown.")};
    out.text = shown->text(QRectF());
    return out;
}

Preview previewPicture(const QString& path, int page, int width, const Limits& limits) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImageReader::setAllocationLimit(int(limits.maxPixels * 4 / (1 << 20)) + 1);
    Preview out;
    out.pages = reader.format() == "tiff" ? qMax(1, reader.imageCount()) : 1;
    for (int i = 1; i < qBound(1, page, out.pages); ++i)
        reader.jumpToNextImage();
    checkPictureSize(reader, limits, "shown");
    const QSize size = reader.size();
    // Decoded straight at the size shown where the format can.
    if (size.width() > width && size.width() > 0)
        reader.setScaledSize(QSize(width, qMax(1, int(qint64(size.height()) * width / size.width()))));
    out.image = reader.read();
    if (out.image.isNull())
        throw Failure{Damaged, QStringLiteral("The picture is damaged or of a kind that cannot be read.")};
    return out;
}

} // namespace

FileKind checkFile(const QString& path) {
    const QFileInfo info(path);
    if (info.isDir())
        throw Failure{Folder, QStringLiteral("The path names a folder, not a file.")};
    if (!info.exists())
        throw Failure{Missing, QStringLiteral("There is no file at this path.")};
    static const QStringList pictures{QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                      QStringLiteral("gif"), QStringLiteral("png"), QStringLiteral("tif"),
                                      QStringLiteral("tiff")};
    static const QStringList office{QStringLiteral("docx"), QStringLiteral("xlsx"), QStringLiteral("odt"),
                                    QStringLiteral("ods")};
    static const QStringList plain{QStringLiteral("txt"), QStringLiteral("text"), QStringLiteral("csv"),
                                   QStringLiteral("tsv"), QStringLiteral("log"),  QStringLiteral("md")};
    const QString kind = info.suffix().toLower();
    if (kind != QLatin1String("pdf") && !pictures.contains(kind) && !office.contains(kind) &&
        !plain.contains(kind))
        throw Failure{NoTextForType,
                      kind.isEmpty()
                          ? QStringLiteral("No text can be read from this kind of file.")
                          : QStringLiteral("No text can be read from this kind of file (.%1).").arg(kind)};
    // The libraries would take a file that may not be read for a damaged one.
    if (QFile probe(path); !probe.open(QIODevice::ReadOnly))
        throw Failure{CannotOpen, QStringLiteral("The file cannot be opened: %1.").arg(probe.errorString())};
    if (kind == QLatin1String("pdf"))
        return FileKind::Pdf;
    if (pictures.contains(kind))
        return FileKind::Picture;
    return office.contains(kind) ? FileKind::Office : FileKind::Plain;
}

Preview preview(const QString& path, int page, int width, const Limits& limits) {
    switch (checkFile(path)) {
    case FileKind::Pdf:
        return previewPdf(path, page, width, limits);
    case FileKind::Picture:
        return previewPicture(path, page, width, limits);
    case FileKind::Office:
        return {1, readOffice(path, limits).left(kPreviewText), {}};
    case FileKind::Plain:
        break;
    }
    return {1, readPlainText(path, limits).left(kPreviewText), {}};
}

} // namespace reader
