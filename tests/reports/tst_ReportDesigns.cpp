#include "platform/TestHooks.h"
#include "reports/Report.h"
#include "reports/ReportDesigns.h"
#include "reports/ReportPreview.h"

#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace reports;

// Set VORLANE_REPORT_PDF_DIR to a folder to keep the PDFs of all six reports, on A4 and on
// US Letter, for looking at them (pdftoppm -png turns them into pictures).
namespace {

using Row = QHash<QString, QString>;

MemoryData files() {
    MemoryData d;
    const QStringList particulars = {"Bank statements 2023",  "Electricity and water", "Insurance policies",
                                     "Tax returns",           "Staff contracts",       "Vehicle papers",
                                     "Property lease",        "Supplier invoices Q1",  "Supplier invoices Q2",
                                     "Correspondence - legal"};
    for (int i = 1; i <= 64; ++i)
        d.addRow({{"FileID", QString::number(i)},
                  {"FileNumber", QStringLiteral("F-%1").arg(i, 3, 10, QLatin1Char('0'))},
                  {"Particulars", particulars[i % particulars.size()]}});
    d.addRow({{"FileNumber", "ARCHIVE/2019/LONG-NUMBER-25"}, {"Particulars", "Old records (box 14 of 20)"}});
    return d;
}

MemoryData references() {
    MemoryData d;
    d.addRow(
        {{"RefName", "City council permits"},
         {"Particulars", "Forms for building permits, fees and the opening hours of the counter. Renewals "
                         "must be filed thirty days before the permit runs out."},
         {"OnlineLink", "https://council.example.org/permits/building/forms"}});
    d.addRow({{"RefName", "Customs tariff"},
              {"Particulars", "Import duty lookup"},
              {"OnlineLink", "https://tariff.example.gov/lookup?chapter=84&heading=8471"}});
    d.addRow({{"RefName", "Tax office"},
              {"Particulars", "Online returns and payment of advance tax"},
              {"OnlineLink", "https://tax.example.gov/e-filing"}});
    for (int i = 1; i <= 30; ++i)
        d.addRow({{"RefName", QStringLiteral("Supplier portal %1").arg(i)},
                  {"Particulars", QStringLiteral("Order status and invoices of supplier %1").arg(i)},
                  {"OnlineLink", QStringLiteral("https://supplier%1.example.com/portal").arg(i)}});
    return d;
}

MemoryData contacts() {
    MemoryData d;
    d.addRow(
        {{"FullName", "Adaeze Okonkwo-Lindqvist"},
         {"Add1", "14 Harbour Road"},
         {"Add2", "Unit 7, Second Floor"},
         {"Add3", "Port Ellis 4410"},
         {"Phone", "+44 20 7946 0018"},
         {"Cell", "+44 7700 900123"},
         {"Fax", "+44 20 7946 0019"},
         {"Email", "adaeze.okonkwo-lindqvist@harbour-consulting.example.com"},
         {"Remarks", "Auditor. Call before the 10th of each month; sends the quarterly review by post and "
                     "expects the signed copy back within a week."}});
    d.addRow({{"FullName", "Bruno Carvalho"},
              {"Add1", "Rua das Flores 22"},
              {"Add3", "Lisbon"},
              {"Phone", "+351 21 000 0000"},
              {"Email", "bruno@example.pt"},
              {"Remarks", "Lawyer"}});
    for (int i = 1; i <= 20; ++i)
        d.addRow({{"FullName", QStringLiteral("Contact %1").arg(i)},
                  {"Add1", QStringLiteral("%1 Main Street").arg(i * 3)},
                  {"Add2", "Springfield"},
                  {"Phone", QStringLiteral("555-01%1").arg(i, 2, 10, QLatin1Char('0'))},
                  {"Cell", QStringLiteral("555-99%1").arg(i, 2, 10, QLatin1Char('0'))},
                  {"Email", QStringLiteral("contact%1@example.com").arg(i)}});
    return d;
}

// Rows as the search screen copies them: one column off, the key first.
MemoryData searchRows() {
    MemoryData d;
    for (int i = 1; i <= 40; ++i)
        d.addRow(
            {{"Title1", QString::number(1000 + i)},
             {"Title2", i == 3 ? "Agreement for the lease of the ground floor office with parking, signed by "
                                 "both parties and witnessed"
                               : QStringLiteral("Invoice %1 from Northwind Supplies").arg(4400 + i)},
             {"DocDate", QStringLiteral("Order %1").arg(700 + i)},
             {"FollowupDate", QStringLiteral("%1/Mar/2024").arg(i % 28 + 1, 2, 10, QLatin1Char('0'))},
             {"Bookmark", QStringLiteral("%1/Apr/2024").arg(i % 28 + 1, 2, 10, QLatin1Char('0'))},
             {"Remarks", i % 5 == 0 ? "Second drawer, red folder behind the tax papers" : "Tab 3"},
             {"FileNumber", i % 4 == 0 ? "Paid in full" : ""},
             {"FilePath", QStringLiteral("F-%1").arg(i % 9 + 1, 3, 10, QLatin1Char('0'))}});
    return d;
}

MemoryData personal() {
    MemoryData d;
    d.addRow({{"ID", "1"},
              {"FullName", "Marguerite Halvorsen & Associates"},
              {"Add1", "Chartered Accountants"},
              {"Add2", "41 Kingsbridge Avenue, Suite 300"},
              {"Add3", "Halden 1772, Norway"},
              {"Phone", "+47 69 00 00 00"},
              {"Cell", "+47 900 00 000"},
              {"Fax", "+47 69 00 00 01"},
              {"Email", "office@halvorsen-associates.example.no"}});
    return d;
}

std::unique_ptr<Report> makeReport(ReportDesign design, const MemoryData& rows, const PageSetup& setup) {
    auto report =
        std::make_unique<Report>(std::move(design), [rows] { return std::make_unique<MemoryData>(rows); });
    report->setPageSetup(setup);
    return report;
}

void setSearchCaptions(Report& report) {
    report.Sections("ReportHeader")
        .Controls("lblQuery")
        .setCaption("Doc. Date between 01-Jan-2024 and 31-Mar-2024 and Title 1 containing 'invoice' and "
                    "Bookmark containing "
                    "'drawer' and File Number is 'F-003' and Document Type is 'Accounts' and Category is "
                    "'Suppliers' and "
                    "Sub-category is 'Stationery' and Child category is 'Paper'");
    report.Sections("PageHeader").Controls("lblDocTitle1").setCaption("Doc. Title 1 /");
    report.Sections("PageHeader").Controls("lblDocTitle2").setCaption("Doc. Title 2");
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

} // namespace

class TestReportDesigns : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { platform::test::enable(); }
    void everyDesignHasItsSectionsAndTitle_data();
    void everyDesignHasItsSectionsAndTitle();
    void fileListPrintsEveryFileUnderItsHeadings();
    void internetReferencesStackNameOverParticulars();
    void contactListNumbersItsPagesDifferently();
    void searchReportPrintsTheCaptionsSetAtRunTime();
    void letterheadsDifferInAlignmentAndCellLabel();
    void fileListPdfReadsBack();
    void writesSamplePdfsWhenAsked();
};

