#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class QTextDocument;

// One section of the help file: a second-level heading and where it starts.
struct HelpSection {
    QString title;  // the heading's text, blanks simplified
    QString anchor; // the heading's id (or the name of an anchor inside it); empty if none
    int position;   // the heading's character position in the document
};

// The sections of a loaded help page, in document order.
QList<HelpSection> helpSections(const QTextDocument& document);

// The index of the section that holds the character at `position`: the last one starting
// at or before it; -1 before the first section or when there are none.
int sectionAt(const QList<HelpSection>& sections, int position);

// The help file named on the command line (arguments after the program's name). The main
// window passes the path unquoted, so a folder with blanks arrives in pieces: they are
// joined again. Empty when no path was given.
QString helpFileFromArguments(const QStringList& arguments);

// The page shown instead of the help when `path` is empty, missing or unreadable; empty
// when the file can be read.
QString unreadableHelpPage(const QString& path);
