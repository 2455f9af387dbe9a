#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;
namespace platform {
class ComboBox;
class ListBox;
} // namespace platform

// The look that the four classification screens share: caption-and-field rows, the name box
// with the hidden list below it, and the row of action buttons at the foot. The tab order
// follows the order in which the controls are added, top to bottom.
namespace classification {

// Captions of cmd(0)..cmd(3).
QStringList cmdCaptions();

class ScreenBuilder {
  public:
    ScreenBuilder(const QString& objectName, const QString& designCaption);

    QWidget* window() const { return m_window; }

    // A drop-down list of parents with its label.
    platform::ComboBox* addComboField(const QString& labelName, const QString& caption,
                                      const QString& comboName);
    // The name box (at most 25 characters) with its label.
    QLineEdit* addTextField(const QString& labelName, const QString& caption, const QString& textName);
    // The list of rows below the name box: hidden until Edit, with its tip.
    platform::ListBox* addList(const QString& listName);
    void addButtons(const QList<QPushButton*>& buttons);

    // Sets the tab order and the first focus; returns the window.
    QWidget* finish();

  private:
    QLabel* addLabel(const QString& labelName, const QString& caption, QWidget* field);
    QWidget* m_window;
    QGridLayout* m_grid;
    int m_row = 0;
    QList<QWidget*> m_tabOrder;
};

} // namespace classification
