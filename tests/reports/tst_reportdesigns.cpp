#include "platform/TestHooks.h"
#include "reports/Report.h"
#include "reports/ReportDesigns.h"
#include "reports/ReportPreview.h"
#include "support/ReportSamples.h"

#include <QFontInfo>
#include <QPrinter>
#include <QProcess>
#include <QRawFont>
#include <QTemporaryDir>
#include <QtTest>

using namespace reports;
using namespace testsupport::samples;

namespace {

MemoryData files() {
    MemoryData d;
    for (int i = 1; i <= 64; ++i)
        d.addRow({{"FileID", QString::number(i)},
                  {"FileNumber", QStringLiteral("F-%1").arg(i, 3, 10, QLatin1Char('0'))},
                  {"Particulars", i == 1 ? "Electricity and water" : "Supplier invoices Q1"}});
    d.addRow({{"FileNumber", "ARCHIVE/2019/LONG-NUMBER-25"}, {"Particulars", "Old records (box 14 of 20)"}});
    return d;
}

std::unique_ptr<Report> makeReport(ReportDesign design, const MemoryData& rows, const PageSetup& setup) {
    auto report =
        std::make_unique<Report>(std::move(design), [rows] { return std::make_unique<MemoryData>(rows); });
    report->setPageSetup(setup);
    return report;
}

QString pdfText(const QString& pdf) {
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    if (!p.waitForFinished(30000) || p.exitCode() != 0)
        return QString();
    return QString::fromUtf8(p.readAllStandardOutput());
}

// Every item stays inside the margins of the paper.
void checkInsideMargins(const LaidOutReport& laid) {
    const PageSetup& s = laid.setup;
    for (const Page& page : laid.pages)
        for (const PageItem& item : page.items) {
            QVERIFY2(item.rect.left() >= s.marginLeft - 0.01, qPrintable(item.control));
            QVERIFY2(item.rect.right() <= s.paper.width() - s.marginRight + 0.01, qPrintable(item.control));
            QVERIFY2(item.rect.top() >= s.marginTop - 0.01, qPrintable(item.control));
            QVERIFY2(item.rect.bottom() <= s.paper.height() - s.marginBottom + 0.01,
                     qPrintable(item.control));
        }
}

const PageItem* find(const Page& page, const QString& control) {
    for (const auto& item : page.items)
        if (item.control == control)
            return &item;
    return nullptr;
}

const PageItem* findLast(const Page& page, const QString& control) {
    const PageItem* last = nullptr;
    for (const auto& item : page.items)
        if (item.control == control)
            last = &item;
    return last;
}

// The control printed all of the text, on as many lines as it took, and marked no cut.
void checkPrintsWhole(const Page& page, const QString& control, const QString& text) {
    const QStringList lines = page.textOf(control);
    QVERIFY2(!lines.isEmpty(), qPrintable(control));
    for (const QString& line : lines)
        QVERIFY2(!line.contains(QChar(0x2026)), qPrintable(control + ": " + line));
    static const QRegularExpression blank(QStringLiteral("\\s"));
    QCOMPARE(lines.join(QString()).remove(blank), QString(text).remove(blank));
}

} // namespace

// The six report designs laid out with data as long as an office types it, on A4 and on US
// Letter: every text prints whole and inside the margins, in the faces the program ships.
class TestReportDesigns : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { platform::test::enable(); }
    void reportsAreSetInTheFacesTheyShip();
    void letterheadsPrintLongNamesAndAddressesWhole();
    void searchReportPrintsEveryHeadingAndTheWholeQuery();
    void contactListPrintsAddressLinesOfFortyLetters();
    void internetReferencesPrintALinkOf120Letters();
    void fileListPdfReadsBack();
};
void TestReportDesigns::reportsAreSetInTheFacesTheyShip() {
    // Every face a design uses is the file the program carries, whatever the machine holds of
    // the same name (CTest runs this also with no machine fonts, and with machine fonts that
    // take the faces' names).
    QSet<QString> seen;
    for (const char* name : {"RptFileList", "RptInternetRef", "RptContactList", "rptSearchReport",
                             "RptLetterHead", "RptLetterHead2"})
        for (const Section& section : designs::byName(name).sections)
            for (const Control& control : section.controls) {
                if (control.kind == ControlKind::Line)
                    continue;
                const FontSpec spec = control.font;
                const QString file = QStringLiteral(":/reports/fonts/Liberation%1-%2.ttf")
                                         .arg(spec.serif ? "Serif" : "Sans", spec.bold ? "Bold" : "Regular");
                if (seen.contains(file))
                    continue;
                seen.insert(file);
                QVERIFY(!spec.italic);
                const QFont font = reportFont(spec);
                QFile shipped(file);
                QVERIFY2(shipped.open(QIODevice::ReadOnly), qPrintable(file));
                const QRawFont loaded(shipped.readAll(), spec.pointSize);
                QCOMPARE(loaded.familyName(),
                         spec.serif ? QString("Liberation Serif") : QString("Liberation Sans"));
                const QRawFont used = QRawFont::fromFont(font);
                QCOMPARE(used.familyName(), QFontInfo(font).family());
                QVERIFY(used.fontTable("head") == loaded.fontTable("head"));
                QVERIFY(used.fontTable("hmtx") == loaded.fontTable("hmtx"));
                QCOMPARE(QFontInfo(font).bold(), spec.bold);
                QCOMPARE(font.pointSizeF(), spec.pointSize);
            }
    QCOMPARE(seen.size(), 4);
    // The faces' licence travels with them.
    QFile licence(":/reports/fonts/COPYRIGHT");
    QVERIFY(licence.open(QIODevice::ReadOnly));
    QVERIFY(licence.readAll().contains("SIL Open Font License"));
}

