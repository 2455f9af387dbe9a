#include "HelpWindow.h"

#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

HelpWindow::HelpWindow(const QString& helpFile, QWidget* parent) : QMainWindow(parent) {
    setWindowTitle(QStringLiteral("Vorlane Help"));
    resize(960, 680);

    m_contents = new QListWidget;
    m_contents->setObjectName(QStringLiteral("contents"));
    m_contents->setAccessibleName(QStringLiteral("Contents"));
    m_contents->setMinimumWidth(180);
    m_contents->setSpacing(3);

    m_browser = new QTextBrowser;
    m_browser->setObjectName(QStringLiteral("page"));
    m_browser->setAccessibleName(QStringLiteral("Help page"));
    m_browser->setOpenExternalLinks(true);

    m_findText = new QLineEdit;
    m_findText->setPlaceholderText(QStringLiteral("Find in this page"));
    m_findText->setAccessibleName(QStringLiteral("Find"));
    m_findText->setClearButtonEnabled(true);
    auto* findLabel = new QLabel(QStringLiteral("&Find:"));
    findLabel->setBuddy(m_findText);
    auto* closeFind = new QToolButton;
    closeFind->setText(QStringLiteral("Close"));
    m_findBar = new QWidget;
    auto* findLayout = new QHBoxLayout(m_findBar);
    findLayout->setContentsMargins(4, 2, 4, 2);
    findLayout->addWidget(findLabel);
    findLayout->addWidget(m_findText, 1);
    findLayout->addWidget(closeFind);
    m_findBar->hide();

    auto* pageSide = new QWidget;
    auto* pageLayout = new QVBoxLayout(pageSide);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    pageLayout->setSpacing(0);
    pageLayout->addWidget(m_browser, 1);
    pageLayout->addWidget(m_findBar);

    auto* contentsTitle = new QLabel(QStringLiteral("&Contents"));
    contentsTitle->setBuddy(m_contents);
    contentsTitle->setStyleSheet(QStringLiteral("font-weight: bold; padding: 4px 2px;"));
    auto* contentsSide = new QWidget;
    auto* contentsLayout = new QVBoxLayout(contentsSide);
    contentsLayout->setContentsMargins(4, 0, 0, 0);
    contentsLayout->setSpacing(0);
    contentsLayout->addWidget(contentsTitle);
    contentsLayout->addWidget(m_contents, 1);

    auto* splitter = new QSplitter;
    splitter->addWidget(contentsSide);
    splitter->addWidget(pageSide);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({220, 740});
    setCentralWidget(splitter);

    auto* bar = addToolBar(QStringLiteral("Navigation"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* back = bar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), QStringLiteral("Back"));
    back->setShortcut(QKeySequence::Back);
    back->setToolTip(QStringLiteral("Back (Alt+Left)"));
    back->setEnabled(false);
    auto* forward = bar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), QStringLiteral("Forward"));
    forward->setShortcut(QKeySequence::Forward);
    forward->setToolTip(QStringLiteral("Forward (Alt+Right)"));
    forward->setEnabled(false);
    auto* home = bar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), QStringLiteral("Home"));
    home->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Home));
    home->setToolTip(QStringLiteral("Back to the start of the help (Alt+Home)"));
    bar->addSeparator();
    auto* find = bar->addAction(QStringLiteral("Find"));
    find->setShortcut(QKeySequence::Find);
    find->setToolTip(QStringLiteral("Find in this page (Ctrl+F, then Enter for the next)"));

    connect(back, &QAction::triggered, m_browser, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, m_browser, &QTextBrowser::forward);
    connect(home, &QAction::triggered, m_browser, &QTextBrowser::home);
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(find, &QAction::triggered, this, &HelpWindow::openFindBar);

    connect(m_contents, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { showSection(m_contents->row(item)); });
    connect(m_contents, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { showSection(m_contents->row(item)); });
    connect(m_browser->verticalScrollBar(), &QScrollBar::valueChanged, this, &HelpWindow::followScroll);
    connect(m_browser, &QTextBrowser::sourceChanged, this, [this](const QUrl& source) {
        // Moving to a section of the same page keeps the contents; another page rebuilds them.
        const QUrl page = source.adjusted(QUrl::RemoveFragment);
        if (page != m_page) {
            m_page = page;
            rebuildContents();
        }
    });

    connect(m_findText, &QLineEdit::returnPressed, this, [this] { findNext(false); });
    auto* findNextKey = new QShortcut(QKeySequence::FindNext, this);
    connect(findNextKey, &QShortcut::activated, this, [this] { findNext(false); });
    auto* findPreviousKey = new QShortcut(QKeySequence::FindPrevious, this);
    connect(findPreviousKey, &QShortcut::activated, this, [this] { findNext(true); });
    auto* closeFindKey = new QShortcut(QKeySequence(Qt::Key_Escape), m_findBar);
    closeFindKey->setContext(Qt::WidgetWithChildrenShortcut);
    auto hideFind = [this] {
        m_findBar->hide();
        m_browser->setFocus();
    };
    connect(closeFindKey, &QShortcut::activated, this, hideFind);
    connect(closeFind, &QToolButton::clicked, this, hideFind);

    load(helpFile);
    m_browser->setFocus();
}

