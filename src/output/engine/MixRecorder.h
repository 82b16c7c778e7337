// Records a device's finished mix to a sound file.
//
// The recorder is a MixTap: on the audio thread OnMixed only copies the
// frames into a lock-free ring (FrameRing), and a writer thread of its own
// drains the ring into the file through libsndfile every 20 ms. A ring that
// is full drops the newest frames and counts them (LostFrames); the audio
// thread never waits for the disk, so a recording cannot cause an underrun.
//
// Use, on the user-interface thread:
//     recorder.Start(path, MixRecorder::Format::Wav, 44100, &error);
//     output.SetMixTap(&recorder);     // frames flow from now on
//     ... Failed() polled: a write error ends the writer ...
//     output.SetMixTap(nullptr);       // no mix pass holds the tap any more
//     recorder.Stop();                 // the rest written, the file closed
// The file is 16-bit stereo at the device's rate, WAV or FLAC. Its header
// is brought up to date after every write, so what was written before a
// failure (a full disk) or a crash stays a valid file; Stop closes it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "output/engine/FrameRing.h"
#include "platform/sound/MixTap.h"

struct sf_private_tag;

class MixRecorder : public sound::MixTap {
  public:
    enum class Format { Wav, Flac };
    // 2^19 frames, 11.9 s at 44100 Hz (2 MiB): the writer may stall that
    // long on a busy disk before a frame is lost.
    static constexpr std::size_t kRingFrames = std::size_t{1} << 19;
    static constexpr int kWriterPeriodMs = 20;

    explicit MixRecorder(std::size_t ringFrames = kRingFrames);
    ~MixRecorder() override;  // stops; the tap must be detached before
    MixRecorder(const MixRecorder&) = delete;
    MixRecorder& operator=(const MixRecorder&) = delete;

    // Creates `path` (an existing file is replaced) and starts the writer.
    // False, with a message in *error, when the file cannot be created; a
    // recording already running is not disturbed (false).
    bool Start(const std::string& path, Format format, int rate, std::string* error);
    // Writes what the ring still holds and closes the file. Call only once
    // the tap is detached. Does nothing when not recording.
    void Stop();

    bool Recording() const { return file_ != nullptr; }
    // The writer could not write (the disk is full, the file went away): it
    // has stopped and Error() tells why. The caller then detaches and Stops.
    bool Failed() const { return failed_.load(std::memory_order_acquire); }
    const std::string& Error() const { return error_; }

    const std::string& Path() const { return path_; }
    Format FileFormat() const { return format_; }
    int Rate() const { return rate_; }
    // Frames handed over by the device since Start (kept and lost): the
    // recording's running time at Rate().
    std::uint64_t FramesTaken() const;
    // Frames in the file so far, and frames the full ring had to drop.
    std::uint64_t FramesWritten() const { return written_.load(std::memory_order_relaxed); }
    std::uint64_t LostFrames() const;

    // Audio thread: into the ring, or counted lost.
    void OnMixed(const std::int16_t* out, int frames) noexcept override;

    // The libsndfile format code of `format`, 16-bit.
    static int SndFormat(Format format);
    // "wav" or "flac".
    static const char* Extension(Format format);

  private:
    void WriterLoop();

    std::unique_ptr<FrameRing> ring_;
    std::size_t ringFrames_;
    sf_private_tag* file_ = nullptr;
    std::thread writer_;
    std::atomic<bool> stop_{false};
    std::atomic<bool> failed_{false};
    std::atomic<std::uint64_t> written_{0};
    std::string error_;  // written by the writer before failed_ is set
    std::string path_;
    Format format_ = Format::Wav;
    int rate_ = 44100;
};
