#include "datastore/OdbcSource.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

// The data source "Vorlane" on the tests' own PostgreSQL server (support/pgserver.sh).
class ServerTest : public QObject {
    Q_OBJECT
  private slots:
    void dataSourceReachesTheServer();
};

void ServerTest::dataSourceReachesTheServer() {
    QVERIFY(db::odbcKnows(QStringLiteral("vorlane")));
    {
        QSqlDatabase store = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), QStringLiteral("probe"));
        store.setDatabaseName(QStringLiteral("Vorlane"));
        QVERIFY2(store.open(), qPrintable(store.lastError().text()));
        QSqlQuery q(store);
        QVERIFY(q.exec(QStringLiteral("select current_user, current_setting('server_version_num')::int")));
        QVERIFY(q.next());
        // The login that the entry names, on a server of version 15 or later.
        QCOMPARE(q.value(0).toString(), QStringLiteral("vorlane"));
        QVERIFY(q.value(1).toInt() >= 150000);
    }
    QSqlDatabase::removeDatabase(QStringLiteral("probe"));
}

QTEST_GUILESS_MAIN(ServerTest)
#include "tst_server.moc"
