#pragma once

#include "session/Form.h"

#include <QString>
#include <QStringList>
#include <QtTest>

// Drives a screen as a user does, by the object names of its controls: types into boxes,
// picks from lists, presses buttons. Message boxes are read with testsupport::messages() and
// answered with platform::test::answerNext(). Nothing here shows a window of its own.
namespace testsupport {

// The control of that name on the loaded screen; the test ends when there is none.
template <class T = QWidget> T* ctl(const Form& form, const QString& name) {
    T* found = form.control<T>(name);
    if (!found)
        qFatal("no control %s on %s", qPrintable(name),
               form.window() ? qPrintable(form.window()->objectName()) : "an unloaded screen");
    return found;
}

// Presses a button: cmd(index) of the screen's action buttons, or a button by its name.
void press(const Form& form, int index);
void press(const Form& form, const QString& button);
// Empties a text box and types `text` into it, key by key.
void type(const Form& form, const QString& box, const QString& text);
QString text(const Form& form, const QString& box);
// Chooses an item of a drop-down list by its text, as a user's choice (it raises Click).
void pick(const Form& form, const QString& combo, const QString& item);
QStringList items(const Form& form, const QString& combo);
// Selects the row of a list box or list view whose `column` holds `item` and presses Enter
// on it, which counts as a double click.
void dblClick(const Form& form, const QString& list, const QString& item, int column = 0);
// The rows of a list box, or of a list view as "column 0|column 1|...".
QStringList listRows(const Form& form, const QString& list);
bool isShown(const Form& form, const QString& name);
// The object names of the widgets that Tab visits, from the first one that takes the focus.
QStringList tabOrder(QWidget* window);

} // namespace testsupport
