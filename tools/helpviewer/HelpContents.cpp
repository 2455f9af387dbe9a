#include "HelpContents.h"

#include <QFile>
#include <QFileInfo>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace {

// The first anchor name carried by any fragment of the block.
QString blockAnchor(const QTextBlock& block) {
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QStringList names = it.fragment().charFormat().anchorNames();
        if (!names.isEmpty())
            return names.first();
    }
    return {};
}

} // namespace

QList<HelpSection> helpSections(const QTextDocument& document) {
    QList<HelpSection> sections;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() != 2)
            continue;
        const QString title = block.text().simplified();
        if (title.isEmpty())
            continue;
        sections.append({title, blockAnchor(block), block.position()});
    }
    return sections;
}

int sectionAt(const QList<HelpSection>& sections, int position) {
    const auto after = std::upper_bound(sections.begin(), sections.end(), position,
                                        [](int pos, const HelpSection& s) { return pos < s.position; });
    return static_cast<int>(after - sections.begin()) - 1;
}

QString helpFileFromArguments(const QStringList& arguments) {
    return arguments.mid(1).join(QLatin1Char(' ')).trimmed();
}

QString unreadableHelpPage(const QString& path) {
    QString reason;
    if (path.isEmpty()) {
        reason = QStringLiteral("No help file was named when the help was started.");
    } else {
        const QFileInfo info(path);
        if (!info.exists())
            reason = QStringLiteral("The help file was not found:");
        else if (!info.isFile())
            reason = QStringLiteral("This is a folder, not a help file:");
        else if (QFile file(path); !file.open(QIODevice::ReadOnly))
            reason = QStringLiteral("The help file could not be read:");
        else
            return {};
    }
    QString page = QStringLiteral("<h1>The help cannot be shown</h1><p>%1</p>").arg(reason);
    if (!path.isEmpty())
        page += QStringLiteral("<p><b>%1</b></p>").arg(path.toHtmlEscaped());
    page += QStringLiteral("<p>The help file Vorlane.html belongs in the program's folder, beside the "
                           "program itself. Please ask whoever looks after Vorlane in your office to "
                           "put it back.</p>");
    return page;
}
