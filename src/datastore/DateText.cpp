#include "DateText.h"

#include "Errors.h"

#include <QHash>
#include <QLocale>

namespace db::sql {

namespace {

// A month name as names are compared: without regard to letter case or to compatibility forms
// (full-width letters), without invisible format characters (a joiner, a direction mark), with
// one kind of blank, and without its closing dot.
QString exactKey(QStringView name) {
    const QString folded = name.toString().normalized(QString::NormalizationForm_KC).toCaseFolded();
    QString key;
    key.reserve(folded.size());
    for (const QChar c : folded) {
        if (c.category() == QChar::Other_Format)
            continue;
        if (c.isSpace()) {
            if (!key.isEmpty() && !key.endsWith(QLatin1Char(' ')))
                key += QLatin1Char(' ');
            continue;
        }
        key += c;
    }
    while (key.endsWith(QLatin1Char('.')) || key.endsWith(QLatin1Char(' ')))
        key.chop(1);
    return key;
}

// Looser still, for what upper-casing in a language's own way makes of a name: without accents
// and other combining marks (Greek capitals lose their tonos), the dotted and the dotless i alike
// (Turkish, Azerbaijani), ß as ss.
QString looseKey(const QString& exact) {
    const QString decomposed = exact.normalized(QString::NormalizationForm_KD);
    QString key;
    key.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (c.category() == QChar::Mark_NonSpacing)
            continue;
        if (c == QChar(0x0131))
            key += QLatin1Char('i');
        else if (c == QChar(0x00DF))
            key += QLatin1String("ss");
        else
            key += c;
    }
    return key.toCaseFolded();
}

// Month names by their keys. A key that two months share means none of them (0): the loose forms
// of some languages' names coincide, and so do the names of different languages.
class MonthNames {
  public:
    MonthNames() = default;
    explicit MonthNames(const QLocale& locale) { add(locale); }

    void add(const QLocale& locale) {
        for (int m = 1; m <= 12; ++m)
            for (const QString& name :
                 {locale.monthName(m, QLocale::ShortFormat), locale.monthName(m, QLocale::LongFormat),
                  locale.standaloneMonthName(m, QLocale::ShortFormat),
                  locale.standaloneMonthName(m, QLocale::LongFormat)}) {
                const QString exact = exactKey(name);
                if (exact.isEmpty())
                    continue;
                insert(m_exact, exact, m);
                insert(m_loose, looseKey(exact), m);
            }
    }

    // The month of a name: 1-12, 0 when two months share it, -1 when unknown.
    int exact(const QString& key) const { return m_exact.value(key, -1); }
    int loose(const QString& key) const { return m_loose.value(key, -1); }

  private:
    static void insert(QHash<QString, int>& names, const QString& key, int month) {
        const auto it = names.constFind(key);
        if (it == names.cend())
            names.insert(key, month);
        else if (*it != month)
            names.insert(key, 0);
    }

    QHash<QString, int> m_exact;
    QHash<QString, int> m_loose;
};

// The names of the running locale and the system's, made again only when they change.
struct LocaleNames {
    QLocale running = QLocale::c();
    QLocale system = QLocale::c();
    MonthNames runningNames{QLocale::c()};
    MonthNames systemNames{QLocale::c()};
};

const MonthNames& englishNames() {
    static const MonthNames names(QLocale::c());
    return names;
}

const MonthNames& namesOfAnyLanguage() {
    static const MonthNames names = [] {
        MonthNames all;
        for (const QLocale& locale :
             QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory))
            all.add(locale);
        return all;
    }();
    return names;
}

enum class Languages { RunningAndEnglish, Any };

