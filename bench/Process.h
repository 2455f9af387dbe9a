#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Running a program as the benchmark measures it: wall-clock time from start to end and the
// peak resident memory that the kernel reports for it when it ends.
namespace bench {

struct Run {
    bool started = false; // false when the program could not be started at all
    int exitCode = -1;    // the exit status, or 128 + the signal that ended it
    double seconds = 0;
    long peakKiB = 0;  // ru_maxrss of the ended program
    QByteArray output; // its standard output, when asked for
    QString error;     // why it could not be started

    bool ok() const { return started && exitCode == 0; }
};

// Runs `command` (program and arguments; the program is looked up in PATH) and waits for it.
// Standard output is kept when `keepOutput`, thrown away otherwise; standard error stays ours.
// A process started by this one counts the memory that this one held at the start as its own
// peak too, so the caller keeps itself small. With `lowestPriority`, it runs at the lowest CPU
// priority, as Vorlane's reader of soft copies does.
Run runProgram(const QStringList& command, bool keepOutput, bool lowestPriority = false);

// Reads a file once from start to end, so that the runs after it find it in the page cache,
// and waits until it is on disk, so that no run pays for writing out a fresh copy.
bool warmFile(const QString& path);

// The peak resident memory of this process so far, in KiB (VmHWM), or 0 when unknown.
long peakMemoryKiB();
// Starts the process's high-water mark of resident memory again from what it holds now.
void resetPeakMemory();

} // namespace bench
