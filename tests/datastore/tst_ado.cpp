#include "datastore/Ado.h"
#include "datastore/Foreground.h"
#include "datastore/Schema.h"
#include "platform/TestHooks.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QtTest>
#include <unistd.h>

using testsupport::errorOf;

namespace {

// A scrambled user name as the login stores it: quotes, control characters, C1 characters.
const QString kUser = QStringLiteral("\"\x01\u0081\u00be\u009e");
const QString kPassword = QStringLiteral("pw\"x");

db::ConnectionPtr openStore(int timeout = 30) {
    auto c = std::make_shared<db::Connection>();
    c->CommandTimeout = timeout;
    c->Open(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QStringLiteral("secret"), -1);
    return c;
}

QVariant scalar(const db::ConnectionPtr& c, const QString& sql) {
    db::Recordset rs;
    rs.Open(sql, c, db::adOpenStatic, db::adLockReadOnly);
    return rs.eof() ? QVariant(QStringLiteral("<no row>")) : rs.Fields(0);
}

} // namespace

class AdoTest : public QObject {
    Q_OBJECT
  private slots:
    void init();
    void cleanup();

    void dataSourceResolution();
    void createDatabaseRefusesToOverwrite();
    void recordsetReadsRowsAndNulls();
    void cursorKindsAndPositions();
    void recordsetKeepsItsConnection();
    void transactions();
    void addNewOnDynamicCursor();
    void secondSeatWaitsForTheWriteLock();
    void backgroundWaitsWhileTheScreensHoldTheStore();
    void textComparisonIgnoresCase();
    void refusedStatementsAreNotRun();

  private:
    std::unique_ptr<testsupport::TestEnvironment> m_env;
};

void AdoTest::init() {
    m_env = std::make_unique<testsupport::TestEnvironment>(false);
    m_env->createDatabase(kUser, kPassword);
}

void AdoTest::cleanup() {
    m_env.reset();
}

void AdoTest::dataSourceResolution() {
    if (testsupport::onServer())
        QSKIP("The database file and its data source.");
    const QString file = db::databaseFile();
    const QString kept = file + QStringLiteral(".kept");
    QVERIFY(QFile::rename(file, kept));

    db::Connection missing;
    QCOMPARE(errorOf([&] { missing.Open(QStringLiteral("Vorlane")); }), db::ErrDataSourceNotFound);
    QVERIFY(!missing.isOpen());
    QVERIFY(!QFile::exists(file));

    QFile garbage(file);
    QVERIFY(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray(4096, 'x'));
    garbage.close();
    db::Connection corrupt;
    QCOMPARE(errorOf([&] { corrupt.Open(QStringLiteral("Vorlane")); }), db::ErrDataSourceNotFound);

    QVERIFY(QFile::remove(file));
    QVERIFY(QFile::rename(kept, file));
    QCOMPARE(scalar(openStore(), QStringLiteral("Select count(*) from Logins")).toInt(), 1);

    // A data source known to the driver manager wins over the file, even when it cannot be reached.
    const QString ini = QDir(m_env->appPath()).filePath(QStringLiteral("odbc.ini"));
    QFile config(ini);
    QVERIFY(config.open(QIODevice::WriteOnly));
    config.write("[Vorlane]\nDriver=/nonexistent/libnodriver.so\nDatabase=/nonexistent.db\n");
    config.close();
    const QByteArray previous = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.toLocal8Bit());
    db::Connection viaOdbc;
    const int odbcError = errorOf(
        [&] { viaOdbc.Open(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QStringLiteral("x")); });
    qputenv("ODBCINI", previous);
    QCOMPARE(odbcError, db::ErrDataSourceNotFound);
    QVERIFY(!viaOdbc.isOpen());
}

void AdoTest::createDatabaseRefusesToOverwrite() {
    if (testsupport::onServer())
        QSKIP("The database file.");
    QVERIFY(errorOf([] {
                db::createDatabase(db::databaseFile(), QStringLiteral("u"), QStringLiteral("p"));
            }) != 0);
    // The first user survives the refusal.
    auto c = openStore();
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from Logins"), c, db::adOpenStatic, db::adLockReadOnly);
    QCOMPARE(rs.RecordCount(), 1);
    QStringList values;
    for (const char* column : {"UserID", "UserName", "Password", "View", "Save", "Modify", "UpdatedBy"})
        values << rs.Fields(QString::fromLatin1(column)).toString();
    QCOMPARE(values, QStringList({"1", kUser, kPassword, "0", "0", "1", "1"}));

    // A new file in a folder that does not exist yet.
    const QString elsewhere = QDir(m_env->appPath()).filePath(QStringLiteral("new/Database/Vorlane.mdb"));
    db::createDatabase(elsewhere, QStringLiteral("u"), QStringLiteral("p"));
    QVERIFY(QFile::exists(elsewhere));
}

