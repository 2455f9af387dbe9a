// The state of the soft copies: the counts by state (a document without a row waits), the
// reasons of the unreadable, the documents whose file is missing, newest first and cut short
// with a note, and the screen's keys.
#include "maintenance/frmSoftCopies.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QtTest>

class TestSoftCopies : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmSoftCopies> screen;

    // A document and the state of its soft copy; an empty state leaves it without a row.
    void document(int id, const char* date, const char* state, const char* reason = "") {
        env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'Title %1','Sub %1',"
                                 "'/srv/scans/%1.pdf',1,'','',1)")
                      .arg(QString::number(id), QString::fromLatin1(date)));
        // The document came with its row, waiting.
        if (!*state)
            env->exec(QStringLiteral("delete from SoftCopy where IndexID=%1").arg(id));
        else
            env->exec(QStringLiteral("update SoftCopy set ReadState='%2', Reason=%3 where IndexID=%1")
                          .arg(QString::number(id), QString::fromLatin1(state),
                               *reason ? testsupport::literal(QString::fromLatin1(reason))
                                       : QStringLiteral("null")));
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void init() { env = testsupport::startCase(); }
    void cleanup() { testsupport::endCase(env); }

    void countsReasonsAndMissingFiles() {
        document(1, "2024-01-05", "read");
        document(2, "2024-01-06", "read");
        document(3, "2024-01-07", "waiting");
        document(4, "2024-01-08", "");
        document(5, "2023-02-01", "unreadable", "The file is damaged.");
        document(6, "2023-02-02", "unreadable", "The file is damaged.");
        document(7, "2023-02-03", "unreadable", "The reader crashed while reading this file.");
        document(8, "2023-11-30", "missing", "There is no file at this path.");
        document(9, "2022-03-09", "missing", "There is no file at this path.");
        document(10, "2021-07-01", "notext", "No text can be read from this kind of file (.doc).");
        screen->Show();
        QCOMPARE(screen.rows("lstStates"),
                 QStringList({"Text read|2", "Waiting to be read|2", "Could not be read|3",
                              "No file at the path|2",
                              "Kind of file whose text is not read (such as old .doc and .xls)|1"}));
        QCOMPARE(screen.rows("lstReasons"),
                 QStringList({"The file is damaged.|2", "The reader crashed while reading this file.|1"}));
        QCOMPARE(screen.rows("lstMissing"), QStringList({"Title 8|Sub 8|30/Nov/2023|/srv/scans/8.pdf",
                                                         "Title 9|Sub 9|09/Mar/2022|/srv/scans/9.pdf"}));
        QVERIFY(!screen.isShown("lblMore"));

        // Refresh reads anew; a list cut short says how many it leaves out.
        env->exec("update SoftCopy set ReadState='read', Reason=null where IndexID=5");
        document(11, "2020-01-01", "missing");
        screen->MissingShown = 2;
        screen.press("cmdRefresh");
        QCOMPARE(screen.rows("lstStates").mid(0, 4),
                 QStringList({"Text read|3", "Waiting to be read|2", "Could not be read|2",
                              "No file at the path|3"}));
        QCOMPARE(screen.rows("lstMissing").size(), 2);
        QVERIFY(screen.isShown("lblMore"));
        QCOMPARE(screen.ctl<QLabel>("lblMore")->text(),
                 QStringLiteral("The newest 2 of 3 documents are shown."));
        QCOMPARE(testsupport::messages(), QStringList());
    }

    // Tab goes round the lists and the buttons; Escape leaves the screen open; Enter presses the
    // button that has the focus.
    void keys() {
        screen->Show();
        QCOMPARE(testsupport::tabOrder(screen.window()),
                 QStringList({"lstStates", "lstReasons", "lstMissing", "cmdRefresh", "cmdClose"}));
        QTest::keyClick(screen.window(), Qt::Key_Escape);
        QVERIFY(screen->isLoaded());
        screen.ctl("cmdClose")->setFocus();
        QTest::keyClick(screen.ctl("cmdClose"), Qt::Key_Return);
        QVERIFY(!screen->isLoaded());
    }
};

QTEST_MAIN(TestSoftCopies)
#include "tst_softcopies.moc"
