// One output device and the decks' buffers on it.
//
// Per deck the engine keeps a forward ring (the deck's audio in playing
// order), a reverse ring (the same audio with every block's frames reversed,
// block k of the forward ring at block 119 - k), an optional scratch buffer
// for the turntable, the two write cursors, the deck rate and the effect
// chain of the forward buffer. The rings are 120 blocks of 4704 bytes.
//
// All calls come from the user-interface thread. A deck or buffer that does
// not exist makes an operation a no-op returning kStatusNotInitialised.
// Decks are 0 (A) and 1 (B).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/EngineState.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundStatus.h"

class CRynSoundEngine {
  public:
    struct DeckBuffers {
        std::unique_ptr<sound::SoundBuffer> forward;
        std::unique_ptr<sound::SoundBuffer> reverse;
        std::unique_ptr<sound::SoundBuffer> scratch;
        int forwardWrite = 0;                   // bytes, on a block boundary
        int reverseWrite = 0;                   // bytes, on a block boundary
        int rate = 44100;                       // Hz the buffers were created with
        int scratchBytes = 0;                   // size of the scratch buffer
        std::vector<std::int16_t> scratchCopy;  // work space of PlayScratch
        std::vector<std::shared_ptr<sound::SoundEffect>> effects;  // on the forward buffer
    };

    CRynSoundEngine() = default;
    ~CRynSoundEngine();
    CRynSoundEngine(const CRynSoundEngine&) = delete;
    CRynSoundEngine& operator=(const CRynSoundEngine&) = delete;

    // Opens the device with this identifier (sound::EnumerateDevices) in the
    // primary format: stereo 44100 Hz, or mono 22050 Hz with 3D sound (the
    // listener is then kept). On failure the engine has no device.
    SoundStatus Open(const std::string& deviceId, bool use3D);
    // Takes an already opened device (tests: the manual-clock Null device).
    SoundStatus Open(std::unique_ptr<sound::SoundDevice> device);

    bool HasDevice() const { return device_ != nullptr; }
    sound::SoundDevice* Device() { return device_.get(); }
    sound::SoundListener3D* Listener() { return device_ ? device_->Listener() : nullptr; }
    DeckBuffers& Deck(int deck) { return decks_[deck]; }

    // Releases the deck's buffers, then creates the reverse and the forward
    // ring at `rate`, with 120 notifications each (offsets 4703 + 4704k,
    // signalling the deck's forwardNotifyEvent / reverseNotifyEvent) when
    // asked, and fills both with silence. Cursors: forward write at block 0,
    // reverse write at its mirror, block 119; both play positions at 0.
    SoundStatus CreateDeckBuffers(int deck, int rate, bool withNotify);

    // Writes one 4704-byte block at the write cursor and moves the cursor:
    // forward +4704 (-4704 while the deck plays backwards), reverse -4704
    // (+4704 backwards). A failed lock drops the block (kStatusArrayLocked).
    SoundStatus WriteForward(int deck, const std::uint8_t* block, bool deckReversed);
    SoundStatus WriteReverse(int deck, const std::uint8_t* block, bool deckReversed);

    // Start with a fade-in / stop with a fade-out (see FadeIn, FadeOut).
    SoundStatus PlayForward(int deck);
    SoundStatus PlayReverse(int deck);
    SoundStatus StopForward(int deck);
    SoundStatus StopReverse(int deck);
    SoundStatus SwitchDirection(int deck, bool toForward);

    SoundStatus CreateScratch(int deck, int rate, int bytes);
    SoundStatus PlayScratch(int deck, int offsetBytes);
    SoundStatus EndScratch(int deck);

    // Device volume and pan of all three buffers of the deck.
    SoundStatus SetDeckVolume(int deck, std::int32_t volume);
    SoundStatus SetDeckDevicePan(int deck, std::int32_t pan);

    void ReleaseDeck(int deck);
    void ReleaseAll();

    // The fades. A fade-in of a playing buffer and a fade-out of a stopped
    // one do nothing and return kStatusNoChange (-1). A fade-in sets
    // -10000, starts the buffer looping from its position and lets the mixer
    // walk the 500 volumes of FadeInVolumes up to the buffer's volume; a
    // fade-out stops the buffer at once (status and cursor) while the mixer
    // plays its tail down the 500 volumes of FadeOutVolumes. The buffer keeps
    // its volume. The result is the status of the start or stop.
    static SoundStatus FadeIn(sound::SoundBuffer* buffer);
    static SoundStatus FadeOut(sound::SoundBuffer* buffer);

  private:
    // The same setting on the deck's forward, reverse and scratch buffers;
    // the status of the last buffer set.
    template <typename Set>
    SoundStatus SetOnDeckBuffers(int deck, Set set);
    // Puts the reverse ring's play position at the mirror of the forward
    // ring's (both rings exist).
    static void MirrorForward(DeckBuffers& d);
    static SoundStatus WriteBlock(sound::SoundBuffer* buffer, int* cursor, int delta,
                                  const std::uint8_t* block);

    std::unique_ptr<sound::SoundDevice> device_;
    std::array<DeckBuffers, kDeckCount> decks_;
};
