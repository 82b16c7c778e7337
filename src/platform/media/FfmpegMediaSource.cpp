#include "platform/media/FfmpegMediaSource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <string>

#include "platform/media/MediaLimits.h"

namespace media {
namespace {

// Decoder errors in a row (without a packet consumed) before the stream is
// treated as ended; rejected packets themselves are skipped.
constexpr int kMaxReceiveErrors = 16;
// The containers opened (libavformat demuxer names): audio files only, so
// that no playlist, image or script demuxer reads other files on our behalf.
constexpr const char* kAudioContainers = "wav,w64,aiff,mp3,asf,ogg,flac,mov,aac,matroska";
// Hundred-nanosecond units a second.
constexpr std::int64_t k100nsPerSecond = 10000000;

// Once per process: FFmpeg prints nothing unless MIXORA_FFMPEG_LOG is set
// (then warnings and worse go to stderr), and no single allocation it makes
// may exceed kMaxAllocationBytes (a header declaring gigabytes then fails
// to open instead of filling the memory).
void SetUpFfmpeg() {
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(std::getenv("MIXORA_FFMPEG_LOG") ? AV_LOG_WARNING : AV_LOG_QUIET);
        av_max_alloc(kMaxAllocationBytes);
    });
}

// Every audio decoder's name, comma-separated: the only codecs a file may open
// (a cover picture's image decoder, or a video stream's, is never started).
const std::string& AudioDecoders() {
    static const std::string names = [] {
        std::string list;
        void* it = nullptr;
        while (const AVCodec* c = av_codec_iterate(&it)) {
            if (c->type != AVMEDIA_TYPE_AUDIO || !av_codec_is_decoder(c))
                continue;
            if (!list.empty())
                list += ',';
            list += c->name;
        }
        return list;
    }();
    return names;
}

// The delivered type for a decoder format; false for those that need the
// resampler (double, 64-bit).
bool DirectType(int format, SampleType* type) {
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(format))) {
        case AV_SAMPLE_FMT_U8:
            *type = SampleType::U8;
            return true;
        case AV_SAMPLE_FMT_S16:
            *type = SampleType::S16;
            return true;
        case AV_SAMPLE_FMT_S32:
            *type = SampleType::S32;
            return true;
        case AV_SAMPLE_FMT_FLT:
            *type = SampleType::F32;
            return true;
        default:
            return false;
    }
}

AVSampleFormat PackedFormat(SampleType type) {
    switch (type) {
        case SampleType::U8:
            return AV_SAMPLE_FMT_U8;
        case SampleType::S16:
            return AV_SAMPLE_FMT_S16;
        case SampleType::S32:
            return AV_SAMPLE_FMT_S32;
        case SampleType::F32:
            return AV_SAMPLE_FMT_FLT;
    }
    return AV_SAMPLE_FMT_S16;
}

template <typename T>
void Interleave(const std::uint8_t* left, const std::uint8_t* right, std::uint8_t* out,
                int frames) {
    const T* l = reinterpret_cast<const T*>(left);
    const T* r = reinterpret_cast<const T*>(right);
    T* o = reinterpret_cast<T*>(out);
    for (int i = 0; i < frames; ++i) {
        o[2 * i] = l[i];
        o[2 * i + 1] = r[i];
    }
}

// a - b without overflow (crafted files carry any time stamp).
std::int64_t SaturatingSub(std::int64_t a, std::int64_t b) {
    std::int64_t r;
    if (__builtin_sub_overflow(a, b, &r))
        return b < 0 ? std::numeric_limits<std::int64_t>::max()
                     : std::numeric_limits<std::int64_t>::min();
    return r;
}

}  // namespace

int PcmFormat::BytesPerSample() const {
    switch (type) {
        case SampleType::U8:
            return 1;
        case SampleType::S16:
            return 2;
        case SampleType::S32:
        case SampleType::F32:
            return 4;
    }
    return 2;
}

std::unique_ptr<MediaSource> CreateMediaSource() {
    return std::make_unique<FfmpegMediaSource>();
}

FfmpegMediaSource::FfmpegMediaSource() {
    SetUpFfmpeg();
}

FfmpegMediaSource::~FfmpegMediaSource() {
    Close();
}

