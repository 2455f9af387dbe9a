#include "frmAbout.h"

#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

namespace {

// The picture itself: a click anywhere on it, Escape or Enter closes it.
class AboutWindow : public QDialog {
  public:
    AboutWindow() : QDialog(nullptr, Qt::Dialog | Qt::FramelessWindowHint) {}

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton)
            frmAbout::instance().Form_Click();
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            frmAbout::instance().Form_Click();
        else
            QDialog::keyPressEvent(event);
    }
    void paintEvent(QPaintEvent*) override {
        static const QPixmap background(QStringLiteral(":/images/AboutBackground"));
        QPainter p(this);
        if (background.isNull())
            p.fillRect(rect(), QColor(0x22, 0x3a, 0x5e));
        else
            p.drawPixmap(rect(), background);
    }
};

// The "X" label: a click on it closes the picture.
class CloseLabel : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton)
            frmAbout::instance().lblClose_Click();
    }
};

} // namespace

frmAbout& frmAbout::instance() {
    static auto* form = new frmAbout;
    return *form;
}

QWidget* frmAbout::build() {
    auto* w = new AboutWindow;
    w->setObjectName(QStringLiteral("frmAbout"));
    w->setWindowTitle(QStringLiteral("About Vorlane"));
    w->setAccessibleName(QStringLiteral("About Vorlane"));
    w->setFixedSize(450, 225);
    auto* close = new CloseLabel(QStringLiteral("X"), w);
    close->setObjectName(QStringLiteral("lblClose"));
    close->setAccessibleName(QStringLiteral("Close"));
    close->setStyleSheet(QStringLiteral("color: white; font-weight: bold; font-size: 14pt;"));
    close->setAlignment(Qt::AlignCenter);
    close->setGeometry(450 - 30, 4, 24, 24);
    close->setCursor(Qt::PointingHandCursor);
    return w;
}

void frmAbout::Form_Click() {
    Unload();
}
void frmAbout::lblClose_Click() {
    Unload();
}
