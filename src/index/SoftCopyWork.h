#pragma once

#include "SoftCopyReader.h"
#include "datastore/Ado.h"

#include <QDateTime>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QWaitCondition>
#include <atomic>
#include <optional>

class QThread;

// A document that a seat holds while it reads its soft copy.
struct SoftCopyClaim {
    qint64 indexId = 0;
    QString path; // the document's path as it stood when claimed
};

// What the seat found of the file besides its text: its size and modification time when read.
struct SoftCopyReading {
    SoftCopyText result;
    QString size;
    QString modified; // UTC, ISO 8601 with milliseconds
    // The folder of the path is out of this seat's reach (a drive or share of another machine):
    // the document is left for a seat that can reach it.
    bool unreachable = false;
    // The reading was cut short by stop(): nothing is stored, the claim is given back.
    bool cancelled = false;
};

// The soft copies' texts in the background of a seat, without a window. In a worker thread of
// its own, it takes the documents that wait to be read, newest first, one at a time, holds each
// by a claim in the database (so that seats sharing the database never read a document twice),
// reads it through SoftCopyReader, and stores the outcome and claims the next document in one
// transaction. Each transaction waits until the screens of this seat leave the database alone
// (db::foreground), a second at most, so that a clerk never waits for the file behind it. A
// claim older than the claim time is taken to be that of a seat that died, and is taken over.
// When none waits, it looks through the documents already read for files that changed since
// (size or modification time), a batch at a time, and sets those waiting; then it rests and
// looks again.
class SoftCopyWork : public QObject {
    Q_OBJECT
  public:
    explicit SoftCopyWork(const QString& seat, QObject* parent = nullptr);
    // Stops, cutting a reading under way short, and waits for the worker thread.
    ~SoftCopyWork() override;

    SoftCopyReader& reader() { return m_reader; }
    void setClaimMinutes(int minutes) { m_claimMinutes = minutes; }
    // How long it rests once every document is read and every file looked at (10 minutes).
    void setRestSeconds(int seconds) { m_restSeconds = seconds; }

    // Starts the worker thread; it goes on until stop().
    void start();
    // Ends the work soon: a reading under way is cut short and its document given back. The
    // thread ends by itself; stopped() tells when.
    void stop();
    bool isStopped() const { return m_stop; }
    bool isRunning() const { return m_thread != nullptr; }

    // The document just saved in this program is read next, if it waits.
    static void readNext(qint64 indexId);

    // The steps, each one short operation on the database in one transaction, on the connection
    // of the thread that runs them (the worker's while it runs): the next waiting document
    // claimed for this seat, or none.
    std::optional<SoftCopyClaim> claimNext(const QDateTime& now);
    // Reads the file of a claim: any thread.
    SoftCopyReading read(const QString& path) const;
    // Stores a reading, when this seat still holds the claim and the document's path is still the
    // one read; a path out of reach or a cancelled reading gives the claim back, and a path out of
    // reach leaves the document to other seats.
    void store(const SoftCopyClaim& claim, const SoftCopyReading& reading);
    // Looks at up to `batch` documents read before, after the key `after`, and sets those whose
    // file changed since waiting (adding their number to `changed`). The last key looked at, or 0
    // after the last document.
    qint64 sweepChanged(qint64 after, int batch, qint64* changed = nullptr);
    // The same over every document: how many were set waiting.
    qint64 sweepAll();
    // Reads the waiting documents one after the other in the calling thread, until none waits
    // or the work is stopped, telling progress() at the start and after each: how many it read.
    qint64 readWaiting();
    // stop() for a signal handler: the work ends at the next look at it (within a tenth of a second).
    void interrupt() { m_stop = true; }
    // How many documents wait to be read.
    qint64 waitingCount();

  signals:
    // A document's outcome is stored (or it was left for another seat).
    void stored(qint64 indexId);
    // `done` documents of `total` this run, `total` being those done and those waiting: when the
    // run starts and after each document.
    void progress(qint64 done, qint64 total);
    // No document waits and every file was looked at: the work rests.
    void idle();
    // The worker thread ended after stop().
    void stopped();

  protected:
    // The clerk's keys and clicks count as a use of the database by the screens: the next write
    // waits for the screen's answer.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void run();
    void rest(int seconds);
    const db::ConnectionPtr& connection();
    // claimNext() and store() inside a transaction of `c`.
    std::optional<SoftCopyClaim> claimIn(const db::ConnectionPtr& c, const QDateTime& now);
    void storeIn(const db::ConnectionPtr& c, const SoftCopyClaim& claim, const SoftCopyReading& reading);
    template <typename Work> auto inTransaction(Work work);

    QString m_seat;
    int m_claimMinutes = 10;
    int m_restSeconds = 600;
    SoftCopyReader m_reader;
    QThread* m_thread = nullptr;
    std::atomic<bool> m_stop{false};
    bool m_startAgain = false; // start() came while the thread was ending
    QMutex m_restLock;
    QWaitCondition m_wake;
    db::ConnectionPtr m_connection; // of the thread that runs the steps
    QSet<qint64> m_leftForOthers;   // out of this seat's reach, while the program runs
};
