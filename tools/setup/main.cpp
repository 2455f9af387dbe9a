// Creates the delivered database: the schema, the first user (UserID 1, level Modify) and the
// backup folder beside it; or, with --data-source, the same schema and first user in the
// database of a data source on a PostgreSQL server.
#include "datastore/Schema.h"
#include "platform/Error.h"
#include "session/GenMod.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTextStream>

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
    parser.addOptions({database, user, password, ifMissing, dataSource});
    parser.process(app);

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
