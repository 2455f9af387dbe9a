#pragma once

namespace platform {

enum MousePointerCode : int { vbDefault = 0, vbHourglass = 11, vbCustom = 99 };

// The screen's mouse pointer: 11 shows the hourglass, 0 the normal pointer.
void setMousePointer(int code);
int mousePointer();

} // namespace platform
