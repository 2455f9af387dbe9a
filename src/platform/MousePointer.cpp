#include "MousePointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace platform {

namespace {
int g_pointer = vbDefault;
}

void setMousePointer(int code) {
    if (code == g_pointer)
        return;
    if (g_pointer == vbHourglass && qGuiApp)
        QGuiApplication::restoreOverrideCursor();
    g_pointer = code;
    if (code == vbHourglass && qGuiApp)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

int mousePointer() {
    return g_pointer;
}

} // namespace platform
