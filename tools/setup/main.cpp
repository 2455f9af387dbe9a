// Creates the delivered database: the schema, the first user (UserID 1, level Modify) and the
// backup folder beside it; or, with --data-source, the same schema and first user in the
// database of a data source on a PostgreSQL server. With --read-soft-copies, it reads the texts
// of the waiting soft copies of the program's database instead, without a window.
#include "datastore/Schema.h"
#include "index/SoftCopyWork.h"
#include "platform/Error.h"
#include "session/GenMod.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSysInfo>
#include <QTextStream>
#include <csignal>
#include <unistd.h>

namespace {

SoftCopyWork* running = nullptr;

void interrupted(int /*signal*/) {
    if (running)
        running->interrupt();
}

// Reads every waiting soft copy of the database that Vorlane in this folder uses (the data source
// "Vorlane" where the machine knows one, else Database/Vorlane.mdb), after looking for files
// changed since their reading, with a progress bar on a terminal. Ctrl+C stops after giving the
// document under way back.
int readWaitingSoftCopies() {
    QTextStream err(stderr);
    SoftCopyWork work(
        QStringLiteral("%1:%2 (VorlaneSetup)")
            .arg(QSysInfo::machineHostName(), QString::number(QCoreApplication::applicationPid())));
    const bool terminal = isatty(STDERR_FILENO) != 0;
    const QLocale locale;
    QObject::connect(&work, &SoftCopyWork::progress, [&](qint64 done, qint64 total) {
        const int width = 30;
        const int filled = total > 0 ? int(width * done / total) : width;
        const QString line =
            QStringLiteral("[%1%2] %3 of %4")
                .arg(QString(filled, QLatin1Char('#')), QString(width - filled, QLatin1Char(' ')),
                     locale.toString(done), locale.toString(total));
        // A log file gets a line every hundred documents and the last.
        if (terminal)
            err << "\r" << line << Qt::flush;
        else if (done % 100 == 0 || done == total)
            err << line << "\n" << Qt::flush;
    });
    running = &work;
    std::signal(SIGINT, interrupted);
    std::signal(SIGTERM, interrupted);
    try {
        const qint64 changed = work.sweepAll();
        if (changed > 0)
            err << locale.toString(changed) << " changed files wait to be read again.\n";
        const qint64 read = work.readWaiting();
        err << (terminal ? "\n" : "") << "Read " << locale.toString(read) << " soft copies"
            << (work.isStopped() ? "; stopped before the end.\n" : ".\n");
        running = nullptr;
        return work.isStopped() ? 3 : 0;
    } catch (const platform::Error& e) {
        running = nullptr;
        err << "\nVorlaneSetup: the soft copies cannot be read: " << e.description() << "\n";
        return 1;
    }
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("VorlaneSetup"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Creates a new Vorlane database with its first user, who may save and modify."));
    parser.addHelpOption();
    const QCommandLineOption database(
        QStringLiteral("database"),
        QStringLiteral("The database file to create (default: Database/Vorlane.mdb "
                       "beside this program)."),
        QStringLiteral("path"),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("Database/Vorlane.mdb")));
    const QCommandLineOption user(QStringLiteral("user"),
                                  QStringLiteral("Name of the first user (default: admin)."),
                                  QStringLiteral("name"), QStringLiteral("admin"));
    const QCommandLineOption password(QStringLiteral("password"),
                                      QStringLiteral("Password of the first user (default: admin)."),
                                      QStringLiteral("password"), QStringLiteral("admin"));
    const QCommandLineOption ifMissing(QStringLiteral("if-missing"),
                                       QStringLiteral("Do nothing, successfully, when the database exists."));
    const QCommandLineOption dataSource(
        QStringLiteral("data-source"),
        QStringLiteral("Create the tables in the database of this ODBC data source on a PostgreSQL "
                       "server instead of a file, with the login that its odbc.ini entry names."),
        QStringLiteral("name"));
    const QCommandLineOption readSoftCopies(
        QStringLiteral("read-soft-copies"),
        QStringLiteral("Read the texts of the waiting soft copies of the database that Vorlane in this "
                       "folder uses, and of the files changed since their reading, then end. Exit code 0 "
                       "when every waiting document was looked at, 3 when stopped, 1 on a database error."));
    parser.addOptions({database, user, password, ifMissing, dataSource, readSoftCopies});
    parser.process(app);
    if (parser.isSet(readSoftCopies))
        return readWaitingSoftCopies();

    QTextStream out(stdout);
    QTextStream err(stderr);
    const QString path = QFileInfo(parser.value(database)).absoluteFilePath();
    const QString userName = parser.value(user).trimmed();
    const QString userPassword = parser.value(password).trimmed();

    if (parser.isSet(dataSource)) {
        const QString name = parser.value(dataSource);
        if (userName.isEmpty() || userPassword.isEmpty()) {
            err << "VorlaneSetup: the user name and the password must not be empty.\n";
            return 2;
        }
        try {
            db::createServerDatabase(name, GenMod::DataSourceUser, GenMod::DataSourcePassword,
                                     GenMod::ScrambleText(userName), GenMod::ScrambleText(userPassword));
        } catch (const platform::Error& e) {
            err << "VorlaneSetup: cannot create the tables of " << name << ": " << e.description() << "\n";
            return 1;
        }
        out << "Created the tables of " << name << " with the user \"" << userName << "\" (level Modify).\n";
        return 0;
    }

    if (QFileInfo::exists(path)) {
        if (parser.isSet(ifMissing))
            return 0;
        err << "VorlaneSetup: " << path << " already exists; it is left as it is.\n";
        return 1;
    }
    if (userName.isEmpty() || userPassword.isEmpty()) {
        err << "VorlaneSetup: the user name and the password must not be empty.\n";
        return 2;
    }

    try {
        db::createDatabase(path, GenMod::ScrambleText(userName), GenMod::ScrambleText(userPassword));
    } catch (const platform::Error& e) {
        err << "VorlaneSetup: cannot create " << path << ": " << e.description() << "\n";
        return 1;
    }
    const QString backup = QDir(QFileInfo(path).absolutePath()).filePath(QStringLiteral("Backup"));
    const bool backupMade = QDir().mkpath(backup);

    out << "Created " << path << " with the user \"" << userName << "\" (level Modify).\n";
    if (backupMade)
        out << "Backup folder: " << backup << "\n";
    else
        err << "VorlaneSetup: could not create the backup folder " << backup << "\n";
    return backupMade ? 0 : 1;
}
