#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Hooks through which tests drive the platform stand-ins. Once test mode is on, no window
// of a wrapper appears: message boxes are recorded and answered from a queue, dialogs
// return what the test primed, programs are recorded instead of started.
namespace platform::test {

void enable();
bool enabled();

struct Message {
    QString text;
    int style = 0;
};

// Message boxes shown since the last take, oldest first.
QList<Message> takeMessages();
// Queues the answer of the next message box (vbYes, vbNo, ...). Without one, a box is
// answered vbOK, or vbNo when it asks a question.
void answerNext(int answer);

// The next file-open dialog returns `path`; an empty string stands for Cancel.
void nextOpenFile(const QString& path);
// The next file-save dialog returns `path`; an empty string stands for Cancel.
void nextSaveFile(const QString& path);
// The next folder browser returns `path`; an empty string stands for Cancel.
void nextFolder(const QString& path);
// The folder browsers shown since the last take, each as "start folder|title".
QStringList takeFolderBrowses();

// Command lines given to Shell since the last take. Under test nothing is started.
QStringList takeStartedCommands();
// Makes Shell fail for programs that do not exist as files, as on a real start.
void setShellChecksProgram(bool check);

// Points the program's folder and the settings store at folders of the test.
void setAppPath(const QString& folder);
void setSettingsFolder(const QString& folder);

} // namespace platform::test
