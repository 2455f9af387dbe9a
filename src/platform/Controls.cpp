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
#include <QProxyStyle>
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

// The style of a password box: its own character for each character typed.
class PasswordCharacterStyle : public QProxyStyle {
  public:
    explicit PasswordCharacterStyle(QChar character) : m_character(character) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override {
        if (hint == SH_LineEdit_PasswordCharacter)
            return m_character.unicode();
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }

  private:
    QChar m_character;
};
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

void ListRows::setHeaders(const QStringList& headers) {
    const bool more = headers.size() > m_headers.size();
    if (more)
        beginInsertColumns(QModelIndex(), int(m_headers.size()), int(headers.size()) - 1);
    m_headers = headers;
    if (more)
        endInsertColumns();
    else
        emit headerDataChanged(Qt::Horizontal, 0, int(m_headers.size()) - 1);
}

int ListRows::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant ListRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QVariant();
    if (role == Qt::ToolTipRole && index.column() == 0)
        return QVariant();
    return text(index.row(), index.column());
}

QVariant ListRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= m_headers.size())
        return QVariant();
    return m_headers[section];
}

void TextRows::addRow(const QStringList& texts) {
    const int row = int(m_rows.size());
    beginInsertRows(QModelIndex(), row, row);
    m_rows.append(texts);
    endInsertRows();
}

void TextRows::clear() {
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

int TextRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

QString TextRows::text(int row, int column) const {
    return m_rows[row].value(column);
}

ListView::ListView(QWidget* parent) : QTreeView(parent) {
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAllColumnsShowFocus(true);
    header()->setStretchLastSection(true);
    setRows(new TextRows(this));
    connect(this, &QTreeView::doubleClicked, this, [this](const QModelIndex&) { emit DblClick(); });
}

void ListView::setRows(ListRows* rows) {
    ListRows* old = m_rows;
    rows->setParent(this);
    rows->setHeaders(m_headers);
    m_rows = rows;
    setModel(rows);
    for (int column = 0; column < m_widths.size(); ++column)
        applyWidth(column);
    if (old && old != rows)
        old->deleteLater();
}

void ListView::addColumn(const QString& header, int width) {
    const int column = int(m_headers.size());
    m_headers << header;
    m_widths << width;
    m_rows->setHeaders(m_headers);
    applyWidth(column);
}

void ListView::applyWidth(int column) {
    if (m_widths[column] == 0)
        setColumnHidden(column, true);
    else
        setColumnWidth(column, m_widths[column]);
}

TextRows* ListView::textRows() const {
    auto* rows = qobject_cast<TextRows*>(m_rows);
    if (!rows)
        throw Error(ErrInvalidProcedureCall, QStringLiteral("The rows of this list come from the screen."));
    return rows;
}

void ListView::addRow(const QString& text, const QStringList& subItems) {
    textRows()->addRow(QStringList{text} + subItems);
}

void ListView::Clear() {
    textRows()->clear();
}

int ListView::selectedIndex() const {
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() : -1;
}

QString ListView::itemText(int index, int column) const {
    if (index < 0 || index >= m_rows->rowCount() || column < 0 || column >= m_rows->columnCount())
        throw invalidIndex();
    return m_rows->text(index, column);
}

void ListView::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event) && currentIndex().isValid()) {
        emit DblClick();
        return;
    }
    QTreeView::keyPressEvent(event);
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

void DatePicker::setCheckBox(bool shown) {
    m_check->setVisible(shown);
    if (!shown)
        m_check->setChecked(true);
    setFocusProxy(shown ? static_cast<QWidget*>(m_check) : m_edit);
}

void DatePicker::setValue(const QVariant& value) {
    if (m_check->isHidden() && (!value.isValid() || value.isNull()))
        return;
    m_setting = true;
    if (value.isValid() && !value.isNull()) {
        m_edit->setDate(value.toDate());
        m_check->setChecked(true);
    } else {
        m_check->setChecked(false);
    }
    m_setting = false;
    // Setting the value from code fires Change, as a user's change does; setting the value
    // it already holds changes nothing and fires nothing.
    emitIfChanged();
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

void setPasswordCharacter(QLineEdit* box, QChar character) {
    box->setEchoMode(QLineEdit::Password);
    auto* style = new PasswordCharacterStyle(character);
    style->setParent(box);
    box->setStyle(style);
}

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
