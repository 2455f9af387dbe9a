#include "SoftCopyWork.h"

#include "datastore/Foreground.h"
#include "datastore/SqlText.h"
#include "session/GenMod.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEvent>
#include <QFileInfo>
#include <QThread>
#include <utility>

namespace {

// The longest that a write waits for the screens of this seat.
constexpr int YieldMilliseconds = 1000;

// The document saved last in this program, to be read next; 0 for none.
std::atomic<qint64> savedLast{0};

QString stamp(const QDateTime& time) {
    return time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
}

QString stateName(SoftCopyText::State state) {
    switch (state) {
    case SoftCopyText::State::Read:
        return QStringLiteral("read");
    case SoftCopyText::State::Missing:
        return QStringLiteral("missing");
    case SoftCopyText::State::NoTextForType:
        return QStringLiteral("notext");
    case SoftCopyText::State::Unreadable:
        break;
    }
    return QStringLiteral("unreadable");
}

QString ids(const QList<qint64>& keys) {
    QStringList out;
    for (const qint64 key : keys)
        out << QString::number(key);
    return out.join(QLatin1Char(','));
}

} // namespace

SoftCopyWork::SoftCopyWork(const QString& seat, QObject* parent) : QObject(parent), m_seat(seat) {}

SoftCopyWork::~SoftCopyWork() {
    if (m_thread) {
        stop();
        m_thread->wait();
        delete m_thread;
    }
}

void SoftCopyWork::readNext(qint64 indexId) {
    savedLast = indexId;
}

const db::ConnectionPtr& SoftCopyWork::connection() {
    if (!m_connection) {
        auto opened = std::make_shared<db::Connection>();
        opened->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
        m_connection = std::move(opened);
    }
    return m_connection;
}

// One transaction that takes the write lock, begun once the screens of this seat leave the
// database alone (or after a while of waiting for them); a connection that failed is opened
// again next time.
template <typename Work> auto SoftCopyWork::inTransaction(Work work) {
    const db::ConnectionPtr c = connection();
    try {
        // A little at a time, so that a stop does not wait for the screens.
        QElapsedTimer waited;
        waited.start();
        while (!m_stop && !db::foreground::waitUntilFree(50) && !waited.hasExpired(YieldMilliseconds)) {
        }
        c->BeginTrans();
        auto result = work(c);
        c->CommitTrans();
        return result;
    } catch (...) {
        if (c->inTransaction())
            c->RollbackTrans();
        m_connection.reset();
        throw;
    }
}

std::optional<SoftCopyClaim> SoftCopyWork::claimNext(const QDateTime& now) {
    return inTransaction([&](const db::ConnectionPtr& c) { return claimIn(c, now); });
}

std::optional<SoftCopyClaim> SoftCopyWork::claimIn(const db::ConnectionPtr& c, const QDateTime& now) {
    const QString free = QStringLiteral(" and (S.ClaimedAt is null or S.ClaimedAt < %1)")
                             .arg(db::sql::quoteString(stamp(now.addSecs(-60LL * m_claimMinutes))));
    const qint64 saved = savedLast.exchange(0);
    // The waiting come newest first through the queue's index; those left for other seats
    // are fewer than the rows asked for, so one is always this seat's if any waits.
    QString statement = QStringLiteral("Select S.IndexID, I.FilePath from SoftCopy S inner join Vorlane I on "
                                       "I.IndexID=S.IndexID where S.ReadState='waiting'") +
                        free;
    if (saved != 0 && !m_leftForOthers.contains(saved))
        statement += QStringLiteral(" and S.IndexID=") + QString::number(saved);
    else
        statement += QStringLiteral(" order by S.DocDate desc, S.IndexID desc limit ") +
                     QString::number(m_leftForOthers.size() + 1);
    std::optional<SoftCopyClaim> claim;
    db::Recordset rs;
    rs.Open(statement, c, db::adOpenForwardOnly, db::adLockReadOnly);
    for (; !rs.eof() && !claim; rs.MoveNext())
        if (!m_leftForOthers.contains(rs.Fields(0).toLongLong()))
            claim = SoftCopyClaim{rs.Fields(0).toLongLong(), rs.Fields(1).toString().trimmed()};
    rs.Close();
    if (claim)
        c->Execute(QStringLiteral("Update SoftCopy set ClaimedBy=%1, ClaimedAt=%2 where IndexID=%3")
                       .arg(db::sql::quoteString(m_seat), db::sql::quoteString(stamp(now)),
                            QString::number(claim->indexId)));
    return claim;
}

