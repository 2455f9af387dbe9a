// The four classification screens driven by their controls: rights, required fields,
// duplicates, captions, the cascade of parents and the lifecycle of the edit cycle.
#include "classification/frmDocCat.h"
#include "classification/frmDocChildCat.h"
#include "classification/frmDocSubCat.h"
#include "classification/frmDocType.h"
#include "platform/Controls.h"
#include "session/GenMod.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using namespace testsupport;

namespace {

const QString NotFound =
    QStringLiteral("48:Database not found !\nPlease check your ODBC Datasource Configuration.");
const QString Saved = QStringLiteral("64:Saved Successfully.");

// What differs between the two flat screens, for the cases that hold for both.
struct FlatScreen {
    RecordForm* form;
    const char* text;
    const char* list;
    QString table, keyColumn, nameColumn, emptyMessage, duplicateMessage;
};

FlatScreen typeScreen() {
    return {&frmDocType::instance(),
            "txtDocType",
            "lstType",
            "DocumentType",
            "TypeID",
            "DocType",
            "48:Please specify Document type.",
            "48:Duplicate Document Type not allowed."};
}
FlatScreen categoryScreen() {
    return {&frmDocCat::instance(),
            "txtDocCategory",
            "lstCategory",
            "DocumentCategory",
            "CatID",
            "DocCategory",
            "48:Please specify Document Category.",
            "48:Duplicate Document Category not allowed."};
}

QList<RecordForm*> allScreens() {
    return {&frmDocType::instance(), &frmDocCat::instance(), &frmDocSubCat::instance(),
            &frmDocChildCat::instance()};
}

} // namespace

Q_DECLARE_METATYPE(FlatScreen)

class TestClassification : public QObject {
    Q_OBJECT
    std::unique_ptr<testsupport::TestEnvironment> env;

    QString name(const QString& table, const QString& column, const QString& key, int id) const {
        return env->scalar(QStringLiteral("select %1 from %2 where %3=%4").arg(column, table, key).arg(id))
            .toString();
    }

    // Categories 1 "Accounts", 2 "Bank"; sub-categories 10 "Invoices" and 11 "Receipts" under
    // Accounts, 12 "Statements" under Bank; child category 100 "2023" under Accounts/Invoices.
    static void addFlatScreens() {
        QTest::addColumn<FlatScreen>("screen");
        QTest::newRow("frmDocType") << typeScreen();
        QTest::newRow("frmDocCat") << categoryScreen();
    }

    void seedTree() const {
        env->exec("insert into DocumentCategory values(1,'Accounts',1)");
        env->exec("insert into DocumentCategory values(2,'Bank',1)");
        env->exec("insert into DocumentSubCategory values(10,1,'Invoices',1)");
        env->exec("insert into DocumentSubCategory values(11,1,'Receipts',1)");
        env->exec("insert into DocumentSubCategory values(12,2,'Statements',1)");
        env->exec("insert into DocumentChildCategory values(100,1,10,'2023',1)");
    }

  private slots:
    void init() {
        for (auto* form : allScreens()) {
            form->Unload();
            form->EditMode = false;
            form->CurrentRowID = 0;
        }
        env = std::make_unique<testsupport::TestEnvironment>();
        testsupport::setSession(1, QStringLiteral("Modify"));
        messages();
    }
    void cleanup() {
        for (auto* form : allScreens())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        env.reset();
    }

    // ---- the screens as designed

