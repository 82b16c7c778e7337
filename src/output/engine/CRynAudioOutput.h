// One output device as the mixers see it: the main mixer owns the main
// output, the headphones mixer the other. Every operation takes the deck
// (0 = A, 1 = B) and works on that deck's buffers on this device only; the
// main mixer calls the same operation on both outputs.
//
// With no device (disabled, or it failed to open) every operation does
// nothing and returns kStatusNotInitialised; cursors read as 0.
//
// The mix step writes each block with
//     output.WriteDeckBlock(deck, block, deckReversed);
// on each device: the 4704-byte block goes into the forward ring at the
// forward write cursor, its frame-reversed copy into the reverse ring at the
// reverse write cursor, and both cursors move one block.
//
// All calls come from the user-interface thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/AppMessages.h"
#include "core/EngineState.h"
#include "output/engine/CRynSoundEngine.h"
#include "output/engine/DeckEffects.h"
#include "platform/sound/SoundStatus.h"

class CrossFaderGains;

class CRynAudioOutput {
  public:
    // A cursor reading: bytes in the ring and whole blocks (bytes / 4704).
    struct Cursor {
        SoundStatus status = kStatusNotInitialised;
        int bytes = 0;
        int blocks = 0;
    };

    CRynAudioOutput();
    ~CRynAudioOutput();
    CRynAudioOutput(const CRynAudioOutput&) = delete;
    CRynAudioOutput& operator=(const CRynAudioOutput&) = delete;

    // When deviceName is not empty: drops the current engine and opens the
    // device `deviceId` (sound::EnumerateDevices) in its primary format for
    // `window`. A failure leaves the output without a device.
    SoundStatus OpenDevice(const std::string& deviceName, const std::string& deviceId,
                           WindowHandle window, bool use3D);
    // Takes an opened device (tests: the manual-clock Null device).
    SoundStatus OpenDevice(std::unique_ptr<sound::SoundDevice> device, WindowHandle window);
    // No device any more (the "disabled" choice).
    void CloseDevice();
    // No device any more, without closing it: the engine (its buffers
    // released) is handed to the caller, for a device that stopped answering
    // and may block when it is closed.
    std::unique_ptr<CRynSoundEngine> DetachEngine();

    bool HasDevice() const { return engine_ && engine_->HasDevice(); }
    CRynSoundEngine* SoundEngine() { return engine_.get(); }
    sound::SoundDevice* Device() { return engine_ ? engine_->Device() : nullptr; }
    WindowHandle DeviceWindow() const { return window_; }
    // A listener on this output's finished mix (the recorder; nullptr:
    // none). It follows the output from device to device: it is taken off a
    // device before that device is closed or handed away, and put on every
    // device opened after. When SetMixTap returns, no mix pass is inside the
    // previous listener any more.
    void SetMixTap(sound::MixTap* tap);
    sound::MixTap* MixTap() const { return tap_; }

    // (Re)creates the deck's forward and reverse rings (silent, stopped).
    SoundStatus CreateDeckBuffers(int deck, int rate = 44100, bool withNotify = true);
    void ReleaseDeck(int deck);
    void ReleaseAll();

    // One block at the write cursor. `deckReversed` is the deck's direction
    // flag (true while it plays backwards). WriteForward also adds 4704 to
    // BlocksWritten.
    SoundStatus WriteForward(int deck, const std::uint8_t* block, bool deckReversed);
    SoundStatus WriteReverse(int deck, const std::uint8_t* block, bool deckReversed);
    // The mix step's write: `block` (4704 bytes) forward, its frame-reversed
    // copy reverse. Returns the first failure, else 0.
    SoundStatus WriteDeckBlock(int deck, const std::uint8_t* block, bool deckReversed = false);

    SoundStatus PlayForward(int deck);  // looping, with a fade-in
    SoundStatus PlayReverse(int deck);  // at the mirror of the forward cursor, fade-in
    SoundStatus StopForward(int deck);  // reverse and scratch at once, forward faded
    SoundStatus StopReverse(int deck);  // reverse faded
    SoundStatus SwitchDirection(int deck, bool toForward);

    // The turntable's scratch buffer: `bytes` rounded down to a multiple of
    // 4 (0 gives kStatusUnexpected); PlayScratch copies that many bytes of
    // the forward ring from `offsetBytes`; EndScratch releases it and starts
    // the forward ring again.
    SoundStatus CreateScratch(int deck, int rate, int bytes);
    SoundStatus PlayScratch(int deck, int offsetBytes);
    SoundStatus EndScratch(int deck);

    // Gain 0..1 (-25 dB just above silence to 0 dB) and pan -1..+1 of the
    // deck's three buffers.
    SoundStatus SetDeckGain(int deck, float gain);
    SoundStatus SetDeckPan(int deck, float pan);

