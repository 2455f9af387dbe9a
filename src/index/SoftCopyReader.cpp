#include "index/SoftCopyReader.h"

#include "datastore/Foreground.h"
#include "index/SoftCopySettings.h"
#include "index/reader/ReaderChannel.h"
#include "index/reader/ReaderExit.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

namespace ch = reader::channel;

// How a reading's helper ended, whichever way it ran.
struct Ending {
    enum class How { Exited, Crashed, NotStarted, TimedOut };
    How how = How::Exited;
    int code = 0; // the exit code, or the signal that ended the helper
    QByteArray out, err;
};

SoftCopyText outcome(const Ending& ending, const QString& program, int seconds) {
    using State = SoftCopyText::State;
    switch (ending.how) {
    case Ending::How::NotStarted:
        return {State::Unreadable,
                QStringLiteral("The reader program %1 could not be started.").arg(program),
                {}};
    case Ending::How::TimedOut:
        return {State::Unreadable,
                QStringLiteral("The reader stopped after %1 seconds.").arg(QString::number(seconds)),
                {}};
    // SIGKILL comes from outside: the kernel short of memory, or the hard processor-time limit.
    case Ending::How::Crashed:
        return {State::Unreadable,
                ending.code == SIGKILL
                    ? QStringLiteral("The reader was stopped from outside while reading this file.")
                    : QStringLiteral("The reader crashed while reading this file."),
                {}};
    case Ending::How::Exited:
        break;
    }
    // The reason is the helper's last line: the libraries may have said more before it.
    const QString said = QString::fromUtf8(ending.err).trimmed();
    QString reason = said.mid(said.lastIndexOf(QLatin1Char('\n')) + 1);
    if (reason.isEmpty())
        reason = QStringLiteral("The reader ended with code %1.").arg(QString::number(ending.code));
    switch (ending.code) {
    case reader::Read:
        return {State::Read, {}, QString::fromUtf8(ending.out)};
    case reader::Missing:
        return {State::Missing, reason, {}};
    case reader::NoTextForType:
        return {State::NoTextForType, reason, {}};
    default:
        return {State::Unreadable, reason, {}};
    }
}

Ending endingOf(QProcess& process, bool timedOut) {
    if (process.error() == QProcess::FailedToStart)
        return {Ending::How::NotStarted, 0, {}, {}};
    if (timedOut)
        return {Ending::How::TimedOut, 0, {}, {}};
    // After a crash, QProcess gives the number of the signal that ended the helper as its code.
    if (process.exitStatus() == QProcess::CrashExit)
        return {Ending::How::Crashed, process.exitCode(), {}, {}};
    return {Ending::How::Exited, process.exitCode(), process.readAllStandardOutput(),
            process.readAllStandardError()};
}

QProcessEnvironment helperEnvironment() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // OCR reads with one thread: the helper runs beside the clerk's own work.
    environment.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
    return environment;
}

// The waiting for a helper, up to the time limit or until the reading is cancelled.
struct Wait {
    QDeadlineTimer deadline;
    const std::atomic<bool>& cancel;
    bool& cancelled;
    bool timedOut = false;
    // The helper's group while it reads, stopped while the screens work; the time it stands
    // still does not count.
    db::foreground::YieldingGroup* yielding = nullptr;

    // Until `fd` has something to read (or has closed); false when the waiting is over.
    bool readable(int fd) {
        for (;;) {
            // A look at the cancel flag every tenth of a second.
            if (cancel) {
                cancelled = true;
                return false;
            }
            const bool stopped = yielding && yielding->stopped();
            if (!stopped && deadline.hasExpired()) {
                timedOut = true;
                return false;
            }
            QElapsedTimer polled;
            polled.start();
            pollfd watched{fd, POLLIN, 0};
            // A stopped helper is looked at more often, to be continued soon after the screens.
            const int ready =
                ::poll(&watched, 1, stopped ? 10 : int(std::clamp<qint64>(deadline.remainingTime(), 0, 100)));
            if (stopped)
                deadline += polled.elapsed();
            if (ready > 0 || (ready < 0 && errno != EINTR))
                return true;
        }
    }
};

enum class Received { Frame, Stopped, Gone };

} // namespace

