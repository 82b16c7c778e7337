// The audio files a play list takes from a folder scan and offers in its file
// dialogs. This list must match the extensions the file decoder accepts
// (src/sources/AudioFormats.h): add a format in both places.
#pragma once

#include <string_view>

// The dialog pattern and, lower-cased, the text a scanned file's extension is
// looked up in. The look-up is a plain substring test, so ".mp" or a name
// without an extension (empty text) is taken too: a folder scan errs on the
// side of listing a file, and the deck reports what it cannot decode.
inline constexpr std::string_view kAudioFilePattern =
    "*.wav; *.mp3; *.wma; *.ogg; *.flac; *.opus; *.m4a; *.aac";

// True when a folder scan takes a file whose lower-cased extension, dot
// included, is `lowerExtension` ("" when the name has none).
inline bool ScanTakesExtension(std::string_view lowerExtension) {
    return kAudioFilePattern.find(lowerExtension) != std::string_view::npos;
}
