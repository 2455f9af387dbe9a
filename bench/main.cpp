// vorlane_bench: times the Index Document screen's list of every document against the sqlite3
// shell running the same statements on the same file, for offices of chosen sizes. With
// --server, the office is copied into the database of the data source "Vorlane" on a
// PostgreSQL server, the screens run on it, and psql runs the same statements beside them.
// Each size runs the screens as they are and while the soft copies of a few hundred documents
// are read in the background, in turn, a few times each way; a step's time is its median. Before
// the sizes, it times the reading of soft copies (PDF text and OCR) through vorlane-reader
// beside pdftotext and tesseract on the same files.
//   vorlane_bench [--rows 100000,1000000] [--data <folder>] [--server] [--reading-files 24]
//                 [--repeats 3]
// Exits 0 whatever the times; 1 when a step failed (a wrong row count, a save that did not
// succeed, a missing sqlite3 shell), 2 on a wrong command line.
#include "Driver.h"
#include "Median.h"
#include "Office.h"
#include "Process.h"
#include "ServerOffice.h"
#include "SoftCopyFiles.h"
#include "datastore/Engine.h"
#include "datastore/postgres/PostgresDialect.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMap>
#include <QSet>
#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

const char* const ListStatement = "Select * from Vorlane order by DocDate desc";

// Where the screens run: the office's file, or the server of the data source.
bool onServer = false;
// How many times the screens run each way, without and with the reading.
int repeats = 3;

QString shellName() {
    return onServer ? QStringLiteral("psql") : QStringLiteral("sqlite3");
}

// The shell of the store running one statement of the screens, translated as the data layer
// translates it for that store.
// With `scan`, the server reads every row instead of using an index, as the shell's file does.
bench::Run runShell(const QString& database, const QString& statement, bool keepOutput = false,
                    bool scan = false) {
    if (onServer)
        return bench::runProgram(
            bench::psqlCommand(
                (scan ? QStringLiteral("SET enable_bitmapscan = off; SET enable_indexscan = off; ")
                      : QString()) +
                db::PostgresDialect().translate(statement)),
            keepOutput);
    return bench::runProgram({QStringLiteral("sqlite3"), QStringLiteral("-batch"), database,
                              db::defaultDialect().translate(statement) + QLatin1Char(';')},
                             keepOutput);
}

// The search over the soft copies' texts, whose rows are compared with the shell's.
const QByteArray SoftCopySearch = "search-softcopy";

// What the screen's process reported for one size.
struct ScreenRun {
    QMap<QByteArray, QPair<double, long>> steps; // name -> milliseconds, peak KiB so far
    QByteArray key;
    QMap<QByteArray, QString> statements;    // search step -> the statement the screen built
    QMap<QByteArray, QSet<QByteArray>> keys; // search step -> the keys of the rows found
    QStringList failures;
    long peakKiB = 0;
    QList<int> backgroundStored; // soft copies read in the background during the steps, each run
    bool backgroundRunning = false;
};

struct SizeResult {
    int documents = 0;
    ScreenRun screen;
    ScreenRun reading;    // the same steps while soft copies are read in the background
    int waiting = 0;      // documents whose soft copies wait to be read
    QString softCopyRows; // the soft-copy search's rows against the shell's
    bench::Run shellList;
    bench::Run shellLoad;
    QMap<QByteArray, bench::Run> shellSearches; // search step -> the shell on its statement
};

