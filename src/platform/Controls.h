#pragma once

#include <QAbstractTableModel>
#include <QComboBox>
#include <QDate>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QTreeView>
#include <QVariant>
#include <optional>

class QCalendarWidget;
class QCheckBox;
class QLabel;
class QLineEdit;

namespace platform {

// A command button. Enter on the focused button presses it, as Space does, on every screen.
class CommandButton : public QPushButton {
    Q_OBJECT
  public:
    explicit CommandButton(QWidget* parent = nullptr);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

// The items of a list that carry a number each (ItemData), as the drop-down lists and the list
// boxes hold them. Setting ListIndex from code raises Click at once, as a user's choice does, so
// that handlers nest as the screens expect. Indexes out of range throw platform::Error.
class KeyedItems {
  public:
    virtual ~KeyedItems() = default;
    int ListIndex() const { return currentAt(); }
    void setListIndex(int index);
    int ListCount() const { return itemCount(); }
    // A sorted list keeps its items in alphabetical order, without regard to case.
    bool Sorted() const { return m_sorted; }
    void setSorted(bool sorted) { m_sorted = sorted; }
    int AddItem(const QString& text); // returns NewIndex
    // The position at which the last AddItem put its item.
    int NewIndex() const { return m_newIndex; }
    qint32 ItemData(int index) const;
    void setItemData(int index, qint32 value);
    void Clear();

  protected:
    // What each kind of list does its own way.
    virtual int itemCount() const = 0;
    virtual int currentAt() const = 0;
    virtual QString textAt(int index) const = 0;
    virtual void insertAt(int index, const QString& text) = 0;
    virtual QVariant dataAt(int index) const = 0;
    virtual void setDataAt(int index, const QVariant& value) = 0;
    virtual void removeAll() = 0;
    // Makes `index` the current item (-1: none) and raises Click.
    virtual void choose(int index) = 0;

  private:
    void checkIndex(int index) const;
    int m_newIndex = -1;
    bool m_sorted = false;
};

// A drop-down list whose items carry a number.
class ComboBox : public QComboBox, public KeyedItems {
    Q_OBJECT
  public:
    explicit ComboBox(QWidget* parent = nullptr);
    using KeyedItems::setItemData;
    QString Text() const { return currentText(); }
  signals:
    void Click();

  protected:
    int itemCount() const override { return count(); }
    int currentAt() const override { return currentIndex(); }
    QString textAt(int index) const override { return itemText(index); }
    void insertAt(int index, const QString& text) override;
    QVariant dataAt(int index) const override;
    void setDataAt(int index, const QVariant& value) override;
    void removeAll() override { clear(); }
    void choose(int index) override;
};

// A list box whose items carry a number, with Click on selection from code and DblClick from
// the user.
class ListBox : public QListWidget, public KeyedItems {
    Q_OBJECT
  public:
    explicit ListBox(QWidget* parent = nullptr);
  signals:
    void Click();
    void DblClick();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    int itemCount() const override { return count(); }
    int currentAt() const override { return currentRow(); }
    QString textAt(int index) const override { return item(index)->text(); }
    void insertAt(int index, const QString& text) override { insertItem(index, text); }
    QVariant dataAt(int index) const override;
    void setDataAt(int index, const QVariant& value) override;
    void removeAll() override { clear(); }
    void choose(int index) override;
};

// The rows of a list view, as texts by row and column. The view asks only for the rows it
// shows, so a screen with many rows keeps them in whatever form suits it.
class ListRows : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;
    virtual QString text(int row, int column) const = 0;

    void setHeaders(const QStringList& headers);
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    // The text, and the same text as the tip of every shown column, for cut-off texts.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

  private:
    QStringList m_headers;
};

// Rows added one by one, each a list of texts.
class TextRows : public ListRows {
    Q_OBJECT
  public:
    using ListRows::ListRows;
    void addRow(const QStringList& texts);
    void clear();
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QString text(int row, int column) const override;

