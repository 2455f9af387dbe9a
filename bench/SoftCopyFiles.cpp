#include "SoftCopyFiles.h"

#include "Office.h"
#include "Process.h"
#include "index/SoftCopyReader.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <cstdio>
#include <stdexcept>

namespace bench {

namespace {

QString letter(int number) {
    return QString::fromStdString(letterText(number));
}

QFont letterFont(int pixels) {
    QFont font(QStringLiteral("Liberation Serif"));
    font.setPixelSize(pixels);
    return font;
}

void writePdf(const QString& path, int first, int pages, int lettersPerPage) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(300);
    writer.setPageMargins(QMarginsF(20, 20, 20, 20), QPageLayout::Millimeter);
    QPainter painter;
    if (!painter.begin(&writer))
        throw std::runtime_error("cannot write " + path.toStdString());
    painter.setFont(letterFont(44)); // 10.5 points at 300 dots per inch
    const QRect page = painter.viewport();
    for (int p = 0; p < pages; ++p) {
        if (p > 0)
            writer.newPage();
        QString text;
        for (int l = 0; l < lettersPerPage; ++l)
            text += letter(first + p * lettersPerPage + l) + QStringLiteral("\n\n");
        painter.drawText(page, Qt::TextWordWrap, text);
    }
    if (!painter.end())
        throw std::runtime_error("cannot write " + path.toStdString());
}

// A letter as a scanner gives it: black on white at 150 dots per inch.
void writePicture(const QString& path, int number, bool fullPage) {
    QImage image(1240, fullPage ? 1754 : 877, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDotsPerMeterX(5906);
    image.setDotsPerMeterY(5906);
    {
        QPainter painter(&image);
        painter.setFont(letterFont(fullPage ? 25 : 21));
        painter.setPen(Qt::black);
        painter.drawText(image.rect().adjusted(110, 110, -110, -60), Qt::TextWordWrap, letter(number));
    }
    if (!image.save(path))
        throw std::runtime_error("cannot write " + path.toStdString());
}

struct Times {
    double ours = 0, theirs = 0;
};

} // namespace

QStringList writeSoftCopies(const QString& folder, int pdfs, int pictures, bool fullSize) {
    if (!QDir().mkpath(folder))
        throw std::runtime_error("cannot create " + folder.toStdString());
    const QDir dir(folder);
    QStringList paths;
    for (int i = 0; i < pdfs; ++i) {
        paths << dir.filePath(QStringLiteral("letter-%1.pdf").arg(i + 1, 4, 10, QLatin1Char('0')));
        writePdf(paths.back(), 10 * i, fullSize ? 1 + i % 3 : 1, fullSize ? 2 : 1);
    }
    for (int i = 0; i < pictures; ++i) {
        paths << dir.filePath(QStringLiteral("scan-%1.png").arg(i + 1, 4, 10, QLatin1Char('0')));
        writePicture(paths.back(), 5000 + i, fullSize);
    }
    return paths;
}

int readingSpeed(int& argc, char** argv, const QString& folder, int files) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QStringList paths;
    try {
        paths = writeSoftCopies(folder, files, files, true);
    } catch (const std::exception& e) {
        std::printf("fail %s\n", e.what());
        return 1;
    }
    SoftCopyReader reader;
    reader.setHelper(QStringLiteral(VORLANE_READER));
    reader.setTimeLimit(600);
    Times pdf, ocr, ocrOneThread;
    int failures = 0;
    // Each file is read by both, one after the other, so that both meet the same load of the
    // machine.
    for (const QString& path : std::as_const(paths)) {
        const bool isPdf = path.endsWith(QLatin1String(".pdf"));
        Times& times = isPdf ? pdf : ocr;
        QElapsedTimer timer;
        timer.start();
        const SoftCopyText ours = reader.read(path);
        times.ours += double(timer.nsecsElapsed()) / 1e9;
        const Run theirs =
            isPdf ? runProgram({QStringLiteral("pdftotext"), path, QStringLiteral("-")}, true, true)
                  : runProgram({QStringLiteral("tesseract"), path, QStringLiteral("stdout")}, true, true);
        times.theirs += theirs.seconds;
        // Tesseract reads with as many threads as the machine has; vorlane-reader with one.
        if (!isPdf) {
            const Run single = runProgram({QStringLiteral("env"), QStringLiteral("OMP_THREAD_LIMIT=1"),
                                           QStringLiteral("tesseract"), path, QStringLiteral("stdout")},
                                          true, true);
            ocrOneThread.ours = ocr.ours;
            ocrOneThread.theirs += single.seconds;
        }
        if (ours.state != SoftCopyText::State::Read || !ours.text.contains(QLatin1String("sincerely"))) {
            std::printf("fail vorlane-reader did not read the letter in %s: %s\n", qPrintable(path),
                        qPrintable(ours.reason));
            ++failures;
        }
        if (!theirs.ok()) {
            const QString program = isPdf ? QStringLiteral("pdftotext") : QStringLiteral("tesseract");
            std::printf(
                "fail %s\n",
                qPrintable(theirs.started ? program + QStringLiteral(" failed on ") + path : theirs.error));
            ++failures;
        }
    }
    std::printf("reading pdf %d %.3f %.3f\n", files, pdf.ours, pdf.theirs);
    std::printf("reading ocr %d %.3f %.3f\n", files, ocr.ours, ocr.theirs);
    std::printf("reading ocr1 %d %.3f %.3f\n", files, ocrOneThread.ours, ocrOneThread.theirs);
    return failures == 0 ? 0 : 1;
}

} // namespace bench
