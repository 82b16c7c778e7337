#include "platform/media/MediaLimits.h"

namespace media {

bool IsPlausibleAudioStream(const StreamShape& shape) {
    return shape.channels >= 1 && shape.channels <= kMaxChannels &&
           shape.sampleRate >= kMinSampleRate && shape.sampleRate <= kMaxSampleRate &&
           shape.blockBytes >= 0 && shape.blockBytes <= kMaxBlockBytes && shape.frameSamples >= 0 &&
           shape.frameSamples <= kMaxFrameSamples;
}

}  // namespace media
