#include "settings/SettingsNotifier.h"

#include <QtGlobal>

SettingsNotifier DefaultSettingsNotifier() {
    return [](const QString& message) { qWarning("Mixora settings: %s", qPrintable(message)); };
}
