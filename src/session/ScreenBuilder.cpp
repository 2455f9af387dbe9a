#include "ScreenBuilder.h"

#include "platform/Controls.h"

#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int FieldWidth = 240;

// Keeps the fields under a covering list out of the keyboard's way while the list shows.
class CoverFollower : public QObject {
  public:
    CoverFollower(QWidget* list, QWidget* panel, QWidget* firstField)
        : QObject(list), m_list(list), m_panel(panel), m_firstField(firstField) {
        list->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_list && event->type() == QEvent::ShowToParent)
            cover();
        else if (watched == m_list && event->type() == QEvent::HideToParent)
            uncover();
        return false;
    }

  private:
    void cover() {
        if (m_covered.isEmpty()) {
            for (auto* field : m_panel->findChildren<QWidget*>()) {
                if (field->focusPolicy() & Qt::TabFocus) {
                    m_covered.append({field, field->focusPolicy()});
                    field->setFocusPolicy(Qt::NoFocus);
                }
            }
        }
        m_list->setFocus();
    }
    void uncover() {
        if (m_covered.isEmpty())
            return;
        for (const auto& [field, policy] : m_covered)
            if (field)
                field->setFocusPolicy(policy);
        m_covered.clear();
        if (m_firstField)
            m_firstField->setFocus();
    }

    QWidget* m_list;
    QWidget* m_panel;
    QPointer<QWidget> m_firstField;
    QList<QPair<QPointer<QWidget>, Qt::FocusPolicy>> m_covered;
};

// Calls its function when the mouse button is let go over the watched label.
class CaptionClick : public QObject {
  public:
    CaptionClick(QLabel* label, std::function<void()> onClick)
        : QObject(label), m_onClick(std::move(onClick)) {
        label->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            m_onClick();
            return true;
        }
        return false;
    }

  private:
    std::function<void()> m_onClick;
};

} // namespace

ScreenBuilder::ScreenBuilder(const QString& objectName, const QString& designCaption, Buttons buttons)
    : m_buttons(buttons), m_window(new QWidget), m_outer(new QGridLayout(m_window)), m_area(new QGridLayout),
      m_panel(new QWidget(m_window)), m_grid(new QGridLayout(m_panel)) {
    m_window->setObjectName(objectName);
    m_window->setWindowTitle(designCaption);
    if (buttons == Buttons::Below) {
        m_outer->setContentsMargins(16, 16, 16, 12);
        m_outer->setVerticalSpacing(12);
    } else {
        m_outer->setContentsMargins(16, 16, 16, 16);
        m_outer->setHorizontalSpacing(14);
    }
    // A custom caption of any length stays whole: the window grows instead.
    m_outer->setSizeConstraint(QLayout::SetMinimumSize);
    m_area->setContentsMargins(0, 0, 0, 0);
    m_outer->addLayout(m_area, 0, 0);
    m_outer->setColumnStretch(0, 1);
    m_panel->setObjectName(QStringLiteral("fieldsPanel"));
    m_area->addWidget(m_panel, 0, 0);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(10);
    m_grid->setVerticalSpacing(8);
    m_grid->setColumnStretch(1, 1);
}

void ScreenBuilder::addRow(ui::Control<QLabel>& label, const QString& caption, QWidget* field) {
    auto* made = label.make(m_panel);
    made->setText(caption);
    made->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    platform::setBuddy(made, field);
    m_grid->addWidget(made, m_row, 0);
    m_grid->addWidget(field, m_row, 1);
    ++m_row;
    m_tabOrder << field;
}

void ScreenBuilder::addUncaptioned(QWidget* field) {
    m_grid->addWidget(field, m_row++, 1);
    m_tabOrder << field;
}

QLabel* ScreenBuilder::addHeading(ui::Control<QLabel>& heading, const QString& caption) {
    auto* made = heading.make(m_panel);
    made->setText(caption);
    QFont bold = made->font();
    bold.setBold(true);
    made->setFont(bold);
    // Space above every heading but the first sets the parts of the screen apart.
    made->setContentsMargins(0, m_row == 0 ? 0 : 10, 0, 0);
    m_grid->addWidget(made, m_row++, 0, 1, 3);
    return made;
}

QCheckBox* ScreenBuilder::addCheckField(ui::Control<QLabel>& label, const QString& caption,
                                        ui::Control<QCheckBox>& box,
                                        const std::function<void()>& onCaptionClick) {
    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    auto* check = box.make(m_panel);
    auto* text = label.make(m_panel);
    text->setText(caption);
    platform::setBuddy(text, check);
    whenCaptionClicked(text, onCaptionClick);
    line->addWidget(check);
    line->addWidget(text, 1);
    m_grid->addLayout(line, m_row++, 1);
    m_tabOrder << check;
    return check;
}

