// Times Move Soft Copies on many documents, all read, whose soft copies lie under one folder:
//
//   QT_QPA_PLATFORM=offscreen build/tools/vorlane_movebench [--server] [DOCUMENTS]   (1000000 unless given)
//
// against the embedded file of a temporary folder; with --server, against the database of the data
// source Vorlane that the file named in ODBCINI describes, which it EMPTIES first (as the server
// tests do: a test server only). It prints how long the count
// and the move took, and how many texts stayed read after the move.
#include "datastore/Ado.h"
#include "maintenance/frmMoveSoftCopies.h"
#include "platform/MsgBox.h"
#include "platform/TestHooks.h"
#include "session/GenMod.h"
#include "session/Session.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    const bool server = args.contains(QStringLiteral("--server"));
    const int documents =
        args.isEmpty() || args.last().startsWith(QLatin1Char('-')) ? 1000000 : args.last().toInt();
    // The server's database only when asked, and only from a data source file named in ODBCINI:
    // it is emptied. Otherwise no data source is known, and the file of a temporary folder serves.
    QTemporaryDir noSources;
    if (server && qEnvironmentVariableIsEmpty("ODBCINI")) {
        std::fprintf(stderr, "--server needs ODBCINI naming a data source Vorlane of a test server\n");
        return 2;
    }
    if (!server) {
        QFile(noSources.filePath(QStringLiteral("odbc.ini"))).open(QIODevice::WriteOnly);
        qputenv("ODBCINI", noSources.filePath(QStringLiteral("odbc.ini")).toLocal8Bit());
        qputenv("ODBCSYSINI", noSources.path().toLocal8Bit());
    }
    testsupport::TestEnvironment env;
    const QString folder = env.appPath();
    QDir(folder).mkpath(QStringLiteral("new"));
    Session::CurrentUserID = 1;
    Session::UserRights = QStringLiteral("Modify");

    QElapsedTimer clock;
    clock.start();
    auto c = std::make_shared<db::Connection>();
    c->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
    c->BeginTrans();
    for (int first = 1; first <= documents; first += 1000) {
        QStringList rows;
        for (int id = first; id < first + 1000 && id <= documents; ++id)
            rows << QStringLiteral(
                        "(%1,'2021-07-01','2021-07-01',1,1,1,1,'Letter %1','','%2/scans/%3/%1.pdf',1,"
                        "'','',1)")
                        .arg(id)
                        .arg(folder)
                        .arg(id % 1000);
        c->Execute(QStringLiteral("insert into Vorlane values ") + rows.join(QLatin1Char(',')));
    }
    c->Execute(
        QStringLiteral("update SoftCopy set ReadState='read', ReadPath=(select FilePath from Vorlane "
                       "where Vorlane.IndexID=SoftCopy.IndexID), SoftText='the words read from page ' || "
                       "IndexID"));
    c->CommitTrans();
    std::printf("%d documents made in %lld ms\n", documents, clock.restart());

    frmMoveSoftCopies& screen = frmMoveSoftCopies::instance();
    screen.Show();
    screen.control<QLineEdit>(QStringLiteral("txtOldFolder"))->setText(folder + QStringLiteral("/scans"));
    screen.control<QLineEdit>(QStringLiteral("txtNewFolder"))->setText(folder + QStringLiteral("/new"));
    const auto counts = [&] {
        return screen.control<QLabel>(QStringLiteral("lblCounts"))->text().replace('\n', ' ');
    };
    clock.restart();
    screen.cmdCount_Click();
    std::printf("count: %lld ms (%s)\n", clock.restart(), qPrintable(counts()));
    platform::test::answerNext(platform::vbYes);
    screen.cmdMove_Click();
    std::printf("move: %lld ms (%s)\n", clock.restart(), qPrintable(counts()));
    db::Recordset rs;
    rs.Open(QStringLiteral(
                "Select count(IndexID) from SoftCopy where ReadState='read' and ReadPath like '%/new/%'"),
            c, db::adOpenForwardOnly, db::adLockReadOnly);
    std::printf("texts still read, with their read path moved: %lld\n", rs.Fields(0).toLongLong());
    rs.Close();
    c.reset();
    screen.Unload();
    return 0;
}
