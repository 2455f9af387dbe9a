#include "frmFile.h"

#include "ClassificationLayout.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/Session.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

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

QLineEdit* frmFile::txtFileNo() const {
    return control<QLineEdit>(QStringLiteral("txtFileNo"));
}
QLineEdit* frmFile::txtParticulars() const {
    return control<QLineEdit>(QStringLiteral("txtParticulars"));
}
platform::ListView* frmFile::lstFile() const {
    return control<platform::ListView>(QStringLiteral("lstFile"));
}

QWidget* frmFile::build() {
    auto* w = new QWidget;
    w->setObjectName(QStringLiteral("frmFile"));
    w->setWindowTitle(QStringLiteral("File"));

    auto* outer = new QHBoxLayout(w);
    outer->setContentsMargins(16, 16, 16, 16);
    outer->setSpacing(14);
    outer->setSizeConstraint(QLayout::SetMinimumSize);

    // The fields on the left; the list, when shown, covers them and leaves the buttons free.
    // The fields keep a grid of their own: a hidden list spanning the same grid's cells would
    // take the spacing out from between the labels and the boxes.
    auto* area = new QGridLayout;
    area->setContentsMargins(0, 0, 0, 0);
    outer->addLayout(area, 1);
    auto* panel = new QWidget(w);
    panel->setObjectName(QStringLiteral("fieldsPanel"));
    auto* fields = new QGridLayout(panel);
    fields->setContentsMargins(0, 0, 0, 0);
    fields->setHorizontalSpacing(10);
    fields->setVerticalSpacing(8);
    fields->setColumnStretch(1, 1);
    fields->setRowStretch(2, 1);
    area->addWidget(panel, 0, 0);

    auto* txtFileNo = new QLineEdit(panel);
    txtFileNo->setObjectName(QStringLiteral("txtFileNo"));
    txtFileNo->setMaxLength(NumberLength);
    txtFileNo->setMinimumWidth(FieldWidth);
    auto* lblEmail = new QLabel(QStringLiteral("File Number :"), panel);
    lblEmail->setObjectName(QStringLiteral("lblEmail"));
    platform::setBuddy(lblEmail, txtFileNo);

    auto* txtParticulars = new QLineEdit(panel);
    txtParticulars->setObjectName(QStringLiteral("txtParticulars"));
    txtParticulars->setMaxLength(NumberLength);
    txtParticulars->setMinimumWidth(FieldWidth);
    txtParticulars->setFixedHeight(ParticularsHeight);
    auto* Label1 = new QLabel(QStringLiteral("Particulars :"), panel);
    Label1->setObjectName(QStringLiteral("Label1"));
    platform::setBuddy(Label1, txtParticulars);

    for (auto* label : {lblEmail, Label1})
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    fields->addWidget(lblEmail, 0, 0);
    fields->addWidget(txtFileNo, 0, 1);
    fields->addWidget(Label1, 1, 0);
    fields->addWidget(txtParticulars, 1, 1);

    auto* list = new platform::ListView(w);
    list->setObjectName(QStringLiteral("lstFile"));
    list->setToolTip(QStringLiteral("Double click a record to edit"));
    list->setAccessibleName(QStringLiteral("Double click a record to edit"));
    list->addColumn(QStringLiteral("FileID"), 0);
    list->addColumn(QStringLiteral("File number"), NumberColumnWidth);
    list->addColumn(QStringLiteral("Particulars"), ParticularsColumnWidth);
    list->header()->setSectionsMovable(false);
    // The particulars fill the list's width, so no sideways scroll bar takes a row.
    list->header()->setStretchLastSection(true);
    list->setMinimumHeight(ListHeight);
    // The window keeps the list's room while it is hidden, so Edit never has to grow it.
    QSizePolicy policy = list->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    list->setSizePolicy(policy);
    area->addWidget(list, 0, 0);
    list->raise();
    list->hide();

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(6);
    QStringList captions = classification::cmdCaptions();
    captions << QStringLiteral("Print List");
    const auto cmds = createCmdButtons(w, captions);
    for (auto* button : cmds) {
        button->setMinimumWidth(90);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    outer->addLayout(buttons);

    connect(list, &platform::ListView::DblClick, this, [this] { untrapped([this] { lstFile_DblClick(); }); });

    QList<QWidget*> order{txtFileNo, txtParticulars, list};
    for (auto* button : cmds)
        order << button;
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
    txtFileNo->setFocus();
    return w;
}

// While the list lies over the text boxes, they are out of the keyboard's way: the focus
// goes to the list, and back to the file number when the list goes.
void frmFile::followList() {
    auto* list = lstFile();
    const bool shown = !list->isHidden();
    const bool wasCovered = txtFileNo()->focusPolicy() == Qt::NoFocus;
    for (auto* box : {txtFileNo(), txtParticulars()})
        box->setFocusPolicy(shown ? Qt::NoFocus : Qt::StrongFocus);
    if (shown)
        list->setFocus();
    else if (wasCovered)
        txtFileNo()->setFocus();
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
    resetRecord(lstFile(), [this] { ClearFileFields(); });
    followList();
}

void frmFile::ClearFileFields() {
    clearTextBoxesAndKey();
}

void frmFile::ShowFileList() {
    showRecordList(lstFile(), [this] { FillFileList(); });
    followList();
}

// Traps its own errors and returns normally: the rows read so far stay and the list is shown.
void frmFile::FillFileList() {
    auto* list = lstFile();
    try {
        db::Recordset rs;
        rs.Open(QStringLiteral("Select * from File order by filenumber"), GenMod::Conn, db::adOpenStatic,
                db::adLockReadOnly, -1);
        list->clear();
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
    auto* list = lstFile();
    if (list->ListCount() == 0)
        return;
    LoadFile(platform::CInt(list->itemText(list->selectedIndex())));
}

void frmFile::LoadFile(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from File where FileID=") + QString::number(key), lstFile(),
               [this](db::Recordset& rs) {
                   txtFileNo()->setText(TrimStr(rs.Fields(QStringLiteral("FileNumber"))));
                   txtParticulars()->setText(TrimStr(rs.Fields(QStringLiteral("Particulars"))));
               });
    followList();
}

void frmFile::SaveFile() {
    const QString number = TrimStr(txtFileNo()->text());
    const QString text = TrimStr(txtParticulars()->text());
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
