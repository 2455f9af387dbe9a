#include "datastore/Ado.h"
#include "datastore/OdbcSource.h"
#include "datastore/Schema.h"
#include "datastore/postgres/PostgresRows.h"
#include "support/TestSupport.h"

#include <QDate>
#include <QtTest>

using testsupport::errorOf;

namespace {

const QString User = QStringLiteral("Admin");
const QString Password = QStringLiteral("tarvo@48213");

db::ConnectionPtr open(const QString& dataSource = QStringLiteral("Vorlane")) {
    auto c = std::make_shared<db::Connection>();
    c->Open(dataSource, User, Password);
    return c;
}

QVariantList column(const db::ConnectionPtr& c, const QString& statement) {
    db::Recordset rs;
    rs.Open(statement, c);
    QVariantList values;
    for (; !rs.eof(); rs.MoveNext())
        values << rs.Fields(0);
    return values;
}

} // namespace

// The data source "Vorlane" on the tests' own PostgreSQL server (support/pgserver.sh), whose
// odbc.ini entry names a login of its own.
class ServerTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase();

    void setUpCreatesTheTablesOnce();
    void screensStatementsRunAsOnTheFile();
    void softCopiesFollowTheirDocumentsAndCome();
    void manyRowsComeInPages();
    void loginsAndUnreachableServer();
};

void ServerTest::initTestCase() {
    QVERIFY(db::odbcKnows(QStringLiteral("vorlane")));
    testsupport::emptyServerDatabase();
}

void ServerTest::setUpCreatesTheTablesOnce() {
    db::createServerDatabase(QStringLiteral("Vorlane"), User, Password, QStringLiteral("ÞÛ"),
                             QStringLiteral("þû"));
    auto c = open();
    QCOMPARE(column(c, QStringLiteral("Select UserName from Logins where Modify=1 and UserID=1")),
             QVariantList{QStringLiteral("ÞÛ")});
    // A second run leaves the database as it is.
    QCOMPARE(errorOf([] {
                 db::createServerDatabase(QStringLiteral("Vorlane"), User, Password, QStringLiteral("a"),
                                          QStringLiteral("b"));
             }),
             db::ErrStatement);
    QCOMPARE(column(c, QStringLiteral("Select count(*) from Logins")), QVariantList{qint64(1)});
    // A database whose locale knows only ASCII letters would compare "Ä" and "ä" as different.
    QCOMPARE(errorOf([] {
                 db::createServerDatabase(QStringLiteral("VorlaneLocaleC"), User, Password,
                                          QStringLiteral("a"), QStringLiteral("b"));
             }),
             db::ErrStatement);
}

void ServerTest::screensStatementsRunAsOnTheFile() {
    auto c = open();
    // The positional Insert and the Update with their quoted dates; reserved names bare.
    c->BeginTrans();
    c->Execute(QStringLiteral("Insert into File values(1,'F-1','Ärger im Büro',1)"));
    c->Execute(QStringLiteral("Insert into Vorlane Values(1, '05/Mar/2026','07/Apr/2026',1,1,1,1,'Ärger "
                              "über Miete','t2','C:\\Docs\\a.pdf',1,'b','r',1)"));
    c->Execute(QStringLiteral("Insert into Vorlane Values(2, '05/Mar/1999','07/Apr/1999',1,1,1,1,'x','y','"
                              "/tmp/b',2,'b','r',1)"));
    c->CommitTrans();
    c->Execute(
        QStringLiteral("Update Vorlane Set DocDate='06/Mar/2026', Remarks='05/Mar/2026' where IndexID=1"));
    QCOMPARE(column(c, QStringLiteral("Select docdate from vorlane where IndexID=1")),
             QVariantList({QDate(2026, 3, 6)}));
    QCOMPARE(column(c, QStringLiteral("Select Remarks from Vorlane where IndexID=1")),
             QVariantList{QStringLiteral("05/Mar/2026")});
    // Texts of any length come back whole.
    const QString remarks = QStringLiteral("Mietvertrag ").repeated(500);
    c->Execute(QStringLiteral("Update Vorlane Set Remarks='%1' where IndexID=2").arg(remarks));
    QCOMPARE(column(c, QStringLiteral("Select Remarks from Vorlane where IndexID=2")), QVariantList{remarks});

    // The search: the left join with aliases, dates between '#', like and '=' regardless of case
    // in every alphabet, a backslash in a pattern standing for itself.
    const QString search =
        QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID ");
    QCOMPARE(column(c, search + QStringLiteral("where I.DocDate >= #01-Jan-26# and I.Title1 like '%ÄRGER%'")),
             QVariantList{qint64(1)});
    QCOMPARE(column(c, search + QStringLiteral("where I.FilePath like '%\\docs\\%' order by I.IndexID")),
             QVariantList{qint64(1)});
    db::Recordset rs;
    rs.Open(search + QStringLiteral("order by I.docDate"), c, db::adOpenStatic, db::adLockReadOnly);
    QCOMPARE(rs.Fields(QStringLiteral("filenumber")), QVariant());
    rs.MoveNext();
    QCOMPARE(rs.Fields(QStringLiteral("FileNumber")), QVariant(QStringLiteral("F-1")));
    QCOMPARE(column(c, QStringLiteral("Select FileID from File where Particulars='ärger IM büro'")),
             QVariantList{qint64(1)});
    c->Execute(QStringLiteral("Delete from Vorlane where DocDate < #01/Jan/2000#"));
    QCOMPARE(column(c, QStringLiteral("Select count(IndexID) from Vorlane")), QVariantList{qint64(1)});
}

