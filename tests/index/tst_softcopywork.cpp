// The soft copies read in the background: claims shared by seats, what is stored, and a path that
// only another seat may reach.
#include "index/SoftCopyWork.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class TestSoftCopyWork : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    QTemporaryDir files;
    const QDateTime now = QDateTime(QDate(2026, 11, 24), QTime(9, 0), Qt::UTC);

    QString file(const char* name, const QByteArray& text) {
        QFile f(files.filePath(QString::fromLatin1(name)));
        f.open(QIODevice::WriteOnly);
        f.write(text);
        return f.fileName();
    }
    void document(int id, const char* date, const QString& path) {
        env->exec(QStringLiteral("insert into Vorlane values(%1,'%2',null,1,1,1,1,'t','','%3',1,'','',1)")
                      .arg(QString::number(id), QString::fromLatin1(date), path));
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
        document(1, "2024-01-10", file("old.txt", "Old lease"));
        document(2, "2026-03-05", file("new.txt", "New invoice"));
        document(3, "2025-06-01", files.filePath(QStringLiteral("gone.txt")));
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

    // In the background: every document read in a worker thread, until none waits.
    void readsInTheBackgroundUntilNoneWaits() {
        SoftCopyWork work(QStringLiteral("seat-1"));
        work.reader().setHelper(QStringLiteral(VORLANE_READER));
        QSignalSpy idle(&work, &SoftCopyWork::idle);
        work.start();
        QVERIFY(idle.wait(60000));
        QCOMPARE(row(1), QStringLiteral("read||Old lease|"));
        QCOMPARE(row(2), QStringLiteral("read||New invoice|"));
        QCOMPARE(row(3).section(QLatin1Char('|'), 0, 0), QStringLiteral("missing"));
    }
};

QTEST_MAIN(TestSoftCopyWork)
#include "tst_softcopywork.moc"
