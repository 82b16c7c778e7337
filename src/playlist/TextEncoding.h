// Text read from list files and tags: Mixora keeps every string as UTF-8.
#pragma once

#include <string>
#include <string_view>

// True when `bytes` is well-formed UTF-8 (no overlongs, no surrogates, at most U+10FFFF).
bool IsValidUtf8(std::string_view bytes);

// Each byte as the Latin-1 character of that code, encoded as UTF-8.
std::string Latin1ToUtf8(std::string_view bytes);

// `bytes` unchanged when it is valid UTF-8, otherwise read as Latin-1. A
// leading UTF-8 byte-order mark is dropped.
std::string TextAsUtf8(std::string_view bytes);
