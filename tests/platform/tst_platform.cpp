#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/Dialogs.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "platform/Settings.h"
#include "platform/Shell.h"
#include "platform/TestHooks.h"
#include "support/TestSupport.h"

#include <QAccessible>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QFile>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace platform;
using testsupport::errorOf;

class TestPlatform : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        QStandardPaths::setTestModeEnabled(true);
        test::enable();
        test::setAppPath(m_dir.path());
        test::setSettingsFolder(m_dir.filePath(QStringLiteral("settings")));
    }

    void conversionsFailAsThePlatformDoes() {
        QCOMPARE(CInt(QVariant(32767)), qint16(32767));
        // Numbers become plain decimals, as statements need them.
        QCOMPARE(CStr(QVariant(1e16)), QStringLiteral("10000000000000000"));
        QCOMPARE(NumberText(1000000), QStringLiteral("1000000"));
        QCOMPARE(NumberText(0.25), QStringLiteral("0.25"));
        QCOMPARE(CInt(QVariant(2.5)), qint16(2)); // half to even
        QCOMPARE(CInt(QVariant(QStringLiteral(" 12 "))), qint16(12));
        QCOMPARE(errorOf([] { CInt(QVariant(32768)); }), ErrOverflow);
        QCOMPARE(errorOf([] { CInt(QVariant(QStringLiteral("abc"))); }), ErrTypeMismatch);
        QCOMPARE(errorOf([] { CStr(QVariant()); }), 94);
        QCOMPARE(errorOf([] { CLng(QVariant(2147483648.0)); }), ErrOverflow);
        QCOMPARE(Val(QStringLiteral("42abc")), 42.0);
        QCOMPARE(Val(QStringLiteral("abc")), 0.0);
        QCOMPARE(Val(QString()), 0.0);
    }

    void settingsRoundTripInTheTestFolder() {
        QCOMPARE(GetSetting("Vorlane", "Settings", "Word", "none"), QStringLiteral("none"));
        SaveSetting("Vorlane", "Settings", "Word", "/usr/bin/writer");
        QCOMPARE(GetSetting("Vorlane", "Settings", "Word"), QStringLiteral("/usr/bin/writer"));
        QVERIFY(QFile::exists(m_dir.filePath(QStringLiteral("settings/Vorlane.conf"))));

        // A store that cannot be written is an error, not a silent loss.
        test::setSettingsFolder(QStringLiteral("/dev/null/settings"));
        QVERIFY_THROWS_EXCEPTION(Error, SaveSetting("Vorlane", "Settings", "Word", "/usr/bin/other"));
        test::setSettingsFolder(m_dir.filePath(QStringLiteral("settings")));
    }

    void dialogFilters() {
        // The patterns match files of scanners and cameras, whatever the case of their names.
        const QString filter = dialogFilter(QStringLiteral("Documents|*.jpg;*.pdf|All|*.*"));
        QCOMPARE(filter.section(QStringLiteral(";;"), 1), QStringLiteral("All (*.*)"));
        const QStringList patterns =
            filter.section(QStringLiteral(" ("), 1).section(QLatin1Char(')'), 0, 0).split(' ');
        QCOMPARE(patterns.size(), 2);
        for (const char* name : {"SCAN0001.JPG", "photo.jpg", "Letter.Pdf"}) {
            const bool any = std::any_of(patterns.begin(), patterns.end(), [&](const QString& p) {
                return QRegularExpression::fromWildcard(p).match(QString::fromLatin1(name)).hasMatch();
            });
            QVERIFY2(any, name);
        }
        QVERIFY(
            !QRegularExpression::fromWildcard(patterns[1]).match(QStringLiteral("notes.pdfx")).hasMatch());

        // A filter of programs offers the executable files, whatever their names.
        const QString programs = QStringLiteral("PDF Viewer / Editor|*.exe;*.exe");
        QVERIFY(isProgramFilter(programs));
        QVERIFY(!isProgramFilter(QStringLiteral("PDF|*.pdf")));
        QCOMPARE(dialogFilter(programs), QStringLiteral("PDF Viewer / Editor (*)"));
        QTemporaryDir folder;
        QDir(folder.path()).mkdir(QStringLiteral("sub"));
        for (const auto& [name, executable] : {std::pair{"evince", true}, std::pair{"notes.txt", false}}) {
            QFile f(folder.filePath(QString::fromLatin1(name)));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.setPermissions(executable ? f.permissions() | QFile::ExeOwner
                                        : f.permissions() & ~QFile::ExeOwner);
        }
        QFileSystemModel files;
        QSignalSpy loaded(&files, &QFileSystemModel::directoryLoaded);
        const QModelIndex root = files.setRootPath(folder.path());
        QVERIFY(loaded.wait());
        ProgramFilesOnly shown;
        shown.setSourceModel(&files);
        QStringList names;
        for (int i = 0; i < shown.rowCount(shown.mapFromSource(root)); ++i)
            names << shown.index(i, 0, shown.mapFromSource(root)).data().toString();
        names.sort();
        QCOMPARE(names, QStringList({"evince", "sub"}));
    }

    void shellRecordsAndReportsAMissingProgram() {
        Shell(QStringLiteral("/bin/true one two"));
        Shell(QStringLiteral("/bin/true one two"));
        QCOMPARE(test::takeStartedCommands().size(), 2);
        test::setShellChecksProgram(true);
        QString description;
        QCOMPARE(errorOf([] { Shell(QStringLiteral("/no/such/viewer file.txt")); }, &description),
                 ErrFileNotFound);
        QCOMPARE(description, QStringLiteral("File not found"));
        test::setShellChecksProgram(false);
        QVERIFY(test::takeStartedCommands().isEmpty());

        // A document's path in quotes reaches the program as one argument, whatever it
        // holds; a program's path may hold blanks, quoted or not.
        const QString viewer = m_dir.filePath(QStringLiteral("My Viewer/view"));
        QDir(m_dir.path()).mkdir(QStringLiteral("My Viewer"));
        QFile program(viewer);
        QVERIFY(program.open(QIODevice::WriteOnly));
        program.setPermissions(program.permissions() | QFile::ExeOwner);
        const auto split = [](const QString& line) {
            const CommandLine parts = splitCommandLine(line);
            return QStringList(parts.program) + parts.arguments;
        };
        QCOMPARE(split(QStringLiteral("xdg-open \"/d/my \"big\" file.pdf\"")),
                 QStringList({"xdg-open", "/d/my \"big\" file.pdf"}));
        QCOMPARE(split(viewer + QStringLiteral(" \"/d/a b.pdf\"")), QStringList({viewer, "/d/a b.pdf"}));
        QCOMPARE(split(QLatin1Char('"') + viewer + QStringLiteral("\" --page 2 \"/d/a.pdf\"")),
                 QStringList({viewer, "--page", "2", "/d/a.pdf"}));
        QCOMPARE(split(QStringLiteral("/no/such viewer \"/d/a.pdf\"")),
                 QStringList({"/no/such", "viewer", "/d/a.pdf"}));
        QCOMPARE(split(QStringLiteral("VorlaneHelp /a b/c.html")),
                 QStringList({"VorlaneHelp", "/a", "b/c.html"}));
    }

    void filesAnswerByPlainName() {
        const QString path = joinPath(appPath(), QStringLiteral("Images\\DocType1.bmp"));
        QVERIFY(path.startsWith(m_dir.path()));
        QVERIFY(path.endsWith(QStringLiteral("Images/DocType1.bmp")));
        QCOMPARE(Dir(path), QString());
        QDir(m_dir.path()).mkpath(QStringLiteral("Images"));
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        QCOMPARE(Dir(path), QStringLiteral("DocType1.bmp"));
        FileCopy(path, path + QStringLiteral(".copy"));
        QVERIFY(fileExists(path + QStringLiteral(".copy")));
        SetAttr(path + QStringLiteral(".copy"), vbReadOnly);
        QCOMPARE(GetAttr(path + QStringLiteral(".copy")) & vbReadOnly, int(vbReadOnly));
        SetAttr(path + QStringLiteral(".copy"), vbNormal);
        Kill(path + QStringLiteral(".copy"));
        QVERIFY(!fileExists(path + QStringLiteral(".copy")));
    }

    // Kill deletes the one file named and nothing else: a name with wildcards is a name.
    void killDeletesExactlyTheFileNamed() {
        QTemporaryDir folder;
        const auto make = [&](const QString& name) {
            QFile f(folder.filePath(name));
            QVERIFY(f.open(QIODevice::WriteOnly));
        };
        const auto number = [](const QString& path) { return errorOf([&] { Kill(path); }); };
        make(QStringLiteral("a.pdf"));
        make(QStringLiteral("b.pdf"));
        QCOMPARE(number(folder.filePath(QStringLiteral("*.pdf"))), ErrFileNotFound);
        QCOMPARE(number(folder.filePath(QStringLiteral("?.pdf"))), ErrFileNotFound);
        make(QStringLiteral("*.pdf"));
        QCOMPARE(number(folder.filePath(QStringLiteral("*.pdf"))), 0);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({"a.pdf", "b.pdf"}));

        SetAttr(folder.filePath(QStringLiteral("a.pdf")), vbReadOnly);
        QCOMPARE(number(folder.filePath(QStringLiteral("a.pdf"))), ErrPathFileAccess);
        QVERIFY(fileExists(folder.filePath(QStringLiteral("a.pdf"))));
        QCOMPARE(number(folder.path()), ErrFileNotFound); // a folder is no file
        QCOMPARE(number(QString()), ErrFileNotFound);
    }

    void comboAndListRaiseClickWhenSetFromCode() {
        ComboBox combo;
        QSignalSpy clicks(&combo, &ComboBox::Click);
        combo.AddItem(QStringLiteral("Bills"));
        combo.setItemData(combo.NewIndex(), 7);
        combo.AddItem(QStringLiteral("Letters"));
        combo.setItemData(combo.NewIndex(), 9);
        QCOMPARE(combo.ListIndex(), -1); // nothing is chosen by filling
        combo.setListIndex(1);
        combo.setListIndex(1); // the same index again still clicks
        QCOMPARE(clicks.count(), 2);
        QCOMPARE(combo.ItemData(1), 9);
        combo.setListIndex(-1);
        QCOMPARE(combo.ListIndex(), -1);
        QVERIFY_THROWS_EXCEPTION(Error, combo.ItemData(5));
        combo.Clear();
        QVERIFY_THROWS_EXCEPTION(Error, combo.setListIndex(0));

        ListBox list;
        QSignalSpy dbl(&list, &ListBox::DblClick);
        list.AddItem(QStringLiteral("one"));
        list.setItemData(0, 40000);
        QCOMPARE(list.ItemData(0), 40000);
        list.setListIndex(0);
        QTest::keyClick(&list, Qt::Key_Return); // Enter works as a double click
        QCOMPARE(dbl.count(), 1);
    }

    void datePickerIsDateOrNullAndChangesFromCode() {
        DatePicker picker;
        QSignalSpy changes(&picker, &DatePicker::Change);
        QVERIFY(!picker.Value().isValid());
        picker.setValue(QDate(2026, 3, 5));
        QCOMPARE(picker.Value().toDate(), QDate(2026, 3, 5));
        picker.setValue(QVariant());
        QVERIFY(!picker.Value().isValid());
        QCOMPARE(changes.count(), 2);
        picker.setValue(QVariant()); // the same value: no change
        QCOMPARE(changes.count(), 2);
        picker.checkBox()->setChecked(true); // the user ticks the box
        QCOMPARE(changes.count(), 3);
        QCOMPARE(picker.Value().toDate(), QDate(2026, 3, 5));
    }

    // A date is read whole as typed, in the running system's language; what is no date is
    // refused at the box, which keeps its former date and says why.
    void typedDatesAreTakenAsTyped_data() {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QDate>("taken"); // a null date: refused
        const QDate march15(2026, 3, 15);
        const auto row = [](const char* language, const char* typed, QDate taken) {
            QTest::addRow("%s %s", language, typed)
                << QString::fromLatin1(language) << QString::fromUtf8(typed) << taken;
        };
        for (const char* language : {"en_US", "de_DE"}) {
            row(language, "15/03/2026", march15);
            row(language, "15.3.2026", march15);
            row(language, "15-3-26", march15);
            row(language, "2026-03-15", march15);
            row(language, "1/1/30", QDate(1930, 1, 1));
            row(language, "31.12.29", QDate(2029, 12, 31));
            row(language, "15/Mar/2026", march15); // English names are known everywhere
            row(language, "31/Feb/2026", QDate());
            row(language, "15/13/2026", QDate());
            row(language, "15/03", QDate());
            row(language, "15/03/026", QDate());
            row(language, "tomorrow", QDate());
        }
        row("en_US", "15 march 2026", march15);
        row("en_US", "March 15, 2026", march15);
        row("en_US", "15/Ma/2026", QDate());
        row("de_DE", "15/März/2026", march15);
        row("de_DE", "15. März 2026", march15);
        row("de_DE", "1/Okt./2025", QDate(2025, 10, 1));
        row("de_DE", "1/Mai/2025", QDate(2025, 5, 1));
        row("de_DE", "1/Ma/2025", QDate());
    }
    void typedDatesAreTakenAsTyped() {
        QFETCH(QString, language);
        QFETCH(QString, typed);
        QFETCH(QDate, taken);
        const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
        QLocale::setDefault(QLocale(language));
        QWidget form;
        auto* picker = new DatePicker(&form);
        picker->setCheckBox(false);
        picker->setValue(QDate(2020, 2, 29));
        QSignalSpy changes(picker, &DatePicker::Change);
        QLineEdit* box = picker->dateBox();
        box->selectAll();
        for (const QChar c : typed) // key by key, also the keys of other languages' keyboards
            QTest::sendKeyEvent(QTest::Click, box, Qt::Key_unknown, QString(c), Qt::NoModifier);
        QTest::keyClick(box, Qt::Key_Return);
        const QDate now = taken.isValid() ? taken : QDate(2020, 2, 29);
        QCOMPARE(picker->Value().toDate(), now);
        QCOMPARE(box->text(), QLocale().toString(now, QStringLiteral("dd/MMM/yyyy")));
        QCOMPARE(changes.count(), taken.isValid() ? 1 : 0);
        QCOMPARE(picker->refusal().isEmpty(), taken.isValid());
        QCOMPARE(box->toolTip(), picker->refusal());
    }

    // F4 and Alt+Down open the calendar, Escape closes it, Enter takes its date; Space ticks
    // and clears the box; Up and Down step a day.
    void theCalendarAndTheKeysOfAPicker() {
        QWidget form;
        auto* picker = new DatePicker(&form);
        auto* other = new QLineEdit(&form);
        form.show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        picker->setFocus();
        QTest::keyClick(picker->checkBox(), Qt::Key_Space);
        QCOMPARE(picker->Value().toDate(), QDate::currentDate());
        QTest::keyClick(picker->checkBox(), Qt::Key_F4);
        QVERIFY(picker->calendar()->isVisible());
        QTest::keyClick(picker->calendar()->focusWidget(), Qt::Key_Escape);
        QVERIFY(!picker->calendar()->isVisible());
        picker->setValue(QDate(2026, 3, 15));
        QTest::keyClick(picker->dateBox(), Qt::Key_Down, Qt::AltModifier);
        QVERIFY(picker->calendar()->isVisible());
        picker->calendar()->setSelectedDate(QDate(2026, 4, 2));
        QTest::keyClick(picker->calendar()->focusWidget(), Qt::Key_Return);
        QVERIFY(!picker->calendar()->isVisible());
        QCOMPARE(picker->Value().toDate(), QDate(2026, 4, 2));
        QTest::keyClick(picker->dateBox(), Qt::Key_Up);
        QCOMPARE(picker->Value().toDate(), QDate(2026, 4, 3));
        // A date typed and left by Tab is taken as it stands.
        picker->dateBox()->selectAll();
        QTest::keyClicks(picker->dateBox(), QStringLiteral("1/Jun/2026"));
        QTest::keyClick(picker->dateBox(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), other);
        QCOMPARE(picker->Value().toDate(), QDate(2026, 6, 1));
        QTest::keyClick(picker->checkBox(), Qt::Key_Space);
        QVERIFY(!picker->Value().isValid());
    }

    // A drop-down list is announced by its caption, as a text box is; the chosen item is its
    // value. A list view's columns share its width.
    void listsForAssistiveTechnologyAndTheEye() {
        QWidget form;
        auto* label = new QLabel(QStringLiteral("File No. :"), &form);
        auto* combo = new ComboBox(&form);
        combo->AddItem(QStringLiteral("F-001"));
        combo->setListIndex(0);
        setBuddy(label, combo);
        QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(combo);
        QCOMPARE(iface->role(), QAccessible::ComboBox);
        QCOMPARE(iface->text(QAccessible::Name), QStringLiteral("File No. :"));
        QCOMPARE(iface->text(QAccessible::Value), QStringLiteral("F-001"));

        auto* list = new ListView(&form);
        list->addColumn(QStringLiteral("Key"), 0);
        list->addColumn(QStringLiteral("Title"), 100);
        list->addColumn(QStringLiteral("Date"), 50);
        list->resize(400, 200);
        form.show();
        const int room = list->viewport()->width();
        QCOMPARE(list->columnWidth(1) + list->columnWidth(2), room);
        QVERIFY(qAbs(list->columnWidth(1) - 2 * list->columnWidth(2)) <= 2);
        QVERIFY(!list->horizontalScrollBar()->isVisible());
    }

    void clearingAFormLeavesPickersAlone() {
        QWidget form;
        auto* title = new QLineEdit(QStringLiteral("x"), &form);
        auto* remarks = new QPlainTextEdit(QStringLiteral("y"), &form);
        auto* picker = new DatePicker(&form);
        picker->setValue(QDate(2020, 1, 2));
        QCOMPARE(textBoxes(&form).size(), 2);
        clearTextBoxes(&form);
        QVERIFY(title->text().isEmpty());
        QVERIFY(remarks->toPlainText().isEmpty());
        QCOMPARE(picker->Value().toDate(), QDate(2020, 1, 2));
    }

    // Enter presses the focused button, as Space does; Enter in a box presses nothing.
    void enterPressesTheFocusedButton() {
        QWidget form;
        auto* box = new QLineEdit(&form);
        auto* button = new CommandButton(&form);
        QSignalSpy clicks(button, &QPushButton::clicked);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(clicks.size(), 0);
        QTest::keyClick(button, Qt::Key_Return);
        QTest::keyClick(button, Qt::Key_Enter, Qt::KeypadModifier);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(clicks.size(), 3);
    }

    // The previous-instance test holds a lock that dies with its process: a lock file left by
    // a crashed run does not count, a running instance does, and each user has a lock of his
    // own even where the login name is unknown.
    void previousInstanceIsPerUserAndDiesWithTheProcess() {
        QTemporaryDir runtime;
        QFile stale(QDir(runtime.path()).filePath(QStringLiteral("Vorlane.lock")));
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.write("4242\n");
        stale.close();

        QTemporaryDir temp;
        const auto otherStart = [&](bool withRuntimeFolder) {
            QProcess child;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("VORLANE_PREVINSTANCE_PROBE"), QStringLiteral("1"));
            env.remove(QStringLiteral("USER"));
            if (withRuntimeFolder)
                env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
            else
                env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
            env.insert(QStringLiteral("TMPDIR"), temp.path());
            child.setProcessEnvironment(env);
            child.start(QCoreApplication::applicationFilePath(), {});
            child.waitForFinished(30000);
            return child.exitCode();
        };
        QCOMPARE(otherStart(true), 0); // the stale file alone stops nobody

        qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
        QVERIFY(!PrevInstance());
        QVERIFY(!PrevInstance()); // the holder asks again: still the only one
        QCOMPARE(otherStart(true), 1);
        // Without a runtime folder the lock is named after the numeric user id.
        QCOMPARE(otherStart(false), 0);
        QVERIFY(QFile::exists(QDir(temp.path()).filePath(QStringLiteral("Vorlane-%1.lock").arg(::getuid()))));
    }

  private:
    QTemporaryDir m_dir;
};

// Run as a second start by previousInstanceIsPerUserAndDiesWithTheProcess: the exit code
// tells whether another instance was found.
int main(int argc, char* argv[]) {
    if (qEnvironmentVariableIsSet("VORLANE_PREVINSTANCE_PROBE"))
        return platform::PrevInstance() ? 1 : 0;
    QApplication app(argc, argv);
    TestPlatform test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_platform.moc"
