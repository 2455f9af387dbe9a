// The important contacts driven by their controls, where they differ from the references:
// the box that every Edit checks, the one required field, the duplicate test without any quote
// swap, and the nine fields of a row; then printing and a missing database.
#include "addressbooks/frmImpContacts.h"
#include "app/MDI.h"
#include "app/Startup.h"
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
const QString Duplicate = QStringLiteral("48:Duplicate Contact details not allowed.");
const char* const Boxes[] = {"txtName",  "txtAdd1", "txtAdd2", "txtAdd3",
                             "txtPhone", "txtCell", "txtFax",  "txtEmail"};

frmImpContacts& form() {
    return frmImpContacts::instance();
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

// The eight one-line boxes from "a|b|..." and the remarks.
void enter(const QString& fields, const QString& remarks = QString()) {
    const QStringList parts = fields.split(QLatin1Char('|'));
    for (int i = 0; i < 8; ++i) {
        // Keys are typed where the test keyboard has them; other characters are pasted.
        if (QString(parts.value(i)).toLatin1() == parts.value(i).toUtf8())
            type(Boxes[i], parts.value(i));
        else
            ctl<QLineEdit>(Boxes[i])->setText(parts.value(i));
    }
    ctl<QPlainTextEdit>("txtRemarks")->setPlainText(remarks);
}

QString shown() {
    QStringList parts;
    for (const char* box : Boxes)
        parts << text(box);
    return parts.join(QLatin1Char('|')) + QLatin1Char('|') + ctl<QPlainTextEdit>("txtRemarks")->toPlainText();
}

bool panelShown() {
    return testsupport::isShown(form(), QStringLiteral("fraList"));
}

QStringList rows() {
    return testsupport::listRows(form(), QStringLiteral("lstContacts"));
}

void dblClick(const QString& name) {
    testsupport::dblClick(form(), QStringLiteral("lstContacts"), name, 1);
}

void search(const QString& part) {
    type("txtSearchName", part);
    testsupport::press(form(), QStringLiteral("cmdSearch"));
}

} // namespace

