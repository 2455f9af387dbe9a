#include "frmImpContacts.h"

#include "platform/Conversions.h"
#include "platform/MsgBox.h"
#include "reports/Reports.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QHeaderView>

using platform::TrimStr;

namespace {
constexpr int FieldWidth = 440;
constexpr int RemarksHeight = 90;
constexpr int NameColumnWidth = 150;
constexpr int PhoneColumnWidth = 100;
constexpr int EmailColumnWidth = 120;
} // namespace

frmImpContacts& frmImpContacts::instance() {
    static auto* form = new frmImpContacts;
    return *form;
}

QWidget* frmImpContacts::build() {
    ScreenBuilder screen(QStringLiteral("frmImpContacts"), QStringLiteral("Important Contacts"),
                         ScreenBuilder::Buttons::Right);
    screen.addField(ui.lblName, QStringLiteral("Name :"), ui.txtName)->setMinimumWidth(FieldWidth);
    screen.addField(ui.lblAddress, QStringLiteral("Address :"), ui.txtAdd1);
    screen.addFieldUnder(ui.txtAdd2);
    screen.addFieldUnder(ui.txtAdd3);
    screen.addField(ui.lblPhone, QStringLiteral("Phone No. :"), ui.txtPhone);
    screen.addField(ui.lblCell, QStringLiteral("Cell No. :"), ui.txtCell);
    screen.addField(ui.lblFax, QStringLiteral("Fax No. :"), ui.txtFax);
    screen.addField(ui.lblEmail, QStringLiteral("Email :"), ui.txtEmail);
    auto* remarks = screen.addField(ui.Label1, QStringLiteral("Remarks :"), ui.txtRemarks);
    remarks->setFixedHeight(RemarksHeight);
    remarks->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    remarks->setTabChangesFocus(true); // Tab leaves the box, as on every other field

    auto* list = panel.build(screen, QStringLiteral("Contact Name containing :"), ui.lstContacts,
                             [this] { lblShowAll_Click(); });
    list->addColumn(QStringLiteral("Contact ID"), 0);
    list->addColumn(QStringLiteral("Contact Name"), NameColumnWidth);
    list->addColumn(QStringLiteral("Phone"), PhoneColumnWidth);
    list->addColumn(QStringLiteral("Cell"), PhoneColumnWidth);
    list->addColumn(QStringLiteral("Email"), EmailColumnWidth);
    list->header()->setSectionsMovable(false);
    list->header()->setStretchLastSection(true);
    // Unchecked in the design, unlike the references' box; Edit checks it every time.

    QStringList captions = editCaptions();
    captions << QStringLiteral("Print List");
    const QList<QPushButton*> buttons = createCmdButtons(screen.window(), captions);
    screen.addButtons(buttons);
    connect(ui.chkShowAll, &QCheckBox::toggled, this, [this] { chkShowAll_Click(); });
    connect(ui.cmdSearch, &QPushButton::clicked, this, [this] { cmdSearch_Click(); });
    connect(list, &platform::ListView::DblClick, this,
            [this] { untrapped([this] { lstContacts_DblClick(); }); });
    QWidget* window = screen.finish();
    panel.orderTabs(list, buttons.first());
    return window;
}

void frmImpContacts::Form_Load() {
    prepareWindow();
    panel.showPicture();
    ResetContactForm();
}

void frmImpContacts::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetContactForm();
        break;
    case 1:
        ShowContactList();
        break;
    case 2:
        SaveContact();
        break;
    case 3:
        Unload();
        break;
    case 4:
        PrintContactList();
        break;
    default:
        break;
    }
}

// Runs for every change of the box's value, from the user or from code.
void frmImpContacts::chkShowAll_Click() {
    showAllClicked(ui.chkShowAll, ui.txtSearchName);
}

// Only flips the box; the change of value runs its click.
void frmImpContacts::lblShowAll_Click() {
    ui.chkShowAll->setChecked(!ui.chkShowAll->isChecked());
}

void frmImpContacts::ResetContactForm() {
    resetRecord(ui.fraList, [this] { ClearContactFields(); });
}

// Empties the search text too; the check box and the rows of the list stay.
void frmImpContacts::ClearContactFields() {
    clearTextBoxesAndKey();
}

// Every Edit lists all contacts, whatever the box was left at: it is checked here, which
// empties and disables the search text. A loaded row stays loaded behind the panel.
void frmImpContacts::ShowContactList() {
    showRecordList(ui.fraList, [this] {
        ui.chkShowAll->setChecked(true);
        FillContactList();
    });
}