void TestReportDesigns::everyDesignHasItsSectionsAndTitle_data() {
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("member");
    QTest::newRow("files") << "RptFileList"
                           << "File List"
                           << "cmdFileList";
    QTest::newRow("refs") << "RptInternetRef"
                          << "Internet References"
                          << "cmdInternetRefList";
    QTest::newRow("contacts") << "RptContactList"
                              << "Important Contact List"
                              << "cmdContactList";
    QTest::newRow("search") << "rptSearchReport"
                            << "Search Result"
                            << "cmdSearchResult";
    QTest::newRow("letterhead") << "RptLetterHead"
                                << "Letterhead"
                                << "cmdLetterHead";
    QTest::newRow("letterhead2") << "RptLetterHead2"
                                 << "Letterhead"
                                 << "cmdLetterHead";
}

void TestReportDesigns::everyDesignHasItsSectionsAndTitle() {
    QFETCH(QString, report);
    QFETCH(QString, title);
    QFETCH(QString, member);
    const ReportDesign d = designs::byName(report);
    QCOMPARE(d.name, report);
    QCOMPARE(d.title, title);
    QCOMPARE(d.dataMember, member);
    QStringList names;
    for (const auto& s : d.sections)
        names << s.name;
    QCOMPARE(names,
             (QStringList{"ReportHeader", "PageHeader", member + "_Detail", "PageFooter", "ReportFooter"}));
    // Every text box reads a field of its command; both paper sizes keep it inside the margins.
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const MemoryData rows = report == "RptFileList"       ? files()
                                : report == "RptInternetRef"  ? references()
                                : report == "RptContactList"  ? contacts()
                                : report == "rptSearchReport" ? searchRows()
                                                              : personal();
        checkInsideMargins(layoutReport(d, rows, setup));
    }
}

