#pragma once

#include "HelpContents.h"

#include <QMainWindow>
#include <QUrl>

class QLineEdit;
class QListWidget;
class QTextBrowser;
class QWidget;

// The help window: the contents of the help file at the left, the page at the right, a
// toolbar with Back, Forward and Home, and a find bar under the page (Ctrl+F).
class HelpWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit HelpWindow(const QString& helpFile, QWidget* parent = nullptr);

    QTextBrowser* browser() const { return m_browser; }
    QListWidget* contents() const { return m_contents; }
    const QList<HelpSection>& sections() const { return m_sections; }

    // Shows the section at `row` of the contents list.
    void showSection(int row);
    // Looks for the find bar's text from the cursor on; wraps round once.
    bool findNext(bool backwards = false);

  private:
    void load(const QString& helpFile);
    void rebuildContents();
    void followScroll();
    void openFindBar();

    QTextBrowser* m_browser = nullptr;
    QListWidget* m_contents = nullptr;
    QWidget* m_findBar = nullptr;
    QLineEdit* m_findText = nullptr;
    QList<HelpSection> m_sections;
    QUrl m_page; // the page the contents were built from
};
