#pragma once

#include "session/Form.h"

#include <QLabel>
#include <QPixmap>
#include <QPointer>
#include <functional>

class QLabel;
class QMdiArea;
class QPushButton;
class SoftCopyWork;
class QTimer;

// A toolbar entry: a picture that acts as a button. It reports the mouse moving over it and
// clicks; from the keyboard it takes the focus, lights up, and Enter or Space clicks it.
class ImageControl : public QLabel {
    Q_OBJECT
  public:
    explicit ImageControl(QWidget* parent = nullptr);
    // Presses the entry as a click does; assistive technology presses it through this.
    void press() { emit Click(); }
  signals:
    void MouseMove();
    void Click();

  protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

// The main window "Vorlane": the frame of all child screens, with the picture toolbar `PB`.
class MDI : public Form {
    Q_OBJECT
  public:
    static MDI& instance();

    // The pictures of the toolbar by key; a null picture for an unknown key.
    static QPixmap ImgList(const QString& key);
    static QStringList ImgListKeys();

    // Puts every entry's rest picture back.
    void ResetToolbar();
    // Gives every image control of the window the hand pointer.
    void SetToolbarCursor();
    // The mouse over an entry: all entries at rest, then this one lit.
    void entryMouseMove(const QString& entry);
    // A click on an entry.
    void entryClick(const QString& entry);

    // What a click on an entry opens; entries without an opener do nothing.
    static void setOpener(const QString& entry, std::function<void()> open);
    // What ends the program when the main window closes.
    static void setOnEnd(std::function<void()> action);

    QMdiArea* area() const;

    // The soft copies' texts read in the background of this seat, its progress in the status line
    // `lblSoftCopies` with the button `cmdPauseReading` that pauses and resumes it.
    void startSoftCopyReading();
    void pauseSoftCopyReading(bool pause);
    SoftCopyWork& softCopyWork();
    // F6 and Shift+F6: the focus goes from the toolbar to the screen in front, and back.
    void switchPane();

  protected:
    QWidget* build() override;
    void Form_Load() override;
    // A screen that an entry opened gives the keyboard back to that entry as it closes.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    MDI() : Form(false) {}
    void open(const QString& entry);
    void focusEntry(const QString& entry);
    void ImgAbout_Click();
    void ImgHelp_Click();
    QPixmap pictureOf(const QString& entry, bool hover, bool* ok) const;
    void showReading(qint64 done, qint64 total);
    QPointer<ImageControl> m_lastEntry;
    SoftCopyWork* m_reading = nullptr;
    QTimer* m_readingShown = nullptr; // the next showing of the count
    bool m_paused = false;
    qint64 m_done = 0;
    qint64 m_total = 0;
};
