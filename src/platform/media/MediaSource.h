// MediaSource: the media framework as the file decoder sees it. One object
// opens one file's primary audio stream and hands out its PCM, interleaved,
// in the format it reports, a requested number of bytes at a time.
//
// Positions are sample frames at the stream's own rate, counted from the
// first frame the stream delivers after Open (frame 0). Seeking lands on
// exactly the requested frame: the source decodes from an earlier key point
// and drops what precedes the target.
//
// Failures are status values: Open returns false, Read returns fewer bytes
// (0 at the end), Seek returns false. Nothing here throws.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace media {

// The container of each delivered sample. Multi-byte samples are native
// (little-endian) byte order.
enum class SampleType {
    U8,   // unsigned 8-bit, 128 = silence
    S16,  // signed 16-bit
    S32,  // signed 32-bit, full scale; 24-bit sources arrive left-aligned here
    F32,  // 32-bit float, full scale +-1.0
};

struct PcmFormat {
    int channels = 2;        // 1 or 2; sources with more are mixed down to 2
    int sampleRate = 44100;  // frames a second
    int bitsPerSample = 16;  // significant bits of the source (8, 16, 24, 32, 64)
    SampleType type = SampleType::S16;

    int BytesPerSample() const;
    int BytesPerFrame() const { return BytesPerSample() * channels; }
};

class MediaSource {
  public:
    virtual ~MediaSource() = default;

    // Opens the file's primary audio stream, ready to read frame 0. Closes
    // whatever was open first. False when the file cannot be opened, has no
    // audio stream or its audio cannot be decoded.
    virtual bool Open(const std::string& path) = 0;
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;

    // Valid while open.
    virtual PcmFormat Format() const = 0;
    // The stream's duration in 100-nanosecond units; 0 when unknown or closed.
    virtual std::int64_t Duration100ns() const = 0;

    // Copies up to maxBytes (rounded down to whole frames) of PCM into dest
    // and returns the byte count. Fewer than asked only at the end of the
    // stream (or where a damaged file stops decoding); 0 when closed.
    virtual int Read(std::uint8_t* dest, int maxBytes) = 0;

    // Positions the stream so that the next Read starts at this frame.
    // Frames past the end leave the stream at its end. False when closed or
    // the stream cannot be repositioned (the position is then unspecified).
    virtual bool Seek(std::int64_t frame) = 0;
};

// The FFmpeg-backed source (libavformat / libavcodec).
std::unique_ptr<MediaSource> CreateMediaSource();

}  // namespace media
