// Fuzzes the M3U and PLS readers on arbitrary bytes, as a list file's
// contents: decoding (UTF-8 or Latin-1), both parsers, and a write/read round
// trip of what they yield, which must give back the same paths and durations.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "playlist/ListFileFormat.h"
#include "playlist/TextEncoding.h"

namespace {

// The same entries read back from the text written for them.
void CheckRoundTrip(const ListFileParse& first, bool m3u) {
    const std::string text = m3u ? WriteM3u(first.entries) : WritePls(first.entries);
    const ListFileParse second = m3u ? ParseM3u(text, "/other") : ParsePls(text, "/other");
    if (!second.headerOk || second.entries.size() != first.entries.size())
        std::abort();
    for (std::size_t i = 0; i < first.entries.size(); ++i) {
        if (second.entries[i].path != first.entries[i].path)
            std::abort();
        if (second.entries[i].duration != first.entries[i].duration)
            std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text =
        TextAsUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!IsValidUtf8(text))
        std::abort();
    // A small entry bound keeps each run fast while still reaching the bound.
    constexpr std::size_t kEntries = 64;
    const ListFileParse m3u = ParseM3u(text, "/lists/folder", kEntries);
    const ListFileParse pls = ParsePls(text, "/lists/folder", kEntries);
    if (m3u.entries.size() > kEntries || pls.entries.size() > kEntries)
        std::abort();
    CheckRoundTrip(m3u, true);
    CheckRoundTrip(pls, false);
    return 0;
}
