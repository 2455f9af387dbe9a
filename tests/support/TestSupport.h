#pragma once

#include "platform/TestHooks.h"

#include <QString>
#include <QTemporaryDir>
#include <QVariant>

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
    // On the server, starts it again after removeDatabase, with what it held.
    void restoreDatabase();

    // Runs statements directly on the data store, for setting up and checking data; on the
    // server they are translated as the program's are.
    void exec(const QString& sql) const;
    QVariant scalar(const QString& sql) const;
    int count(const QString& table) const;

  private:
    QTemporaryDir m_dir;
    bool m_serverStopped = false; // removeDatabase stopped the server
};

// True when the tests run against the server (the data source "Vorlane" is known), not the
// embedded file.
bool onServer();

// Logs in as a user of the given level without the login screen.
void setSession(qint16 userID, const QString& rights);

// The message boxes shown since the last call, as "style:text" lines.
QStringList messages();

} // namespace testsupport
