#include "Startup.h"

#include "MDI.h"
#include "session/GenMod.h"
#include "session/frmLogin.h"

#include <QApplication>
#include <QIcon>

static void initResources() {
    Q_INIT_RESOURCE(images);
}

int runVorlane(QApplication& app) {
    MDI::instance(); // makes the pictures available to every screen
    app.setApplicationName(QStringLiteral("Vorlane"));
    app.setWindowIcon(QIcon(QStringLiteral(":/images/AppIcon")));
    frmLogin::setOnLoggedIn([] { MDI::instance().Show(); });
    if (!GenMod::Startup())
        return 0;
    return app.exec();
}
