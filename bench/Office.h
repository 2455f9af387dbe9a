#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <string>

// A made-up office of a chosen size in the embedded database format: the classification tree,
// the hard-copy files and the documents with the texts of their soft copies (letters of about a
// thousand characters, all read), always the same for the same size. Empty texts are
// stored as the screens store them, as empty strings: a Null in a listed column would end
// the list of documents.
namespace bench {

// Raised whenever the generated data changes, so that offices made before are made anew.
inline constexpr int GeneratorVersion = 5;

// First and last document date of a generated office (twenty years).
inline constexpr const char* FirstDocDate = "2006-03-01";
inline constexpr const char* LastDocDate = "2026-02-28";

// Words planted in the texts of the soft copies: a document holds `word` when its IndexID leaves
// `offset` divided by `every`, so a contains-search for it finds one document in `every`.
struct RareWord {
    const char* word;
    int every;
    int offset;
};
inline constexpr std::array<RareWord, 3> RareWords{
    {{"Quarrington", 1000, 500}, {"Thistlewood", 10000, 2500}, {"Brackenfold", 100000, 25000}}};

// How many of `documents` documents hold `word`.
constexpr int documentsHolding(const RareWord& word, int documents) {
    return documents < word.offset ? 0 : (documents - word.offset) / word.every + 1;
}

// Gives the newest documents (by document date) of the database file `database` the paths
// `paths`, one each: their soft copies wait to be read, as after a save with another path.
void pointNewestAt(const QString& database, const QStringList& paths);

// A letter like those in the soft copies' texts, without a rare word; `number` chooses it.
std::string letterText(int number);

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
