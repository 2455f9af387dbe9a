// The file register driven by its controls: rights, the required number, duplicates, the list
// view with its hidden key, the lifecycle, and printing the register.
#include "app/MDI.h"
#include "app/Startup.h"
#include "classification/frmFile.h"
#include "platform/Controls.h"
#include "reports/ReportPreview.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");
const QString Duplicate = QStringLiteral("48:Duplicate File number not allowed.");

frmFile& form() {
    return frmFile::instance();
}

template <class T> T* ctl(const char* name) {
    return testsupport::ctl<T>(form(), QString::fromLatin1(name));
}

platform::ListView* list() {
    return ctl<platform::ListView>("lstFile");
}

void press(int index) {
    testsupport::press(form(), index);
}

void type(const char* box, const QString& text) {
    testsupport::type(form(), QString::fromLatin1(box), text);
}

void enter(const QString& number, const QString& particulars) {
    type("txtFileNo", number);
    type("txtParticulars", particulars);
}

QString text(const char* box) {
    return testsupport::text(form(), QString::fromLatin1(box));
}

bool listShown() {
    return testsupport::isShown(form(), QStringLiteral("lstFile"));
}

// The rows of the list as "key|number|particulars".
QStringList rows() {
    return testsupport::listRows(form(), QStringLiteral("lstFile"));
}

// Selects the row of that file number and presses Enter on it, which counts as a double click.
void dblClick(const QString& number) {
    testsupport::dblClick(form(), QStringLiteral("lstFile"), number, 1);
}

QStringList printedNumbers() {
    QStringList out;
    for (const auto& page : reports::RptFileList().pages().pages)
        out << page.textOf(QStringLiteral("txtFileNumber"));
    return out;
}

} // namespace