void TestReportDesigns::letterheadsPrintLongNamesAndAddressesWhole() {
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const auto left = layoutReport(designs::RptLetterHead(), personalInFull(), setup);
        const auto centred = layoutReport(designs::RptLetterHead2(), personalInFull(), setup);
        checkInsideMargins(left);
        checkInsideMargins(centred);
        const Page& l = left.pages[0];
        const Page& c = centred.pages[0];
        for (const Page* page : {&l, &c}) {
            for (const auto& [field, value] : kPersonal)
                QCOMPARE(page->textOf("txt" + field), QStringList{value});
            // Each caption ends just before its value, the same gap for all of them.
            const double gap = find(*page, "txtCell")->rect.left() - find(*page, "Label2")->rect.right();
            QVERIFY(gap > 1 && gap < 4);
            for (const auto& [caption, value] :
                 {std::pair{"Label1", "txtPhone"}, std::pair{"Label3", "txtFax"},
                  std::pair{"Label4", "txtEmail"}}) {
                // Captions end at their box (right-aligned) or are as wide as their text.
                const PageItem* label = find(*page, caption);
                if (label->align != Align::Right)
                    QVERIFY(clipToWidth(label->text, label->font, label->rect.width() - 0.5) != label->text);
                QVERIFY2(std::abs(find(*page, value)->rect.left() - label->rect.right() - gap) < 0.01,
                         caption);
            }
        }
        // The head closes with a rule across the body; the 4-inch footer stays empty.
        for (const Page* page : {&l, &c}) {
            QCOMPARE(find(*page, "Line1")->rect.width(), setup.bodyWidth());
            for (const auto& item : page->items)
                QVERIFY(item.rect.bottom() < setup.paper.height() - setup.marginBottom - 288);
        }
        // The left head starts at the margin; its mail address may run to the right margin.
        QCOMPARE(find(l, "txtFullName")->align, Align::Left);
        QCOMPARE(find(l, "Label2")->rect.left(), setup.marginLeft);
        QCOMPARE(find(l, "txtEmail")->rect.right(), setup.paper.width() - setup.marginRight);
        QCOMPARE(find(c, "txtFullName")->align, Align::Center);
    }
}

void TestReportDesigns::searchReportPrintsEveryHeadingAndTheWholeQuery() {
    const QString query = queryOfAllCriteria();
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        auto report = makeReport(designs::rptSearchReport(), searchRows(), setup);
        report->Sections("ReportHeader").Controls("lblQuery").setCaption(query);
        report->Refresh();
        const LaidOutReport& laid = report->pages();
        checkInsideMargins(laid);
        const Page& first = laid.pages[0];
        checkPrintsWhole(first, "lblQuery", query);
        QVERIFY(first.textOf("lblQuery").size() > 3);
        // The headings stand below the whole query, which prints on the first page only.
        QVERIFY(find(first, "Line2")->rect.top() >= findLast(first, "lblQuery")->rect.bottom());
        QVERIFY(laid.pages.size() >= 2);
        QCOMPARE(laid.pages[1].textOf("lblQuery"), QStringList());
        // The row's columns stand two by two: the key over the first title, and so on.
        QCOMPARE(find(first, "txtTitle2")->rect.left(), find(first, "txtTitle1")->rect.left());
        QVERIFY(find(first, "txtTitle2")->rect.top() > find(first, "txtTitle1")->rect.top());
        for (const Page& page : laid.pages) {
            QCOMPARE(page.textOf("Label3"), (QStringList{"Doc. Dt /", "Follow-Up Dt."}));
            // Each heading stands over its column.
            QVERIFY(find(page, "Label3")->rect.left() >= find(first, "txtDocDate")->rect.left() - 0.01);
            QVERIFY(find(page, "Label3")->rect.right() <= find(first, "txtBookmark")->rect.left());
        }
    }
}

