#include "deck/source/DeckSource.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>

#include "core/EngineState.h"
#include "playlist/PlayList.h"
#include "sources/CRynCdAudio.h"
#include "sources/CRynFileDecoder.h"

namespace {

// Returned by ReadBlock when the deck has no source to read (the sources'
// own E_UNEXPECTED).
constexpr int kNoSource = static_cast<int>(0x8000FFFF);

// A position on the progress slide as the sources take it: 0 … 1, anything
// else (NaN included) held to the nearest end.
float ClampFraction(double fraction) {
    if (!(fraction >= 0.0))
        return 0.0f;
    if (fraction > 1.0)
        return 1.0f;
    return static_cast<float>(fraction);
}

bool FileExists(const std::string& path) {
    std::error_code ec;
    return std::filesystem::exists(path, ec);
}

DeckSharedState* SharedOf(int deck) {
    if (deck < 0 || deck >= kDeckCount)
        return nullptr;
    return &Engine().decks[static_cast<std::size_t>(deck)];
}

// The sources' end of a track, on the deck's reader thread: the deck window
// is sent UWM_END_OF_TRACK and answers nonzero when it has opened the
// following file in the decoder (a CD's answer is not used).
LResult TellEndOfTrack(int deck) {
    const DeckSharedState* s = SharedOf(deck);
    return s ? SendAppMessage(s->deckWindow, UWM_END_OF_TRACK, 0, 0) : 0;
}

}  // namespace

DeckSource::DeckSource(int deck, CRynFileDecoder& decoder, PlayList& list, CRynCdAudio* cd)
    : deck_(deck), decoder_(decoder), list_(list), cd_(cd) {
    decoder_.SetEndOfTrackHandler([deck] { return static_cast<int>(TellEndOfTrack(deck)); });
    if (cd_)
        cd_->SetEndOfTrackHandler(deck, [deck] { TellEndOfTrack(deck); });
}

// The decoder and the CD reader may already be gone at destruction: the
// deck calls Close() at shutdown while both still live.
DeckSource::~DeckSource() = default;

// --- Mode and drive ---

void DeckSource::SetMode(int mode) {
    if (mode != kCdMode && mode != kFileMode)
        return;
    mode_ = mode;
    if (DeckSharedState* s = SharedOf(deck_))
        s->sourceType.store(mode);
    list_.SetMode(mode == kCdMode ? PlayList::kCdMode : PlayList::kFileMode);
}

bool DeckSource::SelectDrive(int drive) {
    if (drive < -1)
        drive = -1;
    if (drive == drive_)
        return false;
    if (drive != -1 && !cd_)
        return false;  // no CD reader: only "no drive" can be held
    if (drive_ != -1 && cd_)
        cd_->CloseDrive(drive_);
    drive_ = drive;
    if (DeckSharedState* s = SharedOf(deck_))
        s->cdDrive.store(drive);
    // A drive that does not open is still this deck's: it simply has no
    // disc to offer (FillListFromDisc says so).
    if (drive_ != -1)
        cd_->OpenDrive(drive_);
    return true;
}

bool DeckSource::FillListFromDisc() {
    if (!cd_ || drive_ == -1 || !cd_->IsOpen(drive_) || !cd_->ReadToc(drive_)) {
        list_.Clear();
        return false;
    }
    CRynCdAudio* cd = cd_;
    const int drive = drive_;
    list_.ShowCdTracks(cd->TrackCount(drive),
                       [cd, drive](int t) { return cd->TrackLengthSeconds(drive, t); });
    return true;
}

void DeckSource::SetErrorCorrection(bool on) {
    if (cd_ && drive_ != -1)
        cd_->SetErrorCorrection(drive_, on);
}

// --- Loading and position ---

bool DeckSource::OpenInDecoder(const std::string& path) {
    previousRate_ = decoder_.SampleRate();
    const bool opened = decoder_.Open(path);
    sourcePath_ = opened ? path : std::string();
    return opened;
}

DeckSource::LoadStatus DeckSource::LoadCurrent() {
    if (mode_ == kFileMode) {
        const std::string path = list_.CurrentPath();
        if (path.empty())
            return LoadStatus::NoEntry;
        if (!FileExists(path))
            return LoadStatus::FileMissing;
        if (!OpenInDecoder(path))
            return LoadStatus::OpenFailed;
        list_.SetCurrentDuration(static_cast<float>(decoder_.DurationSeconds()));
        return LoadStatus::Ok;
    }
    if (!cd_ || drive_ == -1 || !cd_->IsOpen(drive_))
        return LoadStatus::NoDrive;
    const std::int32_t track = list_.CurrentItemNumber();
    if (track < 0)
        return LoadStatus::NoEntry;
    if (!cd_->IsAudioTrack(drive_, track))
        return LoadStatus::DataTrack;
    if (!cd_->SetTrack(drive_, track))
        return LoadStatus::DataTrack;  // not on the disc: nothing to play either
    return LoadStatus::Ok;
}

void DeckSource::SeekFraction(double fraction, bool endPending) {
    const float f = ClampFraction(fraction);
    if (mode_ == kCdMode) {
        if (cd_ && drive_ != -1)
            cd_->SeekFraction(drive_, f);
        return;
    }
    // Another file than the list's: open the list's, unless the decoder holds
    // the joined next file whose start has not been heard yet. The list's own
    // file after its stream ran out (the decoder closed itself) opens again.
    const std::string path = list_.CurrentPath();
    if (!path.empty()) {
        const bool other = decoder_.FileName() != path;
        if ((other && !endPending) || (!other && !decoder_.IsOpen()))
            OpenInDecoder(path);
    }
    decoder_.SeekFraction(f);
}

