#include "SoftCopyWork.h"

#include "datastore/Ado.h"
#include "session/GenMod.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

namespace {

QString quoted(const QString& text) {
    QString inner = text;
    inner.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + inner + QLatin1Char('\'');
}

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

// A connection of its own for one short operation, in one transaction that takes the write lock.
template <typename Work> auto inTransaction(Work work) {
    auto connection = std::make_shared<db::Connection>();
    connection->Open(GenMod::DataSourceName, GenMod::DataSourceUser, GenMod::DataSourcePassword);
    connection->BeginTrans();
    try {
        auto result = work(connection);
        connection->CommitTrans();
        return result;
    } catch (...) {
        if (connection->inTransaction())
            connection->RollbackTrans();
        throw;
    }
}

} // namespace

SoftCopyWork::SoftCopyWork(const QString& seat, QObject* parent) : QObject(parent), m_seat(seat) {}

SoftCopyWork::~SoftCopyWork() {
    // A reading under way ends within the reader's time limit.
    if (m_thread) {
        m_thread->wait();
        delete m_thread;
    }
}

std::optional<SoftCopyClaim> SoftCopyWork::claimNext(const QDateTime& now) {
    const QString expired = stamp(now.addSecs(-60LL * m_claimMinutes));
    return inTransaction([&](const db::ConnectionPtr& c) -> std::optional<SoftCopyClaim> {
        // A document without a row has never been looked at; one whose row waits was saved with
        // another path since, or its reading was given back.
        db::Recordset rs;
        rs.Open(QStringLiteral("Select I.IndexID, I.FilePath, S.IndexID as Known from Vorlane I left join "
                               "SoftCopy S on S.IndexID=I.IndexID where (S.IndexID is null or "
                               "(S.ReadState='waiting' and (S.ClaimedAt is null or S.ClaimedAt < %1))) "
                               "order by I.DocDate desc, I.IndexID desc")
                    .arg(quoted(expired)),
                c, db::adOpenForwardOnly, db::adLockReadOnly);
        for (; !rs.eof(); rs.MoveNext()) {
            const qint64 id = rs.Fields(0).toLongLong();
            if (m_leftForOthers.contains(id))
                continue;
            const SoftCopyClaim claim{id, rs.Fields(1).toString().trimmed()};
            const bool known = !rs.Fields(2).isNull();
            rs.Close();
            const QString seat = quoted(m_seat);
            const QString at = quoted(stamp(now));
            c->Execute(known
                           ? QStringLiteral("Update SoftCopy set ClaimedBy=%1, ClaimedAt=%2 where IndexID=%3")
                                 .arg(seat, at, QString::number(id))
                           : QStringLiteral("Insert into SoftCopy (IndexID, ReadState, ClaimedBy, ClaimedAt) "
                                            "values (%1, 'waiting', %2, %3)")
                                 .arg(QString::number(id), seat, at));
            return claim;
        }
        return std::nullopt;
    });
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
    reading.result = m_reader.read(path);
    return reading;
}

void SoftCopyWork::store(const SoftCopyClaim& claim, const SoftCopyReading& reading) {
    inTransaction([&](const db::ConnectionPtr& c) {
        const QString id = QString::number(claim.indexId);
        const QString held = QStringLiteral(" where IndexID=%1 and ClaimedBy=%2").arg(id, quoted(m_seat));
        db::Recordset rs;
        rs.Open(QStringLiteral("Select FilePath from Vorlane where IndexID=") + id, c, db::adOpenForwardOnly,
                db::adLockReadOnly);
        // A document deleted or saved with another path meanwhile: its row is gone, or waits again.
        const bool samePath = !rs.eof() && rs.Fields(0).toString().trimmed() == claim.path;
        rs.Close();
        if (reading.unreachable || !samePath) {
            c->Execute(QStringLiteral("Update SoftCopy set ClaimedBy=Null, ClaimedAt=Null") + held);
            return 0;
        }
        const SoftCopyText& r = reading.result;
        c->Execute(QStringLiteral("Update SoftCopy set ReadPath=%1, FileSize=%2, FileTime=%3, ReadState=%4, "
                                  "Reason=%5, SoftText=%6, ClaimedBy=Null, ClaimedAt=Null")
                       .arg(quoted(claim.path), quoted(reading.size), quoted(reading.modified),
                            quoted(stateName(r.state)),
                            r.reason.isEmpty() ? QStringLiteral("Null") : quoted(r.reason),
                            r.state == SoftCopyText::State::Read ? quoted(r.text) : QStringLiteral("Null")) +
                   held);
        return 0;
    });
    if (reading.unreachable)
        m_leftForOthers.insert(claim.indexId);
}

void SoftCopyWork::start() {
    if (m_running)
        return;
    m_running = true;
    next();
}

void SoftCopyWork::next() {
    try {
        m_claim = m_running ? claimNext(QDateTime::currentDateTimeUtc()) : std::nullopt;
    } catch (const platform::Error&) {
        // The database is busy or out of reach: a later start tries again.
        m_claim.reset();
    }
    if (!m_claim) {
        m_running = false;
        emit idle();
        return;
    }
    const QString path = m_claim->path;
    m_thread = QThread::create([this, path] { m_reading = read(path); });
    connect(m_thread, &QThread::finished, this, &SoftCopyWork::finished);
    m_thread->start();
}

void SoftCopyWork::finished() {
    m_thread->deleteLater();
    m_thread = nullptr;
    const SoftCopyClaim claim = *m_claim;
    try {
        store(claim, m_reading);
    } catch (const platform::Error&) {
        // Not stored: the claim runs out and the document is read again.
    }
    emit stored(claim.indexId);
    next();
}
