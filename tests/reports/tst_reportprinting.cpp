#include "platform/Error.h"
#include "reports/ReportPreview.h"
#include "reports/Reports.h"
#include "support/TestSupport.h"

#include <QAccessible>
#include <QFile>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

using namespace reports;

class TestReportPrinting : public QObject {
    Q_OBJECT
  private slots:
    void init();
    void cleanup();
    void environmentHoldsTheFiveCommands();
    void secondPrintShowsRowsSavedSinceTheFirst();
    void emptyTablePrintsHeadingsOnly();
    void failuresAreTrappedOrThrownAsAsked();
    void letterheadShowsTheRowReadAtFirstUse();
    void searchReportPrintsCaptionsSetAfterShow();
    void previewNavigatesZoomsSavesAndPrints();

  private:
    std::unique_ptr<testsupport::TestEnvironment> m_env;
};

void TestReportPrinting::init() {
    VorlaneDE::instance().reset();
    m_env = std::make_unique<testsupport::TestEnvironment>();
}

void TestReportPrinting::cleanup() {
    VorlaneDE::instance().reset();
    m_env.reset();
    platform::test::takeMessages();
}

void TestReportPrinting::environmentHoldsTheFiveCommands() {
    VorlaneDE& de = VorlaneDE::instance();
    QVERIFY(de.connectionString().contains("Data Source=Vorlane;"));
    QCOMPARE(de.cmdFileList().commandText(), QString("Select * from File Order by FileNumber"));
    QCOMPARE(de.cmdContactList().commandText(), QString("Select * from Contacts order by FullName"));
    QCOMPARE(de.cmdInternetRefList().commandText(), QString("Select * from References order by RefName"));
    QCOMPARE(de.cmdSearchResult().commandText(), QString("Select * from PrintSearchResult"));
    QCOMPARE(de.cmdLetterHead_Grouping().commandText(),
             QString("SHAPE {SELECT * FROM `Personal`}  AS cmdLetterHead COMPUTE cmdLetterHead BY 'ID'"));
    // The reports find their command by data member, the screens by recordset name.
    QCOMPARE(&de.command("cmdLetterHead"), &de.rscmdLetterHead_Grouping());
    QCOMPARE(&de.command("rscmdFileList"), &de.cmdFileList());
    QCOMPARE(de.rscmdInternetRefList().recordsetName(), QString("rscmdInternetRefList"));
    QVERIFY_THROWS_EXCEPTION(platform::Error, de.command("cmdNothing"));
    QCOMPARE(de.rscmdFileList().State(), int(db::adStateClosed));
    QVERIFY(!de.DECon); // no connection before the first print
}

void TestReportPrinting::secondPrintShowsRowsSavedSinceTheFirst() {
    m_env->exec("insert into File values(1,'F-002','Tax returns',1)");
    m_env->exec("insert into File values(2,'F-001','Bank statements',1)");
    DECommand& rs = VorlaneDE::instance().rscmdFileList();
    Report& report = RptFileList();

    PrintList(rs, report);
    QVERIFY(report.isShown());
    QCOMPARE(rs.State(), int(db::adStateOpen));
    QCOMPARE(report.pages().pages[0].textOf("txtFileNumber"), (QStringList{"F-001", "F-002"}));
    ReportPreview* preview = report.preview();
    QVERIFY(preview);
    QVERIFY(!preview->isVisible()); // no window under test
    QCOMPARE(preview->windowTitle(), QString("File List"));

    m_env->exec("insert into File values(3,'F-000','Insurance',1)");
    // Showing alone keeps what the report read ...
    report.Show();
    QCOMPARE(report.pages().pages[0].textOf("txtFileNumber").size(), 2);
    // ... the print procedure requeries and refreshes the same report object.
    PrintList(rs, report);
    QCOMPARE(report.pages().pages[0].textOf("txtFileNumber"), (QStringList{"F-000", "F-001", "F-002"}));
    QCOMPARE(report.pages().pages[0].textOf("txtParticulars").first(), QString("Insurance"));
    QCOMPARE(report.preview(), preview);
    QVERIFY(platform::test::takeMessages().isEmpty());
}

