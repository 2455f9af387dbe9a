#include "HelpContents.h"
#include "HelpWindow.h"

#include <QApplication>
#include <QIcon>

// VorlaneHelp <help file>: shows the program's help file with its contents.
int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vorlane Help"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/images/AppIconPng")));
    HelpWindow window(helpFileFromArguments(QApplication::arguments()));
    window.show();
    return QApplication::exec();
}
