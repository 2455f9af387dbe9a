#include "index/PreviewPane.h"

#include "session/Session.h"

#include <QGridLayout>
#include <QResizeEvent>
#include <QScrollBar>
#include <QVBoxLayout>
#include <iterator>

namespace {

const QString PaneName = QStringLiteral("Preview of the selected document");
constexpr int ZoomLevels[] = {50, 75, 100, 150, 200, 300};
constexpr int FitWidth = 2; // 100%: the page as wide as the pane
constexpr int WidthStep = 100;
constexpr int MostPixels = 4000;

} // namespace

PreviewPane::PreviewPane(QWidget* parent)
    : QFrame(parent), m_preview(new SoftCopyPreview(this)), m_zoom(FitWidth) {
    setAccessibleName(PaneName);
    setFrameShape(QFrame::StyledPanel);
    setMinimumWidth(240);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(6);

    auto* state = ui.lblPreviewState.make(this);
    state->setWordWrap(true);
    column->addWidget(state);

    auto* scroll = ui.scrPreview.make(this);
    scroll->setAccessibleName(PaneName);
    scroll->setFocusPolicy(Qt::StrongFocus); // the arrow keys move about a zoomed page
    scroll->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    // The page fits the width beside the bar, which stays, so that no bar comes across it.
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scroll->setBackgroundRole(QPalette::Dark);
    auto* picture = ui.picPreview.make(scroll);
    picture->setAlignment(Qt::AlignCenter);
    scroll->setWidget(picture);
    scroll->setWidgetResizable(false);
    column->addWidget(scroll, 1);

    auto* text = ui.txtPreviewText.make(this);
    text->setReadOnly(true);
    text->setAccessibleName(PaneName);
    text->setTabChangesFocus(true);
    text->hide();
    m_textPoints = text->font().pointSizeF();
    column->addWidget(text, 1);

    // Two buttons a row, so that the pane may stay narrow beside a screen's fields.
    auto* buttons = new QGridLayout;
    buttons->setSpacing(4);
    int at = 0;
    const std::tuple<ui::Control<platform::CommandButton>*, const char*, int, int> made[] = {
        {&ui.cmdPrevPage, "Previous Page", -1, 0},
        {&ui.cmdNextPage, "Next Page", 1, 0},
        {&ui.cmdZoomOut, "Zoom Out", 0, -1},
        {&ui.cmdZoomIn, "Zoom In", 0, 1}};
    for (const auto& [control, caption, page, zoomBy] : made) {
        auto* button = control->make(this);
        button->setText(QString::fromLatin1(caption));
        buttons->addWidget(button, at / 2, at % 2);
        ++at;
        connect(button, &QPushButton::clicked, this, [this, pages = page, steps = zoomBy] {
            if (pages)
                turn(pages);
            else
                zoom(steps);
        });
    }
    column->addLayout(buttons);
    connect(m_preview, &SoftCopyPreview::shown, this, &PreviewPane::showPage);
    showNothing(QStringLiteral("No document is selected."));
}

QList<QWidget*> PreviewPane::tabChain() const {
    return {ui.cmdPrevPage, ui.cmdNextPage, ui.cmdZoomOut, ui.cmdZoomIn, ui.scrPreview, ui.txtPreviewText};
}

void PreviewPane::bindToggle(QCheckBox* box, const QString& screen) {
    const QString key = QStringLiteral("Preview%1User%2").arg(screen).arg(Session::CurrentUserID);
    box->setText(QStringLiteral("Show Preview"));
    box->setChecked(Session::setting(key, QStringLiteral("1")) != QLatin1String("0"));
    m_wanted = box->isChecked();
    setVisible(m_wanted);
    connect(box, &QCheckBox::toggled, this, [this, key](bool shown) {
        Session::saveSetting(key, shown ? QStringLiteral("1") : QStringLiteral("0"));
        m_wanted = shown;
        setVisible(shown);
        // A hidden pane asks for nothing; shown again, it catches up with the selection.
        if (shown)
            ask();
        else
            m_preview->cancel();
    });
}

void PreviewPane::showFile(const QString& path) {
    m_path = path.trimmed();
    m_page = 1;
    m_pages = 0;
    if (m_path.isEmpty()) {
        showNothing(QStringLiteral("No soft copy is recorded for this document."));
        return;
    }
    m_image = QImage();
    ui.picPreview->clear();
    ui.picPreview->setAccessibleName(QString());
    ui.picPreview->setAccessibleDescription(QString());
    ui.txtPreviewText->clear();
    ui.lblPreviewState->setText(QStringLiteral("Loading..."));
    ask();
}

