// The important contacts driven by their controls, where they differ from the references:
// the box that every Edit checks, the one required field, the duplicate test without any quote
// swap, and the nine fields of a row; then printing.
#include "addressbooks/frmImpContacts.h"
#include "reports/Reports.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

using testsupport::messages;

namespace {

const QString Saved = QStringLiteral("64:Saved Successfully.");
const QString Duplicate = QStringLiteral("48:Duplicate Contact details not allowed.");
const QString Boxes = QStringLiteral("txtName txtAdd1 txtAdd2 txtAdd3 txtPhone txtCell txtFax txtEmail");

} // namespace

class TestContacts : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;
    testsupport::Screen<frmImpContacts> screen;

    // The eight one-line boxes from "a|b|..." and the remarks.
    void enter(const QString& fields, const QString& remarks = QString()) const {
        screen.typeEach(Boxes, fields);
        screen.paste("txtRemarks", remarks);
    }
    QString shown() const { return screen.values(Boxes + " txtRemarks"); }
    void search(const QString& part) const {
        screen.type("txtSearchName", part);
        screen.press("cmdSearch");
    }
    QString stored(int id) const {
        return env
            ->scalar(QStringLiteral(
                         "select FullName||'|'||Add1||'|'||Add2||'|'||Add3||'|'||Phone||'|'||Cell||'|'||"
                         "Fax||'|'||Email||'|'||Remarks from Contacts where ContactID=%1")
                         .arg(id))
            .toString();
    }

  private slots:
    void init() { env = testsupport::startCase(); }
    void cleanup() { testsupport::endCase(env); }

    // Every Edit checks the box and lists all, whatever was chosen; unchecked, Search matches a
    // part of the name. Reset keeps the box and the rows.
    void everyEditListsAll() {
        env->exec(
            "insert into Contacts values(1,'Dr Anne Hale','','','','555 0101','','','a@h.example','',1)");
        env->exec(
            "insert into Contacts values(2,'Hale & Sons','x','y','z','555 0202','07700','fax','','r',1)");
        env->exec("insert into Contacts values(3,'Bob Marsh','','','','','','','','',1)");
        screen->Show();
        screen.press(1);
        QCOMPARE(screen.rows("lstContacts"),
                 QStringList({"3|Bob Marsh|||", "1|Dr Anne Hale|555 0101||a@h.example",
                              "2|Hale & Sons|555 0202|07700|"}));
        auto* box = screen.ctl<QCheckBox>("chkShowAll");
        QVERIFY(box->isChecked());

        screen.click("lblShowAll");
        QVERIFY(!box->isChecked());
        search("HALE");
        QCOMPARE(screen.rows("lstContacts").size(), 2);
        search("o'b");
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:"}));
        QCOMPARE(screen.rows("lstContacts").size(), 2);

        screen.press(0);
        QVERIFY(!screen.isShown("fraList"));
        QVERIFY(!box->isChecked());
        QCOMPARE(screen.rows("lstContacts").size(), 2);
        screen.press(1);
        QVERIFY(box->isChecked());
        QCOMPARE(screen.text("txtSearchName"), QString());
        QCOMPARE(screen.rows("lstContacts").size(), 3);

        screen.dblClick("lstContacts", "Hale & Sons", 1);
        QCOMPARE(shown(), QStringLiteral("Hale & Sons|x|y|z|555 0202|07700|fax||r"));
        QCOMPARE(screen->CurrentRowID, 2);
        QCOMPARE(messages(), QStringList());
    }

    // Only the name is required and tested; no path swaps quotes, so a name with a quote breaks
    // the test, is saved with a back-tick, and can be saved twice.
    void theNameAloneCountsAndQuotesAreNeverTested() {
        screen->Show();
        enter(" |1 Quay St||||||", "kept");
        QCOMPARE(screen.pressed(2), QStringList({"48:Please specify Contact name."}));
        QCOMPARE(shown(), QStringLiteral(" |1 Quay St|||||||kept"));

        testsupport::setSession(3, QStringLiteral("Save"));
        enter(" Anne Hale ");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored(1), QStringLiteral("Anne Hale||||||||"));
        QCOMPARE(env->scalar("select UpdatedBy from Contacts").toInt(), 3);
        testsupport::setSession(1, QStringLiteral("Modify"));
        enter("anne hale|other|||||||");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        enter("Bob|1 Quay St||||555||b@x", "same"); // every other field may repeat
        screen.press(2);
        enter("Rob|1 Quay St||||555||b@x", "same");
        QCOMPARE(screen.pressed(2), QStringList({Saved, Saved}));

        for (int i = 0; i < 2; ++i) {
            enter("O'Neil|St Mary's Rd||||||", "Tom's cousin");
            screen.press(2);
            QCOMPARE(testsupport::messageKinds(), QStringList({"16:", Saved}));
        }
        QCOMPARE(stored(4), QStringLiteral("O`Neil|St Mary`s Rd|||||||Tom`s cousin"));
        QCOMPARE(env->scalar("select count(*) from Contacts where FullName='O`Neil'").toInt(), 2);

        // A loaded row may not take another's name.
        screen.press(1);
        screen.dblClick("lstContacts", "Bob", 1);
        screen.type("txtName", "ROB");
        QCOMPARE(screen.pressed(2), QStringList({Duplicate}));
        screen.type("txtName", "Bob Marsh");
        screen.type("txtFax", "555 9");
        QCOMPARE(screen.pressed(2), QStringList({Saved}));
        QCOMPARE(stored(2), QStringLiteral("Bob Marsh|1 Quay St||||555|555 9|b@x|same"));
    }

    // The screen opens without the data store. Printing reads the whole table anew after new
    // saves; an empty table prints no row.
    void printing() {
        env->removeDatabase();
        screen->Show();
        QCOMPARE(messages(), QStringList());
        env->createDatabase();
        screen.press(4);
        QVERIFY(reports::RptContactList().isShown());
        QCOMPARE(reports::RptContactList().pages().pages[0].textOf("txtFullName"), QStringList());
        enter("Zed|||||||", "");
        screen.press(2);
        enter("Amy|||||||", "");
        screen.press(2);
        QCOMPARE(screen.pressed(4), QStringList({Saved, Saved}));
        QCOMPARE(reports::RptContactList().pages().pages[0].textOf("txtFullName"),
                 QStringList({"Amy", "Zed"}));
    }
};

QTEST_MAIN(TestContacts)
#include "tst_contacts.moc"
