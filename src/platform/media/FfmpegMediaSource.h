// FfmpegMediaSource: MediaSource over libavformat and libavcodec.
//
// The stream is delivered in the decoder's own sample type, planar decoders
// interleaved by hand. libswresample steps in only where a conversion cannot
// be avoided: double or 64-bit samples (to float), more than two channels
// (mixed down to stereo), and a stream whose format changes part way
// through (converted back to the format reported at Open).
//
// Frame numbers come from the decoded frames' time stamps relative to the
// first frame of the stream. Containers whose time stamps are coarser than
// one sample (ASF counts milliseconds) are snapped to the codec's fixed
// frame size so that seeks stay sample exact there too. Seeks close to the
// start decode from the beginning again; Ogg seeks start from a fresh
// demuxer (its own seek mislabels packets inside a page read before).
//
// Opening keeps the bounds of MediaLimits.h: one allocation at most 64 MB,
// small probing, audio demuxers and decoders only, and stream parameters in
// range before the decoder starts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/media/MediaSource.h"

struct AVFormatContext;
struct AVCodecContext;
struct AVPacket;
struct AVFrame;
struct SwrContext;

namespace media {

class FfmpegMediaSource : public MediaSource {
  public:
    FfmpegMediaSource();
    ~FfmpegMediaSource() override;
    FfmpegMediaSource(const FfmpegMediaSource&) = delete;
    FfmpegMediaSource& operator=(const FfmpegMediaSource&) = delete;

    bool Open(const std::string& path) override;
    void Close() override;
    bool IsOpen() const override { return codec_ != nullptr; }
    PcmFormat Format() const override { return format_; }
    std::int64_t Duration100ns() const override { return duration100ns_; }
    int Read(std::uint8_t* dest, int maxBytes) override;
    bool Seek(std::int64_t frame) override;

  private:
    // Demuxer and decoder only; no frame decoded yet.
    bool OpenInput();
    void CloseInput();
    // Decodes the next frame of the stream into frame_; false at its end.
    bool DecodeFrame();
    // The frame number of frame_ from its time stamp; -1 when it has none.
    std::int64_t FrameIndexOfCurrent() const;
    // Converts frame_ from its frame `skip` on into pending_; false when
    // the conversion is impossible.
    bool Convert(int skip);
    // Decodes and converts the next frame into pending_ (the resampler's
    // tail at the end); false at the end of the stream.
    bool NextChunk();
    bool SeekByDecoding(std::int64_t frame);   // reopen and decode up to frame
    bool SeekByTimeStamp(std::int64_t frame);  // demuxer seek with preroll
    void DropPending();

    std::string path_;
    AVFormatContext* format_ctx_ = nullptr;
    AVCodecContext* codec_ = nullptr;
    AVPacket* packet_ = nullptr;
    AVFrame* frame_ = nullptr;
    SwrContext* swr_ = nullptr;
    int swrInFormat_ = -1;  // the input the resampler was set up for
    int swrInChannels_ = 0;
    int swrInRate_ = 0;
    int streamIndex_ = -1;
    bool demuxerDone_ = false;
    bool drained_ = false;  // the resampler's tail has been taken

    PcmFormat format_;
    std::int64_t duration100ns_ = 0;
    std::int64_t firstPts_ = 0;  // time stamp of frame 0 (stream time base)
    bool firstPtsKnown_ = false;
    int firstFrameSamples_ = 0;         // length of the stream's first decoded frame
    int fixedFrameSize_ = 0;            // codec frame size in samples, 0 = variable
    bool freshDemuxerForSeek_ = false;  // Ogg: seek from a newly opened demuxer

    // Converted PCM not yet read: bytes [pendingOffset_, pendingBytes_).
    std::vector<std::uint8_t> pending_;
    std::vector<const std::uint8_t*> inPlanes_;  // resampler input, one per plane
    int pendingOffset_ = 0;
    int pendingBytes_ = 0;
};

}  // namespace media
