#include "datastore/Errors.h"
#include "datastore/postgres/PostgresDialect.h"
#include "datastore/sqlite/SqliteDialect.h"
#include "support/TestSupport.h"

#include <QLocale>
#include <QtTest>

namespace {

QString translated(const QString& statement) {
    return db::SqliteDialect().translate(statement);
}

// The statement as a database with the contains-search index runs it.
QString withIndex(const QString& statement) {
    return db::SqliteDialect(true).translate(statement);
}

int refusal(const QString& statement) {
    return testsupport::errorOf([&] { db::SqliteDialect().translate(statement); });
}

} // namespace

class DialectTest : public QObject {
    Q_OBJECT
  private slots:
    void namesAreQuotedWithTheirSpelling_data();
    void namesAreQuotedWithTheirSpelling();
    void dateLiterals_data();
    void dateLiterals();
    void datesInInsertAndUpdateFollowTheSchema();
    void quotedTextsAreLeftAlone();
    void refusedStatements_data();
    void refusedStatements();
    void textSearchesLookInTheIndex_data();
    void textSearchesLookInTheIndex();
    void otherLikesReadEveryRow_data();
    void otherLikesReadEveryRow();
    void postgresLikeIgnoresCaseAndEscapes_data();
    void postgresLikeIgnoresCaseAndEscapes();
};

void DialectTest::namesAreQuotedWithTheirSpelling_data() {
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("out");
    QTest::newRow("reserved names bare")
        << "Select UserID, View, Save, Modify from Logins where UserName='a'"
        << "Select \"UserID\", \"View\", \"Save\", \"Modify\" from \"Logins\" "
           "where \"UserName\"='a'";
    QTest::newRow("any case, aliases and functions untouched")
        << "Select I.*,F.Filenumber from vorlane I left join FILE F on F.fileID=I.FileID order by I.docDate"
        << "Select I.*,F.\"FileNumber\" from \"Vorlane\" I left join \"File\" F on F.\"FileID\"=I.\"FileID\" "
           "order by I.\"DocDate\"";
    QTest::newRow("max") << "Select Max(TypeID) from DocumentType"
                         << "Select Max(\"TypeID\") from \"DocumentType\"";
    QTest::newRow("back-ticks") << "SELECT * FROM `Personal`"
                                << "SELECT * FROM \"Personal\"";
    QTest::newRow("references") << "Insert into References values(1,'a','b','c',1)"
                                << "Insert into \"References\" values(1,'a','b','c',1)";
    QTest::newRow("lone trailing semicolon") << "Delete from FieldCaptions;"
                                             << "Delete from \"FieldCaptions\"";
}

void DialectTest::namesAreQuotedWithTheirSpelling() {
    QFETCH(QString, in);
    QFETCH(QString, out);
    QCOMPARE(translated(in), out);
}

void DialectTest::dateLiterals_data() {
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("out");
    QTest::newRow("search form, 20xx") << "I.DocDate >= #05-Mar-26#"
                                       << "I.\"DocDate\" >= '2026-03-05'";
    QTest::newRow("search form, 19xx") << "I.DocDate <=#31-dec-30#"
                                       << "I.\"DocDate\" <='1930-12-31'";
    QTest::newRow("two-digit 29 is 2029") << "#1-Jan-29#"
                                          << "'2029-01-01'";
    QTest::newRow("purge form") << "Delete from Vorlane where DocDate < #07/Feb/2011#"
                                << "Delete from \"Vorlane\" where \"DocDate\" < '2011-02-07'";
    QTest::newRow("long English month") << "#05/March/2026#"
                                        << "'2026-03-05'";
    const QLocale system = QLocale::system();
    QTest::newRow("month of the running locale")
        << QStringLiteral("#05/%1/2026#").arg(system.monthName(3, QLocale::ShortFormat)) << "'2026-03-05'";
}

void DialectTest::dateLiterals() {
    QFETCH(QString, in);
    QFETCH(QString, out);
    QCOMPARE(translated(in), out);
}