bool FfmpegMediaSource::Open(const std::string& path) {
    Close();
    if (path.empty())
        return false;
    path_ = path;
    // The first frame fixes the delivered format and proves the stream decodes.
    if (!OpenInput() || !DecodeFrame()) {
        Close();
        return false;
    }
    const int channels = frame_->ch_layout.nb_channels;
    const int rate = frame_->sample_rate;
    if (!IsPlausibleAudioStream({channels, rate, 0, frame_->nb_samples})) {
        Close();
        return false;
    }
    SampleType type = SampleType::F32;
    const bool direct = DirectType(frame_->format, &type);
    format_.channels = std::min(channels, 2);
    format_.sampleRate = rate;
    format_.type = direct ? type : SampleType::F32;
    format_.bitsPerSample =
        8 * av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame_->format));
    if (format_.type == SampleType::S32 && codec_->bits_per_raw_sample > 8 &&
        codec_->bits_per_raw_sample < 32)
        format_.bitsPerSample = codec_->bits_per_raw_sample;

    std::int64_t pts = frame_->best_effort_timestamp;
    if (pts == AV_NOPTS_VALUE)
        pts = frame_->pts;
    firstPtsKnown_ = pts != AV_NOPTS_VALUE;
    firstPts_ = firstPtsKnown_ ? pts : 0;
    firstFrameSamples_ = frame_->nb_samples;
    // Codecs that do not declare a frame size (wmav2) have fixed frames
    // all the same: the first one shows it.
    fixedFrameSize_ = codec_->frame_size > 0 ? codec_->frame_size : frame_->nb_samples;
    freshDemuxerForSeek_ = std::strcmp(format_ctx_->iformat->name, "ogg") == 0;

    const AVStream* st = format_ctx_->streams[streamIndex_];
    std::int64_t d = 0;
    if (st->duration != AV_NOPTS_VALUE && st->duration > 0 && st->time_base.num > 0 &&
        st->time_base.den > 0)
        d = av_rescale_q(st->duration, st->time_base, AVRational{1, int(k100nsPerSecond)});
    else if (format_ctx_->duration != AV_NOPTS_VALUE && format_ctx_->duration > 0)
        d = av_rescale_q(format_ctx_->duration, AV_TIME_BASE_Q,
                         AVRational{1, int(k100nsPerSecond)});
    duration100ns_ = std::max<std::int64_t>(d, 0);

    if (!Convert(0)) {
        Close();
        return false;
    }
    return true;
}

bool FfmpegMediaSource::OpenInput() {
    // Only plain files of audio containers: no network, no playlists reaching
    // elsewhere. The "file:" prefix keeps a name with a colon from reading
    // as a protocol. Probing stays small and only audio decoders open.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", kAudioContainers, 0);
    av_dict_set(&options, "codec_whitelist", AudioDecoders().c_str(), 0);
    av_dict_set_int(&options, "probesize", kProbeBytes, 0);
    av_dict_set_int(&options, "analyzeduration", kAnalyzeMicroseconds, 0);
    const std::string url = "file:" + path_;
    const int opened = avformat_open_input(&format_ctx_, url.c_str(), nullptr, &options);
    av_dict_free(&options);
    if (opened < 0)
        return false;
    if (avformat_find_stream_info(format_ctx_, nullptr) < 0)
        return false;

    const AVCodec* decoder = nullptr;
    streamIndex_ = av_find_best_stream(format_ctx_, AVMEDIA_TYPE_AUDIO, -1, -1, &decoder, 0);
    if (streamIndex_ < 0 || !decoder)
        return false;
    for (unsigned i = 0; i < format_ctx_->nb_streams; ++i)
        if (int(i) != streamIndex_)
            format_ctx_->streams[i]->discard = AVDISCARD_ALL;

    // Absurd declarations are refused before a decoder sizes its buffers by them.
    AVStream* st = format_ctx_->streams[streamIndex_];
    const AVCodecParameters* par = st->codecpar;
    if (!IsPlausibleAudioStream(
            {par->ch_layout.nb_channels, par->sample_rate, par->block_align, par->frame_size}))
        return false;
    codec_ = avcodec_alloc_context3(decoder);
    if (!codec_ || avcodec_parameters_to_context(codec_, st->codecpar) < 0)
        return false;
    codec_->thread_count = 1;  // decode on the caller's (reader) thread
    codec_->pkt_timebase = st->time_base;
    AVDictionary* codecOptions = nullptr;
    av_dict_set(&codecOptions, "codec_whitelist", AudioDecoders().c_str(), 0);
    const int codecOpened = avcodec_open2(codec_, decoder, &codecOptions);
    av_dict_free(&codecOptions);
    if (codecOpened < 0)
        return false;
    packet_ = av_packet_alloc();
    frame_ = av_frame_alloc();
    if (!packet_ || !frame_)
        return false;
    demuxerDone_ = false;
    drained_ = false;
    return true;
}

