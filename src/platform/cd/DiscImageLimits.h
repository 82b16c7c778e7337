// Checks a disc image before libcdio opens it, so that a hostile or broken
// sheet cannot make the CD layer read gigabytes, block on a pipe or loop.
//
// A CD holds at most 100 minutes of addresses (MSF 99:59:74), 450000 sectors
// of 2352 bytes: a data file larger than that is not a CD image. A cue or toc
// sheet for 99 tracks with CD-Text fits in a few kilobytes; 256 KB is a
// generous bound. Every file a sheet names (FILE, AUDIOFILE, DATAFILE lines,
// resolved from the sheet's folder) must be a regular file within the image
// bound and must not be the sheet itself. A sheet may declare at most 99
// tracks, as a CD holds: libcdio's parsers write past their track table
// when a sheet declares more, and its cue parser reads freed memory when a
// TRACK comes before the first FILE (a toc sheet names its files inside
// its tracks, so there that order is normal) or when its tracks do not count
// from 1 (a first track numbered 80 reads freed memory too); real cue sheets
// number their tracks 1, 2, 3 ...
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cd {

constexpr std::int32_t kMaxDiscSectors = 100 * 60 * 75;
constexpr std::int64_t kMaxImageBytes = std::int64_t{kMaxDiscSectors} * 2352;
constexpr std::int64_t kMaxSheetBytes = 256 * 1024;
// Files a sheet may name: one per track of a full disc, plus one.
constexpr std::size_t kMaxSheetFiles = 100;
constexpr int kMaxSheetTracks = 99;

// What a cue or toc sheet declares: the file names its FILE, AUDIOFILE and
// DATAFILE lines give (quoted or bare, as written; at most kMaxSheetFiles + 1
// of them) and the number of its TRACK lines.
struct SheetContents {
    std::vector<std::string> files;
    int tracks = 0;
    bool trackBeforeFile = false;  // a TRACK line comes before any file line
    bool tracksInOrder = true;     // the n-th TRACK line is numbered n (cue sheets)
};
SheetContents ReadSheet(std::string_view sheet);

// True when `path` (a .cue, .toc or .nrg image) keeps every bound above.
// Device paths (anything else) are not images and pass.
bool IsAcceptableDiscImage(const std::string& path);

}  // namespace cd