    void screensHaveTheirControlsAndDefaultCaptions() {
        struct Expect {
            RecordForm* form;
            QString title;
            QList<std::pair<const char*, QString>> labels;
            const char* text;
            const char* list;
        };
        const QList<Expect> expected = {
            {&frmDocType::instance(),
             "Document Type",
             {{"lblDocType", "Document Type :"}},
             "txtDocType",
             "lstType"},
            {&frmDocCat::instance(),
             "Document Category",
             {{"lblDocCategory", "Document Category :"}},
             "txtDocCategory",
             "lstCategory"},
            {&frmDocSubCat::instance(),
             "Document Sub-Category",
             {{"lblDocCategory", "Document Category :"}, {"lblDocSubCategory", "Document Sub-Category :"}},
             "txtDocSubCat",
             "lstSubCategory"},
            {&frmDocChildCat::instance(),
             "Document Child Category",
             {{"lblDocCategory", "Document Category :"},
              {"lblDocSubCategory", "Document Sub-Category :"},
              {"lblDocChildCategory", "Document Child Category :"}},
             "txtChildCat",
             "lstChildCategory"},
        };
        for (const auto& e : expected) {
            e.form->Show();
            QCOMPARE(e.form->window()->windowTitle(), e.title);
            for (const auto& [label, caption] : e.labels) {
                auto* l = ctl<QLabel>(*e.form, label);
                QCOMPARE(l->text(), caption);
                QVERIFY(l->buddy());
                QCOMPARE(l->buddy()->accessibleName(), caption);
            }
            QCOMPARE(ctl<QLineEdit>(*e.form, e.text)->maxLength(), 25);
            QVERIFY(!isShown(*e.form, e.list));
            QCOMPARE(ctl<QWidget>(*e.form, e.list)->toolTip(),
                     QStringLiteral("Double click a record to edit"));
            const QStringList captions = {"Reset", "Edit", "Save", "Close"};
            for (int i = 0; i < 4; ++i)
                QCOMPARE(e.form->cmd(i)->text(), captions[i]);
            // Tab order: the fields from the top, the name, the list, then the buttons.
            QStringList order;
            for (const auto& label : e.labels)
                order << ctl<QLabel>(*e.form, label.first)->buddy()->objectName();
            order << e.list << "cmd(0)"
                  << "cmd(1)"
                  << "cmd(2)"
                  << "cmd(3)";
            QCOMPARE(tabOrder(e.form->window()), order);
        }
        QCOMPARE(messages(), QStringList());
    }

    void captionsFollowTheOfficesFieldNames() {
        env->exec("insert into FieldCaptions values(' Department ','Section','Sub "
                  "Section','Folder','Subject','Ref')");
        frmDocType::instance().Show();
        frmDocCat::instance().Show();
        frmDocSubCat::instance().Show();
        frmDocChildCat::instance().Show();
        QCOMPARE(frmDocType::instance().window()->windowTitle(), QStringLiteral("Department"));
        QCOMPARE(ctl<QLabel>(frmDocType::instance(), "lblDocType")->text(), QStringLiteral("Department :"));
        QCOMPARE(ctl<QLineEdit>(frmDocType::instance(), "txtDocType")->accessibleName(),
                 QStringLiteral("Department :"));
        QCOMPARE(frmDocCat::instance().window()->windowTitle(), QStringLiteral("Section"));
        QCOMPARE(frmDocSubCat::instance().window()->windowTitle(), QStringLiteral("Sub Section"));
        QCOMPARE(ctl<QLabel>(frmDocSubCat::instance(), "lblDocCategory")->text(),
                 QStringLiteral("Section :"));
        QCOMPARE(frmDocChildCat::instance().window()->windowTitle(), QStringLiteral("Folder"));
        QCOMPARE(ctl<QLabel>(frmDocChildCat::instance(), "lblDocSubCategory")->text(),
                 QStringLiteral("Sub Section :"));
        QCOMPARE(ctl<QLabel>(frmDocChildCat::instance(), "lblDocChildCategory")->text(),
                 QStringLiteral("Folder :"));
        QCOMPARE(ctl<QComboBox>(frmDocChildCat::instance(), "cboDocSubCategory")->accessibleName(),
                 QStringLiteral("Sub Section :"));

        // An emptied name gives a bare " :" and no title; an open screen keeps its captions
        // until it is opened again.
        env->exec("update FieldCaptions set DocType=''");
        QCOMPARE(frmDocType::instance().window()->windowTitle(), QStringLiteral("Department"));
        press(frmDocType::instance(), 3);
        frmDocType::instance().Show();
        QCOMPARE(ctl<QLabel>(frmDocType::instance(), "lblDocType")->text(), QStringLiteral(" :"));
        QCOMPARE(frmDocType::instance().window()->windowTitle(), QString());
        QCOMPARE(messages(), QStringList());
    }

