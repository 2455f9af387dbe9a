#include "Report.h"

#include "ReportPreview.h"
#include "platform/MsgBox.h"
#include "platform/TestHooks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QQueue>

namespace reports {

namespace {
QQueue<QString>& primedPrintDialogs() {
    static QQueue<QString> queue;
    return queue;
}

// The printer takes the report's paper, and the report's own margins are painted.
void preparePrinter(QPrinter& printer, const PageSetup& setup, const QString& title) {
    printer.setFullPage(true);
    printer.setPageSize(
        QPageSize(setup.paper, QPageSize::Point, QString(), QPageSize::FuzzyOrientationMatch));
    printer.setPageOrientation(setup.paper.width() > setup.paper.height() ? QPageLayout::Landscape
                                                                          : QPageLayout::Portrait);
    printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    printer.setDocName(title);
    printer.setCreator(platform::appTitle());
}

// Paints every page, or the range the user chose. On failure `why` tells what went wrong.
bool paintAll(QPrinter& printer, const LaidOutReport& pages, QString& why) {
    QPainter painter;
    if (!painter.begin(&printer)) {
        why = QStringLiteral("The printer is not ready or the output cannot be written.");
        return false;
    }
    int from = 1, to = int(pages.pages.size());
    if (printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0) {
        from = std::max(1, printer.fromPage());
        to = std::min(to, printer.toPage() > 0 ? printer.toPage() : to);
    }
    for (int p = from; p <= to; ++p) {
        if (p > from && !printer.newPage()) {
            why = QStringLiteral("The printer did not take page %1.").arg(p);
            return false;
        }
        paintPage(painter, pages.pages[p - 1]);
    }
    if (!painter.end()) {
        why = QStringLiteral("The printer did not finish the report.");
        return false;
    }
    return true;
}
} // namespace

Report::Report(ReportDesign design, DataProvider rows)
    : m_design(std::move(design)), m_provider(std::move(rows)), m_setup(PageSetup::systemDefault()) {}

Report::~Report() = default;

void Report::Show() {
    if (!m_rendered)
        Refresh();
    if (!m_preview)
        m_preview = std::make_unique<ReportPreview>(this);
    m_shown = true;
    if (platform::test::enabled())
        return;
    if (m_preview->isMinimized())
        m_preview->showNormal();
    else
        m_preview->show();
    m_preview->raise();
    m_preview->activateWindow();
}

void Report::Refresh() {
    m_rows = m_provider ? m_provider() : nullptr;
    relayout();
    m_rendered = true;
}

void Report::setPageSetup(const PageSetup& setup) {
    m_setup = setup;
    if (m_rendered)
        relayout();
}

const ReportData& Report::rows() const {
    static const MemoryData noRows;
    if (m_rows)
        return *m_rows;
    return noRows;
}

void Report::relayout() {
    m_pages = layoutReport(m_design, rows(), m_setup);
    if (m_preview)
        m_preview->pagesChanged();
}

bool Report::exportPdf(const QString& path) {
    if (!m_rendered)
        Refresh();
    // Try the file first, so that the user learns why it cannot be written.
    {
        QFile probe(path);
        if (!probe.open(QIODevice::WriteOnly)) {
            platform::MsgBox(QStringLiteral("The report could not be saved as \"%1\".\n%2")
                                 .arg(QDir::toNativeSeparators(path), probe.errorString()),
                             platform::vbExclamation);
            return false;
        }
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    preparePrinter(printer, m_setup, m_design.title);
    QString why;
    if (!paintAll(printer, m_pages, why)) {
        // No half-written file is left behind under the name the user gave.
        QFile::remove(path);
        platform::MsgBox(QStringLiteral("The report could not be saved as \"%1\".\n%2")
                             .arg(QDir::toNativeSeparators(path), why),
                         platform::vbExclamation);
        return false;
    }
    return true;
}

bool Report::printTo(QPrinter& printer) {
    if (!m_rendered)
        Refresh();
    printer.setFullPage(true);
    printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    // The paper the user chose in the dialog wins: lay the report out on it.
    const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Point).size();
    LaidOutReport onPaper = m_pages;
    if (paper.isValid() && (std::abs(paper.width() - m_setup.paper.width()) > 1 ||
                            std::abs(paper.height() - m_setup.paper.height()) > 1)) {
        PageSetup setup = m_setup;
        setup.paper = paper;
        onPaper = layoutReport(m_design, rows(), setup);
    }
    QString why;
    if (!paintAll(printer, onPaper, why)) {
        const QString printerName =
            printer.outputFormat() == QPrinter::PdfFormat ? printer.outputFileName() : printer.printerName();
        platform::MsgBox(
            QStringLiteral("The report could not be printed on \"%1\".\n%2").arg(printerName, why),
            platform::vbExclamation);
        return false;
    }
    return true;
}

bool Report::print(QWidget* owner) {
    QPrinter printer(QPrinter::HighResolution);
    preparePrinter(printer, m_setup, m_design.title);
    printer.setFromTo(1, int(m_pages.pages.size()));
    if (!showPrintDialog(printer, owner))
        return false;
    return printTo(printer);
}

bool showPrintDialog(QPrinter& printer, QWidget* owner) {
    if (platform::test::enabled()) {
        if (primedPrintDialogs().isEmpty())
            return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(primedPrintDialogs().dequeue());
        return true;
    }
    QPrintDialog dialog(&printer, owner);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    dialog.setMinMax(1, std::max(1, printer.toPage()));
    return dialog.exec() == QDialog::Accepted;
}

namespace test {
void nextPrintDialog(const QString& outputPath) {
    primedPrintDialogs().enqueue(outputPath);
}
} // namespace test

} // namespace reports
