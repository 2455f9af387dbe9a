// The Data Backup screen: the backup as a whole copy that never destroys the last one, the
// compaction that has the store to itself, both while another process saves in a loop, and
// the paths, messages and failures of both steps.
#include "datastore/Ado.h"
#include "maintenance/frmDataBackup.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>
#include <QUuid>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace testsupport;

namespace {

const QString Question = QStringLiteral("68:Are you sure to proceed with Backup ?");
const QString Done = QStringLiteral("64:Backup Successfull.");
const QString Repaired = QStringLiteral("64:Your Database is OK.");
const QString NotOnServer = QStringLiteral(
    "48:Database not found !\r\n\r\nPlease ensure that you are taking Backup from Server system.");
const char* const SaveLoopArgument = "--save-in-a-loop";
// The backup and the compaction are those of the embedded file; a seat on the server is told to
// take them there (aSeatWithoutTheStoreFileIsToldToUseTheServer).
const char* const FileOnly = "The backup and the compaction work on the embedded file.";

QString document(int id, const QString& bookmark) {
    // A document of an office's size: two titles, a path, a bookmark and a page of remarks.
    return QStringLiteral(
               "Insert into Vorlane Values(%1,'05/Mar/2026','06/Mar/2026',1,1,1,1,'Saver %1 lease',"
               "'Second title of %1','/srv/docs/%1.pdf',1,'%2','%3',1)")
        .arg(id)
        .arg(bookmark, QStringLiteral("Remarks on the document, its parties and its dates. ").repeated(40));
}

// The helper process: saves documents through the data layer, each in a transaction of its own,
// as a seat saves them, until a file "stop" appears. Each save carries its own number in the
// bookmark ("Seat 17"), told once the save is committed: a lost save may see its key handed out
// again, but never its number.
int saveInALoop(const QString& programFolder) {
    platform::test::setAppPath(programFolder);
    QTextStream out(stdout);
    const QString stop = QDir(programFolder).filePath(QStringLiteral("stop"));
    for (int number = 1; !QFileInfo::exists(stop); ++number) {
        try {
            auto c = std::make_shared<db::Connection>();
            c->CommandTimeout = 100;
            c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
            c->BeginTrans();
            db::Recordset rs;
            rs.Open(QStringLiteral("Select Max(IndexID) from Vorlane"), c);
            const int id = rs.Fields(0).toInt() + 1;
            rs.Close();
            c->Execute(document(id, QStringLiteral("Seat %1").arg(number)));
            c->CommitTrans();
            out << "saved Seat " << number << Qt::endl;
        } catch (const platform::Error& e) {
            out << "failed " << e.description() << Qt::endl;
        }
    }
    return 0;
}

// Another seat saving in a loop, in a process of its own.
class Saver {
  public:
    explicit Saver(const QString& programFolder) : m_folder(programFolder) {
        m_process.setProgram(QCoreApplication::applicationFilePath());
        m_process.setArguments({QString::fromLatin1(SaveLoopArgument), programFolder});
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start();
    }
    ~Saver() {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
    // The bookmarks of the saves that the saver was told were done, as far as it has said so.
    const QSet<QString>& saved() {
        read();
        return m_saved;
    }
    const QStringList& failures() const { return m_failures; }
    // Waits until `more` saves beyond those known now are told.
    bool waitForMore(int more) {
        const qsizetype wanted = saved().size() + more;
        while (m_saved.size() < wanted) {
            if (!m_process.waitForReadyRead(120000))
                return false;
            read();
        }
        return true;
    }
    bool stop() {
        QFile stop(QDir(m_folder).filePath(QStringLiteral("stop")));
        stop.open(QIODevice::WriteOnly);
        stop.close();
        const bool ended = m_process.waitForFinished(120000) && m_process.exitCode() == 0;
        read();
        return ended;
    }

  private:
    void read() {
        m_process.waitForReadyRead(0);
        while (m_process.canReadLine()) {
            const QString line = QString::fromUtf8(m_process.readLine()).trimmed();
            if (line.startsWith(QLatin1String("saved ")))
                m_saved.insert(line.mid(6));
            else
                m_failures << line;
        }
    }

    QString m_folder;
    QProcess m_process;
    QSet<QString> m_saved;
    QStringList m_failures;
};

// Runs `work` on a connection of the test's own to `file`, outside the data layer.
template <class Work> QString onFile(const QString& file, Work work) {
    const QString name = QUuid::createUuid().toString();
    QString result;
    {
        QSqlDatabase store = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        store.setDatabaseName(file);
        result = store.open() ? work(store) : store.lastError().text();
    }
    QSqlDatabase::removeDatabase(name);
    return result;
}

// "ok" when the file passes the engine's check and its contains-search index is whole and
// agrees with the documents; otherwise what was found.
QString soundness(const QString& file) {
    return onFile(file, [](QSqlDatabase& store) {
        QSqlQuery q(store);
        if (!q.exec(QStringLiteral("PRAGMA integrity_check")) || !q.next())
            return q.lastError().text();
        if (q.value(0).toString() != QLatin1String("ok"))
            return q.value(0).toString();
        if (!q.exec(QStringLiteral("select count(*) from sqlite_master where name in ('VorlaneText', "
                                   "'VorlaneTextInsert', 'VorlaneTextDelete', 'VorlaneTextUpdate')")) ||
            !q.next() || q.value(0).toInt() != 4)
            return QStringLiteral("the index or its triggers are missing");
        if (!q.exec(
                QStringLiteral("insert into VorlaneText(VorlaneText, rank) values('integrity-check', 1)")))
            return q.lastError().text();
        return QStringLiteral("ok");
    });
}

QByteArray contents(const QString& file) {
    QFile f(file);
    f.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

// Root may write anywhere; a folder is then made unwritable through its immutable mark.
bool makeUnwritable(const QString& folder, bool unwritable) {
    QFile::setPermissions(folder, unwritable ? QFile::ReadOwner | QFile::ExeOwner
                                             : QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (::geteuid() != 0)
        return true;
    return QProcess::execute(QStringLiteral("chattr"),
                             {unwritable ? QStringLiteral("+i") : QStringLiteral("-i"), folder}) == 0;
}

} // namespace

class TestDataBackup : public QObject {
    Q_OBJECT
    std::unique_ptr<TestEnvironment> env;
    Screen<frmDataBackup> screen;

    QString folder(const QString& relative) const { return QDir(env->appPath()).filePath(relative); }
    QString backupOf(const QString& relative) const {
        return QDir(folder(relative)).filePath(QStringLiteral("Backup.mdb"));
    }
    void addDocuments(int from, int to) const {
        for (int id = from; id <= to; id += 200) {
            QStringList rows;
            for (int i = id; i <= qMin(to, id + 199); ++i)
                rows << QStringLiteral(
                            "(%1,'2026-03-05','2026-03-06',1,1,1,1,'Saver %1 lease','t2','/p',1,'Shelf %1',"
                            "'%2',1)")
                            .arg(i)
                            .arg(QString(2000, QLatin1Char('r')));
            env->exec(QStringLiteral("insert into Vorlane values ") + rows.join(QLatin1Char(',')));
        }
    }
    void backupTo(const QString& path) {
        screen.ctl<QLineEdit>("txtPath")->setText(path);
        platform::test::answerNext(platform::vbYes);
        screen.press("cmdStartBackup");
    }
    // The bookmarks of the documents that Vorlane reads from `file` through its own data layer,
    // as the database of a program folder of its own, found through the contains-search index.
    QSet<QString> documentsInVorlane(const QString& file) const {
        QTemporaryDir other;
        QDir(other.path()).mkpath(QStringLiteral("Database"));
        QFile::copy(file, QDir(other.path()).filePath(QStringLiteral("Database/Vorlane.mdb")));
        platform::test::setAppPath(other.path());
        QSet<QString> bookmarks;
        try {
            auto c = std::make_shared<db::Connection>();
            c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
            db::Recordset rs;
            rs.Open(QStringLiteral("Select Bookmark from Vorlane where Title1 like '%saver%lease%'"), c);
            for (; !rs.eof(); rs.MoveNext())
                bookmarks.insert(rs.Fields(0).toString());
        } catch (const platform::Error& e) {
            qWarning("%s", qPrintable(e.description()));
        }
        platform::test::setAppPath(env->appPath());
        return bookmarks;
    }

  private slots:
    void init() {
        env = startCase();
        screen->Show();
        platform::test::takeFolderBrowses();
    }
    void cleanup() { endCase(env); }

    // The path proposed is the database's own backup folder; Browse takes the chosen folder, a
    // cancel empties the path; Close closes.
    void browseTakesTheChosenFolderOrEmptiesThePathOnCancel() {
        QCOMPARE(screen.text("txtPath"), folder("Database/Backup"));
        platform::test::nextFolder(folder("Database/Backup/"));
        screen.press("cmdBrowse");
        QCOMPARE(platform::test::takeFolderBrowses(),
                 QStringList{folder("Backup") + QStringLiteral("|Select folder to Backup your database.")});
        QCOMPARE(screen.text("txtPath"), folder("Database/Backup"));
        platform::test::nextFolder(QStringLiteral("/")); // the root keeps its separator
        screen.press("cmdBrowse");
        QCOMPARE(screen.text("txtPath"), QStringLiteral("/"));
        platform::test::nextFolder(QString());
        screen.press("cmdBrowse");
        QCOMPARE(screen.text("txtPath"), QString());
        screen.press("cmdStartBackup"); // an empty path: nothing, not even the question
        QVERIFY(messages().isEmpty());
        screen.press("cmd");
        QVERIFY(!screen->isLoaded());
    }

    void aBackupIsAWholeCopyThatReplacesTheLastWithoutAsking() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 50);
        screen.press("cmdStartBackup"); // answered No
        QCOMPARE(messages(), QStringList{Question});
        QVERIFY(!QFile::exists(backupOf("Database/Backup")));

        backupTo(folder("Database/Backup") + QLatin1Char('/'));
        QCOMPARE(messages(), (QStringList{Question, Done}));
        QCOMPARE(screen.text("txtPath"), folder("Database/Backup"));
        QCOMPARE(soundness(backupOf("Database/Backup")), QStringLiteral("ok"));
        QCOMPARE(documentsInVorlane(backupOf("Database/Backup")).size(), 50);

        addDocuments(51, 60);
        backupTo(folder("Database/Backup"));
        QCOMPARE(messages(), (QStringList{Question, Done}));
        QCOMPARE(documentsInVorlane(backupOf("Database/Backup")).size(), 60);
        QCOMPARE(QDir(folder("Database/Backup")).entryList(QDir::Files), QStringList{"Backup.mdb"});

        // Into the database's own folder: the store stays as it was.
        const QByteArray store = contents(env->databasePath());
        backupTo(folder("Database"));
        QCOMPARE(messages(), (QStringList{Question, Done}));
        QCOMPARE(contents(env->databasePath()), store);
        QCOMPARE(QDir(folder("Database")).entryList(QDir::Files), (QStringList{"Backup.mdb", "Vorlane.mdb"}));
    }

