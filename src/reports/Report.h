#pragma once

#include "ReportEngine.h"

#include <QString>
#include <functional>
#include <memory>

class QPrinter;
class QWidget;

namespace reports {

class ReportPreview;

// A report object of the program: a design bound to its rows, with its own preview window.
// The rows are read at the first Show and at each Refresh; between them the report keeps
// what it read.
class Report {
  public:
    using DataProvider = std::function<std::unique_ptr<ReportData>()>;

    Report(ReportDesign design, DataProvider rows);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    const QString& name() const { return m_design.name; }
    const QString& title() const { return m_design.title; }
    ReportDesign& design() { return m_design; }
    Section& Sections(const QString& sectionName) { return m_design.Sections(sectionName); }

    // Brings up the preview, not modal. The first Show reads the rows; a later one shows the
    // pages as they were. Under test no window appears.
    void Show();
    // Reads the rows anew, lays the pages out again with the current captions and repaints.
    void Refresh();
    bool isShown() const { return m_shown; }
    bool hasRendered() const { return m_rendered; }

    // The paper used for preview, PDF and print.
    const PageSetup& pageSetup() const { return m_setup; }
    void setPageSetup(const PageSetup& setup);

    // The pages of the last rendering.
    const LaidOutReport& pages() const { return m_pages; }
    ReportPreview* preview() const { return m_preview.get(); }

    // Writes the pages to a PDF file. On failure the user is told why (exclamation icon) and
    // false is returned.
    bool exportPdf(const QString& path);
    // Prints the pages on a printer that the caller has set up; the paper the printer holds
    // is used. On failure the user is told why (exclamation icon) and false is returned.
    bool printTo(QPrinter& printer);
    // Asks for a printer with the print dialog and prints. False on cancel or failure.
    bool print(QWidget* owner);

  private:
    void relayout();
    const ReportData& rows() const;

    ReportDesign m_design;
    DataProvider m_provider;
    std::unique_ptr<ReportData> m_rows;
    PageSetup m_setup;
    LaidOutReport m_pages;
    std::unique_ptr<ReportPreview> m_preview;
    bool m_shown = false;
    bool m_rendered = false;
};

// The print dialog. Under test nothing is shown: the answer is the one primed with
// test::nextPrintDialog, else Cancel.
bool showPrintDialog(QPrinter& printer, QWidget* owner);

namespace test {
// The next print dialog is answered OK and "prints" to a PDF file at `outputPath`, which
// stands for the printer; a path that cannot be written stands for a failing printer.
void nextPrintDialog(const QString& outputPath);
} // namespace test

} // namespace reports
