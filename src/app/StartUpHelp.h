// The help the host shows at start-up: the splash picture for five seconds
// and, while "showTipOfTheDay" is on, the tip of the day centred on the main
// mixer. Neither takes the keyboard focus from the main mixer, and the splash
// lets mouse clicks through to the windows under it.
#pragma once

class CRynTipOfTheDay;
class QWidget;

// The splash, owned by `host`.
void ShowSplashScreen(QWidget* host);

// The tip window, owned by `mainMixer`; null when the tips are off.
CRynTipOfTheDay* ShowTipOfTheDay(QWidget* mainMixer);
