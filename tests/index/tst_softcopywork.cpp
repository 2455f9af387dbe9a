// The soft copies read in the background: claims shared by seats (in one process and in several),
// what is stored, a path that only another seat may reach, files changed since they were read,
// and seats stopped or killed while reading.
#include "index/SoftCopyWork.h"
#include "index/frmSearchDocument.h"
#include "platform/TestHooks.h"
#include "support/ScreenDriver.h"
#include "support/SoftCopySamples.h"
#include "support/TestSupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <sys/stat.h>

namespace {

// One seat of its own process: reads in the background on the database of the program folder
// `appPath` until no document waits, printing the key of each document it stored.
int runReadingSeat(const QString& appPath, const QString& seat) {
    testsupport::TestEnvironment env(false);
    platform::test::setAppPath(appPath);
    SoftCopyWork work(seat);
    work.reader().setHelper(QStringLiteral(VORLANE_READER));
    QObject::connect(&work, &SoftCopyWork::stored, [](qint64 id) {
        printf("%lld\n", static_cast<long long>(id));
        fflush(stdout);
    });
    QObject::connect(&work, &SoftCopyWork::idle, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    work.start();
    return QCoreApplication::exec();
}

} // namespace

class TestSoftCopyWork : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    std::unique_ptr<QTemporaryDir> files;
    const QDateTime now = QDateTime(QDate(2026, 11, 24), QTime(9, 0), Qt::UTC);

