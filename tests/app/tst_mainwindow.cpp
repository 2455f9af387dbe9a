#include "app/MDI.h"
#include "app/frmAbout.h"
#include "index/SoftCopyWork.h"
#include "support/TestSupport.h"

#include <QAccessible>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>
#include <sys/stat.h>

using testsupport::messages;

namespace {
// A child screen standing in for the record screens.
class frmDummy : public Form {
  public:
    frmDummy() : Form(true) {}
    int loads = 0;

  protected:
    QWidget* build() override {
        auto* w = new QWidget;
        w->setObjectName(QStringLiteral("frmDummy"));
        (new QLineEdit(w))->setObjectName(QStringLiteral("txtDummy"));
        return w;
    }
    void Form_Load() override { ++loads; }
};
} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        m_env = std::make_unique<testsupport::TestEnvironment>(false);
        MDI::setOnEnd([] {});
        MDI::setOpener(QStringLiteral("ImgSettings"), [this] { ++m_opened["ImgSettings"]; });
        MDI::setOpener(QStringLiteral("ImgDataBackup"), [this] { ++m_opened["ImgDataBackup"]; });
        MDI::setOpener(QStringLiteral("ImgLogin"), [this] { m_dummy.Show(); });
        MDI::setOpener(QStringLiteral("ImgFile"), [this] { m_other.Show(); });
        MDI::instance().Show();
    }
    void cleanupTestCase() { MDI::instance().Unload(); }

    // Every picture of the list is there; every entry has a name and shows the hand of the
    // picture list.
    void theToolbarHasItsPictures() {
        for (const auto& key : MDI::ImgListKeys())
            QVERIFY2(!MDI::ImgList(key).isNull(), qPrintable(key));
        for (auto* e : MDI::instance().window()->findChildren<ImageControl*>()) {
            QVERIFY(!e->accessibleName().isEmpty());
            QVERIFY(e->cursor().shape() == Qt::BitmapCursor);
        }
    }

    void theWindowOpensWithEveryEntryAtRest() {
        QVERIFY(QTest::qWaitForWindowActive(MDI::instance().window()));
        QVERIFY(entry("ImgPersonal")->hasFocus());
        QVERIFY(shows("ImgPersonal", MDI::ImgList("Personal1")));
        // The entry that has the keyboard is framed, though no key has moved it yet.
        const QColor mark = entry("ImgPersonal")->grab().toImage().pixelColor(1, 14);
        QVERIFY2(mark.red() > 200 && mark.blue() < 120, qPrintable(mark.name()));
        // Tab lights the entry it reaches, as the mouse would.
        QTest::keyClick(entry("ImgPersonal"), Qt::Key_Tab);
        QVERIFY(shows("ImgSettings", MDI::ImgList("Settings2")));
        QVERIFY(shows("ImgPersonal", MDI::ImgList("Personal1")));
    }

    void onlyTheEntryUnderTheMouseIsLit() {
        hover("ImgFile");
        QVERIFY(shows("ImgFile", MDI::ImgList("File2")));
        hover("ImgIndexDoc");
        QVERIFY(shows("ImgFile", MDI::ImgList("File1")));
        QVERIFY(shows("ImgIndexDoc", MDI::ImgList("IndexDoc2")));
        // Over the bare strip every entry goes back to rest.
        QMouseEvent move(QEvent::MouseMove, QPointF(5, 1000), QPointF(5, 1000), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(MDI::instance().control<QWidget>("PB"), &move);
        QVERIFY(shows("ImgIndexDoc", MDI::ImgList("IndexDoc1")));
    }

    void picturesInTheImagesFolderWin() {
        QVERIFY(QDir(m_env->appPath()).mkpath("Images"));
        const QString hoverFile = m_env->appPath() + "/Images/DocType2.bmp";
        QImage red(192, 29, QImage::Format_RGB32);
        red.fill(Qt::red);
        QVERIFY(red.save(hoverFile, "BMP"));
        MDI::instance().ResetToolbar();
        QVERIFY(shows("ImgDocType", MDI::ImgList("DocType1"))); // no rest file: the picture list
        hover("ImgDocType");
        QVERIFY(shows("ImgDocType", QPixmap::fromImage(red)));

        // A file that does not load leaves the earlier picture, without a message.
        QFile broken(m_env->appPath() + "/Images/DocCat1.bmp");
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a picture");
        broken.close();
        MDI::instance().ResetToolbar();
        QVERIFY(shows("ImgDocCat", MDI::ImgList("DocCat1")));

        // Read again on every pass: a file put in place now takes effect at once.
        QImage blue = red;
        blue.fill(Qt::blue);
        QVERIFY(blue.save(m_env->appPath() + "/Images/DocType1.bmp", "BMP"));
        MDI::instance().ResetToolbar();
        QVERIFY(shows("ImgDocType", QPixmap::fromImage(blue)));
        QVERIFY(QDir(m_env->appPath() + "/Images").removeRecursively());
        MDI::instance().ResetToolbar();
        QVERIFY(shows("ImgDocType", MDI::ImgList("DocType1")));
        QVERIFY(messages().isEmpty());
    }

    void rightsTestsStopOnlyTheUserLevel() {
        testsupport::setSession(2, QStringLiteral("User"));
        click("ImgSettings");
        click("ImgDataBackup");
        QCOMPARE(messages(), (QStringList{"48:You donot have rights to change Settings.",
                                          "48:You donot have rights to take Backup."}));
        QCOMPARE(m_opened.value("ImgSettings"), 0);
        for (const char* level : {"Save", "Modify", ""}) {
            testsupport::setSession(2, QString::fromLatin1(level));
            click("ImgSettings");
            click("ImgDataBackup");
        }
        QVERIFY(messages().isEmpty());
        QCOMPARE(m_opened.value("ImgSettings"), 3);
        QCOMPARE(m_opened.value("ImgDataBackup"), 3);
    }

    void aSecondClickRaisesTheOpenScreen() {
        testsupport::setSession(2, QStringLiteral("User"));
        click("ImgLogin"); // "User" may open every other screen
        click("ImgLogin");
        QCOMPARE(m_dummy.loads, 1);
        auto* area = MDI::instance().area();
        QCOMPARE(area->subWindowList().size(), 1);
        QCOMPARE(area->activeSubWindow()->widget(), m_dummy.window());
        m_dummy.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        click("ImgLogin");
        QCOMPARE(m_dummy.loads, 2);
        m_dummy.Unload();
    }

    // Each toolbar entry is a button to assistive technology, named as its picture shows, and
    // its Press action opens the screen; F6 takes the keyboard from the toolbar to the screen
    // in front and back.
    void assistiveTechnologyAndTheKeyboardReachTheScreens() {
        testsupport::setSession(1, QStringLiteral("Modify"));
        for (auto* e : MDI::instance().window()->findChildren<ImageControl*>()) {
            QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(e);
            QVERIFY(iface);
            QCOMPARE(iface->role(), QAccessible::Button);
            QCOMPARE(iface->text(QAccessible::Name), e->accessibleName());
            QVERIFY(iface->actionInterface());
            QVERIFY(
                iface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
        }
        QCOMPARE(QAccessible::queryAccessibleInterface(entry("ImgLogin"))->text(QAccessible::Name),
                 QStringLiteral("User Accounts"));
        const int loads = m_dummy.loads;
        QAccessible::queryAccessibleInterface(entry("ImgLogin"))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(m_dummy.loads, loads + 1);
        QVERIFY(m_dummy.isLoaded());

        QWidget* main = MDI::instance().window();
        entry("ImgLogin")->setFocus();
        QTest::keyClick(main, Qt::Key_F6);
        QCOMPARE(QApplication::focusWidget(), m_dummy.control<QWidget>("txtDummy"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), entry("ImgLogin"));
        QVERIFY(shows("ImgLogin", MDI::ImgList("Login2"))); // lit, as Tab lights it
        m_dummy.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // With no screen open, F6 leaves the focus where it is.
        QTest::keyClick(main, Qt::Key_F6);
        QCOMPARE(QApplication::focusWidget(), entry("ImgLogin"));
        MDI::instance().ResetToolbar();
        messages();
    }

    // No key throws typed work away: Escape leaves the screen and its text; Ctrl+F4 closes the
    // screen in front, as its Close button does, and the keyboard goes back to the entry that
    // opened it, also while another screen stays open.
    void escapeKeepsTypedWorkAndCtrlF4GivesTheKeyboardBack() {
        testsupport::setSession(1, QStringLiteral("Modify"));
        QWidget* main = MDI::instance().window();
        QVERIFY(QTest::qWaitForWindowActive(main));
        click("ImgFile");
        click("ImgLogin");
        auto* box = m_dummy.control<QLineEdit>(QStringLiteral("txtDummy"));
        box->setFocus();
        QTest::keyClicks(box, "Memos");
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(m_dummy.isLoaded());
        QCOMPARE(box->text(), QStringLiteral("Memos"));
        QTest::keyClick(box, Qt::Key_F4, Qt::ControlModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QVERIFY(!m_dummy.isLoaded());
        QCOMPARE(QApplication::focusWidget(), entry("ImgLogin"));
        QVERIFY(m_other.isLoaded());
        m_other.Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        MDI::instance().ResetToolbar();
        messages();
    }

    // The status line shows the background reading while it has work; its button pauses the
    // reading (giving the document under way back) and resumes it.
    void theStatusLinePausesTheReading() {
        m_env->createDatabase();
        QTemporaryDir files;
        const QString pipe = files.filePath(QStringLiteral("scan.txt")); // hangs its reader
        mkfifo(QFile::encodeName(pipe).constData(), 0600);
        m_env->exec(
            QStringLiteral("insert into Vorlane (IndexID, DocDate, FilePath) values (1, '2026-01-05', '%1')")
                .arg(pipe));
        SoftCopyWork& work = MDI::instance().softCopyWork();
        work.reader().setHelper(QStringLiteral(VORLANE_READER));
        MDI::instance().startSoftCopyReading();
        auto* status = MDI::instance().control<QLabel>(QStringLiteral("lblSoftCopies"));
        auto* pause = MDI::instance().control<QPushButton>(QStringLiteral("cmdPauseReading"));
        QTRY_COMPARE(status->text(), QStringLiteral("Reading soft copies: 0 of 1"));
        QVERIFY(status->isVisible());
        QTRY_COMPARE(m_env->scalar("select count(*) from SoftCopy where ClaimedBy is not null").toInt(), 1);

        QTest::mouseClick(pause, Qt::LeftButton);
        QCOMPARE(status->text(), QStringLiteral("Reading soft copies paused: 0 of 1"));
        QCOMPARE(pause->text(), QStringLiteral("Resume"));
        QTRY_VERIFY(!work.isRunning());
        QCOMPARE(m_env->scalar("select count(*) from SoftCopy where ClaimedBy is not null").toInt(), 0);

        pause->setFocus();
        QTest::keyClick(pause, Qt::Key_Space);
        QCOMPARE(pause->text(), QStringLiteral("Pause"));
        QVERIFY(work.isRunning());
        MDI::instance().pauseSoftCopyReading(true);
        QTRY_VERIFY(!work.isRunning());
        m_env->removeDatabase();
    }

    void aboutClosesOnAClickOfThePictureOrTheX() {
        click("ImgAbout");
        QVERIFY(frmAbout::instance().isLoaded());
        QVERIFY(frmAbout::instance().window()->isModal());
        QTest::mouseClick(frmAbout::instance().window(), Qt::LeftButton, {}, QPoint(100, 100));
        QVERIFY(!frmAbout::instance().isLoaded());
        click("ImgAbout");
        QTest::mouseClick(frmAbout::instance().control<QWidget>("lblClose"), Qt::LeftButton);
        QVERIFY(!frmAbout::instance().isLoaded());
    }

    void everyHelpClickStartsAViewer() {
        platform::test::takeStartedCommands();
        click("ImgHelp");
        click("ImgHelp");
        const QStringList started = platform::test::takeStartedCommands();
        const QString expected = "VorlaneHelp " + m_env->appPath() + "/Vorlane.html";
        QCOMPARE(started, (QStringList{expected, expected}));
        // A viewer that cannot start is reported, and the window goes on.
        platform::test::setShellChecksProgram(true);
        click("ImgHelp");
        QCOMPARE(messages(), QStringList{"48:File not found"});

        // The viewer beside the program starts even from a folder with a blank in its name;
        // only the help file's path reaches it broken.
        const QString folder = m_env->appPath() + "/My Programs";
        QVERIFY(QDir().mkpath(folder));
        QFile viewer(folder + "/VorlaneHelp");
        QVERIFY(viewer.open(QIODevice::WriteOnly));
        viewer.write("#!/bin/sh\n");
        viewer.close();
        QVERIFY(viewer.setPermissions(viewer.permissions() | QFile::ExeOwner));
        platform::test::setAppPath(folder);
        click("ImgHelp");
        platform::test::setAppPath(m_env->appPath());
        platform::test::setShellChecksProgram(false);
        QVERIFY(messages().isEmpty());
        QCOMPARE(platform::test::takeStartedCommands(),
                 QStringList{"VorlaneHelp " + folder + "/Vorlane.html"});
    }

  private:
    ImageControl* entry(const char* name) {
        return MDI::instance().control<ImageControl>(QString::fromLatin1(name));
    }
    void hover(const char* name) {
        QMouseEvent move(QEvent::MouseMove, QPointF(10, 10), QPointF(10, 10), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(entry(name), &move);
    }
    void click(const char* name) { QTest::mouseClick(entry(name), Qt::LeftButton); }
    bool shows(const char* name, const QPixmap& picture) {
        return entry(name)->pixmap().toImage().convertToFormat(QImage::Format_RGB32) ==
               picture.toImage().convertToFormat(QImage::Format_RGB32);
    }

    std::unique_ptr<testsupport::TestEnvironment> m_env;
    QHash<QString, int> m_opened;
    frmDummy m_dummy;
    frmDummy m_other;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
