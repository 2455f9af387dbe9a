#include "Driver.h"

#include "Median.h"
#include "Office.h"
#include "Process.h"
#include "app/MDI.h"
#include "app/Startup.h"
#include "datastore/SqlText.h"
#include "index/PreviewPane.h"
#include "index/SoftCopyWork.h"
#include "index/frmIndexDocument.h"
#include "index/frmSearchDocument.h"
#include "platform/Controls.h"
#include "platform/Error.h"
#include "platform/TestHooks.h"
#include "session/GenMod.h"
#include "session/Session.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QScrollBar>
#include <QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

// How many times each search of a few milliseconds is pressed.
constexpr int ShortSearchTimes = 5;

double millisecondsSince(Clock::time_point start, Clock::time_point end = Clock::now()) {
    return std::chrono::duration<double, std::milli>(end - start).count();
}

void report(const char* step, double ms, long peakKiB = peakMemoryKiB()) {
    std::printf("step %s %.3f %ld\n", step, ms, peakKiB);
    std::fflush(stdout);
}

// Thrown when a step did not do what it should; its text goes to the "fail" line.
struct StepFailed {
    QString what;
};

// Watches the paints of the list's viewport: the first one while the list holds rows (the
// user sees the first rows), and the latest one.
class PaintWatch : public QObject {
  public:
    explicit PaintWatch(const platform::ListView* list) : m_list(list) {}
    std::optional<Clock::time_point> firstWithRows;
    std::optional<Clock::time_point> latest;
    long peakAtFirstWithRows = 0;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            latest = Clock::now();
            if (!firstWithRows && m_list->ListCount() > 0) {
                firstWithRows = latest;
                peakAtFirstWithRows = peakMemoryKiB();
            }
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    const platform::ListView* m_list;
};

template <class T> T* control(const char* name, const Form& form = frmIndexDocument::instance()) {
    T* found = form.control<T>(QString::fromLatin1(name));
    if (!found)
        throw StepFailed{QStringLiteral("the screen has no control %1").arg(QLatin1String(name))};
    return found;
}

// The messages shown since the last call, as "style:text", joined.
QString messages() {
    QStringList out;
    for (const auto& m : platform::test::takeMessages())
        out << QString::number(m.style) + QLatin1Char(':') + m.text;
    return out.join(QStringLiteral(" | "));
}

void expectNoMessage(const char* step) {
    const QString shown = messages();
    if (!shown.isEmpty())
        throw StepFailed{QStringLiteral("%1 showed: %2").arg(QLatin1String(step), shown)};
}

// The fields of a document, each pick list at its first item. The child category is read at
// the position of the category's choice, so the category stays the first one.
void fillFields(const QString& title) {
    for (const char* combo :
         {"cboDocType", "cboDocCategory", "cboDocSubCategory", "cboDocChildCategory", "cboFile"}) {
        auto* box = control<platform::ComboBox>(combo);
        if (box->ListCount() == 0)
            throw StepFailed{QStringLiteral("%1 has no items").arg(QLatin1String(combo))};
        box->setListIndex(0);
    }
    control<QLineEdit>("txtFilePath")
        ->setText(QStringLiteral("/home/office/Scans/2026/02/saved-by-bench.pdf"));
    control<QLineEdit>("txtTitle1")->setText(title);
    expectNoMessage("choosing the fields");
}

void save(const char* step) {
    const auto start = Clock::now();
    frmIndexDocument::instance().cmd_Click(2);
    const double ms = millisecondsSince(start);
    const QString shown = messages();
    if (shown != QLatin1String("64:Saved Successfully."))
        throw StepFailed{QStringLiteral("%1 showed: %2")
                             .arg(QLatin1String(step), shown.isEmpty() ? QStringLiteral("nothing") : shown)};
    report(step, ms);
}

