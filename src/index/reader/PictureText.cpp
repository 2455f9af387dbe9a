#include "index/reader/Readers.h"

#include <QImage>
#include <QImageReader>
#include <tesseract/baseapi.h>

namespace reader {

Ocr::Ocr(QString languages) : m_languages(std::move(languages)) {}

Ocr::~Ocr() {
    if (m_api)
        m_api->End();
}

QString Ocr::read(const QImage& image, int dpi) {
    if (!m_api) {
        m_api = std::make_unique<tesseract::TessBaseAPI>();
        // Tesseract's notes to the developer stay out of the reason the reader gives.
        m_api->SetVariable("debug_file", "/dev/null");
        if (m_api->Init(nullptr, m_languages.toUtf8().constData(), tesseract::OEM_DEFAULT) != 0) {
            m_api.reset();
            throw Failure{NoOcr, QStringLiteral("The OCR languages \"%1\" are not installed on this machine.")
                                     .arg(m_languages)};
        }
        // A page of a letter may hold columns and blocks anywhere, not one block of text.
        m_api->SetPageSegMode(tesseract::PSM_AUTO);
    }
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    m_api->SetImage(grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
    if (dpi > 0)
        m_api->SetSourceResolution(dpi);
    const std::unique_ptr<char[]> text(m_api->GetUTF8Text());
    return text ? QString::fromUtf8(text.get()) : QString();
}

QStringList installedLanguages() {
    tesseract::TessBaseAPI api;
    api.SetVariable("debug_file", "/dev/null");
    // Tesseract finds its data folder at Init; the languages of that folder come after. English
    // may be missing, the page-layout data rarely is.
    if (api.Init(nullptr, "eng") != 0 && api.Init(nullptr, "osd") != 0)
        return {};
    std::vector<std::string> found;
    api.GetAvailableLanguagesAsVector(&found);
    api.End();
    QStringList names;
    for (const std::string& name : found)
        if (name != "osd")
            names << QString::fromStdString(name);
    return names;
}

// Every picture of the file, read by OCR. The picture's size is read from its header first, so
// that an absurd one is refused before it is unpacked into memory.
QString readPicture(const QString& path, const Limits& limits) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImageReader::setAllocationLimit(int(limits.maxPixels * 4 / (1 << 20)) + 1);
    Ocr ocr(limits.languages);
    QString text;
    do {
        const QSize size = reader.size();
        const qint64 pixels = qint64(size.width()) * size.height();
        if (pixels > limits.maxPixels)
            throw Failure{TooLarge, QStringLiteral("The picture has %1 megapixels; pictures of more than %2 "
                                                   "megapixels are not read.")
                                        .arg(QString::number(pixels / 1'000'000),
                                             QString::number(limits.maxPixels / 1'000'000))};
        const QImage image = reader.read();
        if (image.isNull())
            throw Failure{Damaged,
                          QStringLiteral("The picture is damaged or of a kind that cannot be read.")};
        text += ocr.read(image);
        // Only a TIFF file holds pages; the frames of an animation repeat one picture.
    } while (reader.format() == "tiff" && reader.jumpToNextImage());
    return text;
}

} // namespace reader