    void aMissingDatabaseAtLoadLeavesTheDesignCaptions() {
        env->exec("insert into FieldCaptions values('Department','Section','Sub Section','Folder','S','R')");
        env->removeDatabase();
        frmDocType::instance().Show();
        frmDocChildCat::instance().Show();
        QCOMPARE(messages(), QStringList({NotFound, NotFound}));
        QCOMPARE(frmDocType::instance().window()->windowTitle(), QStringLiteral("Document Type"));
        QCOMPARE(ctl<QLabel>(frmDocChildCat::instance(), "lblDocChildCategory")->text(),
                 QStringLiteral("Document Child Category :"));
        QCOMPARE(ctl<QComboBox>(frmDocChildCat::instance(), "cboDocCategory")->count(), 0);
    }

    // ---- the flat screens: types and categories

    void flatScreen_addAndDuplicates_data() { addFlatScreens(); }
    void flatScreen_addAndDuplicates() {
        QFETCH(FlatScreen, screen);
        RecordForm& f = *screen.form;
        f.Show();

        type(f, screen.text, "  Letters  ");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(name(screen.table, screen.nameColumn, screen.keyColumn, 1), QStringLiteral("Letters"));
        QCOMPARE(env->scalar("select UpdatedBy from " + screen.table).toInt(), 1);
        QCOMPARE(text(f, screen.text), QString());
        QVERIFY(!f.EditMode);
        QCOMPARE(f.CurrentRowID, 0);

        // Blanks only count as empty; letter case does not make another name.
        type(f, screen.text, "   ");
        press(f, 2);
        QCOMPARE(messages(), QStringList({screen.emptyMessage}));
        type(f, screen.text, "LETTERS");
        press(f, 2);
        QCOMPARE(messages(), QStringList({screen.duplicateMessage}));
        QCOMPARE(text(f, screen.text), QStringLiteral("LETTERS"));
        QCOMPARE(env->count(screen.table), 1);

        // The box takes no more than 25 characters.
        type(f, screen.text, QString(30, QLatin1Char('x')));
        QCOMPARE(text(f, screen.text).size(), 25);

        type(f, screen.text, "Memos");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(name(screen.table, screen.nameColumn, screen.keyColumn, 2), QStringLiteral("Memos"));
        QVERIFY(!GenMod::Conn); // no connection outlives the operation
    }

    void flatScreen_editRenameAndReset_data() { addFlatScreens(); }
    void flatScreen_editRenameAndReset() {
        QFETCH(FlatScreen, screen);
        RecordForm& f = *screen.form;
        env->exec(QStringLiteral("insert into %1 values(4,'Memos',1)").arg(screen.table));
        env->exec(QStringLiteral("insert into %1 values(7,'Letters',1)").arg(screen.table));
        f.Show();

        press(f, 1);
        QVERIFY(isShown(f, screen.list));
        QCOMPARE(listRows(f, screen.list), QStringList({"Letters", "Memos"}));
        press(f, 1); // a second Edit fills afresh, without doubling
        QCOMPARE(listRows(f, screen.list), QStringList({"Letters", "Memos"}));

        dblClick(f, screen.list, "Letters");
        QVERIFY(f.EditMode);
        QCOMPARE(f.CurrentRowID, 7);
        QCOMPARE(text(f, screen.text), QStringLiteral("Letters"));
        QVERIFY(!isShown(f, screen.list));

        // Saved under its own name: the row itself is left out of the duplicate test.
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QVERIFY(!f.EditMode);

        press(f, 1);
        dblClick(f, screen.list, "Letters");
        type(f, screen.text, "memos");
        press(f, 2);
        QCOMPARE(messages(), QStringList({screen.duplicateMessage}));
        QVERIFY(f.EditMode);
        QCOMPARE(f.CurrentRowID, 7);

        // Edit while editing keeps the loaded row and the typed text.
        press(f, 1);
        QVERIFY(f.EditMode);
        QCOMPARE(text(f, screen.text), QStringLiteral("memos"));

        type(f, screen.text, "Letters out");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(name(screen.table, screen.nameColumn, screen.keyColumn, 7), QStringLiteral("Letters out"));
        QCOMPARE(env->count(screen.table), 2);
        QVERIFY(!isShown(f, screen.list));

        // Reset while the list is shown hides it and drops the loaded row.
        press(f, 1);
        dblClick(f, screen.list, "Memos");
        press(f, 1);
        press(f, 0);
        QVERIFY(!isShown(f, screen.list));
        QVERIFY(!f.EditMode);
        QCOMPARE(f.CurrentRowID, 0);
        QCOMPARE(text(f, screen.text), QString());
        QCOMPARE(messages(), QStringList());
    }

