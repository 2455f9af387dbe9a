#include "frmMoveSoftCopies.h"

#include "BrowseFolder.h"
#include "datastore/Ado.h"
#include "datastore/SqlText.h"
#include "platform/Conversions.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QFileInfo>
#include <QPushButton>

using platform::MsgBox;
using platform::TrimStr;

namespace {

constexpr int FolderWidth = 340;
// Keys per statement of the move.
constexpr int KeysPerStatement = 500;

const QChar Separator = QLatin1Char('/');

// A folder as typed: trimmed, without the separators that end it (the root stays whole).
QString folderOf(const QString& typed) {
    QString folder = TrimStr(typed);
    while (folder.size() > 1 && folder.endsWith(Separator))
        folder.chop(1);
    return folder;
}

// What every path under `folder` starts with.
QString prefixOf(const QString& folder) {
    return folder.endsWith(Separator) ? folder : folder + Separator;
}

QString keyList(const QList<qint64>& keys, qsizetype from, qsizetype count) {
    QStringList out;
    for (const qint64 key : keys.mid(from, count))
        out << QString::number(key);
    return out.join(QLatin1Char(','));
}

// The documents whose path lies under `prefix`, as written on this machine (letter case
// counts). The `like` only narrows the rows cheaply: it ignores letter case and takes '%' and
// '_' as wildcards, so that it passes a few rows more; the test of each path here decides.
// `visit` gets the key, the path and, with `readPaths`, the path that the soft copy's text
// was read from.
template <typename Visit> void documentsUnder(const QString& prefix, bool readPaths, Visit visit) {
    QString pattern = prefix;
    pattern.replace(QLatin1Char('\''), QStringLiteral("''"));
    const QString statement =
        readPaths
            ? QStringLiteral("Select V.IndexID, V.FilePath, S.ReadPath from Vorlane V left join SoftCopy S "
                             "on S.IndexID=V.IndexID where V.FilePath like '%1%'")
            : QStringLiteral("Select IndexID, FilePath from Vorlane where FilePath like '%1%'");
    db::Recordset rs;
    rs.Open(statement.arg(pattern), GenMod::Conn, db::adOpenForwardOnly, db::adLockReadOnly);
    for (; !rs.eof(); rs.MoveNext()) {
        const QString path = rs.Fields(1).toString();
        if (path.startsWith(prefix, Qt::CaseSensitive))
            visit(rs.Fields(0).toLongLong(), path, readPaths ? rs.Fields(2).toString() : QString());
    }
    rs.Close();
}

struct Counts {
    qint64 documents = 0;
    qint64 present = 0; // of their files, those under the new folder
};

Counts countUnder(const QString& oldPrefix, const QString& newPrefix) {
    Counts counts;
    const bool newExists = platform::folderExists(newPrefix);
    documentsUnder(oldPrefix, false, [&](qint64, const QString& path, const QString&) {
        ++counts.documents;
        if (newExists && QFileInfo(newPrefix + path.mid(oldPrefix.size())).isFile())
            ++counts.present;
    });
    return counts;
}

// Rewrites the paths under `oldPrefix` to `newPrefix` on the open transaction; returns how
// many documents moved. Changing a document's path makes its soft copy wait to be read again,
// unless its text was read from the very file that the new path names (a trigger of the store
// sees to it for every writer): the read paths move first, so the texts stay with the files.
qint64 movePaths(const QString& oldPrefix, const QString& newPrefix) {
    QList<qint64> keys;
    QList<qint64> readUnder; // those whose text was read from a path under the old folder
    documentsUnder(oldPrefix, true, [&](qint64 key, const QString&, const QString& readPath) {
        keys << key;
        if (readPath.startsWith(oldPrefix, Qt::CaseSensitive))
            readUnder << key;
    });
    // Counted in characters, as the engines count them.
    const QString cut = QString::number(oldPrefix.toUcs4().size() + 1);
    const auto moved = [&](const char* column) {
        const QString name = QString::fromLatin1(column);
        return name + QStringLiteral("=%1 || substr(%2, %3)").arg(db::sql::quoteString(newPrefix), name, cut);
    };
    for (qsizetype from = 0; from < readUnder.size(); from += KeysPerStatement)
        GenMod::Conn->Execute(QStringLiteral("Update SoftCopy set %1 where IndexID in (%2)")
                                  .arg(moved("ReadPath"), keyList(readUnder, from, KeysPerStatement)));
    const QString writer = QString::number(Session::CurrentUserID);
    for (qsizetype from = 0; from < keys.size(); from += KeysPerStatement)
        GenMod::Conn->Execute(QStringLiteral("Update Vorlane set %1, UpdatedBy=%2 where IndexID in (%3)")
                                  .arg(moved("FilePath"), writer, keyList(keys, from, KeysPerStatement)));
    return keys.size();
}

} // namespace