    QString file(const char* name, const QByteArray& text) {
        QFile f(files->filePath(QString::fromLatin1(name)));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        return f.fileName();
    }
    void document(int id, const char* date, const QString& path) {
        env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'t','','%3',1,'','',1)")
                      .arg(QString::number(id), QString::fromLatin1(date), path));
    }
    // A file whose reading hangs until something writes to it.
    QString fifo() {
        const QString path = files->filePath(QStringLiteral("scanner.txt"));
        mkfifo(QFile::encodeName(path).constData(), 0600);
        return path;
    }
    QProcess* seat(const QString& name) {
        auto* p = new QProcess(this);
        p->start(QCoreApplication::applicationFilePath(),
                 {QStringLiteral("--reading-seat"), env->appPath(), name});
        return p;
    }
    QString row(int id) {
        return env
            ->scalar(
                QStringLiteral("select coalesce(ReadState,'')||'|'||coalesce(Reason,'')||'|'||coalesce("
                               "SoftText,'')||'|'||coalesce(ClaimedBy,'') from SoftCopy where IndexID=%1")
                    .arg(id))
            .toString();
    }

  private slots:
    void init() {
        env = testsupport::startCase();
        files = std::make_unique<QTemporaryDir>();
        document(1, "2024-01-10", file("old.txt", "Old lease"));
        document(2, "2026-03-05", file("new.txt", "New invoice"));
        document(3, "2025-06-01", files->filePath(QStringLiteral("gone.txt")));
    }
    void cleanup() { testsupport::endCase(env); }

    // Newest first; a document held by a seat is not taken by another until its claim runs out.
    void seatsShareTheDocuments() {
        SoftCopyWork first(QStringLiteral("seat-1"));
        SoftCopyWork second(QStringLiteral("seat-2"));
        QCOMPARE(first.claimNext(now)->indexId, 2);
        QCOMPARE(second.claimNext(now)->indexId, 3);
        QCOMPARE(first.claimNext(now)->indexId, 1);
        QVERIFY(!second.claimNext(now.addSecs(60)));
        QCOMPARE(row(2), QStringLiteral("waiting|||seat-1"));
        // The first seat died: its claims run out.
        QCOMPARE(second.claimNext(now.addSecs(11 * 60))->indexId, 2);
        QCOMPARE(row(2), QStringLiteral("waiting|||seat-2"));
    }

    // The reading is stored only while its seat holds the claim and the path is the one read; a
    // file gone from its folder is missing for all.
    void storesWhatItsClaimRead() {
        SoftCopyWork first(QStringLiteral("seat-1"));
        first.reader().setHelper(QStringLiteral(VORLANE_READER));
        const SoftCopyClaim newest = *first.claimNext(now);
        const SoftCopyClaim gone = *first.claimNext(now);
        first.store(gone, first.read(gone.path));
        QCOMPARE(row(3).section(QLatin1Char('|'), 0, 0), QStringLiteral("missing"));

        const SoftCopyClaim old = *first.claimNext(now);
        env->exec("update Vorlane set FilePath='elsewhere.txt' where IndexID=1");
        first.store(old, first.read(old.path));
        QCOMPARE(row(1), QStringLiteral("waiting|||"));

        SoftCopyWork second(QStringLiteral("seat-2"));
        second.reader().setHelper(QStringLiteral(VORLANE_READER));
        QCOMPARE(second.claimNext(now.addSecs(11 * 60))->indexId, 2);
        first.store(newest, first.read(newest.path));
        QCOMPARE(row(2), QStringLiteral("waiting|||seat-2"));
        second.store(newest, second.read(newest.path));
        QCOMPARE(row(2), QStringLiteral("read||New invoice|"));
    }

    // A folder this seat cannot see is left to the others, not marked for all.
    void aPathOutOfReachIsLeftForOthers() {
        env->exec("update Vorlane set FilePath='/no/such/share/letter.pdf' where IndexID=2");
        SoftCopyWork first(QStringLiteral("seat-1"));
        const SoftCopyClaim claim = *first.claimNext(now);
        first.store(claim, first.read(claim.path));
        QCOMPARE(row(2), QStringLiteral("waiting|||"));
        QCOMPARE(first.claimNext(now)->indexId, 3);
        QCOMPARE(SoftCopyWork(QStringLiteral("seat-2")).claimNext(now)->indexId, 2);
    }

    // A document just saved comes first; a file changed since its reading waits again, one gone or
    // unchanged does not, and a missing one that came back does.
    void savedAndChangedFilesWaitAgain() {
        SoftCopyWork work(QStringLiteral("seat-1"));
        work.reader().setHelper(QStringLiteral(VORLANE_READER));
        SoftCopyWork::readNext(1);
        QCOMPARE(work.claimNext(now)->indexId, 1);
        env->exec("update SoftCopy set ClaimedBy=null, ClaimedAt=null");
        while (const auto claim = work.claimNext(now))
            work.store(*claim, work.read(claim->path));
        QCOMPARE(work.sweepChanged(0, 500), 0);
        QCOMPARE(env->scalar("select count(*) from SoftCopy where ReadState='waiting'").toInt(), 0);

        file("old.txt", "Old lease, renewed");
        QCOMPARE(work.sweepChanged(0, 2), 2);
        QCOMPARE(work.sweepChanged(2, 2), 0);
        QCOMPARE(row(1).section(QLatin1Char('|'), 0, 0), QStringLiteral("waiting"));
        QCOMPARE(row(2).section(QLatin1Char('|'), 0, 0), QStringLiteral("read"));
        QCOMPARE(row(3).section(QLatin1Char('|'), 0, 0), QStringLiteral("missing"));
        file("gone.txt", "Found again");
        work.sweepChanged(0, 500);
        QCOMPARE(row(3).section(QLatin1Char('|'), 0, 0), QStringLiteral("waiting"));
    }

    // In the background: every document read in a worker thread, until none waits; stopping cuts
    // a hanging reading short and gives its document back.
    void readsInTheBackgroundUntilStopped() {
        SoftCopyWork work(QStringLiteral("seat-1"));
        work.reader().setHelper(QStringLiteral(VORLANE_READER));
        std::atomic<bool> idle{false};
        connect(&work, &SoftCopyWork::idle, [&idle] { idle = true; });
        work.start();
        QTRY_VERIFY_WITH_TIMEOUT(idle, 60000);
        QCOMPARE(row(1), QStringLiteral("read||Old lease|"));
        QCOMPARE(row(2), QStringLiteral("read||New invoice|"));
        QCOMPARE(row(3).section(QLatin1Char('|'), 0, 0), QStringLiteral("missing"));

        env->exec(QStringLiteral("update Vorlane set FilePath='%1' where IndexID=2").arg(fifo()));
        SoftCopyWork::readNext(2);
        QTRY_COMPARE_WITH_TIMEOUT(row(2), QStringLiteral("waiting|||seat-1"), 30000);
        bool stopped = false;
        connect(&work, &SoftCopyWork::stopped, this, [&stopped] { stopped = true; });
        work.stop();
        QTRY_VERIFY_WITH_TIMEOUT(stopped, 30000);
        QCOMPARE(row(2), QStringLiteral("waiting|||"));
    }

    // Each kind of soft copy is found by Search Document through a word that only its file holds:
    // PDF text, a scanned PDF and a picture read by OCR, a docx and an odt.
    void searchFindsEachKindByAWordOfIt() {
        using namespace testsupport;
        const auto at = [this](const char* name) { return files->filePath(QString::fromLatin1(name)); };
        writePdf(at("text.pdf"), QStringLiteral("Marmalade shipment"), false);
        writePdf(at("scanned.pdf"), QStringLiteral("LIGHTHOUSE"), true);
        QVERIFY(wordsPicture(QStringLiteral("PELICAN"), 60).save(at("words.png")));
        writeZip(at("letter.docx"), QStringLiteral("word/document.xml"), docxBody("Quarterly report"));
        writeZip(at("minutes.odt"), QStringLiteral("content.xml"), odtContent("Parliament minutes"));
        const char* const names[] = {"text.pdf", "scanned.pdf", "words.png", "letter.docx", "minutes.odt"};
        env->exec("insert into File values(1,'F-001','Tax',1)");
        for (int i = 0; i < 5; ++i)
            document(4 + i, "2025-02-01", at(names[i]));
        SoftCopyWork work(QStringLiteral("seat-1"));
        work.reader().setHelper(QStringLiteral(VORLANE_READER));
        QCOMPARE(work.readWaiting(), 8);

        Screen<frmSearchDocument> screen;
        screen->Show();
        const char* const words[] = {"marmalade", "lighthouse", "pelican", "quarterly", "parliament"};
        for (int i = 0; i < 5; ++i) {
            screen->ResetSearchForm();
            screen.type("txtSoftCopyText", QString::fromLatin1(words[i]));
            screen.press("cmdSearch");
            const QStringList said = messages();
            QVERIFY2(said.isEmpty(), qPrintable(said.join(QLatin1Char('\n'))));
            const QStringList rows = screen.rows("lstList");
            QCOMPARE(rows.size(), 1);
            QVERIFY2(rows.constFirst().startsWith(QString::number(4 + i) + QLatin1Char('|')), words[i]);
        }
    }

    // Two seats, each its own process, share the documents: none is read twice. A seat killed
    // while reading leaves its document waiting, without a text, until its claim runs out.
    void seatsInTwoProcesses() {
        for (int id = 4; id < 40; ++id)
            document(id, "2025-01-01", file(QByteArray::number(id).append(".txt").constData(), "Letter"));
        QProcess* first = seat(QStringLiteral("seat-1"));
        QProcess* second = seat(QStringLiteral("seat-2"));
        QVERIFY(first->waitForFinished(120000) && second->waitForFinished(120000));
        QCOMPARE(first->exitCode() + second->exitCode(), 0);
        QStringList stored =
            QString::fromLatin1(first->readAllStandardOutput() + second->readAllStandardOutput())
                .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(stored.size(), 39);
        stored.removeDuplicates();
        QCOMPARE(stored.size(), 39);
        QCOMPARE(env->scalar("select count(*) from SoftCopy where ReadState='read'").toInt(), 38);

        const QString pipe = fifo();
        env->exec(QStringLiteral("update Vorlane set FilePath='%1' where IndexID=5").arg(pipe));
        QProcess* killed = seat(QStringLiteral("seat-3"));
        QTRY_COMPARE_WITH_TIMEOUT(row(5), QStringLiteral("waiting|||seat-3"), 30000);
        ::kill(pid_t(killed->processId()), SIGKILL);
        QVERIFY(killed->waitForFinished());
        QCOMPARE(row(5), QStringLiteral("waiting|||seat-3"));
        SoftCopyWork next(QStringLiteral("seat-4"));
        QVERIFY(!next.claimNext(QDateTime::currentDateTimeUtc()));
        QCOMPARE(next.claimNext(QDateTime::currentDateTimeUtc().addSecs(11 * 60))->indexId, 5);
    }
};

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 4 && args[1] == QLatin1String("--reading-seat"))
        return runReadingSeat(args[2], args[3]);
    TestSoftCopyWork test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_softcopywork.moc"
