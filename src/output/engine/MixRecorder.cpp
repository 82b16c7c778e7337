#include "output/engine/MixRecorder.h"

#include <sndfile.h>

#include <chrono>
#include <vector>

namespace {
// Frames the writer moves to the file per call: 186 ms at 44100 Hz.
constexpr std::size_t kChunkFrames = 8192;
}  // namespace

MixRecorder::MixRecorder(std::size_t ringFrames) : ringFrames_(ringFrames) {}

MixRecorder::~MixRecorder() {
    Stop();
}

int MixRecorder::SndFormat(Format format) {
    return (format == Format::Flac ? SF_FORMAT_FLAC : SF_FORMAT_WAV) | SF_FORMAT_PCM_16;
}

const char* MixRecorder::Extension(Format format) {
    return format == Format::Flac ? "flac" : "wav";
}

bool MixRecorder::Start(const std::string& path, Format format, int rate, std::string* error) {
    if (file_ != nullptr) {
        if (error)
            *error = "a recording is already running";
        return false;
    }
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = 2;
    info.format = SndFormat(format);
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    if (f == nullptr) {
        if (error)
            *error = sf_strerror(nullptr);
        return false;
    }
    // The header follows every write: a file cut short stays readable.
    sf_command(f, SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
    ring_ = std::make_unique<FrameRing>(ringFrames_);
    file_ = f;
    path_ = path;
    format_ = format;
    rate_ = rate;
    error_.clear();
    stop_.store(false);
    failed_.store(false);
    written_.store(0);
    writer_ = std::thread([this] { WriterLoop(); });
    return true;
}

void MixRecorder::Stop() {
    if (file_ == nullptr)
        return;
    stop_.store(true, std::memory_order_release);
    if (writer_.joinable())
        writer_.join();
    sf_close(file_);
    file_ = nullptr;
}

std::uint64_t MixRecorder::FramesTaken() const {
    return ring_ ? ring_->StoredFrames() + ring_->LostFrames() : 0;
}

std::uint64_t MixRecorder::LostFrames() const {
    return ring_ ? ring_->LostFrames() : 0;
}

void MixRecorder::OnMixed(const std::int16_t* out, int frames) noexcept {
    if (ring_ && frames > 0)
        ring_->Push(out, static_cast<std::size_t>(frames));
}

void MixRecorder::WriterLoop() {
    std::vector<std::int16_t> chunk(2 * kChunkFrames);
    for (;;) {
        // Read the flag first: everything pushed before Stop is then drained.
        const bool stopping = stop_.load(std::memory_order_acquire);
        std::size_t n;
        while ((n = ring_->Pop(chunk.data(), kChunkFrames)) > 0) {
            const sf_count_t done =
                sf_writef_short(file_, chunk.data(), static_cast<sf_count_t>(n));
            if (done > 0)
                written_.fetch_add(static_cast<std::uint64_t>(done), std::memory_order_relaxed);
            if (done != static_cast<sf_count_t>(n)) {
                const char* why = sf_strerror(file_);
                error_ = why && *why ? why : "the file could not be written";
                failed_.store(true, std::memory_order_release);
                return;
            }
        }
        if (stopping)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(kWriterPeriodMs));
    }
}
