#include "index/SoftCopyPreview.h"

#include "index/SoftCopyReader.h"
#include "index/SoftCopySettings.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace {

// One head line of the helper's answer, "name number"; -1 when it is not there.
qint64 head(const QByteArray& bytes, qsizetype& at, const QByteArray& name) {
    const qsizetype end = bytes.indexOf('\n', at);
    if (end < 0 || !bytes.mid(at, end - at).startsWith(name + ' '))
        return -1;
    bool ok = false;
    const qint64 value = bytes.mid(at + name.size() + 1, end - at - name.size() - 1).toLongLong(&ok);
    at = end + 1;
    return ok && value >= 0 ? value : -1;
}

} // namespace

SoftCopyPreview::SoftCopyPreview(QObject* parent)
    : QObject(parent), m_delay(new QTimer(this)), m_limit(new QTimer(this)) {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (!cache.isEmpty())
        m_cacheFolder = QDir(cache).filePath(QStringLiteral("previews"));
    m_delay->setSingleShot(true);
    m_delay->setInterval(50);
    connect(m_delay, &QTimer::timeout, this, &SoftCopyPreview::run);
    m_limit->setSingleShot(true);
    connect(m_limit, &QTimer::timeout, this, [this] { finish(true); });
}

SoftCopyPreview::~SoftCopyPreview() {
    cancel();
}

void SoftCopyPreview::setCacheFolder(const QString& folder) {
    m_cacheFolder = folder;
    m_cacheBytes = -1;
}

void SoftCopyPreview::setDelay(int milliseconds) {
    m_delay->setInterval(milliseconds);
}

void SoftCopyPreview::request(const QString& path, int page, int width) {
    cancel();
    if (path.trimmed().isEmpty())
        return;
    m_wanted = {path, qMax(1, page), qMax(16, width)};
    m_delay->start();
}

void SoftCopyPreview::cancel() {
    m_delay->stop();
    dismiss();
}

// A helper left behind is killed; it is reaped when it ends, never waited for.
void SoftCopyPreview::dismiss() {
    m_limit->stop();
    QProcess* process = std::exchange(m_process, nullptr);
    if (!process)
        return;
    process->disconnect(this);
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
}

// The cache file of a page: its name comes from the path, the file's size and time, the page and
// the width, so that a changed file is never shown from the cache. Empty when nothing is kept.
QString SoftCopyPreview::cacheFile(const Request& request) const {
    if (m_cacheFolder.isEmpty())
        return {};
    const QFileInfo info(request.path);
    if (!info.isFile())
        return {};
    const QByteArray key = request.path.toUtf8() + '\n' + QByteArray::number(info.size()) + '\n' +
                           QByteArray::number(info.lastModified().toMSecsSinceEpoch()) + '\n' +
                           QByteArray::number(request.page) + '\n' + QByteArray::number(request.width);
    return QDir(m_cacheFolder)
        .filePath(QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex()) +
                  QStringLiteral(".preview"));
}

void SoftCopyPreview::run() {
    const Request request = m_wanted;
    const QString cached = cacheFile(request);
    if (QFile file(cached); !cached.isEmpty() && file.open(QIODevice::ReadOnly)) {
        const PreviewPage result = page(request, file.readAll());
        if (result.failure.isEmpty()) {
            // The pages shown lately are the last to go when the cache is pruned.
            file.close();
            file.open(QIODevice::ReadWrite);
            file.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
            emit shown(result);
            return;
        }
    }
    m_running = request;
    m_runningCache = cached;
    m_process = new QProcess(this);
    m_process->setProgram(m_helper.isEmpty() ? SoftCopySettings::readerProgram() : m_helper);
    m_process->setArguments(
        QStringList{QStringLiteral("--cpu-seconds"), QString::number(m_seconds)} + m_options +
        QStringList{QStringLiteral("--preview"), QString::number(request.page), QStringLiteral("--width"),
                    QString::number(request.width), QStringLiteral("--"), request.path});
    connect(m_process, &QProcess::finished, this, [this] { finish(false); });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(false);
    });
    ++m_started;
    m_limit->start(m_seconds * 1000);
    m_process->start();
}

void SoftCopyPreview::finish(bool timedOut) {
    QProcess* process = m_process;
    if (!process)
        return;
    // The answer is taken first: it is a picture, not a text.
    const QByteArray bytes = process->readAllStandardOutput();
    const SoftCopyText ended = SoftCopyReader::outcomeOf(*process, timedOut, m_seconds);
    PreviewPage result;
    if (ended.state == SoftCopyText::State::Read) {
        result = page(m_running, bytes);
        if (result.failure.isEmpty())
            keep(m_runningCache, bytes);
    } else {
        result.path = m_running.path;
        result.page = m_running.page;
        result.failure = ended.reason;
    }
    dismiss();
    emit shown(result);
}

// The helper's answer: "pages N", "text BYTES" and the text, "image BYTES" and the JPEG.
PreviewPage SoftCopyPreview::page(const Request& request, const QByteArray& bytes) const {
    PreviewPage out;
    out.path = request.path;
    qsizetype at = 0;
    const qint64 pages = head(bytes, at, "pages");
    const qint64 textBytes = pages > 0 ? head(bytes, at, "text") : -1;
    const QByteArray text = textBytes >= 0 ? bytes.mid(at, textBytes) : QByteArray();
    at += textBytes;
    const qint64 imageBytes = textBytes >= 0 && text.size() == textBytes ? head(bytes, at, "image") : -1;
    if (imageBytes < 0 || bytes.size() - at != imageBytes) {
        out.failure = QStringLiteral("The reader's answer could not be understood.");
        return out;
    }
    out.pages = int(pages);
    out.page = qMin(request.page, out.pages);
    out.text = QString::fromUtf8(text);
    if (imageBytes > 0 && !out.image.loadFromData(bytes.mid(at), "JPG"))
        out.failure = QStringLiteral("The reader's picture of the page could not be understood.");
    return out;
}

// Keeps a page shown in the cache, and prunes the cache, oldest first, to three quarters of its
// limit once it outgrows it. A cache that cannot be written only costs time.
void SoftCopyPreview::keep(const QString& file, const QByteArray& bytes) {
    if (file.isEmpty() || !QDir().mkpath(m_cacheFolder))
        return;
    QSaveFile out(file);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return;
    const QDir folder(m_cacheFolder);
    const QStringList kept{QStringLiteral("*.preview")};
    if (m_cacheBytes < 0) {
        m_cacheBytes = 0;
        for (const QFileInfo& entry : folder.entryInfoList(kept, QDir::Files))
            m_cacheBytes += entry.size();
    } else {
        m_cacheBytes += bytes.size();
    }
    if (m_cacheBytes <= m_cacheLimit)
        return;
    const QFileInfoList entries = folder.entryInfoList(kept, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo& entry : entries) {
        if (m_cacheBytes <= m_cacheLimit / 4 * 3)
            break;
        if (QFile::remove(entry.filePath()))
            m_cacheBytes -= entry.size();
    }
}