void TestReportDesigns::fileListPrintsEveryFileUnderItsHeadings() {
    const auto laid = layoutReport(designs::RptFileList(), files(), PageSetup::a4());
    QCOMPARE(laid.pages.size(), 2);
    const Page& first = laid.pages[0];
    const QStringList texts = first.texts();
    QCOMPARE(texts.mid(0, 5),
             (QStringList{"File List", "File Number", "Particulars", "F-001", "Electricity and water"}));
    QCOMPARE(laid.pages[1].texts().mid(0, 3), (QStringList{"File List", "File Number", "Particulars"}));
    QCOMPARE(first.textOf("Label3"), QStringList{"1 of 2"});
    QCOMPARE(laid.pages[1].textOf("Label3"), QStringList{"2 of 2"});
    // The long file number grows to a second line rather than being cut.
    QVERIFY(laid.pages[1]
                .textOf("txtFileNumber")
                .join("")
                .remove(' ')
                .endsWith("F-064ARCHIVE/2019/LONG-NUMBER-25"));
    // Rules above and below the headings, and one over the page number.
    for (const char* line : {"Line1", "Line2", "Line3"})
        QVERIFY(find(first, line));

    const auto empty = layoutReport(designs::RptFileList(), MemoryData(), PageSetup::a4());
    QCOMPARE(empty.pages.size(), 1);
    QCOMPARE(empty.pages[0].texts(), (QStringList{"File List", "File Number", "Particulars", "1 of 1"}));
}

void TestReportDesigns::internetReferencesStackNameOverParticulars() {
    const auto laid = layoutReport(designs::RptInternetRef(), references(), PageSetup::a4());
    const Page& page = laid.pages[0];
    QCOMPARE(page.textOf("Label4"), QStringList{"Internet References List"});
    QCOMPARE(page.textOf("Label1"), QStringList{"Reference Name & Particulars"});
    QCOMPARE(page.textOf("Label3"), QStringList{"Online Link"});
    const PageItem* name = find(page, "txtRefName");
    const PageItem* particulars = find(page, "txtParticulars");
    const PageItem* link = find(page, "txtOnlineLink");
    QCOMPARE(name->text, QString("City council permits"));
    QCOMPARE(particulars->rect.left(), name->rect.left());
    QVERIFY(particulars->rect.top() >= name->rect.bottom() - 0.01);
    QVERIFY(link->rect.left() > name->rect.right());
    QCOMPARE(link->rect.top(), name->rect.top());
    // The particulars wrap; the next reference starts below their last line.
    QVERIFY(page.textOf("txtParticulars").size() > 2);
    QVERIFY(page.textOf("txtParticulars").join(' ').startsWith("Forms for building permits, fees"));
    QCOMPARE(page.textOf("Label2").size(), 1);
    QVERIFY(page.textOf("Label2")[0].endsWith(QStringLiteral(" of %1").arg(laid.pages.size())));
}

void TestReportDesigns::contactListNumbersItsPagesDifferently() {
    const auto laid = layoutReport(designs::RptContactList(), contacts(), PageSetup::letter());
    QVERIFY(laid.pages.size() >= 2);
    const Page& page = laid.pages[0];
    QCOMPARE(page.textOf("Label6"), QStringList{QStringLiteral("Page 1 of %1").arg(laid.pages.size())});
    for (const char* heading :
         {"Contact Name", "Address", "Contact Details", "Remarks", "Important Contact List"})
        QVERIFY2(page.texts().contains(heading), heading);
    QCOMPARE(page.textOf("Label7").first(), QString("Phone:"));
    QCOMPARE(page.textOf("Label8").first(), QString("Cell:"));
    QCOMPARE(page.textOf("Label9").first(), QString("Fax:"));
    QCOMPARE(page.textOf("Label10").first(), QString("Email:"));
    // The address lines stand one under the other in one column.
    const PageItem* a1 = find(page, "txtAdd1");
    const PageItem* a2 = find(page, "txtAdd2");
    const PageItem* a3 = find(page, "txtAdd3");
    QCOMPARE(a2->rect.left(), a1->rect.left());
    QVERIFY(a1->rect.top() < a2->rect.top() && a2->rect.top() < a3->rect.top());
    // A long mail address and long remarks wrap instead of being cut.
    QCOMPARE(page.textOf("txtEmail").join("").remove(' ').left(55),
             QString("adaeze.okonkwo-lindqvist@harbour-consulting.example.com"));
    QVERIFY(page.textOf("txtRemarks").join(' ').endsWith("within a week. Lawyer"));
}

