#include "datastore/Ado.h"
#include "datastore/Engine.h"
#include "datastore/sqlite/SqliteDialect.h"
#include "support/TestSupport.h"

#include <QDate>
#include <QtTest>

using testsupport::errorOf;

namespace {

// What reached the engine, kept beyond the engine's own life.
struct Trace {
    QString dataSource;
    QStringList calls; // each text or step with the wait in force: "text @ seconds"
    QString insertTable;
    db::FieldValues inserted;
    db::Rows rows;
    bool refuseBegin = false;
    bool closed = false;
};

// An engine with nothing beneath it: it answers selects with the rows it was given.
class FakeEngine : public db::Engine {
  public:
    explicit FakeEngine(std::shared_ptr<Trace> trace) : m_trace(std::move(trace)) {}
    ~FakeEngine() override { m_trace->closed = true; }

    const db::Dialect& dialect() const override { return m_dialect; }
    void setTimeout(int seconds) override { m_timeout = seconds; }
    void execute(const QString& text) override { record(text); }
    db::Rows select(const QString& text) override {
        record(text);
        return m_trace->rows;
    }
    void insert(const QString& table, const db::FieldValues& values) override {
        record(QStringLiteral("insert"));
        m_trace->insertTable = table;
        m_trace->inserted = values;
    }
    void beginTransaction() override {
        if (m_trace->refuseBegin)
            throw platform::Error(db::ErrStatement, QStringLiteral("locked"));
        record(QStringLiteral("begin"));
    }
    void commitTransaction() override { record(QStringLiteral("commit")); }
    void rollbackTransaction() override { record(QStringLiteral("rollback")); }

  private:
    void record(const QString& what) { m_trace->calls << QStringLiteral("%1 @ %2").arg(what).arg(m_timeout); }

    std::shared_ptr<Trace> m_trace;
    db::SqliteDialect m_dialect;
    int m_timeout = -1;
};

} // namespace

// Connection and Recordset work through the engine interface alone, whatever engine is beneath.
class ConnectionTest : public QObject {
    Q_OBJECT

  private:
    db::ConnectionPtr open(const QString& connectionString = QStringLiteral("Vorlane")) {
        auto c = std::make_shared<db::Connection>();
        c->CommandTimeout = 100;
        c->Open(connectionString, QStringLiteral("Admin"), QStringLiteral("x"));
        return c;
    }
    std::shared_ptr<Trace> m_trace;

  private slots:
    void init() {
        m_trace = std::make_shared<Trace>();
        db::test::setEngineFactory([trace = m_trace](const QString& dataSource) {
            trace->dataSource = dataSource;
            return std::make_unique<FakeEngine>(trace);
        });
    }

    void cleanup() { db::test::setEngineFactory({}); }

    void statementsReachTheEngineTranslated() {
        auto c = open(QStringLiteral("PROVIDER=MSDataShape;User ID=Admin;Data Source=Vorlane;"));
        QCOMPARE(m_trace->dataSource, QStringLiteral("Vorlane"));
        c->Execute(QStringLiteral("Delete from logins where UserName='a'"));
        // The wait follows CommandTimeout as it stands at each statement.
        c->CommandTimeout = 5;
        c->BeginTrans();
        c->CommitTrans();
        QCOMPARE(m_trace->calls, QStringList({"Delete from \"Logins\" where \"UserName\"='a' @ 100",
                                              "begin @ 5", "commit @ 5"}));
        // A statement the dialect refuses never reaches the engine.
        QCOMPARE(errorOf([&] { c->Execute(QStringLiteral("Delete from File; Delete from Logins")); }),
                 db::ErrStatement);
        QCOMPARE(m_trace->calls.size(), 3);
    }

    void recordsetReadsAndAddsThroughTheEngine() {
        m_trace->rows.names = QStringList({"IndexID", "DocDate", "Title1"});
        m_trace->rows.values = {{qint64(3), QDate(2026, 3, 5), QStringLiteral("t")}};
        auto c = open();
        db::Recordset rs;
        rs.Open(QStringLiteral("Select * from vorlane where DocDate < #07/Feb/2030#"), c, db::adOpenDynamic,
                db::adLockOptimistic);
        QCOMPARE(m_trace->calls.last(),
                 QStringLiteral("Select * from \"Vorlane\" where \"DocDate\" < '2030-02-07' @ 100"));
        QCOMPARE(rs.Fields(QStringLiteral("docdate")), QVariant(QDate(2026, 3, 5)));

        // The schema tells the date column: its screen text reaches the engine as a date, while a title
        // that reads like one stays a text.
        rs.AddNew();
        rs.setField(QStringLiteral("IndexID"), 4);
        rs.setField(QStringLiteral("DocDate"), QStringLiteral("05/Mar/2026"));
        rs.setField(QStringLiteral("Title1"), QStringLiteral("05/Mar/2026"));
        rs.Update();
        QCOMPARE(m_trace->insertTable, QStringLiteral("vorlane"));
        QCOMPARE(m_trace->inserted.size(), 3);
        QCOMPARE(m_trace->inserted[1].second, QVariant(QDate(2026, 3, 5)));
        QCOMPARE(m_trace->inserted[2].second, QVariant(QStringLiteral("05/Mar/2026")));
        // The new row is current, as the screen gave it.
        QCOMPARE(rs.RecordCount(), 2);
        QCOMPARE(rs.Fields(QStringLiteral("DocDate")), QVariant(QStringLiteral("05/Mar/2026")));
    }

    void releaseDiscardsAnOpenTransaction() {
        auto c = open();
        c->BeginTrans();
        c->Execute(QStringLiteral("Delete from File"));
        c.reset();
        QVERIFY(m_trace->closed);
        QCOMPARE(m_trace->calls.last(), QStringLiteral("rollback @ 100"));

        // A begin the engine refused leaves nothing to discard.
        init();
        m_trace->refuseBegin = true;
        c = open();
        QCOMPARE(errorOf([&] { c->BeginTrans(); }), db::ErrStatement);
        QVERIFY(!c->inTransaction());
        c.reset();
        QVERIFY(m_trace->closed);
        QVERIFY(m_trace->calls.isEmpty());
    }

    void engineIsChosenByTheDbms() {
        QCOMPARE(int(db::chooseEngine(QString(), QStringLiteral("SQLite"))), int(db::EngineKind::Sqlite));
        QCOMPARE(int(db::chooseEngine(QStringLiteral("Vorlane"), QStringLiteral("PostgreSQL"))),
                 int(db::EngineKind::Postgres));
        // Through ODBC, SQLite would hand its dates back as texts and lack the file's letter case and
        // text index.
        QString why;
        QCOMPARE(errorOf([] { db::chooseEngine(QStringLiteral("Vorlane"), QStringLiteral("SQLite")); }, &why),
                 db::ErrDataSourceNotFound);
        QCOMPARE(why,
                 QStringLiteral("The data source Vorlane runs on SQLite through ODBC, which this program "
                                "does not use: remove the data source to use the database file directly."));
        QCOMPARE(errorOf([] { db::chooseEngine(QStringLiteral("Vorlane"), QStringLiteral("Oracle")); }),
                 db::ErrDataSourceNotFound);
    }
};

QTEST_GUILESS_MAIN(ConnectionTest)
#include "tst_connection.moc"
