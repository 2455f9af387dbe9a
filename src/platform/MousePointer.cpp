#include "MousePointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace platform {

namespace {
int g_pointer = vbDefault;

// The application when it shows windows; a console process (the set-up tool, a tool opening the
// database) has none, and keeps the code alone.
bool showsWindows() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}
} // namespace

void setMousePointer(int code) {
    if (code == g_pointer)
        return;
    if (g_pointer == vbHourglass && showsWindows())
        QGuiApplication::restoreOverrideCursor();
    g_pointer = code;
    if (code == vbHourglass && showsWindows())
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

int mousePointer() {
    return g_pointer;
}

} // namespace platform
