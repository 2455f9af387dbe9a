// The preview of soft copies: pages of a PDF, a picture and an office file through the helper,
// the pane's word for each bad input, the cache, and the two screens that show it: only the last
// of a run of selections is shown, the pane's place is kept per user, and Index Document shows
// what Browse chose or what was loaded.
#include "index/PreviewPane.h"
#include "index/frmIndexDocument.h"
#include "index/frmSearchDocument.h"
#include "session/Session.h"
#include "support/ScreenDriver.h"
#include "support/SoftCopySamples.h"
#include "support/TestSupport.h"

#include <QPainter>
#include <QPdfWriter>
#include <QSignalSpy>
#include <QtTest>
#include <sys/stat.h>
#include <unistd.h>

using testsupport::writeFile;

class TestPreview : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmSearchDocument> search;
    testsupport::Screen<frmIndexDocument> index;

    QString path(const QString& name) const { return m_dir.filePath(name); }

    static PreviewPane* prepared(PreviewPane* pane, const QString& helper = QStringLiteral(VORLANE_READER)) {
        pane->preview().setHelper(helper);
        pane->preview().setTimeLimit(60);
        pane->preview().setCacheFolder(QString());
        return pane;
    }
    // Shows `file` in the pane and waits for the outcome; the state line.
    static QString shownIn(PreviewPane* pane, const QString& file) {
        QSignalSpy shown(&pane->preview(), &SoftCopyPreview::shown);
        pane->showFile(file);
        if (!shown.wait(70'000))
            return QStringLiteral("nothing shown");
        return pane->findChild<QLabel*>(QStringLiteral("lblPreviewState"))->text();
    }
    static bool enabled(const PreviewPane* pane, const char* button) {
        return pane->findChild<QWidget*>(QString::fromLatin1(button))->isEnabled();
    }

  private slots:
    void initTestCase() {
        QPdfWriter writer(path(QStringLiteral("two.pdf")));
        QPainter painter(&writer);
        painter.setFont(QFont(QStringLiteral("DejaVu Sans"), 30));
        painter.drawText(QPointF(300, 900), QStringLiteral("Tenancy agreement"));
        writer.newPage();
        painter.drawText(QPointF(300, 900), QStringLiteral("Signatures"));
        painter.end();
        QVERIFY(testsupport::wordsPicture(QStringLiteral("HARBOUR")).save(path(QStringLiteral("scan.png"))));
        QVERIFY(QImage(1100, 1000, QImage::Format_Mono).save(path(QStringLiteral("large.png"))));
        testsupport::writeZip(path(QStringLiteral("minutes.docx")), QStringLiteral("word/document.xml"),
                              testsupport::docxBody("Minutes of the board"));
        testsupport::writeBadPdfs(path(QStringLiteral("damaged.pdf")), path(QStringLiteral("locked.pdf")),
                                  path(QStringLiteral("two.pdf")));
        QVERIFY(QFile::copy(path(QStringLiteral("two.pdf")), path(QStringLiteral("secret.pdf"))));
        QFile::setPermissions(path(QStringLiteral("secret.pdf")), QFileDevice::WriteOwner);
        QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("folder.pdf")));
        QCOMPARE(mkfifo(path(QStringLiteral("hang.txt")).toLocal8Bit().constData(), 0600), 0);
        writeFile(path(QStringLiteral("crash.sh")), "#!/bin/sh\nkill -SEGV $$\n");
        // A reader slow to start, so that a selection's work is still under way at the next one.
        writeFile(path(QStringLiteral("slow.sh")), "#!/bin/sh\nsleep 0.4\nexec " VORLANE_READER " \"$@\"\n");
        for (const char* script : {"crash.sh", "slow.sh"})
            QFile::setPermissions(path(QString::fromLatin1(script)), QFile::ReadOwner | QFile::ExeOwner);
    }

    void init() {
        env = testsupport::startCase();
        testsupport::setSession(3, QStringLiteral("Modify"));
    }
    void cleanup() { testsupport::endCase(env); }

    // A PDF's pages one after the other, with each page's text for screen readers; a picture; the
    // text of an office file, zoomed.
    void showsEachKind() {
        PreviewPane pane;
        prepared(&pane);
        pane.resize(300, 500);
        auto* picture = pane.findChild<QLabel*>(QStringLiteral("picPreview"));
        auto* text = pane.findChild<QPlainTextEdit*>(QStringLiteral("txtPreviewText"));
        QCOMPARE(shownIn(&pane, path(QStringLiteral("two.pdf"))), QStringLiteral("Page 1 of 2"));
        QVERIFY(!picture->pixmap().isNull());
        QVERIFY(picture->accessibleDescription().contains(QLatin1String("Tenancy agreement")));
        QVERIFY(!enabled(&pane, "cmdPrevPage") && enabled(&pane, "cmdNextPage"));
        QSignalSpy shown(&pane.preview(), &SoftCopyPreview::shown);
        pane.findChild<QPushButton*>(QStringLiteral("cmdNextPage"))->click();
        QVERIFY(shown.wait(70'000));
        QCOMPARE(pane.findChild<QLabel*>(QStringLiteral("lblPreviewState"))->text(),
                 QStringLiteral("Page 2 of 2"));
        QVERIFY(picture->accessibleDescription().contains(QLatin1String("Signatures")));
        QVERIFY(enabled(&pane, "cmdPrevPage") && !enabled(&pane, "cmdNextPage"));

        QCOMPARE(shownIn(&pane, path(QStringLiteral("scan.png"))), QStringLiteral("Page 1 of 1"));
        QVERIFY(!picture->pixmap().isNull() && text->isHidden());

        QCOMPARE(shownIn(&pane, path(QStringLiteral("minutes.docx"))),
                 QStringLiteral("The text of the soft copy"));
        QVERIFY(text->toPlainText().contains(QLatin1String("Minutes of the board")) && !text->isHidden());
        const qreal points = text->font().pointSizeF();
        pane.findChild<QPushButton*>(QStringLiteral("cmdZoomIn"))->click();
        QVERIFY(text->font().pointSizeF() > points);
    }

    void saysWhyForBadInput_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("helper");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* file, const char* expected, const char* helper = "") {
            QTest::newRow(file) << QString::fromLatin1(file) << QString::fromLatin1(helper)
                                << QString::fromLatin1(expected);
        };
        row("nothing.pdf", "There is no file at this path.");
        row("folder.pdf", "The path names a folder, not a file.");
        row("damaged.pdf", "The PDF file is damaged and cannot be read.");
        row("locked.pdf", "The PDF file is protected by a password.");
        row("large.png", "The picture has 1 megapixels; pictures of more than 1 megapixels are not shown.");
        row("secret.pdf", "The file cannot be opened");
        row("hang.txt", "The reader stopped after 2 seconds.");
        row("scan.png", "The reader crashed while reading this file.", "crash.sh");
    }
    // Each ends in the pane with its reason and no page to turn; the pane then shows the next file.
    void saysWhyForBadInput() {
        QFETCH(QString, file);
        QFETCH(QString, helper);
        QFETCH(QString, expected);
        if (file == QLatin1String("secret.pdf") && geteuid() == 0)
            QSKIP("The superuser reads every file.");
        PreviewPane pane;
        prepared(&pane, helper.isEmpty() ? QStringLiteral(VORLANE_READER) : path(helper));
        pane.preview().setHelperOptions({QStringLiteral("--max-megapixels=1")});
        if (file == QLatin1String("hang.txt"))
            pane.preview().setTimeLimit(2);
        QVERIFY(shownIn(&pane, path(file)).startsWith(expected));
        for (const char* button : {"cmdPrevPage", "cmdNextPage", "cmdZoomOut", "cmdZoomIn"})
            QVERIFY(!enabled(&pane, button));
        prepared(&pane);
        QCOMPARE(shownIn(&pane, path(QStringLiteral("scan.png"))), QStringLiteral("Page 1 of 1"));
    }

    // A page shown once comes from the cache; a changed file is shown anew; the cache keeps to its
    // limit.
    void cacheByPathSizeAndTime() {
        const QString file = path(QStringLiteral("cached.png"));
        QVERIFY(testsupport::wordsPicture(QStringLiteral("ONE")).save(file));
        QTemporaryDir cache;
        SoftCopyPreview preview;
        preview.setHelper(QStringLiteral(VORLANE_READER));
        preview.setCacheFolder(cache.path());
        QSignalSpy shown(&preview, &SoftCopyPreview::shown);
        const auto show = [&](int width) {
            preview.request(file, 1, width);
            return shown.wait(70'000) &&
                   shown.constLast().constFirst().value<PreviewPage>().failure.isEmpty();
        };
        QVERIFY(show(400));
        QVERIFY(show(400));
        QCOMPARE(preview.started(), 1);
        QVERIFY(testsupport::wordsPicture(QStringLiteral("TWO AND MORE")).save(file));
        QFile changed(file);
        QVERIFY(changed.open(QIODevice::ReadWrite));
        QVERIFY(
            changed.setFileTime(QDateTime::currentDateTime().addSecs(5), QFileDevice::FileModificationTime));
        changed.close();
        QVERIFY(show(400));
        QCOMPARE(preview.started(), 2);
        const qint64 one = QFileInfo(QDir(cache.path()).entryInfoList(QDir::Files).constFirst()).size();
        preview.setCacheLimit(one * 3);
        for (int width = 100; width <= 800; width += 100)
            QVERIFY(show(width));
        qint64 kept = 0;
        for (const QFileInfo& entry : QDir(cache.path()).entryInfoList(QDir::Files))
            kept += entry.size();
        QVERIFY2(kept <= one * 4, qPrintable(QString::number(kept)));
    }

    // The arrow keys through the found documents: the work for each row left behind is dropped, and
    // only the last row's soft copy is shown.
    void onlyTheLastSelectionIsShown() {
        env->exec("insert into File values(1,'F-001','Tax',1)");
        for (int i = 1; i <= 12; ++i)
            env->exec(
                QStringLiteral("insert into Vorlane values(%1,'2026-01-%2','2026-02-01',1,1,1,1,'Row %1','',"
                               "'%3',1,'','',1)")
                    .arg(i)
                    .arg(i, 2, 10, QLatin1Char('0'))
                    .arg(path(i == 12 ? QStringLiteral("scan.png") : QStringLiteral("two.pdf"))));
        search->Show();
        auto* pane =
            prepared(search.ctl<PreviewPane>(QStringLiteral("fraPreview")), path(QStringLiteral("slow.sh")));
        search.press("cmdSearch");
        auto* list = search.ctl<platform::ListView>(QStringLiteral("lstList"));
        QCOMPARE(list->ListCount(), 12);
        QSignalSpy shown(&pane->preview(), &SoftCopyPreview::shown);
        list->setFocus();
        list->setCurrentIndex(list->model()->index(0, 0));
        for (int i = 1; i < 12; ++i) {
            QTest::qWait(80);
            QTest::keyClick(list, Qt::Key_Down);
        }
        QVERIFY(shown.wait(70'000));
        QTest::qWait(500);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.constFirst().constFirst().value<PreviewPage>().path, path(QStringLiteral("scan.png")));
        QVERIFY(pane->preview().started() > 1);
    }

    // The pane shows until a user hides it, and stays as each user left it.
    void shownOrHiddenPerUser() {
        search->Show();
        QVERIFY(search.ctl<QCheckBox>(QStringLiteral("chkPreview"))->isChecked());
        search.ctl<QCheckBox>(QStringLiteral("chkPreview"))->click();
        QVERIFY(search.ctl<PreviewPane>(QStringLiteral("fraPreview"))->isHidden());
        search->Unload();
        search->Show();
        QVERIFY(!search.ctl<QCheckBox>(QStringLiteral("chkPreview"))->isChecked());
        QVERIFY(search.ctl<PreviewPane>(QStringLiteral("fraPreview"))->isHidden());
        search->Unload();
        testsupport::setSession(4, QStringLiteral("User"));
        search->Show();
        QVERIFY(!search.ctl<PreviewPane>(QStringLiteral("fraPreview"))->isHidden());
    }

    // Index Document shows the file that Browse chose, then that of a loaded document.
    void indexDocumentShowsItsSoftCopy() {
        env->exec(QStringLiteral("insert into Vorlane values(1,'2026-01-01','2026-02-01',1,1,1,1,'Lease','',"
                                 "'%1',1,'','',1)")
                      .arg(path(QStringLiteral("minutes.docx"))));
        index->Show();
        auto* pane = prepared(index.ctl<PreviewPane>(QStringLiteral("fraPreview")));
        QSignalSpy shown(&pane->preview(), &SoftCopyPreview::shown);
        platform::test::nextOpenFile(path(QStringLiteral("two.pdf")));
        index.press(4); // Browse
        QVERIFY(shown.wait(70'000));
        QCOMPARE(shown.constLast().constFirst().value<PreviewPage>().pages, 2);
        index.press(1); // Edit
        index.dblClick("lstDocs", "1");
        QVERIFY(shown.wait(70'000));
        QCOMPARE(shown.constLast().constFirst().value<PreviewPage>().path,
                 path(QStringLiteral("minutes.docx")));
        index.press(0); // Reset
        QCOMPARE(pane->findChild<QLabel*>(QStringLiteral("lblPreviewState"))->text(),
                 QStringLiteral("No soft copy is recorded for this document."));
    }
};

QTEST_MAIN(TestPreview)
#include "tst_preview.moc"
