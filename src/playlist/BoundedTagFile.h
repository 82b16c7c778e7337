// TagLib opened with bounds, for reading titles from files that may be
// hostile. Two things TagLib would otherwise do on a crafted file:
// - read a tag or chunk whole at the size it declares, up to the length of
//   the file: every read is cut to kMaxTagReadBytes (a tag larger than that
//   reads as damaged, not as gigabytes of memory);
// - inflate a compressed ID3v2 frame without limit: deflate reaches about
//   1000:1, so a compressed frame may be at most kMaxCompressedFrameBytes
//   (at most some 64 MB inflated); a larger one, in any ID3v2 tag (MP3,
//   FLAC, the ID3 chunk of a WAV or AIFF file), refuses the file's title.
#pragma once

#include <memory>
#include <string>

namespace TagLib {
class File;
}

// 32 MB: a tag with a large cover picture is a few megabytes.
constexpr unsigned long kMaxTagReadBytes = 32ul << 20;
constexpr unsigned int kMaxCompressedFrameBytes = 64u << 10;

// The title of the file's tags (as TagLib's Tag::title, UTF-8), read within
// the bounds above. False when the file cannot be read, has no tag, or a
// bound refused it.
bool ReadBoundedTagTitle(const std::string& path, std::string* title);
