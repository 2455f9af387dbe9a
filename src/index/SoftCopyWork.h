#pragma once

#include "SoftCopyReader.h"

#include <QDateTime>
#include <QObject>
#include <QSet>
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
};

// The soft copies' texts in the background of a seat, without a window: it takes the documents
// that wait to be read, newest first, one at a time, holds each by a claim in the database (so
// that seats sharing the database never read a document twice), reads it through SoftCopyReader in
// a worker thread, and stores the outcome in one transaction. A claim older than the claim time
// is taken to be that of a seat that died, and is taken over.
class SoftCopyWork : public QObject {
    Q_OBJECT
  public:
    explicit SoftCopyWork(const QString& seat, QObject* parent = nullptr);
    ~SoftCopyWork() override;

    SoftCopyReader& reader() { return m_reader; }
    void setClaimMinutes(int minutes) { m_claimMinutes = minutes; }

    // Starts the reading: it goes on by itself until no document waits (then idle()), or stop().
    void start();
    void stop() { m_running = false; }
    bool isRunning() const { return m_running; }

    // The steps, each one short operation on the database (their own connection, opened and
    // closed inside): the next waiting document claimed for this seat, or none.
    std::optional<SoftCopyClaim> claimNext(const QDateTime& now);
    // Reads the file of a claim: any thread.
    SoftCopyReading read(const QString& path) const;
    // Stores a reading, when this seat still holds the claim and the document's path is still the
    // one read; a path out of reach gives the claim back and leaves the document to other seats.
    void store(const SoftCopyClaim& claim, const SoftCopyReading& reading);

  signals:
    // A document's outcome is stored (or it was left for another seat).
    void stored(qint64 indexId);
    // No document waits that this seat may read.
    void idle();

  private:
    void next();
    void finished();

    QString m_seat;
    int m_claimMinutes = 10;
    bool m_running = false;
    SoftCopyReader m_reader;
    std::optional<SoftCopyClaim> m_claim;
    QThread* m_thread = nullptr;  // the reading under way
    SoftCopyReading m_reading;    // its outcome, written by that thread before it ends
    QSet<qint64> m_leftForOthers; // out of this seat's reach, while the program runs
};
