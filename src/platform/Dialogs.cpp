#include "Dialogs.h"

#include "TestState.h"

#include <QDialog>
#include <QFileDialog>
#include <QStringList>

namespace platform {

namespace {
// "Word files|*.doc;*.docx|All|*.*" becomes "Word files (*.doc *.docx);;All (*.*)".
QString qtFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2)
        out << parts[i] + QStringLiteral(" (") +
                   QString(parts[i + 1]).replace(QLatin1Char(';'), QLatin1Char(' ')) + QLatin1Char(')');
    if (parts.size() % 2 == 1 && !parts.last().isEmpty())
        out << parts.last();
    return out.join(QStringLiteral(";;"));
}
} // namespace

QString showOpenDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialDir) {
    auto& state = detail::testState();
    if (state.enabled)
        return state.openFiles.isEmpty() ? QString() : state.openFiles.dequeue();
    return QFileDialog::getOpenFileName(owner, title, initialDir, qtFilter(filter));
}

QString showSaveDialog(QWidget* owner, const QString& title, const QString& filter,
                       const QString& initialPath) {
    auto& state = detail::testState();
    if (state.enabled)
        return state.saveFiles.isEmpty() ? QString() : state.saveFiles.dequeue();
    return QFileDialog::getSaveFileName(owner, title, initialPath, qtFilter(filter));
}

QString browseForFolder(const QString& startFolder, QWidget* owner, const QString& title) {
    auto& state = detail::testState();
    if (state.enabled)
        return state.folders.isEmpty() ? QString() : state.folders.dequeue();
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
