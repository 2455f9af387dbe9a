// The settings screen driven by its controls: the viewer paths and the office's field names
// with the order and the silent end of their save, and the purge of old documents with and
// without their files, stopping at the first file it cannot delete.
#include "classification/frmDocType.h"
#include "maintenance/frmSettings.h"
#include "platform/Controls.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "session/Session.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

using testsupport::messages;

namespace {

frmSettings& form() {
    return frmSettings::instance();
}

template <class T = QWidget> T* ctl(const char* name) {
    return testsupport::ctl<T>(form(), QString::fromLatin1(name));
}

void type(const char* box, const QString& text) {
    testsupport::type(form(), QString::fromLatin1(box), text);
}

QString setting(const char* key) {
    return Session::setting(QString::fromLatin1(key), QStringLiteral("(unset)"));
}

const char* const PathBoxes[] = {"txtImagePath", "txtWordPath", "txtExcelPath", "txtPDFPath"};
const QString Confirm = QStringLiteral(
    "68:Confirm once again whether to proceed or not.\nAll records before 01/Jul/2021 will be deleted.");

} // namespace

class TestSettings : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    std::unique_ptr<QTemporaryDir> files;

    // A document of that date whose soft copy is `file` in the test's folder of files.
    void document(int id, const char* date, const QString& file) {
        env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'T%1','','%3',1,'','',1)")
                      .arg(id)
                      .arg(QString::fromLatin1(date))
                      .arg(file.isEmpty() ? QString() : files->filePath(file)));
    }
    void makeFile(const QString& name) {
        QFile f(files->filePath(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    QStringList filesLeft() const { return QDir(files->path()).entryList(QDir::Files, QDir::Name); }
    QString progress() { return ctl<QLabel>("lblProcess")->text(); }

    // Runs the purge of the documents before 1 July 2021, answering the question with Yes.
    QStringList purge(bool withFiles) {
        ctl<QCheckBox>("chkFiles")->setChecked(withFiles);
        ctl<platform::DatePicker>("dtpDelete")->setValue(QDate(2021, 7, 1));
        platform::test::answerNext(platform::vbYes);
        testsupport::press(form(), QStringLiteral("cmdDelete"));
        return messages();
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void init() {
        form().Unload();
        env = std::make_unique<testsupport::TestEnvironment>();
        files = std::make_unique<QTemporaryDir>();
        testsupport::setSession(1, QStringLiteral("Modify"));
        form().Show();
        messages();
    }
    void cleanup() {
        form().Unload();
        frmDocType::instance().Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        env.reset();
    }

    void theScreenAsDesigned() {
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Settings"));
        const QList<QPair<const char*, const char*>> labels = {
            {"lblImg", "Image Viewer / Editor :"},
            {"lblWord", "Word Viewer / Editor :"},
            {"lblExcel", "Excel Viewer / Editor :"},
            {"lblPDF", "PDF Viewer / Editor :"},
            {"lblDocType", "Document Type :"},
            {"lblDocCategory", "Document Category :"},
            {"lblDocSubCat", "Document Sub-Category :"},
            {"lblDocChildCat", "Document Child Category :"},
            {"lblDocTitle1", "Document Title 1 :"},
            {"lblDocTitle2", "Document Title 2 :"},
            {"Label3", "Delete old records before"},
            {"lblDeleteFiles", "Delete related files stored on Hard disk also"}};
        for (const auto& [name, caption] : labels) {
            QCOMPARE(ctl<QLabel>(name)->text(), QString::fromLatin1(caption));
            QVERIFY2(ctl<QLabel>(name)->buddy(), name);
        }
        QCOMPARE(ctl<QLabel>("Label1")->text(), QStringLiteral("Program paths"));
        QCOMPARE(ctl<QLabel>("Label4")->text(), QStringLiteral("Customize Field Names"));
        QCOMPARE(ctl<QLabel>("Label2")->text(), QStringLiteral("Old Records"));
        const QStringList captions{"Save", "Close", "Browse", "Browse", "Browse", "Browse"};
        for (int i = 0; i < captions.size(); ++i)
            QCOMPARE(form().cmd(i)->text(), captions[i]);
        QCOMPARE(ctl<QPushButton>("cmdDelete")->text(), QStringLiteral("Proceed"));
        QVERIFY(!testsupport::isShown(form(), QStringLiteral("lblProcess")));
        QCOMPARE(ctl<platform::DatePicker>("dtpDelete")->Value().toDate(), QDate::currentDate());
        // With no saved names the boxes show the defaults without " :".
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtDocSubCat")),
                 QStringLiteral("Document Sub-Category"));
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtDocTitle2")),
                 QStringLiteral("Document Title 2"));
        QCOMPARE(testsupport::tabOrder(form().window()),
                 QStringList({"txtImagePath", "cmd(2)", "txtWordPath", "cmd(3)", "txtExcelPath", "cmd(4)",
                              "txtPDFPath", "cmd(5)", "txtDocType", "txtDocCat", "txtDocSubCat",
                              "txtDocChildCat", "txtDocTitle1", "txtDocTitle2", "dtpDelete", "chkFiles",
                              "cmdDelete", "cmd(0)", "cmd(1)"}));
    }

    // The purge is the first user's alone, whatever the rights; its label flips the box even
    // while the box is disabled. Browse fills the box of its kind; a cancel changes nothing.
    void purgeControlsAndBrowse() {
        for (const char* name : {"cmdDelete", "dtpDelete", "chkFiles"})
            QVERIFY(ctl(name)->isEnabled());
        form().Unload();
        testsupport::setSession(2, QStringLiteral("Modify"));
        form().Show();
        for (const char* name : {"cmdDelete", "dtpDelete", "chkFiles"})
            QVERIFY(!ctl(name)->isEnabled());
        form().lblDeleteFiles_Click();
        QVERIFY(ctl<QCheckBox>("chkFiles")->isChecked());
        form().lblDeleteFiles_Click();
        QVERIFY(!ctl<QCheckBox>("chkFiles")->isChecked());

        platform::test::nextOpenFile(QStringLiteral("/usr/bin/evince"));
        testsupport::press(form(), 5);
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtPDFPath")), QStringLiteral("/usr/bin/evince"));
        platform::test::nextOpenFile(QString());
        testsupport::press(form(), 5);
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtPDFPath")), QStringLiteral("/usr/bin/evince"));
        QCOMPARE(setting("PDF"), QStringLiteral("(unset)")); // stored only by Save
    }

    // Rights first; with all four paths empty nothing at all is written, not even the names;
    // one path lets the save go on and the three empty ones are stored empty.
    void saveOrderAndItsSilentEnd() {
        for (const char* key : {"Image", "Word", "Excel", "PDF"})
            Session::saveSetting(QString::fromLatin1(key),
                                 QStringLiteral("/usr/bin/") + QString::fromLatin1(key));
        form().Unload();
        form().Show();
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtWordPath")), QStringLiteral("/usr/bin/Word"));

        testsupport::setSession(1, QStringLiteral("User"));
        testsupport::press(form(), 0);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));
        testsupport::setSession(1, QStringLiteral("Save"));

        for (const char* box : PathBoxes)
            type(box, QStringLiteral("   "));
        type("txtDocType", QStringLiteral("Department"));
        testsupport::press(form(), 0);
        QCOMPARE(messages(), QStringList());
        QVERIFY(form().isLoaded());
        QCOMPARE(setting("Word"), QStringLiteral("/usr/bin/Word"));
        QCOMPARE(env->count("FieldCaptions"), 0);

        type("txtExcelPath", QStringLiteral("  /usr/bin/localc  "));
        testsupport::press(form(), 0);
        QCOMPARE(messages(), QStringList({"64:Settings saved successfully."}));
        QVERIFY(!form().isLoaded());
        QCOMPARE(setting("Excel"), QStringLiteral("/usr/bin/localc"));
        for (const char* key : {"Image", "Word", "PDF"})
            QCOMPARE(setting(key), QString());
        QCOMPARE(env->scalar("select DocType||'|'||DocTitle2 from FieldCaptions").toString(),
                 QStringLiteral("Department|Document Title 2"));
    }

    // Names are stored trimmed with quotes made back-ticks, and other screens show them when
    // next opened; an emptied name gives a label of " :".
    void fieldNamesReachTheOtherScreens() {
        env->exec("insert into FieldCaptions values('Old','b','c','d','e','f')");
        form().Unload();
        form().Show();
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtDocType")), QStringLiteral("Old"));
        frmDocType::instance().Show();
        type("txtImagePath", QStringLiteral("/usr/bin/eog"));
        type("txtDocType", QStringLiteral("  Director's  Office "));
        type("txtDocTitle1", QString());
        testsupport::press(form(), 0);
        QCOMPARE(messages(), QStringList({"64:Settings saved successfully."}));
        QCOMPARE(env->count("FieldCaptions"), 1);
        QCOMPARE(env->scalar("select DocType||'|'||DocTitle1||'|'||DocCat from FieldCaptions").toString(),
                 QStringLiteral("Director`s  Office||b"));

        const auto label = [] {
            return testsupport::ctl<QLabel>(frmDocType::instance(), "lblDocType")->text();
        };
        QCOMPARE(label(), QStringLiteral("Old :")); // an open screen keeps its names
        frmDocType::instance().Unload();
        frmDocType::instance().Show();
        QCOMPARE(label(), QStringLiteral("Director`s  Office :"));
        QCOMPARE(frmDocType::instance().window()->windowTitle(), QStringLiteral("Director`s  Office"));
        form().Show();
        QCOMPARE(testsupport::text(form(), QStringLiteral("txtDocTitle1")), QString());
    }

    // A failing write rolls the names back and keeps the screen; the paths stay written. A
    // data store that cannot be reached still saves the paths and says so.
    void failedSaves() {
        env->exec("insert into FieldCaptions values('Old','b','c','d','e','f')");
        env->refuse("insert", "FieldCaptions", "disk full");
        type("txtImagePath", QStringLiteral("/usr/bin/eog"));
        type("txtDocType", QStringLiteral("New"));
        testsupport::press(form(), 0);
        QCOMPARE(messages(), QStringList({"16:disk full"}));
        QVERIFY(form().isLoaded());
        QCOMPARE(env->scalar("select DocType from FieldCaptions").toString(), QStringLiteral("Old"));
        QCOMPARE(setting("Image"), QStringLiteral("/usr/bin/eog"));

        env->removeDatabase();
        type("txtImagePath", QStringLiteral("/usr/bin/gthumb"));
        testsupport::press(form(), 0);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY(shown[0].startsWith(QStringLiteral("48:Database not found !")));
        QCOMPARE(shown[1], QStringLiteral("64:Settings saved successfully."));
        QVERIFY(!form().isLoaded());
        QCOMPARE(setting("Image"), QStringLiteral("/usr/bin/gthumb"));
    }

    // Strictly before the date; the label is the report; files only when asked, and only the
    // files named.
    void purgeWithAndWithoutFiles() {
        for (const char* name : {"a.pdf", "b.pdf", "c.pdf", "keep.pdf", "other.doc"})
            makeFile(QString::fromLatin1(name));
        document(1, "2020-01-01", QStringLiteral("a.pdf"));
        document(2, "2021-06-30", QStringLiteral("b.pdf"));
        document(3, "2021-07-01", QStringLiteral("keep.pdf"));
        document(4, "2024-02-02", QStringLiteral("c.pdf"));

        ctl<platform::DatePicker>("dtpDelete")->setValue(QDate(2021, 7, 1));
        platform::test::answerNext(platform::vbNo);
        testsupport::press(form(), QStringLiteral("cmdDelete"));
        QCOMPARE(messages(), QStringList({Confirm}));
        QVERIFY(!testsupport::isShown(form(), QStringLiteral("lblProcess")));
        QCOMPARE(env->count("Vorlane"), 4);

        QCOMPARE(purge(false), QStringList({Confirm}));
        QCOMPARE(progress(), QStringLiteral("Processed 2 records."));
        QVERIFY(testsupport::isShown(form(), QStringLiteral("lblProcess")));
        QCOMPARE(env->count("Vorlane"), 2);
        QCOMPARE(filesLeft().size(), 5);

        document(1, "2020-01-01", QStringLiteral("a.pdf"));
        document(2, "2021-06-30", QStringLiteral("b.pdf"));
        QCOMPARE(purge(true), QStringList({Confirm}));
        QCOMPARE(progress(), QStringLiteral("Processed 2 records."));
        QCOMPARE(env->count("Vorlane"), 2);
        QCOMPARE(filesLeft(), QStringList({"c.pdf", "keep.pdf", "other.doc"}));

        QCOMPARE(purge(true), QStringList({Confirm})); // nothing older is left
        QCOMPARE(progress(), QStringLiteral("Processed 0 records."));
        QCOMPARE(purge(false), QStringList({Confirm}));
        QCOMPARE(progress(), QStringLiteral("Processed 0 records."));
        QCOMPARE(env->count("Vorlane"), 2);
    }

    // The first file that cannot be deleted ends the run at its row: the files before it are
    // gone, every record stays, and nothing outside the named files is touched.
    void purgeStopsAtAFileItCannotDelete() {
        struct Case {
            const char* why;
            QStringList paths; // in date order
            QString message;
            QStringList left;
        };
        const QList<Case> cases = {
            {"missing", {"a.pdf", "gone.pdf", "b.pdf"}, "16:File not found", {"b.pdf", "other.pdf"}},
            {"named twice", {"a.pdf", "a.pdf", "b.pdf"}, "16:File not found", {"b.pdf", "other.pdf"}},
            {"wildcard", {"*.pdf", "a.pdf"}, "16:File not found", {"a.pdf", "b.pdf", "other.pdf"}},
            {"read-only",
             {"b.pdf", "ro.pdf", "a.pdf"},
             "16:Path/File access error",
             {"a.pdf", "other.pdf", "ro.pdf"}},
            {"no path", {"a.pdf", ""}, "16:File not found", {"b.pdf", "other.pdf"}},
        };
        for (const Case& c : cases) {
            env->exec("delete from Vorlane");
            for (const QString& name : QDir(files->path()).entryList(QDir::Files)) {
                platform::SetAttr(files->filePath(name), platform::vbNormal);
                QFile::remove(files->filePath(name));
            }
            for (const char* name : {"a.pdf", "b.pdf", "other.pdf", "ro.pdf"})
                makeFile(QString::fromLatin1(name));
            platform::SetAttr(files->filePath(QStringLiteral("ro.pdf")), platform::vbReadOnly);
            for (int i = 0; i < c.paths.size(); ++i)
                document(i + 1, qPrintable(QStringLiteral("2020-01-0%1").arg(i + 1)), c.paths[i]);

            QCOMPARE(purge(true), QStringList({Confirm, c.message}));
            QVERIFY2(env->count("Vorlane") == c.paths.size(), c.why);
            QCOMPARE(progress(),
                     QStringLiteral("Please wait. Processing %1 records....").arg(c.paths.size()));
            QStringList left = c.left;
            if (!left.contains(QStringLiteral("ro.pdf")) &&
                c.message.contains(QStringLiteral("File not found")))
                left << QStringLiteral("ro.pdf");
            left.sort();
            QCOMPARE(filesLeft(), left);
        }
    }

    // A data store that fails during the purge: the message, and the records stay.
    void purgeWithAFailingStore() {
        document(1, "2020-01-01", QString());
        env->refuse("delete", "Vorlane", "disk I/O error");
        QCOMPARE(purge(false), QStringList({Confirm, "16:disk I/O error"}));
        QCOMPARE(env->count("Vorlane"), 1);
        QCOMPARE(progress(), QStringLiteral("Please wait. Processing 1 records...."));
        env->allow("Vorlane");
        QCOMPARE(purge(false), QStringList({Confirm}));
        QCOMPARE(env->count("Vorlane"), 0);
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