void AdoTest::recordsetReadsRowsAndNulls() {
    auto c = openStore();
    // The login's statement with its scrambled texts, quotes and control characters included.
    QCOMPARE(scalar(c, QStringLiteral("Select UserID, View, Save, Modify from Logins where UserName='%1' and "
                                      "Password='%2'")
                           .arg(kUser, kPassword))
                 .toInt(),
             1);

    // Max on an empty table: one row holding NULL.
    db::Recordset max;
    max.Open(QStringLiteral("Select Max(IndexID) from Vorlane"), c);
    QVERIFY(!max.eof());
    QVERIFY(!max.Fields(0).isValid());

    c->Execute(QStringLiteral("Insert into File values(7,'F-7','shelf',1)"));
    c->Execute(
        QStringLiteral("Insert into Vorlane Values(3, '05/Mar/2026','06/Mar/2026',1,2,3,4,'05/Mar/2026',"
                       "'t2','c:\\a.pdf',7,'b','r',1)"));
    c->Execute(
        QStringLiteral("Insert into Vorlane (IndexID, DocDate, Title1) Values(4, '01/Jan/2020', 'x')"));

    db::Recordset rs;
    rs.Open(QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID  "
                           "where I.DocDate >= #01-Feb-26# order by I.DocDate"),
            c, db::adOpenStatic, db::adLockReadOnly);
    QCOMPARE(rs.RecordCount(), 1);
    QCOMPARE(rs.Fields(QStringLiteral("docdate")), QVariant(QDate(2026, 3, 5)));
    QCOMPARE(rs.Fields(QStringLiteral("FOLLOWUPDATE")), QVariant(QDate(2026, 3, 6)));
    QCOMPARE(rs.Fields(QStringLiteral("Title1")), QVariant(QStringLiteral("05/Mar/2026")));
    QCOMPARE(rs.Fields(QStringLiteral("filenumber")), QVariant(QStringLiteral("F-7")));
    QCOMPARE(rs.Fields(0).typeId(), QMetaType::LongLong);
    QCOMPARE(rs.Fields(0).toInt(), 3);
    QString description;
    QCOMPARE(errorOf([&] { rs.Fields(QStringLiteral("NoSuchField")); }, &description), db::ErrItemNotFound);
    QCOMPARE(description,
             QStringLiteral(
                 "Item cannot be found in the collection corresponding to the requested name or ordinal."));
    QCOMPARE(errorOf([&] { rs.Fields(99); }), db::ErrItemNotFound);

    // A result column is a date by the table column it comes from, whatever it is called: the
    // report's working table holds texts in columns named like the index's dates.
    c->Execute(QStringLiteral("Insert into PrintSearchResult (DocDate) values ('2026-03-05')"));
    db::Recordset joined;
    joined.Open(QStringLiteral("Select P.DocDate as Shown, V.DocDate as Kept, V.Title1 as DocDate from "
                               "PrintSearchResult P, Vorlane V where V.IndexID=3"),
                c);
    QCOMPARE(joined.Fields(QStringLiteral("Shown")), QVariant(QStringLiteral("2026-03-05")));
    QCOMPARE(joined.Fields(QStringLiteral("Kept")), QVariant(QDate(2026, 3, 5)));
    QCOMPARE(joined.Fields(2), QVariant(QStringLiteral("05/Mar/2026")));

    // Columns not given stay NULL, distinct from an empty text.
    db::Recordset partial;
    partial.Open(QStringLiteral("Select Title2, Remarks, FileID from Vorlane where IndexID=4"), c);
    QVERIFY(!partial.Fields(QStringLiteral("Title2")).isValid());
    QVERIFY(!partial.Fields(2).isValid());
}

