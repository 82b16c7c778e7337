// DurationProbe: one per deck, a thread that measures the duration of files
// for the deck's play list so that the window thread never waits on a file.
//
// The play list window and the probe share only four things: the file-name
// slot, the deck's play-list wake event (its DeckSharedState's playListWakeEvent),
// the result slot (seconds) and the done flag. The window leaves a name and
// wakes the probe; the probe opens the file with a decoder of its own,
// stores the duration when the file opens (a file that does not open leaves
// the result as it was) and sets the done flag. The window reads the result
// once done is set, then clears the flag.
//
// While any deck of the given ones plays a file from an optical or removable
// drive, a request is ignored (done stays clear) so that the drive is left to
// play.
//
// The thread runs while the deck's playListThreadRun is 1; Stop clears it,
// wakes the thread and joins it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "core/EngineState.h"

class DurationProbe {
  public:
    // `deck`: the state of the deck whose list is measured (run flag, wake
    // event); `allDecks`: every deck, watched for a removable drive playing.
    // Both outlive the probe.
    DurationProbe(DeckSharedState& deck, const std::array<DeckSharedState, kDeckCount>& allDecks);
    ~DurationProbe();  // Stop
    DurationProbe(const DurationProbe&) = delete;
    DurationProbe& operator=(const DurationProbe&) = delete;

    void Start();
    void Stop();
    bool IsRunning() const { return thread_.joinable(); }

    // ---- Window side
    void SetFileName(const std::string& path);
    void Wake();  // sets the deck's play-list wake event
    void Request(const std::string& path) {
        SetFileName(path);
        Wake();
    }
    bool IsDone() const { return done_.load() != 0; }
    float Result() const { return result_.load(); }  // seconds; -1 before any result
    // Whether the request that set done opened its file (Result() is then its
    // duration); false when the file could not be opened.
    bool Measured() const { return measured_.load() != 0; }
    void ClearDone() { done_.store(0); }

  private:
    void Run();
    bool RemovableDrivePlaying() const;

    DeckSharedState& deck_;
    const std::array<DeckSharedState, kDeckCount>& allDecks_;
    std::mutex nameMutex_;  // guards the file-name slot (never held while decoding)
    std::string fileName_;
    std::atomic<float> result_{-1.0f};
    std::atomic<std::int32_t> done_{0};
    std::atomic<std::int32_t> measured_{0};
    std::thread thread_;
};
