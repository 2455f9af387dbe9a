#include "frmSettings.h"

#include "frmMoveSoftCopies.h"
#include "frmSoftCopies.h"
#include "index/SoftCopySettings.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/Dialogs.h"
#include "platform/Files.h"
#include "platform/MsgBox.h"
#include "session/FieldCaptions.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>

using platform::MsgBox;
using platform::TrimStr;

namespace {
constexpr int PathWidth = 340;
constexpr int NameLength = 500;
constexpr int LanguagesHeight = 92;
const QString DateFormat = QStringLiteral("dd/MMM/yyyy");

// The viewer kinds in the order of their Browse buttons cmd(2)..cmd(5) and of the Save.
const QStringList Kinds = {QStringLiteral("Image"), QStringLiteral("Word"), QStringLiteral("Excel"),
                           QStringLiteral("PDF")};
} // namespace

frmSettings& frmSettings::instance() {
    static auto* form = new frmSettings;
    return *form;
}

QWidget* frmSettings::build() {
    ScreenBuilder screen(QStringLiteral("frmSettings"), QStringLiteral("Settings"));
    const QList<QPushButton*> buttons = createCmdButtons(
        screen.window(), {QStringLiteral("Save"), QStringLiteral("Close"), QStringLiteral("Browse"),
                          QStringLiteral("Browse"), QStringLiteral("Browse"), QStringLiteral("Browse")});

    screen.addHeading(ui.Label1, QStringLiteral("Program paths"));
    const std::tuple<ui::Control<QLabel>*, const char*, ui::Control<QLineEdit>*> paths[] = {
        {&ui.lblImg, "Image Viewer / Editor :", &ui.txtImagePath},
        {&ui.lblWord, "Word Viewer / Editor :", &ui.txtWordPath},
        {&ui.lblExcel, "Excel Viewer / Editor :", &ui.txtExcelPath},
        {&ui.lblPDF, "PDF Viewer / Editor :", &ui.txtPDFPath},
    };
    int browse = 2;
    for (const auto& [label, caption, box] : paths) {
        screen.addField(*label, QString::fromLatin1(caption), *box)->setMinimumWidth(PathWidth);
        // Four buttons share one caption; each tells which program it picks.
        buttons[browse]->setAccessibleDescription(TrimStr((*label)->text()).chopped(2));
        screen.addBeside(buttons[browse++]);
    }
    auto* languages =
        screen.addField(ui.lblOcrLanguages, QStringLiteral("OCR Languages :"), ui.lstOcrLanguages);
    languages->setFixedHeight(LanguagesHeight);
    auto* softCopies = ui.cmdSoftCopies.make(screen.window());
    softCopies->setText(QStringLiteral("Soft Copies..."));
    screen.addBeside(softCopies);
    connect(softCopies, &QPushButton::clicked, this, [this] { cmdSoftCopies_Click(); });

    screen.addHeading(ui.Label4, QStringLiteral("Customize Field Names"));
    screen.addTextField(ui.lblDocType, QStringLiteral("Document Type :"), ui.txtDocType, NameLength);
    screen.addTextField(ui.lblDocCategory, QStringLiteral("Document Category :"), ui.txtDocCat, NameLength);
    screen.addTextField(ui.lblDocSubCat, QStringLiteral("Document Sub-Category :"), ui.txtDocSubCat,
                        NameLength);
    screen.addTextField(ui.lblDocChildCat, QStringLiteral("Document Child Category :"), ui.txtDocChildCat,
                        NameLength);
    screen.addTextField(ui.lblDocTitle1, QStringLiteral("Document Title 1 :"), ui.txtDocTitle1, NameLength);
    screen.addTextField(ui.lblDocTitle2, QStringLiteral("Document Title 2 :"), ui.txtDocTitle2, NameLength);

    screen.addHeading(ui.Label2, QStringLiteral("Old Records"));
    auto* date = screen.addField(ui.Label3, QStringLiteral("Delete old records before"), ui.dtpDelete);
    date->setCheckBox(false); // starts at today's date
    date->setCustomFormat(DateFormat);
    date->setMaximumWidth(160);
    screen.addCheckField(ui.lblDeleteFiles, QStringLiteral("Delete related files stored on Hard disk also"),
                         ui.chkFiles, [this] { lblDeleteFiles_Click(); });
    auto* proceed = ui.cmdDelete.make(screen.window());
    proceed->setText(QStringLiteral("Proceed"));
    screen.addBeside(proceed);
    screen.addNote(ui.lblProcess, QStringLiteral("Processing"))->hide();

    auto* moveSoftCopies = ui.cmdMoveSoftCopies.make(screen.window());
    moveSoftCopies->setText(QStringLiteral("Move Soft Copies..."));
    screen.addButtons({moveSoftCopies, buttons[0], buttons[1]});
    connect(proceed, &QPushButton::clicked, this, [this] { cmdDelete_Click(); });
    connect(moveSoftCopies, &QPushButton::clicked, this, [] { frmMoveSoftCopies::instance().Show(); });
    return screen.finish();
}