void ServerTest::softCopiesFollowTheirDocumentsAndCome() {
    // A database made before the soft copies gets them when a seat of this version connects.
    db::openOdbcSource(QStringLiteral("Vorlane"), User, Password)
        ->execute(QStringLiteral("DROP TABLE \"SoftCopy\"; DROP FUNCTION \"SoftCopyFollows\"() CASCADE"));
    auto c = open();
    c->Execute(QStringLiteral("Insert into Vorlane (IndexID, FilePath) values (7, 'a.pdf'), (8, 'b.pdf')"));
    c->Execute(QStringLiteral("Update SoftCopy set ReadState='read', SoftText='Lease tax' where IndexID=7"));
    c->Execute(
        QStringLiteral("Update SoftCopy set ReadState='read', SoftText='Water lease' where IndexID=8"));
    const QString found =
        QStringLiteral("Select S.IndexID from SoftCopy S where S.SoftText like '%LEASE TAX%'");
    QCOMPARE(column(c, found), QVariantList{qint64(7)});
    c->Execute(QStringLiteral("Update Vorlane set FilePath='a.pdf', Title1='x' where IndexID=7"));
    c->Execute(QStringLiteral("Update Vorlane set FilePath='B.pdf' where IndexID=8"));
    // Document 1, of before the table, came waiting.
    QCOMPARE(
        column(c, QStringLiteral("Select IndexID from SoftCopy where ReadState='waiting' and SoftText is "
                                 "null order by IndexID")),
        (QVariantList{qint64(1), qint64(8)}));
    c->Execute(QStringLiteral("Delete from Vorlane where IndexID=7"));
    QCOMPARE(column(c, QStringLiteral("Select IndexID from SoftCopy order by IndexID")),
             (QVariantList{qint64(1), qint64(8)}));

    // The triggers' function of an earlier version, which made any other path wait, is made anew:
    // a path that names the file the text was read from (its folder moved) keeps the text.
    c->Execute(QStringLiteral("Update SoftCopy set ReadState='read', ReadPath='new/B.pdf'"));
    c.reset();
    db::openOdbcSource(QStringLiteral("Vorlane"), User, Password)
        ->execute(QStringLiteral("CREATE OR REPLACE FUNCTION \"SoftCopyFollows\"() RETURNS trigger LANGUAGE "
                                 "plpgsql AS $$ BEGIN UPDATE \"SoftCopy\" SET \"ReadState\" = 'waiting'; "
                                 "RETURN NEW; END $$"));
    c = open();
    c->Execute(QStringLiteral("Update Vorlane set FilePath='new/B.pdf'"));
    QCOMPARE(column(c, QStringLiteral("Select count(IndexID) from SoftCopy where ReadState='read'")),
             QVariantList{qint64(2)});
}

void ServerTest::manyRowsComeInPages() {
    using db::server::PagedAbove, db::server::PageRows;
    const qint64 first = 1000, last = first + PagedAbove + PageRows / 2;
    const qint64 longOne = first + PageRows + 3;
    const QString longText = QStringLiteral("Ärger über die Miete ").repeated(150);
    db::openOdbcSource(QStringLiteral("Vorlane"), User, Password)
        ->execute(
            QStringLiteral("INSERT INTO \"File\" SELECT n, 'F-' || n, CASE WHEN n % 7 = 0 THEN NULL "
                           "ELSE 'Régal ' || n END, 1 FROM generate_series(%1, %2) n; UPDATE \"File\" "
                           "SET \"Particulars\" = '%3' WHERE \"FileID\" = %4; ANALYZE \"File\"")
                .arg(QString::number(first), QString::number(last), longText, QString::number(longOne)));
    const QString all =
        QStringLiteral("Select FileID, Particulars from File where FileID >= %1 order by FileID").arg(first);
    auto c = open();
    // Every row once, in order, each text whole, on pages that the server keeps meanwhile.
    {
        db::Recordset rs;
        rs.Open(all, c);
        QCOMPARE(column(c, QStringLiteral("Select count(*) from pg_cursors")), QVariantList{qint64(1)});
        qint64 key = first;
        QByteArray text;
        for (; !rs.eof(); rs.MoveNext(), ++key) {
            QCOMPARE(rs.Fields(0), QVariant(key));
            const bool given = rs.FieldUtf8(1, text);
            QCOMPARE(given, key % 7 != 0);
            if (key == longOne) {
                QCOMPARE(QString::fromUtf8(text), longText);
                QCOMPARE(rs.Fields(1), QVariant(longText));
            } else if (given) {
                QCOMPARE(text, QStringLiteral("Régal %1").arg(key).toUtf8());
            }
        }
        QCOMPARE(key, last + 1);
    }
    // The pages are read in the transaction of the connection, which they leave open, or in one of
    // their own that ends with them.
    c->BeginTrans();
    c->Execute(QStringLiteral("Delete from File where FileID=%1").arg(first));
    QCOMPARE(qint64(column(c, all).size()), last - first);
    c->RollbackTrans();
    QCOMPARE(qint64(column(c, all).size()), last - first + 1);
    c->Execute(QStringLiteral("Delete from File where FileID >= %1").arg(first));
    QCOMPARE(column(open(), all), QVariantList());
}

void ServerTest::loginsAndUnreachableServer() {
    // An entry without a login of its own takes the program's user and password; the server
    // knows no such role.
    QCOMPARE(errorOf([] { open(QStringLiteral("VorlaneNoLogin")); }), db::ErrLoginFailed);
    QCOMPARE(errorOf([] { open(QStringLiteral("VorlaneWrongPassword")); }), db::ErrLoginFailed);
    QCOMPARE(errorOf([] { open(QStringLiteral("VorlaneDown")); }), db::ErrDataSourceNotFound);
}

QTEST_GUILESS_MAIN(ServerTest)
#include "tst_server.moc"
