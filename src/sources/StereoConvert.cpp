#include "sources/StereoConvert.h"

#include <cmath>
#include <cstring>

namespace stereoconvert {
namespace {

inline std::int16_t FromU8(std::uint8_t v) {
    return std::int16_t((int(v) - 128) * 256);
}

inline std::int16_t FromS32(std::int32_t v) {
    // Round half up to 16 bits; the top of the range would round past 32767.
    const std::int64_t r = (std::int64_t(v) + 0x8000) >> 16;
    return std::int16_t(r > 32767 ? 32767 : r);
}

inline std::int16_t FromF32(float v) {
    const float s = v * 32768.0f;
    if (s != s)
        return 0;  // NaN
    if (s >= 32767.0f)
        return 32767;
    if (s <= -32768.0f)
        return -32768;
    return std::int16_t(std::lrintf(s));
}

template <typename T, std::int16_t (*Widen)(T)>
void Convert(const std::uint8_t* src, int channels, int frames, std::int16_t* out) {
    const T* in = reinterpret_cast<const T*>(src);
    if (channels == 1) {
        for (int i = 0; i < frames; ++i) {
            const std::int16_t v = Widen(in[i]);
            out[2 * i] = v;
            out[2 * i + 1] = v;
        }
    } else {
        for (int i = 0; i < 2 * frames; ++i)
            out[i] = Widen(in[i]);
    }
}

inline std::int16_t Same(std::int16_t v) {
    return v;
}

}  // namespace

void ConvertToStereo16(const std::uint8_t* src, const media::PcmFormat& format, int frames,
                       std::int16_t* out) {
    if (frames <= 0)
        return;
    switch (format.type) {
        case media::SampleType::U8:
            Convert<std::uint8_t, FromU8>(src, format.channels, frames, out);
            break;
        case media::SampleType::S16:
            if (format.channels == 2)
                std::memcpy(out, src, std::size_t(frames) * 4);
            else
                Convert<std::int16_t, Same>(src, format.channels, frames, out);
            break;
        case media::SampleType::S32:
            Convert<std::int32_t, FromS32>(src, format.channels, frames, out);
            break;
        case media::SampleType::F32:
            Convert<float, FromF32>(src, format.channels, frames, out);
            break;
    }
}

}  // namespace stereoconvert
