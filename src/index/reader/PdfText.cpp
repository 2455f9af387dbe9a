#include "index/reader/Readers.h"

#include <QImage>
#include <cmath>
#include <poppler-qt6.h>

namespace reader {

namespace {

// The resolution at which a page without text is rendered for OCR.
constexpr int kOcrDpi = 300;

void quiet(const QString& /*message*/, const QVariant& /*closure*/) {}

// The resolution at which `page` is rendered for OCR: a very large page gets less, so that its
// picture stays within the limit of pixels.
int ocrDpi(const Poppler::Page& page, qint64 maxPixels) {
    const QSizeF inches = page.pageSizeF() / 72.0;
    const double area = inches.width() * inches.height();
    if (area > 0 && area * kOcrDpi * kOcrDpi > double(maxPixels))
        return qMax(1, int(std::sqrt(double(maxPixels) / area)));
    return kOcrDpi;
}

} // namespace

std::unique_ptr<Poppler::Document> openPdf(const QString& path) {
    // Poppler reports what it mends in a damaged file on stderr, where the reason belongs.
    Poppler::setDebugErrorFunction(quiet, QVariant());
    std::unique_ptr<Poppler::Document> document = Poppler::Document::load(path);
    if (document && document->isLocked())
        throw Failure{Locked, QStringLiteral("The PDF file is protected by a password.")};
    if (!document || document->numPages() <= 0)
        throw Failure{Damaged, QStringLiteral("The PDF file is damaged and cannot be read.")};
    document->setRenderHint(Poppler::Document::Antialiasing);
    document->setRenderHint(Poppler::Document::TextAntialiasing);
    return document;
}

// The text of every page, in order; a page that gives none (a scan) is rendered and read by OCR.
QString readPdf(const QString& path, const Limits& limits) {
    const std::unique_ptr<Poppler::Document> document = openPdf(path);
    Ocr ocr(limits.languages);
    QString text;
    for (int i = 0; i < document->numPages(); ++i) {
        const std::unique_ptr<Poppler::Page> page = document->page(i);
        if (!page)
            continue;
        QString pageText = page->text(QRectF());
        if (pageText.trimmed().isEmpty()) {
            const int dpi = ocrDpi(*page, limits.maxPixels);
            const QImage image = page->renderToImage(dpi, dpi);
            if (!image.isNull())
                pageText = ocr.read(image, dpi);
        }
        text += pageText;
        text += QLatin1Char('\n');
    }
    return text;
}

} // namespace reader
