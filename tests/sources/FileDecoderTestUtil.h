// Shared by the file decoder tests: reading a decoder to its end.
#pragma once

#include <cstdint>
#include <vector>

#include "sources/CRynFileDecoder.h"

namespace filedecodertest {

struct Stream {
    std::vector<std::int16_t> samples;  // every delivered sample, 16-bit stereo
    int blocks = 0;                     // ReadBlock calls that succeeded
    int lastBytes = -1;                 // bytesDelivered of the final block
    bool paddedWithZeros = true;        // the final block is silent after its sound
};

// Reads blocks until endOfStream (at most maxBlocks).
inline Stream ReadToEnd(CRynFileDecoder& d, int maxBlocks = 1000000) {
    Stream s;
    std::uint8_t block[kBlockBytes];
    for (int i = 0; i < maxBlocks; ++i) {
        int bytes = -1;
        bool end = false;
        if (d.ReadBlock(block, bytes, end) != CRynFileDecoder::kOk)
            break;
        ++s.blocks;
        const int keep = end ? bytes : kBlockBytes;
        const auto* p = reinterpret_cast<const std::int16_t*>(block);
        s.samples.insert(s.samples.end(), p, p + keep / 2);
        if (end) {
            s.lastBytes = bytes;
            for (int b = bytes; b < kBlockBytes; ++b)
                s.paddedWithZeros &= block[b] == 0;
            break;
        }
    }
    return s;
}

}  // namespace filedecodertest
