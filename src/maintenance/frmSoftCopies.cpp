#include "frmSoftCopies.h"

#include "platform/Conversions.h"
#include "platform/Error.h"
#include "platform/MousePointer.h"
#include "platform/MsgBox.h"
#include "session/GenMod.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLocale>
#include <QVBoxLayout>
#include <algorithm>

using platform::MsgBox;

namespace {

constexpr int ButtonWidth = 90;

// The states of the reading, in the order shown, with their words for the office.
struct StateWords {
    const char* state;
    const char* words;
};
constexpr StateWords States[] = {
    {"read", "Text read"},
    {"waiting", "Waiting to be read"},
    {"unreadable", "Could not be read"},
    {"missing", "No file at the path"},
    {"notext", "Kind of file whose text is not read (such as old .doc and .xls)"},
};

QString number(qint64 value) {
    return QLocale().toString(value);
}

// Room for the header and `rows` rows of a list, before any row is in it.
void fitRows(platform::ListView* list, int rows) {
    const int row = list->fontMetrics().lineSpacing() + 3;
    list->setFixedHeight(list->header()->sizeHint().height() + rows * row + 2 * list->frameWidth());
}

// A caption over its list, the buddy of the list.
void caption(QVBoxLayout* layout, QLabel* label, const QString& text, QWidget* list) {
    label->setText(text);
    platform::setBuddy(label, list);
    layout->addWidget(label);
    layout->addWidget(list);
}

} // namespace

frmSoftCopies& frmSoftCopies::instance() {
    static auto* form = new frmSoftCopies;
    return *form;
}

