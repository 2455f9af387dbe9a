// Dates as the screens write them under every locale that Qt knows, read back by the data layer
// through the engine; texts that are no dates kept out of the date columns; and the texts that an
// earlier version stored in them turned into their dates at the first open.
#include "datastore/Ado.h"
#include "datastore/DateText.h"
#include "support/TestSupport.h"

#include <QSet>
#include <QtTest>

using testsupport::errorOf;

namespace {

db::ConnectionPtr openStore() {
    auto c = std::make_shared<db::Connection>();
    c->Open(QStringLiteral("Vorlane"));
    return c;
}

// The first and last day of every month of 2025, a leap day, and two-digit years on both sides
// of the century window.
QVector<QDate> walkedDates() {
    QVector<QDate> dates{QDate(2024, 2, 29), QDate(1930, 1, 1), QDate(1999, 12, 31), QDate(2000, 1, 1),
                         QDate(2029, 12, 31)};
    for (int m = 1; m <= 12; ++m)
        dates << QDate(2025, m, 1) << QDate(2025, m, 1).addMonths(1).addDays(-1);
    return dates;
}

// A month's names as a user may write them: short and long, in a sentence and alone, with and
// without their dot, in upper and lower case, Qt's and the locale's own.
QSet<QString> spellings(const QLocale& locale, int month) {
    QSet<QString> out;
    for (const QString& name :
         {locale.monthName(month, QLocale::ShortFormat), locale.monthName(month, QLocale::LongFormat),
          locale.standaloneMonthName(month, QLocale::ShortFormat),
          locale.standaloneMonthName(month, QLocale::LongFormat)}) {
        QString bare = name;
        while (bare.endsWith(QLatin1Char('.')))
            bare.chop(1);
        for (const QString& n : {name, bare})
            out << n << n.toUpper() << n.toLower() << locale.toUpper(n) << locale.toLower(n);
    }
    return out;
}

} // namespace

class DatesTest : public QObject {
    Q_OBJECT
  private slots:
    void init() { m_env = std::make_unique<testsupport::TestEnvironment>(); }
    void cleanup() {
        m_env.reset();
        QLocale::setDefault(QLocale::c());
    }

    void everyLocaleReadsItsDatesBack();
    void aTextThatIsNoDateIsRefused();
    void oldTextsBecomeDatesOnceAtTheFirstOpen();

  private:
    std::unique_ptr<testsupport::TestEnvironment> m_env;
};

// Under each locale: the save's quoted dates stored by a positional Insert, found again by the
// search's and the purge's date literals, and read back as those dates; the names in every
// spelling, and the sentence's form, read by the parser alone.
void DatesTest::everyLocaleReadsItsDatesBack() {
    const auto locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    const QVector<QDate> dates = walkedDates();
    QStringList failures;
    const auto connection = openStore();
    connection->BeginTrans();
    int key = 0;
    for (const QLocale& locale : locales) {
        QLocale::setDefault(locale);
        const auto text = [&](const QDate& d, const char* format) {
            return locale.toString(d, QString::fromLatin1(format));
        };
        QStringList rows, found;
        for (const QDate& d : dates) {
            ++key;
            rows << QStringLiteral("(%1,'%2','%2',1,1,1,1,'','','',1,'','',1)")
                        .arg(key)
                        .arg(text(d, "dd/MMM/yyyy"));
            found << QStringLiteral(
                         "(IndexID=%1 and DocDate >= #%2# and DocDate <= #%2# and FollowupDate < #%3# "
                         "and not FollowupDate < #%4#)")
                         .arg(key)
                         .arg(text(d, "dd-MMM-yy"), text(d.addDays(1), "dd/MMM/yyyy"),
                              text(d, "dd/MMM/yyyy"));
            if (db::sql::parseScreenDate(text(d, "dd-MMM-yyyy")) != d)
                failures << locale.name() + QLatin1Char(' ') + text(d, "dd-MMM-yyyy");
        }
        for (int m = 1; m <= 12; ++m)
            for (const QString& name : spellings(locale, m))
                if (const QString t =
                        text(QDate(2025, m, 15), "dd/") + name + text(QDate(2025, m, 15), "/yy");
                    db::sql::parseScreenDate(t) != QDate(2025, m, 15))
                    failures << locale.name() + QLatin1Char(' ') + t;
        try {
            connection->Execute(QStringLiteral("Insert into Vorlane Values") + rows.join(QLatin1Char(',')));
            db::Recordset rs;
            rs.Open(QStringLiteral("Select IndexID, DocDate, FollowupDate from Vorlane where ") +
                        found.join(QStringLiteral(" or ")) + QStringLiteral(" order by IndexID"),
                    connection, db::adOpenStatic, db::adLockReadOnly);
            int row = key - int(dates.size());
            for (const QDate& d : dates) {
                ++row;
                if (rs.eof() || rs.Fields(0).toInt() != row || rs.Fields(1) != QVariant(d) ||
                    rs.Fields(2) != QVariant(d))
                    failures << locale.name() + QLatin1Char(' ') + text(d, "dd/MMM/yyyy");
                else
                    rs.MoveNext();
            }
        } catch (const platform::Error& e) {
            failures << locale.name() + QLatin1Char(' ') + e.description();
        }
    }
    connection->CommitTrans();
    qInfo("%lld locales walked, %lld dates each", qlonglong(locales.size()), qlonglong(dates.size()));
    QVERIFY2(failures.isEmpty(), qPrintable(failures.mid(0, 20).join(QLatin1Char('\n'))));
    QCOMPARE(m_env->count(QStringLiteral("Vorlane")), key);
}