    void aFailedBackupSaysWhyAndLeavesTheLastOneWhole() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 20);
        backupTo(folder("Database/Backup"));
        messages();
        const QByteArray last = contents(backupOf("Database/Backup"));
        addDocuments(21, 400);

        backupTo(folder("Missing"));
        QCOMPARE(messages(), (QStringList{Question, "16:Path not found: " + folder("Missing")}));

        // A folder that cannot be written.
        QVERIFY(makeUnwritable(folder("Database/Backup"), true));
        backupTo(folder("Database/Backup"));
        makeUnwritable(folder("Database/Backup"), false);
        QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY2(shown[1].startsWith("16:Cannot write in " + folder("Database/Backup")),
                 qPrintable(shown[1]));
        QCOMPARE(screen.text("txtPath"), folder("Database/Backup"));

        // A disk that fills up while the copy is written.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit previous{};
        getrlimit(RLIMIT_FSIZE, &previous);
        rlimit small = previous;
        small.rlim_cur = 256 * 1024;
        setrlimit(RLIMIT_FSIZE, &small);
        backupTo(folder("Database/Backup"));
        setrlimit(RLIMIT_FSIZE, &previous);
        QCOMPARE(messageKinds(), (QStringList{Question, "16:"}));

        QCOMPARE(contents(backupOf("Database/Backup")), last);
        QCOMPARE(QDir(folder("Database/Backup")).entryList(QDir::Files), QStringList{"Backup.mdb"});
        QCOMPARE(soundness(env->databasePath()), QStringLiteral("ok"));
    }

    // Only the machine whose program folder holds the store may back it up or compact it; a
    // seat that reaches the store through a data source of its own is told so, after the
    // question, and nothing is touched. On the embedded store, a data source that reaches nothing
    // stands for the server, and the file beside it is left as it is.
    void aSeatWithoutTheStoreFileIsToldToUseTheServer() {
        const QByteArray previous = qgetenv("ODBCINI");
        if (!onServer()) {
            const QString odbcIni = folder("odbc.ini");
            QFile config(odbcIni);
            QVERIFY(config.open(QIODevice::WriteOnly));
            config.write("[Vorlane]\nDriver=/nonexistent/libnodriver.so\nDatabase=/elsewhere.db\n");
            config.close();
            qputenv("ODBCINI", odbcIni.toLocal8Bit());
            QFile::setPermissions(env->databasePath(), QFile::ReadOwner);
        }
        backupTo(folder("Database/Backup"));
        screen.press("cmdRepair");
        qputenv("ODBCINI", previous);
        QCOMPARE(messages(), (QStringList{Question, NotOnServer, NotOnServer}));
        QVERIFY(!QFile::exists(env->databasePath()) ||
                !(QFile::permissions(env->databasePath()) & QFile::WriteOwner));

        env->removeDatabase();
        backupTo(folder("Database/Backup"));
        QCOMPARE(screen.pressed("cmdRepair"), (QStringList{Question, NotOnServer, NotOnServer}));
        QVERIFY(QDir(folder("Database/Backup")).isEmpty());
        QVERIFY(!QFile::exists(folder("Database/Temp.mdb")));
    }

    void theRepairCompactsTheStoreInPlace() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 400);
        env->exec("delete from Vorlane where IndexID > 100");
        const qint64 before = QFileInfo(env->databasePath()).size();
        // A stale work file of a broken run, and a store marked read-only.
        QFile stale(folder("Database/Temp.mdb"));
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.write("left over");
        stale.close();
        QVERIFY(QFile::setPermissions(env->databasePath(), QFile::ReadOwner | QFile::ReadGroup));

        QCOMPARE(screen.pressed("cmdRepair"), QStringList{Repaired});
        QVERIFY(QFileInfo(env->databasePath()).size() < before);
        QVERIFY(QFile::permissions(env->databasePath()) & QFile::WriteOwner);
        QCOMPARE(QDir(folder("Database")).entryList(QDir::Files), QStringList{"Vorlane.mdb"});
        QCOMPARE(soundness(env->databasePath()), QStringLiteral("ok"));
        QCOMPARE(documentsInVorlane(env->databasePath()).size(), 100);
        QVERIFY(!GenMod::Conn);
        screen.press("cmdRepair"); // again, the same
        QCOMPARE(messages(), QStringList{Repaired});
        QCOMPARE(env->count("Logins"), 1);
    }

    // Another seat in the middle of a save holds the store: the repair waits a moment, then
    // fails with the engine's words, and the store is as it was; the seat's save goes through.
    void theRepairFailsWhileAnotherSeatHoldsTheStore() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 50);
        env->exec("delete from Vorlane where IndexID > 10");
        auto seat = std::make_shared<db::Connection>();
        seat->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
        seat->BeginTrans();
        seat->Execute(document(11, QStringLiteral("Seat 1")));
        const QByteArray store = contents(env->databasePath());
        QCOMPARE(screen.pressed("cmdRepair"), QStringList{"16:database is locked"});
        QCOMPARE(contents(env->databasePath()), store);
        QVERIFY(!QFile::exists(folder("Database/Temp.mdb")));
        seat->CommitTrans();
        seat.reset();
        QCOMPARE(documentsInVorlane(env->databasePath()).size(), 11);
    }

    // Backups taken while another process saves documents in a loop: each is a sound database
    // that Vorlane opens, with every document whose save was told before the backup began.
    void backupsWhileAnotherProcessSaves() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 3000);
        Saver saver(env->appPath());
        QVERIFY(saver.waitForMore(1));
        constexpr int Backups = 20;
        for (int i = 0; i < Backups; ++i) {
            const QSet<QString> before = saver.saved();
            backupTo(folder("Database/Backup"));
            QCOMPARE(messages(), (QStringList{Question, Done}));
            QCOMPARE(soundness(backupOf("Database/Backup")), QStringLiteral("ok"));
            QVERIFY(documentsInVorlane(backupOf("Database/Backup")).contains(before));
            QVERIFY(saver.waitForMore(3));
        }
        QVERIFY(saver.stop());
        QCOMPARE(saver.failures(), QStringList());
        qInfo("%d backups, all sound, while the other process saved %lld documents", Backups,
              qint64(saver.saved().size()));
        QVERIFY(documentsInVorlane(env->databasePath()).contains(saver.saved()));
    }

    // Compactions while another process saves documents in a loop: every document whose save
    // was told is in the store afterwards, and the store is sound.
    void compactionsWhileAnotherProcessSaves() {
        if (onServer())
            QSKIP(FileOnly);
        addDocuments(1, 3000);
        env->exec("delete from Vorlane where IndexID % 2 = 0");
        Saver saver(env->appPath());
        QVERIFY(saver.waitForMore(1));
        constexpr int Compactions = 20;
        for (int i = 0; i < Compactions; ++i) {
            QCOMPARE(screen.pressed("cmdRepair"), QStringList{Repaired});
            QVERIFY(saver.waitForMore(1));
        }
        QVERIFY(saver.stop());
        QCOMPARE(saver.failures(), QStringList());
        QCOMPARE(soundness(env->databasePath()), QStringLiteral("ok"));
        const QSet<QString> kept = documentsInVorlane(env->databasePath());
        QVERIFY(kept.contains(saver.saved()));
        QCOMPARE(kept.size(), 1500 + saver.saved().size());
        QVERIFY(!QFile::exists(folder("Database/Temp.mdb")));
        qInfo("%d compactions while the other process saved %lld documents, all of them kept", Compactions,
              qint64(saver.saved().size()));
    }
};

int main(int argc, char* argv[]) {
    if (argc == 3 && qstrcmp(argv[1], SaveLoopArgument) == 0) {
        QCoreApplication app(argc, argv);
        return saveInALoop(QString::fromLocal8Bit(argv[2]));
    }
    QApplication app(argc, argv);
    TestDataBackup test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_databackup.moc"
