// The internet references driven by their controls: the two required fields, the duplicate
// test with its quote swap for new rows only, the search panel, the load through the hidden
// key, and printing.
#include "addressbooks/frmReferences.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");
const QString Duplicate = QStringLiteral("48:Duplicate Reference details not allowed.");

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
    testsupport::Screen<frmReferences> screen;

    void enter(const QString& name, const QString& particulars, const QString& link) const {
        screen.type("txtRefName", name);
        screen.paste("txtParticulars", particulars);
        screen.type("txtLink", link);
    }
    // The names in the list.
    QStringList names() const {
        QStringList out;
        for (const QString& row : screen.rows("lstRef"))
            out << row.section(QLatin1Char('|'), 1, 1);
        return out;
    }
    void search(const QString& part) const {
        screen.type("txtSearchName", part);
        screen.press("cmdSearch");
    }
    QString stored(const char* column, int id) const {
        return env->scalar(QStringLiteral("select %1 from \"References\" where RefID=%2").arg(column).arg(id))
            .toString();
    }
    void addRow(int id, const QString& name, const QString& link) const {
        env->exec(
            QStringLiteral("insert into \"References\" values(%1,'%2','','%3',1)").arg(id).arg(name, link));
    }

  private slots:
    void init() { env = testsupport::startCase(); }
    void cleanup() { testsupport::endCase(env); }

    void theNameAndTheLinkAreRequired() {
        screen->Show();
        testsupport::setSession(3, QStringLiteral("Save"));
        enter("  ", "notes", "https://example.org");
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify Reference name."}));
        enter("Tax office", "notes", "   ");
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify Link."}));
        QCOMPARE(screen.text("txtParticulars"), QStringLiteral("notes"));
        QCOMPARE(env->count("References"), 0);

        enter("  Tax office  ", "", " https://tax.example.gov ");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("RefName||'|'||Particulars||'|'||OnlineLink||'|'||UpdatedBy", 1),
                 QStringLiteral("Tax office||https://tax.example.gov|3"));
        QCOMPARE(screen.text("txtRefName"), QString());
    }

    // The name alone is tested, without regard to case; a new name has its quotes swapped
    // first, an edited one does not.
    void duplicatesAndQuotes() {
        addRow(1, "Bank", "https://bank.example");
        addRow(2, "Court", "https://court.example");
        screen->Show();
        enter("BANK", "", "https://elsewhere.example");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        QCOMPARE(screen.text("txtRefName"), QStringLiteral("BANK"));
        QVERIFY(!GenMod::Conn);
        enter("Bank 2", "", "https://bank.example"); // the same link is allowed
        QCOMPARE(screen.pressed(2), QStringList({Saved}));

        enter("O'Neil", "Tom's notes", "https://x.example/?q='a'");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("RefName||'|'||Particulars||'|'||OnlineLink", 4),
                 QStringLiteral("O`Neil|Tom`s notes|https://x.example/?q=`a`"));
        enter("O'Neil", "", "https://y.example");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));

        // Loaded rows: unchanged passes; another's name is refused; a quote breaks the test.
        screen.press(1);
        screen.dblClick("lstRef", "O`Neil", 1);
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        screen.press(1);
        screen.dblClick("lstRef", "Court", 1);
        screen.type("txtRefName", "bank");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        QVERIFY(screen->EditMode);
        QCOMPARE(screen->CurrentRowID, 2);
        screen.type("txtRefName", "O'Neil");
        screen.press(2);
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:", Saved}));
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
        screen->Show();
        screen.press(1);
        QCOMPARE(names(),
                 QStringList({"50% off", "abc Motors", "Land_registry", "The ABC of tax", "Zoning board"}));
        QCOMPARE(screen.rows("lstRef").constFirst(), QStringLiteral("4|50% off|https://p.example"));
        auto* searchText = screen.ctl<QLineEdit>("txtSearchName");
        auto* showAll = screen.ctl<QCheckBox>("chkShowAll");
        QVERIFY(!searchText->isEnabled());

        screen.click("lblShowAll");
        QVERIFY(!showAll->isChecked());
        QVERIFY(searchText->isEnabled());
        search("abc");
        QCOMPARE(names(), QStringList({"abc Motors", "The ABC of tax"}));
        search("");
        QCOMPARE(screen.rows("lstRef").size(), 5);
        screen.type("txtSearchName", "0%o");
        QTest::keyClick(searchText, Qt::Key_Return); // Enter searches too
        QCOMPARE(names(), QStringList({"50% off"}));
        search("it's");
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QCOMPARE(names(), QStringList({"50% off"}));
        QVERIFY(!GenMod::Conn);

        // Reset: the text goes, the box keeps its value, the rows stay for the next Edit.
        screen.type("txtRefName", "typed");
        search("tax");
        screen.press(0);
        QVERIFY(!screen.isShown("fraList"));
        QCOMPARE(searchText->text(), QString());
        QCOMPARE(screen.text("txtRefName"), QString());
        QVERIFY(!showAll->isChecked());
        QCOMPARE(names(), QStringList({"The ABC of tax"}));
        // Edit keeps the box as the user left it: an empty search lists all.
        screen.press(1);
        QVERIFY(searchText->isEnabled());
        QCOMPARE(screen.rows("lstRef").size(), 5);
        showAll->setChecked(true);
        QVERIFY(!searchText->isEnabled());
        QCOMPARE(messages(), QStringList());
    }

    // Edit over a loaded row keeps it: Save updates it, whatever the panel shows.
    void theLoadAndItsSixteenBitKey() {
        screen->Show();
        screen.press(1);
        emit screen.ctl<platform::ListView>("lstRef")->DblClick(); // empty list: nothing
        QCOMPARE(messages(), QStringList());

        env->exec(
            "insert into \"References\" values(7,'  Notary  ','  two\nlines  ','  https://n.example  ',1)");
        addRow(40000, "Far", "https://far.example");
        screen.press(1);
        screen.dblClick("lstRef", "Notary", 1);
        QVERIFY(!screen.isShown("fraList"));
        QCOMPARE(screen->CurrentRowID, 7);
        QCOMPARE(screen.values("txtRefName txtParticulars txtLink"),
                 QStringLiteral("Notary|two\nlines|https://n.example"));

        screen.type("txtLink", "https://notary.example");
        screen.press(1);
        QVERIFY(screen.isShown("fraList"));
        screen.dblClick("lstRef", "Far", 1);
        QCOMPARE(messages(), QStringList({"16:Overflow"}));
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored("OnlineLink", 7), QStringLiteral("https://notary.example"));
        QCOMPARE(env->count("References"), 2);
        QVERIFY(!screen.isShown("fraList"));
    }

    // The screen opens without the data store. Printing reads the whole table anew, whatever
    // the search shows and whoever asks.
    void printing() {
        env->removeDatabase();
        screen->Show();
        QCOMPARE(messages(), QStringList());
        env->createDatabase();
        addRow(1, "Tax office", "https://tax.example");
        testsupport::setSession(2, QStringLiteral("User"));
        screen.press(4);
        QVERIFY(reports::RptInternetRef().isShown());
        QCOMPARE(printedNames(), QStringList({"Tax office"}));

        testsupport::setSession(1, QStringLiteral("Modify"));
        enter("Bank", "Current account", "https://bank.example");
        screen.press(2);
        screen.press(1);
        screen.ctl<QCheckBox>("chkShowAll")->setChecked(false);
        search("tax");
        QCOMPARE(screen.pressed(4), QStringList({Saved}));
        QCOMPARE(printedNames(), QStringList({"Bank", "Tax office"}));
        QCOMPARE(reports::RptInternetRef().pages().pages[0].textOf("txtParticulars"),
                 QStringList({"Current account"})); // the empty one prints as nothing
    }
};

QTEST_MAIN(TestReferences)
#include "tst_references.moc"
