#include "sources/CRynCdAudio.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/cd/LibCdioBackend.h"

static_assert(CRynCdAudio::kReadBytes == kBlockBytes, "one read fills one disc-buffer slot");

CRynCdAudio::CRynCdAudio()
    : CRynCdAudio(std::make_unique<cd::LibCdioBackend>(), std::make_unique<SystemCdClock>()) {}

CRynCdAudio::CRynCdAudio(std::unique_ptr<cd::CdBackend> backend, std::unique_ptr<CdClock> clock)
    : backend_(std::move(backend)), clock_(std::move(clock)) {
    if (!backend_)
        return;
    std::vector<cd::CdDriveInfo> list = backend_->ListDrives();
    if (list.size() > static_cast<std::size_t>(cd::kMaxDrives))
        list.resize(cd::kMaxDrives);
    for (cd::CdDriveInfo& info : list) {
        auto r = std::make_unique<DriveRecord>();
        r->info = std::move(info);
        drives_.push_back(std::move(r));
    }
    if (!drives_.empty())
        readBuffers_.resize(kDecks);
}

void CRynCdAudio::SetEndOfTrackHandler(int deck, EndOfTrackHandler handler) {
    if (deck >= 0 && deck < kDecks)
        onEndOfTrack_[static_cast<std::size_t>(deck)] = std::move(handler);
}

CRynCdAudio::~CRynCdAudio() {
    for (int d = 0; d < DriveCount(); ++d)
        CloseDrive(d);
}

CRynCdAudio::DriveRecord* CRynCdAudio::Record(int drive) {
    if (drive < 0 || drive >= DriveCount())
        return nullptr;
    return drives_[static_cast<std::size_t>(drive)].get();
}

const CRynCdAudio::DriveRecord* CRynCdAudio::Record(int drive) const {
    if (drive < 0 || drive >= DriveCount())
        return nullptr;
    return drives_[static_cast<std::size_t>(drive)].get();
}

// ---- Drives

std::string CRynCdAudio::DriveName(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->info.name : std::string();
}

std::string CRynCdAudio::DriveRoot(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && !r->info.device.empty() ? r->info.device : std::string("unknown");
}

bool CRynCdAudio::OpenDrive(int drive) {
    DriveRecord* r = Record(drive);
    if (!r)
        return false;
    {
        std::lock_guard<std::mutex> hold(r->lock);
        r->handle.reset();
        r->toc = {};
        r->handle = backend_->Open(r->info);
    }
    r->currentAddress = 0;
    r->currentTrack = -1;
    if (!r->handle)
        return false;
    ReadToc(drive);
    return true;
}

void CRynCdAudio::CloseDrive(int drive) {
    DriveRecord* r = Record(drive);
    if (!r)
        return;
    std::lock_guard<std::mutex> hold(r->lock);
    r->handle.reset();
}

bool CRynCdAudio::IsOpen(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && r->handle;
}

// ---- Table of contents

bool CRynCdAudio::ReadToc(int drive) {
    DriveRecord* r = Record(drive);
    if (!r)
        return false;
    std::lock_guard<std::mutex> hold(r->lock);
    cd::CdToc toc;
    bool ok = r->handle && r->handle->ReadToc(toc) && toc.TrackCount() > 0 &&
              static_cast<int>(toc.entries.size()) == toc.TrackCount() + 1;
    r->toc = ok ? std::move(toc) : cd::CdToc{};
    return ok;
}

int CRynCdAudio::TrackCount(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->toc.TrackCount() : 0;
}

int CRynCdAudio::FirstTrack(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && r->toc.TrackCount() > 0 ? r->toc.first : 0;
}

int CRynCdAudio::LastTrack(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && r->toc.TrackCount() > 0 ? r->toc.last : 0;
}

std::int32_t CRynCdAudio::TrackStart(int drive, int t) const {
    const DriveRecord* r = Record(drive);
    if (!r || !r->toc.HasTrack(t))
        return 0;
    return r->toc.entries[static_cast<std::size_t>(t - r->toc.first)].start;
}

