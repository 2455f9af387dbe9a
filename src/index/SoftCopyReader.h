#pragma once

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

class QProcess;

// What reading one soft copy gave: its text, or why there is none.
struct SoftCopyText {
    enum class State { Read, Unreadable, Missing, NoTextForType };
    State state = State::Unreadable;
    QString reason; // in words for the clerk; empty when read
    QString text;
};

// Reads the text of one soft copy through the helper program vorlane-reader, in a process of
// its own, so that a damaged or hostile file may crash or hang only the helper. A reading that
// passes the time limit is killed. read() keeps one serving helper per calling thread
// (vorlane-reader --serve), which loads its libraries once and forks the process of each file;
// a reading cut short kills it, and the next one starts another. start(), and read() with a
// helper that does not serve, start a new helper for each reading.
class SoftCopyReader : public QObject {
    Q_OBJECT
  public:
    explicit SoftCopyReader(QObject* parent = nullptr);
    ~SoftCopyReader() override;

    // The helper: vorlane-reader beside the running program unless set.
    void setHelper(const QString& program) { m_helper = program; }
    // Options given to the helper before the path: OCR languages, limits (vorlane-reader --help).
    void setHelperOptions(const QStringList& options) { m_options = options; }
    // The longest a reading may take, in seconds (60 unless set).
    void setTimeLimit(int seconds) { m_seconds = seconds; }

    // Reads `path` and waits for the outcome: for background threads and tests. It blocks up to
    // the time limit, so the GUI thread uses start(). Any thread may call it: it uses nothing of
    // the object but its settings and the calling thread's serving helper, which dies with the
    // thread.
    SoftCopyText read(const QString& path) const;
    // The same, cut short as soon as `cancel` turns true (then `cancelled` is set and the outcome
    // means nothing).
    SoftCopyText read(const QString& path, const std::atomic<bool>& cancel, bool& cancelled) const;
    // What a helper that ran in `process` (or could not start, or passed the time limit of
    // `seconds`) tells; its standard output is taken for the text.
    static SoftCopyText outcomeOf(QProcess& process, bool timedOut, int seconds);

  private:
    struct Server; // a serving helper and the thread that started it

    QString program() const;
    QStringList arguments(const QString& path) const;
    QProcess* prepare(const QString& path, QObject* parent) const;
    // Through the calling thread's serving helper; none when the helper does not serve.
    std::optional<SoftCopyText> readServed(const QStringList& arguments, const std::atomic<bool>& cancel,
                                           bool& cancelled) const;
    std::unique_ptr<Server> takeServer(const QString& program) const;

    QString m_helper;
    QStringList m_options;
    int m_seconds = 60;
    mutable QMutex m_serversLock;
    mutable std::vector<std::unique_ptr<Server>> m_servers; // those not reading now
};
