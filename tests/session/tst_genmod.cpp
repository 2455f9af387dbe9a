#include "platform/Controls.h"
#include "session/GenMod.h"
#include "session/Session.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <algorithm>
#include <string>

using namespace GenMod;
using testsupport::messages;

class TestGenMod : public QObject {
    Q_OBJECT
  private slots:
    void init() {
        m_env = testsupport::startCase();
        QVERIFY(OpenConnection());
    }
    void cleanup() {
        CloseConnection();
        testsupport::endCase(m_env);
    }

    void fixQuotesSwapsEveryApostrophe() {
        QCOMPARE(FixQuotes(QStringLiteral("O'Brien's file")), QStringLiteral("O`Brien`s file"));
        QCOMPARE(FixQuotes(QStringLiteral("plain")), QStringLiteral("plain"));
        QCOMPARE(FixQuotes(QString()), QString());
    }

    void scrambleTextIsItsOwnInverseOnTheCodePage() {
        QCOMPARE(ScrambleText(QStringLiteral("A")), QString(QChar(190)));
        // The bytes the code page leaves undefined survive the round trip.
        QCOMPARE(ScrambleText(QStringLiteral("~")), QString(QChar(0x81)));
        // Code 216 becomes the apostrophe that breaks a statement.
        QCOMPARE(ScrambleText(QString(QChar(216))), QStringLiteral("'"));
        QCOMPARE(ScrambleText(QString()), QString());
    }

    // Every character, in or outside the code page: scrambled twice it comes back, and no two
    // scramble alike, so no text outside the code page lands on one of the code page's.
    void scrambleTextTellsEveryCharacterApart() {
        std::u32string all;
        for (char32_t c = 0; c <= 0x10FFFF; ++c)
            if (c < 0xD800 || c > 0xDFFF)
                all += c;
        const QString text = QString::fromUcs4(all.data(), qsizetype(all.size()));
        const QString scrambled = ScrambleText(text);
        QCOMPARE(ScrambleText(scrambled), text);
        QList<uint> out = scrambled.toUcs4();
        QCOMPARE(out.size(), qsizetype(all.size()));
        std::sort(out.begin(), out.end());
        QVERIFY(std::adjacent_find(out.begin(), out.end()) == out.end());
        QVERIFY(ScrambleText(QStringLiteral("\u0416\u0430\u043D\u043D\u0430")) != ScrambleText("?????"));
    }

    void getFieldValueAndRecordExists() {
        m_env->exec("insert into File values(1,'  F-1  ',NULL,1)");
        QCOMPARE(GetFieldValue("FileNumber", "File where FileID=1"), QStringLiteral("  F-1  "));
        QCOMPARE(GetFieldValue("Particulars", "File where FileID=1"), QStringLiteral("0"));
        QCOMPARE(GetFieldValue("FileNumber", "File where FileID=2"), QString());
        QVERIFY(RecordExists("FileID", "File where FileNumber='  f-1  '"));
        QVERIFY(!RecordExists("FileID", "File where FileID=2"));
        QVERIFY(messages().isEmpty());

        QCOMPARE(GetFieldValue("FileNumber", "NoSuchTable"), QString());
        QVERIFY(!RecordExists("FileID", "File where FileNumber='O'Brien'"));
        QCOMPARE(testsupport::messageKinds(), QStringList({"16:", "16:"}));
    }

    void fillsTrimAndStopAtANull() {
        m_env->exec("insert into DocumentType values(1,'  Bills ',1),(2,'   ',1),(3,NULL,1),(4,'Zeta',1)");
        platform::ListBox list;
        list.AddItem(QStringLiteral("stale"));
        FillList("TypeID, DocType", "DocumentType where TypeID<3 order by TypeID", &list);
        QCOMPARE(list.ListCount(), 2);
        QCOMPARE(list.item(0)->text(), QStringLiteral("Bills"));
        QCOMPARE(list.item(1)->text(), QString());
        QCOMPARE(list.ItemData(1), 2);
        QCOMPARE(list.ListIndex(), -1);
        QVERIFY(messages().isEmpty());

        FillList("TypeID, DocType", "DocumentType order by TypeID", &list);
        QCOMPARE(list.ListCount(), 2); // stops at the NULL, keeps what came before
        QVERIFY(messages().value(0).startsWith("16:"));

        platform::ComboBox combo;
        FillCombo("TypeID, DocType", "DocumentType where TypeID=99", &combo);
        QCOMPARE(combo.ListCount(), 0);
        QVERIFY(messages().isEmpty());
        FillCombo("TypeID, DocType", "DocumentType where TypeID in (1,4) order by DocType", &combo);
        QCOMPARE(combo.ItemData(1), 4);

        m_env->exec("insert into Logins values(2,'" + ScrambleText("clerk") + "','x',1,0,0,1)");
        FillUserList("UserID, UserName", "Logins order by UserID", &list);
        QCOMPARE(list.item(0)->text(), QStringLiteral("admin"));
        QCOMPARE(list.item(1)->text(), QStringLiteral("clerk"));
    }

