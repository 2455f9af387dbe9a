#include "Controls.h"

#include "Error.h"
#include "TestHooks.h"

#include <QAbstractSpinBox>
#include <QAccessibleWidget>
#include <QAction>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <QTextEdit>
#include <QTimer>
#include <QToolTip>

#include <algorithm>

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

// ---- KeyedItems, ComboBox

namespace {

// A drop-down list as assistive technology sees it: named by its caption, as a text box is,
// with the chosen item as its value. (The toolkit's own names it by the chosen item.)
class ComboBoxAccessible : public QAccessibleWidget {
  public:
    explicit ComboBoxAccessible(QWidget* w) : QAccessibleWidget(w, QAccessible::ComboBox) {}
    QString text(QAccessible::Text t) const override {
        return t == QAccessible::Value ? combo()->currentText() : QAccessibleWidget::text(t);
    }
    int childCount() const override { return 1; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(combo()->view()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() == combo()->view() ? 0 : -1;
    }
    QStringList actionNames() const override {
        return QStringList{showMenuAction(), pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& action) override {
        if (action == showMenuAction() || action == pressAction())
            combo()->showPopup();
        else
            QAccessibleWidget::doAction(action);
    }

  private:
    QComboBox* combo() const { return static_cast<QComboBox*>(widget()); }
};

QAccessibleInterface* comboBoxAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String("platform::ComboBox") && object && object->isWidgetType())
        return new ComboBoxAccessible(static_cast<QWidget*>(object));
    return nullptr;
}

} // namespace

void KeyedItems::checkIndex(int index) const {
    if (index < 0 || index >= itemCount())
        throw invalidIndex();
}

void KeyedItems::setListIndex(int index) {
    if (index != -1)
        checkIndex(index);
    choose(index);
}

int KeyedItems::AddItem(const QString& text) {
    const int at =
        m_sorted ? sortedPosition(text, itemCount(), [this](int i) { return textAt(i); }) : itemCount();
    insertAt(at, text);
    m_newIndex = at;
    return m_newIndex;
}

qint32 KeyedItems::ItemData(int index) const {
    checkIndex(index);
    return dataAt(index).toInt();
}

void KeyedItems::setItemData(int index, qint32 value) {
    checkIndex(index);
    setDataAt(index, value);
}

void KeyedItems::Clear() {
    removeAll();
    m_newIndex = -1;
}

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    static const bool announced = [] {
        QAccessible::installFactory(comboBoxAccessible);
        return true;
    }();
    Q_UNUSED(announced);
    setEditable(false);
    // A user's choice is a Click, whether by mouse or keyboard.
    connect(this, &QComboBox::activated, this, [this](int) { emit Click(); });
}

void ComboBox::insertAt(int index, const QString& text) {
    const bool wasEmpty = count() == 0;
    insertItem(index, text);
    if (wasEmpty) // a filled list has nothing chosen until someone chooses
        setCurrentIndex(-1);
}

QVariant ComboBox::dataAt(int index) const {
    return itemData(index, ItemDataRole);
}

void ComboBox::setDataAt(int index, const QVariant& value) {
    QComboBox::setItemData(index, value, ItemDataRole);
}

void ComboBox::choose(int index) {
    setCurrentIndex(index);
    emit Click();
}

// ---- ListBox

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem*) { emit Click(); });
    connect(this, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem*) { emit DblClick(); });
}

QVariant ListBox::dataAt(int index) const {
    return item(index)->data(ItemDataRole);
}

void ListBox::setDataAt(int index, const QVariant& value) {
    item(index)->setData(ItemDataRole, value);
}

void ListBox::choose(int index) {
    setCurrentRow(index);
    emit Click();
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
    header()->setStretchLastSection(false);
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
    shareWidth();
}

void ListView::shareWidth() {
    const int room = viewport()->width();
    int designed = 0;
    for (int width : m_widths)
        designed += width;
    if (room <= 0 || designed <= 0)
        return;
    // Each column ends where its share of the room ends, so that the rounding adds up.
    int designedSoFar = 0, given = 0;
    for (int column = 0; column < m_widths.size(); ++column) {
        if (m_widths[column] == 0)
            continue;
        designedSoFar += m_widths[column];
        const int end = int(qint64(room) * designedSoFar / designed);
        setColumnWidth(column, end - given);
        given = end;
    }
}

