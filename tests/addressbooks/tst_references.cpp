// The internet references driven by their controls: rights and the two required fields, the
// duplicate test with its quote swap for new rows only, the search panel, the load through the
// hidden key, long and foreign text, printing, a missing database and two seats at once.
#include "addressbooks/frmReferences.h"
#include "app/MDI.h"
#include "app/Startup.h"
#include "datastore/Ado.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");
const QString Duplicate = QStringLiteral("48:Duplicate Reference details not allowed.");

frmReferences& form() {
    return frmReferences::instance();
}

template <class T> T* ctl(const char* name) {
    return testsupport::ctl<T>(form(), QString::fromLatin1(name));
}

void press(int index) {
    testsupport::press(form(), index);
}

void type(const char* box, const QString& text) {
    testsupport::type(form(), QString::fromLatin1(box), text);
}

QString text(const char* box) {
    return testsupport::text(form(), QString::fromLatin1(box));
}

void enter(const QString& name, const QString& particulars, const QString& link) {
    type("txtRefName", name);
    ctl<QPlainTextEdit>("txtParticulars")->setPlainText(particulars);
    type("txtLink", link);
}

bool panelShown() {
    return testsupport::isShown(form(), QStringLiteral("fraList"));
}

// The rows of the list as "key|name|link".
QStringList rows() {
    return testsupport::listRows(form(), QStringLiteral("lstRef"));
}

QStringList names() {
    QStringList out;
    for (const QString& row : rows())
        out << row.section(QLatin1Char('|'), 1, 1);
    return out;
}

void dblClick(const QString& name) {
    testsupport::dblClick(form(), QStringLiteral("lstRef"), name, 1);
}

void search(const QString& part) {
    type("txtSearchName", part);
    testsupport::press(form(), QStringLiteral("cmdSearch"));
}

QStringList printedNames() {
    QStringList out;
    for (const auto& page : reports::RptInternetRef().pages().pages)
        out << page.textOf(QStringLiteral("txtRefName"));
    return out;
}

} // namespace

