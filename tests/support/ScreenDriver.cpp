#include "ScreenDriver.h"

#include "platform/Controls.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace testsupport {

void click(const Form& form, const QString& name) {
    QTest::mouseClick(ctl(form, name), Qt::LeftButton);
}

void press(const Form& form, int index) {
    press(form, QStringLiteral("cmd(%1)").arg(index));
}

void press(const Form& form, const QString& button) {
    ctl<QPushButton>(form, button)->click();
}

QStringList pressed(const Form& form, int index) {
    press(form, index);
    return messages();
}

QStringList pressed(const Form& form, const QString& button) {
    press(form, button);
    return messages();
}

void type(const Form& form, const QString& box, const QString& text) {
    if (auto* lines = form.control<QPlainTextEdit>(box)) {
        lines->clear();
        QTest::keyClicks(lines, text);
        return;
    }
    auto* edit = ctl<QLineEdit>(form, box);
    edit->clear();
    QTest::keyClicks(edit, text);
}

void paste(const Form& form, const QString& box, const QString& text) {
    if (auto* lines = form.control<QPlainTextEdit>(box))
        lines->setPlainText(text);
    else
        ctl<QLineEdit>(form, box)->setText(text);
}

QString text(const Form& form, const QString& box) {
    if (auto* lines = form.control<QPlainTextEdit>(box))
        return lines->toPlainText();
    return ctl<QLineEdit>(form, box)->text();
}

void typeEach(const Form& form, const QString& boxes, const QString& texts) {
    const QStringList parts = texts.split(QLatin1Char('|'));
    const QStringList names = boxes.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (int i = 0; i < names.size(); ++i)
        type(form, names.at(i), parts.value(i));
}

void pick(const Form& form, const QString& combo, const QString& item) {
    auto* box = ctl<platform::ComboBox>(form, combo);
    const int index = box->findText(item);
    if (index < 0)
        qFatal("no item %s in %s", qPrintable(item), qPrintable(combo));
    box->setListIndex(index);
}

QStringList items(const Form& form, const QString& combo) {
    QStringList out;
    auto* box = ctl<platform::ComboBox>(form, combo);
    for (int i = 0; i < box->count(); ++i)
        out << box->itemText(i);
    return out;
}

QString choice(const Form& form, const QString& combo) {
    auto* box = ctl<platform::ComboBox>(form, combo);
    return box->ListIndex() < 0 ? QString() : box->itemText(box->ListIndex());
}

QString values(const Form& form, const QString& names) {
    QStringList out;
    for (const QString& name : names.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        QWidget* control = ctl(form, name);
        if (qobject_cast<platform::ComboBox*>(control))
            out << choice(form, name);
        else if (auto* picker = qobject_cast<platform::DatePicker*>(control))
            out << picker->Value().toDate().toString(Qt::ISODate);
        else if (auto* box = qobject_cast<QCheckBox*>(control))
            out << QString::number(int(box->isChecked()));
        else
            out << text(form, name);
    }
    return out.join(QLatin1Char('|'));
}

void dblClick(const Form& form, const QString& list, const QString& item, int column) {
    if (auto* box = form.control<platform::ListBox>(list)) {
        const auto found = box->findItems(item, Qt::MatchExactly);
        if (found.isEmpty())
            qFatal("no row %s in %s", qPrintable(item), qPrintable(list));
        box->setCurrentItem(found.first());
        QTest::keyClick(box, Qt::Key_Return);
        return;
    }
    auto* view = ctl<platform::ListView>(form, list);
    for (int i = 0; i < view->ListCount(); ++i) {
        if (view->itemText(i, column) == item) {
            view->setCurrentIndex(view->model()->index(i, 0));
            QTest::keyClick(view, Qt::Key_Return);
            return;
        }
    }
    qFatal("no row %s in %s", qPrintable(item), qPrintable(list));
}

QStringList listRows(const Form& form, const QString& list) {
    QStringList out;
    if (auto* box = form.control<platform::ListBox>(list)) {
        for (int i = 0; i < box->count(); ++i)
            out << box->item(i)->text();
        return out;
    }
    auto* view = ctl<platform::ListView>(form, list);
    for (int i = 0; i < view->ListCount(); ++i) {
        QStringList columns;
        for (int c = 0; c < view->model()->columnCount(); ++c)
            columns << view->itemText(i, c);
        out << columns.join(QLatin1Char('|'));
    }
    return out;
}

bool isShown(const Form& form, const QString& name) {
    return !ctl<QWidget>(form, name)->isHidden();
}

QStringList tabOrder(QWidget* window) {
    // The parts of a control (the box and editor of a date picker) count as the control.
    const auto control = [window](QWidget* w) {
        while (w != window && (w->objectName().isEmpty() || w->objectName().startsWith(QLatin1String("qt_"))))
            w = w->parentWidget();
        return w;
    };
    // The round starts at the control that has the focus when the screen opens.
    QStringList order;
    QWidget* start = window->focusWidget() ? window->focusWidget()->previousInFocusChain() : window;
    QWidget* w = start;
    do {
        w = w->nextInFocusChain();
        if (w == window || !(w->focusPolicy() & Qt::TabFocus) || !window->isAncestorOf(w))
            continue;
        QWidget* named = control(w);
        if (named == w || !w->isHidden()) {
            if (order.isEmpty() || order.last() != named->objectName())
                order << named->objectName();
        }
    } while (w != start);
    return order;
}

} // namespace testsupport
