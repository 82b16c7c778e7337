// Track titles from the tags inside audio files.
#pragma once

#include <string>

// The ID3v1 title: when the file is longer than 128 bytes and its last 128
// bytes begin with "TAG", the 30 bytes after "TAG" up to the first zero byte
// (trailing blanks of the fixed-width field dropped; Latin-1 unless valid
// UTF-8). False when the file cannot be read, has no such tag, or the title is empty.
bool ReadId3v1Title(const std::string& path, std::string* title);

// The title TagLib finds in the file's tags (ID3v2, Vorbis comments, ASF,
// MP4, APE, RIFF INFO ...), as UTF-8, within the bounds of BoundedTagFile.h.
// False when none, a bound refused the file, or the file is
// unreadable or not longer than 128 bytes.
bool ReadTagLibTitle(const std::string& path, std::string* title);

// The ID3v1 title, else TagLib's. Only regular files longer than 128 bytes
// are read; other paths (folders, FIFOs, "Track 3") give false.
bool ReadTagTitle(const std::string& path, std::string* title);
