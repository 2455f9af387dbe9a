// The classification screens inside the main window: opened from the toolbar, raised on a
// second click, and laid out whole with the office's own (long) field names.
#include "app/MDI.h"
#include "app/Startup.h"
#include "classification/frmDocCat.h"
#include "classification/frmDocChildCat.h"
#include "classification/frmDocSubCat.h"
#include "classification/frmDocType.h"
#include "platform/Controls.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QtTest>

class TestClassificationInMainWindow : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    struct Entry {
        const char* toolbar;
        RecordForm* form;
        const char* objectName;
    };
    static QList<Entry> entries() {
        return {{"ImgDocType", &frmDocType::instance(), "frmDocType"},
                {"ImgDocCat", &frmDocCat::instance(), "frmDocCat"},
                {"ImgDocSubCat", &frmDocSubCat::instance(), "frmDocSubCat"},
                {"ImgDocChildCat", &frmDocChildCat::instance(), "frmDocChildCat"}};
    }

    static int copiesOf(const char* objectName) {
        int n = 0;
        for (auto* sub : MDI::instance().area()->subWindowList())
            if (sub->widget() && sub->widget()->objectName() == QLatin1String(objectName))
                ++n;
        return n;
    }

  private slots:
    void initTestCase() {
        env = std::make_unique<testsupport::TestEnvironment>();
        testsupport::setSession(1, QStringLiteral("Modify"));
        env->exec("insert into FieldCaptions values('Department of Records','Section of the Office',"
                  "'Sub-Section of Section','Folder in the Cabinet','Subject','Reference')");
        env->exec("insert into DocumentCategory values(1,'Accounts and Finance',1)");
        env->exec("insert into DocumentSubCategory values(10,1,'Supplier Invoices',1)");
        env->exec("insert into DocumentChildCategory values(100,1,10,'Year 2023',1)");
        env->exec("insert into DocumentType values(1,'Correspondence',1)");
        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().window()->resize(1024, 720);
    }
    // An emptied name leaves the frame without a title, not with the design caption.
    void anEmptiedNameLeavesTheFrameUntitled() {
        env->exec("update FieldCaptions set DocType=''");
        frmDocType::instance().Unload();
        MDI::instance().entryClick("ImgDocType");
        QWidget* w = frmDocType::instance().window();
        QCOMPARE(w->windowTitle(), QString());
        QCOMPARE(qobject_cast<QMdiSubWindow*>(w->parentWidget())->windowTitle(), QString());
        QCOMPARE(testsupport::messages(), QStringList());
    }
    void cleanupTestCase() {
        for (const auto& e : entries())
            e.form->Unload();
        MDI::instance().Unload();
    }

    void eachEntryOpensItsScreenAndRaisesItOnASecondClick() {
        for (const auto& e : entries()) {
            MDI::instance().entryClick(QString::fromLatin1(e.toolbar));
            QVERIFY(e.form->isLoaded());
            QCOMPARE(copiesOf(e.objectName), 1);
        }
        // Back to the first: raised, not opened again, and what was typed is still there.
        auto& type = frmDocType::instance();
        type.control<QLineEdit>("txtDocType")->setText("typed");
        MDI::instance().entryClick("ImgDocType");
        QCOMPARE(copiesOf("frmDocType"), 1);
        QCOMPARE(MDI::instance().area()->activeSubWindow()->widget(), type.window());
        QCOMPARE(type.control<QLineEdit>("txtDocType")->text(), QStringLiteral("typed"));
        QCOMPARE(testsupport::messages(), QStringList());
    }

    // No key throws typed work away: Escape leaves the screen and its text; Ctrl+F4 closes the
    // screen in front, as its Close button does, and the keyboard goes back to the entry that
    // opened it, also while another screen stays open.
    void escapeKeepsTypedWorkAndTheEntryGetsTheKeyboardBack() {
        QWidget* main = MDI::instance().window();
        QVERIFY(QTest::qWaitForWindowActive(main));
        auto& type = frmDocType::instance();
        auto& category = frmDocCat::instance();
        MDI::instance().entryClick("ImgDocCat");
        MDI::instance().entryClick("ImgDocType");
        auto* box = type.control<QLineEdit>("txtDocType");
        box->clear();
        box->setFocus();
        QTest::keyClicks(box, "Memos");
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(type.isLoaded());
        QCOMPARE(box->text(), QStringLiteral("Memos"));
        QTest::keyClick(box, Qt::Key_F4, Qt::ControlModifier);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QVERIFY(!type.isLoaded());
        QCOMPARE(QApplication::focusWidget(), main->findChild<QWidget*>("ImgDocType"));
        QVERIFY(category.isLoaded());

        // The Close button gives the keyboard back likewise.
        category.window()->activateWindow();
        category.control<QLineEdit>("txtDocCategory")->setFocus();
        category.cmd(3)->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QCOMPARE(QApplication::focusWidget(), main->findChild<QWidget*>("ImgDocCat"));
    }

    // Each screen with its list shown and a row loaded; every label, field and button shows
    // whole. Set VORLANE_SHOTS to a folder to keep the pictures.
    void screensShowWholeWithLongFieldNames() {
        const QString folder = qEnvironmentVariable("VORLANE_SHOTS");
        for (const auto& e : entries()) {
            MDI::instance().entryClick(QString::fromLatin1(e.toolbar));
            RecordForm& f = *e.form;
            f.cmd(1)->click();
            auto* list = f.window()->findChild<platform::ListBox*>();
            list->setCurrentRow(0);
            emit list->DblClick();
            QVERIFY(f.EditMode);
            f.cmd(1)->click();
            QWidget* w = f.window();
            QCoreApplication::processEvents();
            const QRect inside = w->rect();
            for (auto* label : w->findChildren<QLabel*>()) {
                QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->objectName()));
                QVERIFY2(inside.contains(label->geometry()), qPrintable(label->objectName()));
            }
            for (auto* field : w->findChildren<QWidget*>()) {
                if (field->isHidden() || field->parentWidget() != w)
                    continue;
                QVERIFY2(inside.contains(field->geometry()), qPrintable(field->objectName()));
            }
            for (int i = 0; i < 4; ++i)
                QVERIFY(f.cmd(i)->width() >= f.cmd(i)->sizeHint().width());
            // The whole frame fits inside the main window's area.
            auto* frame = qobject_cast<QMdiSubWindow*>(w->parentWidget());
            QVERIFY(frame);
            QVERIFY(MDI::instance().area()->viewport()->rect().contains(frame->geometry()));
            if (!folder.isEmpty()) {
                QDir().mkpath(folder);
                QVERIFY(
                    frame->grab().save(QDir(folder).filePath(QString::fromLatin1(e.objectName) + ".png")));
            }
        }
        if (!folder.isEmpty())
            QVERIFY(MDI::instance().window()->grab().save(QDir(folder).filePath("MDI.png")));
        QCOMPARE(testsupport::messages(), QStringList());
    }
};

QTEST_MAIN(TestClassificationInMainWindow)
#include "tst_classification_mdi.moc"
