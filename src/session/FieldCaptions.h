#pragma once

#include <QList>
#include <QString>
#include <functional>

class QLabel;
class QLineEdit;
class QWidget;

// The office's own names of the six classification fields, one row of the table
// FieldCaptions (columns DocType, DocCat, DocSubCat, DocChildCat, DocTitle1, DocTitle2).
// Every screen that shows such a field reads the row when it loads.
namespace FieldCaptions {

// The six columns in the order of the table, with the full names that hold while it is empty.
struct Field {
    const char* column;
    const char* name;
};
inline constexpr Field Fields[] = {
    {"DocType", "Document Type"},           {"DocCat", "Document Category"},
    {"DocSubCat", "Document Sub-Category"}, {"DocChildCat", "Document Child Category"},
    {"DocTitle1", "Document Title 1"},      {"DocTitle2", "Document Title 2"},
};

// One text that follows a column: what it shows while the table is empty, and where the
// trimmed saved name goes, with `ending` after it.
struct Caption {
    QString column;
    QString defaultText;
    QString ending;
    std::function<void(const QString& text)> apply;
};

// A label: the saved name followed by " :". The label's field is announced by the new text.
Caption label(QLabel* label, const QString& column, const QString& defaultText);
// A form's caption: the saved name alone.
Caption formCaption(QWidget* form, const QString& column, const QString& defaultText);

// An edit box that shows the saved name alone, for changing it.
Caption textBox(QLineEdit* box, const QString& column, const QString& defaultText);

// The six labels (in the order of Fields), each the full name with " :" while the table is empty.
QList<Caption> fullNameLabels(const QList<QLabel*>& labels);
// The six edit boxes (in the order of Fields), each the full name while the table is empty.
QList<Caption> fullNameBoxes(const QList<QLineEdit*>& boxes);

// Reads "Select * from FieldCaptions" on the open Conn (static, read-only) and applies the
// captions in the given order: with no row each gets its default, else the first row's
// trimmed column and the ending. There is no check for an empty name. Errors are thrown to
// the caller's trap; the captions applied before the error stay.
void Apply(const QList<Caption>& captions);

} // namespace FieldCaptions
