#include "MDI.h"

#include "ToolbarNames.h"
#include "datastore/Foreground.h"
#include "frmAbout.h"
#include "index/SoftCopyWork.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "platform/Shell.h"
#include "session/Session.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QHash>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QStatusBar>
#include <QSysInfo>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

namespace {

QHash<QString, std::function<void()>>& openers() {
    static QHash<QString, std::function<void()>> table;
    return table;
}

std::function<void()> g_onEnd = [] { QCoreApplication::exit(0); };

// The property of a screen's frame that names the toolbar entry that opened it.
const char* const OpenedBy = "vorlaneOpenedBy";

QString str(std::string_view s) {
    return QString::fromLatin1(s.data(), static_cast<qsizetype>(s.size()));
}

const ToolbarEntry* findEntry(const QString& name) {
    for (const auto& e : toolbarEntries)
        if (str(e.objectName) == name)
            return &e;
    return nullptr;
}

// The main window closes: the program ends at once, whatever is open.
class MainWindow : public QMainWindow {
  protected:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        if (g_onEnd)
            g_onEnd();
    }
};

// The toolbar strip: its own background picture; the mouse moving over its bare part puts
// every entry back to rest.
class ToolbarStrip : public QWidget {
  public:
    explicit ToolbarStrip(QWidget* parent) : QWidget(parent) { setMouseTracking(true); }

  protected:
    void mouseMoveEvent(QMouseEvent*) override { MDI::instance().ResetToolbar(); }
    void paintEvent(QPaintEvent*) override {
        static const QPixmap background(QStringLiteral(":/images/PBBackground"));
        QPainter p(this);
        if (background.isNull())
            p.fillRect(rect(), QColor(0x22, 0x3a, 0x5e));
        else
            p.drawPixmap(QRect(0, 0, width(), qMax(height(), background.height())), background);
    }
};

// The frame's area behind the child screens.
class Frame : public QMdiArea {
  public:
    explicit Frame(QWidget* parent) : QMdiArea(parent) {
        viewport()->setMouseTracking(true);
        static const QPixmap background(QStringLiteral(":/images/MDIBackground"));
        if (!background.isNull())
            setBackground(QBrush(background));
    }

  protected:
    bool viewportEvent(QEvent* event) override {
        if (event->type() == QEvent::MouseMove)
            MDI::instance().ResetToolbar();
        return QMdiArea::viewportEvent(event);
    }
    void resizeEvent(QResizeEvent* event) override {
        QMdiArea::resizeEvent(event);
        static const QPixmap background(QStringLiteral(":/images/MDIBackground"));
        if (!background.isNull())
            setBackground(QBrush(
                background.scaled(viewport()->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    }
};

// A toolbar entry as assistive technology sees it: a button named by the name shown in its
// picture, which its Press action clicks.
class ImageControlAccessible : public QAccessibleWidget {
  public:
    explicit ImageControlAccessible(QWidget* w) : QAccessibleWidget(w, QAccessible::Button) {}
    QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& action) override {
        if (action == pressAction())
            static_cast<ImageControl*>(widget())->press();
        else
            QAccessibleWidget::doAction(action);
    }
};

QAccessibleInterface* imageControlAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String("ImageControl") && object && object->isWidgetType())
        return new ImageControlAccessible(static_cast<QWidget*>(object));
    return nullptr;
}

} // namespace

// ---- ImageControl

ImageControl::ImageControl(QWidget* parent) : QLabel(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(192, 29);
    setScaledContents(true);
}

void ImageControl::mouseMoveEvent(QMouseEvent*) {
    emit MouseMove();
}

void ImageControl::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit Click();
}

void ImageControl::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        emit Click();
        return;
    default:
        QLabel::keyPressEvent(event);
    }
}

void ImageControl::focusInEvent(QFocusEvent* event) {
    QLabel::focusInEvent(event);
    // A keyboard user sees the entry reached by Tab or F6 lit, as under the mouse; the focus
    // that the window gives its first entry on opening lights nothing.
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
        event->reason() == Qt::ShortcutFocusReason)
        emit MouseMove();
}

void ImageControl::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    // The entry that has the keyboard is framed whatever the style draws (some styles draw
    // their focus frame only after a key has moved the focus, not after the login).
    if (hasFocus()) {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(0xf4, 0xb7, 0x40), 2));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 4, 4);
    }
}

// ---- MDI

static void initImages() {
    Q_INIT_RESOURCE(images);
}

MDI& MDI::instance() {
    static auto* form = [] {
        initImages(); // the pictures live in this library's resources
        QAccessible::installFactory(imageControlAccessible);
        return new MDI;
    }();
    return *form;
}

