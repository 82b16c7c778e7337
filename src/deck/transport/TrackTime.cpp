#include "deck/transport/TrackTime.h"

#include <cmath>
#include <cstdio>

#include "core/EngineState.h"

namespace tracktime {

const char* const kElapsedInTrack = "Elapsed In Track:";
const char* const kRemainingInTrack = "Remaining In Track:";
const char* const kElapsedInList = "Elapsed In List:";
const char* const kRemainingInList = "Remaining In List:";

std::string NextMode(const std::string& caption) {
    if (caption == kElapsedInTrack)
        return kRemainingInTrack;
    if (caption == kRemainingInTrack)
        return kElapsedInList;
    if (caption == kElapsedInList)
        return kRemainingInList;
    return kElapsedInTrack;
}

std::string FormatHms(long seconds) {
    if (seconds < 0)
        seconds = 0;
    char text[32];
    std::snprintf(text, sizeof text, "%02ld:%02ld:%02ld", seconds / 3600, (seconds / 60) % 60,
                  seconds % 60);
    return text;
}

long DisplayedSeconds(const std::string& mode, double slide, const std::vector<double>& lengths,
                      int current) {
    const double length =
        current >= 0 && current < static_cast<int>(lengths.size()) ? lengths[current] : 0.0;
    const long t = static_cast<long>(std::trunc(slide * length));
    double before = 0.0;
    double total = 0.0;
    for (int i = 0; i < static_cast<int>(lengths.size()); ++i) {
        if (i < current)
            before += lengths[i];
        total += lengths[i];
    }
    if (mode == kRemainingInTrack)
        return static_cast<long>(std::trunc(length)) - t;
    if (mode == kElapsedInList)
        return static_cast<long>(before) + t;
    if (mode == kRemainingInList)
        return static_cast<long>(total - (before + t));
    return t;
}

double WindStep(double trackSeconds) {
    return trackSeconds > 0 ? 1.0 / trackSeconds : 0.0;
}

double HeardSeconds(double sourceSeconds, int blocksBuffered, int rate) {
    if (rate <= 0)
        rate = 44100;
    return sourceSeconds - static_cast<double>(blocksBuffered) * kBlockBytes / (rate * 4.0);
}

double ReconcileElapsed(double elapsed, double estimate) {
    return std::fabs(estimate - elapsed) > 4.0 ? estimate : elapsed;
}

}  // namespace tracktime
