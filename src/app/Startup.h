#pragma once

class QApplication;

// Runs the program: the start-up routine, then the events of the screens. Returns the
// process's exit code.
int runVorlane(QApplication& app);

// Wires the toolbar entries to the screens that they open.
void wireScreens();