void TestReportDesigns::contactListPrintsAddressLinesOfFortyLetters() {
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const auto laid = layoutReport(designs::RptContactList(), contactsInFull(), setup);
        checkInsideMargins(laid);
        const Page& page = laid.pages.last();
        for (qsizetype i = 1; i < kPersonal.size() - 1; ++i) // the address lines to the fax
            QCOMPARE(page.textOf("txt" + kPersonal.at(i).first).constLast(), kPersonal.at(i).second);
        QVERIFY(page.textOf("txtEmail").join(QString()).endsWith(kMail));
        QVERIFY(page.textOf("txtRemarks").join(' ').endsWith(kRemark));
        // The address column ends before the contact details begin.
        QVERIFY(findLast(page, "txtAdd1")->rect.right() < findLast(page, "Label7")->rect.left());
        QVERIFY(find(page, "Label3")->rect.left() == find(page, "txtAdd1")->rect.left());
    }
}

void TestReportDesigns::internetReferencesPrintALinkOf120Letters() {
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const auto laid = layoutReport(designs::RptInternetRef(), referencesInFull(), setup);
        checkInsideMargins(laid);
        const Page& page = laid.pages[0];
        const QStringList link = page.textOf("txtOnlineLink");
        // The link takes three lines of its column at most, broken where it must.
        QVERIFY(link.size() >= 4 && link.size() <= 3 + 1);
        QCOMPARE(link.mid(0, link.size() - 1).join(QString()), kLink);
        QCOMPARE(link.last(), QString("https://tax.example.gov/e-filing"));
        QVector<const PageItem*> lines;
        for (const auto& item : page.items)
            if (item.control == "txtOnlineLink")
                lines << &item;
        for (const PageItem* line : lines)
            QVERIFY(line->rect.left() == find(page, "Label3")->rect.left());
        // The particulars stand under the name; the link beside them.
        const PageItem* name = find(page, "txtRefName");
        QCOMPARE(find(page, "txtParticulars")->rect.left(), name->rect.left());
        QVERIFY(find(page, "txtParticulars")->rect.top() >= name->rect.bottom() - 0.01);
        QVERIFY(lines[0]->rect.left() > name->rect.right());
        QCOMPARE(lines[0]->rect.top(), name->rect.top());
        // The next reference starts below the link's last line.
        QVERIFY(findLast(page, "txtRefName")->rect.top() >= lines[lines.size() - 2]->rect.bottom() - 0.01);
    }
}

void TestReportDesigns::fileListPdfReadsBack() {
    QTemporaryDir dir;
    auto report = makeReport(designs::RptFileList(), files(), PageSetup::letter());
    const auto laid = layoutReport(designs::RptFileList(), files(), PageSetup::letter());
    checkInsideMargins(laid);
    // The long file number grows to a second line rather than being cut.
    QCOMPARE(laid.pages.last().textOf("txtFileNumber").join(QString()),
             QStringLiteral("ARCHIVE/2019/LONG-NUMBER-25"));
    const QString pdf = dir.filePath("files.pdf");
    QVERIFY(report->exportPdf(pdf));
    QVERIFY(platform::test::takeMessages().isEmpty());
    const QString text = pdfText(pdf);
    if (text.isEmpty())
        QSKIP("pdftotext is not available");
    const QStringList pages = text.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    QCOMPARE(pages.size(), report->pages().pages.size());
    for (int p = 0; p < pages.size(); ++p) {
        QVERIFY(pages[p].contains("File List"));
        QVERIFY(pages[p].contains(QStringLiteral("%1 of %2").arg(p + 1).arg(pages.size())));
    }
    static const QRegularExpression firstFile(QStringLiteral("F-001\\s+Electricity and water"));
    QVERIFY(pages[0].contains(firstFile));
    QVERIFY(text.contains("Old records (box 14 of 20)"));

    // A printer holding other paper than the preview's gets pages laid out on its paper.
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath("onA4.pdf"));
    printer.setPageSize(QPageSize(QPageSize::A4));
    QVERIFY(report->printTo(printer));
    const qsizetype onA4 = layoutReport(designs::RptFileList(), files(), PageSetup::a4()).pages.size();
    QVERIFY(onA4 != pages.size());
    const QStringList printed =
        pdfText(dir.filePath("onA4.pdf")).split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    QCOMPARE(printed.size(), onA4);
    QVERIFY(printed.last().contains(QStringLiteral("%1 of %1").arg(onA4)));

    // A folder that cannot be written: told with the exclamation icon, nothing thrown.
    QVERIFY(!report->exportPdf(dir.filePath("missing/folder/files.pdf")));
    const auto shown = platform::test::takeMessages();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown[0].style, 48);
    QVERIFY(shown[0].text.contains("files.pdf"));
}

QTEST_MAIN(TestReportDesigns)
#include "tst_reportdesigns.moc"
