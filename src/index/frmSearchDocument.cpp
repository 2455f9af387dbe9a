#include "frmSearchDocument.h"

#include "DocumentRows.h"
#include "platform/Controls.h"
#include "platform/Conversions.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"
#include "platform/Shell.h"
#include "reports/Reports.h"
#include "reports/VorlaneDE.h"
#include "session/FieldCaptions.h"
#include "session/GenMod.h"
#include "session/Session.h"

#include <QDate>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QVBoxLayout>

using platform::TrimStr;

namespace {

constexpr int FieldWidth = 220;
constexpr int ListHeight = 260;
constexpr int ListWidth = 500;

QString key(const platform::ComboBox* combo) {
    // The key is written as a plain decimal number.
    return platform::NumberText(platform::CDbl(QString::number(combo->ItemData(combo->ListIndex()))));
}

// The settings key of the viewer for an upper-cased extension; empty for a kind not known.
QString viewerKey(const QString& extension) {
    static const std::pair<const char*, const char*> kinds[] = {
        {"DOC", "Word"},  {"DOCX", "Word"}, {"GIF", "Image"},  {"BMP", "Image"},
        {"JPG", "Image"}, {"XLS", "Excel"}, {"XLSX", "Excel"}, {"PDF", "PDF"},
    };
    for (const auto& [known, key] : kinds)
        if (extension == QLatin1String(known))
            return QString::fromLatin1(key);
    return QString();
}

QString dateText(const QVariant& value, const char* format) {
    return platform::FormatDate(value, QString::fromLatin1(format));
}

// A caption without its last character, the colon of " :".
QString withoutLast(const QLabel* label) {
    QString text = TrimStr(label->text());
    text.chop(1);
    return text;
}

} // namespace

frmSearchDocument& frmSearchDocument::instance() {
    static auto* form = new frmSearchDocument;
    return *form;
}

QWidget* frmSearchDocument::build() {
    auto* w = new QWidget;
    w->setObjectName(QStringLiteral("frmSearchDocument"));
    w->setWindowTitle(QStringLiteral("Search Document"));
    auto* outer = new QVBoxLayout(w);
    outer->setContentsMargins(16, 16, 16, 12);
    outer->setSpacing(10);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(8);
    outer->addLayout(grid);

    QList<QWidget*> order;
    buildCriteria(w, grid, order);
    // The result list, and beside it the preview of the selected document.
    auto* split = new QSplitter(Qt::Horizontal, w);
    split->setChildrenCollapsible(false);
    split->addWidget(buildResultList(w));
    split->addWidget(ui.fraPreview.make(w));
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    outer->addWidget(split, 1);
    order << ui.lstList;
    outer->addLayout(buildBottomRow(w, order));
    // The preview's controls come last, so that the keyboard's way through the screen of before
    // is unchanged.
    order << ui.chkPreview << ui.fraPreview->tabChain();
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
    order.first()->setFocus();
    connectHandlers();
    return w;
}

