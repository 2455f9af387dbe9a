#include "frmReferences.h"

#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QHeaderView>

using platform::TrimStr;

namespace {
constexpr int FieldWidth = 380;
constexpr int ParticularsHeight = 110;
constexpr int NameColumnWidth = 180;
} // namespace

frmReferences& frmReferences::instance() {
    static auto* form = new frmReferences;
    return *form;
}

QWidget* frmReferences::build() {
    ScreenBuilder screen(QStringLiteral("frmReferences"), QStringLiteral("Internet References"),
                         ScreenBuilder::Buttons::Right);
    screen.addField(ui.lblName, QStringLiteral("Reference Name :"), ui.txtRefName)
        ->setMinimumWidth(FieldWidth);
    auto* particulars = screen.addField(ui.Label1, QStringLiteral("Particulars :"), ui.txtParticulars);
    particulars->setFixedHeight(ParticularsHeight);
    particulars->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    particulars->setTabChangesFocus(true); // Tab leaves the box, as on every other field
    screen.addField(ui.lblPhone, QStringLiteral("Online Link :"), ui.txtLink)
        ->setToolTip(QStringLiteral("Paste here links copied from your browsers address bar"));

    auto* list = panel.build(screen, QStringLiteral("Reference Name containing :"), ui.lstRef,
                             [this] { lblShowAll_Click(); });
    list->addColumn(QStringLiteral("Ref ID"), 0);
    list->addColumn(QStringLiteral("Reference Name"), NameColumnWidth);
    list->addColumn(QStringLiteral("Online Link"), NameColumnWidth);
    list->header()->setSectionsMovable(false);
    list->header()->setStretchLastSection(true);
    // Checked in the design; the search text follows it only once Edit runs the click.
    ui.chkShowAll->setChecked(true);

    QStringList captions = editCaptions();
    captions << QStringLiteral("Print List");
    const QList<QPushButton*> buttons = createCmdButtons(screen.window(), captions);
    screen.addButtons(buttons);
    connect(ui.chkShowAll, &QCheckBox::toggled, this, [this] { chkShowAll_Click(); });
    connect(ui.cmdSearch, &QPushButton::clicked, this, [this] { cmdSearch_Click(); });
    connect(list, &platform::ListView::DblClick, this, [this] { untrapped([this] { lstRef_DblClick(); }); });
    QWidget* window = screen.finish();
    panel.orderTabs(list, buttons.first());
    return window;
}

void frmReferences::Form_Load() {
    prepareWindow();
    panel.showPicture();
    ResetReferenceForm();
}

void frmReferences::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetReferenceForm();
        break;
    case 1:
        ShowReferenceList();
        break;
    case 2:
        SaveReference();
        break;
    case 3:
        Unload();
        break;
    case 4:
        PrintReferenceList();
        break;
    default:
        break;
    }
}

// Runs for every change of the box's value, from the user or from code.
void frmReferences::chkShowAll_Click() {
    showAllClicked(ui.chkShowAll, ui.txtSearchName);
}

// Only flips the box; the change of value runs its click.
void frmReferences::lblShowAll_Click() {
    ui.chkShowAll->setChecked(!ui.chkShowAll->isChecked());
}

void frmReferences::ResetReferenceForm() {
    resetRecord(ui.fraList, [this] { ClearReferenceFields(); });
}

// Empties the search text too; the check box and the rows of the list stay.
void frmReferences::ClearReferenceFields() {
    clearTextBoxesAndKey();
}

// The box keeps the value the user left it at: the click only brings the search text in line.
// A loaded row stays loaded behind the panel, and Save still updates it.
void frmReferences::ShowReferenceList() {
    showRecordList(ui.fraList, [this] {
        chkShowAll_Click();
        FillReferenceList();
    });
}

