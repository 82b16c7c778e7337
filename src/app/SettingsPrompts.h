// The shell's side of the settings: it tells the user about a settings file
// problem in a warning box and gives the screen size the default window
// rectangles are computed from.
#pragma once

#include <QSize>

#include "settings/SettingsNotifier.h"

// A qWarning line, and with a widget application on a real display also a
// warning box "Mixora Settings", shown from the event loop (never from inside
// a settings call).
SettingsNotifier SettingsMessageBoxNotifier();

// The primary screen's available size (without panels); 1024 x 768 without one.
QSize PrimaryScreenSize();

// Hands both to the program's settings (Settings()); call once the
// QApplication exists, before the first window is built.
void InstallSettingsPrompts();
