#include "frmDataBackup.h"

#include "BrowseFolder.h"
#include "datastore/Schema.h"
#include "datastore/StoreFile.h"
#include "platform/Conversions.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"
#include "session/GenMod.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPixmap>

using platform::MsgBox;
using platform::TrimStr;

namespace {

// How long the compaction waits for the other seats to finish what they read or write.
constexpr int SoleUseWaitSeconds = 5;
constexpr int PathWidth = 300;
constexpr int ButtonWidth = 90;

const QString& notOnServer() {
    static const QString text = QStringLiteral(
        "Database not found !\r\n\r\nPlease ensure that you are taking Backup from Server system.");
    return text;
}

QString workFile() {
    return platform::joinPath(db::databaseFolder(), QStringLiteral("Temp.mdb"));
}

// A framed step: its number at the left, its controls beside it.
QGridLayout* stepFrame(QFrame* frame, QLabel* number, const QString& caption) {
    frame->setFrameShape(QFrame::Box);
    frame->setFrameShadow(QFrame::Sunken);
    number->setText(caption);
    QFont bold = number->font();
    bold.setBold(true);
    number->setFont(bold);
    auto* grid = new QGridLayout(frame);
    grid->setContentsMargins(12, 10, 12, 10);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(8);
    grid->addWidget(number, 0, 0, Qt::AlignLeft | Qt::AlignVCenter);
    return grid;
}

// A step's number names the step's first button to assistive technology, beside its caption.
void numberStep(QLabel* number, QWidget* button) {
    number->setBuddy(button);
    QString step = number->text();
    step.remove(QLatin1Char(':'));
    button->setAccessibleDescription(step.trimmed());
}

} // namespace

frmDataBackup& frmDataBackup::instance() {
    static auto* form = new frmDataBackup;
    return *form;
}

QWidget* frmDataBackup::build() {
    auto* w = new QWidget;
    w->setObjectName(QStringLiteral("frmDataBackup"));
    w->setWindowTitle(QStringLiteral("Data Backup"));
    auto* outer = new QGridLayout(w);
    outer->setContentsMargins(16, 16, 16, 12);
    outer->setHorizontalSpacing(16);
    outer->setVerticalSpacing(10);
    outer->setSizeConstraint(QLayout::SetMinimumSize);

    auto* picture = ui.ImgDatabase.make(w);
    picture->setPixmap(QPixmap(QStringLiteral(":/images/Database")));
    outer->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);

    auto* repairStep = stepFrame(ui.Shape1.make(w), ui.Label1.make(ui.Shape1), QStringLiteral("Step 1 :"));
    auto* repair = ui.cmdRepair.make(ui.Shape1);
    repair->setText(QStringLiteral("Check && Repair Errors in Database"));
    numberStep(ui.Label1, repair);
    repairStep->addWidget(repair, 0, 1, 1, 3, Qt::AlignLeft);
    repairStep->setColumnStretch(3, 1);
    outer->addWidget(ui.Shape1, 0, 1);

    auto* backupStep = stepFrame(ui.Shape2.make(w), ui.Label2.make(ui.Shape2), QStringLiteral("Step 2 :"));
    auto* pathLabel = ui.lblBackupPath.make(ui.Shape2);
    pathLabel->setText(QStringLiteral("Backup Path :"));
    auto* path = ui.txtPath.make(ui.Shape2);
    // The path comes from the load default or from Browse alone; Tab passes it by.
    path->setReadOnly(true);
    path->setFocusPolicy(Qt::ClickFocus);
    path->setMinimumWidth(PathWidth);
    platform::setBuddy(pathLabel, path);
    auto* browse = ui.cmdBrowse.make(ui.Shape2);
    browse->setText(QStringLiteral("Browse"));
    auto* start = ui.cmdStartBackup.make(ui.Shape2);
    start->setText(QStringLiteral("Start Backup"));
    for (auto* button : {browse, start})
        button->setMinimumWidth(ButtonWidth);
    numberStep(ui.Label2, start);
    backupStep->addWidget(pathLabel, 0, 1);
    backupStep->addWidget(path, 0, 2);
    backupStep->addWidget(browse, 0, 3);
    backupStep->addWidget(start, 1, 2, 1, 2, Qt::AlignRight);
    backupStep->setColumnStretch(2, 1);
    outer->addWidget(ui.Shape2, 1, 1);

    auto* line = ui.Line1.make(w);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    outer->addWidget(line, 2, 0, 1, 2);

    auto* close = ui.cmd.make(w);
    close->setText(QStringLiteral("Close"));
    close->setMinimumWidth(ButtonWidth);
    outer->addWidget(close, 3, 0, 1, 2, Qt::AlignRight);
    outer->setColumnStretch(1, 1);

    const QList<QWidget*> order{repair, browse, start, close};
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
    repair->setFocus();

    connect(repair, &QPushButton::clicked, this, [this] { cmdRepair_Click(); });
    connect(browse, &QPushButton::clicked, this, [this] { cmdBrowse_Click(); });
    connect(start, &QPushButton::clicked, this, [this] { cmdStartBackup_Click(); });
    connect(close, &QPushButton::clicked, this, [this] { cmd_Click(); });
    return w;
}