class TestFileRegister : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from File where FileID=%2").arg(column).arg(id))
            .toString();
    }

  private slots:
    // The report's data environment starts empty too.
    void init() {
        reports::VorlaneDE::instance().reset();
        env = testsupport::startRecordCase(form());
    }
    void cleanup() {
        reports::VorlaneDE::instance().reset();
        testsupport::endRecordCase(form(), env);
    }

    void theScreenAsDesigned() {
        // It opens without the data store: no message even with the database gone.
        env->removeDatabase();
        form().Show();
        QCOMPARE(messages(), QStringList());
        QWidget* w = form().window();
        QCOMPARE(w->objectName(), QStringLiteral("frmFile"));
        QCOMPARE(w->windowTitle(), QStringLiteral("File"));
        QCOMPARE(ctl<QLabel>("lblEmail")->text(), QStringLiteral("File Number :"));
        QCOMPARE(ctl<QLabel>("lblEmail")->buddy(), ctl<QLineEdit>("txtFileNo"));
        QCOMPARE(ctl<QLabel>("Label1")->text(), QStringLiteral("Particulars :"));
        QCOMPARE(ctl<QLabel>("Label1")->buddy(), ctl<QLineEdit>("txtParticulars"));
        QCOMPARE(ctl<QLineEdit>("txtFileNo")->maxLength(), 25);
        QCOMPARE(ctl<QLineEdit>("txtParticulars")->maxLength(), 25);
        QVERIFY(ctl<QLineEdit>("txtParticulars")->height() > ctl<QLineEdit>("txtFileNo")->height());
        const QStringList captions{"Reset", "Edit", "Save", "Close", "Print List"};
        for (int i = 0; i < captions.size(); ++i)
            QCOMPARE(form().cmd(i)->text(), captions[i]);

        QVERIFY(!listShown());
        QCOMPARE(list()->toolTip(), QStringLiteral("Double click a record to edit"));
        auto* head = list()->model();
        QCOMPARE(head->columnCount(), 3);
        QStringList headers;
        for (int c = 0; c < 3; ++c)
            headers << head->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(headers, QStringList({"FileID", "File number", "Particulars"}));
        QVERIFY(list()->isColumnHidden(0));
        QVERIFY(!list()->isColumnHidden(1) && !list()->isColumnHidden(2));
    }

    // The list lies over both text boxes and leaves every button free; while it is shown the
    // keyboard works the list and the buttons only.
    void theListCoversTheFieldsAndKeyboardUseWorks() {
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        form().Show();
        QWidget* w = form().window();
        w->resize(w->sizeHint());
        QCoreApplication::processEvents();
        QCOMPARE(w->focusWidget(), ctl<QLineEdit>("txtFileNo"));

        press(1);
        QVERIFY(listShown());
        QCoreApplication::processEvents();
        const QRect cover = list()->geometry();
        // Compared in the window's coordinates, since the boxes lie in a panel of their own.
        const auto inWindow = [&](QWidget* box) {
            return QRect(box->mapTo(form().window(), QPoint(0, 0)), box->size());
        };
        QVERIFY(cover.contains(inWindow(ctl<QLineEdit>("txtFileNo"))));
        QVERIFY(cover.contains(inWindow(ctl<QLineEdit>("txtParticulars"))));
        // Labels and boxes keep visible gaps between them.
        const QRect number = inWindow(ctl<QLineEdit>("txtFileNo"));
        const QRect particulars = inWindow(ctl<QLineEdit>("txtParticulars"));
        QVERIFY(particulars.top() - number.bottom() > 4);
        QVERIFY(number.left() - inWindow(ctl<QLabel>("lblEmail")).right() > 4);
        for (int i = 0; i < 5; ++i) {
            QVERIFY(!cover.intersects(form().cmd(i)->geometry()));
            QVERIFY(w->rect().contains(form().cmd(i)->geometry()));
        }
        QCOMPARE(w->focusWidget(), list());

        // Tab from the list reaches the buttons, never the covered boxes.
        QStringList visited;
        QWidget* at = list();
        for (int i = 0; i < 7; ++i) {
            at = at->nextInFocusChain();
            while (!(at->focusPolicy() & Qt::TabFocus) || !w->isAncestorOf(at) || !at->isVisibleTo(w))
                at = at->nextInFocusChain();
            visited << at->objectName();
        }
        QCOMPARE(visited,
                 QStringList({"cmd(0)", "cmd(1)", "cmd(2)", "cmd(3)", "cmd(4)", "lstFile", "cmd(0)"}));

        // Arrow to the row and Enter loads it; the boxes take the keyboard again.
        QTest::keyClick(list(), Qt::Key_Down);
        QTest::keyClick(list(), Qt::Key_Return);
        QVERIFY(form().EditMode);
        QVERIFY(!listShown());
        QCOMPARE(w->focusWidget(), ctl<QLineEdit>("txtFileNo"));
        QVERIFY(ctl<QLineEdit>("txtParticulars")->focusPolicy() & Qt::TabFocus);
        QCOMPARE(messages(), QStringList());
    }

    void rightsComeFirstAndOnlyTheNumberIsRequired() {
        form().Show();
        testsupport::setSession(2, QStringLiteral("User"));
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));

        testsupport::setSession(3, QStringLiteral("Save"));
        type("txtParticulars", "Bank statements");
        type("txtFileNo", "   ");
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify File Number."}));
        QCOMPARE(text("txtParticulars"), QStringLiteral("Bank statements"));
        QCOMPARE(env->count("File"), 0);

        // Particulars may stay empty: stored as an empty text, which the list reads back.
        enter("  F-001  ", "");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("FileNumber", 1), QStringLiteral("F-001"));
        QCOMPARE(env->scalar("select count(*) from File where Particulars = ''").toInt(), 1);
        QCOMPARE(env->scalar("select UpdatedBy from File where FileID=1").toInt(), 3);
        QCOMPARE(text("txtFileNo"), QString());
        QVERIFY(!form().EditMode);

        // "Save" may add but not change a loaded row.
        press(1);
        dblClick("F-001");
        QCOMPARE(form().CurrentRowID, 1);
        type("txtParticulars", "Changed");
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
        QCOMPARE(stored("Particulars", 1), QString());
    }

    void theNumberIsUniqueAndTheParticularsMayRepeat() {
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        env->exec("insert into File values(2,'A-7','Leases',1)");
        form().Show();

        // A new row: the same number in other letter case is the same number.
        enter("f-001", "Other");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        QCOMPARE(text("txtFileNo"), QStringLiteral("f-001"));
        QCOMPARE(text("txtParticulars"), QStringLiteral("Other"));
        QVERIFY(!GenMod::Conn);

        // Same particulars as another file.
        enter("F-002", "Tax returns");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 3), QStringLiteral("Tax returns"));

        // An edited row may keep its own number, but not take another's.
        press(1);
        dblClick("A-7");
        type("txtParticulars", "Leases and deeds");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 2), QStringLiteral("Leases and deeds"));
        press(1);
        dblClick("A-7");
        type("txtFileNo", "F-002");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        QVERIFY(form().EditMode);
        QCOMPARE(form().CurrentRowID, 2);
        type("txtFileNo", "a-8");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("FileNumber", 2), QStringLiteral("a-8"));
        QCOMPARE(env->count("File"), 3);
    }

    void anApostrophe() {
        env->exec("insert into File values(1,'O`Neil 1','Estate',1)");
        form().Show();
        // In the number it breaks the duplicate test, which says so and reads as no duplicate;
        // the row is stored with a back-tick.
        enter("O'Neil 1", "Estate");
        press(2);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY2(shown[0].startsWith("16:"), qPrintable(shown[0]));
        QCOMPARE(shown[1], Saved);
        QCOMPARE(stored("FileNumber", 2), QStringLiteral("O`Neil 1"));

        // In the particulars alone it passes quietly.
        enter("F-9", "Tom's deeds");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("Particulars", 3), QStringLiteral("Tom`s deeds"));
    }

    void theListSortsAsTextAndLoadsThroughItsHiddenKey() {
        env->exec("insert into File values(1,'9','Nine',1)");
        env->exec("insert into File values(2,'10','  Ten  ',1)");
        env->exec("insert into File values(3,'B-2','Two',1)");
        form().Show();
        enter("typed", "kept");

        press(1);
        QCOMPARE(rows(), QStringList({"2|10|Ten", "1|9|Nine", "3|B-2|Two"}));
        // Edit does not touch what was typed, and a second Edit fills afresh.
        QCOMPARE(text("txtFileNo"), QStringLiteral("typed"));
        env->exec("insert into File values(4,'1','One',1)");
        press(1);
        QCOMPARE(rows(), QStringList({"4|1|One", "2|10|Ten", "1|9|Nine", "3|B-2|Two"}));

        dblClick("10");
        QVERIFY(form().EditMode);
        QCOMPARE(form().CurrentRowID, 2);
        QCOMPARE(text("txtFileNo"), QStringLiteral("10"));
        QCOMPARE(text("txtParticulars"), QStringLiteral("Ten"));
        QVERIFY(!listShown());

        // Edit while editing keeps the loaded row; another double click loads over it.
        type("txtParticulars", "unsaved");
        press(1);
        QVERIFY(form().EditMode);
        QCOMPARE(text("txtParticulars"), QStringLiteral("unsaved"));
        dblClick("B-2");
        QCOMPARE(form().CurrentRowID, 3);
        QCOMPARE(text("txtParticulars"), QStringLiteral("Two"));

        press(1);
        press(0);
        QVERIFY(!listShown());
        QVERIFY(!form().EditMode);
        QCOMPARE(form().CurrentRowID, 0);
        QCOMPARE(text("txtFileNo"), QString());
        QCOMPARE(text("txtParticulars"), QString());
        QCOMPARE(messages(), QStringList());
    }

    void theDoubleClickReadsTheKeyThroughSixteenBits() {
        form().Show();
        press(1);
        QVERIFY(listShown());
        emit list()->DblClick(); // empty list: nothing
        QVERIFY(!form().EditMode);
        QCOMPARE(messages(), QStringList());

        env->exec("insert into File values(40000,'Big','Past the limit',1)");
        env->exec("insert into File values(32767,'Edge','At the limit',1)");
        press(1);
        dblClick("Big");
        QCOMPARE(messages(), QStringList({"16:Overflow"}));
        QVERIFY(!form().EditMode);
        QVERIFY(listShown());

        list()->setCurrentIndex(QModelIndex());
        emit list()->DblClick();
        QCOMPARE(messages().size(), 1);
        QVERIFY(!form().EditMode);

        dblClick("Edge");
        QCOMPARE(form().CurrentRowID, 32767);
        QCOMPARE(text("txtParticulars"), QStringLiteral("At the limit"));
        QCOMPARE(messages(), QStringList());
    }

    void aNullParticularsEndsTheFillWithTheRowsReadSoFar() {
        env->exec("insert into File values(1,'A-1','First',1)");
        env->exec("insert into File values(2,'B-1',NULL,1)");
        env->exec("insert into File values(3,'C-1','Third',1)");
        form().Show();
        press(1);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].startsWith("16:"), qPrintable(shown[0]));
        QVERIFY(listShown());
        QCOMPARE(rows(), QStringList({"1|A-1|First"}));
        QVERIFY(!GenMod::Conn);
        dblClick("A-1");
        QCOMPARE(form().CurrentRowID, 1);
        QCOMPARE(messages(), QStringList());
    }

    // Close keeps the instance's values, but opening again starts with a new row.
    void closeDropsTypedTextAndReopeningStartsNew() {
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        form().Show();
        press(1);
        dblClick("F-001");
        type("txtParticulars", "Changed but not saved");
        press(3);
        QVERIFY(!form().isLoaded());
        QVERIFY(form().EditMode);
        QCOMPARE(stored("Particulars", 1), QStringLiteral("Tax returns"));

        form().Show();
        QVERIFY(!form().EditMode);
        QCOMPARE(form().CurrentRowID, 0);
        QCOMPARE(text("txtFileNo"), QString());
        QVERIFY(!listShown());
        enter("F-002", "Post");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("File"), 2);
        QCOMPARE(stored("Particulars", 1), QStringLiteral("Tax returns"));
    }

    // Printing reads the whole table anew each time, whatever the list shows and whoever asks.
    void printListShowsTheRegisterAsItIsNow() {
        env->exec("insert into File values(1,'F-002','Tax returns',1)");
        env->exec("insert into File values(2,'F-001','Bank statements',1)");
        testsupport::setSession(2, QStringLiteral("User"));
        form().Show();
        press(4);
        QCOMPARE(messages(), QStringList());
        QVERIFY(!listShown());
        reports::Report& report = reports::RptFileList();
        QVERIFY(report.isShown());
        QCOMPARE(printedNumbers(), QStringList({"F-001", "F-002"}));
        QCOMPARE(report.pages().pages[0].textOf("txtParticulars"),
                 QStringList({"Bank statements", "Tax returns"}));

        testsupport::setSession(1, QStringLiteral("Modify"));
        enter("F-000", "");
        press(2);
        press(1);
        dblClick("F-002");
        type("txtFileNo", "F-010");
        press(2);
        QCOMPARE(messages(), QStringList({Saved, Saved}));
        press(4);
        QCOMPARE(printedNumbers(), QStringList({"F-000", "F-001", "F-010"}));
        // The empty particulars of F-000 print as nothing.
        QCOMPARE(report.pages().pages[0].textOf("txtParticulars"),
                 QStringList({"Bank statements", "Tax returns"}));
        QCOMPARE(messages(), QStringList());
    }

    void aMissingDatabaseWhilePrintingIsTold() {
        form().Show();
        env->removeDatabase();
        press(4);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 1);
        // The data layer's own words, which name the missing file, or the server that is not there.
        QVERIFY2(shown[0].startsWith("16:") &&
                     shown[0].contains(testsupport::onServer() ? "connection to server" : "Vorlane.mdb"),
                 qPrintable(shown[0]));
        QCOMPARE(reports::VorlaneDE::instance().rscmdFileList().State(), int(db::adStateClosed));

        // The screen goes on, and so does printing once the database is back.
        QVERIFY(form().isLoaded());
        env->createDatabase();
        env->exec("insert into File values(1,'F-001','Tax returns',1)");
        press(4);
        QCOMPARE(messages(), QStringList());
        QCOMPARE(printedNumbers(), QStringList({"F-001"}));
    }

    // The toolbar entry opens the register inside the main window, and raises it the second
    // time. Set VORLANE_SHOTS to a folder to keep a picture of it and pages of its report.
    void theToolbarOpensItInTheMainWindow() {
        const QStringList numbers{"ACC/2021/01", "ACC/2021/02", "ACC/2022/01", "BNK-01",   "BNK-02",
                                  "HR/Staff/1",  "HR/Staff/2",  "INS-Car",     "INS-Home", "LGL/Lease/7",
                                  "PRJ-Harbor",  "TAX/2022",    "TAX/2023",    "TAX/2024", "VEH-Van"};
        const QStringList particulars{"Supplier invoices H1", "Supplier invoices H2", "Ledger prints",
                                      "Current account",      "Deposit account",      "Contracts A-L",
                                      "Contracts M-Z",        "Fleet policy",         "Office contents cover",
                                      "Ground floor lease",   "Harbour extension",    "Returns and notices",
                                      "Returns and notices",  "Quarterly filings",    "Service book"};
        for (int i = 0; i < numbers.size(); ++i)
            env->exec(QStringLiteral("insert into File values(%1,'%2','%3',1)")
                          .arg(i + 1)
                          .arg(numbers[i], particulars[i]));

        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().window()->resize(1024, 720);
        MDI::instance().entryClick(QStringLiteral("ImgFile"));
        QVERIFY(form().isLoaded());
        type("txtFileNo", "typed");
        MDI::instance().entryClick(QStringLiteral("ImgFile"));
        int copies = 0;
        for (auto* sub : MDI::instance().area()->subWindowList())
            copies += sub->widget() && sub->widget()->objectName() == QLatin1String("frmFile");
        QCOMPARE(copies, 1);
        QCOMPARE(text("txtFileNo"), QStringLiteral("typed"));

        press(1);
        list()->setCurrentIndex(list()->model()->index(3, 0));
        QCoreApplication::processEvents();
        auto* frame = qobject_cast<QMdiSubWindow*>(form().window()->parentWidget());
        QVERIFY(frame);
        QVERIFY(MDI::instance().area()->viewport()->rect().contains(frame->geometry()));
        const QString folder = qEnvironmentVariable("VORLANE_SHOTS");
        if (!folder.isEmpty()) {
            QDir().mkpath(folder);
            QVERIFY(frame->grab().save(QDir(folder).filePath("frmFile-list.png")));
            dblClick("HR/Staff/1");
            QCoreApplication::processEvents();
            QVERIFY(frame->grab().save(QDir(folder).filePath("frmFile-loaded.png")));
            press(4);
            QVERIFY(reports::RptFileList().exportPdf(QDir(folder).filePath("RptFileList.pdf")));
        }
        QCOMPARE(messages(), QStringList());
        form().Unload();
        MDI::instance().Unload();
    }
};

QTEST_MAIN(TestFileRegister)
#include "tst_file.moc"
