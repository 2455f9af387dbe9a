// Reading the text of soft copies through the helper vorlane-reader: files of each kind made
// here, bad input, and helpers that hang or crash.
#include "datastore/Foreground.h"
#include "index/SoftCopyReader.h"
#include "support/SoftCopySamples.h"
#include "support/TestSupport.h"

#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>
#include <QtTest>
#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

using State = SoftCopyText::State;

using testsupport::writeFile;
using testsupport::writePdf;
using testsupport::writeZip;

class tst_SoftCopyReader : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }

  private slots:
    void initTestCase();
    void read_data();
    void read();
    void oneReadingAfterAnother();
    void helperOfAThreadThatEnded();
    void readingGivesWayToTheScreens();
};

void tst_SoftCopyReader::initTestCase() {
    writePdf(path(QStringLiteral("text.pdf")), QStringLiteral("Marmalade shipment"), false);
    writePdf(path(QStringLiteral("scanned.pdf")), QStringLiteral("LIGHTHOUSE"), true);
    QVERIFY(testsupport::wordsPicture(QStringLiteral("PELICAN"), 60).save(path(QStringLiteral("words.png"))));
    QVERIFY(QImage(1100, 1000, QImage::Format_Mono).save(path(QStringLiteral("large.png"))));
    writeZip(path(QStringLiteral("letter.docx")), QStringLiteral("word/document.xml"),
             testsupport::docxBody("Quarterly report"));
    writeZip(path(QStringLiteral("bomb.docx")), QStringLiteral("word/document.xml"),
             testsupport::docxBody(QByteArray(3 << 20, 'a')));
    writeZip(path(QStringLiteral("minutes.odt")), QStringLiteral("content.xml"),
             testsupport::odtContent("Parliament<text:s text:c=\"2\"/>minutes"));
    // A shared string, then a sheet whose first cell points at it and whose second holds a number.
    writeZip(
        path(QStringLiteral("sales.xlsx")), QStringLiteral("xl/sharedStrings.xml"),
        "<sst><si><t>Invoice</t></si></sst>", QStringLiteral("xl/worksheets/sheet1.xml"),
        "<worksheet><sheetData><row><c t=\"s\"><v>0</v></c><c><v>4711</v></c></row></sheetData></worksheet>");
    writeFile(path(QStringLiteral("note.txt")), "Crocodile caf\xe9"); // Latin-1, not UTF-8
    writeFile(path(QStringLiteral("old.doc")), QByteArray(512, '\0'));
    testsupport::writeBadPdfs(path(QStringLiteral("damaged.pdf")), path(QStringLiteral("locked.pdf")),
                              path(QStringLiteral("text.pdf")));
    {
        // Two thousand pages of text, the last one's word read too; and scanned pages that need more
        // processor time than the reader may use.
        QPdfWriter writer(path(QStringLiteral("long.pdf")));
        QPainter painter(&writer);
        for (int page = 1; page <= 2000; ++page) {
            if (page > 1)
                writer.newPage();
            painter.drawText(QPointF(300, 600),
                             page == 2000 ? QStringLiteral("Epilogue") : QString::number(page));
        }
        QPdfWriter scans(path(QStringLiteral("scans.pdf")));
        QPainter scanned(&scans);
        for (int page = 1; page <= 40; ++page) {
            if (page > 1)
                scans.newPage();
            scanned.drawImage(QRect(0, 0, scans.width(), scans.width() * 3 / 14),
                              testsupport::wordsPicture(QStringLiteral("PAGE %1").arg(page)));
        }
    }
    QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("folder.pdf")));
    QCOMPARE(mkfifo(path(QStringLiteral("hang.txt")).toLocal8Bit().constData(), 0600), 0);
    for (const char* signal : {"SEGV", "KILL"}) {
        const QString helper = path(QStringLiteral("%1.sh").arg(QLatin1String(signal)));
        writeFile(helper, QByteArray("#!/bin/sh\nkill -") + signal + " $$\n");
        QFile::setPermissions(helper, QFile::ReadOwner | QFile::ExeOwner);
    }
}

