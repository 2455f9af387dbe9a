// The contains-search index of the documents' texts: what a like finds through it is what the
// like finds reading every row, the index follows every writer, and a database made before it
// gets it at its first open.
#include "datastore/Ado.h"
#include "datastore/Engine.h"
#include "datastore/Schema.h"
#include "datastore/sqlite/SqliteDialect.h"
#include "datastore/sqlite/TextIndex.h"
#include "platform/MousePointer.h"
#include "platform/TestHooks.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>
#include <sqlite3.h>
#include <thread>

using testsupport::literal;

namespace {

const QString Search = QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on "
                                      "F.FileID=I.FileID Where I.%1 like '%2'  order by I.DocDate");

std::unique_ptr<db::Engine> openEngine(int timeoutSeconds = 30) {
    return db::openEngine(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QString(), timeoutSeconds);
}

// The IndexIDs that a select in the engine's text returns, in their order.
QList<qint64> keys(db::Engine& engine, const QString& text) {
    QList<qint64> out;
    for (const auto& row : engine.select(text).values)
        out << row[0].toLongLong();
    return out;
}

bool usesIndex(db::Engine& engine, const QString& text) {
    for (const auto& row : engine.select(QStringLiteral("EXPLAIN QUERY PLAN ") + text).values)
        if (row.back().toString().contains(QLatin1String("VIRTUAL TABLE INDEX")))
            return true;
    return false;
}

