#pragma once

struct sqlite3;

// Dates that an earlier version stored as texts. It read only month names without a closing dot
// and only Latin digits, so under many languages a save put the screen's text ("15/Jan./2025",
// "05/мар./2025", "٠٥/مارس/٢٠٢٥") into the date columns instead of the date.
namespace db {

// The file's user_version once its date columns hold dates only; a new database has it at once.
inline constexpr int DateTextsConvertedVersion = 1;

// What convertDateTexts did.
enum class DateTextsState {
    Done,       // the database was marked already
    Converted,  // it has been converted and marked now
    Unavailable // it could not be written (read-only, or busy too long): a later open tries again
};

// Turns every text in a date column of the schema that reads as a date in a screen's form (the
// running language's month names, then English, then the one month that every language using the
// name means) into that date, and leaves the others as they are; then marks the database, so that
// this runs once. One write transaction, which tests the mark again after taking the write lock,
// so that two seats opening together convert once. The hourglass shows while it works. Never
// throws.
DateTextsState convertDateTexts(sqlite3* handle);

} // namespace db
