// The benchmark's own parts: the office that it makes, the cache of offices, and the runs of
// other programs that it times.
#include "Office.h"
#include "Process.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QUuid>
#include <QtTest>

namespace {

// Reads an office's database with statements of the test.
class Reader {
  public:
    explicit Reader(const QString& path)
        : m_name(QUuid::createUuid().toString()),
          m_db(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name)) {
        m_db.setDatabaseName(path);
        if (!m_db.open())
            qFatal("cannot open %s", qPrintable(path));
    }
    ~Reader() {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    QVariant value(const QString& sql) const {
        QSqlQuery q(m_db);
        if (!q.exec(sql) || !q.next())
            qFatal("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q.value(0);
    }
    int number(const QString& sql) const { return value(sql).toInt(); }
    // Every row of a table, in key order, as text.
    QStringList rows(const QString& table, const QString& key) const {
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("select * from \"%1\" order by %2").arg(table, key)))
            qFatal("%s", qPrintable(q.lastError().text()));
        QStringList out;
        while (q.next()) {
            QStringList values;
            for (int i = 0; i < q.record().count(); ++i)
                values << q.value(i).toString();
            out << values.join(QLatin1Char('|'));
        }
        return out;
    }

  private:
    QString m_name;
    QSqlDatabase m_db;
};

QString databaseOf(const QString& data, int documents) {
    return bench::officeFolder(data, documents) + QStringLiteral("/Database/Vorlane.mdb");
}

constexpr int Documents = 10000;

} // namespace

class TestBench : public QObject {
    Q_OBJECT
    QTemporaryDir data;

  private slots:
    void initTestCase() {
        QVERIFY(data.isValid());
        bench::makeOffice(data.path(), Documents);
    }

    // The tree, the files and the documents hang together as the screens expect them to.
    void theOfficeHangsTogether() {
        Reader db(databaseOf(data.path(), Documents));
        QCOMPARE(db.number("select count(*) from Logins"), 1);
        QCOMPARE(db.number("select count(*) from DocumentType"), 8);
        QCOMPARE(db.number("select count(*) from DocumentCategory"), 12);
        QCOMPARE(db.number("select min(n) from (select count(*) n from DocumentSubCategory group by CatID)"),
                 3);
        QCOMPARE(db.number("select max(n) from (select count(*) n from DocumentSubCategory group by CatID)"),
                 6);
        QCOMPARE(db.number("select count(distinct CatID) from DocumentSubCategory"), 12);
        QVERIFY(db.number(
                    "select min(n) from (select count(*) n from DocumentChildCategory group by SubCatID)") >=
                2);
        QVERIFY(db.number(
                    "select max(n) from (select count(*) n from DocumentChildCategory group by SubCatID)") <=
                5);
        QCOMPARE(db.number("select count(*) from DocumentChildCategory c join DocumentSubCategory s on "
                           "s.SubCatID=c.SubCatID and s.CatID=c.CatID"),
                 db.number("select count(*) from DocumentChildCategory"));
        // Sub-category names are distinct within their category.
        QCOMPARE(
            db.number("select count(*) from (select distinct CatID, SubCategory from DocumentSubCategory)"),
            db.number("select count(*) from DocumentSubCategory"));

        QCOMPARE(db.number("select count(*) from File"), 2000);
        QCOMPARE(db.number("select count(distinct FileNumber) from File"), 2000);
        QCOMPARE(
            db.number(
                "select count(*) from File where FileNumber not glob 'F-20[0-2][0-9]/[0-9][0-9][0-9][0-9]'"),
            0);
        QVERIFY(db.number("select max(length(Particulars)) from File") <= 25);

        QCOMPARE(db.number("select count(*) from Vorlane"), Documents);
        // No Nulls: the screens write empty texts as empty strings, and the list of documents
        // ends at a Null.
        QCOMPARE(db.number("select count(*) from Vorlane where IndexID is null or DocDate is null or "
                           "FollowupDate is null or Title1 is null or Title2 is null or FilePath is null or "
                           "Bookmark is null or Remarks is null"),
                 0);
        QCOMPARE(db.number("select min(IndexID) from Vorlane"), 1);
        QCOMPARE(db.number("select max(IndexID) from Vorlane"), Documents);
        QCOMPARE(
            db.number("select count(*) from Vorlane where typeof(TypeID)||typeof(CatID)||typeof(SubCatID)||"
                      "typeof(ChildCatID)||typeof(FileID)||typeof(UpdatedBy) <> "
                      "'integerintegerintegerintegerintegerinteger'"),
            0);
        // Each document's classification is one path down the tree, and its file exists.
        QCOMPARE(db.number("select count(*) from Vorlane v join DocumentChildCategory c on "
                           "c.ChildCatID=v.ChildCatID and c.SubCatID=v.SubCatID and c.CatID=v.CatID "
                           "join DocumentType t on t.TypeID=v.TypeID join File f on f.FileID=v.FileID"),
                 Documents);
        // Documents lie in a file of their own year.
        QCOMPARE(db.number("select count(*) from Vorlane v join File f on f.FileID=v.FileID "
                           "where substr(f.FileNumber,3,4) <> substr(v.DocDate,1,4)"),
                 0);
    }

