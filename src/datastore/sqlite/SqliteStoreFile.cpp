// The upkeep of the embedded file through the engine's own means: its online backup, which reads
// the pages under the engine's locks, and its exclusive locking mode, which keeps every other
// seat out from the compaction until its result is in place.
#include "datastore/StoreFile.h"

#include "BusyWait.h"
#include "SqliteFolding.h"
#include "datastore/Errors.h"
#include "datastore/OdbcSource.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace db {

namespace {

// How long a copy waits for a save of another seat to end before it reads the pages.
constexpr int CopyWaitSeconds = 100;

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QString systemError(int number) {
    return QString::fromLocal8Bit(std::strerror(number));
}

// One connection of the engine to a file, closed when dropped.
class Handle {
  public:
    Handle(const QString& path, int flags) {
        const int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &m_handle, flags, nullptr);
        if (rc != SQLITE_OK) {
            const QString why = m_handle ? QString::fromUtf8(sqlite3_errmsg(m_handle))
                                         : QString::fromUtf8(sqlite3_errstr(rc));
            sqlite3_close_v2(m_handle);
            m_handle = nullptr;
            throw platform::Error(ErrDataSourceNotFound, QStringLiteral("%1: %2").arg(why, native(path)));
        }
        sqlite3_extended_result_codes(m_handle, 1);
    }
    ~Handle() { sqlite3_close_v2(m_handle); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator sqlite3*() const { return m_handle; }

    [[noreturn]] void fail() const {
        throw platform::Error(ErrStatement, QString::fromUtf8(sqlite3_errmsg(m_handle)));
    }
    void exec(const char* sql) const {
        if (sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            fail();
    }

  private:
    sqlite3* m_handle = nullptr;
};

// Copies every page of `from` into `to` in one step: `to` is then a page-for-page image of `from`
// as it stood at one moment, written in one transaction of its own.
void copyPages(const Handle& from, const Handle& to) {
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (!backup)
        to.fail();
    const int step = sqlite3_backup_step(backup, -1);
    const int finished = sqlite3_backup_finish(backup);
    if (step == SQLITE_DONE && finished == SQLITE_OK)
        return;
    // The failure is told by the connection on whose side it lay.
    const int code = step != SQLITE_DONE ? step : finished;
    QString why = QString::fromUtf8(sqlite3_errmsg(to));
    if (sqlite3_errcode(to) == SQLITE_OK)
        why = QString::fromUtf8(sqlite3_errstr(code));
    throw platform::Error(ErrStatement, why);
}

// Writes what the file system still holds of `path` to the disk.
void flushToDisk(const QString& path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

class SqliteSoleStore : public SoleStore {
  public:
    SqliteSoleStore(const QString& path, int waitSeconds) : m_store(path, SQLITE_OPEN_READWRITE) {
        // The compacted copy must order texts as every seat's connection does.
        installUnicodeFolding(m_store);
        m_wait.install(m_store, qMax(0, waitSeconds) * 1000);
        // The write lock is taken in the normal locking mode, which lets go of what a failed try
        // got; a connection in the exclusive mode would keep its read lock, on which the commit
        // of a seat that holds the write lock waits. Once it is had, the exclusive mode keeps it
        // until the connection closes, and every other seat is out.
        m_store.exec("BEGIN EXCLUSIVE");
        m_store.exec("PRAGMA locking_mode=EXCLUSIVE");
        m_store.exec("COMMIT");
    }

    void compactInto(const QString& work) override {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_store, "VACUUM INTO ?", -1, &statement, nullptr) != SQLITE_OK)
            m_store.fail();
        const QByteArray name = QFile::encodeName(work);
        sqlite3_bind_text(statement, 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
        const int rc = sqlite3_step(statement);
        sqlite3_finalize(statement);
        if (rc != SQLITE_DONE)
            m_store.fail();
    }

    void replaceWith(const QString& work) override {
        const Handle compacted(work, SQLITE_OPEN_READONLY);
        // Written through the store's own journal: a failure rolls the store back whole.
        copyPages(compacted, m_store);
    }

  private:
    Handle m_store;
    BusyWait m_wait;
};

} // namespace

bool isLocalStore(const QString& dataSource, const QString& path) {
    return QFileInfo(path).isFile() && !odbcKnows(dataSource);
}

void copyStore(const QString& source, const QString& target) {
    const QFileInfo targetInfo(target);
    const QString folder = targetInfo.absolutePath();
    if (!QFileInfo(folder).isDir())
        throw platform::Error(platform::ErrPathNotFound,
                              QStringLiteral("Path not found: %1").arg(native(folder)));

    // Opened for writing where the file allows it, so that the journal of a save that broke off
    // is rolled back before the pages are read.
    const Handle store(source, SQLITE_OPEN_READWRITE);
    BusyWait wait;
    wait.install(store, CopyWaitSeconds * 1000);

    QTemporaryFile part(QDir(folder).filePath(targetInfo.fileName() + QStringLiteral(".XXXXXX")));
    part.setAutoRemove(false);
    if (!part.open())
        throw platform::Error(
            platform::ErrPermissionDenied,
            QStringLiteral("Cannot write in %1: %2").arg(native(folder), part.errorString()));
    // The copy may be read and written by whoever may the store, as a plain copy of the file.
    part.setPermissions(QFile::permissions(source) | QFile::ReadOwner | QFile::WriteOwner);
    const QString partPath = part.fileName();
    part.close();
    const auto dropPart = [&] {
        QFile::remove(partPath);
        QFile::remove(partPath + QStringLiteral("-journal"));
    };
    try {
        {
            const Handle copy(partPath, SQLITE_OPEN_READWRITE);
            // A copy that breaks off is thrown away whole: it needs no journal of its own.
            copy.exec("PRAGMA journal_mode=OFF");
            copyPages(store, copy);
        }
        flushToDisk(partPath);
        if (std::rename(QFile::encodeName(partPath).constData(), QFile::encodeName(target).constData()) != 0)
            throw platform::Error(
                platform::ErrPermissionDenied,
                QStringLiteral("Cannot replace %1: %2").arg(native(target), systemError(errno)));
    } catch (...) {
        dropPart();
        throw;
    }
    flushToDisk(folder);
}

std::unique_ptr<SoleStore> SoleStore::take(const QString& path, int waitSeconds) {
    return std::make_unique<SqliteSoleStore>(path, waitSeconds);
}

} // namespace db