void FfmpegMediaSource::CloseInput() {
    swr_free(&swr_);
    swrInFormat_ = -1;
    av_frame_free(&frame_);
    av_packet_free(&packet_);
    avcodec_free_context(&codec_);
    avformat_close_input(&format_ctx_);
    streamIndex_ = -1;
    demuxerDone_ = false;
    drained_ = false;
}

void FfmpegMediaSource::Close() {
    CloseInput();
    format_ = PcmFormat{};
    duration100ns_ = 0;
    firstPts_ = 0;
    firstPtsKnown_ = false;
    firstFrameSamples_ = 0;
    fixedFrameSize_ = 0;
    DropPending();
}

void FfmpegMediaSource::DropPending() {
    pendingOffset_ = 0;
    pendingBytes_ = 0;
}

bool FfmpegMediaSource::DecodeFrame() {
    int receiveErrors = 0;
    for (;;) {
        int r = avcodec_receive_frame(codec_, frame_);
        if (r >= 0) {
            if (frame_->nb_samples > 0)
                return true;
            continue;
        }
        if (r == AVERROR_EOF)
            return false;
        if (r != AVERROR(EAGAIN)) {
            if (++receiveErrors > kMaxReceiveErrors)
                return false;
            continue;
        }
        if (demuxerDone_)
            return false;
        r = av_read_frame(format_ctx_, packet_);
        if (r < 0) {
            // End of file or an unreadable rest: let the decoder give out what it holds.
            demuxerDone_ = true;
            avcodec_send_packet(codec_, nullptr);
            continue;
        }
        // A packet the decoder rejects is skipped, as a player would.
        if (packet_->stream_index == streamIndex_)
            avcodec_send_packet(codec_, packet_);
        av_packet_unref(packet_);
    }
}

std::int64_t FfmpegMediaSource::FrameIndexOfCurrent() const {
    std::int64_t pts = frame_->best_effort_timestamp;
    if (pts == AV_NOPTS_VALUE)
        pts = frame_->pts;
    if (pts == AV_NOPTS_VALUE || !firstPtsKnown_)
        return -1;
    const AVRational tb = format_ctx_->streams[streamIndex_]->time_base;
    const int rate = format_.sampleRate;
    if (tb.num <= 0 || tb.den <= 0)
        return -1;
    std::int64_t index = av_rescale_q_rnd(SaturatingSub(pts, firstPts_), tb, AVRational{1, rate},
                                          AVRounding(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX));
    // Time stamps coarser than a sample: every frame after the first starts
    // on the codec's frame grid.
    if (fixedFrameSize_ > 0 && std::int64_t(tb.num) * rate > tb.den && index > 0) {
        const double k = std::round(double(index - firstFrameSamples_) / double(fixedFrameSize_));
        index = k < 0 ? 0 : firstFrameSamples_ + std::int64_t(k) * fixedFrameSize_;
    }
    return index;
}

