#include "TestSupport.h"

#include "datastore/Ado.h"
#include "datastore/OdbcSource.h"
#include "datastore/QtSqlEngine.h"
#include "datastore/Schema.h"
#include "datastore/postgres/PostgresDialect.h"
#include "platform/Error.h"
#include "reports/VorlaneDE.h"
#include "session/EditCycle.h"
#include "session/GenMod.h"
#include "session/Session.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QUuid>
#include <QtTest>

namespace testsupport {

bool onServer() {
    static const bool server = db::odbcKnows(GenMod::DataSourceName);
    return server;
}

namespace {

// A statement of a test, written for the embedded file, as the test's data store runs it.
QString forStore(const QString& sql) {
    return onServer() ? db::PostgresDialect().translate(sql) : sql;
}

// Runs `f` on a connection of its own to the test's data store.
template <class F> auto withDb(const QString& path, F f) {
    const QString name = QStringLiteral("testsupport-") + QUuid::createUuid().toString();
    decltype(f(std::declval<QSqlDatabase&>())) result{};
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(onServer() ? QStringLiteral("QODBC") : QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(onServer() ? GenMod::DataSourceName : path);
        if (!db.open())
            qFatal("cannot open test database: %s", qPrintable(db.lastError().text()));
        result = f(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return result;
}

// Runs statements as they stand, in the engine's own words.
void execAsWritten(const QStringList& statements) {
    withDb(db::databaseFile(), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        for (const QString& sql : statements)
            if (!q.exec(sql))
                qFatal("test statement failed: %s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return 0;
    });
}

// Stops ("pause") or starts again ("resume") the tests' server (support/pgserver.sh), whose
// odbc.ini the tests use.
void serverControl(const char* command) {
    const QString state = QFileInfo(qEnvironmentVariable("ODBCINI")).absolutePath();
    const int rc = QProcess::execute(
        QStringLiteral("sh"), {QStringLiteral(VORLANE_PGSERVER_SCRIPT), QLatin1String(command), state});
    if (rc != 0)
        qFatal("pgserver.sh %s failed", command);
}

} // namespace

void emptyServerDatabase() {
    // Connections kept from the last test know the tables that are about to be made anew.
    db::idle::clear();
    withDb(QString(), [](QSqlDatabase& db) {
        QSqlQuery q(db);
        for (const char* sql : {"DROP SCHEMA public CASCADE", "CREATE SCHEMA public"})
            if (!q.exec(QLatin1String(sql)))
                qFatal("cannot empty the server's database: %s", qPrintable(q.lastError().text()));
        return 0;
    });
}

TestEnvironment::TestEnvironment(bool withDatabase) {
    QStandardPaths::setTestModeEnabled(true);
    platform::test::enable();
    platform::test::setAppPath(m_dir.path());
    platform::test::setSettingsFolder(QDir(m_dir.path()).filePath(QStringLiteral("settings")));
    platform::test::takeMessages();
    platform::test::takeStartedCommands();
    QDir(m_dir.path()).mkpath(QStringLiteral("Database/Backup"));
    if (withDatabase)
        createDatabase();
}

TestEnvironment::~TestEnvironment() {
    GenMod::Conn.reset();
    if (m_serverStopped)
        serverControl("resume");
    platform::test::setAppPath(QString());
}

QString TestEnvironment::appPath() const {
    return m_dir.path();
}
QString TestEnvironment::databasePath() const {
    return db::databaseFile();
}

void TestEnvironment::createDatabase() {
    createDatabase(GenMod::ScrambleText(QStringLiteral("admin")),
                   GenMod::ScrambleText(QStringLiteral("admin")));
}

void TestEnvironment::createDatabase(const QString& user, const QString& password) {
    if (!onServer()) {
        db::createDatabase(databasePath(), user, password);
        return;
    }
    bringDatabaseBack();
    emptyServerDatabase();
    db::createServerDatabase(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword, user,
                             password);
}

void TestEnvironment::removeDatabase() {
    // The server's counterpart of a missing file: the server stops, until createDatabase.
    if (onServer())
        takeDatabaseAway();
    else
        QFile::remove(databasePath());
}

void TestEnvironment::takeDatabaseAway() {
    if (!onServer() && !QFile::rename(databasePath(), databasePath() + QStringLiteral(".away")))
        qFatal("cannot move the database file away");
    if (onServer() && !m_serverStopped)
        serverControl("pause");
    m_serverStopped = onServer();
}

void TestEnvironment::bringDatabaseBack() {
    if (!onServer() && !QFile::rename(databasePath() + QStringLiteral(".away"), databasePath()))
        qFatal("cannot move the database file back");
    if (m_serverStopped)
        serverControl("resume");
    m_serverStopped = false;
}

void TestEnvironment::exec(const QString& sql) const {
    withDb(databasePath(), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (!q.exec(forStore(sql)))
            qFatal("test statement failed: %s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return 0;
    });
}

QVariant TestEnvironment::scalar(const QString& sql) const {
    return withDb(databasePath(), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (!q.exec(forStore(sql)))
            qFatal("test query failed: %s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q.next() ? q.value(0) : QVariant();
    });
}

int TestEnvironment::count(const QString& table) const {
    return scalar(QStringLiteral("select count(*) from \"%1\"").arg(table)).toInt();
}

void TestEnvironment::refuse(const QString& statement, const QString& table, const QString& message,
                             const QString& column, const QString& value) const {
    const QString trigger = db::Dialect::quotedName(QStringLiteral("refuse_") + table);
    QString when;
    if (!column.isEmpty())
        when = QStringLiteral("%1.%2 = %3")
                   .arg(statement.compare(QLatin1String("delete"), Qt::CaseInsensitive) == 0
                            ? QStringLiteral("OLD")
                            : QStringLiteral("NEW"),
                        db::Dialect::quotedName(column), literal(value));
    const QString head = QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3")
                             .arg(trigger, statement.toUpper(), db::Dialect::quotedName(table));
    if (!onServer()) {
        execAsWritten({head + (when.isEmpty() ? QString() : QStringLiteral(" WHEN ") + when) +
                       QStringLiteral(" BEGIN SELECT RAISE(ABORT, %1); END").arg(literal(message))});
        return;
    }
    execAsWritten({QStringLiteral("CREATE OR REPLACE FUNCTION refuse_statement() RETURNS trigger LANGUAGE "
                                  "plpgsql AS $$BEGIN RAISE EXCEPTION '%', TG_ARGV[0]; END$$"),
                   head + QStringLiteral(" FOR EACH ROW") +
                       (when.isEmpty() ? QString() : QStringLiteral(" WHEN (%1)").arg(when)) +
                       QStringLiteral(" EXECUTE FUNCTION refuse_statement(%1)").arg(literal(message))});
}

void TestEnvironment::allow(const QString& table) const {
    const QString trigger = db::Dialect::quotedName(QStringLiteral("refuse_") + table);
    execAsWritten(
        {onServer()
             ? QStringLiteral("DROP TRIGGER IF EXISTS %1 ON %2").arg(trigger, db::Dialect::quotedName(table))
             : QStringLiteral("DROP TRIGGER IF EXISTS %1").arg(trigger)});
}

namespace {
QList<Form*>& screens() {
    static QList<Form*> all;
    return all;
}
void unloadScreens() {
    for (Form* form : screens())
        form->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
} // namespace

void addScreen(Form& form) {
    if (!screens().contains(&form))
        screens() << &form;
}

std::unique_ptr<TestEnvironment> startCase(bool withDatabase) {
    unloadScreens();
    for (Form* form : screens())
        if (auto* record = qobject_cast<RecordForm*>(form)) {
            record->EditMode = false;
            record->CurrentRowID = 0;
        }
    reports::VorlaneDE::instance().reset();
    auto env = std::make_unique<TestEnvironment>(withDatabase);
    setSession(1, QStringLiteral("Modify"));
    messages();
    return env;
}

void endCase(std::unique_ptr<TestEnvironment>& env) {
    unloadScreens();
    reports::VorlaneDE::instance().reset();
    env.reset();
}

void setSession(qint16 userID, const QString& rights) {
    Session::CurrentUserID = userID;
    Session::UserRights = rights;
}

QString literal(QString text) {
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QStringLiteral("''")) + QLatin1Char('\'');
}

int errorOf(const std::function<void()>& f, QString* description) {
    try {
        f();
    } catch (const platform::Error& e) {
        if (description)
            *description = e.description();
        return e.number();
    }
    return 0;
}

QStringList messages() {
    QStringList out;
    for (const auto& m : platform::test::takeMessages())
        out << QString::number(m.style) + QLatin1Char(':') + m.text;
    return out;
}

QStringList messageKinds() {
    QStringList out = messages();
    for (QString& m : out)
        if (m.startsWith(QLatin1String("16:")))
            m = QStringLiteral("16:");
    return out;
}

QList<QByteArray> processStat(long pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // The fields follow the command in brackets, which may hold spaces.
    const QByteArray stat = file.readAll();
    return stat.mid(stat.lastIndexOf(')') + 1).trimmed().split(' ');
}

} // namespace testsupport
