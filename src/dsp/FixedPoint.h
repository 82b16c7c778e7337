// 16-bit fixed-point helpers with wrap-around.
//
// Every scaling by 2^−s rounds to nearest (half up: add 2^(s−1), then shift
// right arithmetically) and keeps the low 16 bits of the result, so a value
// that does not fit 16 bits wraps around instead of saturating. The sums are
// taken modulo 2^32, which makes the results independent of summation order.
#pragma once

#include <cstdint>

namespace dsp {

// Low 16 bits of v as a signed 16-bit value (two's complement wrap).
inline int16_t Wrap16(int32_t v) {
    return static_cast<int16_t>(static_cast<uint16_t>(v));
}

// round(v · 2^−shift), wrapped to 16 bits; v is taken modulo 2^32. shift ≥ 1.
inline int16_t ScaleDown16(int32_t v, int shift) {
    const uint32_t biased = static_cast<uint32_t>(v) + (1u << (shift - 1));
    return Wrap16(static_cast<int32_t>(biased) >> shift);
}

// a + b wrapped to 16 bits.
inline int16_t AddWrap16(int16_t a, int16_t b) {
    return Wrap16(int32_t{a} + int32_t{b});
}

}  // namespace dsp