void frmSettings::Form_Load() {
    prepareWindow();
    // The purge and the move of the soft copies are the first user's alone, whatever the rights.
    const bool firstUser = Session::CurrentUserID == 1;
    for (QWidget* control : {static_cast<QWidget*>(ui.cmdDelete), static_cast<QWidget*>(ui.dtpDelete),
                             static_cast<QWidget*>(ui.chkFiles), static_cast<QWidget*>(ui.cmdSoftCopies),
                             static_cast<QWidget*>(ui.cmdMoveSoftCopies)})
        control->setEnabled(firstUser);
    for (const QString& kind : Kinds)
        pathBox(kind)->setText(Session::setting(kind).trimmed());
    loadOcrLanguages();
    readAtLoad(Pointer::Hourglass,
               [this] { FieldCaptions::Apply(FieldCaptions::fullNameBoxes(nameBoxes())); });
}

// The languages that the reader finds installed, and any chosen one that it no longer finds, so
// that what the readings use shows; English alone when the reader cannot tell.
void frmSettings::loadOcrLanguages() {
    QStringList names = SoftCopySettings::installedOcrLanguages();
    if (names.isEmpty())
        names << QStringLiteral("eng");
    const QStringList chosen = SoftCopySettings::ocrLanguages();
    for (const QString& name : chosen)
        if (!names.contains(name))
            names << name;
    names.sort();
    QListWidget* list = ui.lstOcrLanguages;
    for (const QString& name : names) {
        auto* item = new QListWidgetItem(name, list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(chosen.contains(name) ? Qt::Checked : Qt::Unchecked);
    }
    list->setCurrentRow(0, QItemSelectionModel::NoUpdate);
}

QStringList frmSettings::tickedOcrLanguages() const {
    QStringList ticked;
    for (int i = 0; i < ui.lstOcrLanguages->count(); ++i)
        if (const QListWidgetItem* item = ui.lstOcrLanguages->item(i); item->checkState() == Qt::Checked)
            ticked << item->text();
    return ticked;
}

QList<QLineEdit*> frmSettings::nameBoxes() const {
    return {ui.txtDocType,     ui.txtDocCat,    ui.txtDocSubCat,
            ui.txtDocChildCat, ui.txtDocTitle1, ui.txtDocTitle2};
}

QLineEdit* frmSettings::pathBox(const QString& kind) const {
    switch (Kinds.indexOf(kind)) {
    case 0:
        return ui.txtImagePath;
    case 1:
        return ui.txtWordPath;
    case 2:
        return ui.txtExcelPath;
    default:
        return ui.txtPDFPath;
    }
}

void frmSettings::cmd_Click(int index) {
    switch (index) {
    case 0:
        SaveSettings();
        break;
    case 1:
        Unload();
        break;
    case 2:
    case 3:
    case 4:
    case 5:
        BrowseViewerPath(Kinds[index - 2]);
        break;
    default:
        break;
    }
}

// A cancelled dialog changes nothing; the path is stored only by Save.
void frmSettings::BrowseViewerPath(const QString& kind) {
    const QString chosen =
        platform::showOpenDialog(window(), QString(), kind + QStringLiteral(" Viewer / Editor|*.exe;*.exe"));
    if (chosen.trimmed().isEmpty())
        return;
    pathBox(kind)->setText(chosen);
}

void frmSettings::SaveSettings() {
    if (!Session::MaySave(EditMode))
        return;
    // The OCR languages are kept whatever else is; with no program path at all nothing else is
    // written, the field names neither, and nothing is said.
    try {
        SoftCopySettings::saveOcrLanguages(tickedOcrLanguages());
    } catch (const platform::Error& e) {
        MsgBox(e.description(), platform::vbCritical);
        return;
    }
    if (std::all_of(Kinds.begin(), Kinds.end(),
                    [this](const QString& kind) { return TrimStr(pathBox(kind)->text()).isEmpty(); }))
        return;

    bool InTransaction = false;
    try {
        for (const QString& kind : Kinds)
            Session::saveSetting(kind, TrimStr(pathBox(kind)->text()));
        if (GenMod::OpenConnection()) {
            GenMod::Conn->BeginTrans();
            InTransaction = true;
            GenMod::Conn->Execute(QStringLiteral("Delete from FieldCaptions"));
            QStringList names;
            for (const QLineEdit* box : nameBoxes())
                names << GenMod::FixQuotes(TrimStr(box->text()));
            GenMod::Conn->Execute(QStringLiteral("Insert into FieldCaptions Values('") +
                                  names.join(QStringLiteral("','")) + QStringLiteral("')"));
            GenMod::Conn->CommitTrans();
            InTransaction = false;
            GenMod::CloseConnection();
        }
    } catch (const platform::Error& e) {
        GenMod::AbandonConnection(InTransaction);
        MsgBox(e.description(), platform::vbCritical);
        return;
    }
    // Also after a failed connection, with the field names left as they were.
    MsgBox(QStringLiteral("Settings saved successfully."), platform::vbInformation);
    Unload();
}

// The state of the soft copies, the first user's alone as the purge is.
void frmSettings::cmdSoftCopies_Click() {
    frmSoftCopies::instance().Show();
}

void frmSettings::lblDeleteFiles_Click() {
    ui.chkFiles->setCheckState(ui.chkFiles->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

// Deletes the documents dated before the chosen day, and their soft copies when asked. The
// label is the only report. A file that cannot be deleted stops the run at its row, before
// any record is deleted.
void frmSettings::cmdDelete_Click() {
    QLabel* progress = ui.lblProcess;
    try {
        progress->hide();
        const QString date = platform::FormatDate(ui.dtpDelete->Value(), DateFormat);
        if (MsgBox(QStringLiteral("Confirm once again whether to proceed or not.\nAll records before ") +
                       date + QStringLiteral(" will be deleted."),
                   platform::vbYesNo + platform::vbInformation) != platform::vbYes)
            return;
        progress->show();
        if (!GenMod::OpenConnection())
            return;
        const auto report = [progress](const QString& text) {
            progress->setText(text);
            progress->repaint();
        };
        const QString deletion =
            QStringLiteral("Delete from Vorlane where DocDate < #") + date + QLatin1Char('#');
        QString count;
        if (ui.chkFiles->checkState() == Qt::Checked) {
            db::Recordset rs;
            rs.Open(QStringLiteral("Select FilePath from Vorlane where docDate < #") + date +
                        QStringLiteral("# order by docDate"),
                    GenMod::Conn, db::adOpenStatic, db::adLockReadOnly);
            count = QString::number(rs.eof() ? 0 : rs.RecordCount());
            report(QStringLiteral("Please wait. Processing ") + count + QStringLiteral(" records...."));
            while (!rs.eof()) {
                platform::Kill(TrimStr(rs.Fields(QStringLiteral("FilePath"))));
                rs.MoveNext();
            }
            rs.Close();
        } else {
            count = QString::number(static_cast<qint64>(platform::Val(GenMod::GetFieldValue(
                QStringLiteral("count(IndexID)"),
                QStringLiteral("Vorlane where DocDate < #") + date + QLatin1Char('#')))));
            report(QStringLiteral("Please wait. Processing ") + count + QStringLiteral(" records...."));
        }
        GenMod::Conn->Execute(deletion);
        report(QStringLiteral("Processed ") + count + QStringLiteral(" records."));
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        GenMod::CloseConnection();
        MsgBox(e.description(), platform::vbCritical);
    }
}
