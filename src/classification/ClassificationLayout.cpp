#include "ClassificationLayout.h"

#include "platform/Controls.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace classification {

namespace {
constexpr int NameLength = 25;
constexpr int FieldWidth = 240;
constexpr int ListHeight = 170;
} // namespace

QStringList cmdCaptions() {
    return {QStringLiteral("Reset"), QStringLiteral("Edit"), QStringLiteral("Save"), QStringLiteral("Close")};
}

ScreenBuilder::ScreenBuilder(const QString& objectName, const QString& designCaption)
    : m_window(new QWidget), m_grid(new QGridLayout(m_window)) {
    m_window->setObjectName(objectName);
    m_window->setWindowTitle(designCaption);
    m_grid->setContentsMargins(16, 16, 16, 12);
    m_grid->setHorizontalSpacing(10);
    m_grid->setVerticalSpacing(8);
    m_grid->setColumnStretch(1, 1);
    // A custom caption of any length stays whole: the window grows instead.
    m_grid->setSizeConstraint(QLayout::SetMinimumSize);
}

QLabel* ScreenBuilder::addLabel(const QString& labelName, const QString& caption, QWidget* field) {
    auto* label = new QLabel(caption, m_window);
    label->setObjectName(labelName);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    platform::setBuddy(label, field);
    m_grid->addWidget(label, m_row, 0);
    m_grid->addWidget(field, m_row, 1);
    ++m_row;
    m_tabOrder << field;
    return label;
}

platform::ComboBox* ScreenBuilder::addComboField(const QString& labelName, const QString& caption,
                                                 const QString& comboName) {
    auto* combo = new platform::ComboBox(m_window);
    combo->setObjectName(comboName);
    combo->setMinimumWidth(FieldWidth);
    combo->setMaxVisibleItems(15);
    addLabel(labelName, caption, combo);
    return combo;
}

QLineEdit* ScreenBuilder::addTextField(const QString& labelName, const QString& caption,
                                       const QString& textName) {
    auto* text = new QLineEdit(m_window);
    text->setObjectName(textName);
    text->setMaxLength(NameLength);
    text->setMinimumWidth(FieldWidth);
    addLabel(labelName, caption, text);
    return text;
}

platform::ListBox* ScreenBuilder::addList(const QString& listName) {
    auto* list = new platform::ListBox(m_window);
    list->setObjectName(listName);
    list->setToolTip(QStringLiteral("Double click a record to edit"));
    list->setAccessibleName(QStringLiteral("Double click a record to edit"));
    list->setFixedHeight(ListHeight);
    // The list keeps its place while hidden, so the buttons do not jump when Edit shows it.
    QSizePolicy policy = list->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    list->setSizePolicy(policy);
    list->hide();
    m_grid->addWidget(list, m_row++, 1);
    m_tabOrder << list;
    return list;
}

void ScreenBuilder::addButtons(const QList<QPushButton*>& buttons) {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addStretch(1);
    for (auto* button : buttons) {
        button->setMinimumWidth(80);
        row->addWidget(button);
        m_tabOrder << button;
    }
    m_grid->setRowMinimumHeight(m_row++, 4);
    m_grid->addLayout(row, m_row++, 0, 1, 2);
}

QWidget* ScreenBuilder::finish() {
    for (int i = 1; i < m_tabOrder.size(); ++i)
        QWidget::setTabOrder(m_tabOrder[i - 1], m_tabOrder[i]);
    if (!m_tabOrder.isEmpty())
        m_tabOrder.first()->setFocus();
    return m_window;
}

} // namespace classification