  private:
    QVector<QStringList> m_rows;
};

// A list view in report form: columns with headers, the first of which may be of zero width
// to carry a row's key unseen. Enter on a row counts as a double click, for keyboard users.
// Its rows are added one by one, or come from a ListRows of the screen's own. The shown
// columns share the list's width in the proportions of their designed widths.
class ListView : public QTreeView {
    Q_OBJECT
  public:
    explicit ListView(QWidget* parent = nullptr);
    // Adds a column; a width of 0 hides it but keeps its text readable.
    void addColumn(const QString& header, int width);
    // Adds a row: `text` goes to the first column, `subItems` to the following ones.
    void addRow(const QString& text, const QStringList& subItems);
    // Removes all rows.
    void Clear();
    // Shows the rows of `rows` instead, which the list view takes over.
    void setRows(ListRows* rows);
    ListRows* rows() const { return m_rows; }
    int ListCount() const { return m_rows->rowCount(); }
    // Position of the selected row, or -1.
    int selectedIndex() const;
    QString itemText(int index, int column = 0) const;
  signals:
    void DblClick();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    TextRows* textRows() const;
    void applyWidth(int column);
    void shareWidth();
    QStringList m_headers;
    QList<int> m_widths;
    ListRows* m_rows = nullptr;
};

// A date picker with a check box: its value is a date while ticked and Null (an invalid
// QVariant) while clear. Change fires whenever the value changes, also when set from code.
// A picker starts Null; one without its check box starts at today.
//
// The date shows in its custom format with the month's name in the running system's language.
// A typed date is read whole when the box is left or Enter is pressed (readTypedDate); a text
// that is no date is refused at the box: the box keeps its former date and says why. F4 and
// Alt+Down open the calendar, Escape closes it; Up and Down step a day, Page Up and Page Down
// a month.
class DatePicker : public QWidget {
    Q_OBJECT
  public:
    explicit DatePicker(QWidget* parent = nullptr);
    QVariant Value() const;
    void setValue(const QVariant& value); // a QDate, or a null QVariant to clear the box
    void setCustomFormat(const QString& format);
    QString customFormat() const { return m_format; }
    // Without its check box the picker always holds a date: a Null value leaves it as it is.
    void setCheckBox(bool shown);
    QLineEdit* dateBox() const { return m_box; }
    QCheckBox* checkBox() const { return m_check; }
    // The calendar while it is open or has been; nullptr before.
    QCalendarWidget* calendar() const { return m_calendar; }
    void showCalendar();
    // Why the last typed text was refused; empty once a date has been taken.
    QString refusal() const { return m_refusal; }
  signals:
    void Change();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void takeTyped();
    void refuse(const QString& typed);
    void setRefusal(const QString& why);
    void choose(const QDate& date);
    void showDate();
    void emitIfChanged();
    QCheckBox* m_check;
    QLineEdit* m_box;
    QCalendarWidget* m_calendar = nullptr;
    QDate m_date;
    QString m_format;
    QString m_refusal;
    QVariant m_last;
    bool m_setting = false;
};

// A date as a clerk types it, read whole: day, month and year in that order, the month as a
// number or by its name (in full or shortened, in the running system's language or in
// English), separated by any of / . - blank or comma ("15/Mar/2026", "15/03/2026",
// "15.3.2026", "15-3-26", "15 March 2026"); also the month's name first ("March 15, 2026")
// and the year first with four digits ("2026-03-15"). A two-digit year means 1930 to 2029.
// Nothing for a text that is no date, such as "31/Feb/2026".
std::optional<QDate> readTypedDate(const QString& text, const QLocale& locale = QLocale());

// Makes `box` a password box that shows `character` for each character typed.
void setPasswordCharacter(QLineEdit* box, QChar character);

// Makes `label` the buddy of `field`, so that the field is announced by the label's caption.
void setBuddy(QLabel* label, QWidget* field);

// The text boxes of a form, all of them, for the clear routines: single- and multi-line
// entry fields, but not the editors inside pickers and spin boxes.
QList<QWidget*> textBoxes(QWidget* form);
// Empties every text box of a form.
void clearTextBoxes(QWidget* form);

} // namespace platform