bool ListView::viewportEvent(QEvent* event) {
    const bool handled = QTreeView::viewportEvent(event);
    if (event->type() == QEvent::Resize)
        shareWidth();
    return handled;
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

namespace {

// The earliest and latest dates a picker holds.
const QDate FirstDate(1752, 9, 14);
const QDate LastDate(9999, 12, 31);

// A month's names, folded for comparison: full and short, as used in a date and standing
// alone, without the dots of abbreviations.
QStringList monthNames(const QLocale& locale, int month) {
    QStringList names;
    for (auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
        names << locale.monthName(month, format) << locale.standaloneMonthName(month, format);
    }
    for (QString& name : names)
        name = name.remove(QLatin1Char('.')).trimmed().toCaseFolded();
    names.removeAll(QString());
    return names;
}

// The month that a word names in `locale`: the whole name or the start of one, three letters
// at least; 0 for none or more than one month.
int monthOf(const QString& word, const QLocale& locale) {
    const QString typed = word.toCaseFolded();
    int found = 0;
    for (int month = 1; month <= 12; ++month) {
        const QStringList names = monthNames(locale, month);
        const bool named = std::any_of(names.begin(), names.end(), [&](const QString& name) {
            return name == typed || (typed.size() >= 3 && name.startsWith(typed));
        });
        if (named) {
            if (found)
                return 0;
            found = month;
        }
    }
    return found;
}

bool isWordCharacter(QChar c) {
    return c.isLetter() || c.isMark();
}

} // namespace

std::optional<QDate> readTypedDate(const QString& text, const QLocale& locale) {
    // The parts: runs of digits and runs of letters; everything else separates them.
    struct Part {
        QString text;
        bool number;
    };
    QList<Part> parts;
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text[i];
        if (!c.isDigit() && !isWordCharacter(c)) {
            ++i;
            continue;
        }
        const bool number = c.isDigit();
        qsizetype end = i;
        while (end < text.size() && (number ? text[end].isDigit() : isWordCharacter(text[end])))
            ++end;
        parts.append({text.mid(i, end - i), number});
        i = end;
    }
    if (parts.size() != 3)
        return std::nullopt;

    const auto number = [](const Part& part, int minDigits, int maxDigits) {
        const qsizetype n = part.text.size();
        return part.number && n >= minDigits && n <= maxDigits ? part.text.toInt() : -1;
    };
    const auto month = [&](const Part& part) {
        if (part.number)
            return number(part, 1, 2);
        const int named = monthOf(part.text, locale);
        return named ? named : monthOf(part.text, QLocale(QLocale::English, QLocale::UnitedStates));
    };
    const auto year = [&](const Part& part) {
        if (part.text.size() == 2 && part.number) {
            const int y = part.text.toInt();
            return y < 30 ? 2000 + y : 1900 + y;
        }
        return number(part, 4, 4);
    };

    int d = -1, m = -1, y = -1;
    if (!parts[0].number) { // March 15, 2026
        m = month(parts[0]);
        d = number(parts[1], 1, 2);
        y = year(parts[2]);
    } else if (parts[0].text.size() == 4) { // 2026-03-15
        y = number(parts[0], 4, 4);
        m = month(parts[1]);
        d = number(parts[2], 1, 2);
    } else { // 15/03/2026
        d = number(parts[0], 1, 2);
        m = month(parts[1]);
        y = year(parts[2]);
    }
    const QDate date(y, m, d);
    if (d < 1 || m < 1 || y < 1 || !date.isValid() || date < FirstDate || date > LastDate)
        return std::nullopt;
    return date;
}

DatePicker::DatePicker(QWidget* parent)
    : QWidget(parent), m_check(new QCheckBox(this)), m_box(new QLineEdit(this)), m_date(QDate::currentDate()),
      m_format(QStringLiteral("dd/MMM/yyyy")) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_check);
    layout->addWidget(m_box, 1);
    m_box->setEnabled(false);
    m_box->setMaxLength(40);
    // The drop-down arrow of the style's lists opens the calendar.
    QPixmap arrow(12, 12);
    arrow.fill(Qt::transparent);
    {
        QPainter painter(&arrow);
        QStyleOption option;
        option.initFrom(this);
        option.rect = arrow.rect();
        style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &option, &painter, this);
    }
    auto* drop = m_box->addAction(QIcon(arrow), QLineEdit::TrailingPosition);
    drop->setToolTip(tr("Calendar (F4)"));
    connect(drop, &QAction::triggered, this, &DatePicker::showCalendar);
    m_check->setAccessibleName(tr("Use date"));
    setFocusProxy(m_check);
    m_check->installEventFilter(this);
    m_box->installEventFilter(this);
    showDate();
    connect(m_check, &QCheckBox::toggled, this, [this](bool on) {
        m_box->setEnabled(on);
        emitIfChanged();
    });
    connect(m_box, &QLineEdit::editingFinished, this, &DatePicker::takeTyped);
}

QVariant DatePicker::Value() const {
    return m_check->isChecked() ? QVariant(m_date) : QVariant();
}

void DatePicker::setCheckBox(bool shown) {
    m_check->setVisible(shown);
    if (!shown)
        m_check->setChecked(true);
    setFocusProxy(shown ? static_cast<QWidget*>(m_check) : m_box);
}