// The search text goes in as typed: a quote in it is the data layer's error, and "%" and "_"
// match as the data store's like does.
void frmImpContacts::FillContactList() {
    try {
        QString statement;
        if (ui.chkShowAll->isChecked())
            statement = QStringLiteral("Select * from Contacts order by FullName");
        else
            statement = QStringLiteral("Select * from Contacts where fullname like '%") +
                        TrimStr(ui.txtSearchName->text()) + QStringLiteral("%' order by FullName");
        db::Recordset rs;
        rs.Open(statement, GenMod::Conn, db::adOpenStatic, db::adLockReadOnly, -1);
        // Cleared only now, so that a failed statement leaves the former rows on screen.
        ui.lstContacts->Clear();
        for (; !rs.eof(); rs.MoveNext())
            ui.lstContacts->addRow(
                TrimStr(rs.Fields(QStringLiteral("ContactID"))),
                {TrimStr(rs.Fields(QStringLiteral("FullName"))), TrimStr(rs.Fields(QStringLiteral("Phone"))),
                 TrimStr(rs.Fields(QStringLiteral("Cell"))), TrimStr(rs.Fields(QStringLiteral("Email")))});
        rs.Close();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

// An empty search text lists every row.
void frmImpContacts::cmdSearch_Click() {
    searchOnOwnConnection([this] { FillContactList(); });
}

// Not trapped here: a key beyond 16 bits, or no selection, ends at the outermost guard.
void frmImpContacts::lstContacts_DblClick() {
    auto* list = ui.lstContacts.get();
    if (list->ListCount() == 0)
        return;
    LoadContact(platform::CInt(list->itemText(list->selectedIndex())));
}

void frmImpContacts::LoadContact(qint16 key) {
    loadRecord(key, QStringLiteral("Select * from Contacts where ContactID=") + QString::number(key),
               ui.fraList, [this](db::Recordset& rs) {
                   const auto field = [&rs](const char* column) {
                       return TrimStr(rs.Fields(QString::fromLatin1(column)));
                   };
                   ui.txtName->setText(field("FullName"));
                   ui.txtAdd1->setText(field("Add1"));
                   ui.txtAdd2->setText(field("Add2"));
                   ui.txtAdd3->setText(field("Add3"));
                   ui.txtPhone->setText(field("Phone"));
                   ui.txtCell->setText(field("Cell"));
                   ui.txtFax->setText(field("Fax"));
                   ui.txtEmail->setText(field("Email"));
                   ui.txtRemarks->setPlainText(field("Remarks"));
               });
}

void frmImpContacts::SaveContact() {
    const QString name = TrimStr(ui.txtName->text());
    // The text values of the statements, in the table's order after the name.
    const QStringList others{TrimStr(ui.txtAdd1->text()),  TrimStr(ui.txtAdd2->text()),
                             TrimStr(ui.txtAdd3->text()),  TrimStr(ui.txtPhone->text()),
                             TrimStr(ui.txtCell->text()),  TrimStr(ui.txtFax->text()),
                             TrimStr(ui.txtEmail->text()), TrimStr(ui.txtRemarks->toPlainText())};
    const auto q = [&](int i) { return GenMod::FixQuotes(others[i]); };
    SaveSteps steps;
    // The name alone is required.
    steps.required = {{[&] { return name.isEmpty(); }, QStringLiteral("Please specify Contact name.")}};
    steps.duplicateFields = QStringLiteral("ContactID");
    // No quote swap on either path: a name with a quote breaks the test's statement, which
    // counts as no duplicate, so such a name is never tested.
    steps.duplicateSource = [&] {
        QString source = QStringLiteral("Contacts where FullName='") + name + QStringLiteral("'");
        if (EditMode)
            source += QStringLiteral(" and ContactID <>") + QString::number(CurrentRowID);
        return source;
    };
    steps.duplicateMessage = QStringLiteral("Duplicate Contact details not allowed.");
    steps.keyColumn = QStringLiteral("ContactID");
    steps.table = QStringLiteral("Contacts");
    steps.updateStatement = [&] {
        return QStringLiteral("Update Contacts set FullName='") + GenMod::FixQuotes(name) +
               QStringLiteral("', Add1='") + q(0) + QStringLiteral("', Add2='") + q(1) +
               QStringLiteral("', Add3='") + q(2) + QStringLiteral("', Phone='") + q(3) +
               QStringLiteral("', Cell='") + q(4) + QStringLiteral("', Fax='") + q(5) +
               QStringLiteral("', Email='") + q(6) + QStringLiteral("', Remarks='") + q(7) +
               QStringLiteral("', UpdatedBy=") + QString::number(Session::CurrentUserID) +
               QStringLiteral(" where ContactID=") + QString::number(CurrentRowID);
    };
    steps.insertStatement = [&] {
        QString statement = QStringLiteral("Insert into Contacts values(") + QString::number(CurrentRowID) +
                            QStringLiteral(",'") + GenMod::FixQuotes(name) + QStringLiteral("'");
        for (int i = 0; i < others.size(); ++i)
            statement += QStringLiteral(",'") + q(i) + QStringLiteral("'");
        return statement + QStringLiteral(",") + QString::number(Session::CurrentUserID) +
               QStringLiteral(")");
    };
    steps.reset = [this] { ResetContactForm(); };
    saveRecord(steps);
}

// Prints every contact from the reports' own recordset, whatever the panel shows.
void frmImpContacts::PrintContactList() {
    reports::PrintListTrapped(reports::VorlaneDE::instance().rscmdContactList(), reports::RptContactList());
}