void AdoTest::cursorKindsAndPositions() {
    auto c = openStore();
    for (int id = 1; id <= 3; ++id)
        c->Execute(QStringLiteral("Insert into DocumentType values(%1,'T%1',1)").arg(id));

    db::Recordset forward;
    forward.Open(QStringLiteral("Select TypeID, DocType from DocumentType order by TypeID"), c, -1, -1, -1);
    QCOMPARE(forward.RecordCount(), -1);
    QStringList seen;
    while (!forward.eof()) {
        seen << forward.Fields(QStringLiteral("doctype")).toString();
        forward.MoveNext();
    }
    QCOMPARE(seen, QStringList({"T1", "T2", "T3"}));
    QCOMPARE(errorOf([&] { forward.MoveNext(); }), db::ErrNoCurrentRecord);
    QCOMPARE(errorOf([&] { forward.Fields(0); }), db::ErrNoCurrentRecord);
    // A forward-only recordset streams: at its end the statement is over, so another seat
    // takes the write lock at once; MoveFirst reads the statement again.
    auto writer = openStore(0);
    writer->BeginTrans();
    writer->Execute(QStringLiteral("Insert into DocumentType values(4,'T4',1)"));
    writer->CommitTrans();
    forward.MoveFirst();
    QCOMPARE(forward.Fields(1).toString(), QStringLiteral("T1"));
    QVERIFY(!forward.bof());
    db::Recordset none;
    none.Open(QStringLiteral("Select * from DocumentType where TypeID=99"), c);
    QVERIFY(none.eof() && none.bof());
    QCOMPARE(errorOf([&] { none.Open(QStringLiteral("Select * from NoSuchTable"), c); }), db::ErrStatement);

    db::Recordset empty;
    empty.Open(QStringLiteral("Select * from DocumentType where TypeID=99"), c, db::adOpenStatic,
               db::adLockReadOnly);
    QVERIFY(empty.eof() && empty.bof());
    QCOMPARE(empty.RecordCount(), 0);
    QCOMPARE(empty.FieldCount(), 3);

    // Requery sees rows written since the open.
    c->Execute(QStringLiteral("Insert into DocumentType values(99,'late',1)"));
    empty.Requery();
    QCOMPARE(empty.RecordCount(), 1);

    empty.Close();
    QCOMPARE(empty.State(), int(db::adStateClosed));
    QCOMPARE(errorOf([&] { empty.eof(); }), db::ErrObjectClosed);
}

void AdoTest::recordsetKeepsItsConnection() {
    db::ConnectionPtr conn = openStore();
    conn->Execute(QStringLiteral("Insert into DocumentCategory values(1,'Letters',1)"));
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from DocumentCategory"), conn);
    // A nested handler releases and replaces the shared connection meanwhile.
    conn.reset();
    conn = openStore();
    conn.reset();
    QCOMPARE(rs.Fields(QStringLiteral("DocCategory")).toString(), QStringLiteral("Letters"));
    rs.Requery();
    QCOMPARE(rs.State(), int(db::adStateOpen));
    rs.Close();
}

void AdoTest::transactions() {
    {
        auto c = openStore();
        c->BeginTrans();
        c->Execute(QStringLiteral("Insert into DocumentType values(1,'kept',1)"));
        c->CommitTrans();
        c->BeginTrans();
        c->Execute(QStringLiteral("Insert into DocumentType values(2,'rolled back',1)"));
        c->RollbackTrans();
        c->BeginTrans();
        c->Execute(QStringLiteral("Insert into DocumentType values(3,'released',1)"));
        QVERIFY(c->inTransaction());
        // Released without a commit: the row is discarded.
    }
    QCOMPARE(scalar(openStore(), QStringLiteral("Select count(*) from DocumentType")).toInt(), 1);
    QCOMPARE(scalar(openStore(), QStringLiteral("Select DocType from DocumentType")).toString(),
             QStringLiteral("kept"));
}

