#pragma once

#include "session/Form.h"
#include "support/TestSupport.h"

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

// Clicks a control with the mouse, such as the caption of a check box.
void click(const Form& form, const QString& name);
// Presses a button: cmd(index) of the screen's action buttons, or a button by its name.
void press(const Form& form, int index);
void press(const Form& form, const QString& button);
// The same, then the message boxes that were shown since they were last read, as messages().
QStringList pressed(const Form& form, int index);
QStringList pressed(const Form& form, const QString& button);
// Empties a text box (of one line or several) and types `text` into it, key by key.
void type(const Form& form, const QString& box, const QString& text);
// Puts `text` into a text box as pasted: for characters that the test keyboard has no key for.
void paste(const Form& form, const QString& box, const QString& text);
QString text(const Form& form, const QString& box);
// Types the texts of `texts` (separated by "|") into the boxes of `boxes` (separated by blanks),
// the first into the first; a box without a text is emptied.
void typeEach(const Form& form, const QString& boxes, const QString& texts);
// Chooses an item of a drop-down list by its text, as a user's choice (it raises Click).
void pick(const Form& form, const QString& combo, const QString& item);
QStringList items(const Form& form, const QString& combo);
// The chosen item of a drop-down list; empty when none is chosen.
QString choice(const Form& form, const QString& combo);
// What the controls named in `names` (separated by blanks) hold, joined by "|": a text box's
// text, a drop-down list's choice, a date picker's date (yyyy-MM-dd, empty for none), a check
// box's 1 or 0.
QString values(const Form& form, const QString& names);
// Selects the row of a list box or list view whose `column` holds `item` and presses Enter
// on it, which counts as a double click.
void dblClick(const Form& form, const QString& list, const QString& item, int column = 0);
// The rows of a list box, or of a list view as "column 0|column 1|...".
QStringList listRows(const Form& form, const QString& list);
bool isShown(const Form& form, const QString& name);
// The object names of the widgets that Tab visits, from the first one that takes the focus.
QStringList tabOrder(QWidget* window);

// A driver bound to one screen: a test holds one for each screen it works and drives the screen
// through it without naming the screen again. `->` reaches the screen's own members (EditMode,
// cmd(i), its routines). Each driver's screen takes part in startCase and endCase.
template <class F> class Screen {
  public:
    Screen() { addScreen(F::instance()); }
    F& form() const { return F::instance(); }
    F* operator->() const { return &F::instance(); }
    QWidget* window() const { return form().window(); }
    QWidget* focus() const { return window()->focusWidget(); }

    template <class T = QWidget> T* ctl(const QString& name) const {
        return testsupport::ctl<T>(form(), name);
    }
    void click(const QString& name) const { testsupport::click(form(), name); }
    void press(int index) const { testsupport::press(form(), index); }
    void press(const QString& button) const { testsupport::press(form(), button); }
    QStringList pressed(int index) const { return testsupport::pressed(form(), index); }
    QStringList pressed(const QString& button) const { return testsupport::pressed(form(), button); }
    void type(const QString& box, const QString& text) const { testsupport::type(form(), box, text); }
    void paste(const QString& box, const QString& text) const { testsupport::paste(form(), box, text); }
    QString text(const QString& box) const { return testsupport::text(form(), box); }
    void typeEach(const QString& boxes, const QString& texts) const {
        testsupport::typeEach(form(), boxes, texts);
    }
    void pick(const QString& combo, const QString& item) const { testsupport::pick(form(), combo, item); }
    QStringList items(const QString& combo) const { return testsupport::items(form(), combo); }
    QString choice(const QString& combo) const { return testsupport::choice(form(), combo); }
    QString values(const QString& names) const { return testsupport::values(form(), names); }
    void dblClick(const QString& list, const QString& item, int column = 0) const {
        testsupport::dblClick(form(), list, item, column);
    }
    QStringList rows(const QString& list) const { return listRows(form(), list); }
    bool isShown(const QString& name) const { return testsupport::isShown(form(), name); }
};

} // namespace testsupport
