#include "HelpContents.h"
#include "HelpWindow.h"
#include "app/ToolbarNames.h"

#include <QFile>
#include <QListWidget>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QtTest>

class HelpViewerTest : public QObject {
    Q_OBJECT
  private slots:
    void sectionsComeFromSecondLevelHeadings() {
        QTextDocument document;
        document.setHtml(QStringLiteral("<h1>Title</h1><p>intro</p>"
                                        "<h2 id=\"login\">Logging   in</h2><p>a</p>"
                                        "<h3 id=\"rights\">Rights</h3>"
                                        "<h2><a name=\"main\"></a>The <b>main</b> window &amp; toolbar</h2>"
                                        "<h2 id=\"empty\"> </h2><p>c</p>"
                                        "<h2>No anchor</h2><p>b</p>"));
        const QList<HelpSection> sections = helpSections(document);
        QStringList found;
        for (const HelpSection& section : sections)
            found << section.title + QLatin1Char('|') + section.anchor;
        QCOMPARE(found, QStringList({"Logging in|login", "The main window & toolbar|main", "No anchor|"}));
        QVERIFY(sections[0].position < sections[1].position);
        QVERIFY(sections[1].position < sections[2].position);
        QCOMPARE(document.findBlock(sections[2].position).text(), QStringLiteral("No anchor"));
    }

    void sectionAtFindsTheEnclosingSection() {
        const QList<HelpSection> sections{{"A", "a", 10}, {"B", "b", 20}, {"C", "c", 30}};
        const QList<std::pair<int, int>> expected{{0, -1}, {9, -1}, {10, 0}, {19, 0}, {20, 1}, {1000, 2}};
        for (const auto& [position, index] : expected)
            QCOMPARE(sectionAt(sections, position), index);
        QCOMPARE(sectionAt({}, 5), -1);
    }

    void pathWithBlanksIsJoinedAgain() {
        QCOMPARE(helpFileFromArguments({"VorlaneHelp"}), QString());
        QCOMPARE(helpFileFromArguments({"VorlaneHelp", "/opt/Vorlane/Vorlane.html"}),
                 QStringLiteral("/opt/Vorlane/Vorlane.html"));
        // "<folder>/VorlaneHelp /home/ann/My Programs/Vorlane/Vorlane.html", split at the blank
        QCOMPARE(helpFileFromArguments({"VorlaneHelp", "/home/ann/My", "Programs/Vorlane/Vorlane.html"}),
                 QStringLiteral("/home/ann/My Programs/Vorlane/Vorlane.html"));
    }

    void unreadableFilesAreExplained() {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString good = dir.filePath(QStringLiteral("Vorlane.html"));
        QFile file(good);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<h2 id=\"x\">X</h2>");
        file.close();
        QVERIFY(unreadableHelpPage(good).isEmpty());

        QVERIFY(unreadableHelpPage(QString()).contains(QStringLiteral("No help file was named")));
        const QString missing = dir.filePath(QStringLiteral("a <b> & c.html"));
        const QString page = unreadableHelpPage(missing);
        QVERIFY(page.contains(QStringLiteral("not found")));
        QVERIFY(page.contains(missing.toHtmlEscaped())); // a path is shown as text, never as markup
        QVERIFY(unreadableHelpPage(dir.path()).contains(QStringLiteral("folder")));
        QVERIFY(file.setPermissions(QFileDevice::Permissions()));
        if (!QFile(good).open(QIODevice::ReadOnly)) // not when the tests run with full rights
            QVERIFY(unreadableHelpPage(good).contains(QStringLiteral("could not be read")));
    }

    // The file delivered beside the program: every screen section can be reached from the
    // contents, and every toolbar entry is explained.
    void deliveredHelpFileIsComplete() {
        QFile file(QStringLiteral(VORLANE_HELP_FILE));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(file.readAll());
        QTextDocument document;
        document.setHtml(html);
        const QList<HelpSection> sections = helpSections(document);
        QVERIFY(sections.size() >= 4);
        QSet<QString> anchors;
        for (const HelpSection& section : sections) {
            QVERIFY2(!section.anchor.isEmpty(), qPrintable(section.title + " has no id"));
            QVERIFY2(!anchors.contains(section.anchor), qPrintable(section.anchor + " is used twice"));
            anchors.insert(section.anchor);
        }
        for (const char* id : {"login", "mainwindow", "about"})
            QVERIFY2(anchors.contains(QLatin1String(id)), id);
        const QString text = document.toPlainText();
        for (const ToolbarEntry& entry : toolbarEntries) {
            const QString name = QString::fromUtf8(entry.shownName.data(), qsizetype(entry.shownName.size()));
            QVERIFY2(text.contains(name), qPrintable(name + " is not explained"));
        }
        // Links inside the page lead to ids that exist.
        static const QRegularExpression link(QStringLiteral("href=\"#([^\"]+)\""));
        static const QRegularExpression id(QStringLiteral("id=\"([^\"]+)\""));
        QSet<QString> ids;
        for (const auto& m : id.globalMatch(html))
            ids.insert(m.captured(1));
        for (const auto& m : link.globalMatch(html))
            QVERIFY2(ids.contains(m.captured(1)), qPrintable("#" + m.captured(1) + " leads nowhere"));
    }

    void windowWithoutFileShowsMessage() {
        HelpWindow window(QStringLiteral("/nonexistent/Vorlane.html"));
        QVERIFY(window.browser()->toPlainText().contains(QStringLiteral("/nonexistent/Vorlane.html")));
        QVERIFY(window.sections().isEmpty());
        QVERIFY(!window.contents()->isEnabled());
        window.showSection(0); // nothing to show: ignored
    }

    void contentsJumpToSectionsAndBackReturns() {
        HelpWindow window(QStringLiteral(VORLANE_HELP_FILE));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.contents()->count(), window.sections().size());
        const int last = window.contents()->count() - 1;
        QVERIFY(last > 0);
        window.showSection(last);
        QCOMPARE(window.browser()->source().fragment(), window.sections().at(last).anchor);
        QTRY_COMPARE(window.contents()->currentRow(), last);
        QVERIFY(window.browser()->isBackwardAvailable());
        window.browser()->backward();
        QVERIFY(window.browser()->source().fragment().isEmpty());
        QTRY_COMPARE(window.contents()->currentRow(), 0);
        QCOMPARE(window.contents()->count(), window.sections().size()); // contents built only once per file
        window.showSection(-1);                                         // ignored
        window.showSection(last + 1);
    }
};

QTEST_MAIN(HelpViewerTest)
#include "tst_helpviewer.moc"
