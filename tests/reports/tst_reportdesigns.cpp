#include "platform/TestHooks.h"
#include "reports/Report.h"
#include "reports/ReportDesigns.h"
#include "reports/ReportPreview.h"

#include <QFontInfo>
#include <QPrinter>
#include <QProcess>
#include <QRawFont>
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

// Data as long as an office really types it: a firm name of 50 letters, a mail address and
// address lines of 40, a link of 120 without a blank, criteria of 40 letters each.
const QString kFirm = QStringLiteral("Okonkwo-Lindqvist Halvorsen & Partners Consultants");
const QString kMail = QStringLiteral("margareta.okonkwo-lindqvist@halvorsen.no");
const QStringList kAddress = {QStringLiteral("Unit 7, 2nd Floor, Harbour Business Park"),
                              QStringLiteral("Harbourside Commercial Park, Block C-14A"),
                              QStringLiteral("Port Ellis 4410, Greater Kingsbridge, UK")};
const QString kPhone = QStringLiteral("+44 (0)20 7946 0018");
const QString kLink = QStringLiteral("https://docs.example.com/document/d/"
                                     "1AbCdEfGhIjKlMnOpQrStUvWxYz0123456789aBcDeFgHiJkLmNoPqRsTuVwXyZ9876/"
                                     "edit?usp=sharing");

MemoryData personalInFull() {
    MemoryData d;
    d.addRow({{"ID", "1"},
              {"FullName", kFirm},
              {"Add1", kAddress[0]},
              {"Add2", kAddress[1]},
              {"Add3", kAddress[2]},
              {"Phone", kPhone},
              {"Cell", "+44 (0)7700 900 123"},
              {"Fax", "+44 (0)20 7946 0019"},
              {"Email", kMail}});
    return d;
}

MemoryData contactsInFull() {
    MemoryData d = contacts();
    d.addRow({{"FullName", "Margareta Okonkwo-Lindqvist"},
              {"Add1", kAddress[0]},
              {"Add2", kAddress[1]},
              {"Add3", kAddress[2]},
              {"Phone", kPhone},
              {"Cell", "+44 (0)7700 900 123"},
              {"Fax", "+44 (0)20 7946 0019"},
              {"Email", kMail},
              {"Remarks", "Partner; signs the annual accounts"}});
    return d;
}

MemoryData referencesInFull() {
    MemoryData d;
    d.addRow({{"RefName", "Budget of the building project"},
              {"Particulars", "The shared sheet"},
              {"OnlineLink", kLink}});
    d.addRow({{"RefName", "Tax office"},
              {"Particulars", "Online returns and payment of advance tax"},
              {"OnlineLink", "https://tax.example.gov/e-filing"}});
    return d;
}

// The query line of a search on all eleven criteria, each text 40 letters long, as the search
// screen words it.
QString queryOfAllCriteria() {
    const QStringList v = {
        "Accounts payable and receivable register", "Correspondence with suppliers and agents",
        "Purchase invoices for the office chairs.", "Quarterly statements of the pension fund",
        "Signed agreement for the warehouse lease", "Second drawer, red folder behind the tax",
        "Original kept by the auditor until March", "Renewal of the fire insurance for the sh",
        "ARCHIVE/2019/LONG-NUMBER-25/BOX-14/SHELF"};
    return QStringList{"Doc. Type : " + v[0],
                       "Doc. Category : " + v[1],
                       "Doc. Sub-Category : " + v[2],
                       "Doc. Child Category : " + v[3],
                       "Doc. Title 1 : " + v[4],
                       "Doc. Title 2 : " + v[5],
                       "Bookmark : " + v[6],
                       "Remarks : " + v[7],
                       "Document date between : 01-Jan-2024 and 31-Mar-2024",
                       "Follow-up date between : 01-Jan-2024 and 31-Mar-2024",
                       "File Number : " + v[8]}
        .join(' ');
}

