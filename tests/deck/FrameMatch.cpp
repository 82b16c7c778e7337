#include "FrameMatch.h"

#include <algorithm>

namespace testsupport {

long Frames(const Pcm& pcm) {
    return static_cast<long>(pcm.size() / 2);
}

bool FrameEq(const Pcm& out, long o, const Pcm& track, long f) {
    return f >= 0 && o >= 0 && f < Frames(track) && o < Frames(out) && out[2 * o] == track[2 * f] &&
           out[2 * o + 1] == track[2 * f + 1];
}

long Align(const Pcm& out, long o, const Pcm& track, long lo, long hi, int step) {
    for (long f = std::max(lo, 0L); f <= hi; ++f) {
        bool ok = true;
        for (long i = 0; i < 64 && ok; ++i)
            ok = FrameEq(out, o + i, track, f + step * i);
        if (ok)
            return f;
    }
    return -1;
}

long Mismatches(const Pcm& out, long o, const Pcm& track, long f, long count, int step) {
    long bad = 0;
    for (long i = 0; i < count; ++i)
        bad += !FrameEq(out, o + i, track, f + step * i);
    return bad;
}

}  // namespace testsupport
