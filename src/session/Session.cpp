#include "Session.h"

#include "platform/MsgBox.h"

namespace Session {

bool MaySave(bool editMode) {
    if (UserRights == QLatin1String("User")) {
        platform::MsgBox(QStringLiteral("You donot have rights to Save or Modify data."),
                         platform::vbExclamation);
        return false;
    }
    if (UserRights != QLatin1String("Modify") && editMode) {
        platform::MsgBox(QStringLiteral("You donot have rights to Modify data."), platform::vbExclamation);
        return false;
    }
    return true;
}

} // namespace Session
