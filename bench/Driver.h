#pragma once

#include <QString>

// Drives the Index Document screen offscreen on a prepared office, as a user would: Edit, a
// double click on the last row, and Save, timed step by step. Runs in a process of its own, so
// that the peak memory is the screen's alone. Prints one line per result on standard output:
//   step <name> <milliseconds> <peak KiB so far>
//   key <IndexID of the row loaded>
//   statement <search> <the statement the screen built>, keys <search> <IndexID ...>
//   fail <what went wrong>
namespace bench {

// `folder` is the program folder holding Database/Vorlane.mdb with `documents` documents. With
// `reading`, the main window reads the soft copies that wait in the background meanwhile, and a last line
// tells how many were stored and whether the reading still ran at the end:
//   background <stored> <1|0>
// With `onServer`, the screens run on the data source "Vorlane" that the environment's odbc.ini
// names, else on the embedded file of `folder`.
// Returns the process's exit code: 0 when every step did what it should.
int driveScreen(int& argc, char** argv, int documents, const QString& folder, bool reading, bool onServer);

} // namespace bench
