#include "frmIndexDocument.h"

#include "DocumentRows.h"
#include "SoftCopyWork.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/Dialogs.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"
#include "session/FieldCaptions.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"
#include "session/Session.h"

#include <QDate>
#include <QHeaderView>

using platform::TrimStr;

namespace {

constexpr int TitleLength = 200;
constexpr int PathLength = 250;
constexpr int BookmarkLength = 200;
constexpr int FieldWidth = 260;
constexpr int RemarksHeight = 70;
constexpr int ListHeight = 360;

const QString DateFormat = QStringLiteral("dd/MMM/yyyy");

// A picker's date as the statements write it: two-digit day, the month's short name in the
// running system's language, four-digit year.
QString statementDate(const platform::DatePicker* picker) {
    return platform::FormatDate(picker->Value(), DateFormat);
}

QString key(const platform::ComboBox* combo) {
    return QString::number(combo->ItemData(combo->ListIndex()));
}

// Runs one step of a load whose failing steps are passed over without a word.
template <class Step> void resumeNext(Step step) {
    try {
        step();
    } catch (const platform::Error&) {
    }
}

} // namespace

frmIndexDocument& frmIndexDocument::instance() {
    static auto* form = new frmIndexDocument;
    return *form;
}

QWidget* frmIndexDocument::build() {
    ScreenBuilder screen(QStringLiteral("frmIndexDocument"), QStringLiteral("Index Document"));
    for (auto [label, caption, picker] : {std::tuple{&ui.lblDocDate, "Document Date :", &ui.dtpDocDate},
                                          std::tuple{&ui.Label1, "Follow-up Date :", &ui.dtpFollowUp}}) {
        auto* made = screen.addField(*label, QString::fromLatin1(caption), *picker);
        made->setCheckBox(false);
        made->setCustomFormat(DateFormat);
        made->setMaximumWidth(160);
    }
    screen.addComboField(ui.lblDocType, QStringLiteral("Document Type :"), ui.cboDocType);
    screen.addComboField(ui.lblDocCategory, QStringLiteral("Document Category :"), ui.cboDocCategory);
    screen.addComboField(ui.lblDocSubCat, QStringLiteral("Document Sub-Category :"), ui.cboDocSubCategory);
    screen.addComboField(ui.lblDocChildCat, QStringLiteral("Document Child Category :"),
                         ui.cboDocChildCategory);
    screen.addTextField(ui.lblTitle1, QStringLiteral("Document Title 1 :"), ui.txtTitle1, TitleLength)
        ->setMinimumWidth(FieldWidth);
    screen.addTextField(ui.lblTitle2, QStringLiteral("Document Title 2 :"), ui.txtTitle2, TitleLength);
    // The path comes only from Browse or from a loaded row: the box takes no typing and no Tab.
    auto* path = screen.addTextField(ui.lblFilePath, QStringLiteral("Soft Copy File Path :"), ui.txtFilePath,
                                     PathLength);
    path->setReadOnly(true);
    path->setFocusPolicy(Qt::ClickFocus);

    QStringList captions = editCaptions();
    captions << QStringLiteral("Browse");
    const QList<QPushButton*> buttons = createCmdButtons(screen.window(), captions);
    screen.addBeside(buttons[4]);

    screen.addComboField(ui.lblFile, QStringLiteral("Hard Copy File No. :"), ui.cboFile);
    screen.addTextField(ui.lblBookmark, QStringLiteral("Bookmark :"), ui.txtBookmark, BookmarkLength);
    auto* remarks = screen.addField(ui.lblRemarks, QStringLiteral("Remarks :"), ui.txtRemarks);
    remarks->setFixedHeight(RemarksHeight);
    remarks->setTabChangesFocus(true); // Tab leaves the box, as on every other field

    auto* list = screen.addListOver(ui.lstDocs, ListHeight);
    list->setRows(new DocumentRows(6, list));
    const std::pair<const char*, int> columns[] = {{"IndexID", 0},        {"Title 1", 200},
                                                   {"Title 2", 130},      {"Doc. Date", 88},
                                                   {"Followup Date", 96}, {"Bookmark", 80}};
    for (const auto& [header, width] : columns)
        list->addColumn(QString::fromLatin1(header), width);
    list->header()->setSectionsMovable(false);

    screen.addButtons(buttons.mid(0, 4));
    // The preview of the soft copy whose path the box holds, chosen with Browse or loaded, so that
    // the clerk sees that the right file is attached before saving.
    auto* preview = ui.fraPreview.make(screen.window());
    screen.addAside(preview, ui.chkPreview.make(screen.window()), preview->tabChain());
    preview->bindToggle(ui.chkPreview, QStringLiteral("Index"));
    preview->showFile(QString());
    connect(path, &QLineEdit::textChanged, preview, &PreviewPane::showFile);
    connect(ui.cboDocCategory, &platform::ComboBox::Click, this, [this] { cboDocCategory_Click(); });
    connect(ui.cboDocSubCategory, &platform::ComboBox::Click, this, [this] { cboDocSubCategory_Click(); });
    connect(list, &platform::ListView::DblClick, this, [this] { untrapped([this] { lstDocs_DblClick(); }); });
    return screen.finish();
}