std::int32_t CRynCdAudio::TrackEnd(int drive, int t) const {
    const DriveRecord* r = Record(drive);
    if (!r || !r->toc.HasTrack(t))
        return 0;
    return r->toc.entries[static_cast<std::size_t>(t - r->toc.first + 1)].start;
}

double CRynCdAudio::TrackLengthSeconds(int drive, int t) const {
    return static_cast<double>(TrackEnd(drive, t) - TrackStart(drive, t)) * cd::kSectorBytes /
           ::kBytesPerSecond;
}

bool CRynCdAudio::IsAudioTrack(int drive, int t) const {
    const DriveRecord* r = Record(drive);
    if (!r || t < 0 || !r->toc.HasTrack(t))
        return false;
    return (r->toc.entries[static_cast<std::size_t>(t - r->toc.first)].control &
            cd::kControlData) == 0;
}

// ---- Read position

bool CRynCdAudio::SetTrack(int drive, int t) {
    DriveRecord* r = Record(drive);
    if (!r || !r->toc.HasTrack(t))
        return false;
    r->currentTrack = t;
    r->currentAddress = TrackStart(drive, t);
    return true;
}

void CRynCdAudio::SeekFraction(int drive, float fraction) {
    DriveRecord* r = Record(drive);
    if (!r)
        return;
    int t = r->currentTrack;
    if (!r->toc.HasTrack(t))
        return;
    if (!(fraction >= 0.0f))
        fraction = 0.0f;  // also NaN
    fraction = std::min(fraction, 1.0f);
    std::int32_t start = TrackStart(drive, t);
    std::int32_t end = TrackEnd(drive, t);
    r->currentAddress =
        start + static_cast<std::int32_t>(std::trunc(static_cast<double>(end - start) * fraction));
}

void CRynCdAudio::SyncTrackFromAddress(int drive) {
    DriveRecord* r = Record(drive);
    if (!r || r->toc.TrackCount() == 0)
        return;
    std::int32_t address = r->currentAddress;
    for (int t = r->toc.last; t >= r->toc.first; --t) {
        if (TrackStart(drive, t) <= address) {
            r->currentTrack = t;
            return;
        }
    }
}

double CRynCdAudio::ElapsedSecondsInTrack(int drive) const {
    const DriveRecord* r = Record(drive);
    if (!r || !r->toc.HasTrack(r->currentTrack))
        return 0.0;
    return static_cast<double>(r->currentAddress - TrackStart(drive, r->currentTrack)) *
           cd::kSectorBytes / ::kBytesPerSecond;
}

int CRynCdAudio::CurrentTrack(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->currentTrack.load() : -1;
}

std::int32_t CRynCdAudio::CurrentAddress(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->currentAddress.load() : 0;
}

void CRynCdAudio::SetCurrentAddress(int drive, std::int32_t address) {
    if (DriveRecord* r = Record(drive))
        r->currentAddress = address;
}

// ---- Reading

void CRynCdAudio::SetErrorCorrection(int drive, bool on) {
    if (DriveRecord* r = Record(drive))
        r->errorCorrection = on;
}

bool CRynCdAudio::ErrorCorrection(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && r->errorCorrection;
}

std::int32_t CRynCdAudio::AudioSectorsFrom(const cd::CdToc& toc, std::int32_t address) {
    int count = toc.TrackCount();
    if (count == 0 || address < 0)
        return 0;
    std::int32_t limit = toc.entries[static_cast<std::size_t>(count)].start;  // lead-out
    for (int i = 0; i < count; ++i) {
        const cd::CdTocEntry& e = toc.entries[static_cast<std::size_t>(i)];
        if ((e.control & cd::kControlData) == 0)
            continue;
        std::int32_t end = toc.entries[static_cast<std::size_t>(i + 1)].start;
        if (address >= e.start && address < end)
            return 0;
        if (e.start > address)
            limit = std::min(limit, e.start);
    }
    return std::max<std::int32_t>(0, limit - address);
}