class TestReferences : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from \"References\" where RefID=%2").arg(column).arg(id))
            .toString();
    }
    void addRow(int id, const QString& name, const QString& link) const {
        env->exec(
            QStringLiteral("insert into \"References\" values(%1,'%2','','%3',1)").arg(id).arg(name, link));
    }

  private slots:
    // The report's data environment starts empty too.
    void init() {
        reports::VorlaneDE::instance().reset();
        env = testsupport::startRecordCase(form());
    }
    void cleanup() {
        reports::VorlaneDE::instance().reset();
        testsupport::endRecordCase(form(), env);
    }

    void theScreenAsDesigned() {
        // It opens without the data store.
        env->removeDatabase();
        form().Show();
        QCOMPARE(messages(), QStringList());
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Internet References"));
        const QList<std::pair<const char*, const char*>> captions = {
            {"lblName", "Reference Name :"},
            {"Label1", "Particulars :"},
            {"lblPhone", "Online Link :"},
            {"lblSearchRef", "Reference Name containing :"},
            {"lblShowAll", "Show all"}};
        for (const auto& [label, caption] : captions)
            QCOMPARE(ctl<QLabel>(label)->text(), QString::fromLatin1(caption));
        QCOMPARE(ctl<QLabel>("Label1")->buddy(), ctl<QPlainTextEdit>("txtParticulars"));
        QCOMPARE(ctl<QLineEdit>("txtLink")->toolTip(),
                 QStringLiteral("Paste here links copied from your browsers address bar"));
        const QStringList buttons{"Reset", "Edit", "Save", "Close", "Print List"};
        for (int i = 0; i < buttons.size(); ++i)
            QCOMPARE(form().cmd(i)->text(), buttons[i]);
        QVERIFY(!panelShown());
        QVERIFY(ctl<QCheckBox>("chkShowAll")->isChecked());
        auto* list = ctl<platform::ListView>("lstRef");
        QCOMPARE(list->toolTip(), QStringLiteral("Double click a record to edit"));
        QCOMPARE(list->model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Ref ID"));
        QCOMPARE(list->model()->headerData(2, Qt::Horizontal).toString(), QStringLiteral("Online Link"));
        QVERIFY(list->isColumnHidden(0));

        // The panel covers the fields and leaves the buttons free; Tab walks the panel.
        env->createDatabase();
        press(1);
        QVERIFY(panelShown());
        QWidget* w = form().window();
        w->resize(w->sizeHint());
        QCoreApplication::processEvents();
        const QRect cover = ctl<QFrame>("fraList")->geometry();
        for (const char* box : {"txtRefName", "txtParticulars", "txtLink"}) {
            QWidget* field = ctl<QWidget>(box);
            QVERIFY(cover.contains(QRect(field->mapTo(w, QPoint(0, 0)), field->size())));
        }
        for (int i = 0; i < 5; ++i)
            QVERIFY(!cover.intersects(form().cmd(i)->geometry()));
        QCOMPARE(w->focusWidget(), list);
        ctl<QCheckBox>("chkShowAll")->setChecked(false);
        ctl<QLineEdit>("txtSearchName")->setFocus();
        QStringList visited;
        for (int i = 0; i < 5; ++i) {
            visited << w->focusWidget()->objectName();
            QTest::keyClick(w->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited, QStringList({"txtSearchName", "cmdSearch", "chkShowAll", "lstRef", "cmd(0)"}));
    }

    void rightsComeFirstThenNameAndLink() {
        form().Show();
        testsupport::setSession(2, QStringLiteral("User"));
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));

        testsupport::setSession(3, QStringLiteral("Save"));
        enter("  ", "notes", "https://example.org");
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify Reference name."}));
        enter("Tax office", "notes", "   ");
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify Link."}));
        QCOMPARE(ctl<QPlainTextEdit>("txtParticulars")->toPlainText(), QStringLiteral("notes"));
        QCOMPARE(env->count("References"), 0);

        enter("  Tax office  ", "", " https://tax.example.gov ");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("RefName||'|'||Particulars||'|'||OnlineLink||'|'||UpdatedBy", 1),
                 QStringLiteral("Tax office||https://tax.example.gov|3"));
        QCOMPARE(text("txtRefName"), QString());

        press(1);
        dblClick("Tax office");
        type("txtLink", "https://other.example");
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
    }

    // The name alone is tested, without regard to case; a new name has its quotes swapped
    // first, an edited one does not.
    void duplicatesAndQuotes() {
        addRow(1, "Bank", "https://bank.example");
        addRow(2, "Court", "https://court.example");
        form().Show();
        enter("BANK", "", "https://elsewhere.example");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        QCOMPARE(text("txtRefName"), QStringLiteral("BANK"));
        QVERIFY(!GenMod::Conn);
        enter("Bank 2", "", "https://bank.example"); // the same link is allowed
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));

        enter("O'Neil", "Tom's notes", "https://x.example/?q='a'");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("RefName||'|'||Particulars||'|'||OnlineLink", 4),
                 QStringLiteral("O`Neil|Tom`s notes|https://x.example/?q=`a`"));
        enter("O'Neil", "", "https://y.example");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));

        // Loaded rows: unchanged passes; another's name is refused; a quote breaks the test.
        press(1);
        dblClick("O`Neil");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        press(1);
        dblClick("Court");
        type("txtRefName", "bank");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        QVERIFY(form().EditMode);
        QCOMPARE(form().CurrentRowID, 2);
        type("txtRefName", "O'Neil");
        press(2);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY2(shown[0].startsWith("16:"), qPrintable(shown[0]));
        QCOMPARE(shown[1], Saved);
        QCOMPARE(env->scalar("select count(*) from \"References\" where RefName='O`Neil'").toInt(), 2);
    }

    // The box starts checked: the first Edit lists all and locks the search text. Unchecked,
    // Search matches a part of the name in any case, with the store's wildcards; a quote is
    // the data layer's error and leaves the rows. Reset hides the panel and empties the text.
    void theSearchPanel() {
        addRow(1, "Zoning board", "https://z.example");
        addRow(2, "abc Motors", "https://m.example");
        addRow(3, "The ABC of tax", "https://t.example");
        addRow(4, "50% off", "https://p.example");
        addRow(5, "Land_registry", "https://l.example");
        form().Show();
        press(1);
        QCOMPARE(names(),
                 QStringList({"50% off", "abc Motors", "Land_registry", "The ABC of tax", "Zoning board"}));
        QCOMPARE(rows().first(), QStringLiteral("4|50% off|https://p.example"));
        auto* searchText = ctl<QLineEdit>("txtSearchName");
        QVERIFY(!searchText->isEnabled());

        QTest::mouseClick(ctl<QLabel>("lblShowAll"), Qt::LeftButton);
        QVERIFY(!ctl<QCheckBox>("chkShowAll")->isChecked());
        QVERIFY(searchText->isEnabled());
        search("abc");
        QCOMPARE(names(), QStringList({"abc Motors", "The ABC of tax"}));
        search("");
        QCOMPARE(rows().size(), 5);
        search("n_");
        QCOMPARE(names(), QStringList({"Land_registry", "Zoning board"}));
        type("txtSearchName", "0%o");
        QTest::keyClick(searchText, Qt::Key_Return); // Enter searches too
        QCOMPARE(names(), QStringList({"50% off"}));
        search("it's");
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown[0].startsWith("16:"), qPrintable(shown[0]));
        QCOMPARE(names(), QStringList({"50% off"}));
        QVERIFY(!GenMod::Conn);

        // Reset: the text goes, the box keeps its value, the rows stay for the next Edit.
        type("txtRefName", "typed");
        search("tax");
        press(0);
        QVERIFY(!panelShown());
        QCOMPARE(searchText->text(), QString());
        QCOMPARE(text("txtRefName"), QString());
        QVERIFY(!ctl<QCheckBox>("chkShowAll")->isChecked());
        QCOMPARE(names(), QStringList({"The ABC of tax"}));
        // Edit keeps the box as the user left it: an empty search lists all.
        press(1);
        QVERIFY(searchText->isEnabled());
        QCOMPARE(rows().size(), 5);
        ctl<QCheckBox>("chkShowAll")->setChecked(true);
        QVERIFY(!searchText->isEnabled());
        QCOMPARE(messages(), QStringList());
    }

    // Edit over a loaded row keeps it: Save updates it, whatever the panel shows.
    void theLoadAndItsSixteenBitKey() {
        form().Show();
        press(1);
        emit ctl<platform::ListView>("lstRef")->DblClick(); // empty list: nothing
        QCOMPARE(messages(), QStringList());

        env->exec(
            "insert into \"References\" values(7,'  Notary  ','  two\nlines  ','  https://n.example  ',1)");
        addRow(40000, "Far", "https://far.example");
        press(1);
        dblClick("Notary");
        QVERIFY(!panelShown());
        QCOMPARE(form().CurrentRowID, 7);
        QCOMPARE(text("txtRefName"), QStringLiteral("Notary"));
        QCOMPARE(ctl<QPlainTextEdit>("txtParticulars")->toPlainText(), QStringLiteral("two\nlines"));
        QCOMPARE(text("txtLink"), QStringLiteral("https://n.example"));

        type("txtLink", "https://notary.example");
        press(1);
        QVERIFY(panelShown());
        dblClick("Far");
        QCOMPARE(messages(), QStringList({"16:Overflow"}));
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("OnlineLink", 7), QStringLiteral("https://notary.example"));
        QCOMPARE(env->count("References"), 2);
        QVERIFY(!panelShown());
    }

    void longAndForeignText() {
        form().Show();
        const QString particulars = QString(10000, QLatin1Char('p'));
        // No box has a limit of its own.
        const QString link = QStringLiteral("https://example.org/") + QString(40000, QLatin1Char('a'));
        const QString name = QStringLiteral("Łódź Ωmega 東京 €");
        ctl<QLineEdit>("txtRefName")->setText(name);
        ctl<QPlainTextEdit>("txtParticulars")->setPlainText(particulars);
        ctl<QLineEdit>("txtLink")->setText(link);
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        press(1);
        dblClick(name);
        QCOMPARE(ctl<QPlainTextEdit>("txtParticulars")->toPlainText(), particulars);
        QCOMPARE(text("txtLink"), link);
        QCOMPARE(text("txtRefName"), name);
    }

    // Printing reads the whole table anew, whatever the search shows and whoever asks; a
    // missing database is told, and the screen goes on.
    void printingAndAMissingDatabase() {
        form().Show();
        env->removeDatabase();
        for (int i : {4, 1, 2}) {
            enter("Court", "", "https://court.example");
            press(i);
            // Printing has the data layer's own words; the screen's routines the connection's.
            const QStringList told = messages();
            QCOMPARE(told.size(), 1);
            QVERIFY2(told[0].startsWith(i == 4 ? "16:" : "48:Database not found"), qPrintable(told[0]));
        }
        QCOMPARE(text("txtRefName"), QStringLiteral("Court"));
        env->createDatabase();
        addRow(1, "Tax office", "https://tax.example");
        testsupport::setSession(2, QStringLiteral("User"));
        press(4);
        QVERIFY(reports::RptInternetRef().isShown());
        QCOMPARE(printedNames(), QStringList({"Tax office"}));

        testsupport::setSession(1, QStringLiteral("Modify"));
        enter("Bank", "Current account", "https://bank.example");
        press(2);
        press(1);
        ctl<QCheckBox>("chkShowAll")->setChecked(false);
        search("tax");
        press(4);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(printedNames(), QStringList({"Bank", "Tax office"}));
        QCOMPARE(reports::RptInternetRef().pages().pages[0].textOf("txtParticulars"),
                 QStringList({"Current account"})); // the empty one prints as nothing
    }

    // Another seat holding the write lock makes this save wait, then take the next key.
    void twoSeatsNeverShareAKey() {
        form().Show();
        enter("Mine", "", "https://mine.example");
        testsupport::OtherSeat other([](const auto& seat) {
            seat->Execute("insert into \"References\" values(1,'Theirs','','https://theirs.example',2)");
        });
        press(2);
        QVERIFY(other.finish());
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored("RefName", 2), QStringLiteral("Mine"));
    }

    // The toolbar entry opens the screen inside the main window.
    void theToolbarOpensIt() {
        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().entryClick(QStringLiteral("ImgInternetRef"));
        QVERIFY(form().isLoaded());
        QVERIFY(qobject_cast<QMdiSubWindow*>(form().window()->parentWidget()));
        form().Unload();
        MDI::instance().Unload();
    }
};

QTEST_MAIN(TestReferences)
#include "tst_references.moc"