// Captions and fields in two columns: the lists at the left, the texts at the right, the two
// date ranges below them, and the Search button under the texts.
void frmSearchDocument::buildCriteria(QWidget* w, QGridLayout* grid, QList<QWidget*>& order) {
    const auto row = [&](ui::Control<QLabel>& label, const char* caption, QWidget* field, int r, int c) {
        auto* made = label.make(w);
        made->setText(QString::fromLatin1(caption));
        made->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        platform::setBuddy(made, field);
        grid->addWidget(made, r, c * 2);
        grid->addWidget(field, r, c * 2 + 1);
        field->setMinimumWidth(c == 0 ? FieldWidth : FieldWidth - 40);
    };
    int r = 0;
    for (auto [label, caption, combo] :
         {std::tuple{&ui.lblDocType, "Doc. Type :", &ui.cboDocType},
          std::tuple{&ui.lblDocCategory, "Doc. Category :", &ui.cboDocCategory},
          std::tuple{&ui.lblDocSubCat, "Doc. Sub-Category :", &ui.cboDocSubCategory},
          std::tuple{&ui.lblDocChildCat, "Doc. Child Category :", &ui.cboDocChildCategory},
          std::tuple{&ui.Label1, "File No. :", &ui.cboFileNo}}) {
        auto* made = combo->make(w);
        made->setMaxVisibleItems(15);
        row(*label, caption, made, r++, 0);
        order << made;
    }
    r = 0;
    for (auto [label, caption, box] : {std::tuple{&ui.lblTitle1, "Doc. Title 1 :", &ui.txtTitle1},
                                       std::tuple{&ui.lblTitle2, "Doc. Title 2 :", &ui.txtTitle2},
                                       std::tuple{&ui.lblBookmark, "Bookmark :", &ui.txtBookmark},
                                       std::tuple{&ui.lblRemarks, "Remarks :", &ui.txtRemarks}}) {
        auto* made = box->make(w);
        row(*label, caption, made, r++, 1);
        order << made;
    }
    const int softCopyRow = r;
    r = 5;
    for (auto [fromLabel, fromCaption, from, toLabel, to] :
         {std::tuple{&ui.lblDocDate, "Doc. Date between :", &ui.dtpDocFrom, &ui.lblDocDateTo, &ui.dtpDocTo},
          std::tuple{&ui.lblFollowupdate, "Follow-up Date between :", &ui.dtpFollowUpFrom,
                     &ui.lblFollowupDateTo, &ui.dtpFollowUpTo}}) {
        auto* first = from->make(w);
        auto* second = to->make(w);
        for (auto* picker : {first, second})
            picker->setCustomFormat(QStringLiteral("dd/MMM/yyyy"));
        row(*fromLabel, fromCaption, first, r, 0);
        row(*toLabel, "and :", second, r++, 1);
        order << first << second;
    }
    // The text of the soft copy, beside the file number, after the four texts typed by hand; the
    // keyboard reaches it after the eleven criteria of before, which keep their order (made after
    // them, so that the date pickers' parts keep their places in the focus chain).
    auto* softCopyText = ui.txtSoftCopyText.make(w);
    row(ui.lblSoftCopyText, "Soft Copy Text :", softCopyText, softCopyRow, 1);
    order << softCopyText;
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);

    auto* search = ui.cmdSearch.make(w);
    search->setText(QStringLiteral("Search"));
    search->setMinimumWidth(90);
    grid->addWidget(search, r, 3, Qt::AlignRight);
    order << search;
}

platform::ListView* frmSearchDocument::buildResultList(QWidget* w) {
    auto* list = ui.lstList.make(w);
    list->setToolTip(QStringLiteral("Double click a record to quickly view its contents"));
    list->setAccessibleName(QStringLiteral("Double click a record to quickly view its contents"));
    list->setMinimumSize(ListWidth, ListHeight);
    list->setRows(new DocumentRows(9, list));
    const std::pair<const char*, int> columns[] = {
        {"IndexID", 0},   {"Title 1", 170}, {"Title 2", 110}, {"Doc. Date", 88}, {"Followup Date", 96},
        {"Bookmark", 70}, {"Remark", 100},  {"File No.", 80}, {"File Path", 0}};
    for (const auto& [header, width] : columns)
        list->addColumn(QString::fromLatin1(header), width);
    list->header()->setSectionsMovable(false);
    list->header()->setStretchLastSection(false);
    return list;
}

// The count of the rows found, then the action buttons.
QHBoxLayout* frmSearchDocument::buildBottomRow(QWidget* w, QList<QWidget*>& order) {
    auto* bottom = new QHBoxLayout;
    auto* count = ui.lblNoOfRecords.make(w);
    count->setText(QStringLiteral("(0 Record/s found)"));
    bottom->addWidget(count);
    bottom->addStretch(1);
    const QList<QPushButton*> buttons = createCmdButtons(
        w, {QStringLiteral("Reset"), QStringLiteral("Close"), QStringLiteral("Print Search List")});
    for (auto* button : buttons) {
        button->setMinimumWidth(80);
        bottom->addWidget(button);
        order << button;
    }
    bottom->addSpacing(12);
    bottom->addWidget(ui.chkPreview.make(w));
    return bottom;
}

