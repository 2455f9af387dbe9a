// vorlane-reader --serve: a reader that loads its libraries once and reads each file that Vorlane
// asks for in a process of its own, forked from it. Starting the reader costs more than reading a
// page of PDF text (the dynamic linker binds every symbol of Qt and Poppler at each start); a fork
// costs a fraction of it. The forked process reads exactly as `vorlane-reader FILE` does, under
// its own limits, so a damaged or hostile file may crash or hang only that process. The serving
// process reads no file and holds no state of one: every reading starts from the same state.
#include "index/reader/ReaderChannel.h"
#include "index/reader/Readers.h"

#include <QList>
#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <poppler-qt6.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace reader {

namespace {

namespace ch = channel;

constexpr int kSeat = STDIN_FILENO; // the socket; stdout is the same one
// How the server, or a reading whose server has gone, ends where no one looks at the code.
constexpr int kGone = 1;

bool sendAll(const QByteArray& bytes) {
    return ch::sendAll(STDOUT_FILENO, bytes);
}

// The next request's arguments; false when Vorlane closed the socket or broke the protocol.
bool nextRequest(QByteArray& buffer, QStringList& arguments) {
    for (;;) {
        ch::Kind kind{};
        QByteArray payload;
        bool broken = false;
        if (ch::takeFrame(buffer, kind, payload, broken)) {
            if (kind != ch::Request)
                return false;
            arguments = QStringList{QStringLiteral("vorlane-reader")};
            for (const QByteArray& argument : payload.split('\0'))
                arguments << QString::fromLocal8Bit(argument);
            arguments.removeLast(); // after the last zero byte
            return true;
        }
        if (broken)
            return false;
        char chunk[4096];
        const ssize_t n = ::read(kSeat, chunk, sizeof chunk);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        buffer.append(chunk, n);
    }
}

// Loads what every PDF reading needs, once: Poppler's global tables live as long as one of its
// documents does, so the one read here is kept.
void warmUp() {
    static const QByteArray content = "BT /F1 12 Tf 20 100 Td (Vorlane) Tj ET";
    const QList<QByteArray> objects{
        "<</Type/Catalog/Pages 2 0 R>>",
        "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Resources<</Font<</F1 4 0 R>>>>/Contents 5 0 R>>",
        "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>",
        "<</Length " + QByteArray::number(content.size()) + ">>\nstream\n" + content + "\nendstream",
    };
    QByteArray pdf = "%PDF-1.4\n";
    QByteArray xref = "xref\n0 " + QByteArray::number(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (qsizetype i = 0; i < objects.size(); ++i) {
        xref += QByteArray::number(pdf.size()).rightJustified(10, '0') + " 00000 n \n";
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const qsizetype start = pdf.size();
    pdf += xref + "trailer\n<</Size " + QByteArray::number(objects.size() + 1) +
           "/Root 1 0 R>>\nstartxref\n" + QByteArray::number(start) + "\n%%EOF\n";
    static std::unique_ptr<Poppler::Document> kept;
    kept = Poppler::Document::loadFromData(pdf);
    if (kept)
        if (const std::unique_ptr<Poppler::Page> page = kept->page(0))
            page->text(QRectF());
}

// Forking is safe only while this process runs one thread: a lock that another thread holds
// would stay locked in the copy for good.
bool singleThreaded() {
    DIR* const tasks = opendir("/proc/self/task");
    if (!tasks)
        return false;
    int count = 0;
    while (const dirent* entry = readdir(tasks))
        count += entry->d_name[0] != '.';
    closedir(tasks);
    return count == 1;
}

// In the forked process: its stdout and stderr are the pipes, the socket is not open in it, and
// it dies with the server. What Qt keeps open (its event dispatcher's eventfd) stays, as it does
// in a reader started for one file.
[[noreturn]] void becomeReading(pid_t server, const int (&out)[2], const int (&err)[2],
                                const QStringList& arguments, void (*readOne)(const QStringList&)) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != server)
        _exit(kGone);
    const int nothing = ::open("/dev/null", O_RDONLY);
    if (nothing < 0 || dup2(nothing, STDIN_FILENO) < 0 || dup2(out[1], STDOUT_FILENO) < 0 ||
        dup2(err[1], STDERR_FILENO) < 0)
        _exit(kGone);
    for (const int fd : {nothing, out[0], out[1], err[0], err[1]})
        ::close(fd);
    readOne(arguments);
    _exit(kGone); // readOne ends the process itself
}

// Hands what the reading writes over as it comes, until it has closed both pipes; false when
// Vorlane has gone or broke the protocol.
bool relay(int out, int err) {
    pollfd fds[3] = {{out, POLLIN, 0}, {err, POLLIN, 0}, {kSeat, POLLIN, 0}};
    int open = 2;
    while (open > 0) {
        if (::poll(fds, 3, -1) < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        // Vorlane sends nothing while a reading runs: anything from it means it has gone.
        if (fds[2].revents != 0)
            return false;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].revents == 0)
                continue;
            char chunk[65536];
            const ssize_t n = ::read(fds[i].fd, chunk, sizeof chunk);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                fds[i].fd = -1;
                --open;
                continue;
            }
            if (!sendAll(ch::frame(i == 0 ? ch::Out : ch::Err, QByteArray(chunk, n))))
                return false;
        }
    }
    return true;
}

} // namespace

void serve(void (*readOne)(const QStringList& arguments)) {
    warmUp();
    if (!singleThreaded() || !sendAll(ch::frame(ch::Hello)))
        _exit(kGone);
    const pid_t server = getpid();
    QByteArray buffer;
    QStringList arguments;
    while (nextRequest(buffer, arguments)) {
        int out[2], err[2];
        if (pipe2(out, O_CLOEXEC) != 0)
            _exit(kGone);
        if (pipe2(err, O_CLOEXEC) != 0)
            _exit(kGone);
        const pid_t reading = fork();
        const int forkError = errno;
        if (reading == 0)
            becomeReading(server, out, err, arguments, readOne);
        ::close(out[1]);
        ::close(err[1]);
        ch::Ending ending;
        if (reading < 0) {
            ending.how = ch::Ending::NotStarted;
            ending.code = forkError;
        } else {
            const bool seatThere = relay(out[0], err[0]);
            if (!seatThere)
                ::kill(reading, SIGKILL);
            int status = 0;
            while (::waitpid(reading, &status, 0) < 0 && errno == EINTR) {
            }
            if (!seatThere)
                _exit(kGone);
            ending.how = WIFSIGNALED(status) ? ch::Ending::Signalled : ch::Ending::Exited;
            ending.code = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
        }
        ::close(out[0]);
        ::close(err[0]);
        if (!sendAll(ch::endingFrame(ending)))
            break;
    }
}

} // namespace reader
