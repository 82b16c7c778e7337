#include "output/laws/HeardTempo.h"

#include <cmath>

double HeardTempo(double bpm, int outputHz, int baseHz) {
    if (!(bpm > 0) || !std::isfinite(bpm))
        return 0.0;
    const double out = outputHz > 0 ? outputHz : 44100.0;
    const double base = baseHz > 0 ? baseHz : 44100.0;
    return bpm * out / base;
}

QString TempoReadout(double bpm) {
    if (!(bpm > 0) || !std::isfinite(bpm))
        return QStringLiteral("--- BPM");
    return QStringLiteral("%1 BPM").arg(bpm, 0, 'f', 1);
}