// A serving helper: vorlane-reader --serve on the other end of a socket. It dies with the thread
// that started it (the kernel's parent-death signal), so only that thread uses it.
struct SoftCopyReader::Server {
    QString program;
    pid_t pid = -1;
    pid_t thread = gettid();
    int socket = -1;
    QByteArray received; // not yet taken as frames
    bool reaped = false;

    Server() = default;
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server() {
        if (socket >= 0)
            ::close(socket);
        if (!reaped)
            ::kill(pid, SIGKILL);
        reap();
    }

    // The helper's wait status, once it has ended.
    int reap() {
        int status = 0;
        if (!reaped)
            while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
            }
        reaped = true;
        return status;
    }

    bool ended() {
        if (!reaped && ::waitpid(pid, nullptr, WNOHANG) == pid)
            reaped = true;
        return reaped;
    }

    bool send(const QByteArray& bytes) const { return ch::sendAll(socket, bytes); }

    // The next frame; a helper that sends something else is taken to have gone.
    Received receive(Wait& wait, ch::Kind& kind, QByteArray& payload) {
        for (;;) {
            bool broken = false;
            if (ch::takeFrame(received, kind, payload, broken))
                return Received::Frame;
            if (broken)
                return Received::Gone;
            if (!wait.readable(socket))
                return Received::Stopped;
            char chunk[65536];
            const ssize_t n = ::recv(socket, chunk, sizeof chunk, 0);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return Received::Gone;
            received.append(chunk, n);
        }
    }

    // Starts `program` --serve; none when it cannot be started or does not serve, or when the
    // waiting for it is over.
    static std::unique_ptr<Server> start(const QString& program, Wait& wait) {
        int pair[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0)
            return {};
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, pair[1], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&files, pair[1], STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t mask;
        sigemptyset(&mask);
        posix_spawnattr_setsigmask(&attributes, &mask);
        sigfillset(&mask);
        posix_spawnattr_setsigdefault(&attributes, &mask);
        // A group of its own: the terminal's Ctrl+C stops the seat, which then cuts the reading short.
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
        QList<QByteArray> environment;
        std::vector<char*> envp;
        for (const QString& variable : helperEnvironment().toStringList())
            environment << variable.toLocal8Bit();
        for (QByteArray& variable : environment)
            envp.push_back(variable.data());
        envp.push_back(nullptr);
        QByteArray path = QFile::encodeName(program);
        QByteArray serve = "--serve";
        char* argv[] = {path.data(), serve.data(), nullptr};
        auto server = std::make_unique<Server>();
        server->program = program;
        const int failed =
            posix_spawnp(&server->pid, path.constData(), &files, &attributes, argv, envp.data());
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&files);
        ::close(pair[1]);
        if (failed != 0) {
            ::close(pair[0]);
            server->reaped = true;
            return {};
        }
        server->socket = pair[0];
        ch::Kind kind{};
        QByteArray payload;
        if (server->receive(wait, kind, payload) != Received::Frame || kind != ch::Hello)
            return {};
        return server;
    }

    // The rest of a reading asked for: what it writes, until it ends.
    Received collect(Wait& wait, Ending& ending, bool& heard) {
        for (;;) {
            ch::Kind kind{};
            QByteArray payload;
            const Received received = receive(wait, kind, payload);
            if (received != Received::Frame)
                return received;
            heard = true;
            ch::Ending end;
            if (kind == ch::Out)
                ending.out += payload;
            else if (kind == ch::Err)
                // The reason is on the last line; a library that talks on and on is cut short.
                ending.err = (ending.err + payload).right(256 * 1024);
            else if (kind == ch::Ended && ch::readEnding(payload, end)) {
                ending.how = end.how == ch::Ending::Exited      ? Ending::How::Exited
                             : end.how == ch::Ending::Signalled ? Ending::How::Crashed
                                                                : Ending::How::NotStarted;
                ending.code = end.code;
                return Received::Frame;
            } else
                return Received::Gone;
        }
    }
};

SoftCopyReader::SoftCopyReader(QObject* parent) : QObject(parent) {}

SoftCopyReader::~SoftCopyReader() {
    const QMutexLocker lock(&m_serversLock);
    m_servers.clear();
}

QString SoftCopyReader::program() const {
    return m_helper.isEmpty() ? SoftCopySettings::readerProgram() : m_helper;
}