void DatePicker::setValue(const QVariant& value) {
    if (m_check->isHidden() && (!value.isValid() || value.isNull()))
        return;
    m_setting = true;
    if (value.isValid() && !value.isNull()) {
        m_date = value.toDate();
        showDate();
        setRefusal(QString());
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
    m_format = format;
    showDate();
}

void DatePicker::showDate() {
    m_box->setText(QLocale().toString(m_date, m_format));
}

// The typed text is read whole; what is no date leaves the former date in the box.
void DatePicker::takeTyped() {
    const QString typed = m_box->text();
    if (typed == QLocale().toString(m_date, m_format))
        return;
    const std::optional<QDate> date = readTypedDate(typed);
    if (!date) {
        refuse(typed);
        return;
    }
    setValue(*date);
}

void DatePicker::refuse(const QString& typed) {
    const QLocale locale;
    showDate();
    setRefusal(tr("\"%1\" is not a date: the box keeps %2. Type a date such as %3 or %4.")
                   .arg(typed.trimmed(), locale.toString(m_date, m_format),
                        locale.toString(QDate(2026, 3, 15), m_format), QStringLiteral("15/03/2026")));
}

// The box says why it refused: tinted, with the reason as its tip, shown at once beside it
// (after the focus has moved on, which would hide it) and told to assistive technology.
void DatePicker::setRefusal(const QString& why) {
    if (why == m_refusal)
        return;
    m_refusal = why;
    m_box->setToolTip(why);
    m_box->setAccessibleDescription(why);
    QPalette tint;
    if (!why.isEmpty())
        tint.setColor(QPalette::Base, QColor(0xff, 0xe4, 0xe1));
    m_box->setPalette(why.isEmpty() ? QPalette() : tint);
    if (why.isEmpty() || test::enabled()) // the tests read the refusal; no window of its own shows
        return;
    QTimer::singleShot(0, m_box, [this] {
        if (!m_refusal.isEmpty())
            QToolTip::showText(m_box->mapToGlobal(QPoint(0, m_box->height())), m_refusal, m_box);
    });
}

void DatePicker::showCalendar() {
    if (m_box->isEnabled())
        takeTyped();
    if (!m_calendar) {
        m_calendar = new QCalendarWidget(this);
        m_calendar->setWindowFlags(Qt::Popup);
        m_calendar->setMinimumDate(FirstDate);
        m_calendar->setMaximumDate(LastDate);
        connect(m_calendar, &QCalendarWidget::clicked, this, &DatePicker::choose);
        connect(m_calendar, &QCalendarWidget::activated, this, &DatePicker::choose);
    }
    m_calendar->setSelectedDate(m_date);
    m_calendar->adjustSize();
    QPoint at = mapToGlobal(QPoint(0, height()));
    if (const QScreen* screen = this->screen()) {
        const QRect room = screen->availableGeometry();
        if (at.y() + m_calendar->height() > room.bottom())
            at.setY(mapToGlobal(QPoint(0, 0)).y() - m_calendar->height());
        at.setX(std::clamp(at.x(), room.left(), std::max(room.left(), room.right() - m_calendar->width())));
    }
    m_calendar->move(at);
    m_calendar->show();
    m_calendar->setFocus(Qt::PopupFocusReason);
}

void DatePicker::choose(const QDate& date) {
    m_calendar->close();
    setValue(date);
    m_box->setFocus(Qt::PopupFocusReason);
}

bool DatePicker::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const auto modifiers = key->modifiers() & ~Qt::KeypadModifier;
    if ((key->key() == Qt::Key_F4 && modifiers == Qt::NoModifier) ||
        (key->key() == Qt::Key_Down && modifiers == Qt::AltModifier)) {
        showCalendar();
        return true;
    }
    if (watched == m_box && modifiers == Qt::NoModifier) {
        int days = 0, months = 0;
        switch (key->key()) {
        case Qt::Key_Up:
            days = 1;
            break;
        case Qt::Key_Down:
            days = -1;
            break;
        case Qt::Key_PageUp:
            months = 1;
            break;
        case Qt::Key_PageDown:
            months = -1;
            break;
        default:
            return QWidget::eventFilter(watched, event);
        }
        takeTyped();
        const QDate next = m_date.addDays(days).addMonths(months);
        if (next >= FirstDate && next <= LastDate)
            setValue(next);
        return true;
    }
    return QWidget::eventFilter(watched, event);
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
    // A date picker is announced at its box, where the keyboard is.
    if (auto* picker = qobject_cast<DatePicker*>(field))
        picker->dateBox()->setAccessibleName(name);
}

QList<QWidget*> textBoxes(QWidget* form) {
    QList<QWidget*> boxes;
    for (auto* w : form->findChildren<QWidget*>()) {
        if (qobject_cast<QLineEdit*>(w)) {
            // The editors inside date pickers, spin boxes and combo boxes are not text boxes.
            auto* parent = w->parentWidget();
            if (qobject_cast<QAbstractSpinBox*>(parent) || qobject_cast<QComboBox*>(parent) ||
                qobject_cast<DatePicker*>(parent))
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
