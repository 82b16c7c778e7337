#include "platform/cd/DiscImageLimits.h"

#include <sys/stat.h>

#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace cd {

namespace {

bool HasExtension(const std::string& path, const char* ext) {
    std::string e = std::filesystem::path(path).extension().string();
    for (char& c : e)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return e == ext;
}

// The first word of a line, upper-cased, and the rest after it.
std::string_view FirstWord(std::string_view line, std::string* upper) {
    upper->clear();
    std::size_t b = line.find_first_not_of(" \t");
    if (b == std::string_view::npos)
        return {};
    std::size_t e = line.find_first_of(" \t", b);
    if (e == std::string_view::npos)
        e = line.size();
    for (char c : line.substr(b, e - b))
        upper->push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    return line.substr(e);
}

// A quoted name up to its closing quote, else the first bare word.
std::string NameArgument(std::string_view rest) {
    std::size_t b = rest.find_first_not_of(" \t");
    if (b == std::string_view::npos)
        return {};
    if (rest[b] == '"') {
        std::size_t e = rest.find('"', b + 1);
        return std::string(rest.substr(b + 1, e == std::string_view::npos ? e : e - b - 1));
    }
    std::size_t e = rest.find_first_of(" \t", b);
    return std::string(rest.substr(b, e == std::string_view::npos ? e : e - b));
}

// A regular file of at most `limit` bytes.
bool IsBoundedRegularFile(const std::string& path, std::int64_t limit, struct stat* st) {
    return ::stat(path.c_str(), st) == 0 && S_ISREG(st->st_mode) && st->st_size <= limit;
}

}  // namespace

SheetContents ReadSheet(std::string_view sheet) {
    SheetContents out;
    std::string word;
    while (!sheet.empty() && out.files.size() <= kMaxSheetFiles) {
        std::size_t end = sheet.find_first_of("\r\n");
        std::string_view line = sheet.substr(0, end);
        sheet = end == std::string_view::npos ? std::string_view() : sheet.substr(end + 1);
        std::string_view rest = FirstWord(line, &word);
        if (word == "FILE" || word == "AUDIOFILE" || word == "DATAFILE")
            out.files.push_back(NameArgument(rest));
        else if (word == "TRACK") {
            ++out.tracks;
            out.trackBeforeFile = out.trackBeforeFile || out.files.empty();
            const std::string number = NameArgument(rest);
            int n = 0;
            const auto [end, error] =
                std::from_chars(number.data(), number.data() + number.size(), n);
            if (error != std::errc() || end != number.data() + number.size() || n != out.tracks)
                out.tracksInOrder = false;
        }
    }
    return out;
}

bool IsAcceptableDiscImage(const std::string& path) {
    struct stat sheetStat {};
    if (HasExtension(path, ".nrg"))
        return IsBoundedRegularFile(path, kMaxImageBytes, &sheetStat);
    if (!HasExtension(path, ".cue") && !HasExtension(path, ".toc"))
        return true;
    if (!IsBoundedRegularFile(path, kMaxSheetBytes, &sheetStat))
        return false;
    std::ifstream in(path, std::ios::binary);
    const std::string sheet((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const SheetContents contents = ReadSheet(sheet);
    if (contents.files.size() > kMaxSheetFiles || contents.tracks > kMaxSheetTracks ||
        (HasExtension(path, ".cue") && (contents.trackBeforeFile || !contents.tracksInOrder)))
        return false;
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    for (const std::string& name : contents.files) {
        if (name.empty())
            return false;
        const std::filesystem::path named =
            std::filesystem::path(name).is_absolute() ? std::filesystem::path(name) : folder / name;
        struct stat st {};
        if (!IsBoundedRegularFile(named.string(), kMaxImageBytes, &st))
            return false;
        if (st.st_dev == sheetStat.st_dev && st.st_ino == sheetStat.st_ino)
            return false;  // the sheet naming itself
    }
    return true;
}

}  // namespace cd
