#pragma once

#include <QString>
#include <QStringList>

namespace platform {

enum WindowStyle : int { vbHide = 0, vbNormalFocus = 1, vbMinimizedFocus = 2, vbMaximizedFocus = 3 };

// A command line taken apart: the program and its arguments.
struct CommandLine {
    QString program;
    QStringList arguments;
};

// How Shell reads a command line. The program is the quoted text at the start of the line, or
// else its first word; an unquoted program path may hold blanks, and then the shortest part of
// the line up to a blank that names a program wins. The rest are the arguments, split at
// blanks as a shell would; but a last argument that opens with a double quote after a blank
// and closes with the line's last character is taken whole, quotes inside kept, so that a
// file's path in quotes reaches the program as one argument whatever it holds.
CommandLine splitCommandLine(const QString& commandLine);

// Starts a program from one command line without waiting for it. A bare program name is
// looked for in the program's folder first, then along the search path. Throws
// platform::Error 53 "File not found" when the program cannot be found or started. The
// started program decides its own window: the window style is a wish the desktop may ignore.
qint64 Shell(const QString& commandLine, int windowStyle = vbNormalFocus);

// True when another instance of the program runs for this user. The first caller keeps
// the instance lock for the rest of the process.
bool PrevInstance();

} // namespace platform
