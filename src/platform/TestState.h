#pragma once

#include "TestHooks.h"

#include <QQueue>

namespace platform::detail {

// What the tests have primed and what the wrappers recorded. Only the wrappers read it.
struct TestState {
    bool enabled = false;
    QList<test::Message> messages;
    QQueue<int> answers;
    QQueue<QString> openFiles;
    QQueue<QString> saveFiles;
    QQueue<QString> folders;
    QStringList folderBrowses;
    QStringList started;
    bool shellChecksProgram = false;
    QString appPath;
    QString settingsFolder;
};

TestState& testState();

} // namespace platform::detail