std::unique_ptr<Report> makeReport(ReportDesign design, const MemoryData& rows, const PageSetup& setup) {
    auto report =
        std::make_unique<Report>(std::move(design), [rows] { return std::make_unique<MemoryData>(rows); });
    report->setPageSetup(setup);
    return report;
}

const QString kLongQuery =
    QStringLiteral("Doc. Date between 01-Jan-2024 and 31-Mar-2024 and Title 1 containing 'invoice' and "
                   "Bookmark containing "
                   "'drawer' and File Number is 'F-003' and Document Type is 'Accounts' and Category is "
                   "'Suppliers' and "
                   "Sub-category is 'Stationery' and Child category is 'Paper'");

void setSearchCaptions(Report& report, const QString& query = kLongQuery) {
    report.Sections("ReportHeader").Controls("lblQuery").setCaption(query);
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

const PageItem* findLast(const Page& page, const QString& control) {
    const PageItem* last = nullptr;
    for (const auto& item : page.items)
        if (item.control == control)
            last = &item;
    return last;
}

QString withoutBlanks(QString text) {
    return text.remove(QRegularExpression(QStringLiteral("\\s")));
}

// The control printed all of the text, on as many lines as it took, and marked no cut.
void checkPrintsWhole(const Page& page, const QString& control, const QString& text) {
    const QStringList lines = page.textOf(control);
    QVERIFY2(!lines.isEmpty(), qPrintable(control));
    for (const QString& line : lines)
        QVERIFY2(!line.contains(QChar(0x2026)), qPrintable(control + ": " + line));
    QCOMPARE(withoutBlanks(lines.join(QString())), withoutBlanks(text));
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
    void reportsAreSetInTheFacesTheyShip();
    void letterheadsPrintLongNamesAndAddressesWhole();
    void searchReportPrintsEveryHeadingAndTheWholeQuery();
    void contactListPrintsAddressLinesOfFortyLetters();
    void internetReferencesPrintALinkOf120Letters();
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
    QCOMPARE(kFirm.size(), 50);
    QCOMPARE(kMail.size(), 40);
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const auto left = layoutReport(designs::RptLetterHead(), personalInFull(), setup);
        const auto centred = layoutReport(designs::RptLetterHead2(), personalInFull(), setup);
        checkInsideMargins(left);
        checkInsideMargins(centred);
        const Page& l = left.pages[0];
        const Page& c = centred.pages[0];
        for (const Page* page : {&l, &c}) {
            QCOMPARE(page->textOf("txtFullName"), QStringList{kFirm});
            QCOMPARE(page->textOf("txtAdd1"), QStringList{kAddress[0]});
            QCOMPARE(page->textOf("txtAdd2"), QStringList{kAddress[1]});
            QCOMPARE(page->textOf("txtAdd3"), QStringList{kAddress[2]});
            QCOMPARE(page->textOf("txtPhone"), QStringList{kPhone});
            QCOMPARE(page->textOf("txtCell"), QStringList{"+44 (0)7700 900 123"});
            QCOMPARE(page->textOf("txtFax"), QStringList{"+44 (0)20 7946 0019"});
            QCOMPARE(page->textOf("txtEmail"), QStringList{kMail});
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
        // The left head's mail address may run to the right margin.
        QCOMPARE(find(l, "txtEmail")->rect.right(), setup.paper.width() - setup.marginRight);
        // On the centred head the mail caption and address stand as one unit in the middle,
        // each as wide as its text.
        const PageItem* caption = find(c, "Label4");
        const PageItem* mail = find(c, "txtEmail");
        const double middle = setup.paper.width() / 2;
        QVERIFY(std::abs((caption->rect.left() + mail->rect.right()) / 2 - middle) < 0.01);
        QCOMPARE(clipToWidth(kMail, mail->font, mail->rect.width() + 0.01), kMail);
        QVERIFY(clipToWidth(kMail, mail->font, mail->rect.width() - 2) != kMail);
    }
}

void TestReportDesigns::searchReportPrintsEveryHeadingAndTheWholeQuery() {
    const QString query = queryOfAllCriteria();
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        auto report = makeReport(designs::rptSearchReport(), searchRows(), setup);
        setSearchCaptions(*report, query);
        report->Refresh();
        const LaidOutReport& laid = report->pages();
        checkInsideMargins(laid);
        const Page& first = laid.pages[0];
        QCOMPARE(first.textOf("Label2"), QStringList{"Query:"});
        checkPrintsWhole(first, "lblQuery", query);
        QVERIFY(first.textOf("lblQuery").size() > 3);
        // The headings stand below the whole query, on the first page as on the others.
        QVERIFY(find(first, "Line2")->rect.top() >= findLast(first, "lblQuery")->rect.bottom());
        QVERIFY(laid.pages.size() >= 2);
        for (const Page& page : laid.pages) {
            QCOMPARE(page.textOf("lblDocTitle1"), QStringList{"Doc. Title 1 /"});
            QCOMPARE(page.textOf("lblDocTitle2"), QStringList{"Doc. Title 2"});
            QCOMPARE(page.textOf("Label3"), (QStringList{"Doc. Dt /", "Follow-Up Dt."}));
            QCOMPARE(page.textOf("Label5").join(' '), QString("Bookmark / Remarks:"));
            QCOMPARE(page.textOf("Label4").join(' '), QString("File Number / File Path"));
            // Each heading stands over its column.
            QVERIFY(find(page, "Label3")->rect.left() >= find(first, "txtDocDate")->rect.left() - 0.01);
            QVERIFY(find(page, "Label3")->rect.right() <= find(first, "txtBookmark")->rect.left());
        }
    }
}

