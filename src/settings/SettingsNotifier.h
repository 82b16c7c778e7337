// How the settings store tells the user about a problem with the settings
// file (damaged, unreadable, cannot be saved). Injectable so that tests and
// headless runs record the message instead of blocking on a dialog.
#pragma once

#include <QString>
#include <functional>

using SettingsNotifier = std::function<void(const QString& message)>;

// The program's notifier: with a widget application on a real display, a
// warning box "Mixora Settings" shown from the event loop (never from inside
// a settings call); otherwise a qWarning line.
SettingsNotifier DefaultSettingsNotifier();