void TestReportDesigns::searchReportPrintsTheCaptionsSetAtRunTime() {
    ReportDesign d = designs::rptSearchReport();
    QCOMPARE(d.Sections("ReportHeader").Controls("lblQuery").Caption(), QString("Query"));
    QCOMPARE(d.Sections("PageHeader").Controls("lblDocTitle1").Caption(), QString("Title 1 / Title 2"));
    auto report = makeReport(d, searchRows(), PageSetup::a4());
    setSearchCaptions(*report);
    report->Refresh();
    const LaidOutReport& laid = report->pages();
    QVERIFY(laid.pages.size() >= 2);
    const Page& first = laid.pages[0];
    QCOMPARE(first.textOf("Label2"), QStringList{"Query:"});
    QVERIFY(first.textOf("lblQuery").join(' ').startsWith("Doc. Date between 01-Jan-2024"));
    QCOMPARE(first.textOf("lblQuery").size(), 3); // a long query fills the three lines and stops
    QCOMPARE(first.textOf("lblDocTitle1"), QStringList{"Doc. Title 1 /"});
    QCOMPARE(first.textOf("lblDocTitle2"), QStringList{"Doc. Title 2"});
    QVERIFY(find(first, "lblDocTitle2")->rect.top() > find(first, "lblDocTitle1")->rect.top());
    // The query prints once; the headings on every page.
    QCOMPARE(laid.pages[1].textOf("lblQuery"), QStringList());
    QCOMPARE(laid.pages[1].textOf("lblDocTitle1"), QStringList{"Doc. Title 1 /"});
    // Row 1: the key over the first title, the second title over the date, and so on.
    QCOMPARE(first.textOf("txtTitle1").first(), QString("1001"));
    QVERIFY(
        first.textOf("txtTitle2").join(' ').startsWith("Invoice 4401 from Northwind Supplies Invoice 4402"));
    QCOMPARE(first.textOf("txtFilePath").first(), QString("F-002"));
    const PageItem* key = find(first, "txtTitle1");
    const PageItem* title = find(first, "txtTitle2");
    QCOMPARE(title->rect.left(), key->rect.left());
    QVERIFY(title->rect.top() > key->rect.top());
    QCOMPARE(laid.pages.last().textOf("Label6"),
             QStringList{QStringLiteral("%1 of %1").arg(laid.pages.size())});
}

