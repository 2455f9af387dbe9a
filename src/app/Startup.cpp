#include "Startup.h"

#include "MDI.h"
#include "addressbooks/frmImpContacts.h"
#include "addressbooks/frmPersonal.h"
#include "addressbooks/frmReferences.h"
#include "classification/frmDocCat.h"
#include "classification/frmDocChildCat.h"
#include "classification/frmDocSubCat.h"
#include "classification/frmDocType.h"
#include "classification/frmFile.h"
#include "index/frmIndexDocument.h"
#include "index/frmSearchDocument.h"
#include "maintenance/frmDataBackup.h"
#include "maintenance/frmLoginDetails.h"
#include "maintenance/frmSettings.h"
#include "platform/Shell.h"
#include "session/frmLogin.h"

#include <QApplication>
#include <QIcon>

// What each toolbar entry opens. A screen that is open already is only raised.
void wireScreens() {
    MDI::setOpener(QStringLiteral("ImgDocType"), [] { frmDocType::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgDocCat"), [] { frmDocCat::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgDocSubCat"), [] { frmDocSubCat::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgDocChildCat"), [] { frmDocChildCat::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgFile"), [] { frmFile::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgIndexDoc"), [] { frmIndexDocument::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgSearchDoc"), [] { frmSearchDocument::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgSettings"), [] { frmSettings::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgPersonal"), [] { frmPersonal::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgImpContact"), [] { frmImpContacts::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgInternetRef"), [] { frmReferences::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgLogin"), [] { frmLoginDetails::instance().Show(); });
    MDI::setOpener(QStringLiteral("ImgDataBackup"), [] { frmDataBackup::instance().Show(); });
}

bool Startup() {
    try {
        if (platform::PrevInstance())
            return false;
        frmLogin::instance().Show();
    } catch (...) {
        // the start-up routine swallows its own errors
    }
    return true;
}

int runVorlane(QApplication& app) {
    MDI::instance(); // makes the pictures available to every screen
    app.setApplicationName(QStringLiteral("Vorlane"));
    app.setWindowIcon(QIcon(QStringLiteral(":/images/AppIcon")));
    // Ties the windows to the installed desktop entry, for the desktop's icon and name.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.vorlane.Vorlane"));
    wireScreens();
    frmLogin::setOnLoggedIn([] {
        MDI::instance().Show();
        MDI::instance().startSoftCopyReading();
    });
    if (!Startup())
        return 0;
    return app.exec();
}