std::int32_t CRynCdAudio::ReadBlock(int deck, int drive, std::uint8_t* destination,
                                    bool& endOfTrack) {
    endOfTrack = false;
    DriveRecord* r = Record(drive);
    if (!r || !destination || deck < 0 || deck >= kDecks)
        return kUnexpected;

    // 1. Pace the drive: a drive that answers at once must not make its
    // time-critical reader hog the processor.
    double now = clock_->NowSeconds();
    if (now - r->lastReadTime < kPacingSeconds) {
        clock_->SleepMs(1);
        now = clock_->NowSeconds();
    }
    r->lastReadTime = now;

    // 2. End of track: tell the deck while the last two sectors are due; it
    // may move to its next track before anything is read.
    bool atEnd = false;
    {
        std::lock_guard<std::mutex> hold(r->lock);
        if (!r->handle)
            return kUnexpected;
        int t = r->currentTrack;
        if (r->toc.HasTrack(t)) {
            std::int32_t e = r->toc.entries[static_cast<std::size_t>(t - r->toc.first + 1)].start;
            std::int32_t address = r->currentAddress;
            atEnd = address == e - 1 || address == e;
        }
    }
    if (atEnd) {
        endOfTrack = true;
        if (const EndOfTrackHandler& tell = onEndOfTrack_[static_cast<std::size_t>(deck)])
            tell();
    }

    // 3. Read from the address as it now stands.
    std::uint8_t* buffer = readBuffers_[static_cast<std::size_t>(deck)].data();
    std::int32_t address = 0;
    int got = 0;
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
        {
            std::lock_guard<std::mutex> hold(r->lock);
            if (!r->handle)
                return kUnexpected;
            address = r->currentAddress;
            int frames = static_cast<int>(
                std::min<std::int32_t>(kBlockSectors, AudioSectorsFrom(r->toc, address)));
            if (frames <= 0)
                return kUnexpected;  // past the audio: no attempt can help
            got = r->handle->ReadAudio(address, frames, buffer, r->errorCorrection);
            got = std::min(got, frames);
        }
        if (got > 0)
            break;
        clock_->SleepMs(1);
    }
    if (got <= 0)
        return kUnexpected;

    // 4. Deliver: the sectors read, silence for any part of the block beyond them.
    std::size_t bytes = static_cast<std::size_t>(got) * cd::kSectorBytes;
    std::memcpy(destination, buffer, bytes);
    std::memset(destination + bytes, 0, static_cast<std::size_t>(kReadBytes) - bytes);
    r->currentAddress = address + got;
    return kOk;
}

// ---- Names

std::string CRynCdAudio::DiscTitle(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->title : std::string();
}

void CRynCdAudio::SetDiscTitle(int drive, const std::string& title) {
    if (DriveRecord* r = Record(drive))
        r->title = title;
}

std::string CRynCdAudio::DiscInfo(int drive) const {
    const DriveRecord* r = Record(drive);
    return r ? r->discInfo : std::string();
}

void CRynCdAudio::SetDiscInfo(int drive, const std::string& info) {
    if (DriveRecord* r = Record(drive))
        r->discInfo = info;
}

std::string CRynCdAudio::TrackName(int drive, int t) const {
    const DriveRecord* r = Record(drive);
    if (!r || t < 0 || t >= kTrackNames)
        return {};
    return r->trackNames[static_cast<std::size_t>(t)];
}

void CRynCdAudio::SetTrackName(int drive, int t, const std::string& name) {
    DriveRecord* r = Record(drive);
    if (r && t >= 0 && t < kTrackNames)
        r->trackNames[static_cast<std::size_t>(t)] = name;
}

bool CRynCdAudio::TrackNamesFound(int drive) const {
    const DriveRecord* r = Record(drive);
    return r && r->namesFound;
}

void CRynCdAudio::SetTrackNamesFound(int drive, bool found) {
    if (DriveRecord* r = Record(drive))
        r->namesFound = found;
}