frmMoveSoftCopies& frmMoveSoftCopies::instance() {
    static auto* form = new frmMoveSoftCopies;
    return *form;
}

QWidget* frmMoveSoftCopies::build() {
    ScreenBuilder screen(QStringLiteral("frmMoveSoftCopies"), QStringLiteral("Move Soft Copies"));
    const std::tuple<ui::Control<QLabel>*, const char*, ui::Control<QLineEdit>*,
                     ui::Control<platform::CommandButton>*, const char*>
        folders[] = {
            {&ui.lblOldFolder, "Old folder :", &ui.txtOldFolder, &ui.cmdBrowseOld, "Old folder"},
            {&ui.lblNewFolder, "New folder :", &ui.txtNewFolder, &ui.cmdBrowseNew, "New folder"},
        };
    for (const auto& [label, caption, box, browse, what] : folders) {
        screen.addField(*label, QString::fromLatin1(caption), *box)->setMinimumWidth(FolderWidth);
        auto* button = browse->make(screen.window());
        button->setText(QStringLiteral("Browse"));
        // Two buttons share one caption; each tells which folder it picks.
        button->setAccessibleDescription(QString::fromLatin1(what));
        screen.addBeside(button);
    }
    // The counts take two lines; their room is kept from the start, so the window needs not grow.
    auto* counts = screen.addNote(ui.lblCounts, QString());
    counts->setMinimumHeight(2 * counts->fontMetrics().lineSpacing());

    auto* count = ui.cmdCount.make(screen.window());
    count->setText(QStringLiteral("Count"));
    auto* move = ui.cmdMove.make(screen.window());
    move->setText(QStringLiteral("Move"));
    auto* close = ui.cmdClose.make(screen.window());
    close->setText(QStringLiteral("Close"));
    screen.addButtons({count, move, close});

    connect(ui.cmdBrowseOld, &QPushButton::clicked, this, [this] { cmdBrowseOld_Click(); });
    connect(ui.cmdBrowseNew, &QPushButton::clicked, this, [this] { cmdBrowseNew_Click(); });
    connect(count, &QPushButton::clicked, this, [this] { cmdCount_Click(); });
    connect(move, &QPushButton::clicked, this, [this] { cmdMove_Click(); });
    connect(close, &QPushButton::clicked, this, [this] { cmdClose_Click(); });
    return screen.finish();
}

void frmMoveSoftCopies::Form_Load() {
    prepareWindow();
    // Settings opens it for the first user alone; the move stays theirs whoever opens it.
    ui.cmdMove->setEnabled(Session::CurrentUserID == 1);
}

void frmMoveSoftCopies::cmdClose_Click() {
    Unload();
}

void frmMoveSoftCopies::cmdBrowseOld_Click() {
    qint32 owner = 0;
    // A cancel leaves the box as it was.
    const QString chosen =
        BrowseFolder::SelectFolder(folderOf(ui.txtOldFolder->text()), owner,
                                   QStringLiteral("Select the old folder of the soft copies."));
    if (!chosen.isEmpty())
        ui.txtOldFolder->setText(chosen);
}

