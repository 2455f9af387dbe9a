#include "frmFile.h"

#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>

using platform::TrimStr;

namespace {
constexpr int NumberLength = 25;
constexpr int FieldWidth = 240;
// The particulars box is drawn tall, though it holds one line.
constexpr int ParticularsHeight = 60;
constexpr int NumberColumnWidth = 150;
constexpr int ParticularsColumnWidth = 150;
constexpr int ListHeight = 190;
} // namespace

frmFile& frmFile::instance() {
    static auto* form = new frmFile;
    return *form;
}

QWidget* frmFile::build() {
    // The fields on the left; the list, when shown, covers them and leaves the buttons free.
    ScreenBuilder screen(QStringLiteral("frmFile"), QStringLiteral("File"), ScreenBuilder::Buttons::Right);
    screen.addTextField(ui.lblEmail, QStringLiteral("File Number :"), ui.txtFileNo, NumberLength);
    auto* particulars =
        screen.addTextField(ui.Label1, QStringLiteral("Particulars :"), ui.txtParticulars, NumberLength);
    particulars->setFixedHeight(ParticularsHeight);
    ui.txtFileNo->setMinimumWidth(FieldWidth);

    auto* list = screen.addListOver(ui.lstFile, ListHeight);
    list->addColumn(QStringLiteral("FileID"), 0);
    list->addColumn(QStringLiteral("File number"), NumberColumnWidth);
    list->addColumn(QStringLiteral("Particulars"), ParticularsColumnWidth);
    list->header()->setSectionsMovable(false);
    // The particulars fill the list's width, so no sideways scroll bar takes a row.
    list->header()->setStretchLastSection(true);

    QStringList captions = editCaptions();
    captions << QStringLiteral("Print List");
    screen.addButtons(createCmdButtons(screen.window(), captions));
    connect(list, &platform::ListView::DblClick, this, [this] { untrapped([this] { lstFile_DblClick(); }); });
    return screen.finish();
}

// Opens without touching the data store, always as a new row.
void frmFile::Form_Load() {
    prepareWindow();
    ResetFileForm();
}

void frmFile::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetFileForm();
        break;
    case 1:
        ShowFileList();
        break;
    case 2:
        SaveFile();
        break;
    case 3:
        Unload();
        break;
    case 4:
        PrintFileList();
        break;
    default:
        break;
    }
}

void frmFile::ResetFileForm() {
    resetRecord(ui.lstFile, [this] { ClearFileFields(); });
}

void frmFile::ClearFileFields() {
    clearTextBoxesAndKey();
}

void frmFile::ShowFileList() {
    showRecordList(ui.lstFile, [this] { FillFileList(); });
}

// Traps its own errors and returns normally: the rows read so far stay and the list is shown.
void frmFile::FillFileList() {
    auto* list = ui.lstFile.get();
    try {
        db::Recordset rs;
        rs.Open(QStringLiteral("Select * from File order by filenumber"), GenMod::Conn, db::adOpenStatic,
                db::adLockReadOnly, -1);
        list->Clear();
        for (; !rs.eof(); rs.MoveNext()) {
            const QString key = TrimStr(rs.Fields(QStringLiteral("FileID")));
            const QString number = TrimStr(rs.Fields(QStringLiteral("FileNumber")));
            const QString particulars = TrimStr(rs.Fields(QStringLiteral("Particulars")));
            list->addRow(key, {number, particulars});
        }
        rs.Close();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmFile::lstFile_DblClick() {
    auto* list = ui.lstFile.get();
    if (list->ListCount() == 0)
        return;
    LoadFile(platform::CInt(list->itemText(list->selectedIndex())));
}

void frmFile::LoadFile(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from File where FileID=") + QString::number(key), ui.lstFile,
               [this](db::Recordset& rs) {
                   ui.txtFileNo->setText(TrimStr(rs.Fields(QStringLiteral("FileNumber"))));
                   ui.txtParticulars->setText(TrimStr(rs.Fields(QStringLiteral("Particulars"))));
               });
}

void frmFile::SaveFile() {
    const QString number = TrimStr(ui.txtFileNo->text());
    const QString text = TrimStr(ui.txtParticulars->text());
    SaveSteps steps;
    // The particulars are optional.
    steps.required = {{[&] { return number.isEmpty(); }, QStringLiteral("Please specify File Number.")}};
    steps.duplicateFields = QStringLiteral("FileNumber");
    steps.duplicateSource = [&] {
        QString source = QStringLiteral("File where FileNumber='") + number + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and FileID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate File number not allowed.");
    steps.keyColumn = QStringLiteral("FileID");
    steps.table = QStringLiteral("File");
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into File values(") + QString::number(CurrentRowID) +
               QStringLiteral(",'") + GenMod::FixQuotes(number) + QStringLiteral("','") +
               GenMod::FixQuotes(text) + QStringLiteral("',") + QString::number(Session::CurrentUserID) +
               QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        return QStringLiteral("Update File set Filenumber='") + GenMod::FixQuotes(number) +
               QStringLiteral("', Particulars='") + GenMod::FixQuotes(text) +
               QStringLiteral("' , UpdatedBy=") + QString::number(Session::CurrentUserID) +
               QStringLiteral(" where FileID=") + QString::number(CurrentRowID);
    };
    steps.reset = [this] { ResetFileForm(); };
    saveRecord(steps);
}

// Prints the whole register from the reports' own recordset, not from the list. Any user may
// print. A failure (such as a missing database) is told and the program goes on.
void frmFile::PrintFileList() {
    untrapped(
        [] { reports::PrintList(reports::VorlaneDE::instance().rscmdFileList(), reports::RptFileList()); });
}