bool FfmpegMediaSource::Convert(int skip) {
    DropPending();
    const int frames = frame_->nb_samples - skip;
    if (frames <= 0)
        return true;
    const int inFormat = frame_->format;
    const int inChannels = frame_->ch_layout.nb_channels;
    const int bps = format_.BytesPerSample();
    const int bpf = format_.BytesPerFrame();
    if (inChannels <= 0)
        return false;

    SampleType type;
    if (DirectType(inFormat, &type) && type == format_.type && inChannels == format_.channels &&
        frame_->sample_rate == format_.sampleRate) {
        const std::size_t bytes = std::size_t(frames) * bpf;
        if (pending_.size() < bytes)
            pending_.resize(bytes);
        std::uint8_t* out = pending_.data();
        if (inChannels == 1 || !av_sample_fmt_is_planar(AVSampleFormat(inFormat))) {
            std::memcpy(out, frame_->extended_data[0] + std::size_t(skip) * bpf, bytes);
        } else {
            const std::uint8_t* l = frame_->extended_data[0] + std::size_t(skip) * bps;
            const std::uint8_t* r = frame_->extended_data[1] + std::size_t(skip) * bps;
            if (bps == 1)
                Interleave<std::uint8_t>(l, r, out, frames);
            else if (bps == 2)
                Interleave<std::uint16_t>(l, r, out, frames);
            else
                Interleave<std::uint32_t>(l, r, out, frames);
        }
        pendingBytes_ = int(bytes);
        return true;
    }

    // The resampler, set up again whenever the decoder's output changes.
    if (!swr_ || inFormat != swrInFormat_ || inChannels != swrInChannels_ ||
        frame_->sample_rate != swrInRate_) {
        swr_free(&swr_);
        swrInFormat_ = -1;
        AVChannelLayout inLayout{};
        if (frame_->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC ||
            av_channel_layout_check(&frame_->ch_layout) == 0)
            av_channel_layout_default(&inLayout, inChannels);
        else if (av_channel_layout_copy(&inLayout, &frame_->ch_layout) < 0)
            return false;
        AVChannelLayout outLayout{};
        av_channel_layout_default(&outLayout, format_.channels);
        int r = swr_alloc_set_opts2(&swr_, &outLayout, PackedFormat(format_.type),
                                    format_.sampleRate, &inLayout, AVSampleFormat(inFormat),
                                    frame_->sample_rate, 0, nullptr);
        // Channels no speaker layout names (9, 17, 32 of them): even ones to
        // the left, odd ones to the right (all to a mono output), each side
        // an average, so that the sound keeps its level.
        if (r >= 0 && inLayout.order != AV_CHANNEL_ORDER_NATIVE) {
            std::vector<double> matrix(std::size_t(format_.channels) * inChannels, 0.0);
            const int perSide = format_.channels == 1 ? inChannels : (inChannels + 1) / 2;
            for (int c = 0; c < inChannels; ++c) {
                const int side = format_.channels == 1 ? 0 : c % 2;
                const int count = side == 0 ? perSide : inChannels / 2;
                matrix[std::size_t(side) * inChannels + c] = 1.0 / count;
            }
            r = swr_set_matrix(swr_, matrix.data(), inChannels);
        }
        av_channel_layout_uninit(&inLayout);
        av_channel_layout_uninit(&outLayout);
        if (r < 0 || swr_init(swr_) < 0) {
            swr_free(&swr_);
            return false;
        }
        swrInFormat_ = inFormat;
        swrInChannels_ = inChannels;
        swrInRate_ = frame_->sample_rate;
    }
    const int maxOut = swr_get_out_samples(swr_, frames);
    if (maxOut <= 0)
        return maxOut == 0;
    const std::size_t bytes = std::size_t(maxOut) * bpf;
    if (pending_.size() < bytes)
        pending_.resize(bytes);
    const bool planar = av_sample_fmt_is_planar(AVSampleFormat(inFormat));
    const int inBps = av_get_bytes_per_sample(AVSampleFormat(inFormat));
    const int planes = planar ? inChannels : 1;
    if (inPlanes_.size() < std::size_t(planes))
        inPlanes_.resize(planes);
    for (int p = 0; p < planes; ++p)
        inPlanes_[p] =
            frame_->extended_data[p] + std::size_t(skip) * inBps * (planar ? 1 : inChannels);
    std::uint8_t* out[1] = {pending_.data()};
    const int got = swr_convert(swr_, out, maxOut, inPlanes_.data(), frames);
    if (got < 0)
        return false;
    pendingBytes_ = got * bpf;
    return true;
}

