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

QStringList splitArguments(const QString& rest) {
    if (rest.size() > 1 && rest.endsWith(QLatin1Char('"'))) {
        for (qsizetype i = 0; i < rest.size() - 1; ++i) {
            if (rest[i] == QLatin1Char('"') && (i == 0 || rest[i - 1].isSpace()))
                return QProcess::splitCommand(rest.left(i)) << rest.mid(i + 1, rest.size() - i - 2);
        }
    }
    return QProcess::splitCommand(rest);
}
} // namespace

CommandLine splitCommandLine(const QString& commandLine) {
    const QString line = commandLine.trimmed();
    CommandLine out;
    qsizetype restAt = line.size();
    if (line.startsWith(QLatin1Char('"'))) {
        const qsizetype close = line.indexOf(QLatin1Char('"'), 1);
        out.program = line.mid(1, close < 0 ? -1 : close - 1);
        restAt = close < 0 ? line.size() : close + 1;
    } else {
        // Each blank in turn may end the program's name, then the end of the line; without
        // a program among them, the first word is taken and fails at the start.
        QList<qsizetype> ends;
        for (qsizetype at = line.indexOf(QLatin1Char(' ')); at >= 0;
             at = line.indexOf(QLatin1Char(' '), at + 1))
            ends << at;
        ends << line.size();
        restAt = ends.first();
        for (const qsizetype end : ends) {
            if (!resolveProgram(line.left(end)).isEmpty()) {
                restAt = end;
                break;
            }
        }
        out.program = line.left(restAt);
    }
    out.arguments = splitArguments(line.mid(restAt).trimmed());
    return out;
}

qint64 Shell(const QString& commandLine, int windowStyle) {
    Q_UNUSED(windowStyle); // the started program decides its own window
    const CommandLine parts = splitCommandLine(commandLine);
    auto& state = detail::testState();
    if (state.enabled) {
        if (state.shellChecksProgram && resolveProgram(parts.program).isEmpty())
            throw Error(ErrFileNotFound, QStringLiteral("File not found"));
        state.started.append(commandLine);
        return 1;
    }
    const QString program = resolveProgram(parts.program);
    if (program.isEmpty())
        throw Error(ErrFileNotFound, QStringLiteral("File not found"));
    qint64 pid = 0;
    if (!QProcess::startDetached(program, parts.arguments, QString(), &pid))
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
