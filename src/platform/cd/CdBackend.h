// CD access behind a small interface: the list of drives, a drive's table of
// contents, and raw audio reads by sector address.
//
// Units: a sector (CD frame) holds 2352 bytes of 16-bit little-endian stereo
// at 44100 Hz; 75 sectors make one second. Addresses are the disc's own
// logical sector numbers counted from 0 at the start of the program area (the
// first track of a normal audio disc starts at 0; CDDB disc ids add the
// 150-sector pregap to them).
//
// LibCdioBackend reads real drives and CUE/BIN or TOC/BIN disc images;
// MemoryCdBackend is the in-tree test double.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/PcmFormat.h"

namespace cd {

constexpr int kSectorBytes = kCdSectorBytes;  // one CD frame of audio
constexpr int kSectorsPerSecond = kCdSectorsPerSecond;
constexpr int kMaxDrives = 8;                // drives plus disc images listed
constexpr std::uint8_t kControlData = 0x04;  // ADR/control bit: data track
constexpr std::uint8_t kAdrPosition = 0x10;  // ADR 1 (position), as drives report it

// One table-of-contents entry: the track's start address and its ADR/control
// byte (ADR in the high nibble, control bits in the low: 0x04 data,
// 0x02 digital copy permitted, 0x01 pre-emphasis).
struct CdTocEntry {
    std::uint8_t control = kAdrPosition;
    std::uint8_t track = 0;  // disc track number; 0xAA for the lead-out
    std::int32_t start = 0;  // sector address
};

// The disc's table of contents: entries[t - first] for tracks first..last,
// then one more entry holding the lead-out, so the end of track t is the
// start of the entry after it.
struct CdToc {
    int first = 0;
    int last = 0;
    std::vector<CdTocEntry> entries;

    int TrackCount() const { return entries.empty() ? 0 : last - first + 1; }
    bool HasTrack(int t) const { return TrackCount() > 0 && t >= first && t <= last; }
};

// A drive as the system lists it.
struct CdDriveInfo {
    std::string name;    // identification shown to the user ("HL-DT-ST DVDRAM GH24NSD1 LG00")
    std::string device;  // device path or disc image path; the drive's root
};

// An open drive. One thread at a time (callers serialise).
class CdDrive {
  public:
    virtual ~CdDrive() = default;
    // Reads the table of contents; false when there is no readable disc.
    virtual bool ReadToc(CdToc& toc) = 0;
    // Reads `frames` sectors of raw audio from address `start` into `dest`
    // (frames * 2352 bytes). With errorCorrection the read is verified and
    // repaired (overlapping reads, jitter correction). Returns the number of
    // sectors delivered (> 0) or 0 when the read failed.
    virtual int ReadAudio(std::int32_t start, int frames, std::uint8_t* dest,
                          bool errorCorrection) = 0;
};

class CdBackend {
  public:
    virtual ~CdBackend() = default;
    // At most kMaxDrives entries; empty when there is no drive at all.
    virtual std::vector<CdDriveInfo> ListDrives() = 0;
    // Opens a listed drive; null when it cannot be opened.
    virtual std::unique_ptr<CdDrive> Open(const CdDriveInfo& drive) = 0;
};

}  // namespace cd