bool FfmpegMediaSource::NextChunk() {
    DropPending();
    while (!drained_ && DecodeFrame()) {
        // A frame that cannot be converted is passed over.
        if (Convert(0) && pendingBytes_ > 0)
            return true;
    }
    if (!drained_) {
        drained_ = true;
        if (swr_) {
            const int maxOut = swr_get_out_samples(swr_, 0);
            if (maxOut > 0) {
                const std::size_t bytes = std::size_t(maxOut) * format_.BytesPerFrame();
                if (pending_.size() < bytes)
                    pending_.resize(bytes);
                std::uint8_t* out[1] = {pending_.data()};
                const int got = swr_convert(swr_, out, maxOut, nullptr, 0);
                if (got > 0)
                    pendingBytes_ = got * format_.BytesPerFrame();
            }
        }
    }
    return pendingBytes_ > 0;
}

int FfmpegMediaSource::Read(std::uint8_t* dest, int maxBytes) {
    if (!IsOpen() || !dest || maxBytes <= 0)
        return 0;
    const int bpf = format_.BytesPerFrame();
    const int want = maxBytes / bpf * bpf;
    int got = 0;
    while (got < want) {
        if (pendingOffset_ >= pendingBytes_ && !NextChunk())
            break;
        const int n = std::min(want - got, pendingBytes_ - pendingOffset_);
        std::memcpy(dest + got, pending_.data() + pendingOffset_, std::size_t(n));
        pendingOffset_ += n;
        got += n;
    }
    return got;
}

bool FfmpegMediaSource::Seek(std::int64_t frame) {
    if (!IsOpen())
        return false;
    frame = std::max<std::int64_t>(frame, 0);
    DropPending();
    if (SeekByTimeStamp(frame))
        return true;
    return SeekByDecoding(frame);
}

bool FfmpegMediaSource::SeekByTimeStamp(std::int64_t frame) {
    if (!firstPtsKnown_)
        return false;
    const AVRational tb = format_ctx_->streams[streamIndex_]->time_base;
    const int rate = format_.sampleRate;
    if (tb.num <= 0 || tb.den <= 0)
        return false;
    // Decoders need some stream before the target to settle (bit reservoir,
    // overlapping transforms); widen the margin if the landing is late.
    for (int attempt = 0; attempt < 4; ++attempt) {
        const std::int64_t preroll = (std::int64_t(rate) / 4) << attempt;
        const std::int64_t from = std::max<std::int64_t>(frame - preroll, 0);
        // Near the start: decode from the very beginning, as the first read did
        // (some containers begin with priming packets a seek would skip).
        if (from == 0)
            return false;
        std::int64_t ts;
        if (__builtin_add_overflow(firstPts_, av_rescale_q(from, AVRational{1, rate}, tb), &ts))
            return false;
        // The Ogg demuxer mislabels packets when it seeks back into a page it
        // has read before (its index holds page positions): seek from a fresh one.
        if (freshDemuxerForSeek_) {
            CloseInput();
            if (!OpenInput())
                return false;
        }
        if (avformat_seek_file(format_ctx_, streamIndex_, std::numeric_limits<std::int64_t>::min(),
                               ts, ts, 0) < 0)
            return false;
        avcodec_flush_buffers(codec_);
        swr_free(&swr_);
        swrInFormat_ = -1;
        demuxerDone_ = false;
        drained_ = false;
        DropPending();
        if (!DecodeFrame())
            return true;  // nothing after the landing: at the end
        std::int64_t index = FrameIndexOfCurrent();
        if (index < 0)
            return false;
        if (index > frame) {
            if (from > 0)
                continue;
            return false;
        }
        while (index + frame_->nb_samples <= frame) {
            index += frame_->nb_samples;
            if (!DecodeFrame())
                return true;  // the target lies past the end
        }
        return Convert(int(frame - index));
    }
    return false;
}

bool FfmpegMediaSource::SeekByDecoding(std::int64_t frame) {
    CloseInput();
    if (!OpenInput()) {
        Close();
        return false;
    }
    std::int64_t index = 0;
    for (;;) {
        if (!DecodeFrame())
            return true;
        if (index + frame_->nb_samples > frame)
            return Convert(int(frame - index));
        index += frame_->nb_samples;
    }
}

}  // namespace media
