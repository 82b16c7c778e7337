#include "playlist/TextEncoding.h"

#include <cstdint>

bool IsValidUtf8(std::string_view bytes) {
    const auto* s = reinterpret_cast<const std::uint8_t*>(bytes.data());
    std::size_t n = bytes.size();
    std::size_t i = 0;
    while (i < n) {
        std::uint8_t c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t len;
        std::uint32_t cp;
        if (c >= 0xC2 && c <= 0xDF) {
            len = 2;
            cp = c & 0x1F;
        } else if (c >= 0xE0 && c <= 0xEF) {
            len = 3;
            cp = c & 0x0F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (n - i < len)
            return false;
        for (std::size_t k = 1; k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        if ((len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) || cp > 0x10FFFF ||
            (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += len;
    }
    return true;
}

std::string Latin1ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (char ch : bytes) {
        auto c = static_cast<std::uint8_t>(ch);
        if (c < 0x80) {
            out.push_back(ch);
        } else {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

std::string TextAsUtf8(std::string_view bytes) {
    constexpr std::string_view kBom = "\xEF\xBB\xBF";
    if (bytes.substr(0, kBom.size()) == kBom)
        bytes.remove_prefix(kBom.size());
    if (IsValidUtf8(bytes))
        return std::string(bytes);
    return Latin1ToUtf8(bytes);
}