void frmSearchDocument::connectHandlers() {
    connect(ui.cmdSearch, &QPushButton::clicked, this, [this] { untrapped([this] { cmdSearch_Click(); }); });
    connect(ui.lstList, &platform::ListView::DblClick, this,
            [this] { untrapped([this] { lstList_DblClick(); }); });
    // The selection moves by click or by the arrow keys; a new list selects nothing.
    connect(ui.lstList->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { lstList_SelectionChanged(); });
    connect(ui.lstList->model(), &QAbstractItemModel::modelReset, this,
            [this] { lstList_SelectionChanged(); });
    ui.fraPreview->bindToggle(ui.chkPreview, QStringLiteral("Search"));
    connect(ui.cboDocCategory, &platform::ComboBox::Click, this, [this] { cboDocCategory_Click(); });
    connect(ui.cboDocSubCategory, &platform::ComboBox::Click, this, [this] { cboDocSubCategory_Click(); });
    connect(ui.dtpDocFrom, &platform::DatePicker::Change, this, [this] { dtpDocFrom_Change(); });
    connect(ui.dtpDocTo, &platform::DatePicker::Change, this, [this] { dtpDocTo_Change(); });
    connect(ui.dtpFollowUpFrom, &platform::DatePicker::Change, this, [this] { dtpFollowUpFrom_Change(); });
    connect(ui.dtpFollowUpTo, &platform::DatePicker::Change, this, [this] { dtpFollowUpTo_Change(); });
}

void frmSearchDocument::Form_Load() {
    prepareWindow();
    ResetSearchForm();
    // This screen alone shortens the default names to "Doc.".
    readAtLoad(Pointer::Unchanged, [this] {
        GenMod::FillCombo(QStringLiteral("TypeID, DocType"), QStringLiteral("DocumentType order by DocType"),
                          ui.cboDocType);
        GenMod::FillCombo(QStringLiteral("CatID, DocCategory"),
                          QStringLiteral("DocumentCategory order by DocCategory"), ui.cboDocCategory);
        GenMod::FillCombo(QStringLiteral("FileID, Filenumber"), QStringLiteral("File order by Filenumber"),
                          ui.cboFileNo);
        FieldCaptions::Apply({
            FieldCaptions::label(ui.lblDocType, QStringLiteral("DocType"), QStringLiteral("Doc. Type :")),
            FieldCaptions::label(ui.lblDocCategory, QStringLiteral("DocCat"),
                                 QStringLiteral("Doc. Category :")),
            FieldCaptions::label(ui.lblDocSubCat, QStringLiteral("DocSubCat"),
                                 QStringLiteral("Doc. Sub-Category :")),
            FieldCaptions::label(ui.lblDocChildCat, QStringLiteral("DocChildCat"),
                                 QStringLiteral("Doc. Child Category :")),
            FieldCaptions::label(ui.lblTitle1, QStringLiteral("DocTitle1"), QStringLiteral("Doc. Title 1 :")),
            FieldCaptions::label(ui.lblTitle2, QStringLiteral("DocTitle2"), QStringLiteral("Doc. Title 2 :")),
        });
    });
}

void frmSearchDocument::cmd_Click(int index) {
    switch (index) {
    case 0:
        ResetSearchForm();
        break;
    case 1:
        Unload();
        break;
    case 2:
        PrintSearchList();
        break;
    default:
        break;
    }
}

// A new category refills the sub-categories only: the child list keeps its items and its
// choice, which still counts in the search.
void frmSearchDocument::cboDocCategory_Click() {
    refillBelow(ui.cboDocCategory, QStringLiteral("SubCatID, SubCategory"),
                QStringLiteral("DocumentSubCategory where CatID="), QString(), ui.cboDocSubCategory);
}

void frmSearchDocument::cboDocSubCategory_Click() {
    refillBelow(ui.cboDocSubCategory, QStringLiteral("ChildCatID, ChildCategory"),
                QStringLiteral("DocumentChildCategory where subCatID="), QString(), ui.cboDocChildCategory);
}

// Each range stays two-sided: the From date is copied to To, Null included, and a To cleared
// while From holds a date takes From's date again.
void frmSearchDocument::dtpDocFrom_Change() {
    ui.dtpDocTo->setValue(ui.dtpDocFrom->Value());
}

void frmSearchDocument::dtpDocTo_Change() {
    if (platform::IsNull(ui.dtpDocTo->Value()))
        ui.dtpDocTo->setValue(ui.dtpDocFrom->Value());
}

void frmSearchDocument::dtpFollowUpFrom_Change() {
    ui.dtpFollowUpTo->setValue(ui.dtpFollowUpFrom->Value());
}

void frmSearchDocument::dtpFollowUpTo_Change() {
    if (platform::IsNull(ui.dtpFollowUpTo->Value()))
        ui.dtpFollowUpTo->setValue(ui.dtpFollowUpFrom->Value());
}

