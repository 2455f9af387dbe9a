#pragma once

#include "platform/TestHooks.h"

#include <QString>
#include <QTemporaryDir>
#include <QVariant>
#include <functional>
#include <memory>

class Form;

namespace testsupport {

// A program folder of its own for one test: a temporary folder holding Database/Vorlane.mdb
// (created with the first user "admin"/"admin", level Modify), a settings folder, and the
// platform stand-ins in test mode. Nothing of the user's own configuration is touched. When
// the data source "Vorlane" is known (the tests against the server), the database is instead
// the server's, emptied and created anew in the same way, and removeDatabase stops the server
// until the next createDatabase.
class TestEnvironment {
  public:
    explicit TestEnvironment(bool withDatabase = true);
    ~TestEnvironment();

    QString appPath() const;
    QString databasePath() const;
    void createDatabase();
    // The same with a first user of that scrambled name and password.
    void createDatabase(const QString& scrambledUser, const QString& scrambledPassword);
    void removeDatabase();
    // The database out of reach and back again as it was: the file moved aside, or the server
    // stopped and started again.
    void takeDatabaseAway();
    void bringDatabaseBack();

    // Runs statements directly on the data store, for setting up and checking data; on the
    // server they are translated as the program's are.
    void exec(const QString& sql) const;
    QVariant scalar(const QString& sql) const;
    int count(const QString& table) const;

    // Makes each `statement` ("insert", "update" or "delete") on `table` fail with `message`, as
    // a store that refuses to write does; with `column`, only for the rows whose value there is
    // `value`. allow() takes the refusal off `table` again.
    void refuse(const QString& statement, const QString& table, const QString& message,
                const QString& column = QString(), const QString& value = QString()) const;
    void allow(const QString& table) const;

  private:
    QTemporaryDir m_dir;
    bool m_serverStopped = false; // removeDatabase or takeDatabaseAway stopped the server
};

// True when the tests run against the server (the data source "Vorlane" is known), not the
// embedded file.
bool onServer();

// A screen test's case starts with every screen of the test unloaded (a record screen new), the
// reports' data environment closed, on a database of its own (with `withDatabase`), with the first
// user (level Modify) logged in and no message pending; it ends with the screens unloaded and their
// windows gone, then the data environment and the database. The screens of the test are those of
// its drivers (Screen) and those added here.
std::unique_ptr<TestEnvironment> startCase(bool withDatabase = true);
void endCase(std::unique_ptr<TestEnvironment>& env);
void addScreen(Form& form);

// The server's database without any table or extension (its public schema made anew).
void emptyServerDatabase();

// Logs in as a user of the given level without the login screen.
void setSession(qint16 userID, const QString& rights);

// `text` as a quoted literal of a statement, its quotes doubled.
QString literal(QString text);

// The number of the error that `f` raises, 0 when it raises none; its text into `description`.
int errorOf(const std::function<void()>& f, QString* description = nullptr);

// The message boxes shown since the last call, as "style:text" lines.
QStringList messages();
// The same, but a critical message as "16:" alone: its text is the data layer's own, which
// differs between the engines.
QStringList messageKinds();

// The fields of /proc/<pid>/stat after the command: the state letter ("R", "S", "T" for
// stopped, "Z" for ended and not reaped), the parent, the process group and the rest; empty
// when there is no such process.
QList<QByteArray> processStat(long pid);

} // namespace testsupport