void TestReportDesigns::letterheadsDifferInAlignmentAndCellLabel() {
    const PageSetup setup = PageSetup::a4();
    const auto left = layoutReport(designs::RptLetterHead(), personal(), setup);
    const auto centred = layoutReport(designs::RptLetterHead2(), personal(), setup);
    QCOMPARE(left.pages.size(), 1);
    QCOMPARE(centred.pages.size(), 1);
    const Page& l = left.pages[0];
    const Page& c = centred.pages[0];
    QCOMPARE(l.textOf("Label2"), QStringList{"Cell :"});
    QCOMPARE(c.textOf("Label2"), QStringList{"Cell : "});
    for (const Page* page : {&l, &c}) {
        QCOMPARE(page->textOf("txtFullName"), QStringList{"Marguerite Halvorsen & Associates"});
        QCOMPARE(page->textOf("Label1"), QStringList{"Phone :"});
        QCOMPARE(page->textOf("Label3"), QStringList{"Fax :"});
        QCOMPARE(page->textOf("Label4"), QStringList{"Email :"});
        QCOMPARE(page->textOf("txtEmail"), QStringList{"office@halvorsen-associates.example.no"});
        QVERIFY(find(*page, "txtFullName")->rect.height() > find(*page, "txtAdd1")->rect.height());
        // The head closes with a rule across the body.
        const PageItem* rule = find(*page, "Line1");
        QCOMPARE(rule->rect.width(), setup.bodyWidth());
        // The 4-inch footer is empty, and nothing but the head is printed.
        for (const auto& item : page->items)
            QVERIFY(item.rect.bottom() < setup.paper.height() - setup.marginBottom - 288);
    }
    QCOMPARE(find(l, "txtFullName")->align, Align::Left);
    QCOMPARE(find(c, "txtFullName")->align, Align::Center);
    QCOMPARE(find(c, "txtAdd2")->rect.width(), setup.bodyWidth());
    // Left head: the row starts at the margin in the order Cell, Phone, Fax; email below at the left.
    QCOMPARE(find(l, "Label2")->rect.left(), setup.marginLeft);
    QVERIFY(find(l, "Label2")->rect.left() < find(l, "Label1")->rect.left());
    QVERIFY(find(l, "Label1")->rect.left() < find(l, "Label3")->rect.left());
    QCOMPARE(find(l, "Label4")->rect.left(), setup.marginLeft);
    QVERIFY(find(l, "Label4")->rect.top() > find(l, "Label2")->rect.top());
    // Centred head: the row stands further right, the wide cell label ends at its field, the
    // mail pair around the middle.
    QVERIFY(find(c, "Label2")->rect.left() > find(l, "Label2")->rect.left());
    QVERIFY(find(c, "Label2")->rect.width() > find(l, "Label2")->rect.width());
    QCOMPARE(find(c, "Label2")->align, Align::Right);
    QVERIFY(find(c, "txtCell")->rect.left() - find(c, "Label2")->rect.right() < 4);
    const double middle = setup.paper.width() / 2;
    QVERIFY(find(c, "Label4")->rect.left() < middle && find(c, "txtEmail")->rect.right() > middle);
    // On US Letter the centred head's rows keep their place relative to the middle.
    const auto onLetter = layoutReport(designs::RptLetterHead2(), personal(), PageSetup::letter());
    const double letterMiddle = PageSetup::letter().paper.width() / 2;
    for (const char* name :
         {"Label2", "txtCell", "Label1", "txtPhone", "Label3", "txtFax", "Label4", "txtEmail"})
        QVERIFY2(std::abs((find(onLetter.pages[0], name)->rect.left() - letterMiddle) -
                          (find(c, name)->rect.left() - middle)) < 0.5,
                 name);
}

void TestReportDesigns::fileListPdfReadsBack() {
    QTemporaryDir dir;
    auto report = makeReport(designs::RptFileList(), files(), PageSetup::letter());
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
    QVERIFY(pages[0].contains(QRegularExpression("F-001\\s+Electricity and water")));
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

void TestReportDesigns::writesSamplePdfsWhenAsked() {
    const QString folder = qEnvironmentVariable("VORLANE_REPORT_PDF_DIR");
    if (folder.isEmpty())
        QSKIP("VORLANE_REPORT_PDF_DIR is not set");
    QDir().mkpath(folder);
    const QList<QPair<QString, MemoryData>> all = {
        {"RptFileList", files()},          {"RptInternetRef", references()}, {"RptContactList", contacts()},
        {"rptSearchReport", searchRows()}, {"RptLetterHead", personal()},    {"RptLetterHead2", personal()},
    };
    for (const auto& [name, rows] : all)
        for (const auto& [paper, setup] :
             {std::pair{"A4", PageSetup::a4()}, std::pair{"Letter", PageSetup::letter()}}) {
            auto report = makeReport(designs::byName(name), rows, setup);
            if (name == "rptSearchReport")
                setSearchCaptions(*report);
            report->Refresh();
            QVERIFY(report->exportPdf(QDir(folder).filePath(QStringLiteral("%1-%2.pdf").arg(name, paper))));
            if (name == "RptFileList" && QString(paper) == "A4") {
                // The preview window as it would stand on the screen.
                report->Show();
                report->preview()->resize(820, 900);
                QVERIFY(report->preview()->grab().save(QDir(folder).filePath("preview-RptFileList.png")));
            }
        }
}

QTEST_MAIN(TestReportDesigns)
#include "tst_ReportDesigns.moc"