    void rightsComeBeforeEverythingElse() {
        frmDocType& f = frmDocType::instance();
        env->exec("insert into DocumentType values(1,'Letters',1)");
        f.Show();

        testsupport::setSession(3, "User");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Save or Modify data."}));

        // "Save" may add but not change: a loaded row is refused before its empty name is seen.
        testsupport::setSession(3, "Save");
        press(f, 1);
        dblClick(f, "lstType", "Letters");
        type(f, "txtDocType", "");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
        press(f, 0);
        type(f, "txtDocType", "Letters");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Duplicate Document Type not allowed."}));
        type(f, "txtDocType", "Notes");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->scalar("select UpdatedBy from DocumentType where TypeID=2").toInt(), 3);

        // No rights column set: as "Save".
        testsupport::setSession(4, "");
        type(f, "txtDocType", "Orders");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        press(f, 1);
        dblClick(f, "lstType", "Orders");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:You donot have rights to Modify data."}));
        QCOMPARE(env->count("DocumentType"), 3);
    }

    void anApostropheIsSavedAsABacktick() {
        frmDocCat& f = frmDocCat::instance();
        env->exec("insert into DocumentCategory values(1,'Tom`s',1)");
        f.Show();
        type(f, "txtDocCategory", "Tom's");
        press(f, 2);
        // The raw name breaks the duplicate test, which shows the data layer's error and
        // reads as no duplicate; the row is then stored with a back-tick.
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY2(shown[0].startsWith("16:"), qPrintable(shown[0]));
        QCOMPARE(shown[1], Saved);
        QCOMPARE(env->count("DocumentCategory"), 2);
        QCOMPARE(name("DocumentCategory", "DocCategory", "CatID", 2), QStringLiteral("Tom`s"));

        // Nothing beyond the quote runs as a statement.
        type(f, "txtDocCategory", "x'; delete from Logins; --");
        press(f, 2);
        QCOMPARE(messages().last(), Saved);
        QCOMPARE(env->count("Logins"), 1);
    }

    void theListsDoubleClick() {
        frmDocType& f = frmDocType::instance();
        f.Show();
        // An empty list: nothing happens.
        press(f, 1);
        QVERIFY(isShown(f, "lstType"));
        emit ctl<platform::ListBox>(f, "lstType")->DblClick();
        QVERIFY(!f.EditMode);
        QCOMPARE(messages(), QStringList());

        // A key beyond 16 bits cannot be loaded: the overflow is shown and the screen goes on.
        env->exec("insert into DocumentType values(40000,'Big',1)");
        env->exec("insert into DocumentType values(5,'Small',1)");
        press(f, 1);
        dblClick(f, "lstType", "Big");
        QCOMPARE(messages(), QStringList({"16:Overflow"}));
        QVERIFY(!f.EditMode);
        QVERIFY(isShown(f, "lstType"));

        // A double click with no row selected.
        auto* list = ctl<platform::ListBox>(f, "lstType");
        list->setCurrentRow(-1);
        emit list->DblClick();
        QCOMPARE(messages().size(), 1);

        // From the keyboard: Edit hands the list the focus, and a picked row hands it to the name.
        press(f, 1);
        QCOMPARE(f.window()->focusWidget(), ctl<platform::ListBox>(f, "lstType"));
        dblClick(f, "lstType", "Small");
        QCOMPARE(f.CurrentRowID, 5);
        QCOMPARE(f.window()->focusWidget(), ctl<QLineEdit>(f, "txtDocType"));
        QCOMPARE(messages(), QStringList());
    }

    void editModeSurvivesClose() {
        frmDocType& f = frmDocType::instance();
        env->exec("insert into DocumentType values(3,'Letters',1)");
        f.Show();
        press(f, 1);
        dblClick(f, "lstType", "Letters");
        type(f, "txtDocType", "Changed but not saved");
        press(f, 3);
        QVERIFY(!f.isLoaded());
        QCOMPARE(name("DocumentType", "DocType", "TypeID", 3), QStringLiteral("Letters"));

        // Opened again: empty as designed, but a Save updates the row last loaded.
        f.Show();
        QCOMPARE(text(f, "txtDocType"), QString());
        QVERIFY(!isShown(f, "lstType"));
        QVERIFY(f.EditMode);
        type(f, "txtDocType", "Post");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("DocumentType"), 1);
        QCOMPARE(name("DocumentType", "DocType", "TypeID", 3), QStringLiteral("Post"));
    }

    // Without a mouse: Enter on the focused Save button saves; Escape throws nothing away.
    void theKeyboardAloneSavesAndCloses() {
        frmDocType& f = frmDocType::instance();
        f.Show();
        QVERIFY(QTest::qWaitForWindowActive(f.window()));
        type(f, "txtDocType", "Letters");
        f.cmd(2)->setFocus();
        QTest::keyClick(f.cmd(2), Qt::Key_Return);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("DocumentType"), 1);
        type(f, "txtDocType", "Memos");
        QTest::keyClick(ctl<QLineEdit>(f, "txtDocType"), Qt::Key_Escape);
        QCOMPARE(text(f, "txtDocType"), QStringLiteral("Memos"));
    }

    void theDataStoreGoingAway() {
        frmDocType& f = frmDocType::instance();
        env->exec("insert into DocumentType values(1,'Letters',1)");
        f.Show();
        press(f, 1);
        env->takeDatabaseAway();

        press(f, 1);
        QCOMPARE(messages(), QStringList({NotFound}));
        dblClick(f, "lstType", "Letters");
        QCOMPARE(messages(), QStringList({NotFound}));
        QVERIFY(!f.EditMode);
        type(f, "txtDocType", "Notes");
        press(f, 2);
        QCOMPARE(messages(), QStringList({NotFound}));
        QCOMPARE(text(f, "txtDocType"), QStringLiteral("Notes"));

        env->bringDatabaseBack();
        QCOMPARE(env->count("DocumentType"), 1);
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->count("DocumentType"), 2);
    }

    void aFailedStatementWritesNothing() {
        frmDocType& f = frmDocType::instance();
        f.Show();
        // The table has gone: the duplicate test reports it, then the Insert fails, and the
        // key taken for it stays with the new row.
        env->exec("alter table DocumentType rename to OldTypes");
        type(f, "txtDocType", "Letters");
        press(f, 2);
        const QStringList shown = messages();
        QVERIFY2(shown.size() >= 2, qPrintable(shown.join('|')));
        for (const auto& m : shown)
            QVERIFY2(m.startsWith("16:"), qPrintable(m));
        QVERIFY(!f.EditMode);
        QCOMPARE(text(f, "txtDocType"), QStringLiteral("Letters"));
        QVERIFY(!GenMod::Conn);
        env->exec("alter table OldTypes rename to DocumentType");
        QCOMPARE(env->count("DocumentType"), 0);
    }

    void twoSeatsNeverShareAKey() {
        frmDocType& f = frmDocType::instance();
        f.Show();
        // The other seat holds its transaction open while this one saves: this save waits for
        // the lock and then reads the other's key as the highest.
        OtherSeat other([](const std::shared_ptr<db::Connection>& seat) {
            db::Recordset rs;
            rs.Open("Select Max(TypeID) from DocumentType", seat);
            const int next = rs.Fields(0).toInt() + 1;
            rs.Close();
            seat->Execute(QStringLiteral("Insert into DocumentType values(%1,'Other seat',2)").arg(next));
        });
        type(f, "txtDocType", "This seat");
        press(f, 2);
        QVERIFY(other.finish());
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->scalar("select count(distinct TypeID) from DocumentType").toInt(), 2);
        QCOMPARE(env->scalar("select TypeID from DocumentType where DocType='This seat'").toInt(), 2);
    }

    // ---- sub-categories

    void subCategory_parentFirstThenName() {
        frmDocSubCat& f = frmDocSubCat::instance();
        f.Show();
        // No category at all: every save stops at the parent.
        type(f, "txtDocSubCat", "Invoices");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Category."}));

        press(f, 3);
        seedTree();
        f.Show();
        QCOMPARE(items(f, "cboDocCategory"), QStringList({"Accounts", "Bank"}));
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->ListIndex(), -1);
        pick(f, "cboDocCategory", "Bank");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));

        // The name is unique across all categories.
        type(f, "txtDocSubCat", "invoices");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Duplicate Document Sub-Category not allowed."}));
        type(f, "txtDocSubCat", "Loans");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->scalar("select CatID from DocumentSubCategory where SubCategory='Loans'").toInt(), 2);
        QCOMPARE(env->scalar("select SubCatID from DocumentSubCategory where SubCategory='Loans'").toInt(),
                 13);
        // Reset after the save: no choice, the items stay.
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->ListIndex(), -1);
        QCOMPARE(items(f, "cboDocCategory"), QStringList({"Accounts", "Bank"}));
    }

    void subCategory_loadAndMove() {
        seedTree();
        frmDocSubCat& f = frmDocSubCat::instance();
        f.Show();
        press(f, 1);
        // The list is of all sub-categories, whatever category is chosen.
        pick(f, "cboDocCategory", "Bank");
        QCOMPARE(listRows(f, "lstSubCategory"), QStringList({"Invoices", "Receipts", "Statements"}));

        // A row whose category is the first item loads as well as any.
        dblClick(f, "lstSubCategory", "Receipts");
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->currentText(), QStringLiteral("Accounts"));
        QCOMPARE(text(f, "txtDocSubCat"), QStringLiteral("Receipts"));
        QCOMPARE(f.CurrentRowID, 11);
        press(f, 1);
        dblClick(f, "lstSubCategory", "Statements");
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->currentText(), QStringLiteral("Bank"));

        // Saved with another category: the row moves, its children stay where they were.
        press(f, 1);
        dblClick(f, "lstSubCategory", "Invoices");
        type(f, "txtDocSubCat", "Receipts");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Duplicate Document Sub-Category not allowed."}));
        pick(f, "cboDocCategory", "Bank");
        type(f, "txtDocSubCat", "Invoices");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(env->scalar("select CatID from DocumentSubCategory where SubCatID=10").toInt(), 2);
        QCOMPARE(env->scalar("select CatID from DocumentChildCategory where ChildCatID=100").toInt(), 1);

        // Reset clears the choice and the text and keeps the items.
        press(f, 1);
        dblClick(f, "lstSubCategory", "Invoices");
        press(f, 0);
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->ListIndex(), -1);
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->count(), 2);
        QCOMPARE(text(f, "txtDocSubCat"), QString());
        QVERIFY(!f.EditMode);
    }

    // ---- child categories

    void childCategory_cascadeAndRequiredOrder() {
        seedTree();
        env->exec("insert into DocumentCategory values(3,'Empty',1)");
        frmDocChildCat& f = frmDocChildCat::instance();
        f.Show();
        QCOMPARE(items(f, "cboDocCategory"), QStringList({"Accounts", "Bank", "Empty"}));
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList());

        type(f, "txtChildCat", "2024");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Category."}));

        pick(f, "cboDocCategory", "Accounts");
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList({"Invoices", "Receipts"}));
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocSubCategory")->ListIndex(), -1);
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));

        pick(f, "cboDocSubCategory", "Receipts");
        type(f, "txtChildCat", " ");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Child Category."}));

        // Another category refills the sub-categories with none chosen.
        pick(f, "cboDocCategory", "Bank");
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList({"Statements"}));
        type(f, "txtChildCat", "2024");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));

        // A category without sub-categories leaves nothing to choose.
        pick(f, "cboDocCategory", "Empty");
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList());
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Please specify Document Sub-Category."}));

        // The name is unique across all sub-categories.
        pick(f, "cboDocCategory", "Bank");
        pick(f, "cboDocSubCategory", "Statements");
        type(f, "txtChildCat", "2023");
        press(f, 2);
        QCOMPARE(messages(), QStringList({"48:Duplicate Document Child Category not allowed."}));
        type(f, "txtChildCat", "2024");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(
            env->scalar("select CatID || '/' || SubCatID || '/' || ChildCatID from DocumentChildCategory "
                        "where ChildCategory='2024'")
                .toString(),
            QStringLiteral("2/12/101"));
        // Reset: no choices, and the sub-categories of the last category stay as items.
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->ListIndex(), -1);
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocSubCategory")->ListIndex(), -1);
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList({"Statements"}));
    }

    void childCategory_loadSetsBothParentsAndMoves() {
        seedTree();
        env->exec("insert into DocumentChildCategory values(101,2,12,'Monthly',1)");
        frmDocChildCat& f = frmDocChildCat::instance();
        f.Show();

        // Parents that are the first items of their lists.
        press(f, 1);
        QCOMPARE(listRows(f, "lstChildCategory"), QStringList({"2023", "Monthly"}));
        dblClick(f, "lstChildCategory", "2023");
        QCOMPARE(messages(), QStringList());
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->currentText(), QStringLiteral("Accounts"));
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList({"Invoices", "Receipts"}));
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocSubCategory")->currentText(), QStringLiteral("Invoices"));
        QCOMPARE(text(f, "txtChildCat"), QStringLiteral("2023"));
        QVERIFY(f.EditMode);
        QCOMPARE(f.CurrentRowID, 100);
        QVERIFY(!isShown(f, "lstChildCategory"));

        // Parents further down, after the cascade has run for the first category.
        press(f, 1);
        dblClick(f, "lstChildCategory", "Monthly");
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->currentText(), QStringLiteral("Bank"));
        QCOMPARE(items(f, "cboDocSubCategory"), QStringList({"Statements"}));
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocSubCategory")->currentText(),
                 QStringLiteral("Statements"));
        QCOMPARE(text(f, "txtChildCat"), QStringLiteral("Monthly"));
        QVERIFY(!GenMod::Conn);

        // Moved to other parents by a save.
        pick(f, "cboDocCategory", "Accounts");
        pick(f, "cboDocSubCategory", "Receipts");
        press(f, 2);
        QCOMPARE(messages(), QStringList({Saved}));
        QCOMPARE(
            env->scalar("select CatID || '/' || SubCatID || '/' || ChildCategory from DocumentChildCategory "
                        "where ChildCatID=101")
                .toString(),
            QStringLiteral("1/11/Monthly"));
        QCOMPARE(env->count("DocumentChildCategory"), 2);
    }

    void childCategory_aParentThatIsGoneLoadsWithNothingChosen() {
        seedTree();
        env->exec("insert into DocumentChildCategory values(102,9,99,'Orphan',1)");
        frmDocChildCat& f = frmDocChildCat::instance();
        f.Show();
        press(f, 1);
        dblClick(f, "lstChildCategory", "Orphan");
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocCategory")->ListIndex(), -1);
        QCOMPARE(text(f, "txtChildCat"), QStringLiteral("Orphan"));
        QVERIFY(f.EditMode);
        // The sub-category box still holds the first category's items; none of them is its parent.
        QCOMPARE(ctl<platform::ComboBox>(f, "cboDocSubCategory")->ListIndex(), -1);
        QCOMPARE(messages(), QStringList());
    }
};

QTEST_MAIN(TestClassification)
#include "tst_classification.moc"
