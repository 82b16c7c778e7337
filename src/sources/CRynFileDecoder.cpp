#include "sources/CRynFileDecoder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "sources/StereoConvert.h"

namespace {

// Bytes in the 176400-a-second unit for `frames` frames at `rate` Hz.
std::int64_t UnitBytes(std::int64_t frames, int rate) {
    if (rate == 44100)
        return frames * 4;
    return static_cast<std::int64_t>(static_cast<__int128>(frames) * kBytesPerSecond / rate);
}

}  // namespace

CRynFileDecoder::CRynFileDecoder() : CRynFileDecoder(media::CreateMediaSource()) {}

CRynFileDecoder::CRynFileDecoder(std::unique_ptr<media::MediaSource> source)
    : source_(std::move(source)) {}

CRynFileDecoder::~CRynFileDecoder() {
    Close();
}

bool CRynFileDecoder::Open(const std::string& fileName) {
    Close();
    SetBytePosition(0);
    streamFrame_ = 0;
    endedAt100ns_ = 0;
    if (fileName.empty())
        return false;
    // Only regular files: a pipe or device could block the open for good.
    std::error_code ec;
    if (!std::filesystem::is_regular_file(fileName, ec))
        return false;

    fileName_ = fileName;
    onRemovableDrive_.store(media::IsPathOnRemovableDrive(fileName, driveRoots_));
    if (!source_ || !source_->Open(fileName)) {
        Close();
        return false;
    }
    format_ = source_->Format();
    channels_ = format_.channels;
    bitsPerSample_ = format_.bitsPerSample;
    sampleRate_ = format_.sampleRate;
    blockBytes_ = kBlockFrames * format_.BytesPerFrame();
    open_ = true;
    // Whole seconds only; a duration beyond any real file is capped.
    const double seconds = std::min(std::trunc(DurationSeconds()), 1e9);
    totalBytes_ = static_cast<std::int64_t>(seconds) * kBytesPerSecond;
    return true;
}

void CRynFileDecoder::Close() {
    if (source_)
        source_->Close();
    open_ = false;
    std::memset(blockBuffer_, 0, sizeof blockBuffer_);
}

std::int32_t CRynFileDecoder::ReadBlock(std::uint8_t* destination, int& bytesDelivered,
                                        bool& endOfStream) {
    if (!open_ || !destination)
        return kUnexpected;
    int filled = ReadFrames(destination, 0, kBlockFrames);
    bytesDelivered = filled * 4;
    endOfStream = filled < kBlockFrames;
    if (!endOfStream)
        return kOk;
    NoteStreamEnd();
    std::memset(destination + filled * 4, 0, std::size_t(kBlockBytes - filled * 4));

    // The track has ended inside this block: ask the deck for the next one
    // and carry on from it in the same block. A following track shorter
    // than the rest of the block leads to another question.
    for (int joins = 0; joins < kMaxJoinsPerBlock && filled < kBlockFrames; ++joins) {
        const int answer = onEndOfTrack_ ? onEndOfTrack_() : 0;
        // The handler has run Open on this decoder when it answered nonzero.
        if (answer == 0 || !open_) {
            Close();
            return kOk;
        }
        filled += ReadFrames(destination, filled, kBlockFrames - filled);
    }
    if (filled < kBlockFrames) {
        Close();
        return kOk;
    }
    endOfStream = false;
    return kOk;
}

int CRynFileDecoder::ReadFrames(std::uint8_t* destination, int offset, int frames) {
    const int bytesPerFrame = format_.BytesPerFrame();
    const int got = source_->Read(blockBuffer_, frames * bytesPerFrame);
    const int n = std::clamp(got / bytesPerFrame, 0, frames);
    stereoconvert::ConvertToStereo16(blockBuffer_, format_, n, scratch_);
    std::memcpy(destination + std::size_t(offset) * 4, scratch_, std::size_t(n) * 4);
    Advance(n);
    return n;
}

void CRynFileDecoder::Advance(int frames) {
    streamFrame_ += frames;
    framesSinceAnchor_ += frames;
}

std::int64_t CRynFileDecoder::BytePosition() const {
    return anchorBytes_ + UnitBytes(framesSinceAnchor_, sampleRate_);
}

void CRynFileDecoder::SetBytePosition(std::int64_t bytes) {
    anchorBytes_ = bytes;
    framesSinceAnchor_ = 0;
}

void CRynFileDecoder::Rewind(int blocks) {
    if (blocks <= 0)
        return;
    const std::int64_t frames = std::int64_t(blocks) * kBlockFrames;
    SetBytePosition(std::max<std::int64_t>(BytePosition() - UnitBytes(frames, sampleRate_), 0));
    streamFrame_ = std::max<std::int64_t>(streamFrame_ - frames, 0);
    if (open_)
        source_->Seek(streamFrame_);
}

void CRynFileDecoder::SeekFrame(std::int64_t frame) {
    if (!open_)
        return;
    const std::int64_t frames = static_cast<std::int64_t>(
        static_cast<__int128>(source_->Duration100ns()) * sampleRate_ / 10000000);
    streamFrame_ = std::clamp<std::int64_t>(frame, 0, std::max<std::int64_t>(frames, 0));
    source_->Seek(streamFrame_);
    SetBytePosition(UnitBytes(streamFrame_, sampleRate_));
}

void CRynFileDecoder::SeekFraction(float fraction) {
    if (!open_)
        return;
    if (!(fraction >= 0.0f))
        fraction = 0.0f;  // also NaN
    if (fraction > 1.0f)
        fraction = 1.0f;
    const std::int64_t duration = Duration100ns();
    const auto target100ns = static_cast<std::int64_t>(double(duration) * fraction);
    streamFrame_ =
        static_cast<std::int64_t>(static_cast<__int128>(target100ns) * sampleRate_ / 10000000);
    source_->Seek(streamFrame_);
    SetBytePosition(static_cast<std::int64_t>(double(totalBytes_) * double(fraction)));
}

std::int64_t CRynFileDecoder::Duration100ns() const {
    const std::int64_t announced = source_->Duration100ns();
    const std::int64_t ended = endedAt100ns_.load();
    return ended > 0 && ended < announced ? ended : announced;
}

void CRynFileDecoder::NoteStreamEnd() {
    const std::int64_t end = static_cast<std::int64_t>(static_cast<__int128>(streamFrame_.load()) *
                                                       10000000 / std::max(sampleRate_, 1));
    if (end <= 0 || end >= source_->Duration100ns())
        return;
    endedAt100ns_ = end;
    // The whole-second total follows the real length.
    totalBytes_ = static_cast<std::int64_t>(std::trunc(double(end) * 1e-7)) * kBytesPerSecond;
}

double CRynFileDecoder::DurationSeconds() const {
    return open_ ? double(Duration100ns()) * 1e-7 : 0.0;
}

double CRynFileDecoder::ElapsedSeconds() const {
    return open_ ? double(BytePosition()) / kBytesPerSecond : 0.0;
}