void frmIndexDocument::Form_Load() {
    prepareWindow();
    ResetDocumentForm();
    // The settings' names stand until the table's row replaces them; the two title names
    // there have no " :", which shows only when the data store cannot be reached.
    const auto setting = [](const char* key, const char* defaultText) {
        return Session::setting(QString::fromLatin1(key), QString::fromLatin1(defaultText));
    };
    ui.lblDocType->setText(setting("DocTypeCaption", "Document Type :"));
    ui.lblDocCategory->setText(setting("DocCatCaption", "Document Category :"));
    ui.lblDocSubCat->setText(setting("DocSubCatCaption", "Document Sub-Category :"));
    ui.lblDocChildCat->setText(setting("DocChildCatCaption", "Document Child Category :"));
    ui.lblTitle1->setText(setting("DocTitle1Caption", "Document Title 1"));
    ui.lblTitle2->setText(setting("DocTitle2Caption", "Document Title 2"));
    for (QLabel* label : {ui.lblDocType.get(), ui.lblDocCategory.get(), ui.lblDocSubCat.get(),
                          ui.lblDocChildCat.get(), ui.lblTitle1.get(), ui.lblTitle2.get()})
        platform::setBuddy(label, label->buddy());

    // No hourglass on this screen. The lower two levels wait for a choice.
    readAtLoad(Pointer::Unchanged, [this] {
        GenMod::FillCombo(QStringLiteral("TypeID,DocType"), QStringLiteral("DocumentType order by DocType"),
                          ui.cboDocType);
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), ui.cboDocCategory);
        GenMod::FillCombo(QStringLiteral("FileID,Filenumber"), QStringLiteral("File order by filenumber"),
                          ui.cboFile);
        FieldCaptions::Apply(FieldCaptions::fullNameLabels({ui.lblDocType, ui.lblDocCategory, ui.lblDocSubCat,
                                                            ui.lblDocChildCat, ui.lblTitle1, ui.lblTitle2}));
    });
}

void frmIndexDocument::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetDocumentForm();
        break;
    case 1:
        ShowDocumentList();
        break;
    case 2:
        SaveDocument();
        break;
    case 3:
        Unload();
        break;
    case 4:
        BrowseSoftCopy();
        break;
    default:
        break;
    }
}

// Each level refills only the next one: a new category leaves the child categories of the
// earlier sub-category in their box until a sub-category is chosen. Both also run nested
// inside LoadDocument.
void frmIndexDocument::cboDocCategory_Click() {
    refillBelow(ui.cboDocCategory, QStringLiteral("SubCatID, SubCategory"),
                QStringLiteral("DocumentSubCategory where CatID="), QStringLiteral(" order by SubCategory"),
                ui.cboDocSubCategory);
}

void frmIndexDocument::cboDocSubCategory_Click() {
    refillBelow(ui.cboDocSubCategory, QStringLiteral("ChildCatID, ChildCategory"),
                QStringLiteral("DocumentChildCategory where SubCatID="),
                QStringLiteral(" order by ChildCategory"), ui.cboDocChildCategory);
}

// Empties the text boxes, puts both dates at today and clears the choice of every drop-down
// list; the lists keep their items.
void frmIndexDocument::ResetDocumentForm() {
    resetRecord(ui.lstDocs, [this] {
        clearTextBoxesAndKey();
        for (auto* picker : window()->findChildren<platform::DatePicker*>())
            picker->setValue(QDate::currentDate());
        for (auto* combo : window()->findChildren<platform::ComboBox*>())
            combo->setListIndex(-1);
    });
}

