#include "ReportPreview.h"

#include "Report.h"
#include "platform/Dialogs.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QToolBar>
#include <QToolButton>

namespace reports {

namespace {
const double kZooms[] = {0.5, 0.75, 1.0, 1.25, 1.5, 2.0};

// The page as assistive technology reads it: a read-only document whose text is the page's.
class PageViewAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
  public:
    explicit PageViewAccessible(QWidget* w) : QAccessibleWidget(w, QAccessible::Document) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override {
        QAccessible::State s = QAccessibleWidget::state();
        s.readOnly = true;
        s.multiLine = true;
        return s;
    }
    QString text(QAccessible::Text t) const override {
        return t == QAccessible::Value ? content() : QAccessibleWidget::text(t);
    }

    QString text(int startOffset, int endOffset) const override {
        return content().mid(startOffset, endOffset - startOffset);
    }
    int characterCount() const override { return int(content().size()); }
    int cursorPosition() const override { return m_cursor; }
    void setCursorPosition(int position) override { m_cursor = position; }
    void selection(int, int* startOffset, int* endOffset) const override { *startOffset = *endOffset = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    QRect characterRect(int) const override { return QRect(); }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* startOffset, int* endOffset) const override {
        *startOffset = 0;
        *endOffset = characterCount();
        return QString();
    }

  private:
    const QString& content() const { return static_cast<const PageView*>(widget())->pageText(); }
    int m_cursor = 0;
};

QAccessibleInterface* pageViewAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String("reports::PageView") && object && object->isWidgetType())
        return new PageViewAccessible(static_cast<QWidget*>(object));
    return nullptr;
}
} // namespace

PageView::PageView(QWidget* parent) : QLabel(parent) {
    static const bool readable = [] {
        QAccessible::installFactory(pageViewAccessible);
        return true;
    }();
    Q_UNUSED(readable);
}

void PageView::setPage(const QPixmap& picture, const QString& text) {
    setPixmap(picture);
    resize(sizeHint());
    if (text == m_text)
        return;
    const QString old = m_text;
    m_text = text;
    QAccessibleTextUpdateEvent event(this, 0, old, m_text);
    QAccessible::updateAccessibility(&event);
}

ReportPreview::ReportPreview(Report* report) : m_report(report) {
    setWindowTitle(report->title());
    setAccessibleName(report->title());
    setObjectName(report->name() + QStringLiteral("Preview"));

    auto* bar = addToolBar(QStringLiteral("Report"));
    bar->setObjectName(QStringLiteral("previewToolBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);

    addTool(QStringLiteral("&Print..."), QStringLiteral("Print"), QKeySequence::Print, &ReportPreview::print);
    addTool(QStringLiteral("&Save as PDF..."), QStringLiteral("Save as PDF"), QKeySequence::Save,
            &ReportPreview::saveAsPdf);
    bar->addSeparator();
    m_first = addTool(QStringLiteral("|<"), QStringLiteral("First page"),
                      QKeySequence(Qt::CTRL | Qt::Key_Home), &ReportPreview::firstPage);
    m_previous = addTool(QStringLiteral("<"), QStringLiteral("Previous page"), QKeySequence(Qt::Key_PageUp),
                         &ReportPreview::previousPage);
    // The counter is announced as it reads, "Page 1 of 3".
    m_pageLabel = new QLabel(this);
    m_pageLabel->setObjectName(QStringLiteral("pageLabel"));
    m_pageLabel->setContentsMargins(8, 0, 8, 0);
    bar->addWidget(m_pageLabel);
    m_next = addTool(QStringLiteral(">"), QStringLiteral("Next page"), QKeySequence(Qt::Key_PageDown),
                     &ReportPreview::nextPage);
    m_last = addTool(QStringLiteral(">|"), QStringLiteral("Last page"), QKeySequence(Qt::CTRL | Qt::Key_End),
                     &ReportPreview::lastPage);
    bar->addSeparator();
    addTool(QStringLiteral("-"), QStringLiteral("Zoom out"), QKeySequence::ZoomOut, &ReportPreview::zoomOut);
    m_zoomBox = new QComboBox(this);
    m_zoomBox->setObjectName(QStringLiteral("zoomBox"));
    m_zoomBox->setAccessibleName(QStringLiteral("Zoom"));
    for (double z : kZooms)
        m_zoomBox->addItem(QStringLiteral("%1%").arg(qRound(z * 100)), z);
    m_zoomBox->setCurrentIndex(2);
    bar->addWidget(m_zoomBox);
    connect(m_zoomBox, &QComboBox::activated, this,
            [this](int index) { setZoom(m_zoomBox->itemData(index).toDouble()); });
    addTool(QStringLiteral("+"), QStringLiteral("Zoom in"), QKeySequence::ZoomIn, &ReportPreview::zoomIn);
    bar->addSeparator();
    // Close hides the window: the report keeps it for the next print.
    addTool(QStringLiteral("&Close"), QStringLiteral("Close preview"), QKeySequence(Qt::Key_Escape),
            &ReportPreview::hidePreview);

    // The page takes the keyboard, so that a screen reader starts reading it; the keys that
    // scroll go on to the area around it.
    m_pageImage = new PageView;
    m_pageImage->setObjectName(QStringLiteral("pageImage"));
    m_pageImage->setAlignment(Qt::AlignCenter);
    m_pageImage->setAccessibleName(QStringLiteral("Report page"));
    m_pageImage->setFocusPolicy(Qt::StrongFocus);
    m_scroll = new QScrollArea(this);
    m_scroll->setObjectName(QStringLiteral("pageArea"));
    m_scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_scroll->setBackgroundRole(QPalette::Dark);
    m_scroll->setWidget(m_pageImage);
    m_scroll->setWidgetResizable(false);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    setCentralWidget(m_scroll);
    m_pageImage->setFocus();

    // A page fits the screen's height at 100% when it can.
    if (const QScreen* screen = QApplication::primaryScreen()) {
        const QRect avail = screen->availableGeometry();
        resize(std::min(avail.width() - 40, 900), std::min(avail.height() - 40, 1000));
    } else {
        resize(900, 1000);
    }
    pagesChanged();
}

QAction* ReportPreview::addTool(const QString& text, const QString& accessibleName, const QKeySequence& key,
                                void (ReportPreview::*slot)()) {
    auto* bar = findChild<QToolBar*>(QStringLiteral("previewToolBar"));
    auto* action = bar->addAction(text);
    action->setShortcut(key);
    action->setToolTip(key.isEmpty() ? accessibleName
                                     : QStringLiteral("%1 (%2)").arg(accessibleName,
                                                                     key.toString(QKeySequence::NativeText)));
    action->setObjectName(accessibleName);
    if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action))) {
        button->setAccessibleName(accessibleName);
        button->setFocusPolicy(Qt::StrongFocus);
    }
    connect(action, &QAction::triggered, this, slot);
    return action;
}

