#pragma once

#include <QLineEdit>
#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <limits>
#include <type_traits>

// The typed controls of a screen. Each screen lists its controls once, in one struct, with
// UI_CONTROL(Type, name): the member's name is the control's object name, so a misspelt name
// fails to compile instead of returning nothing at run time. The screen's build() creates each
// control through its member (make), and the screen's routines reach it through the member.
// A control array such as cmd(0)..cmd(3) is UI_CONTROL_ARRAY(Type, cmd).
namespace ui {

template <class T> class Control {
  public:
    explicit Control(const char* name) : m_name(QString::fromLatin1(name)) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const QString& name() const { return m_name; }

    // Creates the control in `parent` under its object name; it replaces the one of an earlier load.
    // A one-line text box takes text of any length unless the screen gives it a limit.
    T* make(QWidget* parent) {
        auto* control = new T(parent);
        control->setObjectName(m_name);
        if constexpr (std::is_base_of_v<QLineEdit, T>)
            control->setMaxLength(std::numeric_limits<int>::max());
        m_control = control;
        return control;
    }

    // The control of the loaded window; nullptr while the screen is unloaded.
    T* get() const { return m_control.data(); }
    T* operator->() const { return m_control.data(); }
    operator T*() const { return m_control.data(); }

  private:
    QString m_name;
    QPointer<T> m_control;
};

// Controls of one name told apart by an index, named "name(0)", "name(1)", ...
template <class T> class ControlArray {
  public:
    explicit ControlArray(const char* name) : m_name(QString::fromLatin1(name)) {}
    ControlArray(const ControlArray&) = delete;
    ControlArray& operator=(const ControlArray&) = delete;

    QString name(int index) const { return QStringLiteral("%1(%2)").arg(m_name).arg(index); }

    // Creates the control of this index in `parent`.
    T* make(QWidget* parent, int index) {
        auto* control = new T(parent);
        control->setObjectName(name(index));
        while (m_controls.size() <= index)
            m_controls.append(QPointer<T>());
        m_controls[index] = control;
        return control;
    }

    // The control of this index, or nullptr while unloaded or for an index never made.
    T* operator()(int index) const {
        return index >= 0 && index < m_controls.size() ? m_controls[index].data() : nullptr;
    }
    int size() const { return int(m_controls.size()); }

  private:
    QString m_name;
    QList<QPointer<T>> m_controls;
};

} // namespace ui

// The type stands as a template argument, where parentheses cannot go.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define UI_CONTROL(Type, name)                                                                               \
    ::ui::Control<Type> name {                                                                               \
#name                                                                                                \
    }
#define UI_CONTROL_ARRAY(Type, name)                                                                         \
    ::ui::ControlArray<Type> name {                                                                          \
#name                                                                                                \
    }
// NOLINTEND(bugprone-macro-parentheses)