// The soft copy stays where the user keeps it: only its path is taken.
void frmIndexDocument::BrowseSoftCopy() {
    const QString chosen = platform::showOpenDialog(
        window(), QString(),
        QStringLiteral(
            "Image-Word-Excel-PDF documents|*.bmp;*.jpg;*.gif;*.png;*.doc;*.docx;*.xls;*.xlsx;*.pdf"));
    if (!chosen.trimmed().isEmpty())
        ui.txtFilePath->setText(chosen);
}

void frmIndexDocument::SaveDocument() {
    auto* type = ui.cboDocType.get();
    auto* category = ui.cboDocCategory.get();
    auto* subCategory = ui.cboDocSubCategory.get();
    auto* childCategory = ui.cboDocChildCategory.get();
    auto* file = ui.cboFile.get();
    const auto none = [](const platform::ComboBox* combo) {
        return [combo] { return combo->ListIndex() == -1; };
    };

    SaveSteps steps;
    // Type and category leave the focus where it is; the later steps move it, the path's to
    // the Browse button.
    steps.required = {
        {none(type), QStringLiteral("Please specify Document Type.")},
        {none(category), QStringLiteral("Please specify Document Category.")},
        {none(subCategory), QStringLiteral("Please specify Document Sub-Category."), subCategory},
        {none(childCategory), QStringLiteral("Please specify Document Child Category."), childCategory},
        {[this] { return TrimStr(ui.txtFilePath->text()).isEmpty(); },
         QStringLiteral("Please specify File path."), cmd(4)},
        {none(file), QStringLiteral("Please select File number."), file},
    };
    steps.keyColumn = QStringLiteral("IndexID");
    steps.table = QStringLiteral("Vorlane");

    // The values are read when the statement is built. The child category is read at the
    // position of the chosen category: a child list shorter than that fails here.
    const auto childKey = [childCategory, category] {
        return QString::number(childCategory->ItemData(category->ListIndex()));
    };
    const auto title1 = [this] { return TrimStr(ui.txtTitle1->text()); };
    const auto title2 = [this] { return TrimStr(ui.txtTitle2->text()); };
    const auto filePath = [this] { return TrimStr(ui.txtFilePath->text()); };
    const auto bookmark = [this] { return TrimStr(ui.txtBookmark->text()); };
    const auto remarks = [this] { return TrimStr(ui.txtRemarks->toPlainText()); };
    const auto user = [] { return QString::number(Session::CurrentUserID); };

    // A new row takes its texts as typed; a changed row has its quotes turned into back-ticks.
    // The path goes as it is into both.
    steps.insertStatement = [&] {
        return QStringLiteral("Insert into Vorlane Values(") + QString::number(CurrentRowID) +
               QStringLiteral(", '") + statementDate(ui.dtpDocDate) + QStringLiteral("','") +
               statementDate(ui.dtpFollowUp) + QStringLiteral("',") + key(type) + QStringLiteral(",") +
               key(category) + QStringLiteral(",") + key(subCategory) + QStringLiteral(",") + childKey() +
               QStringLiteral(",'") + title1() + QStringLiteral("','") + title2() + QStringLiteral("','") +
               filePath() + QStringLiteral("',") + key(file) + QStringLiteral(",'") + bookmark() +
               QStringLiteral("','") + remarks() + QStringLiteral("',") + user() + QStringLiteral(")");
    };
    steps.updateStatement = [&] {
        using GenMod::FixQuotes;
        return QStringLiteral("Update Vorlane Set DocDate='") + statementDate(ui.dtpDocDate) +
               QStringLiteral("', FollowupDate='") + statementDate(ui.dtpFollowUp) +
               QStringLiteral("', TypeID=") + key(type) + QStringLiteral(", CatID=") + key(category) +
               QStringLiteral(", SubCatID=") + key(subCategory) + QStringLiteral(", ChildCatID=") +
               childKey() + QStringLiteral(", Title1='") + FixQuotes(title1()) +
               QStringLiteral("', Title2='") + FixQuotes(title2()) + QStringLiteral("', FilePath='") +
               filePath() + QStringLiteral("', FileID=") + key(file) + QStringLiteral(" , Bookmark='") +
               FixQuotes(bookmark()) + QStringLiteral("', Remarks='") + FixQuotes(remarks()) +
               QStringLiteral("', UpdatedBy=") + user() + QStringLiteral(" where IndexID=") +
               QString::number(CurrentRowID);
    };
    // The soft copy of the document just saved is read next, if it waits.
    steps.reset = [this] {
        SoftCopyWork::readNext(CurrentRowID);
        ResetDocumentForm();
    };
    saveRecord(steps);
}