    // Dates as the data layer stores them, spread over twenty years, not in the order of entry.
    void theDatesAreSpreadAndOutOfKeyOrder() {
        Reader db(databaseOf(data.path(), Documents));
        QCOMPARE(db.number("select count(*) from Vorlane where typeof(DocDate) <> 'text' or "
                           "date(DocDate) is not DocDate or date(FollowupDate) is not FollowupDate"),
                 0);
        QVERIFY(db.value("select min(DocDate) from Vorlane").toString() >=
                QLatin1String(bench::FirstDocDate));
        QVERIFY(db.value("select min(DocDate) from Vorlane").toString() < QLatin1String("2006-04-01"));
        QVERIFY(db.value("select max(DocDate) from Vorlane").toString() <= QLatin1String(bench::LastDocDate));
        QVERIFY(db.value("select max(DocDate) from Vorlane").toString() > QLatin1String("2026-01-01"));
        QCOMPARE(db.number("select count(distinct substr(DocDate,1,4)) from Vorlane"), 21);
        QCOMPARE(db.number("select min(julianday(FollowupDate)-julianday(DocDate)) from Vorlane"), 0);
        QCOMPARE(db.number("select max(julianday(FollowupDate)-julianday(DocDate)) from Vorlane"), 90);
        // Neighbours by key are often in the other order by date, and some documents are years old
        // when entered.
        const int swapped =
            db.number("select count(*) from Vorlane a join Vorlane b on b.IndexID=a.IndexID+1 "
                      "where b.DocDate < a.DocDate");
        QVERIFY2(swapped > Documents / 5 && swapped < Documents * 4 / 5,
                 qPrintable(QString::number(swapped)));
        QVERIFY(db.number("select count(*) from Vorlane where IndexID > 9000 and DocDate < '2010-01-01'") >
                Documents / 500);
    }

    // Titles, paths, bookmarks and remarks of the lengths and mix of a real office.
    void theTextsLookReal() {
        Reader db(databaseOf(data.path(), Documents));
        QVERIFY(db.number("select min(length(Title1)) from Vorlane") >= 25);
        QVERIFY(db.number("select max(length(Title1)) from Vorlane") <= 70);
        QVERIFY(db.number("select count(*) from Vorlane where Title1 not glob '*[0-9]*'") < Documents / 3);
        QVERIFY(db.number("select count(distinct Title1) from Vorlane") > Documents * 3 / 4);
        // About one title in twenty has letters beyond ASCII.
        const int foreign =
            db.number("select count(*) from Vorlane where length(cast(Title1 as blob)) > length(Title1)");
        QVERIFY2(foreign > Documents * 35 / 1000 && foreign < Documents * 65 / 1000,
                 qPrintable(QString::number(foreign)));
        QVERIFY(db.number(
                    "select count(*) from Vorlane where Title1 like '%Müller%' or Title1 like '%Ελλάδα%' or "
                    "Title1 like '%Добрый%'") > 0);

        const int noTitle2 = db.number("select count(*) from Vorlane where Title2 = ''");
        QVERIFY(noTitle2 > Documents / 5 && noTitle2 < Documents / 2);
        QVERIFY(db.number("select avg(length(Title2)) from Vorlane") <
                db.number("select avg(length(Title1)) from Vorlane"));
        QVERIFY(db.number("select count(*) from Vorlane where Bookmark = ''") > Documents / 10);
        QVERIFY(db.number("select count(*) from Vorlane where Bookmark glob 'Page [0-9]*'") > Documents / 4);
        const int longRemarks = db.number("select count(*) from Vorlane where length(Remarks) >= 200");
        QVERIFY2(longRemarks > Documents / 100 && longRemarks < Documents * 3 / 100,
                 qPrintable(QString::number(longRemarks)));
        QVERIFY(db.number("select count(*) from Vorlane where Remarks = ''") > Documents / 3);

        // Soft copies lie under the month of the document, with mixed extensions.
        QCOMPARE(db.number("select count(*) from Vorlane where FilePath not like '/home/office/Scans/' || "
                           "replace(substr(DocDate,1,7),'-','/') || '/%'"),
                 0);
        for (const char* ext : {".pdf", ".PDF", ".jpg", ".JPG", ".docx", ".xlsx"})
            QVERIFY2(db.number(QStringLiteral("select count(*) from Vorlane where FilePath glob '*%1'")
                                   .arg(QLatin1String(ext))) > Documents / 25,
                     ext);
    }

