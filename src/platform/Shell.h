#pragma once

#include <QString>

namespace platform {

enum WindowStyle : int { vbHide = 0, vbNormalFocus = 1, vbMinimizedFocus = 2, vbMaximizedFocus = 3 };

// Starts a program from one command line without waiting for it. The program is the first
// word of the line (or the quoted text at its start); the rest are its arguments. A bare
// program name is looked for in the program's folder first, then along the search path.
// Throws platform::Error 53 "File not found" when the program cannot be found or started.
qint64 Shell(const QString& commandLine, int windowStyle = vbNormalFocus);

// True when another instance of the program runs for this user. The first caller keeps
// the instance lock for the rest of the process.
bool PrevInstance();

} // namespace platform
