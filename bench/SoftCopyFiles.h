#pragma once

#include <QString>
#include <QStringList>

// Soft copies made for a run, and the speed at which Vorlane reads them beside the programs made
// for it.
namespace bench {

// Writes `pdfs` PDF letters (PDF text, written with QPdfWriter: with `fullSize` one to three A4
// pages of two letters each, else one page of one letter) and `pictures` PNG pictures of a
// letter (drawn at 150 dots per inch: with `fullSize` a whole A4 page, else half of one) into
// `folder`. Needs a QGuiApplication. Returns the paths, the PDFs first; throws std::runtime_error.
QStringList writeSoftCopies(const QString& folder, int pdfs, int pictures, bool fullSize);

// Makes `files` PDFs and `files` pictures in `folder`, and reads each through vorlane-reader as
// the background reading does and through `pdftotext` or `tesseract`, one after the other, all
// at the lowest CPU priority. Prints per kind:
//   reading <pdf|ocr> <files> <Vorlane seconds> <their seconds>
//   fail <what went wrong>
// Returns the process's exit code: 0 when every file was read both ways.
int readingSpeed(int& argc, char** argv, const QString& folder, int files);

} // namespace bench
