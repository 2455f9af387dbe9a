// vorlane_textsearch: the contains-search of the search screen on a benchmark office, through the
// trigram index and by reading every document, on a copy of the office made as a database of an
// earlier version (without the index). Prints the first open that builds the index, the file's
// growth, each search's time and rows both ways, and the time of a save with and without the
// index's triggers.
//   vorlane_textsearch <office folder> [text ...]
// The office folder is one that vorlane_bench made, e.g. build/bench-data/office-1000000.
#include "Median.h"
#include "datastore/Engine.h"
#include "datastore/sqlite/SqliteDialect.h"
#include "datastore/sqlite/TextIndex.h"
#include "platform/Error.h"
#include "platform/TestHooks.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <sqlite3.h>

namespace {

const QString Search = QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on "
                                      "F.FileID=I.FileID Where I.Title1 like '%%1%'  order by I.DocDate");

void out(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

double megabytes(const QString& path) {
    return double(QFileInfo(path).size()) / 1e6;
}

bool rawExec(const QString& path, const char* sql) {
    sqlite3* handle = nullptr;
    const bool ok = sqlite3_open_v2(QFile::encodeName(path).constData(), &handle, SQLITE_OPEN_READWRITE,
                                    nullptr) == SQLITE_OK &&
                    sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(handle);
    return ok;
}

// Reads the file once, so that every search runs on a warm cache.
void warm(const QString& path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        while (!file.read(1 << 20).isEmpty()) {
        }
}

// Runs a select to its last row, reading every value as a list does; the best of three runs.
QPair<double, int> timeSelect(db::Engine& engine, const QString& text) {
    double best = 1e12;
    int rows = 0;
    for (int run = 0; run < 3; ++run) {
        QElapsedTimer timer;
        timer.start();
        auto cursor = engine.query(text);
        const int columns = int(cursor->names().size());
        rows = 0;
        while (cursor->next()) {
            for (int c = 0; c < columns; ++c)
                cursor->value(c);
            ++rows;
        }
        best = std::min(best, double(timer.nsecsElapsed()) / 1e6);
    }
    return {best, rows};
}

struct SaveTimes {
    QVector<double> inserts, updates; // milliseconds of each save
};

// Saves as the Index Document screen saves, each its own transaction: `count` new documents
// from `firstKey` on, then as many changed titles of documents among the first `existing`.
void timeSaves(db::Engine& engine, qint64 firstKey, qint64 existing, int count, SaveTimes& times) {
    const db::SqliteDialect plain;
    const auto save = [&](const QString& statement) {
        QElapsedTimer timer;
        timer.start();
        engine.beginTransaction();
        engine.execute(plain.translate(statement));
        engine.commitTransaction();
        return double(timer.nsecsElapsed()) / 1e6;
    };
    for (int i = 0; i < count; ++i)
        times.inserts << save(
            QStringLiteral("Insert into Vorlane Values(%1, '05/Mar/2026','06/Mar/2026',1,2,3,4,'Invoice 4711 "
                           "from Meridian Bank for March','File F-2026/0001','/home/office/Scans/a.pdf',1,"
                           "'page 2','Paid by bank transfer',1)")
                .arg(firstKey + i));
    for (int i = 0; i < count; ++i)
        times.updates << save(
            QStringLiteral("Update Vorlane set Title1='Letter %1 from Summit Legal about tax "
                           "assessment', Remarks='Filed late' where IndexID=%2")
                .arg(firstKey + i)
                .arg(1 + (firstKey + i) * 7919 % existing));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        std::fprintf(stderr, "usage: vorlane_textsearch <office folder> [text ...]\n");
        return 2;
    }
    const QString office = QFileInfo(args.takeFirst()).absoluteFilePath();
    if (args.isEmpty())
        args = QStringList{
            QStringLiteral("lease"),        QStringLiteral("water damage"), QStringLiteral("Meridian Bank"),
            QStringLiteral("Invoice 4711"), QStringLiteral("Łódź"),         QStringLiteral("ελλάδα"),
            QStringLiteral("ДОБРЫЙ"),       QStringLiteral("zürich re"),    QStringLiteral("ta")};

    // A copy of the office whose database is one of an earlier version: no index, and compacted
    // as such a file would be.
    const QString folder = office + QStringLiteral(".textsearch");
    const QString database = folder + QStringLiteral("/Database/Vorlane.mdb");
    QDir(folder).removeRecursively();
    if (!QDir().mkpath(folder + QStringLiteral("/Database")) ||
        !QFile::copy(office + QStringLiteral("/Database/Vorlane.mdb"), database)) {
        std::fprintf(stderr, "vorlane_textsearch: cannot copy %s\n", qPrintable(office));
        return 1;
    }
    if (!rawExec(database,
                 "DROP TRIGGER IF EXISTS VorlaneTextInsert; DROP TRIGGER IF EXISTS VorlaneTextUpdate; "
                 "DROP TRIGGER IF EXISTS VorlaneTextDelete; DROP TABLE IF EXISTS VorlaneText; VACUUM")) {
        std::fprintf(stderr, "vorlane_textsearch: cannot take the index out of %s\n", qPrintable(database));
        return 1;
    }
    const double before = megabytes(database);
    platform::test::setAppPath(folder);
    warm(database);

    try {
        QElapsedTimer timer;
        timer.start();
        auto engine = db::openEngine(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QString(), 100);
        const double opened = double(timer.nsecsElapsed()) / 1e6;
        const double after = megabytes(database);
        out(QStringLiteral("First open, building the index: %1 ms; file %2 MB -> %3 MB (+%4%)")
                .arg(opened, 0, 'f', 0)
                .arg(before, 0, 'f', 0)
                .arg(after, 0, 'f', 0)
                .arg((after / before - 1) * 100, 0, 'f', 0));
        timer.restart();
        engine.reset();
        engine = db::openEngine(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QString(), 100);
        out(QStringLiteral("Next open: %1 ms").arg(double(timer.nsecsElapsed()) / 1e6, 0, 'f', 1));
        warm(database);

        out(QStringLiteral("\n%1 %2 %3 %4 %5")
                .arg(QStringLiteral("Title1 like"), -22)
                .arg(QStringLiteral("index"), 11)
                .arg(QStringLiteral("rows"), 8)
                .arg(QStringLiteral("every row"), 11)
                .arg(QStringLiteral("rows"), 8));
        const db::SqliteDialect everyRow;
        for (const QString& text : std::as_const(args)) {
            const QString statement = Search.arg(text);
            const QString indexed = engine->dialect().translate(statement);
            const auto viaIndex = timeSelect(*engine, indexed);
            const auto scan = timeSelect(*engine, everyRow.translate(statement));
            const bool used = indexed.contains(QLatin1String("VorlaneText"));
            out(QStringLiteral("%1 %2 %3 %4 %5%6")
                    .arg(QStringLiteral("'%") + text + QStringLiteral("%'"), -22)
                    .arg(used ? QStringLiteral("%1 ms").arg(viaIndex.first, 0, 'f', 1) : QStringLiteral("-"),
                         11)
                    .arg(used ? QString::number(viaIndex.second) : QStringLiteral("-"), 8)
                    .arg(QStringLiteral("%1 ms").arg(scan.first, 0, 'f', 1), 11)
                    .arg(scan.second, 8)
                    .arg(used && viaIndex.second != scan.second ? QStringLiteral("  ROWS DIFFER")
                                                                : QString()));
        }

        // With and without the index's triggers in turns, so that both meet the same disk; once as
        // the program saves, once without waiting for the disk (the work of the engine alone).
        const qint64 existing =
            engine->select(QStringLiteral("SELECT max(IndexID) FROM Vorlane")).values[0][0].toLongLong();
        qint64 next = existing + 1;
        const QStringList triggers = db::textIndexStatements().mid(1);
        out(QString());
        for (const char* synchronous : {"FULL", "OFF"}) {
            engine->execute(QStringLiteral("PRAGMA synchronous=%1").arg(QLatin1String(synchronous)));
            SaveTimes with, without;
            for (int round = 0; round < 6; ++round) {
                timeSaves(*engine, next, existing, 10, with);
                next += 10;
                for (const char* name : {"VorlaneTextInsert", "VorlaneTextDelete", "VorlaneTextUpdate"})
                    engine->execute(QStringLiteral("DROP TRIGGER \"%1\"").arg(QLatin1String(name)));
                timeSaves(*engine, next, existing, 10, without);
                next += 10;
                for (const QString& sql : triggers)
                    engine->execute(sql);
            }
            out(QStringLiteral("synchronous=%1: save a new document %2 ms with the index, %3 ms without; "
                               "change a title %4 ms with, %5 ms without (medians of %6)")
                    .arg(QLatin1String(synchronous))
                    .arg(bench::median(with.inserts), 0, 'f', 2)
                    .arg(bench::median(without.inserts), 0, 'f', 2)
                    .arg(bench::median(with.updates), 0, 'f', 2)
                    .arg(bench::median(without.updates), 0, 'f', 2)
                    .arg(with.inserts.size()));
        }
    } catch (const platform::Error& e) {
        std::fprintf(stderr, "vorlane_textsearch: %s\n", qPrintable(e.description()));
        return 1;
    }
    QDir(folder).removeRecursively();
    return 0;
}
