#pragma once

#include <QString>

// A made-up office of a chosen size in the embedded database format: the classification tree,
// the hard-copy files and the documents, always the same for the same size. Empty texts are
// stored as the screens store them, as empty strings: a Null in a listed column would end
// the list of documents.
namespace bench {

// Raised whenever the generated data changes, so that offices made before are made anew.
inline constexpr int GeneratorVersion = 3;

// First and last document date of a generated office (twenty years).
inline constexpr const char* FirstDocDate = "2006-03-01";
inline constexpr const char* LastDocDate = "2026-02-28";

// The program folder of the office of `documents` documents under `dataFolder`:
// <dataFolder>/office-<documents>, holding Database/Vorlane.mdb.
QString officeFolder(const QString& dataFolder, int documents);
// True when that folder holds a complete office made by this generator version.
bool officeIsCurrent(const QString& dataFolder, int documents);
// Makes the office anew: built in a folder of its own, then put in place, so an interrupted
// run leaves nothing that looks complete. Throws std::runtime_error.
void makeOffice(const QString& dataFolder, int documents);

// Creates the database file at `path` (it must not exist) and fills it. Throws std::runtime_error.
void generateDatabase(const QString& path, int documents);

} // namespace bench