void frmDataBackup::Form_Load() {
    prepareWindow();
    ui.txtPath->setText(db::backupFolder());
}

void frmDataBackup::cmd_Click() {
    Unload();
}

bool frmDataBackup::DataFileExists(const QString& path) {
    return db::isLocalStore(GenMod::DataSourceName, path);
}

void frmDataBackup::CutTrailingSeparator() {
    const QString trimmed = TrimStr(ui.txtPath->text());
    if (trimmed.size() > 1 && trimmed.endsWith(QLatin1Char('/')))
        ui.txtPath->setText(trimmed.chopped(1));
}

void frmDataBackup::cmdBrowse_Click() {
    qint32 owner = 0;
    // A cancel empties the path: the one shown before is gone.
    ui.txtPath->setText(
        BrowseFolder::SelectFolder(platform::joinPath(platform::appPath(), QStringLiteral("Backup")), owner,
                                   QStringLiteral("Select folder to Backup your database.")));
    CutTrailingSeparator();
}

void frmDataBackup::cmdStartBackup_Click() {
    if (TrimStr(ui.txtPath->text()).isEmpty())
        return;
    try {
        if (MsgBox(QStringLiteral("Are you sure to proceed with Backup ?"),
                   platform::vbYesNo + platform::vbInformation) == platform::vbNo)
            return;
        platform::setMousePointer(platform::vbHourglass);
        if (!DataFileExists(db::databaseFile())) {
            platform::setMousePointer(platform::vbDefault);
            MsgBox(notOnServer(), platform::vbExclamation);
            return;
        }
        CutTrailingSeparator();
        // An existing backup there is replaced without a question, once the new one is whole.
        db::copyStore(db::databaseFile(),
                      platform::joinPath(TrimStr(ui.txtPath->text()), QStringLiteral("Backup.mdb")));
        platform::setMousePointer(platform::vbDefault);
        MsgBox(QStringLiteral("Backup Successfull."), platform::vbInformation);
    } catch (const platform::Error& e) {
        platform::setMousePointer(platform::vbDefault);
        MsgBox(e.description(), platform::vbCritical);
    }
}

// The compaction asks nothing. It has the store to itself from the moment the compacted copy is
// made until that copy is in place, so that no save of another seat falls between the two.
void frmDataBackup::cmdRepair_Click() {
    platform::setMousePointer(platform::vbHourglass);
    try {
        const QString store = db::databaseFile();
        if (!DataFileExists(store)) {
            platform::setMousePointer(platform::vbDefault);
            MsgBox(notOnServer(), platform::vbExclamation);
            return;
        }
        platform::SetAttr(store, platform::vbNormal);
        const QString work = workFile();
        if (platform::fileExists(work))
            platform::Kill(work);
        {
            const auto sole = db::SoleStore::take(store, SoleUseWaitSeconds);
            sole->compactInto(work);
            if (platform::fileExists(work)) {
                sole->replaceWith(work);
                platform::Kill(work);
            }
        }
        GenMod::CloseConnection();
        platform::setMousePointer(platform::vbDefault);
        MsgBox(QStringLiteral("Your Database is OK."), platform::vbInformation);
    } catch (const platform::Error& e) {
        platform::setMousePointer(platform::vbDefault);
        MsgBox(e.description(), platform::vbCritical);
    }
}
