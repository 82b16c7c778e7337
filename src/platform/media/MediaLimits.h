// The bounds the media layer keeps while it opens a file, so that a hostile
// or damaged file is refused before it costs the machine its memory.
//
// An audio file never needs one allocation of more than a few megabytes: the
// largest legitimate ones are a cover picture inside a tag (a few MB) and a
// container's seek index (an hour of AAC indexes in under 1 MB). 64 MB leaves
// room for a very large picture and stops a header that declares gigabytes.
// Probing reads at most 1 MB and 2 s of sound: every audio container shows
// its stream parameters in its first packets.
//
// Stream parameters outside these ranges are refused before decoding starts:
// no speaker layout names more than 18 channels (WAVE_FORMAT_EXTENSIBLE's
// mask), 32 leaves room for odd recorders; rates from 1 kHz (speech codecs go
// down to 8 kHz) to 768 kHz (the fastest converters sold); a block or frame
// size above a million is a damaged header, not sound.
#pragma once

#include <cstddef>
#include <cstdint>

namespace media {

constexpr std::size_t kMaxAllocationBytes = std::size_t{64} << 20;
constexpr std::int64_t kProbeBytes = std::int64_t{1} << 20;
constexpr std::int64_t kAnalyzeMicroseconds = 2'000'000;

constexpr int kMaxChannels = 32;
constexpr int kMinSampleRate = 1000;     // Hz
constexpr int kMaxSampleRate = 768000;   // Hz
constexpr int kMaxBlockBytes = 1 << 20;  // a container's block (block_align)
constexpr int kMaxFrameSamples = 1 << 20;

// What a stream declares about itself before any of it is decoded.
struct StreamShape {
    int channels = 0;
    int sampleRate = 0;
    int blockBytes = 0;    // 0 when the container gives none
    int frameSamples = 0;  // 0 when the codec's frames vary
};

// True when every declared value lies in the ranges above.
bool IsPlausibleAudioStream(const StreamShape& shape);

}  // namespace media
