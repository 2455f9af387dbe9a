#include "Dialogs.h"

#include "TestState.h"

#include <QDialog>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QSortFilterProxyModel>
#include <QStringList>
#include <algorithm>

namespace platform {

namespace {
// A pattern that matches without regard to case: "*.pdf" becomes "*.[pP][dD][fF]", so that
// the ".PDF" and ".JPG" files of scanners and cameras show too.
QString anyCase(const QString& pattern) {
    QString out;
    for (const QChar c : pattern) {
        if (c.isLetter() && c.toLower() != c.toUpper())
            out += QLatin1Char('[') + c.toLower() + c.toUpper() + QLatin1Char(']');
        else
            out += c;
    }
    return out;
}
// A filter's patterns that name programs. Programs here carry no ".exe", so such a pattern
// stands for every executable file.
bool namesPrograms(const QString& pattern) {
    return pattern.trimmed().compare(QLatin1String("*.exe"), Qt::CaseInsensitive) == 0;
}
} // namespace

bool isProgramFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    if (parts.size() != 2)
        return false;
    const QStringList patterns = parts[1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
    return !patterns.isEmpty() && std::all_of(patterns.begin(), patterns.end(), namesPrograms);
}

ProgramFilesOnly::ProgramFilesOnly(QObject* parent) : QSortFilterProxyModel(parent) {}

bool ProgramFilesOnly::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    const auto* files = qobject_cast<const QFileSystemModel*>(sourceModel());
    if (!files)
        return true;
    const QFileInfo info = files->fileInfo(files->index(sourceRow, 0, sourceParent));
    return info.isDir() || (info.isFile() && info.isExecutable());
}

QString dialogFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& p : patterns)
            p = namesPrograms(p) ? QStringLiteral("*") : anyCase(p.trimmed());
        patterns.removeDuplicates();
        out << parts[i] + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    if (parts.size() % 2 == 1 && !parts.last().isEmpty())
        out << parts.last();
    return out.join(QStringLiteral(";;"));
}

QString showOpenDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialDir) {
    auto& state = detail::testState();
    if (state.enabled)
        return state.openFiles.isEmpty() ? QString() : state.openFiles.dequeue();
    if (isProgramFilter(filter)) {
        // Only the dialog drawn by the toolkit itself can hide the files that are no programs.
        QFileDialog dialog(owner, title, initialDir.isEmpty() ? QStringLiteral("/usr/bin") : initialDir);
        dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::HideNameFilterDetails);
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setNameFilter(dialogFilter(filter));
        dialog.setProxyModel(new ProgramFilesOnly(&dialog));
        return dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()
                   ? dialog.selectedFiles().constFirst()
                   : QString();
    }
    // The dialog names each filter by its description; the patterns stay out of sight.
    return QFileDialog::getOpenFileName(owner, title, initialDir, dialogFilter(filter), nullptr,
                                        QFileDialog::HideNameFilterDetails);
}

QString showSaveDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialPath) {
    auto& state = detail::testState();
    if (state.enabled)
        return state.saveFiles.isEmpty() ? QString() : state.saveFiles.dequeue();
    return QFileDialog::getSaveFileName(owner, title, initialPath, dialogFilter(filter), nullptr,
                                        QFileDialog::HideNameFilterDetails);
}

QString browseForFolder(const QString& startFolder, QWidget* owner, const QString& title) {
    auto& state = detail::testState();
    if (state.enabled) {
        state.folderBrowses << startFolder + QLatin1Char('|') + title;
        return state.folders.isEmpty() ? QString() : state.folders.dequeue();
    }
    return QFileDialog::getExistingDirectory(owner, title, startFolder, QFileDialog::ShowDirsOnly);
}

void showModal(QWidget* dialog) {
    // Under test the dialog stays open without blocking, so that the test can work it.
    if (auto* d = qobject_cast<QDialog*>(dialog); d && !detail::testState().enabled) {
        d->exec();
        return;
    }
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

} // namespace platform
