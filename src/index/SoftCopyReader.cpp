#include "index/SoftCopyReader.h"

#include "index/reader/ReaderExit.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <csignal>
#include <memory>
#include <utility>

SoftCopyReader::SoftCopyReader(QObject* parent) : QObject(parent), m_timer(new QTimer(this)) {
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, [this] { finish(true); });
}

// Helpers that were killed are gone at once; they are reaped here, not left to QProcess's warning.
SoftCopyReader::~SoftCopyReader() {
    for (QProcess* process : findChildren<QProcess*>()) {
        process->kill();
        process->waitForFinished(-1);
    }
}

// Lets a reading go without waiting for it: a killed helper is gone at once and its process is
// reaped when it is.
void SoftCopyReader::dismiss(QProcess* process) {
    process->disconnect(this);
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
}

QProcess* SoftCopyReader::prepare(const QString& path, QObject* parent) const {
    auto* process = new QProcess(parent);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // OCR reads with one thread: the helper runs beside the clerk's own work.
    environment.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
    process->setProcessEnvironment(environment);
    process->setProgram(
        m_helper.isEmpty()
            ? QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("vorlane-reader"))
            : m_helper);
    process->setArguments(m_options + QStringList{QStringLiteral("--"), path});
    return process;
}

SoftCopyText SoftCopyReader::outcome(QProcess& process, bool timedOut) const {
    using State = SoftCopyText::State;
    if (process.error() == QProcess::FailedToStart)
        return {State::Unreadable,
                QStringLiteral("The reader program %1 could not be started.").arg(process.program()),
                {}};
    if (timedOut)
        return {State::Unreadable,
                QStringLiteral("The reader stopped after %1 seconds.").arg(QString::number(m_seconds)),
                {}};
    // After a crash, QProcess gives the number of the signal that ended the helper as its code.
    // SIGKILL comes from outside: the kernel short of memory, or the hard processor-time limit.
    if (process.exitStatus() == QProcess::CrashExit)
        return {State::Unreadable,
                process.exitCode() == SIGKILL
                    ? QStringLiteral("The reader was stopped from outside while reading this file.")
                    : QStringLiteral("The reader crashed while reading this file."),
                {}};
    // The reason is the helper's last line: the libraries may have said more before it.
    const QString said = QString::fromUtf8(process.readAllStandardError()).trimmed();
    QString reason = said.mid(said.lastIndexOf(QLatin1Char('\n')) + 1);
    if (reason.isEmpty())
        reason = QStringLiteral("The reader ended with code %1.").arg(QString::number(process.exitCode()));
    switch (process.exitCode()) {
    case reader::Read:
        return {State::Read, {}, QString::fromUtf8(process.readAllStandardOutput())};
    case reader::Missing:
        return {State::Missing, reason, {}};
    case reader::NoTextForType:
        return {State::NoTextForType, reason, {}};
    default:
        return {State::Unreadable, reason, {}};
    }
}

SoftCopyText SoftCopyReader::read(const QString& path) const {
    const std::atomic<bool> never{false};
    bool cancelled = false;
    return read(path, never, cancelled);
}

SoftCopyText SoftCopyReader::read(const QString& path, const std::atomic<bool>& cancel,
                                  bool& cancelled) const {
    const std::unique_ptr<QProcess> process(prepare(path, nullptr));
    process->start();
    bool timedOut = false;
    cancelled = false;
    if (process->waitForStarted(-1)) {
        QElapsedTimer clock;
        clock.start();
        // A look at the cancel flag every tenth of a second.
        while (!process->waitForFinished(100) && process->state() != QProcess::NotRunning) {
            cancelled = cancel;
            timedOut = clock.elapsed() >= m_seconds * 1000LL;
            if (cancelled || timedOut) {
                process->kill();
                process->waitForFinished(-1);
                break;
            }
        }
    }
    return outcome(*process, timedOut);
}

void SoftCopyReader::start(const QString& path) {
    if (m_process)
        dismiss(std::exchange(m_process, nullptr));
    m_process = prepare(path, this);
    connect(m_process, &QProcess::finished, this, [this] { finish(false); });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(false);
    });
    m_timer->start(m_seconds * 1000);
    m_process->start();
}

void SoftCopyReader::finish(bool timedOut) {
    m_timer->stop();
    QProcess* process = std::exchange(m_process, nullptr);
    if (!process)
        return;
    const SoftCopyText result = outcome(*process, timedOut);
    dismiss(process);
    emit finished(result);
}
