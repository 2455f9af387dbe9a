#pragma once

#include <QComboBox>
#include <QDate>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QVariant>

class QCheckBox;
class QDateEdit;
class QLabel;

namespace platform {

// A command button. Enter on the focused button presses it, as Space does, on every screen.
class CommandButton : public QPushButton {
    Q_OBJECT
  public:
    explicit CommandButton(QWidget* parent = nullptr);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

// A drop-down list whose items carry a number (ItemData). Setting ListIndex from code raises
// Click at once, as a user's choice does, so that handlers nest as the screens expect.
class ComboBox : public QComboBox {
    Q_OBJECT
  public:
    explicit ComboBox(QWidget* parent = nullptr);
    int ListIndex() const { return currentIndex(); }
    void setListIndex(int index);
    int ListCount() const { return count(); }
    // A sorted list keeps its items in alphabetical order, without regard to case.
    bool Sorted() const { return m_sorted; }
    void setSorted(bool sorted) { m_sorted = sorted; }
    int AddItem(const QString& text); // returns NewIndex
    // The position at which the last AddItem put its item.
    int NewIndex() const { return m_newIndex; }
    qint32 ItemData(int index) const; // throws platform::Error for an index out of range
    void setItemData(int index, qint32 value);
    QString Text() const { return currentText(); }
    void Clear();
  signals:
    void Click();

  private:
    int m_newIndex = -1;
    bool m_sorted = false;
};

// A list box whose items carry a number (ItemData), with Click on selection from code
// and DblClick from the user.
class ListBox : public QListWidget {
    Q_OBJECT
  public:
    explicit ListBox(QWidget* parent = nullptr);
    int ListIndex() const { return currentRow(); }
    void setListIndex(int index);
    int ListCount() const { return count(); }
    // A sorted list keeps its items in alphabetical order, without regard to case.
    bool Sorted() const { return m_sorted; }
    void setSorted(bool sorted) { m_sorted = sorted; }
    int AddItem(const QString& text); // returns NewIndex
    // The position at which the last AddItem put its item.
    int NewIndex() const { return m_newIndex; }
    qint32 ItemData(int index) const; // throws platform::Error for an index out of range
    void setItemData(int index, qint32 value);
    void Clear();
  signals:
    void Click();
    void DblClick();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    int m_newIndex = -1;
    bool m_sorted = false;
};

// A list view in report form: columns with headers, the first of which may be of zero width
// to carry a row's key unseen. Enter on a row counts as a double click, for keyboard users.
class ListView : public QTreeWidget {
    Q_OBJECT
  public:
    explicit ListView(QWidget* parent = nullptr);
    // Adds a column; a width of 0 hides it but keeps its text readable.
    void addColumn(const QString& header, int width);
    // Adds a row: `text` goes to the first column, `subItems` to the following ones.
    QTreeWidgetItem* addRow(const QString& text, const QStringList& subItems);
    int ListCount() const { return topLevelItemCount(); }
    // Position of the selected row, or -1.
    int selectedIndex() const;
    QString itemText(int index, int column = 0) const;
  signals:
    void DblClick();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

// A date picker with a check box: its value is a date while ticked and Null (an invalid
// QVariant) while clear. Change fires whenever the value changes, also when set from code.
class DatePicker : public QWidget {
    Q_OBJECT
  public:
    explicit DatePicker(QWidget* parent = nullptr);
    QVariant Value() const;
    void setValue(const QVariant& value); // a QDate, or a null QVariant to clear the box
    void setCustomFormat(const QString& format);
    QDateEdit* dateEdit() const { return m_edit; }
    QCheckBox* checkBox() const { return m_check; }
  signals:
    void Change();

  private:
    void emitIfChanged();
    QCheckBox* m_check;
    QDateEdit* m_edit;
    QVariant m_last;
    bool m_setting = false;
};

// Makes `label` the buddy of `field`, so that the field is announced by the label's caption.
void setBuddy(QLabel* label, QWidget* field);

// The text boxes of a form, all of them, for the clear routines: single- and multi-line
// entry fields, but not the editors inside pickers and spin boxes.
QList<QWidget*> textBoxes(QWidget* form);
// Empties every text box of a form.
void clearTextBoxes(QWidget* form);

} // namespace platform