// The file's own connection, as another program (the sqlite3 shell, an earlier Vorlane) has it:
// no folding of its own, no dialect.
class RawFile {
  public:
    explicit RawFile(int timeoutMs = 10000) {
        sqlite3_open_v2(db::databaseFile().toUtf8().constData(), &m_handle, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_busy_timeout(m_handle, timeoutMs);
    }
    ~RawFile() { sqlite3_close(m_handle); }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    void exec(const QString& sql) {
        char* error = nullptr;
        if (sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK) {
            const QString text = QString::fromUtf8(error);
            sqlite3_free(error);
            QFAIL(qPrintable(sql + QStringLiteral(": ") + text));
        }
    }
    int count(const QString& sql) {
        sqlite3_stmt* statement = nullptr;
        int n = -1;
        if (sqlite3_prepare_v2(m_handle, sql.toUtf8().constData(), -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW)
            n = sqlite3_column_int(statement, 0);
        sqlite3_finalize(statement);
        return n;
    }
    // The index holds exactly the texts of the documents.
    bool indexMatchesDocuments() {
        return sqlite3_exec(m_handle,
                            "INSERT INTO VorlaneText(VorlaneText, rank) VALUES('integrity-check', 1)",
                            nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    // Takes the index away, as in a database made before it existed.
    void dropIndex() {
        exec(QStringLiteral("DROP TRIGGER VorlaneTextInsert"));
        exec(QStringLiteral("DROP TRIGGER VorlaneTextUpdate"));
        exec(QStringLiteral("DROP TRIGGER VorlaneTextDelete"));
        exec(QStringLiteral("DROP TABLE VorlaneText"));
    }
    sqlite3* handle() const { return m_handle; }

  private:
    sqlite3* m_handle = nullptr;
};

struct Document {
    int id;
    QString title1, title2, bookmark, remarks;
};

// The documents of the awkward cases: letter case beyond ASCII, characters the like takes for
// others, wildcards and quotes in the texts.
QList<Document> awkwardDocuments() {
    const QString longRemark = QString(QStringLiteral("ab")).repeated(4997) + QStringLiteral("needle");
    return {
        {1, QStringLiteral("Lease Tax notice 2024"), QStringLiteral("x"), QString(), QString()},
        {2, QStringLiteral("LEASE TAX"), QString(), QStringLiteral("lease tax"), QString()},
        {3, QStringLiteral("lease-tax, 100% paid"), QStringLiteral("lease tax due"), QString(), QString()},
        {4, QStringLiteral("Straße der Einheit 5"), QString(), QString(),
         QStringLiteral("Paid by bank transfer")},
        {5, QStringLiteral("STRASSE DER EINHEIT"), QString(), QString(), QString()},
        {6, QStringLiteral("Hauptstrasse 1, file_name_2024"), QString(), QString(), QString()},
        {7, QStringLiteral("Élève café résumé"), QString(), QString(), QString()},
        {8, QStringLiteral("ÉLÈVE CAFÉ RÉSUMÉ"), QString(), QString(), QString()},
        {9, QStringLiteral("eleve cafe resume"), QString(), QString(), QString()},
        {10, QStringLiteral("Κώστας Παπαδόπουλος"), QString(), QString(), QString()},
        {11, QStringLiteral("ΚΏΣΤΑΣ ΠΑΠΑΔΌΠΟΥΛΟΣ"), QString(), QString(), QString()},
        {12, QStringLiteral("İstanbul Şubesi"), QString(), QString(), QString()},
        {13, QStringLiteral("ISTANBUL ŞUBESI"), QString(), QString(), QString()},
        {14, QStringLiteral("ıstanbul şubesi"), QString(), QString(), QString()},
        {15, QStringLiteral("Łódź, ul. Piotrkowska"), QString(), QString(), QString()},
        {16, QStringLiteral("ŁÓDŹ PIOTRKOWSKA"), QString(), QString(), QString()},
        {17, QStringLiteral("\u212Aelvin scale"), QString(), QString(), QString()},
        {18, QStringLiteral("Kelvin Scale"), QString(), QString(), QString()},
        {19, QStringLiteral("\uFB01nance o\uFB03ce"), QString(), QString(), QString()},
        {20, QStringLiteral("finance office"), QString(), QString(), QString()},
        {21, QStringLiteral("O`Brien lease"), QString(), QString(), QString()},
        {22, QStringLiteral("ДОГОВОР АРЕНДЫ"), QString(), QString(), QString()},
        {23, QStringLiteral("договор аренды"), QString(), QString(), QString()},
        // Old Cyrillic forms that the like takes for о and в.
        {24, QStringLiteral("д\u1C82го\u1C80\u1C82р аренды"), QString(), QString(), QString()},
        {25, QStringLiteral("ᏣᎳᎩ ᎦᏬᏂᎯᏍᏗ"), QString(), QString(), QString()},
        {26, QStringLiteral("ꮳꮃꭹ ꭶꮼꮒꭿꮝꮧ"), QString(), QString(), QString()},
        {27, QStringLiteral("ᲡᲐᲥᲐᲠᲗᲕᲔᲚᲝ"), QString(), QString(), QString()},
        {28, QStringLiteral("საქართველო"), QString(), QString(), QString()},
        {29, QStringLiteral("say \"hi\" to o'brien"), QString(), QString(), QString()},
        {30, QStringLiteral("5 \u00B5g dose"), QString(), QString(), QString()},
        {31, QStringLiteral("5 \u03BCG DOSE"), QString(), QString(), QString()},
        {32, QString(), QString(), QString(), longRemark},
        {33, QStringLiteral("straẞe"), QString(), QString(), QString()},
    };
}

void insertDocuments(db::Connection& c, const QList<Document>& documents) {
    c.BeginTrans();
    c.Execute(QStringLiteral("Insert into File values(1,'F-1','shelf',1)"));
    for (const Document& d : documents)
        c.Execute(QStringLiteral("Insert into Vorlane Values(%1, '05/Mar/2026','06/Mar/2026',1,2,3,4,%2,%3,"
                                 "'c:\\\\a.pdf',1,%4,%5,1)")
                      .arg(d.id)
                      .arg(d.title1.isNull() ? QStringLiteral("Null") : literal(d.title1),
                           d.title2.isNull() ? QStringLiteral("Null") : literal(d.title2),
                           d.bookmark.isNull() ? QStringLiteral("Null") : literal(d.bookmark),
                           d.remarks.isNull() ? QStringLiteral("Null") : literal(d.remarks)));
    c.CommitTrans();
}

db::ConnectionPtr openConnection() {
    auto c = std::make_shared<db::Connection>();
    c->CommandTimeout = 30;
    c->Open(QStringLiteral("Vorlane"), QStringLiteral("Admin"), QString(), -1);
    return c;
}

} // namespace

class TextIndexTest : public QObject {
    Q_OBJECT
  private slots:
    void init();
    void cleanup();

    void indexFindsWhatTheLikeFinds_data();
    void indexFindsWhatTheLikeFinds();
    void indexFollowsEveryWriter();
    void olderDatabaseGetsTheIndexAtItsFirstOpen();
    void seatsOpeningTogetherBuildItOnce();
    void olderDatabaseGetsTheSoftCopiesAtItsFirstOpen();
    void seatThatCannotBuildItReadsEveryRow();
    void likeFoldsEachCharacterAlone();

  private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TextIndexTest::init() {
    m_dir = std::make_unique<QTemporaryDir>();
    platform::test::setAppPath(m_dir->path());
    db::createDatabase(db::databaseFile(), QStringLiteral("u"), QStringLiteral("p"));
}

void TextIndexTest::cleanup() {
    platform::test::setAppPath(QString());
    m_dir.reset();
}

void TextIndexTest::indexFindsWhatTheLikeFinds_data() {
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("indexed");
    QTest::addColumn<QList<qint64>>("expected");
    const auto row = [](const char* name, const char* column, const QString& pattern, bool indexed,
                        const QList<qint64>& expected) {
        QTest::newRow(name) << QString::fromLatin1(column) << pattern << indexed << expected;
    };
    row("ASCII in other case", "Title1", "%LeAsE tAx%", true, {1, 2});
    row("percent inside", "Title1", "%lease%tax%", true, {1, 2, 3});
    row("underscore inside", "Title1", "%lease_tax%", true, {1, 2, 3});
    row("whole text, no wildcard", "Title1", "LEASE tax", true, {2});
    row("percent in the text", "Title1", "%100%%", true, {3});
    row("underscores in the text", "Title1", "%name_2024%", true, {6});
    row("two letters", "Title1", "%ta%", false, {1, 2, 3, 12, 13, 14});
    row("no three letters in a row", "Title1", "%ea_e%", false, {1, 2, 3, 21});
    row("only a wildcard", "Title2", "%", false, {1, 3});
    row("Straße", "Title1", "%straße%", true, {4, 33});
    row("capital sharp s", "Title1", "%STRAẞE%", true, {4, 33});
    row("STRASSE", "Title1", "%STRASSE%", true, {5, 6});
    row("French accents", "Title1", "%élève café%", true, {7, 8});
    row("French without accents", "Title1", "%ELEVE%", true, {9});
    row("Greek final sigma", "Title1", "%κώστασ%", true, {10, 11});
    row("Greek capitals", "Title1", "%ΠΑΠΑΔΌΠΟΥΛΟΣ%", true, {10, 11});
    row("Turkish dotless i", "Title1", "%ıstanbul%", true, {14});
    row("Turkish dotted capital I", "Title1", "%İSTANBUL%", true, {12});
    row("Turkish plain i", "Title1", "%istanbul ş%", true, {13});
    row("Polish", "Title1", "%łódź%", true, {15, 16});
    row("Kelvin sign", "Title1", "%kelvin%", true, {17, 18});
    row("Kelvin sign in the pattern", "Title1", "%\u212AELVIN%", true, {17, 18});
    row("ligature", "Title1", "%\uFB01nance%", true, {19});
    row("no ligature", "Title1", "%finance%", true, {20});
    row("micro sign", "Title1", "%\u00B5g dose%", true, {30, 31});
    row("back-tick", "Title1", "%o`brien%", true, {21});
    row("double quotes", "Title1", "%say \"hi\"%", true, {29});
    row("old Cyrillic forms", "Title1", "%договор%", true, {22, 23, 24});
    row("Cherokee", "Title1", "%ᏣᎳᎩ%", true, {25, 26});
    row("Georgian", "Title1", "%საქართველო%", true, {27, 28});
    row("one column only", "Title2", "%lease tax%", true, {3});
    row("bookmark", "Bookmark", "%LEASE TAX%", true, {2});
    row("remarks, as the screen spells it", "remarks", "%bank trans%", true, {4});
    const QString needle = QString(QStringLiteral("ab")).repeated(4997) + QStringLiteral("needle");
    row("10,000 characters found", "Remarks", needle, true, {32});
    row("10,000 characters, none found", "Remarks",
        QStringLiteral("%") + QString(QStringLiteral("ba")).repeated(5000) + QStringLiteral("%"), true, {});
    row("10,000 wildcards and letters", "Remarks", QString(QStringLiteral("a_")).repeated(5000), false, {});
}

void TextIndexTest::indexFindsWhatTheLikeFinds() {
    QFETCH(QString, column);
    QFETCH(QString, pattern);
    QFETCH(bool, indexed);
    QFETCH(QList<qint64>, expected);
    {
        auto c = openConnection();
        insertDocuments(*c, awkwardDocuments());
    }
    auto engine = openEngine();
    QString quoted = pattern;
    quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
    const QString statement = Search.arg(column, quoted);
    const QString throughIndex = engine->dialect().translate(statement);
    const QString everyRow = db::SqliteDialect(false).translate(statement);

    QCOMPARE(usesIndex(*engine, throughIndex), indexed);
    QVERIFY(!usesIndex(*engine, everyRow));
    // The documents share their date: the order among them is the engine's choice.
    QList<qint64> found = keys(*engine, throughIndex);
    QList<qint64> read = keys(*engine, everyRow);
    std::sort(found.begin(), found.end());
    std::sort(read.begin(), read.end());
    QCOMPARE(found, read);
    QCOMPARE(found, expected);
}

void TextIndexTest::indexFollowsEveryWriter() {
    auto c = openConnection();
    auto other = openConnection();
    RawFile shell;
    const auto found = [&](const QString& column, const QString& text) {
        db::Recordset rs;
        rs.Open(Search.arg(column, QStringLiteral("%") + text + QStringLiteral("%")), c, db::adOpenStatic,
                db::adLockReadOnly);
        QList<qint64> ids;
        for (; !rs.eof(); rs.MoveNext())
            ids << rs.Fields(QStringLiteral("IndexID")).toLongLong();
        std::sort(ids.begin(), ids.end());
        return ids;
    };
    using L = QList<qint64>;

    // The screens' positional insert, on this seat and another, and the recordset's AddNew.
    c->Execute(QStringLiteral("Insert into Vorlane Values(1, '05/Mar/2026','06/Mar/2026',1,2,3,4,'Lease tax "
                              "notice','second title','c:\\\\a.pdf',1,'mark one','remark one',1)"));
    other->Execute(QStringLiteral("Insert into Vorlane Values(2, '05/Mar/2026','06/Mar/2026',1,2,3,4,'Water "
                                  "bill','other title','c:\\\\b.pdf',1,'mark two','remark two',1)"));
    {
        db::Recordset rs;
        rs.Open(QStringLiteral("Select * from Vorlane"), other, db::adOpenDynamic, db::adLockOptimistic);
        rs.AddNew();
        rs.setField(QStringLiteral("IndexID"), 3);
        rs.setField(QStringLiteral("Title1"), QStringLiteral("Electricity lease"));
        rs.setField(QStringLiteral("Remarks"), QStringLiteral("remark three"));
        rs.Update();
    }
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("lease")), (L{1, 3}));
    QCOMPARE(found(QStringLiteral("Remarks"), QStringLiteral("REMARK")), (L{1, 2, 3}));
    QCOMPARE(found(QStringLiteral("Bookmark"), QStringLiteral("mark two")), (L{2}));

    // Updates of a text, of another column, and of the key.
    other->Execute(
        QStringLiteral("Update Vorlane set Title1='Water lease', DocDate='07/Mar/2026' where IndexID=2"));
    c->Execute(QStringLiteral("Update Vorlane set Title1='Gas bill' where IndexID=1"));
    c->Execute(QStringLiteral("Update Vorlane set CatID=9 where IndexID=3"));
    c->Execute(QStringLiteral("Update Vorlane set IndexID=30 where IndexID=3"));
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("lease")), (L{2, 30}));
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("Lease tax")), L{});
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("gas bill")), (L{1}));

    // A transaction rolled back leaves the index as it was.
    other->BeginTrans();
    other->Execute(QStringLiteral("Update Vorlane set Title1='Rolled back' where IndexID=2"));
    other->RollbackTrans();
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("rolled")), L{});

    // Another program writing the file directly.
    shell.exec(
        QStringLiteral("INSERT INTO Vorlane (IndexID, Title1, Remarks) VALUES (40, 'Shell lease', NULL)"));
    shell.exec(QStringLiteral("UPDATE Vorlane SET Remarks = 'written by the shell' WHERE IndexID = 2"));
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("lease")), (L{2, 30, 40}));
    QCOMPARE(found(QStringLiteral("Remarks"), QStringLiteral("by the shell")), (L{2}));

    // A purge.
    other->Execute(QStringLiteral("Delete from Vorlane where DocDate < #06-Mar-26# or DocDate is null"));
    QCOMPARE(found(QStringLiteral("Title1"), QStringLiteral("lease")), (L{2}));
    QCOMPARE(found(QStringLiteral("Remarks"), QStringLiteral("remark")), L{});
    QVERIFY(shell.indexMatchesDocuments());
    shell.exec(QStringLiteral("DELETE FROM Vorlane"));
    QVERIFY(shell.indexMatchesDocuments());
    QCOMPARE(shell.count(QStringLiteral("SELECT count(*) FROM VorlaneText WHERE VorlaneText MATCH 'lea'")),
             0);
}

