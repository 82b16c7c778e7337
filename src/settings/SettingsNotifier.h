// How the settings store tells the user about a problem with the settings
// file (damaged, unreadable, cannot be saved). Injectable: the shell hands in
// one that shows the message; tests record it.
#pragma once

#include <QString>
#include <functional>

using SettingsNotifier = std::function<void(const QString& message)>;

// The headless notifier: one qWarning line per message.
SettingsNotifier DefaultSettingsNotifier();