void tst_SoftCopyReader::read_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<State>("state");
    QTest::addColumn<QString>("expected"); // in the text when read, else in the reason
    QTest::addColumn<QString>("helper");   // in the test's folder; else the real one

    const auto row = [](const char* name, const char* file, State state, const char* expected,
                        const QStringList& options = {}, const char* helper = "") {
        QTest::newRow(name) << QString::fromUtf8(file) << options << state << QString::fromUtf8(expected)
                            << QString::fromUtf8(helper);
    };
    row("pdf", "text.pdf", State::Read, "Marmalade shipment");
    row("scanned pdf", "scanned.pdf", State::Read, "LIGHTHOUSE");
    row("picture", "words.png", State::Read, "PELICAN");
    row("docx", "letter.docx", State::Read, "Quarterly report");
    row("xlsx", "sales.xlsx", State::Read, "Invoice\n4711");
    row("odt", "minutes.odt", State::Read, "Parliament  minutes");
    row("latin-1 text", "note.txt", State::Read, "Crocodile café");
    row("2,000 pages", "long.pdf", State::Read, "Epilogue");
    row("scans beyond the time", "scans.pdf", State::Unreadable, "processor time",
        {QStringLiteral("--cpu-seconds=1")});
    row("damaged pdf", "damaged.pdf", State::Unreadable, "damaged");
    row("locked pdf", "locked.pdf", State::Unreadable, "password");
    row("zip bomb", "bomb.docx", State::Unreadable, "unpacks to more than 1 MB",
        {QStringLiteral("--unpacked-mb=1")});
    row("huge picture", "large.png", State::Unreadable, "more than 1 megapixels",
        {QStringLiteral("--max-megapixels=1")});
    row("folder", "folder.pdf", State::Unreadable, "folder");
    row("missing", "nothing.pdf", State::Missing, "no file");
    row("old word", "old.doc", State::NoTextForType, "this kind of file (.doc)");
    row("hangs", "hang.txt", State::Unreadable, "stopped after 2 seconds");
    row("crashes", "note.txt", State::Unreadable, "crashed", {}, "SEGV.sh");
    row("killed", "note.txt", State::Unreadable, "stopped from outside", {}, "KILL.sh");
    row("no helper", "note.txt", State::Unreadable, "could not be started", {}, "none");
}

namespace {

// Only the reading that hangs meets the time limit: on a loaded machine, OCR or the start of the
// helper alone may take seconds.
int timeLimitFor(const QString& file) {
    return file == QLatin1String("hang.txt") ? 2 : 120;
}

} // namespace

void tst_SoftCopyReader::read() {
    QFETCH(QString, file);
    QFETCH(QStringList, options);
    QFETCH(State, state);
    QFETCH(QString, expected);
    QFETCH(QString, helper);
    SoftCopyReader reader;
    reader.setHelper(helper.isEmpty() ? QStringLiteral(VORLANE_READER) : path(helper));
    reader.setHelperOptions(options);
    reader.setTimeLimit(timeLimitFor(file));
    const SoftCopyText result = reader.read(path(file));
    QCOMPARE(result.reason.isEmpty(), state == State::Read);
    QVERIFY2((state == State::Read ? result.text : result.reason).contains(expected, Qt::CaseInsensitive),
             qPrintable(result.reason + result.text));
    QCOMPARE(result.state, state);
}

