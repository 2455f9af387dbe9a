#include "Shell.h"

#include "Error.h"
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

bool programExists(const QString& program) {
    if (program.contains(QLatin1Char('/')))
        return QFileInfo(program).isFile() && QFileInfo(program).isExecutable();
    return !QStandardPaths::findExecutable(program).isEmpty();
}
} // namespace

qint64 Shell(const QString& commandLine, int windowStyle) {
    Q_UNUSED(windowStyle); // the started program decides its own window
    const QStringList words = splitCommandLine(commandLine.trimmed());
    auto& state = detail::testState();
    if (state.enabled) {
        if (state.shellChecksProgram && (words.isEmpty() || !programExists(words.first())))
            throw Error(ErrFileNotFound, QStringLiteral("File not found"));
        state.started.append(commandLine);
        return 1;
    }
    if (words.isEmpty() || !programExists(words.first()))
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    qint64 pid = 0;
    if (!QProcess::startDetached(words.first(), words.mid(1), QString(), &pid))
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