void DialectTest::datesInInsertAndUpdateFollowTheSchema() {
    // Titles that read like dates stay texts; only the date columns are converted.
    QCOMPARE(
        translated("Insert into Vorlane Values(1, "
                   "'05/Mar/2026','06/Mar/2026',1,2,3,4,'05/Mar/2026','t2','c:\\a.pdf',"
                   "5,'b','r',1)"),
        QStringLiteral("Insert into \"Vorlane\" Values(1, '2026-03-05','2026-03-06',1,2,3,4,'05/Mar/2026',"
                       "'t2','c:\\a.pdf',5,'b','r',1)"));
    QCOMPARE(translated("Update Vorlane set DocDate='05/Mar/2026', title1='05/Mar/2026', FollowupDate=Null "
                        "where IndexID=3"),
             QStringLiteral("Update \"Vorlane\" set \"DocDate\"='2026-03-05', \"Title1\"='05/Mar/2026', "
                            "\"FollowupDate\"=Null where \"IndexID\"=3"));
    // A text in a where clause is no assignment.
    QCOMPARE(translated("Update Vorlane set Remarks='x' where Title1='05/Mar/2026'"),
             QStringLiteral("Update \"Vorlane\" set \"Remarks\"='x' where \"Title1\"='05/Mar/2026'"));
    // The working table of the report takes any text in its "date" columns.
    QCOMPARE(translated("Insert into PrintSearchResult (DocDate) values ('05/Mar/2026')"),
             QStringLiteral("Insert into \"PrintSearchResult\" (\"DocDate\") values ('05/Mar/2026')"));
    // A text that is no date is refused, in any row.
    QCOMPARE(refusal("Insert into Vorlane (IndexID, DocDate) values (1, '05/Mar/2026'), (2, '')"),
             db::ErrStatement);
}

void DialectTest::quotedTextsAreLeftAlone() {
    // Scrambled texts: any character, doubled quotes, look-alikes of names, comments and dates.
    const QString scrambled = QStringLiteral("\"\x01\u0081;--/*#1-Jan-99# View ''x");
    const QString stmt = QStringLiteral("Select UserID from Logins where UserName='%1'").arg(scrambled);
    QCOMPARE(translated(stmt),
             QStringLiteral("Select \"UserID\" from \"Logins\" where \"UserName\"='%1'").arg(scrambled));
}

void DialectTest::refusedStatements_data() {
    QTest::addColumn<QString>("statement");
    QTest::newRow("second statement") << "Delete from File; Delete from Logins";
    QTest::newRow("line comment") << "Select * from Logins where UserName='a' -- and Password='b'";
    QTest::newRow("block comment") << "Select * from Logins /* x */";
    QTest::newRow("bad date literal") << "Select * from Vorlane where DocDate < #31-Feb-26#";
    QTest::newRow("unknown month") << "Select * from Vorlane where DocDate < #05-Foo-26#";
    QTest::newRow("unterminated date") << "Select * from Vorlane where DocDate < #05-Mar-26";
    // A quote inside a scrambled name leaves the statement's quotes unbalanced.
    QTest::newRow("quote in name")
        << "Select UserID, View, Save, Modify from Logins where UserName='ab'c' and Password='x'";
    QTest::newRow("quote that opens a second statement")
        << "Select UserID from Logins where UserName='a';delete from Logins;' and Password='x'";
    QTest::newRow("quote that comments out the password")
        << "Select UserID from Logins where UserName='admin'--' and Password='x'";
}

void DialectTest::refusedStatements() {
    QFETCH(QString, statement);
    QCOMPARE(refusal(statement), db::ErrStatement);
}

