#include "TestHooks.h"

#include "TestState.h"

namespace platform::detail {
TestState& testState() {
    static TestState state;
    return state;
}
} // namespace platform::detail

namespace platform::test {

using detail::testState;

void enable() {
    testState().enabled = true;
}
bool enabled() {
    return testState().enabled;
}

QList<Message> takeMessages() {
    QList<Message> shown;
    shown.swap(testState().messages);
    return shown;
}

void answerNext(int answer) {
    testState().answers.enqueue(answer);
}
void nextOpenFile(const QString& path) {
    testState().openFiles.enqueue(path);
}
void nextSaveFile(const QString& path) {
    testState().saveFiles.enqueue(path);
}
void nextFolder(const QString& path) {
    testState().folders.enqueue(path);
}
QStringList takeFolderBrowses() {
    QStringList shown;
    shown.swap(testState().folderBrowses);
    return shown;
}

QStringList takeStartedCommands() {
    QStringList started;
    started.swap(testState().started);
    return started;
}

void setShellChecksProgram(bool check) {
    testState().shellChecksProgram = check;
}
void setAppPath(const QString& folder) {
    testState().appPath = folder;
}
void setSettingsFolder(const QString& folder) {
    testState().settingsFolder = folder;
}

} // namespace platform::test