// Starts clean, lists every document and shows the list; the list shows even when the data
// store could not be reached, with the rows of its last filling.
void frmIndexDocument::ShowDocumentList() {
    try {
        ResetDocumentForm();
        if (GenMod::OpenConnection()) {
            FillDocumentList();
            GenMod::CloseConnection();
        }
        ui.lstDocs->show();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbExclamation);
    }
}

// Every document, newest first, with no limit; the list shows its first rows while the rest
// are read. A row that cannot be shown (a Null in a shown column) ends the list there with
// the message; the rows before it stay.
void frmIndexDocument::FillDocumentList() {
    platform::setMousePointer(platform::vbHourglass);
    try {
        readDocuments(
            ui.lstDocs, QStringLiteral("Select * from Vorlane order by DocDate desc"),
            {{"IndexID"}, {"Title1"}, {"Title2"}, {"DocDate", true}, {"FollowupDate", true}, {"Bookmark"}});
        platform::setMousePointer(platform::vbDefault);
    } catch (const platform::Error& e) {
        platform::setMousePointer(platform::vbDefault);
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

// Not trapped here: no selection ends at the outermost guard.
void frmIndexDocument::lstDocs_DblClick() {
    auto* list = ui.lstDocs.get();
    if (list->ListCount() == 0)
        return;
    if (!GenMod::OpenConnection())
        return;
    LoadDocument(platform::CLng(list->itemText(list->selectedIndex())));
    GenMod::CloseConnection();
    const bool picking = window()->focusWidget() == list;
    list->hide();
    if (picking)
        ui.dtpDocDate->setFocus();
}

// Each failing step is passed over without a word and the next one runs. Choosing the
// category and the sub-category refills the level below (FindItemIndex picks the first item
// on its way, so twice), which is why each level is looked up after the one above it.
void frmIndexDocument::LoadDocument(qint32 DocumentID) {
    db::Recordset rs;
    resumeNext([&] {
        rs.Open(QStringLiteral("Select * from Vorlane where IndexID=") + QString::number(DocumentID),
                GenMod::Conn, db::adOpenStatic, db::adLockReadOnly, -1);
    });
    bool found = true;
    resumeNext([&] { found = !rs.eof(); });
    if (found) {
        const auto field = [&rs](const char* name) { return rs.Fields(QString::fromLatin1(name)); };
        const auto date = [&field](platform::DatePicker* picker, const char* name) {
            resumeNext([&] {
                // A Null has no date to give: the picker keeps today's.
                const QDate value = platform::CDate(field(name));
                picker->setValue(value);
            });
        };
        const auto choose = [&field](platform::ComboBox* combo, const char* name) {
            resumeNext(
                [&] { combo->setListIndex(GenMod::FindItemIndex(platform::CStr(field(name)), combo)); });
        };
        resumeNext([&] {
            EditMode = true;
            CurrentRowID = DocumentID;
        });
        date(ui.dtpDocDate, "DocDate");
        date(ui.dtpFollowUp, "FollowupDate");
        choose(ui.cboDocType, "TypeID");
        choose(ui.cboDocCategory, "CatID");
        choose(ui.cboDocSubCategory, "SubCatID");
        choose(ui.cboDocChildCategory, "ChildCatID");
        for (const auto& boxField :
             {std::pair{ui.txtTitle1.get(), "Title1"}, std::pair{ui.txtTitle2.get(), "Title2"},
              std::pair{ui.txtFilePath.get(), "FilePath"}})
            resumeNext([&] { boxField.first->setText(TrimStr(field(boxField.second))); });
        choose(ui.cboFile, "FileID");
        resumeNext([&] { ui.txtBookmark->setText(TrimStr(field("Bookmark"))); });
        resumeNext([&] { ui.txtRemarks->setPlainText(TrimStr(field("Remarks"))); });
    }
    resumeNext([&] { rs.Close(); });
}
