#include "index/reader/Readers.h"

#include <QImage>
#include <QImageReader>
#include <dlfcn.h>
#include <tesseract/capi.h>

namespace reader {

namespace {

// The functions of Tesseract's library that the reader uses, found when it is first needed.
struct Tesseract {
    decltype(&TessBaseAPICreate) create = nullptr;
    decltype(&TessBaseAPIDelete) destroy = nullptr;
    decltype(&TessBaseAPISetVariable) setVariable = nullptr;
    decltype(&TessBaseAPIInit3) init = nullptr;
    decltype(&TessBaseAPISetPageSegMode) setPageSegMode = nullptr;
    decltype(&TessBaseAPISetImage) setImage = nullptr;
    decltype(&TessBaseAPISetSourceResolution) setSourceResolution = nullptr;
    decltype(&TessBaseAPIGetUTF8Text) text = nullptr;
    decltype(&TessDeleteText) deleteText = nullptr;
    decltype(&TessBaseAPIEnd) end = nullptr;
    decltype(&TessBaseAPIGetAvailableLanguagesAsVector) languages = nullptr;
    decltype(&TessDeleteTextArray) deleteTextArray = nullptr;
};

template <typename F> bool find(void* library, F& function, const char* name) {
    function = reinterpret_cast<F>(dlsym(library, name));
    return function != nullptr;
}

// The library, or null when it cannot be loaded.
const Tesseract* tesseract() {
    static const Tesseract* const loaded = []() -> const Tesseract* {
        void* library = dlopen(VORLANE_TESSERACT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        static Tesseract t;
        const bool found = library && find(library, t.create, "TessBaseAPICreate") &&
                           find(library, t.destroy, "TessBaseAPIDelete") &&
                           find(library, t.setVariable, "TessBaseAPISetVariable") &&
                           find(library, t.init, "TessBaseAPIInit3") &&
                           find(library, t.setPageSegMode, "TessBaseAPISetPageSegMode") &&
                           find(library, t.setImage, "TessBaseAPISetImage") &&
                           find(library, t.setSourceResolution, "TessBaseAPISetSourceResolution") &&
                           find(library, t.text, "TessBaseAPIGetUTF8Text") &&
                           find(library, t.deleteText, "TessDeleteText") &&
                           find(library, t.end, "TessBaseAPIEnd") &&
                           find(library, t.languages, "TessBaseAPIGetAvailableLanguagesAsVector") &&
                           find(library, t.deleteTextArray, "TessDeleteTextArray");
        return found ? &t : nullptr;
    }();
    return loaded;
}

} // namespace

Ocr::Ocr(QString languages) : m_languages(std::move(languages)) {}

Ocr::~Ocr() {
    if (m_api) {
        tesseract()->end(m_api);
        tesseract()->destroy(m_api);
    }
}

QString Ocr::read(const QImage& image, int dpi) {
    const Tesseract* const t = tesseract();
    if (!t)
        throw Failure{NoOcr, QStringLiteral("Tesseract OCR is not installed on this machine.")};
    if (!m_api) {
        m_api = t->create();
        // Tesseract's notes to the developer stay out of the reason the reader gives.
        t->setVariable(m_api, "debug_file", "/dev/null");
        if (t->init(m_api, nullptr, m_languages.toUtf8().constData()) != 0) {
            t->destroy(m_api);
            m_api = nullptr;
            throw Failure{NoOcr, QStringLiteral("The OCR languages \"%1\" are not installed on this machine.")
                                     .arg(m_languages)};
        }
        // A page of a letter may hold columns and blocks anywhere, not one block of text.
        t->setPageSegMode(m_api, tesseract::PSM_AUTO);
    }
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    t->setImage(m_api, grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
    if (dpi > 0)
        t->setSourceResolution(m_api, dpi);
    char* const text = t->text(m_api);
    QString out = text ? QString::fromUtf8(text) : QString();
    t->deleteText(text);
    return out;
}

QStringList installedLanguages() {
    const Tesseract* const t = tesseract();
    if (!t)
        return {};
    TessBaseAPI* const api = t->create();
    t->setVariable(api, "debug_file", "/dev/null");
    // Tesseract finds its data folder at Init; the languages of that folder come after. English
    // may be missing, the page-layout data rarely is.
    QStringList names;
    if (t->init(api, nullptr, "eng") == 0 || t->init(api, nullptr, "osd") == 0) {
        char** const found = t->languages(api);
        for (char** name = found; name && *name; ++name)
            if (qstrcmp(*name, "osd") != 0)
                names << QString::fromUtf8(*name);
        t->deleteTextArray(found);
    }
    t->end(api);
    t->destroy(api);
    return names;
}

void checkPictureSize(QImageReader& reader, const Limits& limits, const char* verb) {
    const QSize size = reader.size();
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > limits.maxPixels)
        throw Failure{
            TooLarge,
            QStringLiteral("The picture has %1 megapixels; pictures of more than %2 megapixels are not %3.")
                .arg(QString::number(pixels / 1'000'000), QString::number(limits.maxPixels / 1'000'000),
                     QLatin1String(verb))};
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
        checkPictureSize(reader, limits, "read");
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