// Presses Search with the criteria set, and times the first rows and the whole list as Edit's
// are timed, `times` times. The statement goes to the parent, which runs it in
// the sqlite3 shell; with `keys`, so do the keys of the rows found, which the parent compares
// with the shell's.
void timeSearch(const char* step, const std::function<void()>& criteria, bool keys = false, int times = 1) {
    auto& screen = frmSearchDocument::instance();
    auto* list = control<platform::ListView>("lstList", screen);
    std::vector<double> first, whole;
    long peakAtFirst = 0;
    for (int time = 0; time < times; ++time) {
        screen.ResetSearchForm();
        criteria();
        expectNoMessage("choosing the criteria");
        PaintWatch paints(list);
        list->viewport()->installEventFilter(&paints);
        const auto pressed = Clock::now();
        screen.cmdSearch_Click();
        list->scrollToBottom();
        const auto scrolled = Clock::now();
        for (int i = 0; i < 100 && !(paints.latest && *paints.latest >= scrolled); ++i)
            QCoreApplication::processEvents();
        const auto ready = Clock::now();
        list->viewport()->removeEventFilter(&paints);
        expectNoMessage(step);
        if (list->ListCount() == 0)
            throw StepFailed{QStringLiteral("%1 found nothing").arg(QLatin1String(step))};
        if (paints.firstWithRows) {
            first.push_back(millisecondsSince(pressed, *paints.firstWithRows));
            peakAtFirst = std::max(peakAtFirst, paints.peakAtFirstWithRows);
        }
        whole.push_back(millisecondsSince(pressed, ready));
    }
    // The first press, as a clerk's first search; with more presses also their median.
    const QByteArray name(step);
    if (!first.empty())
        report((name + "-first").constData(), first.front(), peakAtFirst);
    report((name + "-whole").constData(), whole.front());
    if (times > 1) {
        if (!first.empty())
            report((name + "-first-median").constData(), median(first), peakAtFirst);
        report((name + "-whole-median").constData(), median(whole));
    }
    std::printf("rows %s %d\n", step, list->ListCount());
    if (keys) {
        std::printf("keys %s", step);
        for (int i = 0; i < list->ListCount(); ++i)
            std::printf(" %s", qPrintable(list->itemText(i, 0)));
        std::printf("\n");
    }
    std::printf("statement %s %s\n", step, qPrintable(screen.BuildSearchStatement()));
    std::fflush(stdout);
}

