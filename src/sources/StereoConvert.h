// Conversion of decoded PCM to the deck's block format: 16-bit signed
// stereo, interleaved left/right. Mono is written to both sides; 8-bit is
// made signed and widened ((v - 128) << 8); 24- and 32-bit integer samples
// are rounded to 16 bits; float samples (full scale +-1.0) are scaled by
// 32768, rounded and clipped to -32768 ... 32767.
#pragma once

#include <cstdint>

#include "platform/media/MediaSource.h"

namespace stereoconvert {

// Converts `frames` frames of `format` from src into dest (2 * frames
// samples). Both buffers aligned for their sample types.
void ConvertToStereo16(const std::uint8_t* src, const media::PcmFormat& format, int frames,
                       std::int16_t* dest);

}  // namespace stereoconvert
