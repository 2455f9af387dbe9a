#include "SearchPanel.h"

#include "platform/Error.h"
#include "platform/MsgBox.h"
#include "session/Form.h"
#include "session/GenMod.h"
#include "session/ScreenBuilder.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QMdiArea>

namespace {
constexpr int PanelHeight = 260;
constexpr int PictureSize = 32;
const QString PictureName = QStringLiteral("fraListPicture");
} // namespace

QFrame* SearchPanel::makePanel(ScreenBuilder& screen, const QString& searchCaption,
                               const std::function<void()>& lblShowAll_Click) {
    QFrame* panel = screen.addListOver(fraList, PanelHeight);
    // The hint to double click belongs to the list inside, not to the whole panel.
    panel->setToolTip(QString());
    panel->setAccessibleName(QString());
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setBackgroundRole(QPalette::Button);
    panel->setAutoFillBackground(true); // the fields under it do not shine through

    auto* grid = new QGridLayout(panel);
    grid->setContentsMargins(10, 10, 10, 10);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(6);

    auto* picture = new QLabel(panel);
    picture->setObjectName(PictureName);
    picture->setFixedSize(PictureSize, PictureSize);
    grid->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);

    auto* caption = lblSearchRef.make(panel);
    caption->setText(searchCaption);
    auto* text = txtSearchName.make(panel);
    platform::setBuddy(caption, text);
    auto* search = cmdSearch.make(panel);
    search->setText(QStringLiteral("Search"));
    grid->addWidget(caption, 0, 1);
    grid->addWidget(text, 0, 2);
    grid->addWidget(search, 0, 3);
    // Enter in the search text searches, as the button does.
    QObject::connect(text, &QLineEdit::returnPressed, search, &QPushButton::click);

    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    auto* box = chkShowAll.make(panel);
    auto* boxCaption = lblShowAll.make(panel);
    boxCaption->setText(QStringLiteral("Show all"));
    platform::setBuddy(boxCaption, box);
    ScreenBuilder::whenCaptionClicked(boxCaption, lblShowAll_Click);
    line->addWidget(box);
    line->addWidget(boxCaption, 1);
    grid->addLayout(line, 1, 2, 1, 2);
    grid->setColumnStretch(2, 1);
    return panel;
}

void SearchPanel::placeList(QWidget* list) const {
    list->setToolTip(QStringLiteral("Double click a record to edit"));
    list->setAccessibleName(QStringLiteral("Double click a record to edit"));
    auto* grid = static_cast<QGridLayout*>(fraList->layout());
    grid->addWidget(list, 2, 0, 1, 4);
    grid->setRowStretch(2, 1);
}

void SearchPanel::orderTabs(QWidget* list, QWidget* nextButton) const {
    fraList->setFocusProxy(list);
    QWidget::setTabOrder(txtSearchName, cmdSearch);
    QWidget::setTabOrder(cmdSearch, chkShowAll);
    QWidget::setTabOrder(chkShowAll, list);
    QWidget::setTabOrder(list, nextButton);
}

void SearchPanel::showPicture() const {
    QIcon icon;
    if (auto* area = Form::mdiArea())
        icon = area->window()->windowIcon();
    if (auto* picture = fraList->findChild<QLabel*>(PictureName))
        picture->setPixmap(icon.pixmap(PictureSize, PictureSize));
}

void searchOnOwnConnection(const std::function<void()>& fill) {
    try {
        if (!GenMod::OpenConnection())
            return;
        fill();
        GenMod::CloseConnection();
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    }
}

void showAllClicked(const QCheckBox* showAll, QLineEdit* searchText) {
    if (showAll->isChecked()) {
        searchText->clear();
        searchText->setEnabled(false);
    } else {
        searchText->setEnabled(true);
    }
}