int ReportPreview::pageCount() const {
    return int(m_report->pages().pages.size());
}

QString ReportPreview::pageText() const {
    return QStringLiteral("Page %1 of %2").arg(pageCount() ? m_page + 1 : 0).arg(pageCount());
}

void ReportPreview::pagesChanged() {
    setWindowTitle(m_report->title());
    m_page = std::clamp(m_page, 0, std::max(0, pageCount() - 1));
    showPage();
}

void ReportPreview::firstPage() {
    goToPage(0);
}
void ReportPreview::previousPage() {
    goToPage(m_page - 1);
}
void ReportPreview::nextPage() {
    goToPage(m_page + 1);
}
void ReportPreview::lastPage() {
    goToPage(pageCount() - 1);
}

void ReportPreview::goToPage(int index) {
    const int page = std::clamp(index, 0, std::max(0, pageCount() - 1));
    const bool turned = page != m_page;
    m_page = page;
    showPage();
    // Another page is read from its top.
    if (turned)
        m_scroll->verticalScrollBar()->setValue(0);
}

void ReportPreview::setZoom(double factor) {
    m_zoom = std::clamp(factor, kZooms[0], kZooms[std::size(kZooms) - 1]);
    for (int i = 0; i < m_zoomBox->count(); ++i)
        if (std::abs(m_zoomBox->itemData(i).toDouble() - m_zoom) < 1e-6)
            m_zoomBox->setCurrentIndex(i);
    showPage();
}

void ReportPreview::zoomIn() {
    for (double z : kZooms)
        if (z > m_zoom + 1e-6)
            return setZoom(z);
}

void ReportPreview::zoomOut() {
    for (auto it = std::rbegin(kZooms); it != std::rend(kZooms); ++it)
        if (*it < m_zoom - 1e-6)
            return setZoom(*it);
}

void ReportPreview::showPage() {
    if (m_pageLabel->text() != pageText()) {
        m_pageLabel->setText(pageText());
        QAccessibleEvent named(m_pageLabel, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&named);
    }
    m_first->setEnabled(m_page > 0);
    m_previous->setEnabled(m_page > 0);
    m_next->setEnabled(m_page + 1 < pageCount());
    m_last->setEnabled(m_page + 1 < pageCount());
    const double ratio = devicePixelRatioF();
    QImage image = renderPage(m_report->pages(), m_page, 96.0 * m_zoom * ratio);
    image.setDevicePixelRatio(ratio);
    const auto& pages = m_report->pages().pages;
    m_pageImage->setPage(QPixmap::fromImage(image),
                         m_page < pages.size() ? pages[m_page].texts().join(QLatin1Char('\n')) : QString());
}

void ReportPreview::hidePreview() {
    close();
}

void ReportPreview::print() {
    m_report->print(this);
}

void ReportPreview::saveAsPdf() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString path =
        platform::showSaveDialog(this, QStringLiteral("Save as PDF"), QStringLiteral("PDF files|*.pdf"),
                                 QDir(documents).filePath(m_report->title() + QStringLiteral(".pdf")));
    if (path.isEmpty())
        return;
    if (!path.endsWith(QStringLiteral(".pdf"), Qt::CaseInsensitive))
        path += QStringLiteral(".pdf");
    m_report->exportPdf(path);
}

} // namespace reports
