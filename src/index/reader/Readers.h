#pragma once

#include "index/reader/ReaderExit.h"

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <memory>

class QImage;
namespace tesseract {
class TessBaseAPI;
}

// The readers of vorlane-reader, one per kind of file. Each returns the plain text of the file
// at a path or throws a Failure.
namespace reader {

struct Failure {
    Exit exit;
    QString reason;
};

struct Limits {
    QString languages = QStringLiteral("eng"); // Tesseract's names, joined by "+"
    qint64 maxPixels = 100'000'000;            // of a picture, or of a page rendered for OCR
    qint64 unpackedBytes = 256LL << 20;        // of the parts of an office file, together
    qint64 textBytes = 32LL << 20;             // of a plain text file
};

// Reads the words of pictures through Tesseract, which is loaded and set up on the first
// picture: a reader of a PDF with text never loads it, and starts in about half the time.
class Ocr {
  public:
    explicit Ocr(QString languages);
    ~Ocr();
    Ocr(const Ocr&) = delete;
    Ocr& operator=(const Ocr&) = delete;
    // The words of `image`; `dpi` is its resolution when known (a rendered page), else 0.
    QString read(const QImage& image, int dpi = 0);

  private:
    QString m_languages;
    tesseract::TessBaseAPI* m_api = nullptr;
};

// The OCR languages installed on this machine, by Tesseract's names, without its page-layout data.
QStringList installedLanguages();

QString readPdf(const QString& path, const Limits& limits);
QString readPicture(const QString& path, const Limits& limits);
QString readOffice(const QString& path, const Limits& limits);
QString readPlainText(const QString& path, const Limits& limits);

} // namespace reader