// Empties the boxes, clears the choices (the lower lists keep their items), shows today in
// each picker but leaves it unticked, and empties the result list. The count stays.
void frmSearchDocument::ResetSearchForm() {
    platform::clearTextBoxes(window());
    for (auto* combo : window()->findChildren<platform::ComboBox*>())
        combo->setListIndex(-1);
    for (auto* picker :
         {ui.dtpDocFrom.get(), ui.dtpDocTo.get(), ui.dtpFollowUpFrom.get(), ui.dtpFollowUpTo.get()}) {
        picker->setValue(QDate::currentDate());
        picker->setValue(QVariant());
    }
    static_cast<DocumentRows*>(ui.lstList->rows())->clear();
    QueryDescription.clear();
}

void frmSearchDocument::cmdSearch_Click() {
    platform::setMousePointer(platform::vbHourglass);
    if (GenMod::OpenConnection()) {
        FillResultList(BuildSearchStatement());
        GenMod::CloseConnection();
    }
    ui.lblNoOfRecords->setText(QStringLiteral("(") + QString::number(ui.lstList->ListCount()) +
                               QStringLiteral(" Record/s found)"));
    platform::setMousePointer(platform::vbDefault);
}

// The statement over the documents and, beside it, the criteria as a sentence. Whether a
// Where comes is decided on the texts as typed, blanks included; whether a text criterion
// comes, on the trimmed text. Each criterion adds "<term> and " to the statement.
QString frmSearchDocument::BuildSearchStatement() {
    QueryDescription.clear();
    QString statement =
        QStringLiteral("Select I.*,F.FileNumber from Vorlane I left join File F on F.FileID=I.FileID ");
    if (anyCriterion())
        statement += QStringLiteral("Where ");
    addClassificationCriteria(statement);
    addTextCriteria(statement);
    addDateCriteria(statement);
    if (ui.cboFileNo->ListIndex() != -1) {
        statement += QStringLiteral("I.FileID=") + key(ui.cboFileNo) + QStringLiteral(" and ");
        QueryDescription += QStringLiteral(" File Number : ") + TrimStr(ui.cboFileNo->Text());
    }
    addSoftCopyCriterion(statement);
    if (statement.endsWith(QLatin1String("and ")))
        statement.chop(4);
    return statement + QStringLiteral(" order by I.DocDate");
}

bool frmSearchDocument::anyCriterion() const {
    const QList<platform::ComboBox*> combos = {ui.cboDocType, ui.cboDocCategory, ui.cboDocSubCategory,
                                               ui.cboDocChildCategory, ui.cboFileNo};
    const QList<QLineEdit*> texts = {ui.txtTitle1, ui.txtTitle2, ui.txtBookmark, ui.txtRemarks,
                                     ui.txtSoftCopyText};
    const QList<platform::DatePicker*> pickers = {ui.dtpDocFrom, ui.dtpDocTo, ui.dtpFollowUpFrom,
                                                  ui.dtpFollowUpTo};
    return std::any_of(texts.begin(), texts.end(), [](auto* t) { return !t->text().isEmpty(); }) ||
           std::any_of(pickers.begin(), pickers.end(),
                       [](auto* p) { return !platform::IsNull(p->Value()); }) ||
           std::any_of(combos.begin(), combos.end(), [](auto* c) { return c->ListIndex() != -1; });
}

// The four levels of the classification; the type's sentence starts the description anew.
void frmSearchDocument::addClassificationCriteria(QString& statement) {
    const auto chosen = [](const platform::ComboBox* combo) { return combo->ListIndex() >= 0; };
    const auto caption = [](const QLabel* label) { return TrimStr(label->text()); };
    if (chosen(ui.cboDocType)) {
        statement += QStringLiteral("I.TypeID=") + key(ui.cboDocType) + QStringLiteral(" and ");
        QueryDescription = caption(ui.lblDocType) + QLatin1Char(' ') + TrimStr(ui.cboDocType->Text());
    }
    const std::tuple<platform::ComboBox*, const char*, QLabel*> levels[] = {
        {ui.cboDocCategory, "I.CatID=", ui.lblDocCategory},
        {ui.cboDocSubCategory, "I.SubCatID=", ui.lblDocSubCat},
        {ui.cboDocChildCategory, "I.ChildCatID=", ui.lblDocChildCat}};
    for (const auto& [combo, piece, label] : levels) {
        if (!chosen(combo))
            continue;
        statement += QString::fromLatin1(piece) + key(combo) + QStringLiteral(" and ");
        QueryDescription += QLatin1Char(' ') + caption(label) + QLatin1Char(' ') + TrimStr(combo->Text());
    }
}

