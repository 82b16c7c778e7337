// Keeps one output playing through the loss of its sound device. The owner
// (the main mixer for the main output, the headphones mixer for its own)
// calls Check() from a window timer, every kCheckMs:
//
//   - while the chosen device plays, Check() looks at the device's own
//     watchdog (SoundDevice::Lost: the stream ended or took no audio for
//     half a second). When it is lost, onLost(description) runs first (the
//     owner lifts its decks' needles and shows the loss), then the output
//     falls back to the Null device, whose clock keeps the decks' time.
//   - while it is lost, every kRetryMs Check() looks for it: when it is not
//     listed, the sound layer is asked to look again (PortAudio is started
//     afresh, which finds a USB card plugged in again; refused while another
//     output holds a PortAudio stream, and then simply tried again later;
//     JACK servers are listed live). Once the device is listed it is opened
//     again; onBack(description) runs after that.
//
// Each switch drops the output's deck buffers with the old device: the watch
// makes them again on the new one, at the rate each deck had, and calls
// onBuffersRebuilt(deck) for each, so the owner applies gains, pans and
// tempo again. Only this output is touched: the other output's device,
// buffers and streams are left alone.
//
// The sound layer is reached through a Directory, which tests replace.
// User-interface thread only.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "core/EngineState.h"
#include "platform/sound/SoundStatus.h"

class CRynAudioOutput;
namespace sound {
class SoundDevice;
}

class OutputDeviceWatch {
  public:
    static constexpr int kCheckMs = 250;   // how often the owner calls Check
    static constexpr int kRetryMs = 2000;  // how often a lost device is looked for

    // The sound layer as the watch uses it.
    struct Directory {
        // Look for devices again (true: the list is fresh).
        std::function<bool()> refresh;
        // Whether a device with this identifier is listed.
        std::function<bool(const std::string&)> listed;
        // Opens and starts a device by identifier.
        std::function<SoundStatus(const std::string&, std::unique_ptr<sound::SoundDevice>*)> open;
    };
    // The system's sound layer (sound::ReinitializeAudioLibrary,
    // EnumerateDevices, OpenDevice); a device is found by its identifier or
    // its description.
    static Directory SystemDirectory();

    explicit OutputDeviceWatch(CRynAudioOutput& output, Directory directory = SystemDirectory());
    // Tests hand in a sound layer of their own.
    void SetDirectory(Directory directory) { directory_ = std::move(directory); }

    // Whether the deck buffers made again on a new device signal the decks'
    // notification events: the main output's do (they pace the mix cycle),
    // the headphones output's must not.
    bool notifyingBuffers = true;

    // The device the user chose for this output, reopened when it comes
    // back; empty, or the Null device: nothing to watch. Ends a loss.
    void Watch(const std::string& identifier);
    // The chosen device was not there when the output was set up (a USB card
    // not plugged in at start-up): it is looked for from the next Check on
    // and then every kRetryMs, as a lost one, and opened once listed. `name`
    // is its identifier or, where only that was stored, its description.
    // The output is left as it is (the owner puts it on the Null device).
    void WatchMissing(const std::string& name);
    const std::string& Watched() const { return watched_; }

    // One look; `nowMs` is a monotonic clock in milliseconds.
    void Check(double nowMs);

    bool Lost() const { return lost_; }
    // The lost device's description ("system (JACK Audio Connection Kit)").
    const std::string& LostDescription() const { return lostDescription_; }
    // Devices lost and found again since the watch began.
    int Losses() const { return losses_; }
    int Returns() const { return returns_; }

    std::function<void(const std::string& description)> onLost;
    std::function<void(const std::string& description)> onBack;
    std::function<void(int deck)> onBuffersRebuilt;

  private:
    // Puts `device` under the output and makes again the deck buffers the
    // old device had.
    void Switch(std::unique_ptr<sound::SoundDevice> device);
    void TryReopen();

    CRynAudioOutput& output_;
    Directory directory_;
    std::string watched_;
    bool lost_ = false;
    std::string lostDescription_;
    double nextRetryMs_ = 0;
    int losses_ = 0;
    int returns_ = 0;
};
