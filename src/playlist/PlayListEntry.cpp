#include "playlist/PlayListEntry.h"

#include <cmath>
#include <cstdio>

float NormalizedDuration(float seconds) {
    if (std::isnan(seconds) || seconds < 0.0f)
        return kUnknownDuration;
    return seconds > kMaxDurationSeconds ? kMaxDurationSeconds : seconds;
}

std::int64_t WholeSeconds(float seconds) {
    float s = NormalizedDuration(seconds);
    if (s < 0.0f)
        return -1;
    return static_cast<std::int64_t>(s);  // truncates toward zero
}

std::string FormatDuration(float seconds) {
    std::int64_t s = WholeSeconds(seconds);
    if (s < 0)
        return {};
    std::int64_t rest = s % 60;
    return std::to_string(s / 60) + ":" + (rest < 10 ? "0" : "") + std::to_string(rest);
}

std::string FormatTempo(float bpm) {
    if (!(bpm > 0.0f) || !std::isfinite(bpm))
        return {};
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", static_cast<double>(bpm));
    return text;
}
