#include "Shell.h"

#include "Error.h"
#include "Files.h"
#include "TestState.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>

namespace platform {

namespace {
// Splits a command line: a program in double quotes or up to the first blank, then the
// arguments as the shell would split them.
QStringList splitCommandLine(const QString& commandLine) {
    return QProcess::splitCommand(commandLine);
}

// The program to start: a path as given, or a bare name looked for in the program's own
// folder first and then along the search path, as the platform's own start does.
QString resolveProgram(const QString& program) {
    if (program.isEmpty())
        return QString();
    if (program.contains(QLatin1Char('/'))) {
        const QFileInfo info(program);
        return info.isFile() && info.isExecutable() ? program : QString();
    }
    const QFileInfo beside(QDir(appPath()).filePath(program));
    if (beside.isFile() && beside.isExecutable())
        return beside.filePath();
    return QStandardPaths::findExecutable(program);
}
} // namespace

qint64 Shell(const QString& commandLine, int windowStyle) {
    Q_UNUSED(windowStyle); // the started program decides its own window
    const QStringList words = splitCommandLine(commandLine.trimmed());
    auto& state = detail::testState();
    if (state.enabled) {
        if (state.shellChecksProgram && (words.isEmpty() || resolveProgram(words.first()).isEmpty()))
            throw Error(ErrFileNotFound, QStringLiteral("File not found"));
        state.started.append(commandLine);
        return 1;
    }
    const QString program = words.isEmpty() ? QString() : resolveProgram(words.first());
    if (program.isEmpty())
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    qint64 pid = 0;
    if (!QProcess::startDetached(program, words.mid(1), QString(), &pid))
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    return pid;
}

bool PrevInstance() {
    static QLockFile* lock = nullptr;
    if (lock)
        return false;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    auto* candidate = new QLockFile(
        QDir(folder).filePath(QStringLiteral("Vorlane-%1.lock").arg(qEnvironmentVariable("USER"))));
    candidate->setStaleLockTime(0);
    if (!candidate->tryLock(0)) {
        delete candidate;
        return true;
    }
    lock = candidate; // held until the process ends
    return false;
}

} // namespace platform
