// A CUE/BIN audio CD image generated at test time, for every test that needs
// a "CD": libcdio opens it like a drive once its .cue path is listed in
// MIXORA_CD_IMAGES (set the variable before constructing CRynCdAudio).
//
// The default disc holds three audio tracks of known tones and one MODE1/2352
// data track. Audio is 16-bit little-endian stereo at 44100 Hz, the left
// channel a sine at amplitude 0.5 and the right the same sine at 0.25, phase
// starting at 0 at each track's start. The test also gets the exact bytes it
// wrote, to compare reads against.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "sources/CdClock.h"

class CRynCdAudio;

namespace testsupport {

struct CdImageTrack {
    bool audio = true;
    std::int32_t sectors = 0;  // 75 a second, 2352 bytes each
    double frequency = 0.0;    // Hz, audio tracks
};

struct CdImage {
    bool ok = false;  // false when the files could not be written
    QString cuePath;
    QString binPath;
    std::vector<CdImageTrack> tracks;  // disc tracks 1 .. n
    std::vector<std::int32_t> starts;  // start address of track t at [t - 1]; lead-out last
    std::vector<std::uint8_t> bin;     // the whole BIN: sector a at a * 2352

    int TrackCount() const { return static_cast<int>(tracks.size()); }
    std::int32_t Start(int t) const { return starts.at(static_cast<std::size_t>(t - 1)); }
    std::int32_t End(int t) const { return starts.at(static_cast<std::size_t>(t)); }
    std::int32_t LeadOut() const { return starts.back(); }
    // `sectors` sectors of the BIN from address `a` (2352 bytes each).
    std::vector<std::uint8_t> Sectors(std::int32_t a, int sectors) const;
    // The PCM of audio track t: (End(t) - Start(t)) * 2352 bytes.
    std::vector<std::uint8_t> TrackPcm(int t) const;
};

// 1: 441 Hz for 150 sectors (2 s); 2: 1000 Hz for 263 sectors (an odd count,
// 3.507 s); 3: 2205 Hz for 225 sectors (3 s); 4: data, 75 sectors.
std::vector<CdImageTrack> DefaultCdTracks();

// Writes FixtureDir()/<name>.cue and <name>.bin (the BIN named after the
// CUE, as libcdio expects) and returns them with their contents.
CdImage MakeCdImage(const QString& name = QStringLiteral("mixora-cd"),
                    const std::vector<CdImageTrack>& tracks = DefaultCdTracks());

// A CD reader on the real libcdio layer that sees `image` (and only it) as a
// drive, on a CdTestClock.
std::unique_ptr<CRynCdAudio> MakeImageReader(const CdImage& image);

// A clock for CRynCdAudio that never waits: sleeping moves its time on.
// Counts the sleeps (1 ms each for pacing and retries). Thread-safe.
class CdTestClock : public CdClock {
  public:
    double NowSeconds() override {
        std::lock_guard<std::mutex> hold(lock_);
        return now_;
    }
    void SleepMs(int milliseconds) override {
        std::lock_guard<std::mutex> hold(lock_);
        now_ += milliseconds / 1000.0;
        ++sleeps_;
    }
    void Advance(double seconds) {
        std::lock_guard<std::mutex> hold(lock_);
        now_ += seconds;
    }
    int Sleeps() {
        std::lock_guard<std::mutex> hold(lock_);
        return sleeps_;
    }

  private:
    std::mutex lock_;
    double now_ = 1000.0;
    int sleeps_ = 0;
};

}  // namespace testsupport
