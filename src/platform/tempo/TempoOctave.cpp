#include "platform/tempo/TempoOctave.h"

namespace tempo {

double ChooseOctave(double bpm, double halfBeatRatio) {
    if (!(bpm > 0))
        return 0.0;
    while (bpm < kLowestBpm)
        bpm *= 2;
    while (bpm >= kHighestBpm)
        bpm /= 2;
    if (halfBeatRatio >= kHalfBeatRatio && bpm * 2 < kHighestBpm)
        bpm *= 2;
    return bpm;
}

}  // namespace tempo