// The OCR languages chosen in Settings, read at each reading so that a change holds at once;
// options set on the reader come after them and win.
QStringList SoftCopyReader::arguments(const QString& path) const {
    return QStringList{QStringLiteral("--languages"),
                       SoftCopySettings::ocrLanguages().join(QLatin1Char('+'))} +
           m_options + QStringList{QStringLiteral("--"), path};
}

QProcess* SoftCopyReader::prepare(const QString& path, QObject* parent) const {
    auto* process = new QProcess(parent);
    process->setProcessEnvironment(helperEnvironment());
    process->setProgram(program());
    process->setArguments(arguments(path));
    return process;
}

// The calling thread's serving helper, if it has one. Helpers whose thread has ended are gone
// with it and are reaped here.
std::unique_ptr<SoftCopyReader::Server> SoftCopyReader::takeServer(const QString& program) const {
    const QMutexLocker lock(&m_serversLock);
    std::unique_ptr<Server> mine;
    for (auto it = m_servers.begin(); it != m_servers.end();) {
        if ((*it)->thread == gettid())
            mine = std::move(*it);
        if (!*it || (*it)->ended())
            it = m_servers.erase(it);
        else
            ++it;
    }
    if (mine && mine->program != program)
        mine.reset();
    return mine;
}

std::optional<SoftCopyText> SoftCopyReader::readServed(const QStringList& arguments,
                                                       const std::atomic<bool>& cancel,
                                                       bool& cancelled) const {
    const QString helper = program();
    Wait wait{QDeadlineTimer(m_seconds * 1000LL), cancel, cancelled};
    QByteArray request;
    for (const QString& argument : arguments)
        request += argument.toLocal8Bit() + '\0';
    request = ch::frame(ch::Request, request);
    std::unique_ptr<Server> server = takeServer(helper);
    for (bool fresh = !server;; fresh = true) {
        if (!server)
            server = Server::start(helper, wait);
        if (!server) {
            if (!wait.timedOut && !cancelled)
                return std::nullopt; // a helper that does not serve, or none at all
            return outcome({Ending::How::TimedOut, 0, {}, {}}, helper, m_seconds);
        }
        Ending ending;
        bool heard = false;
        Received received = Received::Gone;
        if (server->send(request)) {
            db::foreground::YieldingGroup yielding(server->pid);
            wait.yielding = &yielding;
            received = server->collect(wait, ending, heard);
            wait.yielding = nullptr;
        }
        if (received == Received::Frame) {
            const QMutexLocker lock(&m_serversLock);
            m_servers.push_back(std::move(server));
            return outcome(ending, helper, m_seconds);
        }
        if (received == Received::Stopped) {
            server.reset(); // the reading dies with its helper
            return outcome({Ending::How::TimedOut, 0, {}, {}}, helper, m_seconds);
        }
        // The helper went. One that served before may have been killed while it waited (or have
        // died with an earlier thread of the same number): the reading is asked of a new one.
        if (!fresh && !heard) {
            server.reset();
            continue;
        }
        const int status = server->reap();
        return outcome({Ending::How::Crashed, WIFSIGNALED(status) ? WTERMSIG(status) : 0, {}, {}}, helper,
                       m_seconds);
    }
}

SoftCopyText SoftCopyReader::read(const QString& path) const {
    const std::atomic<bool> never{false};
    bool cancelled = false;
    return read(path, never, cancelled);
}

SoftCopyText SoftCopyReader::read(const QString& path, const std::atomic<bool>& cancel,
                                  bool& cancelled) const {
    cancelled = false;
    if (std::optional<SoftCopyText> served = readServed(arguments(path), cancel, cancelled))
        return *served;
    // A helper that does not serve reads each file in a process started for it.
    const std::unique_ptr<QProcess> process(prepare(path, nullptr));
    process->start();
    bool timedOut = false;
    if (process->waitForStarted(-1)) {
        QElapsedTimer clock;
        clock.start();
        // A look at the cancel flag every tenth of a second.
        while (!process->waitForFinished(100) && process->state() != QProcess::NotRunning) {
            cancelled = cancel;
            timedOut = clock.elapsed() >= m_seconds * 1000LL;
            if (cancelled || timedOut) {
                process->kill();
                process->waitForFinished(-1);
                break;
            }
        }
    }
    return outcomeOf(*process, timedOut, m_seconds);
}

SoftCopyText SoftCopyReader::outcomeOf(QProcess& process, bool timedOut, int seconds) {
    return outcome(endingOf(process, timedOut), process.program(), seconds);
}