    // A sorted control puts an item where it belongs; its key must land on that item.
    void keysFollowTheirItemsIntoSortedLists() {
        m_env->exec("insert into DocumentType values(1,'Zulu',1),(2,'alpha',1),(3,'Mike',1)");
        platform::ListBox list;
        list.setSorted(true);
        FillList("TypeID, DocType", "DocumentType order by TypeID", &list);
        platform::ComboBox combo;
        combo.setSorted(true);
        FillCombo("TypeID, DocType", "DocumentType order by TypeID", &combo);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(list.item(i)->text(), combo.itemText(i));
            QCOMPARE(list.ItemData(i), combo.ItemData(i));
        }
        QCOMPARE(list.item(0)->text(), QStringLiteral("alpha"));
        QCOMPARE(list.ItemData(0), 2);
        QCOMPARE(list.ItemData(2), 1);
        QCOMPARE(combo.ListIndex(), -1);
        QVERIFY(messages().isEmpty());
    }

    void findItemIndexSelectsTheFirstItemOnTheWay() {
        platform::ComboBox combo;
        for (int key : {5, 7, 7}) {
            combo.AddItem(QString::number(key));
            combo.setItemData(combo.NewIndex(), key);
        }
        int clicks = 0;
        connect(&combo, &platform::ComboBox::Click, this, [&] { ++clicks; });
        QCOMPARE(FindItemIndex("7", &combo), 1);
        QCOMPARE(clicks, 1);
        QCOMPARE(FindItemIndex("8", &combo), -1);
        QCOMPARE(combo.ListIndex(), 0);
        QVERIFY(messages().isEmpty());

        QCOMPARE(FindItemIndex("seven", &combo), -1);
        platform::ComboBox empty;
        QCOMPARE(FindItemIndex("7", &empty), -1);
        const QStringList shown = messages();
        QCOMPARE(shown.size(), 2);
        QVERIFY(shown[0].startsWith("16:"));
    }

    void nextIdFollowsTheHighestKey() {
        QCOMPARE(NextID("TypeID", "DocumentType"), 1);
        m_env->exec("insert into DocumentType values(7,'Bills',1)");
        QCOMPARE(NextID("TypeID", "DocumentType"), 8);
        m_env->exec("insert into DocumentType values(2147483647,'Last',1)");
        QCOMPARE(NextID("TypeID", "DocumentType"), 0);
        QVERIFY(messages().value(0).startsWith("16:"));
    }

    void readUserRightsTakesTheFirstSetColumn() {
        const auto rights = [&](int view, int save, int modify) {
            m_env->exec(QStringLiteral("update Logins set \"View\"=%1, \"Save\"=%2, \"Modify\"=%3")
                            .arg(view)
                            .arg(save)
                            .arg(modify));
            return ReadUserRights("Select UserID, View, Save, Modify from Logins where UserID=1");
        };
        Session::CurrentUserID = 0;
        QCOMPARE(rights(1, 0, 1), QStringLiteral("User"));
        QCOMPARE(Session::CurrentUserID, qint16(1));
        QCOMPARE(rights(0, 1, 0), QStringLiteral("Save"));
        QCOMPARE(rights(0, 0, 1), QStringLiteral("Modify"));
        QCOMPARE(rights(0, 0, 0), QString());
        Session::CurrentUserID = 5;
        QCOMPARE(ReadUserRights("Select UserID, View, Save, Modify from Logins where UserID=9"), QString());
        QCOMPARE(Session::CurrentUserID, qint16(5));
        QVERIFY(messages().isEmpty());
        QCOMPARE(ReadUserRights("Select UserID, Nothing from Logins"), QString());
        QVERIFY(messages().value(0).startsWith("16:"));
        // A UserID beyond 16 bits fails after the level was found: the level is not kept.
        m_env->exec("update Logins set UserID=40000, \"View\"=1");
        QCOMPARE(ReadUserRights("Select UserID, View, Save, Modify from Logins where UserID=40000"),
                 QString());
        QVERIFY(messages().value(0).startsWith("16:"));
        QCOMPARE(Session::CurrentUserID, qint16(5));
    }

    void openConnectionReportsAMissingDatabaseUntilItComesBack() {
        CloseConnection();
        m_env->takeDatabaseAway();
        QVERIFY(!OpenConnection());
        QCOMPARE(messages(),
                 QStringList{"48:Database not found !\nPlease check your ODBC Datasource Configuration."});
        QVERIFY(!QFile::exists(m_env->databasePath())); // never created by the program
        m_env->bringDatabaseBack();
        QVERIFY(OpenConnection());
        QVERIFY(messages().isEmpty());
    }

  private:
    std::unique_ptr<testsupport::TestEnvironment> m_env;
};

QTEST_MAIN(TestGenMod)
#include "tst_genmod.moc"
