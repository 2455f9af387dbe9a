// vorlane-reader: writes the plain text of one soft copy to stdout, in UTF-8. Vorlane reads its
// soft copies through it, one file per process, so that a damaged or hostile file may crash or
// hang only the reader. It sets its own limits first: the lowest CPU priority, an address-space
// limit and a processor-time limit. On failure it ends with one of the codes of ReaderExit.h
// and says why on the last line of stderr.
#include "index/reader/Readers.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <cstdio>
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
    const QFileInfo info(path);
    if (info.isDir())
        throw Failure{reader::Folder, QStringLiteral("The path names a folder, not a file.")};
    if (!info.exists())
        throw Failure{reader::Missing, QStringLiteral("There is no file at this path.")};
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
        throw Failure{reader::NoTextForType,
                      kind.isEmpty()
                          ? QStringLiteral("No text can be read from this kind of file.")
                          : QStringLiteral("No text can be read from this kind of file (.%1).").arg(kind)};
    // The libraries would take a file that may not be read for a damaged one.
    if (QFile probe(path); !probe.open(QIODevice::ReadOnly))
        throw Failure{reader::CannotOpen,
                      QStringLiteral("The file cannot be opened: %1.").arg(probe.errorString())};
    if (kind == QLatin1String("pdf"))
        return readPdf(path, limits);
    if (pictures.contains(kind))
        return readPicture(path, limits);
    if (office.contains(kind))
        return readOffice(path, limits);
    return readPlainText(path, limits);
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

} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
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
    parser.addOptions({languages, memory, cpu, pixels, unpacked, textSize});
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
    if (!parsed || parser.positionalArguments().size() != 1 || limits.languages.isEmpty() ||
        !limits.maxPixels || !limits.unpackedBytes || !limits.textBytes || !memoryMb || !cpuSeconds)
        fail(reader::Usage, QStringLiteral("usage: vorlane-reader [--languages eng] [--memory-mb 1024] "
                                           "[--cpu-seconds 60] [--max-megapixels 100] [--unpacked-mb 256] "
                                           "[--text-mb 32] FILE"));
    limitSelf(memoryMb, cpuSeconds);

    const QCoreApplication app(argc, argv);
    try {
        const QByteArray text = readText(parser.positionalArguments().constFirst(), limits).toUtf8();
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