void AdoTest::addNewOnDynamicCursor() {
    auto c = openStore();
    c->Execute(QStringLiteral("Delete from PrintSearchResult"));
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from PrintSearchResult"), c, db::adOpenDynamic, db::adLockOptimistic);
    rs.AddNew();
    rs.setField(QStringLiteral("Title1"), QStringLiteral("12"));
    rs.setField(QStringLiteral("docdate"), QStringLiteral("a title, not a date"));
    rs.setField(QStringLiteral("FollowUpDate"), QStringLiteral("05/Mar/2026"));
    QCOMPARE(errorOf([&] { rs.setField(QStringLiteral("Nope"), 1); }), db::ErrItemNotFound);
    rs.Update();
    rs.AddNew();
    rs.setField(QStringLiteral("Title1"), QStringLiteral("13"));
    rs.Update();
    rs.Close();

    db::Recordset check;
    check.Open(QStringLiteral("Select * from PrintSearchResult order by Title1"), c, db::adOpenStatic,
               db::adLockReadOnly);
    QCOMPARE(check.RecordCount(), 2);
    QCOMPARE(check.Fields(QStringLiteral("DocDate")).toString(), QStringLiteral("a title, not a date"));
    QCOMPARE(check.Fields(QStringLiteral("FollowUpDate")).toString(), QStringLiteral("05/Mar/2026"));
    check.MoveNext();
    QVERIFY(!check.Fields(QStringLiteral("DocDate")).isValid());

    // A dated column of the index gets a date from a date or a screen's text.
    db::Recordset index;
    index.Open(QStringLiteral("Select * from Vorlane"), c, db::adOpenDynamic, db::adLockOptimistic);
    index.AddNew();
    index.setField(QStringLiteral("IndexID"), 1);
    index.setField(QStringLiteral("DocDate"), QDate(2024, 2, 29));
    index.setField(QStringLiteral("FollowupDate"), QStringLiteral("01/Mar/2024"));
    index.Update();
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from Vorlane where DocDate=#29-Feb-24# and "
                                      "FollowupDate=#01/Mar/2024#"))
                 .toInt(),
             1);

    // Static cursors and read-only locks refuse to add.
    db::Recordset fixed;
    fixed.Open(QStringLiteral("Select * from PrintSearchResult"), c, db::adOpenStatic, db::adLockOptimistic);
    QVERIFY(errorOf([&] { fixed.AddNew(); }) != 0);
    db::Recordset readOnly;
    readOnly.Open(QStringLiteral("Select * from PrintSearchResult"), c, db::adOpenDynamic,
                  db::adLockReadOnly);
    QVERIFY(errorOf([&] { readOnly.AddNew(); }) != 0);
}

void AdoTest::secondSeatWaitsForTheWriteLock() {
    auto first = openStore(1);
    auto second = openStore(1);
    first->BeginTrans();
    first->Execute(QStringLiteral("Insert into DocumentType values(1,'first',1)"));

    QCOMPARE(errorOf([&] { second->BeginTrans(); }), db::ErrStatement);
    QVERIFY(!second->inTransaction());
    QCOMPARE(
        errorOf([&] { second->Execute(QStringLiteral("Insert into DocumentType values(1,'second',1)")); }),
        db::ErrStatement);

    first->CommitTrans();
    second->BeginTrans();
    QCOMPARE(scalar(second, QStringLiteral("Select Max(TypeID) from DocumentType")).toInt(), 1);
    second->Execute(QStringLiteral("Insert into DocumentType values(2,'second',1)"));
    second->CommitTrans();
    QCOMPARE(scalar(first, QStringLiteral("Select count(*) from DocumentType")).toInt(), 2);
}

void AdoTest::backgroundWaitsWhileTheScreensHoldTheStore() {
    // Whether a thread of the background finds the store left alone, waiting up to `ms`.
    const auto freeFor = [](int ms) {
        bool free = false;
        std::unique_ptr<QThread> background(
            QThread::create([&] { free = db::foreground::waitUntilFree(ms); }));
        background->start();
        background->wait();
        return free;
    };
    auto c = openStore();
    c->Execute(QStringLiteral("Insert into DocumentType values(1,'first',1)"));
    c->Execute(QStringLiteral("Insert into DocumentType values(2,'second',1)"));
    QVERIFY(freeFor(10000));

    c->BeginTrans();
    QVERIFY(!freeFor(200));
    // The screens' own thread never waits for itself.
    QVERIFY(db::foreground::waitUntilFree(0));
    c->RollbackTrans();
    QVERIFY(freeFor(10000));

    db::Recordset rs;
    rs.Open(QStringLiteral("Select TypeID from DocumentType order by TypeID"), c, db::adOpenForwardOnly,
            db::adLockReadOnly);
    QVERIFY(!freeFor(200));
    rs.MoveNext();
    rs.MoveNext();
    QVERIFY(rs.eof());
    QVERIFY(freeFor(10000));
    rs.Close();

    // A connection let go of in a transaction discards it.
    c->BeginTrans();
    c.reset();
    QVERIFY(freeFor(10000));

    // A helper of the background stands still while the screens hold the store, and runs again
    // after its longest stop though they still hold it.
    QProcess helper;
    helper.setChildProcessModifier([] { ::setpgid(0, 0); });
    helper.start(QStringLiteral("sleep"), {QStringLiteral("30")});
    QVERIFY(helper.waitForStarted());
    const auto state = [pid = helper.processId()] { return testsupport::processStat(pid).value(0); };
    c = openStore();
    c->BeginTrans();
    QByteArray whileHeld, afterLongest;
    std::unique_ptr<QThread> background(QThread::create([&] {
        db::foreground::YieldingGroup group(int(helper.processId()), std::chrono::milliseconds(300));
        QElapsedTimer waited;
        waited.start();
        // The signal reaches the process a moment after it is sent.
        while (group.stopped() && state() != "T" && !waited.hasExpired(200))
            QThread::msleep(1);
        whileHeld = group.stopped() ? state() : QByteArray("running");
        while (group.stopped() && !waited.hasExpired(10000))
            QThread::msleep(10);
        waited.restart();
        while (state() == "T" && !waited.hasExpired(200))
            QThread::msleep(1);
        afterLongest = state();
    }));
    background->start();
    QVERIFY(background->wait());
    QCOMPARE(whileHeld, QByteArray("T"));
    QVERIFY2(!afterLongest.isEmpty() && afterLongest != "T", afterLongest.constData());
    c->RollbackTrans();
    helper.kill();
    helper.waitForFinished();
}

