#pragma once

#include "platform/Controls.h"
#include "platform/Ui.h"
#include "session/Form.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace db {
class Recordset;
}
namespace platform {
class ListBox;
}

// A child screen with an array of action buttons cmd(0)..cmd(n) that dispatch to one
// cmd_Click, and the steps its handlers share: reading the pick lists at load, refilling a
// pick list one level down, and the outermost guard of a handler.
class CommandForm : public Form {
    Q_OBJECT
  public:
    // The action buttons cmd(0), cmd(1), ... of the loaded window; nullptr while unloaded.
    UI_CONTROL_ARRAY(platform::CommandButton, cmd);
    // The screen's action buttons dispatch here with their index.
    virtual void cmd_Click(int index) = 0;

  protected:
    CommandForm() : Form(true) {}

    // Creates the action buttons cmd(0)..cmd(n) with these captions, wired to cmd_Click.
    QList<QPushButton*> createCmdButtons(QWidget* parent, const QStringList& captions);
    // Lets the window grow to fit captions that changed after it was built.
    void fitWindow();

    // Whether the mouse pointer shows the hourglass while the load reads.
    enum class Pointer { Hourglass, Unchanged };
    // The reading part of Form_Load: on a connection of its own, `read` fills the pick lists
    // and applies the captions. An error is shown with the critical icon and leaves the
    // controls as far as they got. The window then grows to fit what was read.
    void readAtLoad(Pointer pointer, const std::function<void()>& read);

    // A pick list's click refilling the list one level down: nothing while `parent` has no
    // choice; else, on a connection of its own, `target` gets the rows of `fields` from
    // `sourceBefore` + the chosen key + `sourceAfter`. Errors: critical icon, the connection
    // is left to the next operation.
    static void refillBelow(const platform::ComboBox* parent, const QString& fields,
                            const QString& sourceBefore, const QString& sourceAfter,
                            platform::ComboBox* target);

    // The outermost guard of a handler that has no trap of its own (such as a list's double
    // click): an error ends the handler with its text and the critical icon.
    static void untrapped(const std::function<void()>& handler);
};

// The edit cycle of the record screens: a screen keeps one row of a table at a time, new
// (EditMode false) or loaded from its list (EditMode true), and its buttons cmd(0)..cmd(n)
// run Reset, Edit, Save and Close. The steps and their order live here once; each screen
// keeps its own routines (ResetTypeForm, ShowTypeList, SaveType, LoadType, ...) that hand
// these steps its statements, messages and controls.
class RecordForm : public CommandForm {
    Q_OBJECT
  public:
    // True while a loaded row is being edited: Save updates it. Survives Close.
    bool EditMode = false;
    // Key of the loaded row, or of the row a new Save writes; 0 after a reset.
    qint32 CurrentRowID = 0;

    // One required field: the test of its (trimmed) value and the message when it is missing.
    // Where a control is named, the focus goes to it after the message, when it is enabled.
    struct Required {
        std::function<bool()> missing;
        QString message;
        QWidget* focus = nullptr;
    };

    // What one screen's Save hands to the shared steps. Statements are built when they run,
    // so that they read the controls and CurrentRowID at that step.
    struct SaveSteps {
        QList<Required> required; // in the screen's order
        // The duplicate test, run inside the transaction; no duplicateFields means no test.
        QString duplicateFields;
        std::function<QString()> duplicateSource; // the form that fits EditMode
        QString duplicateMessage;
        QString keyColumn; // for NextID of a new row
        QString table;
        std::function<QString()> insertStatement;
        std::function<QString()> updateStatement;
        QString savedMessage = QStringLiteral("Saved Successfully.");
        std::function<void()> reset; // the screen's Reset, after a successful save
    };

  protected:
    // The captions of cmd(0)..cmd(3) on the record screens.
    static QStringList editCaptions();

    // Reset: hide the list, run the screen's clear routine, leave EditMode.
    void resetRecord(QWidget* list, const std::function<void()>& clearFields);
    // The clear routine's common part: every text box of the form emptied, CurrentRowID 0.
    void clearTextBoxesAndKey();
    // Edit: fill the list on a connection of its own, then show it. Errors: critical icon,
    // the list stays hidden.
    void showRecordList(QWidget* list, const std::function<void()>& fill);
    // Load: read `statement` (static, read-only); when a row came, EditMode and
    // CurrentRowID = key, then `apply` puts the row into the controls; then hide the list.
    // Errors: exclamation icon, the list stays as it is.
    void loadRecord(qint32 key, const QString& statement, QWidget* list,
                    const std::function<void(db::Recordset&)>& apply);
    // Save: rights, required fields, then one transaction with the duplicate test, the
    // Insert or Update, the message and the reset. Returns true when the row was written.
    bool saveRecord(const SaveSteps& steps);

    // The key of a list box's chosen row as its double click hands it on: through a 16-bit
    // value. Nothing for an empty list; throws for no choice or a key beyond 16 bits.
    static std::optional<qint16> chosenKey(const platform::ListBox* list);
};