SoftCopyReading SoftCopyWork::read(const QString& path) const {
    SoftCopyReading reading;
    const QFileInfo before(path);
    // A file missing from a folder that this seat cannot see either may lie on another machine.
    if (!before.exists() && !before.absoluteDir().exists()) {
        reading.unreachable = true;
        return reading;
    }
    reading.size = QString::number(before.size());
    reading.modified = stamp(before.lastModified());
    reading.result = m_reader.read(path, m_stop, reading.cancelled);
    return reading;
}

void SoftCopyWork::store(const SoftCopyClaim& claim, const SoftCopyReading& reading) {
    inTransaction([&](const db::ConnectionPtr& c) {
        storeIn(c, claim, reading);
        return 0;
    });
}

void SoftCopyWork::storeIn(const db::ConnectionPtr& c, const SoftCopyClaim& claim,
                           const SoftCopyReading& reading) {
    const QString id = QString::number(claim.indexId);
    const QString held =
        QStringLiteral(" where IndexID=%1 and ClaimedBy=%2").arg(id, db::sql::quoteString(m_seat));
    db::Recordset rs;
    rs.Open(QStringLiteral("Select FilePath from Vorlane where IndexID=") + id, c, db::adOpenForwardOnly,
            db::adLockReadOnly);
    // A document deleted or saved with another path meanwhile: its row is gone, or waits again.
    const bool samePath = !rs.eof() && rs.Fields(0).toString().trimmed() == claim.path;
    rs.Close();
    if (reading.unreachable)
        m_leftForOthers.insert(claim.indexId);
    if (reading.unreachable || reading.cancelled || !samePath) {
        c->Execute(QStringLiteral("Update SoftCopy set ClaimedBy=Null, ClaimedAt=Null") + held);
        return;
    }
    const SoftCopyText& r = reading.result;
    c->Execute(QStringLiteral("Update SoftCopy set ReadPath=%1, FileSize=%2, FileTime=%3, ReadState=%4, "
                              "Reason=%5, SoftText=%6, ClaimedBy=Null, ClaimedAt=Null")
                   .arg(db::sql::quoteString(claim.path), db::sql::quoteString(reading.size),
                        db::sql::quoteString(reading.modified), db::sql::quoteString(stateName(r.state)),
                        r.reason.isEmpty() ? QStringLiteral("Null") : db::sql::quoteString(r.reason),
                        r.state == SoftCopyText::State::Read ? db::sql::quoteString(r.text)
                                                             : QStringLiteral("Null")) +
               held);
}

qint64 SoftCopyWork::sweepChanged(qint64 after, int batch, qint64* changedCount) {
    struct Known {
        qint64 id;
        QString path, size, time;
        bool missing;
    };
    QList<Known> known;
    {
        db::Recordset rs;
        rs.Open(
            QStringLiteral(
                "Select IndexID, ReadPath, FileSize, FileTime, ReadState from SoftCopy where IndexID>%1 and "
                "ReadState<>'waiting' order by IndexID limit %2")
                .arg(QString::number(after), QString::number(batch)),
            connection(), db::adOpenForwardOnly, db::adLockReadOnly);
        for (; !rs.eof(); rs.MoveNext())
            known.append({rs.Fields(0).toLongLong(), rs.Fields(1).toString(), rs.Fields(2).toString(),
                          rs.Fields(3).toString(), rs.Fields(4).toString() == QLatin1String("missing")});
    }
    // A file that this seat cannot see is left as it is: it may lie on another machine.
    QList<qint64> changed;
    for (const Known& k : known) {
        const QFileInfo now(k.path);
        if (!now.absoluteDir().exists())
            continue;
        const bool same = now.exists()
                              ? QString::number(now.size()) == k.size && stamp(now.lastModified()) == k.time
                              : k.missing;
        if (!same)
            changed << k.id;
    }
    if (changedCount)
        *changedCount += changed.size();
    if (!changed.isEmpty())
        inTransaction([&](const db::ConnectionPtr& c) {
            c->Execute(
                QStringLiteral("Update SoftCopy set ReadState='waiting' where ReadState<>'waiting' and "
                               "IndexID in (%1)")
                    .arg(ids(changed)));
            return 0;
        });
    return known.size() < batch ? 0 : known.constLast().id;
}