void AdoTest::textComparisonIgnoresCase() {
    auto c = openStore();
    c->Execute(QStringLiteral("Insert into DocumentType values(1,'Résumé Letters',1)"));
    c->Execute(QStringLiteral("Insert into References values(1,'Ärzte','x','y',1)"));
    QCOMPARE(
        scalar(c, QStringLiteral("Select TypeID from DocumentType where DocType='résumé letters'")).toInt(),
        1);
    QCOMPARE(
        scalar(c, QStringLiteral("Select TypeID from DocumentType where DocType='RÉSUMÉ LETTERS'")).toInt(),
        1);
    QCOMPARE(
        scalar(c, QStringLiteral("Select count(*) from DocumentType where DocType like '%SUMÉ_L%'")).toInt(),
        1);
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from References where RefName like 'ä%'")).toInt(), 1);
    // A '%' in the text does not use up a wildcard of the pattern.
    c->Execute(QStringLiteral("Insert into References values(2,'50% off','x','y',1)"));
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from References where RefName like '%0%o%'")).toInt(),
             1);
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from DocumentType where DocType like 'sum%'")).toInt(),
             0);
    // The scrambled login columns are compared exactly.
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from Logins where Password='PW\"X'")).toInt(), 0);
}

void AdoTest::refusedStatementsAreNotRun() {
    auto c = openStore();
    QString description;
    // The engine's own words reach the screens.
    QCOMPARE(
        errorOf([&] { c->Execute(QStringLiteral("Update File set Particulars=John Smith")); }, &description),
        db::ErrStatement);
    QVERIFY2(description.contains(QLatin1String("Smith")), qPrintable(description));
    db::Recordset rs;
    // Read row by row or at once, the same words.
    const QString wrong = QStringLiteral("Select * from Vorlane Where  order by I.DocDate");
    QString atOnce;
    QCOMPARE(errorOf([&] { rs.Open(wrong, c); }, &description), db::ErrStatement);
    QCOMPARE(errorOf([&] { rs.Open(wrong, c, db::adOpenStatic); }, &atOnce), db::ErrStatement);
    QCOMPARE(description, atOnce);
    QCOMPARE(rs.State(), int(db::adStateClosed));
    // A value of a type that no column of the schema has comes as the engine types it.
    rs.Open(QStringLiteral("Select 2.5 as Half"), c);
    QCOMPARE(rs.Fields(0), QVariant(2.5));
    rs.Close();

    // A recordset only reads: a writing statement opened as one is refused and not run.
    QCOMPARE(errorOf([&] { rs.Open(QStringLiteral("Delete from Logins"), c, db::adOpenStatic); }),
             db::ErrStatement);
    QCOMPARE(errorOf([&] { rs.Open(QStringLiteral("  insert into File values(1,'a','b',1)"), c); }),
             db::ErrStatement);
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from Logins")).toInt(), 1);
    QCOMPARE(scalar(c, QStringLiteral("Select count(*) from File")).toInt(), 0);
}

QTEST_GUILESS_MAIN(AdoTest)
#include "tst_ado.moc"