    // Playback frequencies in Hz. SetForwardFrequency records the request.
    SoundStatus SetForwardFrequency(int deck, int hz);
    SoundStatus SetReverseFrequency(int deck, int hz);
    SoundStatus SetScratchFrequency(int deck, int hz);
    int ForwardFrequency(int deck) const;  // 0 without a buffer
    int RequestedFrequency(int deck) const { return requestedFrequency_[Clamp(deck)]; }

    // Play positions, in blocks or bytes (bytes rounded down to a frame).
    SoundStatus SetForwardPosition(int deck, int blocks);
    SoundStatus SetForwardPositionBytes(int deck, int bytes);
    SoundStatus SetReversePosition(int deck, int blocks);

    Cursor ForwardPlayCursor(int deck) const;
    Cursor ReversePlayCursor(int deck) const;
    Cursor ScratchPlayCursor(int deck) const;
    // Moves both write cursors: the forward one to block `forwardSlot`, the
    // reverse one to its mirror, 119 - forwardSlot (the deck's direction
    // turned; the mix cycle goes on writing at the other end of what the
    // rings hold).
    SoundStatus SetWriteCursors(int deck, int forwardSlot);
    Cursor ForwardWriteCursor(int deck) const;
    Cursor ReverseWriteCursor(int deck) const;

    bool IsForwardPlaying(int deck) const;
    bool IsReversePlaying(int deck) const;

    // Frames per second the forward ring played since the last call, from
    // its play cursor and a monotonic clock (seconds).
    double MeasuredRate(int deck);
    double MeasuredRate(int deck, double nowSeconds);

    // Bytes written to the forward ring since its creation (+4704 a block).
    std::int64_t BlocksWritten(int deck) const { return blocksWritten_[Clamp(deck)]; }

    // Main volume and balance: the device's gain after the mix, per channel
    // 0..100 percent.
    SoundStatus SetMasterGain(int leftPercent, int rightPercent);
    int MasterLeftPercent() const { return masterLeft_; }
    int MasterRightPercent() const { return masterRight_; }

    // The cross fader and the two deck levels 0 … 1: per deck (A, then B)
    // SetDeckGain(fader.Gain(deck) · level). Returns the first failure, else 0.
    SoundStatus ApplyCrossFader(const CrossFaderGains& fader, const float levels[2]);

    // The effect chain of the deck's forward buffer (empty: none).
    SoundStatus SetForwardEffects(int deck,
                                  std::vector<std::shared_ptr<sound::SoundEffect>> effects);
    // The deck's chosen effect and device equalizer on this output; its
    // operations take ForwardBuffer(deck) (null without one).
    DeckEffects& Effects(int deck) { return effects_[Clamp(deck)]; }
    sound::SoundBuffer* ForwardBuffer(int deck) const { return Buffer(deck, kForward); }

  private:
    enum Ring { kForward, kReverse, kScratch };

    static int Clamp(int deck) { return deck == 1 ? 1 : 0; }
    // The engine when it has a device and the deck index is valid.
    CRynSoundEngine* Live(int deck) const;
    // The deck's buffer on the live engine; null without one.
    sound::SoundBuffer* Buffer(int deck, Ring ring) const;
    // The engine's operation `op` on the deck, kStatusNotInitialised
    // without a live engine.
    template <typename... Params, typename... Args>
    SoundStatus OnEngine(int deck, SoundStatus (CRynSoundEngine::*op)(int, Params...),
                         Args... args) {
        CRynSoundEngine* e = Live(deck);
        return e ? (e->*op)(deck, args...) : kStatusNotInitialised;
    }
    static Cursor Read(const sound::SoundBuffer* buffer);  // the play cursor
    Cursor WriteCursor(int deck, Ring ring) const;         // forward or reverse
    static SoundStatus SetFrequency(sound::SoundBuffer* buffer, int hz);
    // `bytes` rounded down to a frame; negative: kStatusInvalidParam.
    static SoundStatus SetPosition(sound::SoundBuffer* buffer, int bytes);

    // Takes the listener off the current device (before it goes).
    void UntapDevice();
    // Puts the listener on a device just opened.
    void TapDevice();

    std::unique_ptr<CRynSoundEngine> engine_;
    sound::MixTap* tap_ = nullptr;
    WindowHandle window_ = 0;
    std::array<std::int64_t, kDeckCount> blocksWritten_{};
    std::array<int, kDeckCount> requestedFrequency_{44100, 44100};
    std::array<int, kDeckCount> lastRateCursor_{};
    std::array<double, kDeckCount> lastRateTime_{};
    int masterLeft_ = 100;
    int masterRight_ = 100;
    PcmBlock reversed_{};  // work space of WriteDeckBlock
    std::array<DeckEffects, kDeckCount> effects_{};
};