double DeckSource::SourceSeconds() const {
    if (mode_ == kCdMode)
        return cd_ && drive_ != -1 ? cd_->ElapsedSecondsInTrack(drive_) : 0.0;
    return decoder_.ElapsedSeconds();
}

double DeckSource::TrackSeconds() const {
    const float seconds = list_.CurrentDuration();
    return seconds > 0.0f ? static_cast<double>(seconds) : 0.0;
}

int DeckSource::Rate() const {
    return mode_ == kCdMode ? kCdRate : decoder_.SampleRate();
}

// --- End of track ---

bool DeckSource::OpenNextForJoin() {
    if (mode_ != kFileMode)
        return false;
    const std::string next = list_.NextPath();
    if (next.empty() || !OpenInDecoder(next))
        return false;
    // The entry after the current one is now the decoder's: its length is known.
    list_.SetDuration(list_.CurrentIndex() + 1, static_cast<float>(decoder_.DurationSeconds()));
    return true;
}

DeckSource::EndHeard DeckSource::OnEndHeard() {
    if (mode_ == kCdMode) {
        const std::int32_t nextTrack = list_.ItemNumber(list_.CurrentIndex() + 1);
        if (list_.NextIsConsecutive() && cd_ && drive_ != -1 &&
            cd_->IsAudioTrack(drive_, nextTrack)) {
            // The drive has read on into that track already.
            cd_->SyncTrackFromAddress(drive_);
            list_.Next();
            return EndHeard::RanOn;
        }
        return list_.Next() ? EndHeard::LoadNext : EndHeard::Ended;
    }
    if (!list_.Next())
        return EndHeard::Ended;
    // The decoder went on into this entry only when the join opened it.
    if (sourcePath_.empty() || sourcePath_ != list_.CurrentPath())
        return EndHeard::LoadNext;
    return decoder_.SampleRate() != previousRate_ ? EndHeard::RanOnNewRate : EndHeard::RanOn;
}

// --- DeckBlockSource (reader threads) ---

int DeckSource::ReadBlock(std::uint8_t* dest, bool* endOfStream) {
    if (endOfStream)
        *endOfStream = false;
    if (!dest)
        return kNoSource;
    if (mode_ == kFileMode) {
        int bytesDelivered = 0;
        bool end = false;
        const std::int32_t status = decoder_.ReadBlock(dest, bytesDelivered, end);
        if (endOfStream)
            *endOfStream = status == CRynFileDecoder::kOk && end;
        return static_cast<int>(status);
    }
    if (!cd_ || drive_ == -1)
        return kNoSource;
    // The drive's end of track only informs (the deck has been told by
    // message); the stream itself goes on.
    bool endOfTrack = false;
    return static_cast<int>(cd_->ReadBlock(deck_, drive_, dest, endOfTrack));
}

void DeckSource::Rewind(int blocks) {
    if (mode_ == kFileMode)
        decoder_.Rewind(blocks);
}

namespace {
constexpr int kFramesPerSector = 588;  // 2352 bytes of 16-bit stereo
}

std::int64_t DeckSource::PositionFrames() const {
    if (mode_ == kFileMode)
        return decoder_.StreamFrame();
    if (!cd_ || drive_ == -1)
        return 0;
    return std::int64_t(cd_->CurrentAddress(drive_)) * kFramesPerSector;
}

void DeckSource::SeekFrames(std::int64_t frame) {
    if (mode_ == kFileMode) {
        const std::string path = list_.CurrentPath();
        if (!decoder_.IsOpen() && !path.empty() && decoder_.FileName() == path)
            OpenInDecoder(path);
        decoder_.SeekFrame(frame);
        return;
    }
    if (!cd_ || drive_ == -1)
        return;
    const int track = cd_->CurrentTrack(drive_);
    const std::int32_t first = track >= 0 ? cd_->TrackStart(drive_, track) : 0;
    const std::int32_t last = cd_->TrackEnd(drive_, cd_->LastTrack(drive_));
    const auto sector = static_cast<std::int32_t>(frame / kFramesPerSector);
    cd_->SetCurrentAddress(drive_, std::clamp(sector, first, std::max(first, last)));
}

int DeckSource::StepBack(int blocks) {
    if (blocks <= 0)
        return 0;
    if (mode_ == kFileMode) {
        const std::int64_t whole = decoder_.StreamFrame() / kBlockFrames;
        const int n = static_cast<int>(std::min<std::int64_t>(blocks, whole));
        decoder_.Rewind(n);
        return n;
    }
    if (!cd_ || drive_ == -1)
        return 0;
    const int track = cd_->CurrentTrack(drive_);
    const std::int32_t first = track >= 0 ? cd_->TrackStart(drive_, track) : 0;
    const std::int32_t address = cd_->CurrentAddress(drive_);
    const int n = std::clamp((address - first) / kBlockSectors, 0, blocks);
    cd_->SetCurrentAddress(drive_, address - n * kBlockSectors);
    return n;
}

void DeckSource::Close() {
    decoder_.Close();
    sourcePath_.clear();
    SelectDrive(-1);
}

const char* DeckSource::LoadFailureText(LoadStatus status) {
    switch (status) {
        case LoadStatus::Ok:
            return "";
        case LoadStatus::NoEntry:
            return kNoTrack;
        case LoadStatus::FileMissing:
            return kFileMissing;
        case LoadStatus::OpenFailed:
            return kCannotPlay;
        case LoadStatus::DataTrack:
            return kDataTrack;
        case LoadStatus::NoDrive:
            return kNoDrive;
    }
    return "";
}
