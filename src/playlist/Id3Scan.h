// A look at a file's ID3v2 tags before TagLib parses them: finds each tag
// (at the start of the file, or as the "ID3 " / "id3 " chunk of a RIFF WAVE
// or AIFF file) and walks its frame headers, without inflating anything.
// TagLib inflates a compressed frame whole and takes no frame factory of
// ours for WAV and AIFF files; a file whose tag holds a compressed frame
// larger than a limit is refused before TagLib sees it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// True when the ID3v2 tag starting at `tag` (its 10-byte header first; the
// view may end before the tag does) has a compressed frame whose stored size
// exceeds `limitBytes`. Versions 2.3 and 2.4; a whole-tag unsynchronisation
// is undone first. A malformed tag is not oversized: TagLib refuses it.
bool TagHasOversizedCompressedFrame(std::string_view tag, std::uint32_t limitBytes);

// True when any ID3v2 tag of the file at `path` has such a frame. Reads at
// most `maxTagBytes` of a tag.
bool FileHasOversizedCompressedFrame(const std::string& path, std::uint32_t limitBytes,
                                     std::uint32_t maxTagBytes);
