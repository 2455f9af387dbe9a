#include "Shell.h"

#include "Error.h"
#include "Files.h"
#include "TestState.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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
    // One lock per user, in the user's own runtime folder (or a name carrying the numeric user
    // id), held through an open file: the system lets go of it when the process ends in any
    // way, so a crashed run never stops the next start.
    static int lockFile = -1;
    if (lockFile >= 0)
        return false;
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QString name = QStringLiteral("Vorlane.lock");
    if (folder.isEmpty() || !QFileInfo(folder).isDir()) {
        folder = QDir::tempPath();
        name = QStringLiteral("Vorlane-%1.lock").arg(::getuid());
    }
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(name));
    const int fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0)
        return false; // no place for the lock: the program starts rather than stay away
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        ::close(fd);
        return held;
    }
    lockFile = fd; // held until the process ends
    return false;
}

} // namespace platform
