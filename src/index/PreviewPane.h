#pragma once

#include "index/SoftCopyPreview.h"
#include "platform/Controls.h"
#include "platform/Ui.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollArea>

// The preview of a soft copy beside a screen's list or fields: a page of a PDF or a picture, or
// the text of an office or text file, with the pages turned and the page zoomed by buttons. It
// is announced as the preview of the selected document; the page's text, where the soft copy
// has one, is the picture's description for screen readers. A file that cannot be shown says
// why in the pane.
class PreviewPane : public QFrame {
    Q_OBJECT
  public:
    explicit PreviewPane(QWidget* parent = nullptr);

    // Shows the first page of the soft copy at `path`; an empty path says that there is none.
    void showFile(const QString& path);
    // Shows no soft copy, and `state` in its place.
    void showNothing(const QString& state);
    // Lets `box` show and hide the pane. The choice is kept for each user of the program;
    // `screen` tells the screens apart. The pane shows until a user hides it.
    void bindToggle(QCheckBox* box, const QString& screen);
    // The controls that take the focus, in their order.
    QList<QWidget*> tabChain() const;

    SoftCopyPreview& preview() { return *m_preview; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ask();
    void showPage(const PreviewPage& page);
    void fitPicture();
    void turn(int by);
    void zoom(int by);
    int wantedWidth() const;
    void setButtons();

    struct Controls {
        UI_CONTROL(QLabel, lblPreviewState);
        UI_CONTROL(QScrollArea, scrPreview);
        UI_CONTROL(QLabel, picPreview);
        UI_CONTROL(QPlainTextEdit, txtPreviewText);
        UI_CONTROL(platform::CommandButton, cmdPrevPage);
        UI_CONTROL(platform::CommandButton, cmdNextPage);
        UI_CONTROL(platform::CommandButton, cmdZoomOut);
        UI_CONTROL(platform::CommandButton, cmdZoomIn);
    };
    Controls ui;
    SoftCopyPreview* m_preview;
    QString m_path;
    int m_page = 1;
    int m_pages = 0;
    int m_zoom; // an index into the zoom levels
    int m_askedWidth = 0;
    bool m_wanted = true; // the user has not hidden the pane
    QImage m_image;
    qreal m_textPoints;
};
