#include "settings/window/LatencyText.h"

#include <cmath>

QString LatencySecondsText(double notifications) {
    const double tenths = std::trunc(notifications * 1176.0 * (1.0 / 44100.0) * 10.0);
    return QString::number(tenths * 0.1, 'g', 6) + QStringLiteral(" s");
}
