// The deck's time arithmetic: the track time display in its four modes, the
// display mode cycle, the wind step and the heard-position estimate that
// keeps the progress slide honest.
#pragma once

#include <string>
#include <vector>

namespace tracktime {

extern const char* const kElapsedInTrack;    // "Elapsed In Track:"
extern const char* const kRemainingInTrack;  // "Remaining In Track:"
extern const char* const kElapsedInList;     // "Elapsed In List:"
extern const char* const kRemainingInList;   // "Remaining In List:"

// The caption after `caption` in the cycle; anything unknown goes to
// "Elapsed In Track:".
std::string NextMode(const std::string& caption);

// HH:MM:SS, each part two digits.
std::string FormatHms(long seconds);

// The seconds the display shows: t = trunc(slide × current length), then by
// mode. lengths are the list's entry lengths in seconds (unknown = -1 counts
// as -1, as the list's total does); current is the index of the current entry.
long DisplayedSeconds(const std::string& mode, double slide, const std::vector<double>& lengths,
                      int current);

// One 100 ms wind tick moves the slide by one second of the track.
double WindStep(double trackSeconds);

// Source seconds minus what is still buffered ahead:
// blocks × 4704 / (rate × 4) seconds.
double HeardSeconds(double sourceSeconds, int blocksBuffered, int rate);

// elapsedSeconds follows its own count unless the estimate is more than
// 4 seconds away, either way.
double ReconcileElapsed(double elapsed, double estimate);

}  // namespace tracktime
