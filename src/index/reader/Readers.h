#pragma once

#include "index/reader/ReaderExit.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <memory>

class QImageReader;
namespace Poppler {
class Document;
}
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

// The kinds of file whose text is read.
enum class FileKind { Pdf, Picture, Office, Plain };
// The kind of the file at `path`, after the checks that come before any reading: a folder, a
// missing file, a kind whose text is not read, a file that may not be opened each throw.
FileKind checkFile(const QString& path);

// What the preview of a page shows: a picture of it, or its text where the kind has no pictures,
// with the number of pages and the page's text where it has one.
struct Preview {
    int pages = 1;
    QString text;
    QImage image;
};
// Page `page` (from 1; a later one is the last) of the file, `width` pixels wide.
Preview preview(const QString& path, int page, int width, const Limits& limits);

// The PDF at `path`, set to render smoothly; a protected or damaged file throws.
std::unique_ptr<Poppler::Document> openPdf(const QString& path);
// Throws when the picture that `reader` is at has more pixels than the limit allows; `verb` says
// what would have been done with it ("read", "shown").
void checkPictureSize(QImageReader& reader, const Limits& limits, const char* verb);

// Serves Vorlane over the socket on stdin and stdout (ReaderChannel.h): each reading asked for
// runs `readOne` with its arguments in a process forked for it. Returns when Vorlane closes the
// socket.
void serve(void (*readOne)(const QStringList& arguments));

QString readPdf(const QString& path, const Limits& limits);
QString readPicture(const QString& path, const Limits& limits);
QString readOffice(const QString& path, const Limits& limits);
QString readPlainText(const QString& path, const Limits& limits);

} // namespace reader