void TextIndexTest::olderDatabaseGetsTheIndexAtItsFirstOpen() {
    {
        RawFile shell;
        shell.dropIndex();
        // Documents saved by an earlier version.
        shell.exec(
            QStringLiteral("INSERT INTO Vorlane (IndexID, Title1, Title2) VALUES (1, 'Lease tax', 'a'), "
                           "(2, 'Water bill', 'lease'), (3, 'LEASE TAX 2', 'b')"));
    }
    platform::setMousePointer(platform::vbDefault);
    auto engine = openEngine();
    QCOMPARE(platform::mousePointer(), int(platform::vbDefault));
    const QString statement = Search.arg(QStringLiteral("Title1"), QStringLiteral("%lease tax%"));
    const QString text = engine->dialect().translate(statement);
    QVERIFY(usesIndex(*engine, text));
    QCOMPARE(keys(*engine, text), (QList<qint64>{1, 3}));
    RawFile shell;
    QVERIFY(shell.indexMatchesDocuments());

    // A database whose index lost a part (a trigger dropped by hand) gets it whole again.
    shell.exec(QStringLiteral("DROP TRIGGER VorlaneTextUpdate"));
    shell.exec(QStringLiteral("UPDATE Vorlane SET Title1 = 'Water bill' WHERE IndexID = 3"));
    engine.reset();
    engine = openEngine();
    QCOMPARE(
        shell.count(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = 'VorlaneTextUpdate'")),
        1);
    QVERIFY(shell.indexMatchesDocuments());
    QCOMPARE(keys(*engine, engine->dialect().translate(statement)), (QList<qint64>{1}));
}

void TextIndexTest::seatsOpeningTogetherBuildItOnce() {
    RawFile first;
    first.dropIndex();
    first.exec(QStringLiteral("INSERT INTO Vorlane (IndexID, Title1) VALUES (1, 'Lease tax')"));

    // One seat holds the write lock and builds the index while the other opens and waits for it.
    first.exec(QStringLiteral("BEGIN IMMEDIATE"));
    RawFile second;
    db::TextIndexState state = db::TextIndexState::Unavailable;
    std::thread opening([&] { state = db::openTextIndex(second.handle()); });
    QTest::qWait(300);
    // The documents' index: the first table's four parts.
    for (const QString& sql : db::textIndexStatements().mid(0, 4))
        first.exec(sql);
    first.exec(QStringLiteral("INSERT INTO VorlaneText(VorlaneText) VALUES('rebuild')"));
    first.exec(QStringLiteral("COMMIT"));
    opening.join();

    QCOMPARE(int(state), int(db::TextIndexState::Present));
    QCOMPARE(first.count(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name IN ('VorlaneText', "
                                        "'VorlaneTextInsert', 'VorlaneTextUpdate', 'VorlaneTextDelete')")),
             4);
    QVERIFY(first.indexMatchesDocuments());
    QCOMPARE(int(db::openTextIndex(first.handle())), int(db::TextIndexState::Present));
}

void TextIndexTest::olderDatabaseGetsTheSoftCopiesAtItsFirstOpen() {
    {
        RawFile shell;
        for (const char* name :
             {"SoftCopyTextInsert", "SoftCopyTextUpdate", "SoftCopyTextDelete", "SoftCopyFollowsInsert",
              "SoftCopyFollowsDelete", "SoftCopyFollowsPath", "SoftCopyFollowsDate"})
            shell.exec(QStringLiteral("DROP TRIGGER ") + QString::fromLatin1(name));
        shell.exec(QStringLiteral("DROP TABLE SoftCopyText"));
        shell.exec(QStringLiteral("DROP TABLE SoftCopy"));
        shell.exec(
            QStringLiteral("INSERT INTO Vorlane (IndexID, FilePath) VALUES (1, 'a.pdf'), (2, 'b.pdf')"));
    }
    // The documents of before come waiting.
    auto engine = openEngine();
    QCOMPARE(keys(*engine, QStringLiteral("SELECT IndexID FROM SoftCopy WHERE ReadState = 'waiting'")),
             (QList<qint64>{1, 2}));
    engine->execute(QStringLiteral("UPDATE SoftCopy SET ReadState = 'read', SoftText = CASE IndexID WHEN 1 "
                                   "THEN 'Lease tax' ELSE 'Water lease' END"));
    // The search screen's form of the criterion.
    const QString statement = engine->dialect().translate(
        QStringLiteral("Select I.IndexID from Vorlane I Where I.IndexID in (select S.IndexID from SoftCopy S "
                       "where S.SoftText like '%lease tax%') "));
    QVERIFY(usesIndex(*engine, statement));
    QCOMPARE(keys(*engine, statement), (QList<qint64>{1}));

    // The row follows its document, whoever writes: a path saved again as it was keeps the text;
    // another path, even in another letter case, makes it wait; a deleted document takes it along.
    RawFile shell;
    shell.exec(QStringLiteral("UPDATE Vorlane SET FilePath = 'a.pdf', Title1 = 'x' WHERE IndexID = 1"));
    shell.exec(QStringLiteral("UPDATE Vorlane SET FilePath = 'B.pdf' WHERE IndexID = 2"));
    QCOMPARE(keys(*engine, QStringLiteral("SELECT IndexID FROM SoftCopy WHERE ReadState = 'waiting' AND "
                                          "SoftText IS NULL")),
             (QList<qint64>{2}));
    shell.exec(QStringLiteral("DELETE FROM Vorlane WHERE IndexID = 1"));
    QCOMPARE(keys(*engine, QStringLiteral("SELECT IndexID FROM SoftCopy")), (QList<qint64>{2}));
    QVERIFY(shell.count(
                QStringLiteral("SELECT count(*) FROM SoftCopyText WHERE SoftCopyText MATCH 'lease'")) == 0);

    // The path trigger of an earlier version, which made any other path wait, is made anew: a path
    // that names the file the text was read from (its folder moved) keeps the text.
    shell.exec(QStringLiteral("DROP TRIGGER SoftCopyFollowsPath"));
    shell.exec(QStringLiteral("CREATE TRIGGER SoftCopyFollowsPath AFTER UPDATE OF FilePath ON Vorlane BEGIN "
                              "UPDATE SoftCopy SET ReadState = 'waiting' WHERE IndexID = new.IndexID; END"));
    shell.exec(QStringLiteral("UPDATE SoftCopy SET ReadState = 'read', ReadPath = 'new/B.pdf'"));
    engine = openEngine();
    shell.exec(QStringLiteral("UPDATE Vorlane SET FilePath = 'new/B.pdf'"));
    QCOMPARE(keys(*engine, QStringLiteral("SELECT IndexID FROM SoftCopy WHERE ReadState = 'read'")),
             (QList<qint64>{2}));
}

void TextIndexTest::seatThatCannotBuildItReadsEveryRow() {
    {
        RawFile shell;
        shell.dropIndex();
        shell.exec(
            QStringLiteral("INSERT INTO Vorlane (IndexID, Title1) VALUES (1, 'Lease tax'), (2, 'Gas')"));
    }
    const QString statement = Search.arg(QStringLiteral("Title1"), QStringLiteral("%lease tax%"));
    {
        // Another seat keeps the file locked longer than this one waits.
        RawFile busy;
        busy.exec(QStringLiteral("BEGIN IMMEDIATE"));
        auto engine = openEngine(1);
        const QString text = engine->dialect().translate(statement);
        QVERIFY(!text.contains(QLatin1String("VorlaneText")));
        QCOMPARE(keys(*engine, text), (QList<qint64>{1}));
        busy.exec(QStringLiteral("ROLLBACK"));
    }
    // The next open builds it.
    auto engine = openEngine();
    const QString text = engine->dialect().translate(statement);
    QVERIFY(usesIndex(*engine, text));
    QCOMPARE(keys(*engine, text), (QList<qint64>{1}));
}

void TextIndexTest::likeFoldsEachCharacterAlone() {
    // The index's query is planned character by character; the like folds whole texts. Every
    // character of a text must fold as it does alone.
    QVector<char32_t> characters;
    for (char32_t c = 1; c < 0x110000; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            characters << c;
    const QList<uint> folded =
        QString::fromUcs4(characters.constData(), characters.size()).toCaseFolded().toUcs4();
    QCOMPARE(folded.size(), characters.size());
    for (int i = 0; i < characters.size(); ++i)
        if (folded[i] != QChar::toCaseFolded(characters[i]))
            QFAIL(
                qPrintable(QStringLiteral("U+%1 folds otherwise in a text").arg(uint(characters[i]), 0, 16)));
}

QTEST_GUILESS_MAIN(TextIndexTest)
#include "tst_textindex.moc"