void TestReportDesigns::contactListPrintsAddressLinesOfFortyLetters() {
    for (const QString& line : kAddress)
        QCOMPARE(line.size(), 40);
    for (const PageSetup& setup : {PageSetup::a4(), PageSetup::letter()}) {
        const auto laid = layoutReport(designs::RptContactList(), contactsInFull(), setup);
        checkInsideMargins(laid);
        const Page& page = laid.pages.last();
        QCOMPARE(page.textOf("txtAdd1").last(), kAddress[0]);
        QCOMPARE(page.textOf("txtAdd2").last(), kAddress[1]);
        QCOMPARE(page.textOf("txtAdd3").last(), kAddress[2]);
        QCOMPARE(page.textOf("txtPhone").last(), kPhone);
        QCOMPARE(page.textOf("txtFax").last(), QString("+44 (0)20 7946 0019"));
        QVERIFY(page.textOf("txtEmail").join(QString()).endsWith(kMail));
        // The address column ends before the contact details begin.
        QVERIFY(findLast(page, "txtAdd1")->rect.right() < findLast(page, "Label7")->rect.left());
        QVERIFY(find(page, "Label3")->rect.left() == find(page, "txtAdd1")->rect.left());
    }
}

void TestReportDesigns::internetReferencesPrintALinkOf120Letters() {
    QCOMPARE(kLink.size(), 120);
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
        // The next reference starts below the link's last line.
        QVERIFY(findLast(page, "txtRefName")->rect.top() >= lines[lines.size() - 2]->rect.bottom() - 0.01);
    }
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
    // And the reports with data as long as an office types it.
    const QList<QPair<QString, MemoryData>> inFull = {
        {"RptInternetRef", referencesInFull()}, {"RptContactList", contactsInFull()},
        {"rptSearchReport", searchRows()},      {"RptLetterHead", personalInFull()},
        {"RptLetterHead2", personalInFull()},
    };
    for (const auto& [name, rows] : inFull)
        for (const auto& [paper, setup] :
             {std::pair{"A4", PageSetup::a4()}, std::pair{"Letter", PageSetup::letter()}}) {
            auto report = makeReport(designs::byName(name), rows, setup);
            if (name == "rptSearchReport")
                setSearchCaptions(*report, queryOfAllCriteria());
            report->Refresh();
            QVERIFY(
                report->exportPdf(QDir(folder).filePath(QStringLiteral("%1-full-%2.pdf").arg(name, paper))));
        }
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
#include "tst_reportdesigns.moc"