void DialectTest::textSearchesLookInTheIndex_data() {
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("out");
    QTest::newRow("the search screen's statement")
        << "Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID Where I.Title1 like "
           "'%lease tax%' and I.CatID=3  order by I.DocDate"
        << "Select I.*,F.\"FileNumber\" from \"Vorlane\" I left join \"File\" F on F.\"FileID\"=I.\"FileID\" "
           "Where (I.\"IndexID\" IN (SELECT rowid FROM \"VorlaneText\" WHERE \"Title1\" MATCH '\"lease "
           "tax\"') "
           "AND I.\"Title1\" like '%lease tax%') and I.\"CatID\"=3  order by I.\"DocDate\"";
    QTest::newRow("without an alias, after the dates")
        << "Select * from Vorlane where DocDate >= #05-Mar-26# and remarks like '%paid by%'"
        << "Select * from \"Vorlane\" where \"DocDate\" >= '2026-03-05' and (\"IndexID\" IN (SELECT rowid "
           "FROM "
           "\"VorlaneText\" WHERE \"Remarks\" MATCH '\"paid by\"') AND \"Remarks\" like '%paid by%')";
    QTest::newRow("the table's own name as qualifier")
        << "Select * from Vorlane where Vorlane.Bookmark like 'Invoice%'"
        << "Select * from \"Vorlane\" where (\"Vorlane\".\"IndexID\" IN (SELECT rowid FROM \"VorlaneText\" "
           "WHERE "
           "\"Bookmark\" MATCH '\"Invoice\"') AND \"Vorlane\".\"Bookmark\" like 'Invoice%')";
    QTest::newRow("each run of a wildcard pattern")
        << "Select * from Vorlane I where I.Title2 like '%lease%t_x%due%'"
        << "Select * from \"Vorlane\" I where (I.\"IndexID\" IN (SELECT rowid FROM \"VorlaneText\" WHERE "
           "\"Title2\" "
           "MATCH '\"lease\" AND \"due\"') AND I.\"Title2\" like '%lease%t_x%due%')";
    QTest::newRow("quotes of both kinds inside the pattern")
        << "Select * from Vorlane where Title1 like '%say \"hi\" to o''brien%'"
        << "Select * from \"Vorlane\" where (\"IndexID\" IN (SELECT rowid FROM \"VorlaneText\" WHERE "
           "\"Title1\" "
           "MATCH '\"say \"\"hi\"\" to o''brien\"') AND \"Title1\" like '%say \"hi\" to o''brien%')";
    QTest::newRow("inside parentheses and or")
        << "Select * from Vorlane I where I.TypeID=1 and (I.Title1 like '%abc%' or I.Title2 like '%abc%')"
        << "Select * from \"Vorlane\" I where I.\"TypeID\"=1 and ((I.\"IndexID\" IN (SELECT rowid FROM "
           "\"VorlaneText\" WHERE \"Title1\" MATCH '\"abc\"') AND I.\"Title1\" like '%abc%') or "
           "(I.\"IndexID\" "
           "IN (SELECT rowid FROM \"VorlaneText\" WHERE \"Title2\" MATCH '\"abc\"') AND I.\"Title2\" like "
           "'%abc%'))";
    QTest::newRow("in a subquery's where")
        << "Select FileNumber from File where FileID in (select FileID from Vorlane where Bookmark like "
           "'%abc%')"
        << "Select \"FileNumber\" from \"File\" where \"FileID\" in (select \"FileID\" from \"Vorlane\" "
           "where "
           "(\"IndexID\" IN (SELECT rowid FROM \"VorlaneText\" WHERE \"Bookmark\" MATCH '\"abc\"') AND "
           "\"Bookmark\" like '%abc%'))";
    QTest::newRow("after the and of a between")
        << "Select * from Vorlane where DocDate between #01-Jan-26# and #31-Jan-26# and Title1 like '%abc%'"
        << "Select * from \"Vorlane\" where \"DocDate\" between '2026-01-01' and '2026-01-31' and "
           "(\"IndexID\" IN "
           "(SELECT rowid FROM \"VorlaneText\" WHERE \"Title1\" MATCH '\"abc\"') AND \"Title1\" like "
           "'%abc%')";
}

void DialectTest::textSearchesLookInTheIndex() {
    QFETCH(QString, in);
    QFETCH(QString, out);
    QCOMPARE(withIndex(in), out);
    // A database without the index reads every row.
    QCOMPARE(translated(in).contains(QLatin1String("VorlaneText")), false);
}

