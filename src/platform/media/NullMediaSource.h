// NullMediaSource: a media framework that cannot open anything. Tests use it
// to check that a decoder on a failing framework stays closed and quiet.
#pragma once

#include "platform/media/MediaSource.h"

namespace media {

class NullMediaSource : public MediaSource {
  public:
    bool Open(const std::string&) override {
        ++openAttempts;
        return false;
    }
    void Close() override {}
    bool IsOpen() const override { return false; }
    PcmFormat Format() const override { return {}; }
    std::int64_t Duration100ns() const override { return 0; }
    int Read(std::uint8_t*, int) override { return 0; }
    bool Seek(std::int64_t) override { return false; }

    int openAttempts = 0;
};

}  // namespace media
