// One track of a deck's play list, and the duration helpers shared by the
// list, its files and its window.
#pragma once

#include <cstdint>
#include <string>

// Seconds value meaning "duration not measured yet".
inline constexpr float kUnknownDuration = -1.0f;

// Longest duration kept, seconds (about 115 days; exact in a float). Values
// from list files are clamped to it so sums and integer conversions stay defined.
inline constexpr float kMaxDurationSeconds = 10000000.0f;

struct PlayListEntry {
    std::string title;                  // UTF-8; list-file or tag title, empty when none
    std::uint8_t loaded = 0;            // 1 while this is the entry loaded in the deck
    std::uint8_t probing = 0;           // 1 while its duration is measured; one per list
    float duration = kUnknownDuration;  // seconds; kUnknownDuration when not known
    std::string path;                   // full path, or "Track <n>" for a CD track
    std::int32_t itemNumber = 0;        // row item data; CD lists keep the track number
    float tempo = 0.0f;                 // beats per minute as measured; 0 when not known
};

// Maps negative and NaN durations to kUnknownDuration and clamps the rest to
// [0, kMaxDurationSeconds].
float NormalizedDuration(float seconds);

// trunc(seconds) as whole seconds; -1 for an unknown duration.
std::int64_t WholeSeconds(float seconds);

// "m:ss" of the whole seconds: minutes, a colon, two-digit seconds ("3:07",
// "12:45", "0:09"); the empty text for an unknown duration.
std::string FormatDuration(float seconds);
// A tempo with one decimal ("120.0", "87.5"); the empty text for 0 (not known).
std::string FormatTempo(float bpm);
