// Path text helpers of the play list. Paths are UTF-8 with "/" separators.
#pragma once

#include <string>
#include <string_view>

// The file name part of a path: after the last "/".
std::string_view FileNameOf(std::string_view path);

// The file name without its extension ("/m/Intro.mix.mp3" -> "Intro.mix").
std::string FileTitleOf(std::string_view path);

// The extension of the file name, dot included ("" when none): ".MP3".
std::string ExtensionOf(std::string_view path);

// ASCII letters lower-cased, other bytes unchanged.
std::string LowerAscii(std::string_view text);

// The folder that holds `listFile`, made absolute against the working folder
// ("" when that cannot be found).
std::string ListFolderOf(const std::string& listFile);

// A path as written in a list file, made usable: absolute paths and URLs
// ("http://...") are kept, "file://" URLs become their (percent-decoded)
// path, and a relative path is joined to `listFolder` and normalised
// ("a/../b.mp3"). Returns "" for an empty path.
std::string ResolveListPath(std::string_view listFolder, std::string_view written);
