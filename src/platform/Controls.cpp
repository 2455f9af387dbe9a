#include "Controls.h"

#include "Error.h"

#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace platform {

namespace {
constexpr int ItemDataRole = Qt::UserRole;

Error invalidIndex() {
    return Error(381, QStringLiteral("Invalid property array index"));
}

// Where `text` goes among `count` items kept in order: after the items equal to it.
template <class TextAt> int sortedPosition(const QString& text, int count, TextAt textAt) {
    int low = 0, high = count;
    while (low < high) {
        const int mid = (low + high) / 2;
        if (QString::compare(textAt(mid), text, Qt::CaseInsensitive) <= 0)
            low = mid + 1;
        else
            high = mid;
    }
    return low;
}

bool isEnter(const QKeyEvent* event) {
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}
} // namespace

// ---- CommandButton

CommandButton::CommandButton(QWidget* parent) : QPushButton(parent) {
    // Enter in a text box must not press a button behind the user's back.
    setAutoDefault(false);
}

void CommandButton::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        click();
        return;
    }
    QPushButton::keyPressEvent(event);
}

// ---- ComboBox

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    setEditable(false);
    // A user's choice is a Click, whether by mouse or keyboard.
    connect(this, &QComboBox::activated, this, [this](int) { emit Click(); });
}

void ComboBox::setListIndex(int index) {
    if (index < -1 || index >= count())
        throw invalidIndex();
    setCurrentIndex(index);
    emit Click();
}

int ComboBox::AddItem(const QString& text) {
    const bool wasEmpty = count() == 0;
    const int at = m_sorted ? sortedPosition(text, count(), [this](int i) { return itemText(i); }) : count();
    insertItem(at, text);
    if (wasEmpty) // a filled list has nothing chosen until someone chooses
        setCurrentIndex(-1);
    m_newIndex = at;
    return m_newIndex;
}

qint32 ComboBox::ItemData(int index) const {
    if (index < 0 || index >= count())
        throw invalidIndex();
    return itemData(index, ItemDataRole).toInt();
}

void ComboBox::setItemData(int index, qint32 value) {
    QComboBox::setItemData(index, value, ItemDataRole);
}

void ComboBox::Clear() {
    clear();
    m_newIndex = -1;
}

// ---- ListBox

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem*) { emit Click(); });
    connect(this, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem*) { emit DblClick(); });
}

void ListBox::setListIndex(int index) {
    if (index < -1 || index >= count())
        throw invalidIndex();
    setCurrentRow(index);
    emit Click();
}

int ListBox::AddItem(const QString& text) {
    const int at =
        m_sorted ? sortedPosition(text, count(), [this](int i) { return item(i)->text(); }) : count();
    insertItem(at, text);
    m_newIndex = at;
    return m_newIndex;
}

qint32 ListBox::ItemData(int index) const {
    if (index < 0 || index >= count())
        throw invalidIndex();
    return item(index)->data(ItemDataRole).toInt();
}

void ListBox::setItemData(int index, qint32 value) {
    if (index < 0 || index >= count())
        throw invalidIndex();
    item(index)->setData(ItemDataRole, value);
}

void ListBox::Clear() {
    clear();
    m_newIndex = -1;
}

void ListBox::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && currentItem()) {
        emit DblClick();
        return;
    }
    QListWidget::keyPressEvent(event);
}

// ---- ListView

ListView::ListView(QWidget* parent) : QTreeWidget(parent) {
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAllColumnsShowFocus(true);
    setColumnCount(0);
    header()->setStretchLastSection(true);
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem*, int) { emit DblClick(); });
}

void ListView::addColumn(const QString& header, int width) {
    const int column = columnCount();
    setColumnCount(column + 1);
    auto* head = headerItem();
    head->setText(column, header);
    if (width == 0) {
        setColumnHidden(column, true);
    } else {
        setColumnWidth(column, width);
    }
}

QTreeWidgetItem* ListView::addRow(const QString& text, const QStringList& subItems) {
    auto* item = new QTreeWidgetItem(this);
    item->setText(0, text);
    for (int i = 0; i < subItems.size(); ++i) {
        item->setText(i + 1, subItems[i]);
        item->setToolTip(i + 1, subItems[i]);
    }
    return item;
}

int ListView::selectedIndex() const {
    const auto* item = currentItem();
    return item ? indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(item)) : -1;
}

QString ListView::itemText(int index, int column) const {
    const auto* item = topLevelItem(index);
    if (!item)
        throw invalidIndex();
    return item->text(column);
}

void ListView::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && currentItem()) {
        emit DblClick();
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

// ---- DatePicker

DatePicker::DatePicker(QWidget* parent)
    : QWidget(parent), m_check(new QCheckBox(this)), m_edit(new QDateEdit(QDate::currentDate(), this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_check);
    layout->addWidget(m_edit, 1);
    m_edit->setCalendarPopup(true);
    m_edit->setEnabled(false);
    m_check->setAccessibleName(tr("Use date"));
    setFocusProxy(m_check);
    setCustomFormat(QStringLiteral("dd/MMM/yyyy"));
    connect(m_check, &QCheckBox::toggled, this, [this](bool on) {
        m_edit->setEnabled(on);
        emitIfChanged();
    });
    connect(m_edit, &QDateEdit::dateChanged, this, [this](const QDate&) { emitIfChanged(); });
}

QVariant DatePicker::Value() const {
    return m_check->isChecked() ? QVariant(m_edit->date()) : QVariant();
}

void DatePicker::setValue(const QVariant& value) {
    m_setting = true;
    if (value.isValid() && !value.isNull()) {
        m_edit->setDate(value.toDate());
        m_check->setChecked(true);
    } else {
        m_check->setChecked(false);
    }
    m_setting = false;
    // Setting the value from code fires Change, as a user's change does.
    m_last = Value();
    emit Change();
}

void DatePicker::setCustomFormat(const QString& format) {
    m_edit->setDisplayFormat(format);
}

void DatePicker::emitIfChanged() {
    if (m_setting)
        return;
    const QVariant now = Value();
    if (now == m_last && now.isValid() == m_last.isValid())
        return;
    m_last = now;
    emit Change();
}

// ---- helpers

void setBuddy(QLabel* label, QWidget* field) {
    label->setBuddy(field);
    QString name = label->text();
    name.remove(QLatin1Char('&'));
    field->setAccessibleName(name);
}

QList<QWidget*> textBoxes(QWidget* form) {
    QList<QWidget*> boxes;
    for (auto* w : form->findChildren<QWidget*>()) {
        if (qobject_cast<QLineEdit*>(w)) {
            // The editors inside date pickers, spin boxes and combo boxes are not text boxes.
            auto* parent = w->parentWidget();
            if (qobject_cast<QAbstractSpinBox*>(parent) || qobject_cast<QComboBox*>(parent))
                continue;
            boxes << w;
        } else if (qobject_cast<QPlainTextEdit*>(w) || qobject_cast<QTextEdit*>(w)) {
            boxes << w;
        }
    }
    return boxes;
}

void clearTextBoxes(QWidget* form) {
    for (auto* w : textBoxes(form)) {
        if (auto* line = qobject_cast<QLineEdit*>(w))
            line->clear();
        else if (auto* plain = qobject_cast<QPlainTextEdit*>(w))
            plain->clear();
        else if (auto* rich = qobject_cast<QTextEdit*>(w))
            rich->clear();
    }
}

} // namespace platform