// The search text goes in as typed: a quote in it is the data layer's error, and "%" and "_"
// match as the data store's like does.
void frmReferences::FillReferenceList() {
    try {
        QString statement;
        if (ui.chkShowAll->isChecked())
            statement = QStringLiteral("Select * from References order by RefName");
        else
            statement = QStringLiteral("Select * from References where RefName like '%") +
                        TrimStr(ui.txtSearchName->text()) + QStringLiteral("%' order by RefName");
        db::Recordset rs;
        rs.Open(statement, GenMod::Conn, db::adOpenStatic, db::adLockReadOnly, -1);
        // Cleared only now, so that a failed statement leaves the former rows on screen.
        ui.lstRef->Clear();
        for (; !rs.eof(); rs.MoveNext())
            ui.lstRef->addRow(TrimStr(rs.Fields(QStringLiteral("RefID"))),
                              {TrimStr(rs.Fields(QStringLiteral("RefName"))),
                               TrimStr(rs.Fields(QStringLiteral("OnlineLink")))});
        rs.Close();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

// An empty search text lists every row.
void frmReferences::cmdSearch_Click() {
    searchOnOwnConnection([this] { FillReferenceList(); });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmReferences::lstRef_DblClick() {
    auto* list = ui.lstRef.get();
    if (list->ListCount() == 0)
        return;
    LoadReference(platform::CInt(list->itemText(list->selectedIndex())));
}

void frmReferences::LoadReference(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from References where RefID=") + QString::number(key),
               ui.fraList, [this](db::Recordset& rs) {
                   ui.txtRefName->setText(TrimStr(rs.Fields(QStringLiteral("RefName"))));
                   ui.txtParticulars->setPlainText(TrimStr(rs.Fields(QStringLiteral("Particulars"))));
                   ui.txtLink->setText(TrimStr(rs.Fields(QStringLiteral("OnlineLink"))));
               });
}

void frmReferences::SaveReference() {
    const QString name = TrimStr(ui.txtRefName->text());
    const QString particulars = TrimStr(ui.txtParticulars->toPlainText());
    const QString link = TrimStr(ui.txtLink->text());
    SaveSteps steps;
    steps.required = {{[&] { return name.isEmpty(); }, QStringLiteral("Please specify Reference name.")},
                      {[&] { return link.isEmpty(); }, QStringLiteral("Please specify Link.")}};
    steps.duplicateFields = QStringLiteral("RefID");
    // Only a new name has its quotes swapped before the test: an edited name with a quote
    // breaks the test's statement, which counts as no duplicate.
    steps.duplicateSource = [&] {
        if (EditMode)
            return QStringLiteral("References where RefName='") + name + QStringLiteral("' and RefID <>") +
                   QString::number(CurrentRowID);
        return QStringLiteral("References where RefName='") + GenMod::FixQuotes(name) + QStringLiteral("'");
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Reference details not allowed.");
    steps.keyColumn = QStringLiteral("RefID");
    steps.table = QStringLiteral("References");
    steps.updateStatement = [&] {
        return QStringLiteral("Update References Set RefName='") + GenMod::FixQuotes(name) +
               QStringLiteral("', particulars='") + GenMod::FixQuotes(particulars) +
               QStringLiteral("', OnlineLink='") + GenMod::FixQuotes(link) + QStringLiteral("', UpdatedBy=") +
               QString::number(Session::CurrentUserID) + QStringLiteral(" where RefID=") +
               QString::number(CurrentRowID);
    };
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into References values(") + QString::number(CurrentRowID) +
               QStringLiteral(",'") + GenMod::FixQuotes(name) + QStringLiteral("','") +
               GenMod::FixQuotes(particulars) + QStringLiteral("','") + GenMod::FixQuotes(link) +
               QStringLiteral("',") + QString::number(Session::CurrentUserID) + QStringLiteral(")");
    };
    steps.reset = [this] { ResetReferenceForm(); };
    saveRecord(steps);
}

// Prints every reference from the reports' own recordset, whatever the panel shows.
void frmReferences::PrintReferenceList() {
    reports::PrintListTrapped(reports::VorlaneDE::instance().rscmdInternetRefList(),
                              reports::RptInternetRef());
}
