#include "app/StartUpHelp.h"

#include <QWidget>

#include "help/CRynSplashScreen.h"
#include "help/window/CRynTipOfTheDay.h"
#include "settings/CRynSettings.h"

namespace {

constexpr int kSplashMs = 5000;

}  // namespace

void ShowSplashScreen(QWidget* host) {
    auto* splash = new CRynSplashScreen(host);
    if (!splash->Create(kSplashMs, CRynSplashScreen::SplashPicture(), host))
        delete splash;
}

CRynTipOfTheDay* ShowTipOfTheDay(QWidget* mainMixer) {
    if (!Settings().GetShowTipOfTheDay())
        return nullptr;
    auto* tip = new CRynTipOfTheDay(mainMixer);
    tip->setWindowFlag(Qt::Tool);
    tip->setAttribute(Qt::WA_ShowWithoutActivating);
    tip->Initialise();
    tip->adjustSize();
    if (mainMixer) {
        QRect r = tip->frameGeometry();
        r.moveCenter(mainMixer->frameGeometry().center());
        tip->move(r.topLeft());
    }
    tip->show();
    return tip;
}