// The month of a name: that of the running locale, else the system's, else English (exactly,
// then loosely, in each; a name that means two months there means none); with Languages::Any
// also the one month that every language using the name means. 0 when none.
int lookUp(const QString& name, Languages languages, const LocaleNames& current) {
    const QString exact = exactKey(name);
    if (exact.isEmpty())
        return 0;
    QString loose;
    const MonthNames* const order[] = {&current.runningNames, &current.systemNames, &englishNames()};
    for (const MonthNames* names : order) {
        if (const int m = names->exact(exact); m > 0)
            return m;
        if (loose.isNull())
            loose = looseKey(exact);
        if (const int m = names->loose(loose); m > 0)
            return m;
    }
    if (languages == Languages::Any) {
        if (const int m = namesOfAnyLanguage().exact(exact); m > 0)
            return m;
        return qMax(0, namesOfAnyLanguage().loose(loose));
    }
    return 0;
}

int monthNumber(const QString& name, Languages languages) {
    thread_local LocaleNames current;
    const QLocale running;
    const QLocale system = QLocale::system();
    if (running != current.running || system != current.system) {
        current.running = running;
        current.runningNames = MonthNames(running);
        current.system = system;
        current.systemNames = MonthNames(system);
    }
    return lookUp(name, languages, current);
}

// The decimal digit at `i` in any script, a character of one or two UTF-16 units; -1 when
// there is none. `i` moves past a digit.
int digitAt(QStringView text, qsizetype& i) {
    if (i >= text.size())
        return -1;
    char32_t c = text[i].unicode();
    qsizetype units = 1;
    if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
        c = QChar::surrogateToUcs4(text[i], text[i + 1]);
        units = 2;
    }
    if (QChar::category(c) != QChar::Number_DecimalDigit)
        return -1;
    i += units;
    return QChar::digitValue(c);
}

std::optional<QDate> parseDate(const QString& text, Languages languages) {
    const QStringView s = QStringView(text).trimmed();
    qsizetype i = 0;
    int day = 0;
    int dayDigits = 0;
    for (int d; (d = digitAt(s, i)) >= 0; ++dayDigits)
        day = day * 10 + d;
    if (dayDigits < 1 || dayDigits > 2 || i >= s.size())
        return std::nullopt;
    const QChar separator = s[i];
    if (separator != QLatin1Char('-') && separator != QLatin1Char('/'))
        return std::nullopt;
    // The year follows the last separator: the month's name may hold the separator too.
    const qsizetype last = s.lastIndexOf(separator);
    if (last <= i + 1)
        return std::nullopt;
    qsizetype j = last + 1;
    int year = 0;
    int yearDigits = 0;
    for (int d; (d = digitAt(s, j)) >= 0; ++yearDigits)
        year = year * 10 + d;
    if (j != s.size() || (yearDigits != 2 && yearDigits != 4))
        return std::nullopt;
    if (yearDigits == 2)
        year += year >= 30 ? 1900 : 2000;
    const int month = monthNumber(s.sliced(i + 1, last - i - 1).toString(), languages);
    if (month == 0)
        return std::nullopt;
    const QDate date(year, month, day);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

} // namespace

std::optional<QDate> parseScreenDate(const QString& text) {
    return parseDate(text, Languages::RunningAndEnglish);
}

std::optional<QDate> parseDateOfAnyLanguage(const QString& text) {
    return parseDate(text, Languages::Any);
}

std::optional<QDate> parseStoredDate(const QString& text) {
    if (text.size() != 10 || text[4] != QLatin1Char('-') || text[7] != QLatin1Char('-'))
        return std::nullopt;
    for (int i : {0, 1, 2, 3, 5, 6, 8, 9})
        if (text[i] < QLatin1Char('0') || text[i] > QLatin1Char('9'))
            return std::nullopt;
    const QDate date = QDate::fromString(text, Qt::ISODate);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

QDate columnDate(const QString& text, const QString& column) {
    if (const auto date = parseScreenDate(text))
        return *date;
    if (const auto date = parseStoredDate(text))
        return *date;
    throw platform::Error(
        ErrStatement,
        QStringLiteral("'%1' is not a date: the column %2 holds dates only.").arg(text, column));
}

} // namespace db::sql
