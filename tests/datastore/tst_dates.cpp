// Dates as the screens write them under every locale that Qt knows, read back through the engine;
// texts that are no dates kept out of the date columns; and the texts that an earlier version
// stored there turned into their dates at the first open.
#include "datastore/Ado.h"
#include "datastore/DateText.h"
#include "support/TestSupport.h"

#include <QtTest>

using testsupport::errorOf;

namespace {

db::ConnectionPtr openStore() {
    auto c = std::make_shared<db::Connection>();
    c->Open(QStringLiteral("Vorlane"));
    return c;
}

// A month's names as a user may write them: short and long, in a sentence and alone, with and
// without their dot, in upper and lower case, Qt's and the locale's own.
QStringList spellings(const QLocale& locale, int month) {
    static const QRegularExpression trailingDots(QStringLiteral("\\.+$"));
    QStringList out;
    for (QString name :
         {locale.monthName(month, QLocale::ShortFormat), locale.monthName(month, QLocale::LongFormat),
          locale.standaloneMonthName(month, QLocale::ShortFormat),
          locale.standaloneMonthName(month, QLocale::LongFormat)})
        for (int bare = 0; bare < 2; ++bare, name.remove(trailingDots))
            out << name << name.toUpper() << name.toLower() << locale.toUpper(name) << locale.toLower(name);
    out.removeDuplicates();
    return out;
}

} // namespace

