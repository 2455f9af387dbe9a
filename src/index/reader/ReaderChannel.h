#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>

// How Vorlane talks with a serving reader (vorlane-reader --serve) over the socket that is the
// reader's stdin and stdout. Each message is a frame: one byte of kind, the length of what
// follows in 4 bytes (host order, both ends run on one machine), and that many bytes.
namespace reader::channel {

enum Kind : char {
    Hello = 'H',   // the reader's first frame, empty: it serves
    Request = 'R', // to the reader: the arguments of one reading, each ended by a zero byte
    Out = 'O',     // what the reading wrote to stdout so far
    Err = 'E',     // what the reading wrote to stderr so far
    Ended = 'X',   // the reading ended: an Ending
};

// How a served reading's process ended.
struct Ending {
    enum How : qint32 { Exited = 0, Signalled = 1, NotStarted = 2 };
    qint32 how = Exited;
    qint32 code = 0; // the exit code, or the signal that ended the process
};

constexpr int kHead = 5;
// No frame is larger: a reader's text comes in pieces of a pipe's reads.
constexpr quint32 kLargest = 64u << 20;

inline QByteArray frame(Kind kind, const QByteArray& payload = {}) {
    const quint32 size = quint32(payload.size());
    QByteArray out(kHead, Qt::Uninitialized);
    out[0] = kind;
    std::memcpy(out.data() + 1, &size, sizeof size);
    return out + payload;
}

// Sends all of `bytes` on `socket`; false when the other end has gone.
inline bool sendAll(int socket, const QByteArray& bytes) {
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t n = ::send(socket, bytes.constData() + sent, size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        sent += n;
    }
    return true;
}

inline QByteArray endingFrame(Ending ending) {
    return frame(Ended, QByteArray(reinterpret_cast<const char*>(&ending), sizeof ending));
}

// Takes the first whole frame off the start of `buffer`. False when none is whole yet; `broken`
// tells a buffer that holds no frame at all (a program that does not serve).
inline bool takeFrame(QByteArray& buffer, Kind& kind, QByteArray& payload, bool& broken) {
    broken = false;
    if (buffer.size() < kHead)
        return false;
    quint32 size = 0;
    std::memcpy(&size, buffer.constData() + 1, sizeof size);
    const char k = buffer.at(0);
    if ((k != Hello && k != Request && k != Out && k != Err && k != Ended) || size > kLargest) {
        broken = true;
        return false;
    }
    if (quint32(buffer.size()) - kHead < size)
        return false;
    kind = Kind(k);
    payload = buffer.mid(kHead, qsizetype(size));
    buffer.remove(0, kHead + qsizetype(size));
    return true;
}

inline bool readEnding(const QByteArray& payload, Ending& ending) {
    if (payload.size() != sizeof ending)
        return false;
    std::memcpy(&ending, payload.constData(), sizeof ending);
    return true;
}

} // namespace reader::channel
