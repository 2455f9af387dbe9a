#pragma once

#include <QLabel>
#include <QMainWindow>

class QAction;
class QComboBox;
class QScrollArea;

namespace reports {

class Report;

// A page of the preview: its picture, and its text for assistive technology, line by line in
// reading order, so that a screen reader reads the page that is shown.
class PageView : public QLabel {
    Q_OBJECT
  public:
    explicit PageView(QWidget* parent = nullptr);
    const QString& pageText() const { return m_text; }
    void setPage(const QPixmap& picture, const QString& text);

  private:
    QString m_text;
};

// The preview window of one report: its pages as they will print, page by page, with
// print, save as PDF, page navigation and zoom. Closing it only hides it.
class ReportPreview : public QMainWindow {
    Q_OBJECT
  public:
    explicit ReportPreview(Report* report);

    int currentPage() const { return m_page; } // from 0
    int pageCount() const;
    // "Page 2 of 5", as the tool bar shows it.
    QString pageText() const;
    double zoom() const { return m_zoom; }

    // The report laid its pages out again.
    void pagesChanged();

  public slots:
    void firstPage();
    void previousPage();
    void nextPage();
    void lastPage();
    void goToPage(int index);
    void setZoom(double factor);
    void zoomIn();
    void zoomOut();
    void print();
    // Asks for a file with the save dialog and writes the PDF there.
    void saveAsPdf();
    void hidePreview();

  private:
    QAction* addTool(const QString& text, const QString& accessibleName, const QKeySequence& key,
                     void (ReportPreview::*slot)());
    void showPage();

    Report* m_report;
    int m_page = 0;
    double m_zoom = 1.0;
    QScrollArea* m_scroll = nullptr;
    PageView* m_pageImage = nullptr;
    QLabel* m_pageLabel = nullptr;
    QComboBox* m_zoomBox = nullptr;
    QAction* m_first = nullptr;
    QAction* m_previous = nullptr;
    QAction* m_next = nullptr;
    QAction* m_last = nullptr;
};

} // namespace reports