    // Every document's soft copy has been read, a letter of about a thousand characters; each rare
    // word stands in exactly the documents that its key chooses, and the text index finds them.
    void theSoftCopiesHaveTexts() {
        Reader db(databaseOf(data.path(), Documents));
        QCOMPARE(db.number("select count(*) from SoftCopy s join Vorlane v on v.IndexID=s.IndexID where "
                           "s.ReadState='read' and s.ReadPath=v.FilePath and s.Reason is null and "
                           "s.ClaimedBy is null and length(s.SoftText) between 800 and 1400"),
                 Documents);
        QCOMPARE(db.number("select count(distinct SoftText) from SoftCopy"), Documents);
        for (const bench::RareWord& rare : bench::RareWords) {
            const QString where = QStringLiteral(" from SoftCopy where SoftText like '%%1%'").arg(rare.word);
            const int holding = bench::documentsHolding(rare, Documents);
            QCOMPARE(db.number(QStringLiteral("select count(*)") + where), holding);
            QCOMPARE(db.number(QStringLiteral("select count(*)") + where +
                               QStringLiteral(" and IndexID % %1 = %2").arg(rare.every).arg(rare.offset)),
                     holding);
            QCOMPARE(db.number(QStringLiteral("select count(*) from SoftCopyText where SoftCopyText match "
                                              "'\"%1\"'")
                                   .arg(rare.word)),
                     holding);
        }
        QCOMPARE(bench::documentsHolding(bench::RareWords[0], 1000000), 1000);
    }

    // The newest documents point at other files, whose soft copies then wait to be read.
    void theNewestDocumentsCanWait() {
        QTemporaryDir dir;
        bench::makeOffice(dir.path(), 300);
        const QString database = databaseOf(dir.path(), 300);
        bench::pointNewestAt(database, {QStringLiteral("/tmp/a.pdf"), QStringLiteral("/tmp/b.png")});
        Reader db(database);
        QCOMPARE(db.number("select count(*) from (select IndexID from Vorlane order by DocDate desc, IndexID "
                           "desc limit 2) n join SoftCopy s on s.IndexID=n.IndexID join Vorlane v on "
                           "v.IndexID=n.IndexID where s.ReadState='waiting' and s.SoftText is null and "
                           "v.FilePath in ('/tmp/a.pdf', '/tmp/b.png')"),
                 2);
        QCOMPARE(db.number("select count(*) from SoftCopy where ReadState='read'"), 298);
    }

    // The same size gives the same office, row for row; a second call finds it made.
    void theOfficeIsTheSameEachTimeAndKept() {
        QTemporaryDir other;
        QVERIFY(!bench::officeIsCurrent(other.path(), Documents));
        bench::makeOffice(other.path(), Documents);
        QVERIFY(bench::officeIsCurrent(other.path(), Documents));
        {
            Reader a(databaseOf(data.path(), Documents));
            Reader b(databaseOf(other.path(), Documents));
            for (const auto& [table, key] : {std::pair{"Vorlane", "IndexID"},
                                             {"SoftCopy", "IndexID"},
                                             {"DocumentSubCategory", "SubCatID"},
                                             {"DocumentChildCategory", "ChildCatID"},
                                             {"File", "FileID"}})
                QVERIFY2(a.rows(table, key) == b.rows(table, key), table);
        }
        // Another size is another office; the first stays.
        QVERIFY(!bench::officeIsCurrent(other.path(), 500));
        bench::makeOffice(other.path(), 500);
        QVERIFY(bench::officeIsCurrent(other.path(), 500));
        QVERIFY(bench::officeIsCurrent(other.path(), Documents));
        QVERIFY(QFileInfo(bench::officeFolder(other.path(), 500)).fileName() == QLatin1String("office-500"));
    }