void frmMoveSoftCopies::cmdBrowseNew_Click() {
    qint32 owner = 0;
    const QString chosen =
        BrowseFolder::SelectFolder(folderOf(ui.txtNewFolder->text()), owner,
                                   QStringLiteral("Select the new folder of the soft copies."));
    if (!chosen.isEmpty())
        ui.txtNewFolder->setText(chosen);
}

bool frmMoveSoftCopies::TakeFolders(bool newMustExist, QString& oldFolder, QString& newFolder) {
    oldFolder = folderOf(ui.txtOldFolder->text());
    newFolder = folderOf(ui.txtNewFolder->text());
    const auto refuse = [](const QString& message, QLineEdit* box) {
        MsgBox(message, platform::vbExclamation);
        box->setFocus();
        return false;
    };
    if (oldFolder.isEmpty())
        return refuse(QStringLiteral("Please enter the old folder."), ui.txtOldFolder);
    if (newFolder.isEmpty())
        return refuse(QStringLiteral("Please enter the new folder."), ui.txtNewFolder);
    if (oldFolder == newFolder)
        return refuse(QStringLiteral("The old folder and the new folder are the same."), ui.txtNewFolder);
    if (newMustExist && !platform::folderExists(newFolder))
        return refuse(QStringLiteral("The new folder ") + newFolder +
                          QStringLiteral(" does not exist. Nothing was moved."),
                      ui.txtNewFolder);
    return true;
}

void frmMoveSoftCopies::cmdCount_Click() {
    QString oldFolder;
    QString newFolder;
    if (!TakeFolders(false, oldFolder, newFolder))
        return;
    platform::setMousePointer(platform::vbHourglass);
    try {
        if (!GenMod::OpenConnection()) {
            platform::setMousePointer(platform::vbDefault);
            return;
        }
        const Counts counts = countUnder(prefixOf(oldFolder), prefixOf(newFolder));
        GenMod::CloseConnection();
        ui.lblCounts->setText(QStringLiteral("%1 document/s under the old folder.\n%2 of their files found "
                                             "under the new folder.")
                                  .arg(counts.documents)
                                  .arg(counts.present));
        platform::setMousePointer(platform::vbDefault);
    } catch (const platform::Error& e) {
        GenMod::CloseConnection();
        platform::setMousePointer(platform::vbDefault);
        MsgBox(e.description(), platform::vbCritical);
    }
}

// Asks, then moves in one transaction. The transaction takes the write lock before it looks
// for the documents, so that a move made meanwhile on another seat is seen: each path moves
// once.
void frmMoveSoftCopies::cmdMove_Click() {
    QString oldFolder;
    QString newFolder;
    if (!TakeFolders(true, oldFolder, newFolder))
        return;
    if (MsgBox(QStringLiteral("The paths of the documents under ") + oldFolder +
                   QStringLiteral(" will point to ") + newFolder +
                   QStringLiteral(".\nThe texts read from their soft copies stay with them.\n\nProceed ?"),
               platform::vbYesNo + platform::vbInformation) != platform::vbYes)
        return;
    bool InTransaction = false;
    platform::setMousePointer(platform::vbHourglass);
    try {
        if (!GenMod::OpenConnection()) {
            platform::setMousePointer(platform::vbDefault);
            return;
        }
        GenMod::Conn->BeginTrans();
        InTransaction = true;
        const qint64 moved = movePaths(prefixOf(oldFolder), prefixOf(newFolder));
        GenMod::Conn->CommitTrans();
        InTransaction = false;
        GenMod::CloseConnection();
        const QString done = QStringLiteral("Moved %1 document/s to the new folder.").arg(moved);
        ui.lblCounts->setText(done);
        platform::setMousePointer(platform::vbDefault);
        MsgBox(done, platform::vbInformation);
    } catch (const platform::Error& e) {
        GenMod::AbandonConnection(InTransaction);
        platform::setMousePointer(platform::vbDefault);
        MsgBox(e.description(), platform::vbCritical);
    }
}
