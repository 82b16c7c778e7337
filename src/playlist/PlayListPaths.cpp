#include "playlist/PlayListPaths.h"

#include <filesystem>
#include <system_error>

namespace {

bool IsAsciiAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

// Length of a URL scheme plus "://" at the start of `text`, 0 when it has none.
std::size_t SchemePrefixLength(std::string_view text) {
    if (text.empty() || !IsAsciiAlpha(text[0]))
        return 0;
    std::size_t i = 1;
    while (i < text.size() && (IsAsciiAlpha(text[i]) || IsAsciiDigit(text[i]) || text[i] == '+' ||
                               text[i] == '-' || text[i] == '.'))
        ++i;
    if (text.substr(i, 3) != "://")
        return 0;
    return i + 3;
}

int HexValue(char c) {
    if (IsAsciiDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string PercentDecoded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 &&
            HexValue(text[i + 2]) >= 0) {
            out.push_back(static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2])));
            i += 2;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

}  // namespace

std::string_view FileNameOf(std::string_view path) {
    std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string FileTitleOf(std::string_view path) {
    std::string_view name = FileNameOf(path);
    std::size_t dot = name.rfind('.');
    return std::string(dot == std::string_view::npos ? name : name.substr(0, dot));
}

std::string ExtensionOf(std::string_view path) {
    std::string_view name = FileNameOf(path);
    std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string() : std::string(name.substr(dot));
}

std::string LowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string ListFolderOf(const std::string& listFile) {
    std::error_code ec;
    std::filesystem::path p = std::filesystem::absolute(std::filesystem::path(listFile), ec);
    if (ec)
        return {};
    return p.lexically_normal().parent_path().string();
}

std::string ResolveListPath(std::string_view listFolder, std::string_view written) {
    if (written.empty())
        return {};
    if (std::size_t scheme = SchemePrefixLength(written)) {
        if (LowerAscii(written.substr(0, scheme)) != "file://")
            return std::string(written);
        std::string_view rest = written.substr(scheme);
        if (LowerAscii(rest.substr(0, 9)) == "localhost")
            rest.remove_prefix(9);
        if (rest.empty() || rest[0] != '/')
            return {};  // another host's file
        return PercentDecoded(rest);
    }
    if (written[0] == '/')
        return std::string(written);
    std::string joined(listFolder);
    if (joined.empty() || joined.back() != '/')
        joined.push_back('/');
    joined.append(written);
    return std::filesystem::path(joined).lexically_normal().string();
}