// Contains-searches of the four texts. A "%" or "_" typed by the user acts as a wildcard; only
// the quote is treated.
void frmSearchDocument::addTextCriteria(QString& statement) {
    const auto caption = [](const QLabel* label) { return TrimStr(label->text()); };
    const std::tuple<QLineEdit*, const char*, QString> likes[] = {
        {ui.txtTitle1, "I.Title1", caption(ui.lblTitle1)},
        {ui.txtTitle2, "I.Title2", caption(ui.lblTitle2)},
        {ui.txtBookmark, "I.Bookmark", QStringLiteral("Bookmark :")},
        {ui.txtRemarks, "I.remarks", QStringLiteral("Remarks :")}};
    for (const auto& [box, column, name] : likes) {
        const QString text = TrimStr(box->text());
        if (text.isEmpty())
            continue;
        statement += QString::fromLatin1(column) + QStringLiteral(" like '%") + GenMod::FixQuotes(text) +
                     QStringLiteral("%' and ");
        QueryDescription += QLatin1Char(' ') + name + QLatin1Char(' ') + text;
    }
}

// A contains-search over the texts read from the soft copies, as over the titles. It asks for the
// documents among those whose soft copy holds the text, so that the text's index finds them; a
// document whose soft copy has not been read yet is not among them. The texts were read from the
// files, not typed through a save: a quote stands in them as a quote, and is so searched for.
void frmSearchDocument::addSoftCopyCriterion(QString& statement) {
    const QString text = TrimStr(ui.txtSoftCopyText->text());
    if (text.isEmpty())
        return;
    QString pattern = text;
    pattern.replace(QLatin1Char('\''), QStringLiteral("''"));
    statement += QStringLiteral("I.IndexID in (select S.IndexID from SoftCopy S where S.SoftText like '%") +
                 pattern + QStringLiteral("%') and ");
    QueryDescription += QStringLiteral(" Soft Copy Text : ") + text;
}

// The two date ranges. The statement writes two-digit years, the sentence four. The follow-up
// range's sentence reads the document-date pickers.
void frmSearchDocument::addDateCriteria(QString& statement) {
    const QVariant docFrom = ui.dtpDocFrom->Value();
    const QVariant docTo = ui.dtpDocTo->Value();
    if (!platform::IsNull(docFrom)) {
        statement += QStringLiteral("I.DocDate >= #") + dateText(docFrom, "dd-MMM-yy") +
                     QStringLiteral("# and I.DocDate <=#") + dateText(docTo, "dd-MMM-yy") +
                     QStringLiteral("# and ");
        QueryDescription += QStringLiteral(" Document date between : ") + dateText(docFrom, "dd-MMM-yyyy") +
                            QStringLiteral(" and ") + dateText(docTo, "dd-MMM-yyyy");
    }
    const QVariant followFrom = ui.dtpFollowUpFrom->Value();
    if (!platform::IsNull(followFrom)) {
        statement += QStringLiteral("I.FollowupDate >= #") + dateText(followFrom, "dd-MMM-yy") +
                     QStringLiteral("# and I.FollowupDate <=#") +
                     dateText(ui.dtpFollowUpTo->Value(), "dd-MMM-yy") + QStringLiteral("# and ");
        QueryDescription += QStringLiteral(" Follow-up date between : ") + dateText(docFrom, "dd-MMM-yyyy") +
                            QStringLiteral(" and ") + dateText(docTo, "dd-MMM-yyyy");
    }
}

