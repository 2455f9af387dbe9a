#pragma once

#include "platform/Ui.h"

#include <QList>
#include <QString>
#include <functional>

class QCheckBox;
class QFrame;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;
namespace platform {
class ComboBox;
class ListBox;
} // namespace platform

// Lays out a record screen: caption-and-field rows in a panel of fields, the list of rows
// that Edit shows (below the fields, or lying over them), and the row of action buttons
// (below everything, or in a column at the right). Every label is the buddy of its field.
// The tab order follows the order in which the controls are added.
class ScreenBuilder {
  public:
    enum class Buttons { Below, Right };

    ScreenBuilder(const QString& objectName, const QString& designCaption, Buttons buttons = Buttons::Below);

    QWidget* window() const { return m_window; }
    // The panel that holds the fields.
    QWidget* fields() const { return m_panel; }

    // A caption and its field on one row. The field is created by its typed control.
    template <class T>
    T* addField(ui::Control<QLabel>& label, const QString& caption, ui::Control<T>& field) {
        T* made = field.make(m_panel);
        addRow(label, caption, made);
        return made;
    }
    // A further field under the last one, with no caption of its own, such as the second
    // line of an address; the caption of the row above names it.
    template <class T> T* addFieldUnder(ui::Control<T>& field) {
        T* made = field.make(m_panel);
        addUncaptioned(made);
        return made;
    }
    // A heading over the rows that follow, across the whole width.
    QLabel* addHeading(ui::Control<QLabel>& heading, const QString& caption);
    // A check box with its caption beside it, at the right of the field column. A click on
    // the caption calls `onCaptionClick` (which may flip the box even while it is disabled).
    QCheckBox* addCheckField(ui::Control<QLabel>& label, const QString& caption, ui::Control<QCheckBox>& box,
                             const std::function<void()>& onCaptionClick);
    // Makes a click on a check box's caption call `onClick`, for captions laid out elsewhere.
    static void whenCaptionClicked(QLabel* caption, const std::function<void()>& onClick);
    // A line of text in the field column, such as a note on progress.
    QLabel* addNote(ui::Control<QLabel>& note, const QString& text);
    // A line across the fields, setting the rows above it apart from those below.
    QFrame* addLine(ui::Control<QFrame>& line);
    // A drop-down list of parents with its label.
    platform::ComboBox* addComboField(ui::Control<QLabel>& label, const QString& caption,
                                      ui::Control<platform::ComboBox>& combo);
    // A one-line text box of at most `maxLength` characters with its label.
    QLineEdit* addTextField(ui::Control<QLabel>& label, const QString& caption, ui::Control<QLineEdit>& text,
                            int maxLength);

    // The list of rows in the field column below the fields, hidden until Edit; it keeps its
    // room while hidden, so the buttons do not jump when it shows.
    platform::ListBox* addListBelow(ui::Control<platform::ListBox>& list, int height);
    // The list of rows lying over all the fields, hidden until Edit. While it shows, the
    // fields are out of the keyboard's way: the focus goes to the list, and back to the
    // first field when the list goes.
    template <class T> T* addListOver(ui::Control<T>& list, int minimumHeight) {
        T* made = list.make(m_window);
        coverFields(made, minimumHeight);
        return made;
    }

    // A control beside the field of the last row, such as a button that fills the field; it
    // comes after that field in the tab order.
    void addBeside(QWidget* control);

    void addButtons(const QList<QPushButton*>& buttons);
    // A pane at the right of the fields and the list, such as the preview of a soft copy, with
    // the box that shows and hides it at the end of the row of buttons below. The keyboard
    // reaches them after the buttons.
    void addAside(QWidget* pane, QWidget* toggle, const QList<QWidget*>& tabChain);

    // Sets the tab order and the first focus; returns the window.
    QWidget* finish();

  private:
    void addRow(ui::Control<QLabel>& label, const QString& caption, QWidget* field);
    void addUncaptioned(QWidget* field);
    void coverFields(QWidget* list, int minimumHeight);
    void retainSizeWhenHidden(QWidget* list);

    Buttons m_buttons;
    QWidget* m_window;
    QGridLayout* m_outer;
    QGridLayout* m_area;
    QWidget* m_panel;
    QGridLayout* m_grid;
    int m_row = 0;
    QList<QWidget*> m_tabOrder;
};
