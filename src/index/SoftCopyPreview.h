#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>

class QProcess;
class QTimer;

// A page of a soft copy as the preview shows it.
struct PreviewPage {
    QString path;
    int page = 1;    // the page shown, from 1
    int pages = 0;   // pages in the file; 0 when nothing could be shown
    QString text;    // the page's text, or the whole text where the kind of file has no pictures
    QImage image;    // the picture of the page; null where the kind shows text
    QString failure; // why nothing is shown, in words for the clerk; empty when shown
};

// Shows pages of soft copies through the helper program vorlane-reader, in a process of its own
// under a time limit, so that a damaged file cannot take the window down. Only the page asked for
// last counts: asking again drops the work for the one before, waiting or under way, and
// requests that come quicker than the delay are never started at all. Pages shown are kept as
// small pictures in a cache folder, keyed by the file's path, size and time, the page and the
// width, and the oldest go when the folder outgrows its limit.
class SoftCopyPreview : public QObject {
    Q_OBJECT
  public:
    explicit SoftCopyPreview(QObject* parent = nullptr);
    ~SoftCopyPreview() override;

    // The helper: vorlane-reader beside the running program unless set.
    void setHelper(const QString& program) { m_helper = program; }
    // Options given to the helper before the path, such as its limits (vorlane-reader --help).
    void setHelperOptions(const QStringList& options) { m_options = options; }
    // The cache folder: "previews" in the user's cache folder unless set; empty keeps nothing.
    void setCacheFolder(const QString& folder);
    const QString& cacheFolder() const { return m_cacheFolder; }
    void setCacheLimit(qint64 bytes) { m_cacheLimit = bytes; }
    // The longest a page may take, in seconds (20 unless set).
    void setTimeLimit(int seconds) { m_seconds = seconds; }
    // How long a request waits for the next one before its work starts, in milliseconds.
    void setDelay(int milliseconds);

    // Asks for page `page` (from 1; past the last shows the last) of the file at `path`, `width`
    // pixels wide; shown() tells the outcome. An empty path drops the work and shows nothing.
    void request(const QString& path, int page, int width);
    // Drops the work under way or waiting.
    void cancel();

    // How many helpers were started, for the benchmark and the tests.
    int started() const { return m_started; }

  signals:
    void shown(const PreviewPage& page);

  private:
    struct Request {
        QString path;
        int page = 1;
        int width = 0;
    };
    void run();
    void finish(bool timedOut);
    void dismiss();
    QString cacheFile(const Request& request) const;
    void keep(const QString& file, const QByteArray& bytes);
    PreviewPage page(const Request& request, const QByteArray& bytes) const;

    QString m_helper;
    QStringList m_options;
    QString m_cacheFolder;
    qint64 m_cacheLimit = 64LL << 20;
    qint64 m_cacheBytes = -1; // what the cache folder holds, once counted
    int m_seconds = 20;
    int m_started = 0;
    Request m_wanted;
    Request m_running;
    QString m_runningCache;
    QProcess* m_process = nullptr;
    QTimer* m_delay;
    QTimer* m_limit;
};