class DatesTest : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

  private slots:
    void init() { env = std::make_unique<testsupport::TestEnvironment>(); }
    void cleanup() {
        env.reset();
        QLocale::setDefault(QLocale::c());
    }

    // Under each locale: the save's quoted dates stored by an Insert, found by the search's and
    // the purge's date literals and read back as those dates; the sentence's form and the names in
    // every spelling read by the parser.
    void everyLocaleReadsItsDatesBack() {
        const auto locales =
            QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
        // The first and last day of every month of 2025, a leap day, and two-digit years on both
        // sides of the century window.
        QVector<QDate> dates{QDate(2024, 2, 29), QDate(1930, 1, 1), QDate(1999, 12, 31), QDate(2000, 1, 1),
                             QDate(2029, 12, 31)};
        for (int m = 1; m <= 12; ++m)
            dates << QDate(2025, m, 1) << QDate(2025, m, 1).addMonths(1).addDays(-1);
        QStringList failures;
        const auto c = openStore();
        c->BeginTrans();
        int key = 0;
        for (const QLocale& locale : locales) {
            QLocale::setDefault(locale);
            const auto text = [&](const QDate& d, const char* format) {
                return locale.toString(d, QLatin1String(format));
            };
            const auto fail = [&](const QString& what) { failures << locale.name() + u' ' + what; };
            QStringList rows, found;
            for (const QDate& d : dates) {
                rows << QStringLiteral("(%1,'%2','%2',1,1,1,1,'','','',1,'','',1)")
                            .arg(++key)
                            .arg(text(d, "dd/MMM/yyyy"));
                found << QStringLiteral(
                             "(IndexID=%1 and DocDate >= #%2# and DocDate <= #%2# and FollowupDate < "
                             "#%3# and not FollowupDate < #%4#)")
                             .arg(key)
                             .arg(text(d, "dd-MMM-yy"), text(d.addDays(1), "dd/MMM/yyyy"),
                                  text(d, "dd/MMM/yyyy"));
                if (db::sql::parseScreenDate(text(d, "dd-MMM-yyyy")) != d)
                    fail(text(d, "dd-MMM-yyyy"));
            }
            for (int m = 1; m <= 12 && !testsupport::onServer(); ++m) // the parser alone: once
                for (const QString& name : spellings(locale, m))
                    if (const QDate d(2025, m, 15);
                        db::sql::parseScreenDate(text(d, "dd/") + name + text(d, "/yy")) != d)
                        fail(name);
            try {
                c->Execute(QStringLiteral("Insert into Vorlane Values") + rows.join(QLatin1Char(',')));
                db::Recordset rs;
                rs.Open(QStringLiteral("Select DocDate, FollowupDate from Vorlane where ") +
                            found.join(QStringLiteral(" or ")) + QStringLiteral(" order by IndexID"),
                        c, db::adOpenStatic, db::adLockReadOnly);
                if (rs.RecordCount() != dates.size())
                    fail(QStringLiteral("%1 of %2 found").arg(rs.RecordCount()).arg(dates.size()));
                for (int i = 0; !rs.eof(); ++i, rs.MoveNext())
                    if (rs.Fields(0) != QVariant(dates[i]) || rs.Fields(1) != QVariant(dates[i]))
                        fail(text(dates[i], "dd/MMM/yyyy"));
            } catch (const platform::Error& e) {
                fail(e.description());
            }
        }
        c->CommitTrans();
        qInfo("%lld locales walked, %lld dates each", qlonglong(locales.size()), qlonglong(dates.size()));
        QVERIFY2(failures.isEmpty(), qPrintable(failures.mid(0, 20).join(QLatin1Char('\n'))));
        QCOMPARE(env->count(QStringLiteral("Vorlane")), key);
    }

    // A text that is no date, put into a date column by an Update or a recordset's new row, is
    // refused in the data layer's words, and nothing of it is stored.
    void aTextThatIsNoDateIsRefused() {
        const auto c = openStore();
        c->Execute(QStringLiteral(
            "Insert into Vorlane Values(1,'2025-01-15','15/Jan/2025',1,1,1,1,'','','',1,'','',1)"));
        QString why;
        QCOMPARE(errorOf([&] { c->Execute(QStringLiteral("Update Vorlane set FollowupDate='31/Feb/2025'")); },
                         &why),
                 db::ErrStatement);
        QCOMPARE(why,
                 QStringLiteral("'31/Feb/2025' is not a date: the column FollowupDate holds dates only."));
        db::Recordset rs;
        rs.Open(QStringLiteral("Select * from Vorlane"), c, db::adOpenDynamic, db::adLockOptimistic);
        rs.AddNew();
        rs.setField(QStringLiteral("IndexID"), 2);
        rs.setField(QStringLiteral("docdate"), QStringLiteral("soon"));
        QCOMPARE(errorOf([&] { rs.Update(); }), db::ErrStatement);
        QCOMPARE(env->count(QStringLiteral("Vorlane")), 1);
        QCOMPARE(env->scalar(QStringLiteral("select FollowupDate from Vorlane")).toString(),
                 QStringLiteral("2025-01-15"));
    }

    // A database of an earlier version, written under German and other languages: the first open
    // turns each text that it can read into its date and leaves the others, once.
    void oldTextsBecomeDatesOnceAtTheFirstOpen() {
        if (testsupport::onServer())
            QSKIP("The server never stored a text in a date column.");
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const QList<QPair<QString, QString>> texts{
            {"15/Jan./2025", "2025-01-15"},   {"30/SEPT/2025", "2025-09-30"}, {"05/мар./2025", "2025-03-05"},
            {"٠١/ديسمبر/٢٠٢٥", "2025-12-01"}, {"someday", "someday"},         {"2025-06-01", "2025-06-01"}};
        env->exec(QStringLiteral("PRAGMA user_version = 0"));
        for (int i = 0; i < texts.size(); ++i)
            env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'','','',1,'','',1)")
                          .arg(i + 1)
                          .arg(texts[i].first));
        openStore();
        for (int i = 0; i < texts.size(); ++i)
            QCOMPARE(
                env->scalar(QStringLiteral("select DocDate || FollowupDate from Vorlane where IndexID=%1")
                                .arg(i + 1))
                    .toString(),
                texts[i].second + texts[i].second);
        env->exec(QStringLiteral("update Vorlane set DocDate='16/Jan./2025' where IndexID=1"));
        openStore();
        QCOMPARE(env->scalar(QStringLiteral("select DocDate from Vorlane where IndexID=1")).toString(),
                 QStringLiteral("16/Jan./2025"));
    }
};

QTEST_GUILESS_MAIN(DatesTest)
#include "tst_dates.moc"