// The preview of the list's selected row: the first page of twenty soft copies, each selected
// alone, then a held arrow key (a key every 33 ms) through two hundred rows. The newest documents,
// at the bottom of the list of all, point at the files of the run; the cache starts empty.
void previewSteps(frmSearchDocument& screen, const QString& cacheFolder) {
    auto* list = control<platform::ListView>("lstList", screen);
    auto* pane = control<PreviewPane>("fraPreview", screen);
    pane->preview().setHelper(QStringLiteral(VORLANE_READER));
    QDir(cacheFolder).removeRecursively();
    pane->preview().setCacheFolder(cacheFolder);
    QSignalSpy pages(&pane->preview(), &SoftCopyPreview::shown);
    const auto waitShown = [&pages](qsizetype before) {
        for (int i = 0; i < 60000 && pages.size() == before; ++i)
            QTest::qWait(1);
        QCoreApplication::processEvents(); // the page painted
        const QString failure = pages.size() == before
                                    ? QStringLiteral("nothing")
                                    : pages.constLast().constFirst().value<PreviewPage>().failure;
        if (!failure.isEmpty())
            throw StepFailed{QStringLiteral("the preview showed nothing: %1").arg(failure)};
    };
    // The rows whose soft copy is there, from the bottom; the documents saved by the steps are not.
    QList<int> rows;
    for (int row = list->ListCount() - 1; row >= 0 && rows.size() < 230; --row)
        if (QFileInfo::exists(list->itemText(row, 8)))
            rows << row;
    if (rows.size() < 2)
        throw StepFailed{QStringLiteral("too few soft copies for the preview")};
    list->setFocus();
    double total = 0;
    const int firstPages = std::min(20, int(rows.size()) - 1);
    for (int i = 0; i < firstPages; ++i) {
        const qsizetype before = pages.size();
        const auto selected = Clock::now();
        list->setCurrentIndex(list->model()->index(rows[i], 0));
        waitShown(before);
        total += millisecondsSince(selected);
    }
    report("preview-first", total / firstPages);

    const qsizetype atStart = pages.size();
    list->setCurrentIndex(list->model()->index(rows.constLast(), 0));
    waitShown(atStart);
    const int started = pane->preview().started();
    const qsizetype before = pages.size();
    double longest = 0;
    for (int i = 0; i < 200 && list->currentIndex().row() < rows.constFirst(); ++i) {
        const auto pressed = Clock::now();
        QTest::keyClick(list, Qt::Key_Down);
        QCoreApplication::processEvents();
        longest = std::max(longest, millisecondsSince(pressed));
        while (millisecondsSince(pressed) < 33)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    const auto released = Clock::now();
    waitShown(before);
    report("preview-key", longest);
    report("preview-last", millisecondsSince(released));
    std::printf("preview helpers %d for 200 keys, %d pages shown\n", pane->preview().started() - started,
                int(pages.size() - before));
}

void searchSteps(const QString& folder) {
    // The search's own peak: the list of the Index Document screen is gone, and the high-water
    // mark starts again from what the process holds now.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    resetPeakMemory();
    auto& screen = frmSearchDocument::instance();
    screen.Show();
    QCoreApplication::processEvents();
    expectNoMessage("opening the search screen");
    timeSearch("search-all", [] {});
    previewSteps(screen, QDir(folder).filePath(QStringLiteral("previews")));
    // The first type and category (in the order of their names), over six years.
    // The short searches are pressed a few times each: a moment of a busy machine weighs less.
    timeSearch(
        "search-filtered",
        [&screen] {
            control<platform::ComboBox>("cboDocType", screen)->setListIndex(0);
            control<platform::ComboBox>("cboDocCategory", screen)->setListIndex(0);
            control<platform::DatePicker>("dtpDocFrom", screen)->setValue(QDate(2010, 1, 1));
            control<platform::DatePicker>("dtpDocTo", screen)->setValue(QDate(2015, 12, 31));
        },
        false, ShortSearchTimes);
    // A number in the first title: a few rows in a thousand at most.
    timeSearch(
        "search-contains",
        [&screen] { control<QLineEdit>("txtTitle1", screen)->setText(QStringLiteral("4471")); }, false,
        ShortSearchTimes);
    // A name in the soft copies' texts: one document in a thousand.
    timeSearch(
        "search-softcopy",
        [&screen] {
            control<QLineEdit>("txtSoftCopyText", screen)->setText(QString::fromLatin1(RareWords[0].word));
        },
        true, ShortSearchTimes);
    screen.Unload();
}

// The reading of soft copies in the background, when asked for.
struct {
    bool on = false;
    int stored = 0;
    bool idle = false;
} background;

// The main window reads the soft copies that wait, as after a login. The run's soft copies wait
// again first, as a save with their path left them, so that every run with the reading reads
// the same files.
void startReading(const QString& folder) {
    {
        auto c = std::make_shared<db::Connection>();
        c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
        c->Execute(QStringLiteral("Update SoftCopy set ReadState='waiting', Reason=Null, SoftText=Null, "
                                  "ClaimedBy=Null, ClaimedAt=Null where IndexID in (Select IndexID from "
                                  "Vorlane where FilePath like %1)")
                       .arg(db::sql::quoteString(QDir(folder).filePath(QStringLiteral("softcopies/%")))));
    }
    SoftCopyWork& work = MDI::instance().softCopyWork();
    work.reader().setHelper(QStringLiteral(VORLANE_READER));
    // Counted in this thread: the work tells from its own.
    QObject::connect(&work, &SoftCopyWork::stored, qApp, [] { ++background.stored; });
    QObject::connect(&work, &SoftCopyWork::idle, qApp, [] { background.idle = true; });
    MDI::instance().startSoftCopyReading();
}

void run(int documents, const QString& folder) {
    auto& form = frmIndexDocument::instance();
    MDI::setOnEnd([] {});
    wireScreens();
    MDI::instance().Show();
    MDI::instance().window()->resize(1024, 720);
    if (background.on)
        startReading(folder);
    form.Show();
    QCoreApplication::processEvents();
    expectNoMessage("opening the screen");

    // Edit: the whole table, newest first.
    auto* list = control<platform::ListView>("lstDocs");
    PaintWatch paints(list);
    list->viewport()->installEventFilter(&paints);
    const auto pressed = Clock::now();
    form.cmd_Click(1);
    if (list->ListCount() != documents)
        throw StepFailed{QStringLiteral("Edit listed %1 rows of %2").arg(list->ListCount()).arg(documents)};
    // Ready when the last row has been painted at the bottom.
    list->scrollToBottom();
    const auto scrolled = Clock::now();
    for (int i = 0; i < 100 && !(paints.latest && *paints.latest >= scrolled); ++i)
        QCoreApplication::processEvents();
    const auto ready = Clock::now();
    if (!paints.firstWithRows)
        throw StepFailed{QStringLiteral("the list was never painted with rows")};
    if (list->verticalScrollBar()->value() != list->verticalScrollBar()->maximum())
        throw StepFailed{QStringLiteral("the list did not scroll to its last row")};
    expectNoMessage("Edit");
    report("first-rows", millisecondsSince(pressed, *paints.firstWithRows), paints.peakAtFirstWithRows);
    report("whole-list", millisecondsSince(pressed, ready));

    // Double click on the last row, the oldest document: Enter on the current row.
    const int last = list->ListCount() - 1;
    list->setCurrentIndex(list->model()->index(last, 0));
    const QString key = list->itemText(last, 0);
    const auto clicked = Clock::now();
    QTest::keyClick(list, Qt::Key_Return);
    const double loadMs = millisecondsSince(clicked);
    expectNoMessage("the double click");
    if (!form.EditMode || QString::number(form.CurrentRowID) != key || list->isVisible())
        throw StepFailed{QStringLiteral("the double click did not load document %1").arg(key)};
    std::printf("key %s\n", qPrintable(key));
    report("load", loadMs);

    // Save the loaded document changed, then a new one on a fresh form.
    fillFields(QStringLiteral("Invoice 4471 from Northfield Supplies, checked again"));
    save("save-change");
    form.cmd_Click(0);
    fillFields(QStringLiteral("Letter from Müller & Söhne about the new supplier terms"));
    save("save-new");
    form.Unload();

    searchSteps(folder);
    MDI::instance().Unload();
}

} // namespace