qint64 SoftCopyWork::waitingCount() {
    db::Recordset rs;
    rs.Open(QStringLiteral("Select count(IndexID) from SoftCopy where ReadState='waiting'"), connection(),
            db::adOpenForwardOnly, db::adLockReadOnly);
    return rs.eof() ? 0 : rs.Fields(0).toLongLong();
}

void SoftCopyWork::start() {
    if (m_thread) {
        // Still ending after a stop: it starts again once ended.
        m_startAgain = m_stop.load();
        return;
    }
    m_stop = false;
    // The worker opens a connection of its own.
    m_connection.reset();
    m_thread = QThread::create([this] { run(); });
    connect(m_thread, &QThread::finished, this, [this] {
        m_thread->deleteLater();
        m_thread = nullptr;
        emit stopped();
        if (std::exchange(m_startAgain, false))
            start();
    });
    m_thread->start(QThread::LowPriority);
    if (QCoreApplication* app = QCoreApplication::instance(); app && app->thread() == thread())
        app->installEventFilter(this);
}

bool SoftCopyWork::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
        db::foreground::used();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void SoftCopyWork::stop() {
    const QMutexLocker lock(&m_restLock);
    m_startAgain = false;
    m_stop = true;
    m_wake.wakeAll();
}

void SoftCopyWork::rest(int seconds) {
    QElapsedTimer clock;
    clock.start();
    const QMutexLocker lock(&m_restLock);
    // A document saved meanwhile ends the rest.
    while (!m_stop && savedLast == 0 && clock.elapsed() < seconds * 1000LL)
        m_wake.wait(&m_restLock, 500);
}

qint64 SoftCopyWork::sweepAll() {
    qint64 changed = 0;
    qint64 after = 0;
    do
        after = sweepChanged(after, 500, &changed);
    while (after != 0 && !m_stop);
    return changed;
}

qint64 SoftCopyWork::readWaiting() {
    qint64 done = 0;
    qint64 total = waitingCount();
    QElapsedTimer counted; // the waiting are counted again every few seconds
    counted.start();
    emit progress(0, total);
    std::optional<SoftCopyClaim> claim;
    if (!m_stop)
        claim = claimNext(QDateTime::currentDateTimeUtc());
    while (claim) {
        const SoftCopyReading reading = read(claim->path);
        // The outcome and the claim of the next document in one write of the file.
        const SoftCopyClaim current = *claim;
        claim = inTransaction([&](const db::ConnectionPtr& c) -> std::optional<SoftCopyClaim> {
            storeIn(c, current, reading);
            if (m_stop || reading.cancelled)
                return std::nullopt;
            return claimIn(c, QDateTime::currentDateTimeUtc());
        });
        if (reading.cancelled)
            break;
        ++done;
        if (total < done || counted.elapsed() > 2000) {
            total = done + waitingCount();
            counted.restart();
        }
        emit stored(current.indexId);
        emit progress(done, qMax(total, done));
    }
    return done;
}

void SoftCopyWork::run() {
    while (!m_stop) {
        try {
            readWaiting();
            if (m_stop || sweepAll() > 0)
                continue;
            emit idle();
            rest(m_restSeconds);
        } catch (const platform::Error&) {
            // The database is busy or out of reach: a claim not stored runs out and the document
            // is read again; a moment later the work goes on.
            rest(10);
        }
    }
    m_connection.reset();
}
