// Writes pictures of screens and PDFs of the six reports, filled with sample data of an office's
// kind, into a folder, for looking at them:
//
//   QT_QPA_PLATFORM=offscreen build/tools/vorlane_samples FOLDER
//
// The screens run on a database of their own in a temporary program folder; the reports come
// on A4 and on US Letter, once with ordinary data and once ("-full") with texts as long as an
// office types them. pdftoppm -png turns the PDFs into pictures.
#include "app/MDI.h"
#include "app/Startup.h"
#include "classification/frmFile.h"
#include "datastore/Ado.h"
#include "datastore/Schema.h"
#include "index/PreviewPane.h"
#include "index/SoftCopyWork.h"
#include "platform/Controls.h"
#include "platform/TestHooks.h"
#include "reports/ReportDesigns.h"
#include "reports/ReportPreview.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/Session.h"
#include "support/ReportSamples.h"
#include "support/SoftCopySamples.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <functional>

namespace {

using namespace testsupport::samples;

reports::MemoryData files() {
    reports::MemoryData d;
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

reports::MemoryData references() {
    reports::MemoryData d;
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

reports::MemoryData contacts() {
    reports::MemoryData d;
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

reports::MemoryData personal() {
    reports::MemoryData d;
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

// Documents of an office in each state of their soft copies' reading.
void softCopyStates(db::Connection& c) {
    struct Sample {
        const char* date;
        const char* title1;
        const char* title2;
        const char* path;
        const char* state; // empty: not looked at yet
        const char* reason;
    };
    const Sample samples[] = {
        {"2024-03-11", "Invoice 2024-118", "Harbour Supplies", "/srv/scans/inv-2024-118.pdf", "read", ""},
        {"2024-03-12", "Lease renewal", "Landlord", "/srv/scans/lease-2024.docx", "read", ""},
        {"2024-03-15", "Board minutes", "March", "/srv/scans/minutes-0315.odt", "waiting", ""},
        {"2024-03-16", "Insurance claim", "Van", "/srv/scans/claim-0316.jpg", "", ""},
        {"2023-12-01", "Tax notice", "Q4", "/srv/scans/tax-q4.pdf", "unreadable",
         "The PDF is protected by a password."},
        {"2023-11-20", "Site photos", "Extension", "/srv/scans/site.tif", "unreadable",
         "The picture has 240 megapixels; pictures of more than 100 megapixels are not read."},
        {"2023-10-02", "Bank statement", "October", "/srv/scans/bank-10.pdf", "unreadable",
         "The PDF is protected by a password."},
        {"2022-06-30", "Staff contract", "R. Okafor", "/srv/scans/hr/contract-okafor.pdf", "missing",
         "There is no file at this path."},
        {"2023-01-17", "Customs declaration", "Shipment 77", "/srv/scans/customs-77.png", "missing",
         "There is no file at this path."},
        {"2019-05-04", "Price list", "Supplier", "/srv/scans/prices-2019.xls", "notext",
         "No text can be read from this kind of file (.xls)."},
    };
    int id = 100;
    for (const Sample& s : samples) {
        ++id;
        c.Execute(
            QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,10,100,'%3','%4','%5',1,'','',1)")
                .arg(QString::number(id), QLatin1String(s.date), QLatin1String(s.title1),
                     QLatin1String(s.title2), QLatin1String(s.path)));
        // The document came with its row, waiting.
        if (!*s.state)
            c.Execute(QStringLiteral("delete from SoftCopy where IndexID=%1").arg(id));
        else
            c.Execute(QStringLiteral("update SoftCopy set ReadState='%2', Reason='%3' where IndexID=%1")
                          .arg(QString::number(id), QLatin1String(s.state), QLatin1String(s.reason)));
    }
}

bool save(QWidget* widget, const QDir& folder, const QString& name) {
    const bool ok = widget->grab().save(folder.filePath(name));
    std::printf("%s %s\n", ok ? "wrote" : "FAILED", qPrintable(folder.filePath(name)));
    return ok;
}

bool pdf(reports::Report& report, const QDir& folder, const QString& name) {
    const bool ok = report.exportPdf(folder.filePath(name));
    std::printf("%s %s\n", ok ? "wrote" : "FAILED", qPrintable(folder.filePath(name)));
    return ok;
}

// The six designs with sample data, on both papers, and the preview window of the file list.
bool writeReports(const QDir& folder) {
    using namespace reports;
    const QString query = QStringLiteral(
        "Doc. Date between 01-Jan-2024 and 31-Mar-2024 and Title 1 containing 'invoice' and Bookmark "
        "containing 'drawer' and File Number is 'F-003'");
    const QList<std::tuple<QString, MemoryData, bool>> all = {
        {"RptFileList", files(), false},
        {"RptInternetRef", references(), false},
        {"RptContactList", contacts(), false},
        {"rptSearchReport", searchRows(), false},
        {"RptLetterHead", personal(), false},
        {"RptLetterHead2", personal(), false},
        {"RptInternetRef", referencesInFull(), true},
        {"RptContactList", contactsInFull(), true},
        {"rptSearchReport", searchRows(), true},
        {"RptLetterHead", personalInFull(), true},
        {"RptLetterHead2", personalInFull(), true},
    };
    bool ok = true;
    for (const auto& [name, rows, full] : all)
        for (const auto& [paper, setup] :
             {std::pair{"A4", PageSetup::a4()}, std::pair{"Letter", PageSetup::letter()}}) {
            Report report(designs::byName(name),
                          [data = rows] { return std::make_unique<MemoryData>(data); });
            report.setPageSetup(setup);
            if (name == QLatin1String("rptSearchReport")) {
                report.Sections("ReportHeader")
                    .Controls("lblQuery")
                    .setCaption(full ? queryOfAllCriteria() : query);
                report.Sections("PageHeader").Controls("lblDocTitle1").setCaption("Doc. Title 1 /");
                report.Sections("PageHeader").Controls("lblDocTitle2").setCaption("Doc. Title 2");
            }
            report.Refresh();
            ok &= pdf(report, folder, QStringLiteral("%1%2-%3.pdf").arg(name, full ? "-full" : "", paper));
            if (name == QLatin1String("RptFileList") && QLatin1String(paper) == QLatin1String("A4")) {
                // The preview window as it would stand on the screen.
                report.Show();
                report.preview()->resize(820, 900);
                ok &= save(report.preview(), folder, QStringLiteral("preview-RptFileList.png"));
            }
        }
    return ok;
}

// Does `step` on a screen and waits until its preview has shown what the step selected.
void showPreview(QWidget* screen, const std::function<void()>& step) {
    auto* pane = screen->findChild<PreviewPane*>(QStringLiteral("fraPreview"));
    pane->preview().setHelper(QStringLiteral(VORLANE_READER));
    QEventLoop shown;
    QObject::connect(&pane->preview(), &SoftCopyPreview::shown, &shown, &QEventLoop::quit);
    QTimer::singleShot(20000, &shown, &QEventLoop::quit);
    step();
    shown.exec();
    QCoreApplication::processEvents();
}

// The classification screens with long field names, each with its list shown after a row was
// loaded, the main window, and the file register with its list, a loaded row and its printed
// list.
bool writeScreens(const QDir& folder) {
    auto c = std::make_shared<db::Connection>();
    c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
    c->Execute("insert into FieldCaptions values('Department of Records','Section of the Office',"
               "'Sub-Section of Section','Folder in the Cabinet','Subject','Reference')");
    c->Execute("insert into DocumentCategory values(1,'Accounts and Finance',1)");
    c->Execute("insert into DocumentSubCategory values(10,1,'Supplier Invoices',1)");
    c->Execute("insert into DocumentChildCategory values(100,1,10,'Year 2023',1)");
    c->Execute("insert into DocumentType values(1,'Correspondence',1)");
    const QStringList numbers{"ACC/2021/01", "ACC/2021/02", "ACC/2022/01", "BNK-01",   "BNK-02",
                              "HR/Staff/1",  "HR/Staff/2",  "INS-Car",     "INS-Home", "LGL/Lease/7",
                              "PRJ-Harbor",  "TAX/2022",    "TAX/2023",    "TAX/2024", "VEH-Van"};
    const QStringList particulars{"Supplier invoices H1", "Supplier invoices H2", "Ledger prints",
                                  "Current account",      "Deposit account",      "Contracts A-L",
                                  "Contracts M-Z",        "Fleet policy",         "Office contents cover",
                                  "Ground floor lease",   "Harbour extension",    "Returns and notices",
                                  "Returns and notices",  "Quarterly filings",    "Service book"};
    for (int i = 0; i < numbers.size(); ++i)
        c->Execute(QStringLiteral("insert into File values(%1,'%2','%3',1)")
                       .arg(i + 1)
                       .arg(numbers[i], particulars[i]));
    // A scanned letter whose words only the picture of its page holds, read through OCR as the
    // background reading does, then found by the search screen.
    const QString scan = folder.filePath(QStringLiteral("letter-0314.pdf"));
    testsupport::writePdf(scan, QStringLiteral("LEASE OF THE GROUND FLOOR"), true);
    c->Execute(QStringLiteral("insert into Vorlane values(1,'2024-03-14','2024-04-01',1,1,10,100,'Letter',"
                              "'Harbour office','%1',1,'Tray 2','',1)")
                   .arg(scan));
    c.reset();
    SoftCopyWork reading(QStringLiteral("samples"));
    reading.reader().setHelper(QStringLiteral(VORLANE_READER));
    reading.readWaiting();
    // Then documents in each state of the reading, for the state of the soft copies.
    c = std::make_shared<db::Connection>();
    c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
    softCopyStates(*c);
    c.reset();

    MDI::setOnEnd([] {});
    wireScreens();
    MDI::instance().Show();
    MDI::instance().window()->resize(1024, 720);
    bool ok = true;
    const auto frame = [](QWidget* w) { return qobject_cast<QMdiSubWindow*>(w->parentWidget()); };
    for (const char* entry : {"ImgDocType", "ImgDocCat", "ImgDocSubCat", "ImgDocChildCat"}) {
        MDI::instance().entryClick(QString::fromLatin1(entry));
        QWidget* w = MDI::instance().area()->activeSubWindow()->widget();
        auto* edit = w->findChild<QPushButton*>(QStringLiteral("cmd(1)"));
        edit->click();
        auto* list = w->findChild<platform::ListBox*>();
        list->setCurrentRow(0);
        emit list->DblClick();
        edit->click();
        QCoreApplication::processEvents();
        ok &= save(frame(w), folder, w->objectName() + QStringLiteral(".png"));
    }
    ok &= save(MDI::instance().window(), folder, QStringLiteral("MDI.png"));

    MDI::instance().entryClick(QStringLiteral("ImgSearchDoc"));
    QWidget* search = MDI::instance().area()->activeSubWindow()->widget();
    search->findChild<QLineEdit*>(QStringLiteral("txtSoftCopyText"))->setText(QStringLiteral("ground floor"));
    search->findChild<QPushButton*>(QStringLiteral("cmdSearch"))->click();
    QCoreApplication::processEvents();
    ok &= save(frame(search), folder, QStringLiteral("frmSearchDocument-softcopy.png"));
    // The letter found, selected: its scan in the preview.
    auto* results = search->findChild<platform::ListView*>(QStringLiteral("lstList"));
    showPreview(search, [results] { results->setCurrentIndex(results->model()->index(0, 0)); });
    ok &= save(frame(search), folder, QStringLiteral("frmSearchDocument-preview.png"));
    frame(search)->close();
    // Index Document after Browse chose the scan.
    MDI::instance().entryClick(QStringLiteral("ImgIndexDoc"));
    QWidget* index = MDI::instance().area()->activeSubWindow()->widget();
    platform::test::nextOpenFile(scan);
    showPreview(index, [index] { index->findChild<QPushButton*>(QStringLiteral("cmd(4)"))->click(); });
    ok &= save(frame(index), folder, QStringLiteral("frmIndexDocument-preview.png"));
    frame(index)->close();

    // The state of the soft copies, reached from Settings.
    MDI::instance().entryClick(QStringLiteral("ImgSettings"));
    QWidget* settings = MDI::instance().area()->activeSubWindow()->widget();
    ok &= save(frame(settings), folder, QStringLiteral("frmSettings.png"));
    settings->findChild<QPushButton*>(QStringLiteral("cmdSoftCopies"))->click();
    QWidget* states = MDI::instance().area()->activeSubWindow()->widget();
    frame(states)->resize(frame(states)->size().expandedTo(QSize(760, 600)));
    QCoreApplication::processEvents();
    ok &= save(frame(states), folder, QStringLiteral("softcopy-state.png"));
    frame(states)->close();
    // The scanned letter's folder counted for a move to a copy of it.
    MDI::instance().entryClick(QStringLiteral("ImgSettings"));
    settings = MDI::instance().area()->activeSubWindow()->widget();
    settings->findChild<QPushButton*>(QStringLiteral("cmdMoveSoftCopies"))->click();
    QWidget* move = MDI::instance().area()->activeSubWindow()->widget();
    const QString copies = folder.filePath(QStringLiteral("moved"));
    QDir().mkpath(copies);
    QFile::copy(scan, QDir(copies).filePath(QStringLiteral("letter-0314.pdf")));
    move->findChild<QLineEdit*>(QStringLiteral("txtOldFolder"))->setText(folder.absolutePath());
    move->findChild<QLineEdit*>(QStringLiteral("txtNewFolder"))->setText(copies);
    move->findChild<QPushButton*>(QStringLiteral("cmdCount"))->click();
    QCoreApplication::processEvents();
    ok &= save(frame(move), folder, QStringLiteral("frmMoveSoftCopies.png"));

    MDI::instance().entryClick(QStringLiteral("ImgFile"));
    frmFile& file = frmFile::instance();
    file.cmd(1)->click();
    auto* list = file.control<platform::ListView>(QStringLiteral("lstFile"));
    list->setCurrentIndex(list->model()->index(3, 0));
    QCoreApplication::processEvents();
    ok &= save(frame(file.window()), folder, QStringLiteral("frmFile-list.png"));
    list->setCurrentIndex(list->model()->index(5, 0));
    emit list->DblClick();
    QCoreApplication::processEvents();
    ok &= save(frame(file.window()), folder, QStringLiteral("frmFile-loaded.png"));
    file.cmd(4)->click();
    ok &= pdf(reports::RptFileList(), folder, QStringLiteral("RptFileList.pdf"));
    MDI::instance().Unload();
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: vorlane_samples FOLDER\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(folder.path());
    // A program folder of its own, out of reach of the user's data and data sources.
    QTemporaryDir program;
    const QString odbcIni = QDir(program.path()).filePath(QStringLiteral("odbc.ini"));
    QFile(odbcIni).open(QIODevice::WriteOnly);
    qputenv("ODBCINI", odbcIni.toLocal8Bit());
    qputenv("ODBCSYSINI", program.path().toLocal8Bit());
    platform::test::enable();
    platform::test::setAppPath(program.path());
    platform::test::setSettingsFolder(QDir(program.path()).filePath(QStringLiteral("settings")));
    QDir(program.path()).mkpath(QStringLiteral("Database/Backup"));
    db::createDatabase(db::databaseFile(), GenMod::ScrambleText(QStringLiteral("admin")),
                       GenMod::ScrambleText(QStringLiteral("admin")));
    Session::CurrentUserID = 1;
    Session::UserRights = QStringLiteral("Modify");
    bool ok = writeReports(folder);
    ok &= writeScreens(folder);
    for (const auto& m : platform::test::takeMessages())
        std::fprintf(stderr, "message: %s\n", qPrintable(m.text));
    return ok ? 0 : 1;
}