QStringList MDI::ImgListKeys() {
    return {QStringLiteral("About1"),       QStringLiteral("About2"),       QStringLiteral("Backup1"),
            QStringLiteral("Backup2"),      QStringLiteral("DocCat1"),      QStringLiteral("DocCat2"),
            QStringLiteral("DocChildCat1"), QStringLiteral("DocChildCat2"), QStringLiteral("DocSubCat1"),
            QStringLiteral("DocSubCat2"),   QStringLiteral("DocType1"),     QStringLiteral("DocType2"),
            QStringLiteral("File1"),        QStringLiteral("File2"),        QStringLiteral("ImpContacts1"),
            QStringLiteral("ImpContacts2"), QStringLiteral("IndexDoc1"),    QStringLiteral("IndexDoc2"),
            QStringLiteral("InternetRef1"), QStringLiteral("InternetRef2"), QStringLiteral("Login1"),
            QStringLiteral("Login2"),       QStringLiteral("Personal1"),    QStringLiteral("Personal2"),
            QStringLiteral("SearchDoc1"),   QStringLiteral("SearchDoc2"),   QStringLiteral("Settings1"),
            QStringLiteral("Settings2"),    QStringLiteral("Hand"),         QStringLiteral("Help1"),
            QStringLiteral("Help2")};
}

QPixmap MDI::ImgList(const QString& key) {
    static QHash<QString, QPixmap> pictures;
    if (pictures.isEmpty())
        for (const auto& k : ImgListKeys())
            pictures.insert(k, QPixmap(QStringLiteral(":/images/") + k));
    return pictures.value(key);
}

void MDI::setOpener(const QString& entry, std::function<void()> open) {
    openers()[entry] = std::move(open);
}
void MDI::setOnEnd(std::function<void()> action) {
    g_onEnd = std::move(action);
}

QMdiArea* MDI::area() const {
    return window() ? window()->findChild<QMdiArea*>() : nullptr;
}

QWidget* MDI::build() {
    auto* w = new MainWindow;
    w->setObjectName(QStringLiteral("MDI"));
    w->setWindowIcon(QIcon(QStringLiteral(":/images/AppIcon")));
    w->resize(1024, 720);

    auto* central = new QWidget(w);
    auto* row = new QHBoxLayout(central);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);

    auto* strip = new ToolbarStrip(central);
    strip->setObjectName(QStringLiteral("PB"));
    strip->setFixedWidth(192);
    strip->setAccessibleName(QStringLiteral("Toolbar"));
    auto* column = new QVBoxLayout(strip);
    column->setContentsMargins(0, 8, 0, 8);
    column->setSpacing(2);
    QWidget* previous = nullptr;
    for (const auto& e : toolbarEntries) {
        auto* img = new ImageControl(strip);
        const QString name = str(e.objectName);
        img->setObjectName(name);
        img->setAccessibleName(str(e.shownName));
        img->setToolTip(str(e.shownName));
        column->addWidget(img);
        connect(img, &ImageControl::MouseMove, this, [this, name] { entryMouseMove(name); });
        connect(img, &ImageControl::Click, this, [this, img, name] {
            m_lastEntry = img;
            entryClick(name);
        });
        if (previous)
            QWidget::setTabOrder(previous, img);
        previous = img;
        for (const auto& [line, after] : toolbarSeparators) {
            if (after != e.objectName)
                continue;
            auto* sep = new QFrame(strip);
            sep->setObjectName(str(line));
            sep->setFrameShape(QFrame::HLine);
            sep->setFixedHeight(2);
            sep->setStyleSheet(QStringLiteral("background-color: white; border: none;"));
            column->addSpacing(4);
            column->addWidget(sep);
            column->addSpacing(4);
        }
    }
    column->addStretch(1);

    auto* frame = new Frame(central);
    frame->setObjectName(QStringLiteral("MDIArea"));
    frame->setAccessibleName(QStringLiteral("Screens"));
    row->addWidget(strip);
    row->addWidget(frame, 1);
    w->setCentralWidget(central);

    auto* help = w->menuBar()->addMenu(QStringLiteral("&Help"));
    help->setObjectName(QStringLiteral("mnuHelp"));
    help->setTitle(QStringLiteral("Help"));
    auto* contents = help->addAction(QStringLiteral("Contents"));
    contents->setObjectName(QStringLiteral("mnuHelpContents"));

    // Ctrl+F4 closes the screen in front, as its Close button does, the key of windows inside
    // a main window. (Where the frame's own menu also claims the key, it counts once.)
    auto* closeScreen = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F4), w);
    const auto closeFront = [frame] {
        if (QMdiSubWindow* screen = frame->activeSubWindow())
            screen->close();
    };
    connect(closeScreen, &QShortcut::activated, this, closeFront);
    connect(closeScreen, &QShortcut::activatedAmbiguously, this, closeFront);
    for (const QKeySequence& key : {QKeySequence(Qt::Key_F6), QKeySequence(Qt::SHIFT | Qt::Key_F6)}) {
        auto* pane = new QShortcut(key, w);
        connect(pane, &QShortcut::activated, this, [this] { switchPane(); });
    }

    // The background reading's status line, shown while it has work.
    auto* status = w->statusBar();
    status->setObjectName(QStringLiteral("StatusBar"));
    auto* reading = new QLabel(status);
    reading->setObjectName(QStringLiteral("lblSoftCopies"));
    auto* pause = new QPushButton(QStringLiteral("Pause"), status);
    pause->setObjectName(QStringLiteral("cmdPauseReading"));
    pause->setAccessibleName(QStringLiteral("Pause reading soft copies"));
    status->addWidget(reading);
    status->addWidget(pause);
    connect(pause, &QPushButton::clicked, this, [this] { pauseSoftCopyReading(!m_paused); });
    status->hide();

    Form::setMdiArea(frame);
    return w;
}

