// The engine's one PCM format and the block, ring and disc-buffer numbers
// every layer works in. Linear PCM, 16-bit signed little-endian, two
// interleaved channels (left, right), 4 bytes a frame.
#pragma once

#include <array>
#include <cstdint>

constexpr int kCdRate = 44100;           // Hz, CD audio and the engine's nominal rate
constexpr int kChannels = 2;             // left, right interleaved
constexpr int kBytesPerFrame = 4;        // two 16-bit samples
constexpr int kBytesPerSecond = 176400;  // byte rate used for all time arithmetic
constexpr int kCdSectorBytes = 2352;     // one raw CD audio sector, 1/75 s
constexpr int kCdSectorsPerSecond = 75;

// The PCM block: 4704 bytes = 1176 stereo frames = two CD sectors, 26.67 ms
// at 44100 Hz. The unit of every read, disc-buffer slot, equalizer run and
// mix step.
constexpr int kBlockSectors = 2;
constexpr int kBlockBytes = kBlockSectors * kCdSectorBytes;  // 4704
constexpr int kBlockFrames = kBlockBytes / kBytesPerFrame;   // 1176
constexpr int kBlockSamples = kBlockFrames * kChannels;      // 2352 interleaved values

// Each deck's output buffer on a device: a ring of 120 blocks (3.2 s).
constexpr int kOutputRingBlocks = 120;
constexpr int kOutputRingBytes = kOutputRingBlocks * kBlockBytes;  // 564480

// Each deck's disc buffer: forward ring 170 blocks (4.53 s), backward 50 (1.33 s).
constexpr int kForwardDiscBlocks = 170;
constexpr int kBackwardDiscBlocks = 50;

constexpr int kDeckCount = 2;  // 0 is deck A, 1 is deck B

using PcmBlock = std::array<std::uint8_t, kBlockBytes>;

static_assert(kBytesPerSecond == kCdRate * kBytesPerFrame);
static_assert(kBlockBytes == 4704 && kBlockFrames == 1176);