void HelpWindow::load(const QString& helpFile) {
    const QString problem = unreadableHelpPage(helpFile);
    if (!problem.isEmpty()) {
        m_browser->setHtml(problem);
        rebuildContents();
        return;
    }
    m_browser->setSource(QUrl::fromLocalFile(QFileInfo(helpFile).absoluteFilePath()));
}

void HelpWindow::rebuildContents() {
    m_sections = helpSections(*m_browser->document());
    m_contents->clear();
    for (const HelpSection& section : m_sections)
        m_contents->addItem(section.title);
    m_contents->setEnabled(!m_sections.isEmpty());
    followScroll();
}

void HelpWindow::showSection(int row) {
    if (row < 0 || row >= m_sections.size())
        return;
    const HelpSection& section = m_sections.at(row);
    if (!section.anchor.isEmpty() && !m_browser->source().isEmpty()) {
        QUrl target = m_browser->source();
        target.setFragment(section.anchor);
        m_browser->setSource(target); // goes into the history, so Back returns
    } else {
        QTextCursor cursor(m_browser->document());
        cursor.setPosition(section.position);
        m_browser->setTextCursor(cursor);
        m_browser->verticalScrollBar()->setValue(static_cast<int>(
            m_browser->document()->documentLayout()->blockBoundingRect(cursor.block()).top()));
    }
    // A section near the end cannot scroll to the top of the page: keep the chosen one marked.
    QSignalBlocker quiet(m_contents);
    m_contents->setCurrentRow(row);
}

void HelpWindow::followScroll() {
    const int top = m_browser->cursorForPosition(QPoint(0, 0)).position();
    // The page's title above the first section counts as the first section.
    const int row = m_sections.isEmpty() ? -1 : std::max(0, sectionAt(m_sections, top));
    QSignalBlocker quiet(m_contents);
    m_contents->setCurrentRow(row);
}

void HelpWindow::openFindBar() {
    m_findBar->show();
    m_findText->setFocus();
    m_findText->selectAll();
}

bool HelpWindow::findNext(bool backwards) {
    const QString text = m_findText->text();
    if (text.isEmpty())
        return false;
    const QTextDocument::FindFlags flags =
        backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (m_browser->find(text, flags))
        return true;
    // Wrap round: start again from the other end of the page.
    const QTextCursor before = m_browser->textCursor();
    QTextCursor start(m_browser->document());
    start.movePosition(backwards ? QTextCursor::End : QTextCursor::Start);
    m_browser->setTextCursor(start);
    if (m_browser->find(text, flags))
        return true;
    m_browser->setTextCursor(before);
    return false;
}