int driveScreen(int& argc, char** argv, int documents, const QString& folder, bool reading, bool onServer) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Off the server, unixODBC knows no data source here, so the screen opens the office's
    // embedded file whatever the user's own odbc.ini says.
    if (!onServer) {
        const QString odbc = QDir(folder).filePath(QStringLiteral("odbc"));
        QDir().mkpath(odbc);
        for (const char* name : {"odbc.ini", "odbcinst.ini"}) {
            QFile file(QDir(odbc).filePath(QLatin1String(name)));
            if (!file.open(QIODevice::WriteOnly)) {
                std::printf("fail cannot write %s\n", qPrintable(file.fileName()));
                return 1;
            }
        }
        qputenv("ODBCINI", QFile::encodeName(QDir(odbc).filePath(QStringLiteral("odbc.ini"))));
        qputenv("ODBCSYSINI", QFile::encodeName(odbc));
    }
    QApplication app(argc, argv);
    // No window, message box or dialog of the platform appears, and no setting of the user's
    // own is read or written.
    QStandardPaths::setTestModeEnabled(true);
    platform::test::enable();
    platform::test::setAppPath(folder);
    platform::test::setSettingsFolder(QDir(folder).filePath(QStringLiteral("settings")));
    Session::CurrentUserID = 1;
    Session::UserRights = QStringLiteral("Modify");
    background.on = reading;
    try {
        run(documents, folder);
        // How much was read, and whether documents still waited at the end of the steps.
        if (reading)
            std::printf("background %d %d\n", background.stored, background.idle ? 0 : 1);
    } catch (const StepFailed& f) {
        std::printf("fail %s\n", qPrintable(f.what.simplified()));
        return 1;
    } catch (const platform::Error& e) {
        std::printf("fail error %d: %s\n", e.number(), qPrintable(e.description().simplified()));
        return 1;
    }
    return 0;
}

} // namespace bench