void out(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

QString selfPath() {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

QString thousands(long n) {
    return QLocale(QLocale::English).toString(qlonglong(n));
}

ScreenRun parseScreen(const bench::Run& run) {
    ScreenRun s;
    for (const QByteArray& line : run.output.split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() == 4 && words[0] == "step")
            s.steps.insert(words[1], {words[2].toDouble(), words[3].toLong()});
        else if (words.size() == 2 && words[0] == "key")
            s.key = words[1];
        else if (words.size() > 2 && words[0] == "statement")
            s.statements.insert(words[1], QString::fromUtf8(line.mid(words[0].size() + words[1].size() + 2)));
        else if (words.size() >= 2 && words[0] == "keys")
            s.keys.insert(words[1], QSet<QByteArray>(words.begin() + 2, words.end()));
        else if (words.size() == 3 && words[0] == "background") {
            s.backgroundStored << words[1].toInt();
            s.backgroundRunning = words[2] == "1";
        } else if (line.startsWith("fail "))
            s.failures << QString::fromUtf8(line.mid(5));
    }
    if (!run.started)
        s.failures << run.error;
    else if (run.exitCode != 0 && s.failures.isEmpty())
        s.failures << QStringLiteral("the screen's process ended with code %1").arg(run.exitCode);
    // The highest of the peaks the steps saw: the process starts its high-water mark again
    // between the two screens, so each screen's own peak counts.
    for (const auto& step : std::as_const(s.steps))
        s.peakKiB = std::max(s.peakKiB, step.second);
    if (s.peakKiB == 0)
        s.peakKiB = run.peakKiB;
    return s;
}

// The runs of the screens one way as one: each step's median time and highest peak, the failures
// of every run, and the rest from the first run.
ScreenRun combine(const QList<ScreenRun>& runs) {
    ScreenRun all = runs.first();
    for (auto it = all.steps.begin(); it != all.steps.end(); ++it) {
        QList<double> times;
        for (const ScreenRun& run : runs)
            if (run.steps.contains(it.key())) {
                times << run.steps.value(it.key()).first;
                it->second = std::max(it->second, run.steps.value(it.key()).second);
            }
        it->first = bench::median(times);
    }
    for (const ScreenRun& run : runs.mid(1)) {
        all.failures << run.failures;
        all.peakKiB = std::max(all.peakKiB, run.peakKiB);
        all.backgroundStored << run.backgroundStored;
        all.backgroundRunning = all.backgroundRunning || run.backgroundRunning;
    }
    return all;
}

// The screen's rows against the shell's: "same" with their number when they are the same.
QString compareRows(const QSet<QByteArray>& screen, const QByteArray& shellOutput, QStringList& failures,
                    int documents) {
    QSet<QByteArray> shell;
    for (const QByteArray& line : shellOutput.split('\n'))
        if (!line.isEmpty())
            shell.insert(line.left(line.indexOf('|')));
    if (screen == shell)
        return QStringLiteral("same %1 rows").arg(thousands(shell.size()));
    failures << QStringLiteral("%1 documents: the soft-copy search listed %2 rows, the shell's like %3, of "
                               "which %4 in both")
                    .arg(thousands(documents), thousands(screen.size()), thousands(shell.size()),
                         thousands(QSet<QByteArray>(screen).intersect(shell).size()));
    return QStringLiteral("rows differ");
}

QString shellFailure(const bench::Run& run, const char* what) {
    if (!run.started)
        return QStringLiteral("%1 (bash scripts/vorlane.sh bench installs the shells)").arg(run.error);
    if (run.exitCode != 0)
        return QStringLiteral("%1 failed on %2 with code %3")
            .arg(shellName(), QLatin1String(what))
            .arg(run.exitCode);
    return {};
}

// The screens' process on the office of the run, or on the server, with the reading or without.
QStringList screenCommand(int documents, const QString& runFolder, bool reading) {
    QStringList command{selfPath(), QStringLiteral("--one"), QString::number(documents), runFolder};
    if (reading)
        command << QStringLiteral("--reading");
    if (onServer)
        command << QStringLiteral("--server");
    return command;
}

// Makes the office if needed, copies it for this run (the screen saves into it), and runs the
// sqlite3 shell and the screen on the copy, on a warm cache.
SizeResult measure(int documents, const QString& dataFolder, QStringList& failures) {
    SizeResult r;
    r.documents = documents;
    const int before = failures.size();
    const QString office = bench::officeFolder(dataFolder, documents);
    if (bench::officeIsCurrent(dataFolder, documents)) {
        out(QStringLiteral("%1 documents: using %2").arg(thousands(documents), office));
    } else {
        out(QStringLiteral("%1 documents: making %2 ...").arg(thousands(documents), office));
        const bench::Run made = bench::runProgram(
            {selfPath(), QStringLiteral("--generate"), QString::number(documents), dataFolder}, false);
        if (!made.ok()) {
            failures << QStringLiteral("making the office of %1 documents failed").arg(documents);
            return r;
        }
        out(QStringLiteral("%1 documents: made in %2 s")
                .arg(thousands(documents))
                .arg(made.seconds, 0, 'f', 1));
    }

    const QString runFolder = QDir(dataFolder).filePath(QStringLiteral("run-%1").arg(documents));
    const QString database = runFolder + QStringLiteral("/Database/Vorlane.mdb");
    QDir(runFolder).removeRecursively();
    if (!QDir().mkpath(runFolder + QStringLiteral("/Database")) ||
        !QFile::copy(office + QStringLiteral("/Database/Vorlane.mdb"), database)) {
        failures << QStringLiteral("cannot copy the office to %1").arg(runFolder);
        return r;
    }
    // A few hundred documents, the newest, point at files of the run whose soft copies wait to be
    // read: four PDFs to one picture.
    r.waiting = std::min(300, std::max(10, documents / 20));
    const bench::Run files = bench::runProgram(
        {selfPath(), QStringLiteral("--soft-copies"), runFolder + QStringLiteral("/softcopies"),
         QString::number(r.waiting - r.waiting / 5), QString::number(r.waiting / 5)},
        true);
    const QStringList paths = QString::fromUtf8(files.output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (!files.ok() || paths.size() != r.waiting) {
        failures << QStringLiteral("cannot write the soft copies to read in %1").arg(runFolder);
        return r;
    }
    try {
        bench::pointNewestAt(database, paths);
    } catch (const std::exception& e) {
        failures << QStringLiteral("%1 documents: %2").arg(thousands(documents), QString::fromUtf8(e.what()));
        return r;
    }
    bench::warmFile(database);
    if (onServer) {
        out(QStringLiteral("%1 documents: copying the office to the server ...").arg(thousands(documents)));
        try {
            bench::loadServerOffice(database);
        } catch (const std::exception& e) {
            failures
                << QStringLiteral("%1 documents: %2").arg(thousands(documents), QString::fromUtf8(e.what()));
            return r;
        }
    }

    r.shellList = runShell(database, QString::fromLatin1(ListStatement));
    // Each run of the screens saves one new document.
    int saved = 0;
    QList<ScreenRun> plain{
        parseScreen(bench::runProgram(screenCommand(documents + saved++, runFolder, false), true))};
    r.screen = plain.first();
    // The row that the screen loaded; the last one entered if it loaded none.
    const QByteArray key = r.screen.key.isEmpty() ? QByteArray::number(documents) : r.screen.key;
    r.shellLoad = runShell(
        database, QStringLiteral("Select * from Vorlane where IndexID=%1").arg(QString::fromLatin1(key)));

    // The shell runs each search's statement as the data layer hands it to the engine; the
    // soft-copy search reads every text, and its rows are compared with the screen's.
    for (auto it = r.screen.statements.cbegin(); it != r.screen.statements.cend(); ++it) {
        const bool compared = r.screen.keys.contains(it.key());
        const bench::Run run = runShell(database, it.value(), compared, compared);
        r.shellSearches.insert(it.key(), run);
        if (const QString f = shellFailure(run, it.key().constData()); !f.isEmpty())
            failures << QStringLiteral("%1 documents: %2").arg(thousands(documents), f);
        else if (compared)
            r.softCopyRows = compareRows(r.screen.keys.value(it.key()), run.output, failures, documents);
    }

    // The same steps while the waiting soft copies are read, and again each way in turn, so that
    // the load of the machine weighs on both alike.
    QList<ScreenRun> reading;
    for (int i = 0; i < repeats; ++i) {
        if (i > 0)
            plain << parseScreen(
                bench::runProgram(screenCommand(documents + saved++, runFolder, false), true));
        reading << parseScreen(bench::runProgram(screenCommand(documents + saved++, runFolder, true), true));
    }
    r.screen = combine(plain);
    r.reading = combine(reading);
    for (const QString& f : std::as_const(r.reading.failures))
        failures << QStringLiteral("%1 documents, reading: %2").arg(thousands(documents), f);

    for (const QString& f : r.screen.failures)
        failures << QStringLiteral("%1 documents: %2").arg(thousands(documents), f);
    for (const QString& f : {shellFailure(r.shellList, "the list"), shellFailure(r.shellLoad, "the load")})
        if (!f.isEmpty())
            failures << QStringLiteral("%1 documents: %2").arg(thousands(documents), f);
    // A failed run's copy stays for a look; a good one is thrown away.
    if (failures.size() == before)
        QDir(runFolder).removeRecursively();
    return r;
}

QString milliseconds(double ms) {
    return QStringLiteral("%1 ms").arg(ms, 0, 'f', ms < 100 ? 1 : 0);
}

QString megabytes(long kib) {
    return kib > 0 ? QStringLiteral("%1 MB").arg(double(kib) * 1024 / 1e6, 0, 'f', 0) : QStringLiteral("-");
}

QString verdict(bool met) {
    return met ? QStringLiteral("met") : QStringLiteral("missed");
}

// Each step of the screens as they are and while the soft copies wait to be read in the background.
void printReadingTable(const QList<SizeResult>& results) {
    const auto line = [](const QString& documents, const QString& step, const QString& without,
                         const QString& with, const QString& ratio, const QString& goal) {
        QString text = QStringLiteral("%1  %2 %3 %4 %5  %6")
                           .arg(documents, 9)
                           .arg(step, -20)
                           .arg(without, 10)
                           .arg(with, 12)
                           .arg(ratio, 7)
                           .arg(goal);
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        out(text);
    };
    const std::pair<const char*, const char*> steps[] = {{"first-rows", "Edit: first rows"},
                                                         {"whole-list", "Edit: whole list"},
                                                         {"load", "Double click: load"},
                                                         {"save-change", "Save: changed row"},
                                                         {"save-new", "Save: new row"},
                                                         {"search-all-first", "Search all: first"},
                                                         {"search-all-whole", "Search all: whole"},
                                                         {"search-filtered-whole", "Search type+cat+date"},
                                                         {"search-contains-whole", "Search title contains"},
                                                         {"search-softcopy-whole", "Search soft copy text"},
                                                         {"preview-first", "Preview: first page"},
                                                         {"preview-key", "Preview: arrow key"},
                                                         {"preview-last", "Preview: after keys"}};
    out(QString());
    line(QStringLiteral("documents"), QStringLiteral("step"), QStringLiteral("Vorlane"),
         QStringLiteral("and reading"), QStringLiteral("ratio"), QStringLiteral("goal"));
    for (const SizeResult& r : results) {
        const QString n = thousands(r.documents);
        for (const auto& [key, caption] : steps) {
            // A search pressed several times compares the median of its presses.
            const QByteArray k = r.screen.steps.contains(QByteArray(key) + "-median")
                                     ? QByteArray(key) + "-median"
                                     : QByteArray(key);
            const bool have = r.screen.steps.contains(k) && r.reading.steps.contains(k);
            const double without = r.screen.steps.value(k).first;
            const double with = r.reading.steps.value(k).first;
            line(n, QLatin1String(caption), have ? milliseconds(without) : QStringLiteral("-"),
                 have ? milliseconds(with) : QStringLiteral("-"),
                 have && without > 0 ? QStringLiteral("%1x").arg(with / without, 0, 'f', 2)
                                     : QStringLiteral("-"),
                 have ? QStringLiteral("<= 1.2x: ") + verdict(with <= 1.2 * without) : QString());
        }
        if (r.reading.peakKiB > 0)
            line(n, QStringLiteral("Peak of the program"), megabytes(r.screen.peakKiB),
                 megabytes(r.reading.peakKiB), QString(),
                 QStringLiteral("< 300 MB: ") + verdict(double(r.reading.peakKiB) * 1024 < 300e6));
        if (!r.reading.backgroundStored.isEmpty()) {
            QStringList stored;
            for (const int count : r.reading.backgroundStored)
                stored << QString::number(count);
            out(QStringLiteral("%1  soft copies read during the steps: %2 of %3 waiting, %4 at the end")
                    .arg(n, 9)
                    .arg(stored.join(QStringLiteral(", ")))
                    .arg(r.waiting)
                    .arg(r.reading.backgroundRunning ? QStringLiteral("still reading")
                                                     : QStringLiteral("done")));
        }
    }
}

// The reading of soft copies through vorlane-reader beside pdftotext and tesseract.
struct ReadingSpeed {
    struct Kind {
        int files = 0;
        double ours = 0, theirs = 0;
    };
    QMap<QByteArray, Kind> kinds; // "pdf", "ocr"
};

ReadingSpeed measureReading(const QString& dataFolder, int files, QStringList& failures) {
    ReadingSpeed speed;
    out(QStringLiteral("reading soft copies: %1 PDFs and %1 pictures ...").arg(files));
    const QString folder = QDir(dataFolder).filePath(QStringLiteral("reading"));
    QDir(folder).removeRecursively();
    const bench::Run run = bench::runProgram(
        {selfPath(), QStringLiteral("--reading-speed"), folder, QString::number(files)}, true);
    for (const QByteArray& line : run.output.split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() == 5 && words[0] == "reading")
            speed.kinds.insert(words[1], {words[2].toInt(), words[3].toDouble(), words[4].toDouble()});
        else if (line.startsWith("fail "))
            failures << QStringLiteral("reading: ") + QString::fromUtf8(line.mid(5));
    }
    if (!run.ok() && speed.kinds.isEmpty())
        failures << QStringLiteral("reading: the reading's process failed (%1)")
                        .arg(run.started ? QString::number(run.exitCode) : run.error);
    if (run.ok())
        QDir(folder).removeRecursively();
    return speed;
}

void printReadingSpeed(const ReadingSpeed& speed) {
    if (speed.kinds.isEmpty())
        return;
    out(QString());
    out(QStringLiteral("%1 %2 %3 %4 %5  %6")
            .arg(QStringLiteral("reading"), -14)
            .arg(QStringLiteral("files"), 6)
            .arg(QStringLiteral("Vorlane"), 10)
            .arg(QStringLiteral("theirs"), 10)
            .arg(QStringLiteral("speed"), 7)
            .arg(QStringLiteral("goal")));
    for (auto it = speed.kinds.cbegin(); it != speed.kinds.cend(); ++it) {
        const QString kind = it.key() == "pdf"   ? QStringLiteral("PDF text")
                             : it.key() == "ocr" ? QStringLiteral("OCR pictures")
                                                 : QStringLiteral("OCR, 1 thread");
        const double ratio = it->ours > 0 ? it->theirs / it->ours : 0;
        out(QStringLiteral("%1 %2 %3 %4 %5  >= 0.9x: %6")
                .arg(kind, -14)
                .arg(it->files, 6)
                .arg(milliseconds(it->ours * 1000), 10)
                .arg(milliseconds(it->theirs * 1000), 10)
                .arg(QStringLiteral("%1x").arg(ratio, 0, 'f', 2), 7)
                .arg(verdict(ratio >= 0.9)));
    }
    out(QStringLiteral(
        "Theirs: pdftotext and tesseract on the same files, each file read by both in turn, all "
        "at the lowest CPU priority; speed is their time over Vorlane's. vorlane-reader runs "
        "Tesseract with one thread; tesseract runs with its own threads, and in the last row "
        "with one (OMP_THREAD_LIMIT=1)."));
}

void printTable(const QList<SizeResult>& results) {
    const auto line = [](const QString& documents, const QString& step, const QString& ours,
                         const QString& shell, const QString& ratio, const QString& ourPeak,
                         const QString& shellPeak, const QString& goal) {
        QString text = QStringLiteral("%1  %2 %3 %4 %5 %6 %7  %8")
                           .arg(documents, 9)
                           .arg(step, -20)
                           .arg(ours, 10)
                           .arg(shell, 10)
                           .arg(ratio, 7)
                           .arg(ourPeak, 12)
                           .arg(shellPeak, 12)
                           .arg(goal);
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        out(text);
    };
    out(QString());
    line(QStringLiteral("documents"), QStringLiteral("step"), QStringLiteral("Vorlane"), shellName(),
         QStringLiteral("ratio"), QStringLiteral("Vorlane peak"), shellName() + QStringLiteral(" peak"),
         QStringLiteral("goal"));
    for (const SizeResult& r : results) {
        const QString n = thousands(r.documents);
        struct Row {
            QByteArray key;
            QString caption;
            const bench::Run* shell;
        };
        const auto shell = [&r](const char* step) {
            const auto it = r.shellSearches.constFind(QByteArray(step));
            return it == r.shellSearches.cend() ? nullptr : &it.value();
        };
        const Row rows[] = {
            {"first-rows", QStringLiteral("Edit: first rows"), nullptr},
            {"whole-list", QStringLiteral("Edit: whole list"), &r.shellList},
            {"load", QStringLiteral("Double click: load"), &r.shellLoad},
            {"save-change", QStringLiteral("Save: changed row"), nullptr},
            {"save-new", QStringLiteral("Save: new row"), nullptr},
            {"search-all-first", QStringLiteral("Search all: first"), nullptr},
            {"search-all-whole", QStringLiteral("Search all: whole"), shell("search-all")},
            {"search-filtered-whole", QStringLiteral("Search type+cat+date"), shell("search-filtered")},
            {"search-contains-whole", QStringLiteral("Search title contains"), shell("search-contains")},
            {"search-softcopy-whole", QStringLiteral("Search soft copy text"), shell("search-softcopy")},
            {"preview-first", QStringLiteral("Preview: first page"), nullptr},
            {"preview-key", QStringLiteral("Preview: arrow key"), nullptr},
            {"preview-last", QStringLiteral("Preview: after keys"), nullptr}};
        for (const Row& row : rows) {
            const bool have = r.screen.steps.contains(row.key);
            const double ms = r.screen.steps.value(row.key).first;
            const bool shellOk = row.shell && row.shell->ok();
            const double shellMs = shellOk ? row.shell->seconds * 1000 : 0;
            QString goal;
            if (have && (row.key == "preview-first" || row.key == "preview-last"))
                goal = QStringLiteral("<= 200 ms: ") + verdict(ms <= 200);
            else if (have && row.key == "preview-key")
                goal = QStringLiteral("<= 33 ms: ") + verdict(ms <= 33);
            else if (have && (row.key.endsWith("first") || row.key == "first-rows"))
                goal = QStringLiteral("<= 300 ms: ") + verdict(ms <= 300);
            else if (have && row.key == "search-contains-whole")
                goal = QStringLiteral("<= 150 ms: ") + verdict(ms <= 150);
            else if (have && row.key == "search-softcopy-whole")
                goal = QStringLiteral("<= 150 ms: ") + verdict(ms <= 150) + QStringLiteral(", ") +
                       (r.softCopyRows.isEmpty() ? QStringLiteral("rows not compared") : r.softCopyRows) +
                       QStringLiteral(" as the like");
            else if (have && shellOk && (row.key == "whole-list" || row.key.startsWith("search")))
                goal = QStringLiteral("<= 1.5x: ") + verdict(ms <= 1.5 * shellMs);
            else if (have && row.key.startsWith("save"))
                goal = QStringLiteral("< 20 ms: ") + verdict(ms < 20);
            line(n, row.caption, have ? milliseconds(ms) : QStringLiteral("-"),
                 shellOk ? milliseconds(shellMs) : QStringLiteral("-"),
                 have && shellOk && shellMs > 0 ? QStringLiteral("%1x").arg(ms / shellMs, 0, 'f', 2)
                                                : QStringLiteral("-"),
                 have ? megabytes(r.screen.steps.value(row.key).second) : QStringLiteral("-"),
                 shellOk ? megabytes(row.shell->peakKiB) : QStringLiteral("-"), goal);
        }
        if (r.screen.peakKiB > 0)
            line(n, QStringLiteral("Peak of the program"), QString(), QString(), QString(),
                 megabytes(r.screen.peakKiB), QString(),
                 QStringLiteral("< 300 MB: ") + verdict(double(r.screen.peakKiB) * 1024 < 300e6));
    }
    printReadingTable(results);
    out(QStringLiteral(
            "Goals, shown and not checked: first rows <= 0.3 s, whole list and searches <= 1.5x "
            "%1, a contains-search <= 150 ms, peak < 300 MB, save < 20 ms; while soft copies "
            "are read in the background, each step <= 1.2x its time without. Preview: the mean of 20 "
            "first pages after a selection, the longest arrow key of 200 held (one every 33 ms), and the "
            "page of the last row after them. The searches by type, title and soft copy text are pressed "
            "five times: the first table shows the first press, the second the median of the five.")
            .arg(shellName()));
    if (onServer)
        out(QStringLiteral("The store is the PostgreSQL server of the data source \"Vorlane\"."));
    out(QStringLiteral("Times are wall clock on a warm cache, each the median of %1 runs of the screens "
                       "without the reading and %1 with it, in turn; the peaks are the resident memory "
                       "of the whole process so far, the highest of the runs.")
            .arg(repeats));
    // A started program's peak includes what this process held when starting it: the floor.
    const bench::Run floor = bench::runProgram({QStringLiteral("true")}, false);
    if (floor.ok())
        out(QStringLiteral("A program started by the benchmark reports a peak of at least %1 KB.")
                .arg(double(floor.peakKiB) * 1024 / 1000, 0, 'f', 0));
}

int usage() {
    std::fprintf(stderr, "usage: vorlane_bench [--rows 100000,1000000] [--data <folder>] [--server] "
                         "[--reading-files 24] [--repeats 3]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    const QStringList args = [&] {
        QStringList a;
        for (int i = 1; i < argc; ++i)
            a << QString::fromLocal8Bit(argv[i]);
        return a;
    }();

    // The two parts that run in processes of their own.
    if (args.size() >= 3 && args[0] == QLatin1String("--one"))
        return bench::driveScreen(argc, argv, args[1].toInt(), args[2],
                                  args.contains(QLatin1String("--reading")),
                                  args.contains(QLatin1String("--server")));
    if (args.size() == 3 && args[0] == QLatin1String("--reading-speed"))
        return bench::readingSpeed(argc, argv, args[1], args[2].toInt());
    if (args.size() == 4 && args[0] == QLatin1String("--soft-copies")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QGuiApplication app(argc, argv);
        try {
            for (const QString& path :
                 bench::writeSoftCopies(args[1], args[2].toInt(), args[3].toInt(), false))
                out(path);
        } catch (const std::exception& e) {
            std::fprintf(stderr, "vorlane_bench: %s\n", e.what());
            return 1;
        }
        return 0;
    }
    if (args.size() == 3 && args[0] == QLatin1String("--generate")) {
        QCoreApplication app(argc, argv);
        try {
            bench::makeOffice(args[2], args[1].toInt());
        } catch (const std::exception& e) {
            std::fprintf(stderr, "vorlane_bench: %s\n", e.what());
            return 1;
        }
        return 0;
    }

    // This process stays small: whatever it holds, the processes that it starts count too.
    QList<int> sizes{100000, 1000000};
    QString data = QStringLiteral(VORLANE_BENCH_DATA);
    int readingFiles = 24;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--rows") && i + 1 < args.size()) {
            sizes.clear();
            for (const QString& n : args[++i].split(QLatin1Char(','))) {
                bool ok = false;
                const int value = n.trimmed().toInt(&ok);
                if (!ok || value < 1)
                    return usage();
                sizes << value;
            }
        } else if (args[i] == QLatin1String("--data") && i + 1 < args.size()) {
            data = args[++i];
        } else if (args[i] == QLatin1String("--reading-files") && i + 1 < args.size()) {
            bool ok = false;
            readingFiles = args[++i].toInt(&ok);
            if (!ok || readingFiles < 0)
                return usage();
        } else if (args[i] == QLatin1String("--repeats") && i + 1 < args.size()) {
            bool ok = false;
            repeats = args[++i].toInt(&ok);
            if (!ok || repeats < 1)
                return usage();
        } else if (args[i] == QLatin1String("--server")) {
            onServer = true;
        } else {
            return usage();
        }
    }
    if (onServer) {
        if (!bench::serverKnown()) {
            std::fprintf(stderr, "vorlane_bench: --server needs the data source \"Vorlane\" in odbc.ini\n");
            return 1;
        }
        bench::reachServerWithPsql();
    }
    data = QFileInfo(data).absoluteFilePath();
    if (!QDir().mkpath(data)) {
        std::fprintf(stderr, "vorlane_bench: cannot create %s\n", qPrintable(data));
        return 1;
    }

    QStringList failures;
    const ReadingSpeed speed =
        readingFiles > 0 ? measureReading(data, readingFiles, failures) : ReadingSpeed();
    QList<SizeResult> results;
    for (int documents : sizes)
        results << measure(documents, data, failures);
    printTable(results);
    printReadingSpeed(speed);
    for (const QString& f : failures)
        out(QStringLiteral("FAILED: ") + f);
    return failures.isEmpty() ? 0 : 1;
}
