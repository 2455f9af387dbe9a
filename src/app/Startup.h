#pragma once

class QApplication;

// The start-up routine: shows the login screen. Returns false, having shown nothing, when
// another instance of the program runs for this user: the program then ends at once.
bool Startup();

// Runs the program: the start-up routine, then the events of the screens. Returns the
// process's exit code.
int runVorlane(QApplication& app);

// Wires the toolbar entries to the screens that they open.
void wireScreens();
