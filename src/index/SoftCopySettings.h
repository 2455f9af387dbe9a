#pragma once

#include <QString>
#include <QStringList>

// The settings of the soft copies' reading on this machine, kept per system user in the
// settings store beside the viewer paths.
namespace SoftCopySettings {

// The helper vorlane-reader beside the program.
QString readerProgram();

// The OCR languages that every reading uses, by Tesseract's names ("eng", "deu"): those saved
// on the Settings screen, English when none is.
QStringList ocrLanguages();
void saveOcrLanguages(const QStringList& languages);

// The OCR languages installed on this machine, as the helper lists them; empty when the helper
// cannot tell within `milliseconds`.
QStringList installedOcrLanguages(int milliseconds = 5000);

} // namespace SoftCopySettings