void PreviewPane::showNothing(const QString& state) {
    m_preview->cancel();
    m_path.clear();
    m_pages = 0;
    m_image = QImage();
    ui.picPreview->clear();
    ui.picPreview->resize(0, 0);
    ui.picPreview->setAccessibleDescription(QString());
    ui.txtPreviewText->clear();
    ui.txtPreviewText->hide();
    ui.scrPreview->show();
    ui.lblPreviewState->setText(state);
    setButtons();
}

// The width to ask for: the pane's, zoomed, in device pixels, rounded up so that small changes
// of the pane's width find the page in the cache.
int PreviewPane::wantedWidth() const {
    const qreal pixels =
        ui.scrPreview->viewport()->width() * ZoomLevels[m_zoom] / 100.0 * devicePixelRatioF();
    return qMin(MostPixels, (int(pixels) + WidthStep - 1) / WidthStep * WidthStep);
}

void PreviewPane::ask() {
    if (m_path.isEmpty() || !m_wanted)
        return;
    m_askedWidth = wantedWidth();
    m_preview->request(m_path, m_page, m_askedWidth);
}

void PreviewPane::showPage(const PreviewPage& page) {
    if (page.path != m_path)
        return;
    if (!page.failure.isEmpty()) {
        const QString path = m_path;
        showNothing(page.failure);
        m_path = path; // the pane still shows this document; a zoom or a page asks again
        return;
    }
    m_page = page.page;
    m_pages = page.pages;
    m_image = page.image;
    const bool picture = !m_image.isNull();
    ui.scrPreview->setVisible(picture);
    ui.txtPreviewText->setVisible(!picture);
    if (picture) {
        const QString where = QStringLiteral("Page %1 of %2").arg(m_page).arg(m_pages);
        ui.lblPreviewState->setText(where);
        ui.picPreview->setAccessibleName(where);
        ui.picPreview->setAccessibleDescription(page.text.trimmed());
        ui.txtPreviewText->clear();
        fitPicture();
    } else {
        ui.lblPreviewState->setText(QStringLiteral("The text of the soft copy"));
        ui.picPreview->clear();
        ui.txtPreviewText->setPlainText(page.text);
        QFont font = ui.txtPreviewText->font();
        font.setPointSizeF(m_textPoints * ZoomLevels[m_zoom] / 100.0);
        ui.txtPreviewText->setFont(font);
    }
    setButtons();
}

// The picture at the width of the pane, zoomed; sharp on screens of more than one device pixel
// per pixel.
void PreviewPane::fitPicture() {
    if (m_image.isNull())
        return;
    const qreal ratio = devicePixelRatioF();
    const int width = int(ui.scrPreview->viewport()->width() * ZoomLevels[m_zoom] / 100.0 * ratio);
    QPixmap pixmap = QPixmap::fromImage(width > 0 && width != m_image.width()
                                            ? m_image.scaledToWidth(width, Qt::SmoothTransformation)
                                            : m_image);
    pixmap.setDevicePixelRatio(ratio);
    ui.picPreview->setPixmap(pixmap);
    ui.picPreview->resize(pixmap.deviceIndependentSize().toSize());
}

void PreviewPane::turn(int by) {
    const int page = qBound(1, m_page + by, qMax(1, m_pages));
    if (page == m_page)
        return;
    m_page = page;
    ui.lblPreviewState->setText(QStringLiteral("Loading..."));
    ask();
}

void PreviewPane::zoom(int by) {
    m_zoom = qBound(0, m_zoom + by, int(std::size(ZoomLevels)) - 1);
    if (m_image.isNull() && m_pages > 0) {
        QFont font = ui.txtPreviewText->font();
        font.setPointSizeF(m_textPoints * ZoomLevels[m_zoom] / 100.0);
        ui.txtPreviewText->setFont(font);
    } else {
        fitPicture();
        if (wantedWidth() > m_askedWidth)
            ask();
    }
    setButtons();
}

void PreviewPane::setButtons() {
    const bool shown = m_pages > 0;
    ui.cmdPrevPage->setEnabled(shown && m_page > 1);
    ui.cmdNextPage->setEnabled(shown && m_page < m_pages);
    ui.cmdZoomOut->setEnabled(shown && m_zoom > 0);
    ui.cmdZoomIn->setEnabled(shown && m_zoom < int(std::size(ZoomLevels)) - 1);
}

// A wider pane shows the page wider, and asks for a sharper picture of it.
void PreviewPane::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    if (m_image.isNull())
        return;
    fitPicture();
    if (wantedWidth() > m_askedWidth)
        ask();
}
