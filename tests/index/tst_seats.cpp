// Eight workstations saving documents at once through Index Document, each its own process
// on the one data store: every row arrives, no key is handed out twice, and no seat hears
// anything but "Saved Successfully.".
#include "index/frmIndexDocument.h"
#include "platform/TestHooks.h"
#include "support/ScreenDriver.h"
#include "support/TestSupport.h"

#include <QProcess>
#include <QtTest>

namespace {

constexpr int Seats = 8;
constexpr int SavesPerSeat = 200;

// One seat: opens the screen on the database of the program folder `appPath` and saves its
// documents one after the other. Prints every message that is not the save's, and fails if
// there was any.
int runSeat(const QString& appPath, int seat) {
    testsupport::TestEnvironment env(false);
    platform::test::setAppPath(appPath);
    testsupport::setSession(1, QStringLiteral("Modify"));
    auto& form = frmIndexDocument::instance();
    form.Show();
    int unexpected = 0;
    for (int i = 0; i < SavesPerSeat; ++i) {
        testsupport::press(form, 0);
        testsupport::pick(form, QStringLiteral("cboDocType"), QStringLiteral("Letter"));
        testsupport::pick(form, QStringLiteral("cboDocCategory"), QStringLiteral("A"));
        testsupport::pick(form, QStringLiteral("cboDocSubCategory"), QStringLiteral("A1"));
        testsupport::pick(form, QStringLiteral("cboDocChildCategory"), QStringLiteral("A1 first"));
        testsupport::pick(form, QStringLiteral("cboFile"), QStringLiteral("F-001"));
        testsupport::type(form, QStringLiteral("txtTitle1"),
                          QStringLiteral("seat %1 document %2").arg(seat).arg(i));
        platform::test::nextOpenFile(QStringLiteral("/scans/%1-%2.pdf").arg(seat).arg(i));
        testsupport::press(form, 4);
        testsupport::press(form, 2);
        for (const QString& m : testsupport::messages())
            if (m != QLatin1String("64:Saved Successfully.")) {
                fprintf(stderr, "seat %d, save %d: %s\n", seat, i, qPrintable(m));
                ++unexpected;
            }
    }
    form.Unload();
    return unexpected == 0 ? 0 : 1;
}

} // namespace

class TestSeats : public QObject {
    Q_OBJECT

  private slots:
    void eightSeatsSaveAtOnce() {
        testsupport::TestEnvironment env;
        env.exec("insert into DocumentType values(1,'Letter',1)");
        env.exec("insert into DocumentCategory values(1,'A',1)");
        env.exec("insert into DocumentSubCategory values(1,1,'A1',1)");
        env.exec("insert into DocumentChildCategory values(1,1,1,'A1 first',1)");
        env.exec("insert into File values(1,'F-001','Tax',1)");

        std::vector<std::unique_ptr<QProcess>> seats;
        for (int seat = 1; seat <= Seats; ++seat) {
            auto p = std::make_unique<QProcess>();
            p->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            p->start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--seat"), QString::number(seat), env.appPath()});
            QVERIFY(p->waitForStarted());
            seats.push_back(std::move(p));
        }
        for (auto& p : seats) {
            QVERIFY(p->waitForFinished(240000));
            QCOMPARE(p->exitStatus(), QProcess::NormalExit);
            QCOMPARE(p->exitCode(), 0);
        }

        QCOMPARE(env.count("Vorlane"), Seats * SavesPerSeat);
        QCOMPARE(env.scalar("select count(distinct IndexID) from Vorlane").toInt(), Seats * SavesPerSeat);
        QCOMPARE(env.scalar("select max(IndexID) from Vorlane").toInt(), Seats * SavesPerSeat);
        QCOMPARE(env.scalar("select count(distinct Title1) from Vorlane").toInt(), Seats * SavesPerSeat);
    }
};

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    const QStringList args = app.arguments();
    if (args.size() == 4 && args[1] == QLatin1String("--seat"))
        return runSeat(args[3], args[2].toInt());
    TestSeats test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_seats.moc"
