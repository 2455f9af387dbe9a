#include "index/SoftCopySettings.h"

#include "platform/Files.h"
#include "session/Session.h"

#include <QProcess>

namespace SoftCopySettings {

namespace {
const QString LanguagesKey = QStringLiteral("OcrLanguages");
const QChar Separator = QLatin1Char('+');
} // namespace

QString readerProgram() {
    return platform::joinPath(platform::appPath(), QStringLiteral("vorlane-reader"));
}

QStringList ocrLanguages() {
    QStringList chosen = Session::setting(LanguagesKey).split(Separator, Qt::SkipEmptyParts);
    for (QString& name : chosen)
        name = name.trimmed();
    chosen.removeAll(QString());
    return chosen.isEmpty() ? QStringList{QStringLiteral("eng")} : chosen;
}

void saveOcrLanguages(const QStringList& languages) {
    Session::saveSetting(LanguagesKey, languages.join(Separator));
}

QStringList installedOcrLanguages(int milliseconds) {
    QProcess helper;
    helper.start(readerProgram(), {QStringLiteral("--list-languages")});
    if (!helper.waitForFinished(milliseconds)) {
        helper.kill();
        helper.waitForFinished(-1);
        return {};
    }
    if (helper.exitStatus() != QProcess::NormalExit || helper.exitCode() != 0)
        return {};
    QStringList names;
    for (const QString& line : QString::fromUtf8(helper.readAllStandardOutput()).split(QLatin1Char('\n')))
        // The names are joined by '+' for the helper's command line.
        if (const QString name = line.trimmed(); !name.isEmpty() && !name.contains(Separator))
            names << name;
    return names;
}

} // namespace SoftCopySettings
