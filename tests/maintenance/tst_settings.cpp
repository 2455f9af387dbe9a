// The settings screen driven by its controls: the viewer paths, the OCR languages and the
// office's field names with the order and the silent end of their save, and the purge of old
// documents with and without their files, stopping at the first file it cannot delete.
#include "index/SoftCopyReader.h"
#include "index/SoftCopySettings.h"
#include "maintenance/frmSettings.h"
#include "maintenance/frmSoftCopies.h"
#include "platform/Controls.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "session/Session.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTemporaryDir>
#include <QtTest>

using testsupport::messages;

namespace {

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
    testsupport::Screen<frmSettings> screen;
    testsupport::Screen<frmSoftCopies> softCopies;

    // A document of that date whose soft copy is `file` in the test's folder of files.
    void document(int id, const char* date, const QString& file) {
        env->exec(QStringLiteral("insert into Vorlane values(%1,'%2','%2',1,1,1,1,'T%1','','%3',1,'','',1)")
                      .arg(QString::number(id), QString::fromLatin1(date),
                           file.isEmpty() ? QString() : files->filePath(file)));
    }
    void makeFile(const QString& name) {
        QFile f(files->filePath(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
    QStringList filesLeft() const { return QDir(files->path()).entryList(QDir::Files, QDir::Name); }
    QString progress() { return screen.ctl<QLabel>("lblProcess")->text(); }

    // Runs the purge of the documents before 1 July 2021, answering the question with Yes.
    QStringList purge(bool withFiles) {
        screen.ctl<QCheckBox>("chkFiles")->setChecked(withFiles);
        screen.ctl<platform::DatePicker>("dtpDelete")->setValue(QDate(2021, 7, 1));
        platform::test::answerNext(platform::vbYes);
        screen.press("cmdDelete");
        return messages();
    }

  private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void init() {
        env = testsupport::startCase();
        files = std::make_unique<QTemporaryDir>();
        screen->Show();
    }
    void cleanup() { testsupport::endCase(env); }

    // The purge and the state of the soft copies are the first user's alone, whatever the
    // rights; the purge's label flips the box even while the box is disabled. Browse fills the
    // box of its kind; a cancel changes nothing.
    void purgeControlsAndBrowse() {
        for (const char* name : {"cmdDelete", "dtpDelete", "chkFiles", "cmdSoftCopies"})
            QVERIFY(screen.ctl(name)->isEnabled());
        screen.press("cmdSoftCopies");
        QVERIFY(softCopies->isLoaded());
        screen->Unload();
        testsupport::setSession(2, QStringLiteral("Modify"));
        screen->Show();
        for (const char* name : {"cmdDelete", "dtpDelete", "chkFiles", "cmdSoftCopies"})
            QVERIFY(!screen.ctl(name)->isEnabled());
        screen->lblDeleteFiles_Click();
        QVERIFY(screen.ctl<QCheckBox>("chkFiles")->isChecked());
        screen->lblDeleteFiles_Click();
        QVERIFY(!screen.ctl<QCheckBox>("chkFiles")->isChecked());

        platform::test::nextOpenFile(QStringLiteral("/usr/bin/evince"));
        screen.press(5);
        QCOMPARE(screen.text("txtPDFPath"), QStringLiteral("/usr/bin/evince"));
        platform::test::nextOpenFile(QString());
        screen.press(5);
        QCOMPARE(screen.text("txtPDFPath"), QStringLiteral("/usr/bin/evince"));
        QCOMPARE(setting("PDF"), QStringLiteral("(unset)")); // stored only by Save
    }

    // Rights first; with all four paths empty nothing at all is written, not even the names;
    // one path lets the save go on and the three empty ones are stored empty.
    void saveOrderAndItsSilentEnd() {
        for (const char* key : {"Image", "Word", "Excel", "PDF"})
            Session::saveSetting(QString::fromLatin1(key),
                                 QStringLiteral("/usr/bin/") + QString::fromLatin1(key));
        screen->Unload();
        screen->Show();
        QCOMPARE(screen.text("txtWordPath"), QStringLiteral("/usr/bin/Word"));

        testsupport::setSession(1, QStringLiteral("User"));
        QCOMPARE(screen.pressed(0), QStringList({"48:You donot have rights to Save or Modify data."}));
        testsupport::setSession(1, QStringLiteral("Save"));

        for (const char* box : PathBoxes)
            screen.type(box, QStringLiteral("   "));
        screen.type("txtDocType", "Department");
        QCOMPARE(screen.pressed(0), QStringList());
        QVERIFY(screen->isLoaded());
        QCOMPARE(setting("Word"), QStringLiteral("/usr/bin/Word"));
        QCOMPARE(env->count("FieldCaptions"), 0);

        screen.type("txtExcelPath", "  /usr/bin/localc  ");
        QCOMPARE(screen.pressed(0), QStringList({"64:Settings saved successfully."}));
        QVERIFY(!screen->isLoaded());
        QCOMPARE(setting("Excel"), QStringLiteral("/usr/bin/localc"));
        for (const char* key : {"Image", "Word", "PDF"})
            QCOMPARE(setting(key), QString());
        QCOMPARE(env->scalar("select DocType||'|'||DocTitle2 from FieldCaptions").toString(),
                 QStringLiteral("Department|Document Title 2"));
    }

    // The list comes from the reader beside the program (English alone without one), English
    // ticked at first; Save keeps the ticked ones, and every reading passes them to the reader
    // before its own options.
    void ocrLanguages() {
        const auto ticked = [this] {
            QStringList names;
            auto* list = screen.ctl<QListWidget>("lstOcrLanguages");
            for (int i = 0; i < list->count(); ++i)
                names << list->item(i)->text() + (list->item(i)->checkState() == Qt::Checked ? "+" : "");
            return names;
        };
        QCOMPARE(ticked(), QStringList({"eng+"}));
        const QString reader = platform::joinPath(env->appPath(), QStringLiteral("vorlane-reader"));
        QVERIFY(QFile::link(QStringLiteral(VORLANE_READER), reader));
        screen->Unload();
        screen->Show();
        QVERIFY(ticked().contains(QStringLiteral("eng+")));
        QVERIFY(!ticked().contains(QStringLiteral("osd")));

        QFile::remove(reader);
        QFile script(reader);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write(
            "#!/bin/sh\n[ \"$1\" = --list-languages ] && printf 'deu\\neng\\nfra\\n' || echo \"$@\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        screen->Unload();
        screen->Show();
        QCOMPARE(ticked(), QStringList({"deu", "eng+", "fra"}));
        auto* list = screen.ctl<QListWidget>("lstOcrLanguages");
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Space); // the first row has the focus
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Space);
        // Without any viewer's path Save says nothing and writes nothing else, but keeps the languages.
        QCOMPARE(screen.pressed(0), QStringList());
        QCOMPARE(setting("OcrLanguages"), QStringLiteral("deu"));
        screen->Unload();
        screen->Show();
        QCOMPARE(ticked(), QStringList({"deu+", "eng", "fra"}));

        SoftCopyReader softCopyReader;
        softCopyReader.setHelperOptions({QStringLiteral("--languages"), QStringLiteral("fra")});
        QCOMPARE(softCopyReader.read(QStringLiteral("/srv/a.png")).text,
                 QStringLiteral("--languages deu --languages fra -- /srv/a.png\n"));
    }

    // With no saved names the boxes show the defaults without " :"; names are stored trimmed with
    // quotes made back-ticks, and an emptied name is stored empty.
    void fieldNamesAreStored() {
        QCOMPARE(screen.text("txtDocSubCat"), QStringLiteral("Document Sub-Category"));
        env->exec("insert into FieldCaptions values('Old','b','c','d','e','f')");
        screen->Unload();
        screen->Show();
        QCOMPARE(screen.text("txtDocType"), QStringLiteral("Old"));
        screen.type("txtImagePath", "/usr/bin/eog");
        screen.type("txtDocType", "  Director's  Office ");
        screen.type("txtDocTitle1", QString());
        QCOMPARE(screen.pressed(0), QStringList({"64:Settings saved successfully."}));
        QCOMPARE(env->count("FieldCaptions"), 1);
        QCOMPARE(env->scalar("select DocType||'|'||DocTitle1||'|'||DocCat from FieldCaptions").toString(),
                 QStringLiteral("Director`s  Office||b"));
    }

    // A failing write rolls the names back and keeps the screen; the paths stay written. A
    // data store that cannot be reached still saves the paths and says so.
    void failedSaves() {
        env->exec("insert into FieldCaptions values('Old','b','c','d','e','f')");
        env->refuse("insert", "FieldCaptions", "disk full");
        screen.type("txtImagePath", "/usr/bin/eog");
        screen.type("txtDocType", "New");
        QCOMPARE(screen.pressed(0), QStringList({"16:disk full"}));
        QVERIFY(screen->isLoaded());
        QCOMPARE(env->scalar("select DocType from FieldCaptions").toString(), QStringLiteral("Old"));
        QCOMPARE(setting("Image"), QStringLiteral("/usr/bin/eog"));

        env->removeDatabase();
        screen.type("txtImagePath", "/usr/bin/gthumb");
        screen.press(0);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY(shown[0].startsWith(QStringLiteral("48:Database not found !")));
        QCOMPARE(shown[1], QStringLiteral("64:Settings saved successfully."));
        QVERIFY(!screen->isLoaded());
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

        screen.ctl<platform::DatePicker>("dtpDelete")->setValue(QDate(2021, 7, 1));
        platform::test::answerNext(platform::vbNo);
        QCOMPARE(screen.pressed("cmdDelete"), QStringList({Confirm}));
        QVERIFY(!screen.isShown("lblProcess"));
        QCOMPARE(env->count("Vorlane"), 4);

        QCOMPARE(purge(false), QStringList({Confirm}));
        QCOMPARE(progress(), QStringLiteral("Processed 2 records."));
        QVERIFY(screen.isShown("lblProcess"));
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
        QCOMPARE(env->count("Vorlane"), 2);
    }

    // The first file that cannot be deleted ends the run at its row: the files before it are
    // gone, every record stays, and nothing outside the named files is touched. (What Kill
    // refuses is the platform test's.)
    void purgeStopsAtAFileItCannotDelete() {
        for (const char* name : {"a.pdf", "b.pdf", "other.pdf"})
            makeFile(QString::fromLatin1(name));
        document(1, "2020-01-01", QStringLiteral("a.pdf"));
        document(2, "2020-01-02", QStringLiteral("gone.pdf"));
        document(3, "2020-01-03", QStringLiteral("b.pdf"));
        QCOMPARE(purge(true), QStringList({Confirm, "16:File not found"}));
        QCOMPARE(env->count("Vorlane"), 3);
        QCOMPARE(progress(), QStringLiteral("Please wait. Processing 3 records...."));
        QCOMPARE(filesLeft(), QStringList({"b.pdf", "other.pdf"}));
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