class TestContacts : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString stored(int id) const {
        return env
            ->scalar(QStringLiteral(
                         "select FullName||'|'||Add1||'|'||Add2||'|'||Add3||'|'||Phone||'|'||Cell||'|'||"
                         "Fax||'|'||Email||'|'||Remarks from Contacts where ContactID=%1")
                         .arg(id))
            .toString();
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
        env->removeDatabase();
        form().Show();
        QCOMPARE(messages(), QStringList());
        QCOMPARE(form().window()->windowTitle(), QStringLiteral("Important Contacts"));
        const QList<std::pair<const char*, const char*>> captions = {
            {"lblName", "Name :"},       {"lblAddress", "Address :"},
            {"lblPhone", "Phone No. :"}, {"lblCell", "Cell No. :"},
            {"lblFax", "Fax No. :"},     {"lblEmail", "Email :"},
            {"Label1", "Remarks :"},     {"lblSearchRef", "Contact Name containing :"}};
        for (const auto& [label, caption] : captions)
            QCOMPARE(ctl<QLabel>(label)->text(), QString::fromLatin1(caption));
        QCOMPARE(testsupport::tabOrder(form().window()).mid(0, 9),
                 QStringList({"txtName", "txtAdd1", "txtAdd2", "txtAdd3", "txtPhone", "txtCell", "txtFax",
                              "txtEmail", "txtRemarks"}));
        QVERIFY(!ctl<QCheckBox>("chkShowAll")->isChecked());
        QVERIFY(!panelShown());
        auto* list = ctl<platform::ListView>("lstContacts");
        QStringList headers;
        for (int c = 0; c < list->model()->columnCount(); ++c)
            headers << list->model()->headerData(c, Qt::Horizontal).toString();
        QCOMPARE(headers, QStringList({"Contact ID", "Contact Name", "Phone", "Cell", "Email"}));
        QVERIFY(list->isColumnHidden(0));
    }

    // Every Edit checks the box and lists all, whatever was chosen; unchecked, Search matches a
    // part of the name. Reset keeps the box and the rows.
    void everyEditListsAll() {
        env->exec(
            "insert into Contacts values(1,'Dr Anne Hale','','','','555 0101','','','a@h.example','',1)");
        env->exec(
            "insert into Contacts values(2,'Hale & Sons','x','y','z','555 0202','07700','fax','','r',1)");
        env->exec("insert into Contacts values(3,'Bob Marsh','','','','','','','','',1)");
        form().Show();
        press(1);
        QCOMPARE(rows(), QStringList({"3|Bob Marsh|||", "1|Dr Anne Hale|555 0101||a@h.example",
                                      "2|Hale & Sons|555 0202|07700|"}));
        auto* box = ctl<QCheckBox>("chkShowAll");
        QVERIFY(box->isChecked());
        QVERIFY(!ctl<QLineEdit>("txtSearchName")->isEnabled());

        QTest::mouseClick(ctl<QLabel>("lblShowAll"), Qt::LeftButton);
        QVERIFY(!box->isChecked());
        search("HALE");
        QCOMPARE(rows().size(), 2);
        search("o'b");
        QVERIFY(messages().value(0).startsWith("16:"));
        QCOMPARE(rows().size(), 2);

        press(0);
        QVERIFY(!panelShown());
        QVERIFY(!box->isChecked());
        QCOMPARE(rows().size(), 2);
        press(1);
        QVERIFY(box->isChecked());
        QCOMPARE(ctl<QLineEdit>("txtSearchName")->text(), QString());
        QCOMPARE(rows().size(), 3);

        dblClick("Hale & Sons");
        QCOMPARE(shown(), QStringLiteral("Hale & Sons|x|y|z|555 0202|07700|fax||r"));
        QCOMPARE(form().CurrentRowID, 2);
        QCOMPARE(messages(), QStringList());
    }

    // Only the name is required and tested; no path swaps quotes, so a name with a quote breaks
    // the test, is saved with a back-tick, and can be saved twice.
    void theNameAloneCountsAndQuotesAreNeverTested() {
        form().Show();
        testsupport::setSession(2, QStringLiteral("User"));
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));
        testsupport::setSession(3, QStringLiteral("Save"));
        enter(" |1 Quay St||||||", "kept");
        press(2);
        QCOMPARE(messages(), QStringList({"48:Please specify Contact name."}));
        QCOMPARE(shown(), QStringLiteral(" |1 Quay St|||||||kept"));

        enter(" Anne Hale ");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored(1), QStringLiteral("Anne Hale||||||||"));
        QCOMPARE(env->scalar("select UpdatedBy from Contacts").toInt(), 3);
        enter("anne hale|other|||||||");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        enter("Bob|1 Quay St||||555||b@x", "same"); // every other field may repeat
        press(2);
        enter("Rob|1 Quay St||||555||b@x", "same");
        press(2);
        QCOMPARE(messages(), QStringList({Saved, Saved}));

        for (int i = 0; i < 2; ++i) {
            enter("O'Neil|St Mary's Rd||||||", "Tom's cousin");
            press(2);
            const QStringList told = messages();
            QCOMPARE(told.size(), 2);
            QVERIFY2(told[0].startsWith("16:"), qPrintable(told[0]));
            QCOMPARE(told[1], Saved);
        }
        QCOMPARE(stored(4), QStringLiteral("O`Neil|St Mary`s Rd|||||||Tom`s cousin"));
        QCOMPARE(env->scalar("select count(*) from Contacts where FullName='O`Neil'").toInt(), 2);

        // A loaded row: "Save" may not change it; "Modify" may, but not to another's name.
        press(1);
        dblClick("Bob");
        press(2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
        testsupport::setSession(1, QStringLiteral("Modify"));
        type("txtName", "ROB");
        press(2);
        QCOMPARE(messages(), QStringList({Duplicate}));
        type("txtName", "Bob Marsh");
        type("txtFax", "555 9");
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(stored(2), QStringLiteral("Bob Marsh|1 Quay St||||555|555 9|b@x|same"));
    }

    // No box has a limit of its own: an address of 40,000 characters is saved and loaded whole.
    void boxesTakeAnyLength() {
        form().Show();
        const QString address = QString(40000, QLatin1Char('a'));
        enter(QStringLiteral("Long|||||||"));
        ctl<QLineEdit>("txtAdd1")->setText(address); // pasted
        QCOMPARE(text("txtAdd1").size(), address.size());
        press(2);
        QCOMPARE(messages(), QStringList({Saved}));
        press(1);
        dblClick(QStringLiteral("Long"));
        QCOMPARE(text("txtAdd1"), address);
    }

    // Printing reads the whole table anew after new saves; a missing database is told on each
    // path, and the screen goes on.
    void printingAndAMissingDatabase() {
        form().Show();
        env->removeDatabase();
        for (int i : {4, 1, 2}) {
            enter("Court|||||||");
            press(i);
            // Printing has the data layer's own words; the screen's routines the connection's.
            const QStringList told = messages();
            QCOMPARE(told.size(), 1);
            QVERIFY2(told[0].startsWith(i == 4 ? "16:" : "48:Database not found"), qPrintable(told[0]));
        }
        env->createDatabase();
        press(4);
        QVERIFY(reports::RptContactList().isShown());
        QCOMPARE(reports::RptContactList().pages().pages[0].textOf("txtFullName"), QStringList());
        enter("Zed|||||||", "");
        press(2);
        enter("Amy|||||||", "");
        press(2);
        press(4);
        QCOMPARE(messages(), QStringList({Saved, Saved}));
        QCOMPARE(reports::RptContactList().pages().pages[0].textOf("txtFullName"),
                 QStringList({"Amy", "Zed"}));
    }

    // The toolbar entry opens the screen inside the main window.
    void theToolbarOpensIt() {
        MDI::setOnEnd([] {});
        wireScreens();
        MDI::instance().Show();
        MDI::instance().entryClick(QStringLiteral("ImgImpContact"));
        QVERIFY(form().isLoaded());
        QVERIFY(qobject_cast<QMdiSubWindow*>(form().window()->parentWidget()));
        form().Unload();
        MDI::instance().Unload();
    }
};

QTEST_MAIN(TestContacts)
#include "tst_contacts.moc"
