// The audio files Mixora opens: the one list the play list, its folder scan
// and the file dialogs take their extensions and filter texts from.
//
// WAV, MP3, WMA and OGG (Vorbis) are the core formats; FLAC, Opus and
// M4A/AAC decode through the same media layer and are accepted as well.
#pragma once

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

namespace audioformats {

// Lower-case extensions with their dot.
inline constexpr std::array<std::string_view, 9> kExtensions = {
    ".wav", ".mp3", ".wma", ".ogg", ".flac", ".opus", ".oga", ".m4a", ".aac"};

// The pattern as the file dialogs and the folder scan use it.
inline constexpr std::string_view kPattern =
    "*.wav; *.mp3; *.wma; *.ogg; *.flac; *.opus; *.oga; *.m4a; *.aac";

// A Qt file-dialog filter: "Audio files (*.wav *.mp3 ...)".
inline constexpr std::string_view kDialogFilter =
    "Audio files (*.wav *.mp3 *.wma *.ogg *.flac *.opus *.oga *.m4a *.aac)";
inline constexpr std::string_view kAllFilesFilter = "All files (*)";

// The extension of a path, dot included, lower-cased; empty when none.
inline std::string ExtensionOf(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash))
        return {};
    std::string ext(path.substr(dot));
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return ext;
}

// True for a file whose extension is one of kExtensions (any case).
inline bool IsAudioFile(std::string_view path) {
    const std::string ext = ExtensionOf(path);
    return std::find(kExtensions.begin(), kExtensions.end(), ext) != kExtensions.end();
}

}  // namespace audioformats
