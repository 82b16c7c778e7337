// Checks a disc image before libcdio opens it, so that a hostile or broken
// sheet cannot make the CD layer read gigabytes, block on a pipe or loop.
//
// A CD holds at most 100 minutes of addresses (MSF 99:59:74), 450000 sectors
// of 2352 bytes: a data file larger than that is not a CD image. A cue or toc
// sheet for 99 tracks with CD-Text fits in a few kilobytes; 256 KB is a
// generous bound. Every file a sheet names (FILE, AUDIOFILE, DATAFILE lines,
// resolved from the sheet's folder) must be a regular file within the image
// bound and must not be the sheet itself.
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

// The file names a cue or toc sheet's FILE, AUDIOFILE and DATAFILE lines
// give (quoted or bare), as written; at most kMaxSheetFiles + 1 of them.
std::vector<std::string> SheetFileNames(std::string_view sheet);

// True when `path` (a .cue, .toc or .nrg image) keeps every bound above.
// Device paths (anything else) are not images and pass.
bool IsAcceptableDiscImage(const std::string& path);

}  // namespace cd
