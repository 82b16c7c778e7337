// Finding the audio files below a folder for a play list.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

// Most files one scan lists, and the deepest folder nesting it enters: bounds
// for a scan of "/" or of a pathological tree.
inline constexpr std::size_t kMaxScannedFiles = 100000;
inline constexpr int kMaxScanDepth = 64;

struct FolderScanResult {
    std::size_t added = 0;   // paths appended
    bool truncated = false;  // stopped at the file bound
    bool opened = false;     // the folder itself could be listed
};

// Depth first: the folder's names in byte order; hidden names (leading ".")
// are passed over; a sub-folder (symbolic links followed, each folder entered
// once, so link loops end) is scanned in place; a file whose lower-cased
// extension passes ScanTakesExtension has its full path ("/"-joined)
// appended to `pending`. Unreadable folders are passed over. At most
// `maxFiles` paths are appended.
FolderScanResult ScanAudioFolder(const std::string& folder, std::deque<std::string>* pending,
                                 std::size_t maxFiles = kMaxScannedFiles);
