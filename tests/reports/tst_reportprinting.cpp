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

  private:
    std::unique_ptr<testsupport::TestEnvironment> m_env;

  private slots:
    void init() { m_env = testsupport::startCase(); }

    void cleanup() { testsupport::endCase(m_env); }

    void secondPrintShowsRowsSavedSinceTheFirst() {
        m_env->exec("insert into File values(1,'F-002','Tax returns',1),(2,'F-001','Bank statements',1)");
        DECommand& rs = VorlaneDE::instance().rscmdFileList();
        Report& report = RptFileList();

        PrintList(rs, report);
        QVERIFY(report.isShown());
        QCOMPARE(rs.State(), int(db::adStateOpen));
        QCOMPARE(report.pages().pages[0].textOf("txtFileNumber"), (QStringList{"F-001", "F-002"}));
        ReportPreview* preview = report.preview();
        QVERIFY(preview);
        QVERIFY(!preview->isVisible()); // no window under test

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

    // The reports find their command by data member, the screens by recordset name. A failure is
    // shown by the trapped form, which the screens use, and left to the caller by the other.
    void commandsAndFailures() {
        VorlaneDE& de = VorlaneDE::instance();
        QCOMPARE(&de.command("cmdLetterHead"), &de.rscmdLetterHead_Grouping());
        QCOMPARE(&de.cmdLetterHead_Grouping(), &de.rscmdLetterHead_Grouping());
        for (const auto& [command, recordset] : {std::pair{&de.cmdFileList(), "rscmdFileList"},
                                                 std::pair{&de.cmdContactList(), "rscmdContactList"},
                                                 std::pair{&de.cmdInternetRefList(), "rscmdInternetRefList"},
                                                 std::pair{&de.cmdSearchResult(), "rscmdSearchResult"}}) {
            QCOMPARE(&de.command(recordset), command);
            QCOMPARE(command->query(), command->commandText()); // a plain command reads its own statement
        }
        QVERIFY_THROWS_EXCEPTION(platform::Error, de.command("cmdNothing"));

        m_env->removeDatabase();
        PrintListTrapped(de.rscmdInternetRefList(), RptInternetRef());
        const auto shown = platform::test::takeMessages();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].style, 16);
        QCOMPARE(de.rscmdInternetRefList().State(), int(db::adStateClosed));
        QVERIFY_THROWS_EXCEPTION(platform::Error, PrintList(de.rscmdFileList(), RptFileList()));
        QVERIFY(platform::test::takeMessages().isEmpty());
    }

    void letterheadShowsTheRowReadAtFirstUse() {
        m_env->exec(
            "insert into Personal values(1,'Ines Moreau','12 Quai Nord','Lyon',' 69002','04 00 00 00 00',"
            "'06 00 00 00 00','04 00 00 00 01','ines@example.fr',1)");
        PrintLetterhead();
        QVERIFY(RptLetterHead().isShown());
        QVERIFY(RptLetterHead2().isShown());
        QCOMPARE(RptLetterHead().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
        QCOMPARE(RptLetterHead2().pages().pages[0].textOf("txtEmail"), QStringList{"ines@example.fr"});

        // Saved details do not reach the letterhead: no requery, no refresh.
        m_env->exec("update Personal set FullName='Ines Moreau-Blanc' where ID=1");
        PrintLetterhead();
        QCOMPARE(RptLetterHead().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
        QCOMPARE(RptLetterHead2().pages().pages[0].textOf("txtFullName"), QStringList{"Ines Moreau"});
    }

    void previewNavigatesZoomsSavesAndPrints() {
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
};

QTEST_MAIN(TestReportPrinting)
#include "tst_reportprinting.moc"
