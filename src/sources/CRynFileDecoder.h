// CRynFileDecoder: one deck's file decoder. It opens an audio file through
// the media layer and hands out its sound one 4704-byte block at a time,
// always 16-bit signed stereo (1176 frames), whatever the file holds: mono
// is doubled to both sides, 8-bit widened, 24/32-bit and float rounded and
// clipped to 16 bits. The file's own sample rate is kept (a 48000 Hz file
// delivers 48000 Hz blocks and SampleRate() says so).
//
// Every block holds 1176 source frames; the last one of a file is padded
// with silence and flagged endOfStream. At that point the end-of-track
// handler the deck installed is asked whether a following track goes on;
// when it answers nonzero it has opened that track in this same decoder, and
// the block is completed from the new file so that no silence falls between
// the tracks.
//
// Positions: the byte position counts 176400 bytes a second of sound (the
// unit of a 44100 Hz 16-bit stereo stream) whatever the file's rate, as do
// the total bytes (whole seconds of duration x 176400). Separately the
// decoder keeps the stream's frame number, so Rewind moves back exactly the
// blocks that were delivered.
//
// Threads: Open, Close, SeekFraction, SetEndOfTrackHandler and the queries
// run on the deck window's thread; ReadBlock and Rewind on the deck's reader
// threads. The
// decoder has no lock: the deck keeps the two apart. IsOnRemovableDrive may
// be asked from any thread (the play lists' duration probes).
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/PcmFormat.h"
#include "platform/media/MediaSource.h"
#include "platform/media/RemovableDrive.h"

class CRynFileDecoder {
  public:
    static constexpr std::int32_t kOk = 0;
    static constexpr std::int32_t kUnexpected = static_cast<std::int32_t>(0x8000FFFF);
    // Largest source block: 1176 frames of two 32-bit samples.
    static constexpr int kMaxSourceBlockBytes = kBlockFrames * 2 * 4;
    // Tracks joined into one block at most (each of them shorter than a block).
    static constexpr int kMaxJoinsPerBlock = 8;

    // On the FFmpeg media layer.
    CRynFileDecoder();
    // On any media layer (tests: a failing one).
    explicit CRynFileDecoder(std::unique_ptr<media::MediaSource> source);
    ~CRynFileDecoder();
    CRynFileDecoder(const CRynFileDecoder&) = delete;
    CRynFileDecoder& operator=(const CRynFileDecoder&) = delete;

    // Closes what was open, byte position 0, then opens the file ready to
    // read from its start. False, silently, for an empty name, a name that
    // is not an existing regular file, or a file the media layer cannot
    // decode; the decoder is then closed.
    bool Open(const std::string& fileName);

    // Asked, on the thread that runs ReadBlock, each time the open track ends
    // inside a block: nonzero means the handler has opened the following
    // track in this decoder (it runs Open before it answers) and the block
    // goes on from it; 0 means no track follows. Without a handler no track
    // follows. Install it before a reader runs ReadBlock.
    using EndOfTrackHandler = std::function<int()>;
    void SetEndOfTrackHandler(EndOfTrackHandler handler) { onEndOfTrack_ = std::move(handler); }

    // Fills destination (4704 bytes, any alignment) with the next block.
    // bytesDelivered: bytes of sound of the track that was open when the
    // call began (4 per frame, 4704 for a full block); endOfStream: the
    // stream ran out in this block and no following track took over (the
    // decoder has then closed itself). kOk, or kUnexpected when nothing is
    // open.
    std::int32_t ReadBlock(std::uint8_t* destination, int& bytesDelivered, bool& endOfStream);

    // Moves back `blocks` blocks (1176 frames each), not before the start;
    // the byte position goes back by blocks x 4704 at 44100 Hz (by the same
    // time at other rates), not below 0.
    void Rewind(int blocks);

    // To stream frame `frame`, held within 0 … the duration in frames; the
    // byte position follows (176400 a second). Nothing while closed.
    void SeekFrame(std::int64_t frame);

    // fraction 0 ... 1 of the whole length: the stream goes to
    // trunc(duration x fraction); the byte position becomes
    // trunc(total bytes x fraction) (whole-second total).
    void SeekFraction(float fraction);

    // The file's length: what its header announces until the stream ends,
    // then, if it ended earlier (a truncated VBR MP3 whose header promises
    // more), where it really ended. 0 when nothing is open.
    double DurationSeconds() const;
    double ElapsedSeconds() const;  // byte position / 176400; 0 when nothing is open
    int SampleRate() const { return sampleRate_; }      // Hz; 44100 before any file
    std::string FileName() const { return fileName_; }  // last name given to Open
    // The last opened name lies on an optical or removable drive (decided
    // when the name is given to Open). Any thread.
    bool IsOnRemovableDrive() const { return onRemovableDrive_.load(); }
    // Stops the stream and releases it; the file name is kept.
    void Close();

    bool IsOpen() const { return open_; }
    int Channels() const { return channels_; }            // 2 before any file
    int BitsPerSample() const { return bitsPerSample_; }  // 16 before any file
    int BlockBytes() const { return blockBytes_; }  // source bytes a block: 4704 for 16-bit stereo
    std::int64_t BytePosition() const;              // 176400 a second
    std::int64_t TotalBytes() const { return totalBytes_; }
    std::int64_t StreamFrame() const { return streamFrame_; }  // next frame to be read

    // Tests: where the removable-drive check looks (mount table, sysfs).
    void SetDriveProbeRootsForTest(const media::DriveProbeRoots& roots) { driveRoots_ = roots; }

  private:
    // Reads up to `frames` frames into the scratch and copies them, as
    // 16-bit stereo, to destination from frame `offset` on. Returns frames.
    int ReadFrames(std::uint8_t* destination, int offset, int frames);
    // Counts delivered frames into the stream frame and the byte position.
    void Advance(int frames);
    void SetBytePosition(std::int64_t bytes);

    // The media layer writes into the block buffer; the conversion scratch
    // holds the 16-bit stereo result before it goes to the destination.
    alignas(16) std::uint8_t blockBuffer_[kMaxSourceBlockBytes] = {};
    alignas(16) std::int16_t scratch_[kBlockFrames * 2] = {};

    std::string fileName_;
    std::atomic<bool> onRemovableDrive_{false};
    media::DriveProbeRoots driveRoots_;
    int bitsPerSample_ = 16;
    int channels_ = 2;
    int blockBytes_ = kBlockBytes;
    int sampleRate_ = 44100;
    media::PcmFormat format_;
    std::int64_t totalBytes_ = 0;

    // Byte position = anchorBytes_ + framesSinceAnchor_ in 176400-a-second
    // bytes (exact at 44100 Hz: 4 bytes a frame).
    // Advanced by the reader thread, read by the deck window's progress
    // display while the reader runs.
    std::atomic<std::int64_t> anchorBytes_{0};
    std::atomic<std::int64_t> framesSinceAnchor_{0};
    std::atomic<std::int64_t> streamFrame_{0};
    // Where the stream really ended, 100 ns units; 0 until it ended early.
    // Written by the reader thread, read by the deck window.
    std::atomic<std::int64_t> endedAt100ns_{0};

    std::int64_t Duration100ns() const;
    // At the end of the stream: a length shorter than announced is kept.
    void NoteStreamEnd();

    std::unique_ptr<media::MediaSource> source_;
    // Read by the interface thread (times, duration) while the reader closes
    // the file at its end.
    std::atomic<bool> open_{false};
    EndOfTrackHandler onEndOfTrack_;
};
