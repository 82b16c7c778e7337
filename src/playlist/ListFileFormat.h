// M3U and PLS play-list files as text: what a list file yields and what is
// written for a list. No file access here (see ListFileIo.h); the text is
// UTF-8 (see TextAsUtf8) with "\n" or "\r\n" line ends.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// One track as read from or written to a list file.
struct ListFileEntry {
    std::string path;   // resolved: absolute path or URL
    std::string title;  // "" when the file gives none
    float duration;     // seconds, kUnknownDuration when not known
};

struct ListFileParse {
    bool headerOk = false;   // the first line was the format's header
    bool truncated = false;  // stopped at maxEntries
    std::vector<ListFileEntry> entries;
};

// Most entries one list file adds: a bound on memory for hostile files, far
// beyond any real DJ list (a 100000-track M3U is about 10 MB).
inline constexpr std::size_t kMaxListFileEntries = 100000;

// M3U: the first line must begin with "#EXTM3U". A line beginning with
// "#EXTINF:" gives the duration (atoi rules, up to the first comma after the
// 8 characters) and the title (after that comma; "" without a comma, and then
// the duration is unknown too). The entry's path is the next line that is
// neither empty nor a "#" comment; another "#EXTINF:" line first drops the
// entry. Lines that are not "#EXTINF:" lines are passed over, so a path line
// without its "#EXTINF:" line is not read. Relative paths are resolved
// against `listFolder`.
ListFileParse ParseM3u(std::string_view text, std::string_view listFolder,
                       std::size_t maxEntries = kMaxListFileEntries);

// PLS: the first line must begin with "[playlist]". A line beginning with
// "File" with "=" after those 4 characters gives the path; the next line, if
// it begins with "Title" and has "=" after that, the title; the line after,
// if it begins with "Length" and has "=", the duration. Both of those lines
// are consumed whatever they hold (a group without its Title line loses the
// next File line). Other lines are passed over.
ListFileParse ParsePls(std::string_view text, std::string_view listFolder,
                       std::size_t maxEntries = kMaxListFileEntries);

// "#EXTM3U", then per entry "#EXTINF:<whole seconds or -1>,<title>" and the path.
std::string WriteM3u(const std::vector<ListFileEntry>& entries);

// "[playlist]", per entry n (from 1) "File<n>=", "Title<n>=", "Length<n>=",
// then "NumberOfEntries=<count>" and "Version=2".
std::string WritePls(const std::vector<ListFileEntry>& entries);

// Whole seconds by C atoi rules (leading blanks, sign, digits; 0 when none),
// as a duration: negative means unknown, large values are clamped.
float DurationFromText(std::string_view text);
