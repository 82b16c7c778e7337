// Default window rectangles of both screen layouts, and the default "shown"
// state of each window.
//
// Rectangles are fractions of the full-screen client area W x H (the usable
// screen without panels), each product truncated toward zero; the
// configuration window is a fixed 500 x 280 at the top left. The deck
// information windows start with zero height (top = bottom).
#pragma once

#include <QSize>

#include "settings/SettingsNames.h"

WindowRect DefaultWindowRect(SettingsWindow window, int deck, bool lowRes, QSize fullScreen);

// Shown by default: the decks and both mixers; the other windows start hidden.
bool DefaultShown(SettingsWindow window);
