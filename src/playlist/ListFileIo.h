// Reading a list file with a size bound, and saving one so that a crash
// while saving never loses the previous file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Most bytes read from one list file (32 MiB): about three times a
// 100000-entry M3U. The rest of a larger file is ignored.
inline constexpr std::size_t kMaxListFileBytes = std::size_t{32} << 20;

enum class ReadStatus { Ok, CannotOpen, NotARegularFile, ReadError };

// Reads up to `maxBytes` of a regular file into `bytes`; `truncated` tells
// whether more was there. Never blocks on FIFOs or devices (they are refused).
ReadStatus ReadFileCapped(const std::string& path, std::size_t maxBytes, std::string* bytes,
                          bool* truncated);

// Writes `bytes` to a temporary file in the target's folder, flushes it to
// disk, and renames it over `path` (then syncs the folder). On any failure
// the temporary file is removed and `path` is left as it was. New files get
// mode 0666 less the umask. False on failure.
bool WriteFileAtomically(const std::string& path, std::string_view bytes);