    // Only a complete office of this generator is used again.
    void anIncompleteOrOlderOfficeIsMadeAnew() {
        QTemporaryDir dir;
        bench::makeOffice(dir.path(), 300);
        const QString stamp = bench::officeFolder(dir.path(), 300) + QStringLiteral("/generator.txt");
        QFile file(stamp);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray written = file.readAll();
        QVERIFY(written.contains("version " + QByteArray::number(bench::GeneratorVersion)));
        file.resize(0);
        file.write("version 0\ndocuments 300\n");
        file.close();
        QVERIFY(!bench::officeIsCurrent(dir.path(), 300));

        bench::makeOffice(dir.path(), 300);
        QVERIFY(bench::officeIsCurrent(dir.path(), 300));
        QVERIFY(QFile::remove(databaseOf(dir.path(), 300)));
        QVERIFY(!bench::officeIsCurrent(dir.path(), 300));

        // A run that broke off left its half-made folder: the next one starts it over.
        QVERIFY(QDir().mkpath(bench::officeFolder(dir.path(), 200) + QStringLiteral(".partial/Database")));
        QFile half(bench::officeFolder(dir.path(), 200) + QStringLiteral(".partial/Database/Vorlane.mdb"));
        QVERIFY(half.open(QIODevice::WriteOnly));
        half.write("not a database");
        half.close();
        QVERIFY(!bench::officeIsCurrent(dir.path(), 200));
        bench::makeOffice(dir.path(), 200);
        QVERIFY(bench::officeIsCurrent(dir.path(), 200));
        QVERIFY(!QFileInfo::exists(bench::officeFolder(dir.path(), 200) + QStringLiteral(".partial")));
        Reader db(databaseOf(dir.path(), 200));
        QCOMPARE(db.number("select count(*) from Vorlane"), 200);
    }

    // The sqlite3 shell reads the office, and a run reports what happened to it.
    void programRunsAreTimedAndTold() {
        const QString database = databaseOf(data.path(), Documents);
        QVERIFY(bench::warmFile(database));
        QVERIFY(!bench::warmFile(data.path() + QStringLiteral("/none")));

        const bench::Run list =
            bench::runProgram({QStringLiteral("sqlite3"), QStringLiteral("-batch"), database,
                               QStringLiteral("Select IndexID from Vorlane order by DocDate desc;")},
                              true);
        QVERIFY2(list.ok(), qPrintable(list.error));
        QVERIFY(list.seconds > 0);
        QVERIFY(list.peakKiB > 0);
        const QList<QByteArray> keys = list.output.trimmed().split('\n');
        QCOMPARE(keys.size(), Documents);
        Reader db(database);
        QCOMPARE(keys.first().toInt(),
                 db.number("select IndexID from Vorlane order by DocDate desc limit 1"));

        const bench::Run quiet = bench::runProgram(
            {QStringLiteral("sqlite3"), QStringLiteral("-batch"), database, QStringLiteral("select 1;")},
            false);
        QVERIFY(quiet.ok());
        QVERIFY(quiet.output.isEmpty());

        const bench::Run wrong = bench::runProgram({QStringLiteral("sqlite3"), QStringLiteral("-batch"),
                                                    database, QStringLiteral("select * from NoSuchTable;")},
                                                   false);
        QVERIFY(wrong.started);
        QVERIFY(wrong.exitCode != 0);

        const bench::Run killed = bench::runProgram(
            {QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("kill -9 $$")}, false);
        QVERIFY(killed.started);
        QCOMPARE(killed.exitCode, 128 + 9);

        const bench::Run missing = bench::runProgram({QStringLiteral("no-such-program-here")}, false);
        QVERIFY(!missing.started);
        QVERIFY(missing.error.contains(QLatin1String("no-such-program-here")));
        QVERIFY(bench::peakMemoryKiB() > 0);
    }
};

QTEST_GUILESS_MAIN(TestBench)
#include "tst_bench.moc"