void DialectTest::otherLikesReadEveryRow_data() {
    QTest::addColumn<QString>("statement");
    QTest::newRow("two letters") << "Select * from Vorlane I where I.Title1 like '%ta%'";
    QTest::newRow("no three letters between wildcards")
        << "Select * from Vorlane where Title1 like '%ab_cd%e%'";
    QTest::newRow("only wildcards") << "Select * from Vorlane where Title1 like '%'";
    QTest::newRow("a column without the index") << "Select * from Vorlane I where I.FilePath like '%scans%'";
    QTest::newRow("the report's table") << "Select * from PrintSearchResult where Title1 like '%abc%'";
    QTest::newRow("another table's remarks") << "Select * from Contacts C where C.Remarks like '%abc%'";
    QTest::newRow("bare column of two tables")
        << "Select * from Vorlane, PrintSearchResult P where Title1 like '%abc%'";
    QTest::newRow("alias of two tables") << "Select * from Vorlane V where exists (select 1 from "
                                            "PrintSearchResult V where V.Title1 like '%abc%')";
    QTest::newRow("not like") << "Select * from Vorlane I where I.Title1 not like '%abc%'";
    QTest::newRow("under not") << "Select * from Vorlane I where not I.Title1 like '%abc%'";
    QTest::newRow("under not, in parentheses")
        << "Select * from Vorlane I where I.TypeID=1 and not (I.CatID=2 or I.Title1 like '%abc%')";
    QTest::newRow("compared") << "Select * from Vorlane I where I.Title1 like '%abc%' = 0";
    QTest::newRow("is null") << "Select * from Vorlane I where I.Title1 like '%abc%' is null";
    QTest::newRow("an escape character")
        << "Select * from Vorlane I where I.Title1 like '%abc!%%' escape '!'";
    QTest::newRow("a joined pattern") << "Select * from Vorlane I where I.Title1 like '%abc' || '%'";
    QTest::newRow("a column as pattern") << "Select * from Vorlane I where I.Title1 like I.Title2";
    QTest::newRow("in the select list") << "Select Title1 like '%abc%' from Vorlane";
    QTest::newRow("in a case")
        << "Select * from Vorlane where case when Title1 like '%abc%' then 1 else 0 end";
    QTest::newRow("a function's argument") << "Select * from Vorlane where coalesce(Title1 like '%abc%', 1)";
    QTest::newRow("the bounds of a between")
        << "Select * from Vorlane where 1 between 0 and Title1 like '%abc%'";
    QTest::newRow("a purge") << "Delete from Vorlane where Title1 like '%abc%'";
    QTest::newRow("an update") << "Update Vorlane set Remarks='x' where Title1 like '%abc%'";
}

void DialectTest::otherLikesReadEveryRow() {
    QFETCH(QString, statement);
    QCOMPARE(withIndex(statement), translated(statement));
}

void DialectTest::postgresLikeIgnoresCaseAndEscapes_data() {
    QTest::addColumn<QString>("in");
    QTest::addColumn<QString>("out");
    QTest::newRow("the search screen's statement, dates as on the file")
        << "Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID Where I.DocDate >= "
           "#05-Mar-26# and I.Title1 like '%c:\\tax%' order by I.DocDate"
        << "Select I.*,F.\"FileNumber\" from \"Vorlane\" I left join \"File\" F on F.\"FileID\"=I.\"FileID\" "
           "Where I.\"DocDate\" >= '2026-03-05' and I.\"Title1\"::text ILIKE '%c:\\tax%' ESCAPE '' order by "
           "I.\"DocDate\"";
    QTest::newRow("not like, in parentheses")
        << "Select * from Contacts where (fullname not like 'a%')"
        << "Select * from \"Contacts\" where (\"FullName\"::text not ILIKE 'a%' ESCAPE '')";
    QTest::newRow("an escape of its own") << "Select * from Vorlane where Title1 like '%a!%%' escape '!'"
                                          << "Select * from \"Vorlane\" where \"Title1\"::text ILIKE '%a!%%' "
                                             "escape '!'";
    QTest::newRow("a joined pattern, an expression")
        << "Select * from Vorlane where lower(Title1) like '%a' || '%'"
        << "Select * from \"Vorlane\" where lower(\"Title1\") ILIKE '%a' || '%'";
}

void DialectTest::postgresLikeIgnoresCaseAndEscapes() {
    QFETCH(QString, in);
    QFETCH(QString, out);
    QCOMPARE(db::PostgresDialect().translate(in), out);
}

QTEST_GUILESS_MAIN(DialectTest)
#include "tst_dialect.moc"
