// CRynCdAudio: the one CD reader of the program. It lists the CD drives (and
// disc images), opens a drive, reads its table of contents, keeps each
// drive's current track and address, and hands out the sound in the same
// 4704-byte blocks as the file decoder: two CD sectors a read.
//
// Addresses are sector numbers (2352 bytes, 1/75 s each) as the disc's table
// of contents gives them. Track numbers are the disc's own (normally from 1).
// Drive indices are positions in the drive list, 0 .. DriveCount() - 1; any
// other index, like a drive that is not open, finds nothing.
//
// Threads: ReadBlock runs on the decks' reader threads, everything else on
// the window thread. A drive belongs to one deck at a time; each deck reads
// through a buffer of its own, and a per-drive lock keeps a drive's handle
// and table of contents steady while a read uses them. A deck's end-of-track
// handler is called with no lock held, so the deck may change track in it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/PcmFormat.h"
#include "platform/cd/CdBackend.h"
#include "sources/CdClock.h"

class CRynCdAudio {
  public:
    static constexpr std::int32_t kOk = 0;
    static constexpr std::int32_t kUnexpected = static_cast<std::int32_t>(0x8000FFFF);
    static constexpr int kReadBytes = kBlockSectors * cd::kSectorBytes;
    static constexpr int kReadAttempts = 10;
    static constexpr double kPacingSeconds = 0.01;  // least time between reads of one drive
    static constexpr int kTrackNames = 100;
    static constexpr int kDecks = 2;

    // The system's drives and the MIXORA_CD_IMAGES disc images, on the real clock.
    CRynCdAudio();
    CRynCdAudio(std::unique_ptr<cd::CdBackend> backend, std::unique_ptr<CdClock> clock);
    ~CRynCdAudio();  // closes every drive
    CRynCdAudio(const CRynCdAudio&) = delete;
    CRynCdAudio& operator=(const CRynCdAudio&) = delete;

    // ---- Drives
    int DriveCount() const { return static_cast<int>(drives_.size()); }
    // Identification shown in the decks' drive choosers; empty for a bad index.
    std::string DriveName(int drive) const;
    // The drive's device path (or image path); "unknown" for a bad index.
    std::string DriveRoot(int drive) const;
    // Opens (or reopens) the drive and reads its TOC; the current address
    // goes to 0 and the track to -1. False when the drive cannot be opened.
    bool OpenDrive(int drive);
    void CloseDrive(int drive);
    bool IsOpen(int drive) const;

    // ---- Table of contents
    // Reads the TOC again; false when there is no readable disc (the TOC is
    // then empty: no tracks).
    bool ReadToc(int drive);
    int TrackCount(int drive) const;
    int FirstTrack(int drive) const;  // 0 without a TOC
    int LastTrack(int drive) const;
    // Start and end (the next track's start, or the lead-out) as addresses;
    // 0 for a track not on the disc.
    std::int32_t TrackStart(int drive, int t) const;
    std::int32_t TrackEnd(int drive, int t) const;
    // (end - start) / 75; callers wanting whole seconds truncate.
    double TrackLengthSeconds(int drive, int t) const;
    // True when the track's data bit (0x04 of its ADR/control byte) is clear.
    bool IsAudioTrack(int drive, int t) const;

    // ---- Read position
    // False (and nothing changes) when t is not on the disc; else the track
    // becomes current and the address its start.
    bool SetTrack(int drive, int t);
    // Address := start + trunc((end - start) * fraction) in the current
    // track; fraction clamped to 0 .. 1.
    void SeekFraction(int drive, float fraction);
    // Current track := the highest track whose start is not above the
    // current address (unchanged when none is).
    void SyncTrackFromAddress(int drive);
    double ElapsedSecondsInTrack(int drive) const;  // 0 without a current track
    int CurrentTrack(int drive) const;              // -1 when none
    std::int32_t CurrentAddress(int drive) const;
    void SetCurrentAddress(int drive, std::int32_t address);

    // ---- Reading
    // "CD Error Correction": verified, repaired reads (slower).
    void SetErrorCorrection(int drive, bool on);
    bool ErrorCorrection(int drive) const;
    // Reads the block at the current address into destination (4704 bytes)
    // for deck 0 or 1. Paces the drive to one read per 10 ms; at addresses
    // e - 1 and e (e = end of the current track) sets endOfTrack and first
    // calls the deck's end-of-track handler (which may change the track);
    // then reads from the address as it then stands, up to 10
    // attempts 1 ms apart. On success copies the sectors read, advances the
    // address by them and returns kOk; a read stops at the lead-out or a data
    // track, and the rest of the block is then silence. kUnexpected when
    // every attempt failed, nothing is left to read there, or the drive is
    // not open: destination and address are then untouched.
    std::int32_t ReadBlock(int deck, int drive, std::uint8_t* destination, bool& endOfTrack);
    // Deck 0 or 1's end-of-track handler, called by ReadBlock on that deck's
    // reader thread with no lock held; it may change the drive's track before
    // the read goes on. Install it (window thread) before the deck's reader
    // runs; another deck index is ignored.
    using EndOfTrackHandler = std::function<void()>;
    void SetEndOfTrackHandler(int deck, EndOfTrackHandler handler);

    // ---- Names (filled by the CDDB lookup; empty until then)
    std::string DiscTitle(int drive) const;
    void SetDiscTitle(int drive, const std::string& title);
    std::string DiscInfo(int drive) const;
    void SetDiscInfo(int drive, const std::string& info);
    std::string TrackName(int drive, int t) const;  // t 0 .. 99
    void SetTrackName(int drive, int t, const std::string& name);
    bool TrackNamesFound(int drive) const;
    void SetTrackNamesFound(int drive, bool found);

  private:
    struct DriveRecord {
        cd::CdDriveInfo info;
        mutable std::mutex lock;  // guards handle and toc against a reader
        std::unique_ptr<cd::CdDrive> handle;
        cd::CdToc toc;
        std::atomic<std::int32_t> currentAddress{0};
        std::atomic<std::int32_t> currentTrack{-1};
        std::atomic<bool> errorCorrection{false};
        double lastReadTime = 0;  // seconds on the clock; the drive's reader only
        std::string title;
        std::string discInfo;
        std::array<std::string, kTrackNames> trackNames;
        bool namesFound = false;
    };

    DriveRecord* Record(int drive);
    const DriveRecord* Record(int drive) const;
    // How many sectors from `address` may be read as audio: up to the
    // lead-out or the next data track; 0 inside a data track.
    static std::int32_t AudioSectorsFrom(const cd::CdToc& toc, std::int32_t address);

    std::unique_ptr<cd::CdBackend> backend_;
    std::unique_ptr<CdClock> clock_;
    std::vector<std::unique_ptr<DriveRecord>> drives_;
    // One read buffer per deck, so two decks on two drives never share one;
    // allocated only when there is a drive.
    std::vector<std::array<std::uint8_t, kReadBytes>> readBuffers_;
    std::array<EndOfTrackHandler, kDecks> onEndOfTrack_;
};
