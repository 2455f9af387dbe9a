#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Soft copies made by the tests, each holding known words: the ways their texts are read.
namespace testsupport {

// Words in the reports' bold face, large and black on white, as a scanner would give them.
QImage wordsPicture(const QString& words, int points = 40);
// A PDF whose page holds `words` as text, or, `scanned`, only as a picture.
void writePdf(const QString& path, const QString& words, bool scanned);
// A zip file of one or two entries.
void writeZip(const QString& path, const QString& entry, const QByteArray& data, const QString& entry2 = {},
              const QByteArray& data2 = {});
void writeFile(const QString& path, const QByteArray& data);
// A PDF cut short (the first third of `from`), and one protected by a password.
void writeBadPdfs(const QString& damaged, const QString& locked, const QString& from);
// The main part of a word-processing file (docx) and of a text document (odt) holding `words`.
QByteArray docxBody(const QByteArray& words);
QByteArray odtContent(const QByteArray& words);

} // namespace testsupport
