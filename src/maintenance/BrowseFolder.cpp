#include "BrowseFolder.h"

#include "platform/Dialogs.h"

#include <QWidget>

namespace BrowseFolder {

QString SelectFolder(const QString& startFolder, qint32& ownerHandle, const QString& title) {
    QWidget* owner = ownerHandle != 0 ? QWidget::find(WId(quint32(ownerHandle))) : nullptr;
    return platform::browseForFolder(startFolder, owner, title);
}

} // namespace BrowseFolder
