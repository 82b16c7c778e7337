// Status values of the sound-device layer and the output engine.
//
// Every sound operation answers one of these (0 is success). The values are
// the classic 32-bit COM codes the rest of Mixora compares against, so a
// caller can tell "no device" from "block locked" from "out of memory".
#pragma once

#include <cstdint>

using SoundStatus = std::int32_t;

constexpr SoundStatus kStatusOk = 0;
// Starting a buffer that already plays or stopping one that does not (fades).
constexpr SoundStatus kStatusNoChange = -1;
// CO_E_NOTINITIALIZED: no device, or no such buffer.
constexpr SoundStatus kStatusNotInitialised = static_cast<SoundStatus>(0x800401F0u);
// E_UNEXPECTED: a request that makes no sense (a zero scratch size).
constexpr SoundStatus kStatusUnexpected = static_cast<SoundStatus>(0x8000FFFFu);
// DISP_E_ARRAYISLOCKED: a block could not be locked for writing.
constexpr SoundStatus kStatusArrayLocked = static_cast<SoundStatus>(0x8002000Du);
// E_OUTOFMEMORY: an allocation failed.
constexpr SoundStatus kStatusOutOfMemory = static_cast<SoundStatus>(0x8007000Eu);
// E_FAIL: the device or the audio library refused.
constexpr SoundStatus kStatusFail = static_cast<SoundStatus>(0x80004005u);
// E_INVALIDARG: a value out of range (volume, pan, frequency, byte range).
constexpr SoundStatus kStatusInvalidParam = static_cast<SoundStatus>(0x80070057u);
// The requested buffer is smaller than the layer's minimum (kMinBufferBytes).
constexpr SoundStatus kStatusBufferTooSmall = static_cast<SoundStatus>(0x887800B4u);
// No device answers to the identifier.
constexpr SoundStatus kStatusNoDriver = static_cast<SoundStatus>(0x88780078u);
// The layer's tables are full (buffers per device, notifications per buffer).
constexpr SoundStatus kStatusOutOfResources = static_cast<SoundStatus>(0x80070008u);

constexpr bool SoundSucceeded(SoundStatus s) {
    return s >= 0;
}