void ScreenBuilder::whenCaptionClicked(QLabel* caption, const std::function<void()>& onClick) {
    new CaptionClick(caption, onClick);
}

QLabel* ScreenBuilder::addNote(ui::Control<QLabel>& note, const QString& text) {
    auto* made = note.make(m_panel);
    made->setText(text);
    m_grid->addWidget(made, m_row++, 1, 1, 2);
    return made;
}

QFrame* ScreenBuilder::addLine(ui::Control<QFrame>& line) {
    auto* made = line.make(m_panel);
    made->setFrameShape(QFrame::HLine);
    made->setFrameShadow(QFrame::Sunken);
    m_grid->addWidget(made, m_row++, 0, 1, 3);
    return made;
}

platform::ComboBox* ScreenBuilder::addComboField(ui::Control<QLabel>& label, const QString& caption,
                                                 ui::Control<platform::ComboBox>& combo) {
    auto* made = addField(label, caption, combo);
    made->setMinimumWidth(FieldWidth);
    made->setMaxVisibleItems(15);
    return made;
}

QLineEdit* ScreenBuilder::addTextField(ui::Control<QLabel>& label, const QString& caption,
                                       ui::Control<QLineEdit>& text, int maxLength) {
    auto* made = addField(label, caption, text);
    made->setMaxLength(maxLength);
    made->setMinimumWidth(FieldWidth);
    return made;
}

void ScreenBuilder::retainSizeWhenHidden(QWidget* list) {
    QSizePolicy policy = list->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    list->setSizePolicy(policy);
}

platform::ListBox* ScreenBuilder::addListBelow(ui::Control<platform::ListBox>& list, int height) {
    auto* made = list.make(m_panel);
    made->setToolTip(QStringLiteral("Double click a record to edit"));
    made->setAccessibleName(QStringLiteral("Double click a record to edit"));
    made->setFixedHeight(height);
    retainSizeWhenHidden(made);
    made->hide();
    m_grid->addWidget(made, m_row++, 1);
    m_tabOrder << made;
    return made;
}

void ScreenBuilder::coverFields(QWidget* list, int minimumHeight) {
    list->setToolTip(QStringLiteral("Double click a record to edit"));
    list->setAccessibleName(QStringLiteral("Double click a record to edit"));
    list->setMinimumHeight(minimumHeight);
    retainSizeWhenHidden(list);
    m_area->addWidget(list, 0, 0);
    list->raise();
    list->hide();
    new CoverFollower(list, m_panel, m_tabOrder.isEmpty() ? nullptr : m_tabOrder.first());
    m_tabOrder << list;
}

void ScreenBuilder::addBeside(QWidget* control) {
    control->setParent(m_panel);
    m_grid->addWidget(control, m_row - 1, 2);
    m_tabOrder << control;
}

void ScreenBuilder::addButtons(const QList<QPushButton*>& buttons) {
    QBoxLayout* line = nullptr;
    if (m_buttons == Buttons::Below) {
        line = new QHBoxLayout;
        line->setSpacing(8);
        line->addStretch(1);
        m_outer->addLayout(line, 1, 0);
    } else {
        line = new QVBoxLayout;
        line->setSpacing(6);
        m_outer->addLayout(line, 0, 1);
    }
    for (auto* button : buttons) {
        button->setMinimumWidth(m_buttons == Buttons::Below ? 80 : 90);
        line->addWidget(button);
        m_tabOrder << button;
    }
    if (m_buttons == Buttons::Right)
        line->addStretch(1);
}

void ScreenBuilder::addAside(QWidget* pane, QWidget* toggle, const QList<QWidget*>& tabChain) {
    Q_ASSERT(m_buttons == Buttons::Below);
    pane->setParent(m_window);
    toggle->setParent(m_window);
    m_outer->addWidget(pane, 0, 1);
    m_outer->addWidget(toggle, 1, 1, Qt::AlignLeft | Qt::AlignVCenter);
    m_tabOrder << toggle << tabChain;
}

QWidget* ScreenBuilder::finish() {
    // The fields keep to the top when the window is taller than they need.
    m_grid->setRowStretch(m_row, 1);
    for (int i = 1; i < m_tabOrder.size(); ++i)
        QWidget::setTabOrder(m_tabOrder[i - 1], m_tabOrder[i]);
    if (!m_tabOrder.isEmpty())
        m_tabOrder.first()->setFocus();
    return m_window;
}
