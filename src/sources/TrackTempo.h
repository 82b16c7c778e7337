// TrackTempo: the tempo of a whole audio file, measured through a file
// decoder of its own (never a deck's), so it can run on any worker thread
// while the decks play.
//
// The file is decoded block by block, its two sides averaged to mono on the
// full scale +-1, and fed to a TempoEstimator. A stop flag, looked at every
// block, ends the measurement early (shutdown, the track is no longer
// wanted).
#pragma once

#include <atomic>
#include <string>

#include "platform/tempo/TempoEstimator.h"

struct TrackTempoResult {
    enum class Status {
        Measured,    // bpm holds the tempo (0: the file has no steady beat)
        Unreadable,  // the file does not exist or cannot be decoded
        Stopped,     // the stop flag was raised
    };
    Status status = Status::Unreadable;
    double bpm = 0.0;      // beats per minute
    double seconds = 0.0;  // sound decoded, seconds
};

// Decodes `path` and measures it with `estimator`. `stop` may be null.
TrackTempoResult MeasureTrackTempo(const std::string& path, tempo::TempoEstimator& estimator,
                                   const std::atomic<bool>* stop = nullptr);