SoftCopyWork& MDI::softCopyWork() {
    if (!m_reading) {
        m_reading =
            new SoftCopyWork(QStringLiteral("%1:%2").arg(QSysInfo::machineHostName(),
                                                         QString::number(QCoreApplication::applicationPid())),
                             this);
        // The count of documents read changes at each one: the line shows it twice a second at
        // most, and only while the screens are quiet, so that the window never redraws it beside
        // the clerk's work.
        m_readingShown = new QTimer(this);
        m_readingShown->setSingleShot(true);
        m_readingShown->setInterval(500);
        connect(m_readingShown, &QTimer::timeout, this, [this] {
            if (db::foreground::inUse())
                m_readingShown->start();
            else
                showReading(m_done, m_total);
        });
        connect(m_reading, &SoftCopyWork::progress, this, [this](qint64 done, qint64 total) {
            const bool shown = m_total > 0;
            m_done = done;
            m_total = total;
            if (!shown)
                showReading(done, total);
            else if (!m_readingShown->isActive())
                m_readingShown->start();
        });
        connect(m_reading, &SoftCopyWork::idle, this, [this] { showReading(0, 0); });
        // The worker thread ends before the application object goes, however the program ends.
        qAddPostRoutine([] { delete std::exchange(MDI::instance().m_reading, nullptr); });
    }
    return *m_reading;
}

void MDI::startSoftCopyReading() {
    m_paused = false;
    softCopyWork().start();
}

void MDI::pauseSoftCopyReading(bool pause) {
    if (!m_reading)
        return;
    m_paused = pause;
    if (pause)
        m_reading->stop();
    else
        m_reading->start();
    showReading(m_done, m_total);
}

void MDI::showReading(qint64 done, qint64 total) {
    m_done = done;
    m_total = total;
    auto* status = window() ? static_cast<QMainWindow*>(window())->statusBar() : nullptr;
    if (!status)
        return;
    const QLocale locale;
    control<QLabel>(QStringLiteral("lblSoftCopies"))
        ->setText((m_paused ? QStringLiteral("Reading soft copies paused: %1 of %2")
                            : QStringLiteral("Reading soft copies: %1 of %2"))
                      .arg(locale.toString(done), locale.toString(total)));
    auto* pause = control<QPushButton>(QStringLiteral("cmdPauseReading"));
    pause->setText(m_paused ? QStringLiteral("Resume") : QStringLiteral("Pause"));
    pause->setAccessibleName(m_paused ? QStringLiteral("Resume reading soft copies")
                                      : QStringLiteral("Pause reading soft copies"));
    status->setVisible(m_paused || total > 0);
}

void MDI::switchPane() {
    QWidget* strip = control<QWidget>(QStringLiteral("PB"));
    QWidget* focus = QApplication::focusWidget();
    const bool inToolbar = focus && strip && strip->isAncestorOf(focus);
    if (inToolbar) {
        if (auto* entry = qobject_cast<ImageControl*>(focus))
            m_lastEntry = entry;
        QMdiSubWindow* screen = area()->activeSubWindow();
        if (!screen && !area()->subWindowList().isEmpty())
            screen = area()->subWindowList().last();
        if (!screen)
            return;
        area()->setActiveSubWindow(screen);
        QWidget* inner = screen->widget();
        QWidget* target = inner->focusWidget();
        if (!target) {
            // The first control that Tab would reach.
            for (QWidget* w = inner->nextInFocusChain(); w && w != inner; w = w->nextInFocusChain())
                if (inner->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus) && w->isVisibleTo(inner) &&
                    w->isEnabled()) {
                    target = w;
                    break;
                }
        }
        if (target)
            target->setFocus(Qt::ShortcutFocusReason);
        return;
    }
    // Back to the entry last used, or the first one.
    ImageControl* entry = m_lastEntry;
    if (!entry)
        entry = control<ImageControl>(str(toolbarEntries.front().objectName));
    if (entry)
        entry->setFocus(Qt::ShortcutFocusReason);
}

