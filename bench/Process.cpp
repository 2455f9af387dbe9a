#include "Process.h"

#include <QFile>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace bench {

namespace {

void readAll(int fd, QByteArray* into) {
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n > 0) {
            if (into)
                into->append(buffer, n);
        } else if (n == 0 || errno != EINTR) {
            return;
        }
    }
}

} // namespace

Run runProgram(const QStringList& command, bool keepOutput, bool lowestPriority) {
    Run run;
    if (command.isEmpty()) {
        run.error = QStringLiteral("no program given");
        return run;
    }
    // Everything the child needs is made before fork: after it, the child only calls exec.
    std::vector<QByteArray> args;
    for (const QString& a : command)
        args.push_back(QFile::encodeName(a));
    std::vector<char*> argv;
    for (QByteArray& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    int output[2] = {-1, -1};
    int failure[2] = {-1, -1}; // carries errno of a failed exec; closes on a successful one
    if ((keepOutput && ::pipe2(output, O_CLOEXEC) != 0) || ::pipe2(failure, O_CLOEXEC) != 0) {
        run.error = QString::fromLocal8Bit(std::strerror(errno));
        return run;
    }
    const int devNull = keepOutput ? -1 : ::open("/dev/null", O_WRONLY | O_CLOEXEC);

    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(keepOutput ? output[1] : devNull, STDOUT_FILENO);
        if (lowestPriority)
            ::setpriority(PRIO_PROCESS, 0, 19);
        ::execvp(argv[0], argv.data());
        const int code = errno;
        [[maybe_unused]] const ssize_t written = ::write(failure[1], &code, sizeof code);
        ::_exit(127);
    }
    ::close(failure[1]);
    if (keepOutput)
        ::close(output[1]);
    if (devNull >= 0)
        ::close(devNull);
    if (pid < 0) {
        run.error = QString::fromLocal8Bit(std::strerror(errno));
        ::close(failure[0]);
        if (keepOutput)
            ::close(output[0]);
        return run;
    }
    if (keepOutput) {
        readAll(output[0], &run.output);
        ::close(output[0]);
    }
    int status = 0;
    rusage usage{};
    while (::wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    int code = 0;
    const bool execFailed = ::read(failure[0], &code, sizeof code) == sizeof code;
    ::close(failure[0]);
    if (execFailed) {
        run.error = QStringLiteral("cannot start %1: %2")
                        .arg(command.first(), QString::fromLocal8Bit(std::strerror(code)));
        return run;
    }
    run.started = true;
    run.peakKiB = usage.ru_maxrss;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}

bool warmFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return false;
    // A small buffer on the stack: a large one from the heap would stay resident in this process.
    char buffer[65536];
    while (file.read(buffer, sizeof buffer) > 0) {
    }
    // A fresh copy is still being written out: the first save's sync would wait for all of it.
    return ::fsync(file.handle()) == 0;
}

void resetPeakMemory() {
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

long peakMemoryKiB() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
}

} // namespace bench
