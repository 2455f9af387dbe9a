// Moving the soft copies to another folder through the screen: counts, move and move back with the
// texts kept, look-alike and quoted paths, refusals, the transaction, the first user's limit.
#include "maintenance/frmMoveSoftCopies.h"
#include "maintenance/frmSettings.h"
#include "platform/MsgBox.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

using testsupport::literal;

namespace {

// One administrator in a process of their own: on the database of the program folder `appPath`,
// waits until the file `go` exists, then moves `from` to `to` through the screen and prints what
// it was told.
int runMovingSeat(const QString& appPath, const QString& go, const QString& from, const QString& to) {
    testsupport::TestEnvironment env(false);
    platform::test::setAppPath(appPath);
    testsupport::setSession(1, QStringLiteral("Modify"));
    testsupport::Screen<frmMoveSoftCopies> screen;
    screen->Show();
    screen.type("txtOldFolder", from);
    screen.type("txtNewFolder", to);
    std::printf("ready\n");
    std::fflush(stdout);
    while (!QFileInfo::exists(go))
        QThread::msleep(1);
    platform::test::answerNext(platform::vbYes);
    std::printf("%s\n", qPrintable(screen.pressed("cmdMove").join(QLatin1Char('|'))));
    return 0;
}

} // namespace

class TestMoveSoftCopies : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    std::unique_ptr<QTemporaryDir> files;
    testsupport::Screen<frmMoveSoftCopies> screen;
    testsupport::Screen<frmSettings> settings;
    QString scans, moved; // the old folder (gone) and the new one

    // A document; with `readFrom`, its soft copy read from there.
    void document(int id, const QString& path, const QString& readFrom = {}, const QString& text = {}) {
        const QString key = QString::number(id);
        env->exec("insert into Vorlane (IndexID, DocDate, FilePath) values(" + key + ",'2021-07-01'," +
                  literal(path) + ")");
        if (!readFrom.isEmpty())
            env->exec(QStringLiteral("update SoftCopy set ReadState=") +
                      (text.isEmpty() ? "'waiting'" : "'read'") + ", ReadPath=" + literal(readFrom) +
                      ", SoftText=" + literal(text) + " where IndexID=" + key);
    }
    // Every document's path, then its soft copy's state, read path and text, by key.
    QString state() const {
        QString out;
        for (const char* id : {"1", "2", "3", "4", "5"})
            out += env->scalar(QStringLiteral("select V.FilePath||S.ReadState||coalesce(S.ReadPath,'')||"
                                              "coalesce(S.SoftText,'') from Vorlane V, SoftCopy S where "
                                              "S.IndexID=V.IndexID and V.IndexID=") +
                               QLatin1String(id))
                       .toString() +
                   QLatin1Char('\n');
        return out;
    }
    QStringList move(const QString& from, const QString& to) {
        screen.type("txtOldFolder", from);
        screen.type("txtNewFolder", to);
        platform::test::answerNext(platform::vbYes);
        return screen.pressed("cmdMove");
    }

  private slots:
    void init() {
        env = testsupport::startCase();
        files = std::make_unique<QTemporaryDir>();
        scans = files->filePath(QStringLiteral("scans"));
        moved = files->filePath(QStringLiteral("new"));
        QVERIFY(QDir(files->path()).mkpath(QStringLiteral("new/sub")));
        QFile(moved + QStringLiteral("/sub/O'Brien.pdf")).open(QIODevice::WriteOnly);
        // Read: the first two, and the fifth from the path it had before.
        document(1, scans + QStringLiteral("/a.pdf"), scans + QStringLiteral("/a.pdf"),
                 QStringLiteral("letter"));
        const QString quote = scans + QStringLiteral("/sub/O'Brien.pdf");
        document(2, quote, quote, QStringLiteral("Dear Mr O'Brien"));
        document(3, scans + QStringLiteral("2/b.pdf"));
        document(4, files->filePath(QStringLiteral("SCANS/c.pdf")));
        document(5, scans + QStringLiteral("/d.pdf"), files->filePath(QStringLiteral("elsewhere/d.pdf")));
        screen->Show();
    }
    void cleanup() { testsupport::endCase(env); }

    // Only the paths under the old folder as written count and move (not scans2, not SCANS);
    // the folder may end with a separator. The texts stay, their read paths move along, and the
    // move back restores every row as it was.
    void countMoveAndMoveBack() {
        const QString before = state();
        screen.type("txtOldFolder", scans + QLatin1Char('/'));
        screen.type("txtNewFolder", moved);
        QCOMPARE(screen.pressed("cmdCount"), QStringList());
        QCOMPARE(screen.ctl<QLabel>("lblCounts")->text(),
                 QStringLiteral(
                     "3 document/s under the old folder.\n1 of their files found under the new folder."));

        QCOMPARE(move(scans + QLatin1Char('/'), moved).value(1),
                 QStringLiteral("64:Moved 3 document/s to the new folder."));
        QCOMPARE(state(), QString(before).replace(scans + QLatin1Char('/'), moved + QLatin1Char('/')));
        // Nothing is left to move: a second administrator's move finds none.
        QCOMPARE(move(scans, moved).value(1), QStringLiteral("64:Moved 0 document/s to the new folder."));

        QVERIFY(QDir(files->path()).mkdir(QStringLiteral("scans")));
        QCOMPARE(move(moved, scans).value(1), QStringLiteral("64:Moved 3 document/s to the new folder."));
        QCOMPARE(state(), before);
    }

    // Empty, equal and missing folders are refused, and a No answer, before anything is written;
    // a refused write leaves every row as it was.
    void refusalsAndTheTransaction() {
        const QString before = state();
        QCOMPARE(move(QString(), moved), QStringList({"48:Please enter the old folder."}));
        QCOMPARE(move(scans, QStringLiteral("  ")), QStringList({"48:Please enter the new folder."}));
        QCOMPARE(move(moved + QLatin1Char('/'), moved),
                 QStringList({"48:The old folder and the new folder are the same."}));
        QCOMPARE(move(scans, scans + QStringLiteral("2")),
                 QStringList({"48:The new folder " + scans + "2 does not exist. Nothing was moved."}));
        screen.type("txtNewFolder", moved);
        platform::test::answerNext(platform::vbNo);
        QCOMPARE(screen.pressed("cmdMove").size(), 1);
        QCOMPARE(state(), before);

        env->refuse("update", "SoftCopy", "disk full", "ReadPath",
                    moved + QStringLiteral("/sub/O'Brien.pdf"));
        QCOMPARE(move(scans, moved).value(1), QStringLiteral("16:disk full"));
        env->allow("SoftCopy");
        QCOMPARE(state(), before); // every soft copy row back under its own key
    }

    // Two administrators, each in a process of their own, press Move at once: every path moves
    // once, and the counts of the two add up to the documents under the old folder.
    void twoAdministratorsAtOnce() {
        screen->Unload();
        for (int id = 6; id < 1006; ++id)
            document(id, scans + QStringLiteral("/bulk/%1.pdf").arg(id));
        const QString go = files->filePath(QStringLiteral("go"));
        QList<QProcess*> seats;
        for (int i = 0; i < 2; ++i) {
            auto* seat = new QProcess(this);
            seat->start(QCoreApplication::applicationFilePath(),
                        {QStringLiteral("--moving-seat"), env->appPath(), go, scans, moved});
            QVERIFY(seat->waitForReadyRead(60000));
            QCOMPARE(seat->readLine(), QByteArray("ready\n"));
            seats << seat;
        }
        QFile(go).open(QIODevice::WriteOnly);
        int total = 0;
        for (QProcess* seat : seats) {
            QVERIFY(seat->waitForFinished(120000));
            // The question, then the outcome.
            const QString said =
                QString::fromUtf8(seat->readAllStandardOutput()).trimmed().section(QLatin1Char('|'), -1);
            QVERIFY2(said.startsWith(QLatin1String("64:Moved ")), qPrintable(said));
            total += said.section(QLatin1Char(' '), 1, 1).toInt();
        }
        QCOMPARE(total, 1003);
        QCOMPARE(env->scalar("select count(*) from Vorlane where FilePath like '" + moved + "/%'").toInt(),
                 1003);
    }

    // Settings opens the screen for the first user alone, whatever the rights.
    void firstUserOnly() {
        settings->Show();
        QVERIFY(settings.ctl("cmdMoveSoftCopies")->isEnabled());
        screen->Unload();
        settings.press("cmdMoveSoftCopies");
        QVERIFY(screen->isLoaded());
        settings->Unload();
        testsupport::setSession(2, QStringLiteral("Modify"));
        settings->Show();
        QVERIFY(!settings.ctl("cmdMoveSoftCopies")->isEnabled());
    }
};

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 6 && args[1] == QLatin1String("--moving-seat"))
        return runMovingSeat(args[2], args[3], args[4], args[5]);
    TestMoveSoftCopies test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_movesoftcopies.moc"
