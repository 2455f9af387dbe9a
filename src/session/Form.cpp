#include "Form.h"

#include "GenMod.h"
#include "platform/Dialogs.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPalette>

namespace {
QPointer<QMdiArea> g_mdiArea;
}

Form::Form(bool mdiChild) : m_mdiChild(mdiChild) {}

Form::~Form() = default;

void Form::setMdiArea(QMdiArea* area) {
    g_mdiArea = area;
}
QMdiArea* Form::mdiArea() {
    return g_mdiArea;
}

void Form::Show() {
    const bool loading = !m_window;
    if (loading) {
        m_window = build();
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        if (m_mdiChild && g_mdiArea) {
            m_subWindow = g_mdiArea->addSubWindow(m_window);
            m_subWindow->setAttribute(Qt::WA_DeleteOnClose);
            m_subWindow->setWindowIcon(g_mdiArea->window()->windowIcon());
            m_subWindow->adjustSize();
        }
        Form_Load();
    }
    if (!m_window) // Form_Load may unload the screen again
        return;
    if (m_subWindow) {
        m_subWindow->show();
        m_subWindow->raise();
        g_mdiArea->setActiveSubWindow(m_subWindow);
    } else {
        m_window->show();
        m_window->raise();
        m_window->activateWindow();
    }
}

void Form::ShowModal(QWidget* owner) {
    if (!m_window) {
        m_window = build();
        m_window->setParent(owner, m_window->windowFlags() | Qt::Dialog);
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        Form_Load();
    }
    if (!m_window)
        return;
    m_window->setWindowModality(Qt::ApplicationModal);
    platform::showModal(m_window);
}

void Form::Unload() {
    // Deleted later: Unload is often called from a handler of one of the window's own buttons.
    QWidget* outer = m_subWindow ? static_cast<QWidget*>(m_subWindow) : m_window.data();
    m_subWindow = nullptr;
    m_window = nullptr;
    if (outer) {
        outer->hide();
        outer->deleteLater();
    }
}

void Form::prepareWindow() {
    QWidget* w = window();
    if (g_mdiArea)
        w->setWindowIcon(g_mdiArea->window()->windowIcon());
    w->setBackgroundRole(QPalette::Button);
    w->setAutoFillBackground(true);
    GenMod::CenterForm(w);
    // Escape closes nothing here, so that no key throws typed work away; Ctrl+F4 closes the
    // screen in front as its Close button does (the frame's own key).
}
