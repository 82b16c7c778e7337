// A whole playback chain for end-to-end tests: the main mixer on the
// manual-clock Null device, two real decks with their disc buffers and file
// decoders, and a host that takes the decks' host messages. Rendering a
// block of the device runs the real mix cycle: the device's notification
// wakes the notification thread, whose message the test thread serves.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "TestSupport.h"
#include "core/AppMessages.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"

class CRyn3DGraph;
class CRynDeck;
class CRynEqualizer;
class CRynHeadphonesMixer;
class CRynMainMixer;

namespace testsupport {

// Writes a 16-bit stereo WAV file of `frames` frames at `rate`; the samples
// come from `sample(frame, channel)`. Returns the interleaved samples.
std::vector<std::int16_t> WriteWav(const QString& path, int rate, int frames,
                                   std::int16_t (*sample)(int frame, int channel));

// Pseudo-random full-scale noise, never 0 on frame 0.
std::int16_t NoiseSample(int frame, int channel);

class PlaybackRig {
  public:
    // Resets the engine state, opens the manual Null device and creates the
    // decks (deck B only when twoDecks), each with its equalizer window when
    // equalizers; the main mixer gets `headphones` and `graph3d` (not owned)
    // when given.
    explicit PlaybackRig(bool twoDecks = false, bool equalizers = false,
                         CRynHeadphonesMixer* headphones = nullptr, CRyn3DGraph* graph3d = nullptr);
    ~PlaybackRig();

    CRynMainMixer& Mixer() { return *mixer_; }
    CRynDeck& Deck(int d) { return *decks_[d]; }
    CRynEqualizer& Equalizer(int d) { return *equalizers_[d]; }

    // Renders `blocks` device blocks (1176 frames each) into Output(); after
    // each, serves the mix steps of the decks that play. False when a deck
    // that plays took no step within its time.
    bool RenderBlocks(int blocks);
    // Renders until pred() or `maxBlocks` blocks have gone by.
    bool RenderUntil(const std::function<bool()>& pred, int maxBlocks);
    // Renders `blocks` blocks and runs the mixer's graphs pass after each.
    // The manual device renders far faster than real time and a deck short
    // of data is not drawn, so the readers get the time to refill first.
    bool RenderAndDraw(int blocks);
    // A deck that plays short of data (its fresh-data-low or very-low LED lit
    // at the last block) waits up to `timeoutMs` for its forward reader to
    // have filled what it can: idle at its wake event with no wake pending,
    // or ended. The LEDs themselves change only as blocks are mixed.
    void WaitForReaders(int timeoutMs);
    const std::vector<std::int16_t>& Output() const { return output_; }
    void ClearOutput() { output_.clear(); }

    // Loads the files on deck d, starts its turntable and waits for its
    // output to be primed.
    bool LoadAndPrime(int d, const QStringList& files);
    // Drops the needle and waits until the deck's output plays.
    bool Drop(int d);

  private:
    MessageLog host_;
    std::unique_ptr<CRynMainMixer> mixer_;
    std::unique_ptr<CRynEqualizer> equalizers_[2];
    std::unique_ptr<CRynDeck> decks_[2];
    std::vector<std::int16_t> output_;
};

}  // namespace testsupport