// A text that is no date, put into a date column by an Insert, an Update or a recordset's new row,
// is refused in the data layer's words; nothing of it is stored.
void DatesTest::aTextThatIsNoDateIsRefused() {
    const auto c = openStore();
    c->Execute(QStringLiteral(
        "Insert into Vorlane Values(1,'2025-01-15','15/Jan/2025',1,1,1,1,'','','',1,'','',1)"));
    QString why;
    QCOMPARE(errorOf(
                 [&] {
                     c->Execute(QStringLiteral("Insert into Vorlane Values(2,'soon','15/Jan/2025',1,1,1,1,'',"
                                               "'','',1,'','',1)"));
                 },
                 &why),
             db::ErrStatement);
    QCOMPARE(why, QStringLiteral("'soon' is not a date: the column DocDate holds dates only."));
    QCOMPARE(errorOf(
                 [&] {
                     c->Execute(
                         QStringLiteral("Update Vorlane set FollowupDate='31/Feb/2025' where IndexID=1"));
                 },
                 &why),
             db::ErrStatement);
    QCOMPARE(why, QStringLiteral("'31/Feb/2025' is not a date: the column FollowupDate holds dates only."));
    db::Recordset rs;
    rs.Open(QStringLiteral("Select * from Vorlane"), c, db::adOpenDynamic, db::adLockOptimistic);
    rs.AddNew();
    rs.setField(QStringLiteral("IndexID"), 3);
    rs.setField(QStringLiteral("docdate"), QString());
    QCOMPARE(errorOf([&] { rs.Update(); }), db::ErrStatement);
    QCOMPARE(m_env->count(QStringLiteral("Vorlane")), 1);
    QCOMPARE(m_env->scalar(QStringLiteral("select FollowupDate from Vorlane")).toString(),
             QStringLiteral("2025-01-15"));
}

// A database of an earlier version, written under German and other languages: the first open turns
// each text that it can read into its date and leaves the others; its mark makes that happen once.
void DatesTest::oldTextsBecomeDatesOnceAtTheFirstOpen() {
    if (testsupport::onServer())
        QSKIP("The server never stored a text in a date column.");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QList<QPair<QString, QString>> texts{
        {"15/Jan./2025", "2025-01-15"},   {"30/SEPT/2025", "2025-09-30"}, {"05/мар./2025", "2025-03-05"},
        {"٠١/ديسمبر/٢٠٢٥", "2025-12-01"}, {"someday", "someday"},         {"2025-06-01", "2025-06-01"}};
    m_env->exec(QStringLiteral("PRAGMA user_version = 0"));
    for (int i = 0; i < texts.size(); ++i)
        m_env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'','','',1,'','',1)")
                        .arg(i + 1)
                        .arg(texts[i].first));
    openStore();
    for (int i = 0; i < texts.size(); ++i)
        for (const char* column : {"DocDate", "FollowupDate"})
            QCOMPARE(
                m_env
                    ->scalar(QStringLiteral("select %1 from Vorlane where IndexID=%2").arg(column).arg(i + 1))
                    .toString(),
                texts[i].second);
    QCOMPARE(m_env->scalar(QStringLiteral("PRAGMA user_version")).toInt(), 1);
    m_env->exec(QStringLiteral("update Vorlane set DocDate='16/Jan./2025' where IndexID=1"));
    openStore();
    QCOMPARE(m_env->scalar(QStringLiteral("select DocDate from Vorlane where IndexID=1")).toString(),
             QStringLiteral("16/Jan./2025"));
}

QTEST_GUILESS_MAIN(DatesTest)
#include "tst_dates.moc"