namespace {

struct Process {
    long pid, parent, group;
    bool ended; // and not reaped
};

QList<Process> processes() {
    QList<Process> all;
    for (const QString& pid : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const QList<QByteArray> fields = testsupport::processStat(pid.toLong());
        if (fields.size() > 2)
            all.append({pid.toLong(), fields[1].toLong(), fields[2].toLong(), fields[0] == "Z"});
    }
    return all;
}

// The processes that this one started and has not reaped; with `running`, only those not ended.
QList<long> startedProcesses(bool running) {
    QList<long> pids;
    for (const Process& p : processes())
        if (p.parent == getpid() && !(running && p.ended))
            pids << p.pid;
    return pids;
}

bool groupRuns(long group) {
    const QList<Process> all = processes();
    return std::any_of(all.cbegin(), all.cend(),
                       [group](const Process& p) { return p.group == group && !p.ended; });
}

} // namespace

// One helper serves one reading after another: a reading that fails or hangs leaves nothing to
// the next, the process that hung dies with the helper that the time limit kills, and the
// helpers end with the reader.
void tst_SoftCopyReader::oneReadingAfterAnother() {
    {
        SoftCopyReader reader;
        reader.setHelper(QStringLiteral(VORLANE_READER));
        QVERIFY(
            reader.read(path(QStringLiteral("text.pdf"))).text.contains(QLatin1String("Marmalade shipment")));
        QVERIFY(reader.read(path(QStringLiteral("damaged.pdf"))).reason.contains(QLatin1String("damaged")));
        const QList<long> helper = startedProcesses(true);
        QCOMPARE(helper.size(), 1);
        reader.setTimeLimit(2);
        QVERIFY(
            reader.read(path(QStringLiteral("hang.txt"))).reason.contains(QLatin1String("stopped after")));
        // The helper's group is its own; the process that hung was in it.
        QTRY_VERIFY(!groupRuns(helper.constFirst()));
        reader.setTimeLimit(120);
        QCOMPARE(reader.read(path(QStringLiteral("note.txt"))).text, QStringLiteral("Crocodile café"));
        QCOMPARE(startedProcesses(true).size(), 1);
    }
    QCOMPARE(startedProcesses(false).size(), 0);
}

// A helper dies with the thread that started it; the reader reaps it and reads on in another.
void tst_SoftCopyReader::helperOfAThreadThatEnded() {
    SoftCopyReader reader;
    reader.setHelper(QStringLiteral(VORLANE_READER));
    SoftCopyText inThread;
    std::unique_ptr<QThread> thread(
        QThread::create([&] { inThread = reader.read(path(QStringLiteral("note.txt"))); }));
    thread->start();
    QVERIFY(thread->wait());
    QCOMPARE(inThread.state, State::Read);
    QTRY_COMPARE(startedProcesses(true).size(), 0);
    QVERIFY(
        reader.read(path(QStringLiteral("letter.docx"))).text.contains(QLatin1String("Quarterly report")));
    QCOMPARE(startedProcesses(false).size(), 1);
}

// A reading of the background stands still while the screens use the store, and the time it
// stands still does not count against its limit.
void tst_SoftCopyReader::readingGivesWayToTheScreens() {
    SoftCopyReader reader;
    reader.setHelper(QStringLiteral(VORLANE_READER));
    reader.setTimeLimit(1);
    SoftCopyText inThread;
    std::atomic<bool> done{false};
    std::unique_ptr<QThread> thread(QThread::create([&] {
        inThread = reader.read(path(QStringLiteral("note.txt")));
        done = true;
    }));
    {
        const db::foreground::Hold screens; // a transaction of the screens
        thread->start();
        QTRY_COMPARE(startedProcesses(true).size(), 1);
        const long helper = startedProcesses(true).constFirst();
        QTRY_COMPARE(testsupport::processStat(helper).value(0), QByteArray("T"));
        QTest::qWait(1500);
        QVERIFY(!done);
    }
    QVERIFY(thread->wait());
    QCOMPARE(inThread.state, State::Read);
    QCOMPARE(inThread.text, QStringLiteral("Crocodile café"));
}

QTEST_MAIN(tst_SoftCopyReader)
#include "tst_softcopyreader.moc"