QWidget* frmSoftCopies::build() {
    auto* w = new QWidget;
    w->setObjectName(QStringLiteral("frmSoftCopies"));
    w->setWindowTitle(QStringLiteral("Soft Copies"));
    auto* outer = new QVBoxLayout(w);
    outer->setContentsMargins(16, 16, 16, 12);
    outer->setSpacing(6);
    outer->setSizeConstraint(QLayout::SetMinimumSize);

    auto* states = ui.lstStates.make(w);
    states->addColumn(QStringLiteral("State"), 420);
    states->addColumn(QStringLiteral("Documents"), 100);
    fitRows(states, int(std::size(States)));
    caption(outer, ui.lblStates.make(w), QStringLiteral("Soft copies of the documents :"), states);

    auto* reasons = ui.lstReasons.make(w);
    reasons->addColumn(QStringLiteral("Reason"), 420);
    reasons->addColumn(QStringLiteral("Documents"), 100);
    fitRows(reasons, 5);
    caption(outer, ui.lblReasons.make(w), QStringLiteral("Could not be read, by reason :"), reasons);

    auto* missing = ui.lstMissing.make(w);
    for (const auto& [header, width] : {std::pair{"Title 1", 170}, std::pair{"Title 2", 110},
                                        std::pair{"Doc. Date", 88}, std::pair{"File Path", 260}})
        missing->addColumn(QString::fromLatin1(header), width);
    missing->setMinimumSize(640, 160);
    caption(outer, ui.lblMissing.make(w), QStringLiteral("Documents whose soft copy is missing :"), missing);
    ui.lblMore.make(w)->hide();
    outer->addWidget(ui.lblMore);
    outer->setStretchFactor(missing, 1);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    auto* refresh = ui.cmdRefresh.make(w);
    refresh->setText(QStringLiteral("Refresh"));
    auto* close = ui.cmdClose.make(w);
    close->setText(QStringLiteral("Close"));
    for (auto* button : {refresh, close}) {
        button->setMinimumWidth(ButtonWidth);
        buttons->addWidget(button);
    }
    outer->addSpacing(6);
    outer->addLayout(buttons);

    const QList<QWidget*> order{states, reasons, missing, refresh, close};
    for (int i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
    states->setFocus();

    connect(refresh, &QPushButton::clicked, this, [this] { cmdRefresh_Click(); });
    connect(close, &QPushButton::clicked, this, [this] { cmdClose_Click(); });
    return w;
}

void frmSoftCopies::Form_Load() {
    prepareWindow();
    cmdRefresh_Click();
}

void frmSoftCopies::cmdClose_Click() {
    Unload();
}

void frmSoftCopies::cmdRefresh_Click() {
    for (platform::ListView* list : {ui.lstStates.get(), ui.lstReasons.get(), ui.lstMissing.get()})
        list->Clear();
    ui.lblMore->hide();
    try {
        platform::setMousePointer(platform::vbHourglass);
        if (GenMod::OpenConnection()) {
            readStates();
            GenMod::CloseConnection();
        }
        platform::setMousePointer(platform::vbDefault);
    } catch (const platform::Error& e) {
        GenMod::CloseConnection();
        platform::setMousePointer(platform::vbDefault);
        MsgBox(e.description(), platform::vbCritical);
    }
}

// One pass over the index of the states, one over the documents' keys: cheap at any number of
// documents. Each row of SoftCopy belongs to a document (it goes with it), so the documents
// without a row are the documents less the rows; they wait to be read.
void frmSoftCopies::readStates() {
    QHash<QString, qint64> counts;
    qint64 rows = 0;
    db::Recordset rs;
    rs.Open(QStringLiteral("Select ReadState, count(IndexID) from SoftCopy group by ReadState"), GenMod::Conn,
            db::adOpenForwardOnly, db::adLockReadOnly);
    for (; !rs.eof(); rs.MoveNext()) {
        const qint64 count = rs.Fields(1).toLongLong();
        counts[platform::TrimStr(rs.Fields(0))] += count;
        rows += count;
    }
    rs.Close();
    rs.Open(QStringLiteral("Select count(IndexID) from Vorlane"), GenMod::Conn, db::adOpenForwardOnly,
            db::adLockReadOnly);
    const qint64 documents = rs.Fields(0).toLongLong();
    rs.Close();
    counts[QStringLiteral("waiting")] += std::max<qint64>(0, documents - rows);
    for (const auto& [state, words] : States)
        ui.lstStates->addRow(QString::fromLatin1(words), {number(counts.value(QString::fromLatin1(state)))});

    QList<std::pair<QString, qint64>> reasons;
    rs.Open(
        QStringLiteral("Select Reason, count(IndexID) from SoftCopy where ReadState='unreadable' group by "
                       "Reason"),
        GenMod::Conn, db::adOpenForwardOnly, db::adLockReadOnly);
    for (; !rs.eof(); rs.MoveNext())
        reasons.append({platform::TrimStr(rs.Fields(0)), rs.Fields(1).toLongLong()});
    rs.Close();
    // The commonest first.
    std::sort(reasons.begin(), reasons.end(), [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    for (const auto& [reason, count] : reasons)
        ui.lstReasons->addRow(reason.isEmpty() ? QStringLiteral("(no reason given)") : reason,
                              {number(count)});

    readMissing(counts.value(QStringLiteral("missing")));
}

// The newest first, at most MissingShown of them, straight from the index of the states (which
// holds each row's date) without sorting the missing ones.
void frmSoftCopies::readMissing(qint64 missing) {
    db::Recordset rs;
    rs.Open(QStringLiteral(
                "Select V.Title1, V.Title2, V.DocDate, V.FilePath from SoftCopy S inner join Vorlane V "
                "on V.IndexID=S.IndexID where S.ReadState='missing' order by S.DocDate desc, "
                "S.IndexID desc limit ") +
                QString::number(MissingShown),
            GenMod::Conn, db::adOpenForwardOnly, db::adLockReadOnly);
    int shown = 0;
    for (; !rs.eof(); rs.MoveNext(), ++shown)
        ui.lstMissing->addRow(platform::CStr(rs.Fields(0)),
                              {platform::CStr(rs.Fields(1)),
                               platform::FormatDate(rs.Fields(2), QStringLiteral("dd/MMM/yyyy")),
                               platform::TrimStr(rs.Fields(3))});
    rs.Close();
    if (missing > shown) {
        ui.lblMore->setText(
            QStringLiteral("The newest %1 of %2 documents are shown.").arg(number(shown), number(missing)));
        ui.lblMore->show();
    }
}