void MDI::Form_Load() {
    window()->setWindowTitle(QStringLiteral("Vorlane"));
    ResetToolbar();
    SetToolbarCursor();
}

QPixmap MDI::pictureOf(const QString& entry, bool hover, bool* ok) const {
    *ok = true;
    const ToolbarEntry* e = findEntry(entry);
    const QString key = str(hover ? e->hoverKey : e->restKey);
    if (e->replaceableByFile) {
        // A picture in the Images folder wins; it is looked for again on every pass, so that
        // a file put in place while the program runs takes effect.
        const QString file = key + QStringLiteral(".bmp");
        const QString path = platform::joinPath(platform::appPath(), QStringLiteral("Images/") + file);
        if (platform::Dir(path) == file) {
            QPixmap picture(path);
            *ok = !picture.isNull();
            return picture;
        }
    }
    return ImgList(key);
}

void MDI::ResetToolbar() {
    if (!window())
        return;
    for (const auto& e : toolbarEntries) {
        auto* img = control<ImageControl>(str(e.objectName));
        bool ok = false;
        const QPixmap picture = pictureOf(str(e.objectName), false, &ok);
        if (img && ok) // a file that does not load leaves the earlier picture
            img->setPixmap(picture);
    }
}

void MDI::SetToolbarCursor() {
    const QPixmap hand = ImgList(QStringLiteral("Hand"));
    const QCursor cursor = hand.isNull() ? QCursor(Qt::PointingHandCursor) : QCursor(hand, 12, 3);
    for (auto* img : window()->findChildren<ImageControl*>())
        img->setCursor(cursor);
}

void MDI::entryMouseMove(const QString& entry) {
    ResetToolbar();
    auto* img = control<ImageControl>(entry);
    bool ok = false;
    const QPixmap picture = pictureOf(entry, true, &ok);
    if (img && ok)
        img->setPixmap(picture);
}

void MDI::entryClick(const QString& entry) {
    if (entry == QLatin1String("ImgAbout")) {
        ImgAbout_Click();
        return;
    }
    if (entry == QLatin1String("ImgHelp")) {
        ImgHelp_Click();
        return;
    }
    if (Session::UserRights == QLatin1String("User")) {
        if (entry == QLatin1String("ImgDataBackup")) {
            platform::MsgBox(QStringLiteral("You donot have rights to take Backup."),
                             platform::vbExclamation);
            return;
        }
        if (entry == QLatin1String("ImgSettings")) {
            platform::MsgBox(QStringLiteral("You donot have rights to change Settings."),
                             platform::vbExclamation);
            return;
        }
    }
    open(entry);
}

void MDI::open(const QString& entry) {
    const auto opener = openers().value(entry);
    if (!opener)
        return;
    QMdiArea* frame = area();
    const QList<QMdiSubWindow*> before = frame ? frame->subWindowList() : QList<QMdiSubWindow*>();
    opener();
    if (!frame)
        return;
    // A screen that this entry opened gives the keyboard back to the entry when it closes.
    for (QMdiSubWindow* screen : frame->subWindowList()) {
        if (before.contains(screen))
            continue;
        screen->setProperty(OpenedBy, entry);
        screen->installEventFilter(this);
        // As it goes, the frame may hand the keyboard to another screen: take it back then.
        connect(screen, &QObject::destroyed, this, [this, entry] {
            QMetaObject::invokeMethod(
                this,
                [this, entry] {
                    QWidget* focus = QApplication::focusWidget();
                    if (!focus || (area() && area()->isAncestorOf(focus)))
                        focusEntry(entry);
                },
                Qt::QueuedConnection);
        });
    }
}

bool MDI::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !event->spontaneous()) {
        const QVariant entry = watched->property(OpenedBy);
        if (entry.isValid())
            focusEntry(entry.toString());
    }
    return Form::eventFilter(watched, event);
}

void MDI::focusEntry(const QString& entry) {
    auto* img = control<ImageControl>(entry);
    if (!img || !window()->isVisible())
        return;
    m_lastEntry = img;
    img->setFocus(Qt::OtherFocusReason);
}

void MDI::ImgAbout_Click() {
    try {
        frmAbout::instance().ShowModal(window());
    } catch (...) {
        // the about picture is not worth an error
    }
}

void MDI::ImgHelp_Click() {
    // The viewer is found by its bare name beside the program. The file's path is not
    // quoted: a folder with a blank in it breaks the viewer's argument.
    const QString commandLine = QStringLiteral("VorlaneHelp ") +
                                platform::joinPath(platform::appPath(), QStringLiteral("Vorlane.html"));
    try {
        platform::Shell(commandLine, platform::vbNormalFocus);
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbExclamation);
    }
}