void TestReportPrinting::emptyTablePrintsHeadingsOnly() {
    PrintListTrapped(VorlaneDE::instance().rscmdContactList(), RptContactList());
    QVERIFY(platform::test::takeMessages().isEmpty());
    const auto& pages = RptContactList().pages().pages;
    QCOMPARE(pages.size(), 1);
    QCOMPARE(pages[0].texts(), (QStringList{"Important Contact List", "Contact Name", "Address",
                                            "Contact Details", "Remarks", "Page 1 of 1"}));
}

void TestReportPrinting::failuresAreTrappedOrThrownAsAsked() {
    m_env->removeDatabase();
    DECommand& refs = VorlaneDE::instance().rscmdInternetRefList();
    PrintListTrapped(refs, RptInternetRef());
    const auto shown = platform::test::takeMessages();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown[0].style, 16);
    QVERIFY(!shown[0].text.isEmpty());
    QCOMPARE(refs.State(), int(db::adStateClosed));

    QVERIFY_THROWS_EXCEPTION(platform::Error,
                             PrintList(VorlaneDE::instance().rscmdFileList(), RptFileList()));
    QVERIFY(platform::test::takeMessages().isEmpty());
}

void TestReportPrinting::letterheadShowsTheRowReadAtFirstUse() {
    m_env->exec("insert into Personal values(1,'Ines Moreau','12 Quai Nord','Lyon',' 69002','04 00 00 00 00',"
                "'06 00 00 00 00','04 00 00 00 01','ines@example.fr',1)");
    PrintLetterhead();
    QVERIFY(RptLetterHead().isShown());
    QVERIFY(RptLetterHead2().isShown());
    QCOMPARE(RptLetterHead().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
    QCOMPARE(RptLetterHead2().pages().pages[0].textOf("txtEmail"), QStringList{"ines@example.fr"});
    QCOMPARE(RptLetterHead().pages().pages[0].textOf("Label2"), QStringList{"Cell :"});
    QCOMPARE(RptLetterHead2().pages().pages[0].textOf("Label2"), QStringList{"Cell : "});

    // Saved details do not reach the letterhead: no requery, no refresh.
    m_env->exec("update Personal set FullName='Ines Moreau-Blanc' where ID=1");
    PrintLetterhead();
    QCOMPARE(RptLetterHead().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
    QCOMPARE(RptLetterHead2().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
}

void TestReportPrinting::searchReportPrintsCaptionsSetAfterShow() {
    m_env->exec(
        "insert into PrintSearchResult(Title1,Title2,DocDate,FollowUpDate,Bookmark,Remarks,FileNumber,"
        "FilePath) values('17','Lease','Ground floor','01/Mar/2024','01/Apr/2024','Tab 2','Signed','F-004')");
    Report& report = rptSearchReport();
    DECommand& rs = VorlaneDE::instance().rscmdSearchResult();
    if (rs.State() == db::adStateOpen)
        rs.Requery();
    else {
        rs.Open();
        rs.Requery();
    }
    report.Show();
    report.Sections("ReportHeader").Controls("lblQuery").setCaption("All Records");
    report.Sections("PageHeader").Controls("lblDocTitle1").setCaption("Invoice No /");
    report.Sections("PageHeader").Controls("lblDocTitle2").setCaption("Doc. Title 2");
    report.Refresh();
    const Page& page = report.pages().pages[0];
    QCOMPARE(page.textOf("lblQuery"), QStringList{"All Records"});
    QCOMPARE(page.textOf("lblDocTitle1"), QStringList{"Invoice No /"});
    QCOMPARE(page.textOf("txtTitle1"), QStringList{"17"});
    QCOMPARE(page.textOf("txtFilePath"), QStringList{"F-004"});
    QCOMPARE(page.textOf("txtFollowupDate"), QStringList{"01/Mar/2024"});
}

void TestReportPrinting::previewNavigatesZoomsSavesAndPrints() {
    for (int i = 1; i <= 120; ++i)
        m_env->exec(QStringLiteral("insert into File values(%1,'F-%2','Particulars %1',1)")
                        .arg(i)
                        .arg(i, 3, 10, QLatin1Char('0')));
    Report& report = RptFileList();
    report.setPageSetup(PageSetup::a4());
    PrintList(VorlaneDE::instance().rscmdFileList(), report);
    ReportPreview* preview = report.preview();
    const int count = preview->pageCount();
    QVERIFY(count >= 3);
    QCOMPARE(preview->pageText(), QStringLiteral("Page 1 of %1").arg(count));
    preview->previousPage(); // stays on the first
    QCOMPARE(preview->currentPage(), 0);
    // A page turned after scrolling down the last one shows the new page from its top.
    auto* bar = preview->findChild<QScrollArea*>("pageArea")->verticalScrollBar();
    bar->setRange(0, 500); // no window under test, so the range is set by hand
    bar->setValue(500);
    preview->nextPage();
    QCOMPARE(preview->pageText(), QStringLiteral("Page 2 of %1").arg(count));
    QCOMPARE(bar->value(), 0);
    // Assistive technology reads the counter as it shows and the page's text in reading order.
    QAccessibleInterface* counter =
        QAccessible::queryAccessibleInterface(preview->findChild<QLabel*>("pageLabel"));
    QCOMPARE(counter->text(QAccessible::Name), QStringLiteral("Page 2 of %1").arg(count));
    QAccessibleTextInterface* page =
        QAccessible::queryAccessibleInterface(preview->findChild<QWidget*>("pageImage"))->textInterface();
    QVERIFY(page);
    const QString second = page->text(0, page->characterCount());
    QCOMPARE(second, report.pages().pages[1].texts().join(QLatin1Char('\n')));
    QVERIFY(second.contains(QStringLiteral("File Number\nParticulars")));
    preview->lastPage();
    QCOMPARE(preview->currentPage(), count - 1);
    preview->nextPage();
    QCOMPARE(preview->currentPage(), count - 1);
    preview->firstPage();
    QCOMPARE(preview->currentPage(), 0);
    preview->zoomIn();
    QVERIFY(preview->zoom() > 1.0);
    preview->setZoom(10);
    QCOMPARE(preview->zoom(), 2.0);
    preview->zoomOut();
    QVERIFY(preview->zoom() < 2.0);

    // Every tool can be reached by keyboard and has a name for assistive tools.
    const auto tools = preview->findChildren<QToolButton*>();
    QVERIFY(tools.size() >= 8);
    for (const QToolButton* tool : tools)
        if (tool->defaultAction()) {
            QVERIFY2(!tool->accessibleName().isEmpty(), qPrintable(tool->text()));
            QVERIFY2(!tool->defaultAction()->shortcut().isEmpty(), qPrintable(tool->text()));
        }

    QTemporaryDir dir;
    // Save as PDF: the name is asked for; Cancel writes nothing.
    platform::test::nextSaveFile(QString());
    preview->saveAsPdf();
    QVERIFY(QDir(dir.path()).isEmpty());
    platform::test::nextSaveFile(dir.filePath("register"));
    preview->saveAsPdf();
    QVERIFY(QFile::exists(dir.filePath("register.pdf")));
    QVERIFY(platform::test::takeMessages().isEmpty());

    // Print: Cancel in the dialog prints nothing; a printer that cannot take the job is told.
    QVERIFY(!report.print(preview));
    test::nextPrintDialog(dir.filePath("printer.pdf"));
    preview->print();
    QVERIFY(QFileInfo(dir.filePath("printer.pdf")).size() > 1000);
    test::nextPrintDialog(dir.filePath("no/such/printer.pdf"));
    preview->print();
    const auto shown = platform::test::takeMessages();
    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown[0].style, 48);
    QVERIFY(shown[0].text.contains("could not be printed"));
}

QTEST_MAIN(TestReportPrinting)
#include "tst_reportprinting.moc"
