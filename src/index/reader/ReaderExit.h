#pragma once

// How vorlane-reader ends. Its exit code tells the kind of outcome, and on failure its last line
// on stderr gives the reason in words for the clerk. Read writes the text, in UTF-8, to stdout.
namespace reader {

enum Exit : int {
    Read = 0,
    Usage = 2,         // the command line is wrong
    Missing = 3,       // nothing lies at the path
    Folder = 4,        // the path names a folder
    NoTextForType = 5, // a kind of file whose text is not read
    Damaged = 6,       // not a readable file of its kind
    Locked = 7,        // protected by a password
    TooLarge = 8,      // beyond a limit: a picture's size, the unpacked bytes, a text's size
    OutOfMemory = 9,   // the address-space limit was reached
    CpuTime = 10,      // the processor-time limit was reached
    CannotOpen = 11,   // the file is there but may not be opened
    NoOcr = 12,        // the OCR languages asked for are not installed
};

} // namespace reader