// The rows show as they arrive. A refused statement leaves the old rows; a Null (a document
// whose file is gone has no file number) ends the list at that row with the message.
void frmSearchDocument::FillResultList(const QString& statement) {
    try {
        readDocuments(ui.lstList, statement,
                      {{"IndexID"},
                       {"Title1"},
                       {"Title2"},
                       {"DocDate", true},
                       {"FollowupDate", true},
                       {"Bookmark"},
                       {"Remarks"},
                       {"FileNumber"},
                       {"FilePath"}});
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

// Copies the listed rows into the print table, one column off by design (the first printed
// column takes the key), and prints them under the sentence of the criteria as they stand
// now, headed by this screen's captions.
void frmSearchDocument::PrintSearchList() {
    auto* list = ui.lstList.get();
    if (list->ListCount() == 0)
        return;
    platform::setMousePointer(platform::vbHourglass);
    bool InTransaction = false;
    try {
        BuildSearchStatement();
        if (GenMod::OpenConnection()) {
            GenMod::Conn->BeginTrans();
            InTransaction = true;
            GenMod::Conn->Execute(QStringLiteral("Delete from PrintSearchResult"), -1);
            db::Recordset rs;
            rs.Open(QStringLiteral("Select * from PrintSearchResult"), GenMod::Conn, db::adOpenDynamic,
                    db::adLockOptimistic, -1);
            const char* const columns[] = {"Title1",   "Title2",  "DocDate",    "FollowUpDate",
                                           "Bookmark", "Remarks", "FileNumber", "FilePath"};
            for (int row = 0; row < list->ListCount(); ++row) {
                rs.AddNew();
                for (int c = 0; c < 8; ++c)
                    rs.setField(QString::fromLatin1(columns[c]), TrimStr(list->itemText(row, c)));
                rs.Update();
            }
            rs.Close();
            GenMod::Conn->CommitTrans();
            InTransaction = false;
            GenMod::CloseConnection();
        }
        reports::OpenOrRequery(reports::VorlaneDE::instance().rscmdSearchResult());
        reports::Report& report = reports::rptSearchReport();
        report.Show();
        if (TrimStr(QueryDescription).isEmpty())
            QueryDescription = QStringLiteral("All Records");
        report.Sections(QStringLiteral("ReportHeader"))
            .Controls(QStringLiteral("lblQuery"))
            .setCaption(TrimStr(QueryDescription));
        auto& heading = report.Sections(QStringLiteral("PageHeader"));
        heading.Controls(QStringLiteral("lblDocTitle1"))
            .setCaption(withoutLast(ui.lblTitle1) + QLatin1Char('/'));
        heading.Controls(QStringLiteral("lblDocTitle2")).setCaption(withoutLast(ui.lblTitle2));
        report.Refresh();
        platform::setMousePointer(platform::vbDefault);
    } catch (const platform::Error& e) {
        platform::setMousePointer(platform::vbDefault);
        GenMod::AbandonConnection(InTransaction);
        platform::MsgBox(e.description(), platform::vbCritical);
    } catch (const std::exception& e) {
        // A report that cannot be laid out (such as a font that cannot be loaded).
        platform::setMousePointer(platform::vbDefault);
        platform::MsgBox(QString::fromLocal8Bit(e.what()), platform::vbCritical);
    }
}

// The preview follows the selected row: its soft copy, or a word that nothing is selected.
void frmSearchDocument::lstList_SelectionChanged() {
    const platform::ListView* list = ui.lstList;
    const QModelIndex current = list->currentIndex();
    if (!current.isValid() || current.row() >= list->ListCount())
        ui.fraPreview->showNothing(QStringLiteral("No document is selected."));
    else
        ui.fraPreview->showFile(TrimStr(list->itemText(current.row(), 8)));
}

// Opens the chosen document's soft copy in the viewer set under Settings for its kind. The
// kind is the last four characters of the path without their dots; only eight kinds are
// known, and nothing else is tried for the others.
void frmSearchDocument::lstList_DblClick() {
    const platform::ListView* list = ui.lstList;
    if (list->ListCount() == 0)
        return;
    const int row = qMax(list->selectedIndex(), 0);
    const QString path = TrimStr(list->itemText(row, 8));
    QString extension = path.right(4);
    extension.remove(QLatin1Char('.'));
    try {
        const QString key = viewerKey(extension.toUpper());
        if (key.isEmpty())
            return;
        const QString viewer = Session::setting(key);
        // With no viewer set, the line would start with the document's own path, and a
        // document marked executable would be run: it fails as a missing program instead.
        if (viewer.trimmed().isEmpty())
            throw platform::Error(platform::ErrFileNotFound, QStringLiteral("File not found"));
        platform::Shell(viewer + QStringLiteral(" \"") + path + QLatin1Char('"'), platform::vbMaximizedFocus);
    } catch (const platform::Error& e) {
        if (e.number() == platform::ErrFileNotFound)
            platform::MsgBox(
                QStringLiteral("Program executable not found.\nPlease verify path under Settings."),
                platform::vbCritical);
        else
            platform::MsgBox(QString::number(e.number()) + QLatin1Char(' ') + e.description(),
                             platform::vbCritical);
    }
}
