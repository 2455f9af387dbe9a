// vorlane-reader: writes the plain text of one soft copy to stdout, in UTF-8. Vorlane reads its
// soft copies through it, one file per process, so that a damaged or hostile file may crash or
// hang only the reader. It sets its own limits before it reads: the lowest CPU priority, an
// address-space limit and a processor-time limit. On failure it ends with one of the codes of
// ReaderExit.h and says why on the last line of stderr. With --serve it stays, and forks such a
// process of one file for each reading that Vorlane asks for (Serve.cpp).
#include "index/reader/Readers.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#ifdef VORLANE_COVERAGE_DUMP
extern "C" void __gcov_dump();
#endif

namespace {

using reader::Failure;

// The processor-time limit raises SIGXCPU; the reader says why and ends.
void cpuTimeSpent(int /*signal*/) {
    static const char reason[] = "The file needs more processor time than the reader may use.\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, reason, sizeof reason - 1);
    _exit(reader::CpuTime);
}

void limitSelf(qint64 memoryMb, qint64 cpuSeconds) {
    // A seat that dies takes its reader along: no reading goes on for nobody.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpriority(PRIO_PROCESS, 0, 19);
#ifndef VORLANE_NO_ADDRESS_LIMIT // AddressSanitizer reserves terabytes of address space for itself
    const rlim_t bytes = rlim_t(memoryMb) << 20;
    const rlimit memory{bytes, bytes};
    setrlimit(RLIMIT_AS, &memory);
#else
    Q_UNUSED(memoryMb);
#endif
    std::signal(SIGXCPU, cpuTimeSpent);
    // The hard limit ends a reader that goes on after SIGXCPU.
    const rlimit cpu{rlim_t(cpuSeconds), rlim_t(cpuSeconds) + 5};
    setrlimit(RLIMIT_CPU, &cpu);
}

QString readText(const QString& path, const reader::Limits& limits) {
    switch (reader::checkFile(path)) {
    case reader::FileKind::Pdf:
        return readPdf(path, limits);
    case reader::FileKind::Picture:
        return readPicture(path, limits);
    case reader::FileKind::Office:
        return readOffice(path, limits);
    case reader::FileKind::Plain:
        break;
    }
    return readPlainText(path, limits);
}

// The preview as handed over: "pages N", "text BYTES" and the page's text in UTF-8, then
// "image BYTES" and the JPEG of the page (0 bytes where the kind shows text), each head on a line.
QByteArray previewBytes(const QString& path, int page, int width, const reader::Limits& limits) {
    const reader::Preview shown = reader::preview(path, qMax(1, page), qMax(16, width), limits);
    const QByteArray text = shown.text.toUtf8();
    QByteArray png;
    if (!shown.image.isNull()) {
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        shown.image.save(&buffer, "JPG", 85);
    }
    return "pages " + QByteArray::number(shown.pages) + "\ntext " + QByteArray::number(text.size()) + '\n' +
           text + "image " + QByteArray::number(png.size()) + '\n' + png;
}

// Ends the reader at once. A reader whose memory ran out may hold a library's lock, and the
// clean-up at exit would wait on it for ever; a process of one file has nothing to tidy away.
[[noreturn]] void end(int exit) {
    std::fflush(stdout);
    std::fflush(stderr);
#ifdef VORLANE_COVERAGE_DUMP
    __gcov_dump(); // the coverage build counts the reader's lines too
#endif
    std::_Exit(exit);
}

[[noreturn]] void fail(int exit, const QString& reason) {
    std::fputs(reason.toUtf8().append('\n').constData(), stderr);
    end(exit);
}

// Reads one file as the command line asks, and ends.
[[noreturn]] void readOne(const QStringList& arguments) {
    QCommandLineParser parser;
    const QCommandLineOption languages(QStringLiteral("languages"), QStringLiteral("OCR languages"),
                                       QStringLiteral("eng+deu"), QStringLiteral("eng"));
    const QCommandLineOption memory(QStringLiteral("memory-mb"), QStringLiteral("address-space limit"),
                                    QStringLiteral("MB"), QStringLiteral("1024"));
    const QCommandLineOption cpu(QStringLiteral("cpu-seconds"), QStringLiteral("processor-time limit"),
                                 QStringLiteral("seconds"), QStringLiteral("60"));
    const QCommandLineOption pixels(QStringLiteral("max-megapixels"), QStringLiteral("largest picture"),
                                    QStringLiteral("megapixels"), QStringLiteral("100"));
    const QCommandLineOption unpacked(QStringLiteral("unpacked-mb"),
                                      QStringLiteral("largest unpacked office file"), QStringLiteral("MB"),
                                      QStringLiteral("256"));
    const QCommandLineOption textSize(QStringLiteral("text-mb"), QStringLiteral("largest text file"),
                                      QStringLiteral("MB"), QStringLiteral("32"));
    const QCommandLineOption list(QStringLiteral("list-languages"),
                                  QStringLiteral("prints the OCR languages installed, one a line"));
    const QCommandLineOption previewPage(QStringLiteral("preview"),
                                         QStringLiteral("the preview of this page instead of the text"),
                                         QStringLiteral("page"));
    const QCommandLineOption previewWidth(QStringLiteral("width"), QStringLiteral("width of the preview"),
                                          QStringLiteral("pixels"), QStringLiteral("800"));
    parser.addOptions({languages, memory, cpu, pixels, unpacked, textSize, list, previewPage, previewWidth});
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("the soft copy to read"));
    const bool parsed = parser.parse(arguments);
    const auto number = [&parser](const QCommandLineOption& option) -> qint64 {
        bool ok = false;
        const qint64 value = parser.value(option).toLongLong(&ok);
        return ok && value > 0 && value < (1LL << 32) ? value : 0;
    };
    reader::Limits limits;
    limits.languages = parser.value(languages);
    limits.maxPixels = number(pixels) * 1'000'000;
    limits.unpackedBytes = number(unpacked) << 20;
    limits.textBytes = number(textSize) << 20;
    const qint64 memoryMb = number(memory);
    const qint64 cpuSeconds = number(cpu);
    if (parsed && parser.isSet(list) && parser.positionalArguments().isEmpty() && memoryMb && cpuSeconds) {
        limitSelf(memoryMb, cpuSeconds);
        const QStringList installed = reader::installedLanguages();
        if (installed.isEmpty())
            fail(reader::NoOcr, QStringLiteral("No OCR languages are installed on this machine."));
        const QByteArray names = (installed.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
        std::fwrite(names.constData(), 1, size_t(names.size()), stdout);
        end(reader::Read);
    }
    if (!parsed || parser.positionalArguments().size() != 1 || limits.languages.isEmpty() ||
        !limits.maxPixels || !limits.unpackedBytes || !limits.textBytes || !memoryMb || !cpuSeconds)
        fail(reader::Usage, QStringLiteral("usage: vorlane-reader [--languages eng] [--memory-mb 1024] "
                                           "[--cpu-seconds 60] [--max-megapixels 100] [--unpacked-mb 256] "
                                           "[--text-mb 32] [--preview PAGE [--width 800]] FILE | "
                                           "--list-languages | --serve"));
    limitSelf(memoryMb, cpuSeconds);
    try {
        const QString path = parser.positionalArguments().constFirst();
        const QByteArray text = parser.isSet(previewPage)
                                    ? previewBytes(path, int(number(previewPage)),
                                                   int(qMin<qint64>(number(previewWidth), 20000)), limits)
                                    : readText(path, limits).toUtf8();
        QFile out;
        if (!out.open(stdout, QIODevice::WriteOnly) || out.write(text) != text.size() || !out.flush())
            fail(reader::CannotOpen, QStringLiteral("The text could not be handed over."));
        end(reader::Read);
    } catch (const Failure& failure) {
        fail(failure.exit, failure.reason);
    } catch (const std::bad_alloc&) {
        fail(reader::OutOfMemory, QStringLiteral("The file needs more memory than the reader may use."));
    }
}

} // namespace

int main(int argc, char** argv) {
    // The seat's serving reader: it reads no file itself, so it goes without the limits of one;
    // each reading that it forks sets them.
    if (argc == 2 && std::strcmp(argv[1], "--serve") == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setpriority(PRIO_PROCESS, 0, 19);
        const QCoreApplication app(argc, argv);
        reader::serve(readOne);
        end(reader::Read);
    }
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const QCoreApplication app(argc, argv);
    readOne(arguments);
}
