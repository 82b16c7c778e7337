#include "playlist/Id3Scan.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

std::uint32_t Big32(std::string_view b, std::size_t at) {
    return (std::uint32_t(std::uint8_t(b[at])) << 24) |
           (std::uint32_t(std::uint8_t(b[at + 1])) << 16) |
           (std::uint32_t(std::uint8_t(b[at + 2])) << 8) | std::uint32_t(std::uint8_t(b[at + 3]));
}

std::uint32_t Little32(std::string_view b, std::size_t at) {
    return (std::uint32_t(std::uint8_t(b[at + 3])) << 24) |
           (std::uint32_t(std::uint8_t(b[at + 2])) << 16) |
           (std::uint32_t(std::uint8_t(b[at + 1])) << 8) | std::uint32_t(std::uint8_t(b[at]));
}

// Four 7-bit bytes, most significant first.
std::uint32_t SyncSafe(std::string_view b, std::size_t at) {
    return (std::uint32_t(std::uint8_t(b[at]) & 0x7F) << 21) |
           (std::uint32_t(std::uint8_t(b[at + 1]) & 0x7F) << 14) |
           (std::uint32_t(std::uint8_t(b[at + 2]) & 0x7F) << 7) |
           std::uint32_t(std::uint8_t(b[at + 3]) & 0x7F);
}

// Total tag length from its header (header, body and a 2.4 footer), 0 when
// `h` is no ID3v2 header.
std::uint32_t TagLength(std::string_view h) {
    if (h.size() < 10 || h.substr(0, 3) != "ID3")
        return 0;
    const bool footer = (std::uint8_t(h[5]) & 0x10) != 0;
    return 10 + SyncSafe(h, 6) + (footer ? 10 : 0);
}

// At most `bytes` from `at`, and never more than the file holds: a header
// may claim far more than there is.
std::string Read(FILE* f, long at, std::uint32_t bytes) {
    if (std::fseek(f, 0, SEEK_END) != 0)
        return {};
    const long size = std::ftell(f);
    if (size <= at || std::fseek(f, at, SEEK_SET) != 0)
        return {};
    std::string out(std::min<std::size_t>(bytes, static_cast<std::size_t>(size - at)), '\0');
    out.resize(std::fread(out.data(), 1, out.size(), f));
    return out;
}

bool TagAt(FILE* f, long at, std::uint32_t limit, std::uint32_t maxTagBytes) {
    const std::string head = Read(f, at, 10);
    const std::uint32_t length = TagLength(head);
    if (length == 0)
        return false;
    return TagHasOversizedCompressedFrame(Read(f, at, std::min(length, maxTagBytes)), limit);
}

// The chunks of a RIFF ("RIFF", little-endian sizes) or IFF ("FORM",
// big-endian) file, each padded to an even length: the ID3 chunk's tag.
bool ChunkTags(FILE* f, bool riff, std::uint32_t limit, std::uint32_t maxTagBytes) {
    long at = 12;
    for (int chunks = 0; chunks < 4096; ++chunks) {
        const std::string h = Read(f, at, 8);
        if (h.size() < 8)
            return false;
        const std::uint32_t size = riff ? Little32(h, 4) : Big32(h, 4);
        const std::string_view id = std::string_view(h).substr(0, 4);
        if ((id == "ID3 " || id == "id3 ") && TagAt(f, at + 8, limit, maxTagBytes))
            return true;
        const long next = at + 8 + long(size) + long(size & 1);
        if (next <= at)
            return false;
        at = next;
    }
    return false;
}

}  // namespace

bool TagHasOversizedCompressedFrame(std::string_view tag, std::uint32_t limitBytes) {
    if (TagLength(tag) == 0)
        return false;
    const int version = std::uint8_t(tag[3]);
    if (version != 3 && version != 4)
        return false;  // 2.2 has no compression flag
    const std::uint8_t flags = std::uint8_t(tag[5]);
    std::string body(tag.substr(10, std::min<std::size_t>(tag.size() - 10, TagLength(tag) - 10)));
    if (version == 3 && (flags & 0x80) != 0) {
        // Undo the whole tag's unsynchronisation: FF 00 reads as FF.
        std::string plain;
        plain.reserve(body.size());
        for (std::size_t i = 0; i < body.size(); ++i) {
            plain += body[i];
            if (std::uint8_t(body[i]) == 0xFF && i + 1 < body.size() && body[i + 1] == '\0')
                ++i;
        }
        body.swap(plain);
    }
    std::size_t at = 0;
    if ((flags & 0x40) != 0 && body.size() >= 4) {  // extended header
        const std::uint32_t ext = version == 3 ? Big32(body, 0) + 4 : SyncSafe(body, 0);
        at = ext;
    }
    while (at + 10 <= body.size()) {
        if (body[at] == '\0')
            break;  // padding
        const std::uint32_t size = version == 3 ? Big32(body, at + 4) : SyncSafe(body, at + 4);
        const std::uint8_t format = std::uint8_t(body[at + 9]);
        const bool compressed = version == 3 ? (format & 0x80) != 0 : (format & 0x08) != 0;
        if (compressed && size > limitBytes)
            return true;
        if (size > body.size() - at - 10)
            break;
        at += 10 + size;
    }
    return false;
}

bool FileHasOversizedCompressedFrame(const std::string& path, std::uint32_t limitBytes,
                                     std::uint32_t maxTagBytes) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!f)
        return false;
    const std::string head = Read(f.get(), 0, 12);
    if (head.size() >= 12 && head.substr(0, 4) == "RIFF" && head.substr(8, 4) == "WAVE")
        return ChunkTags(f.get(), true, limitBytes, maxTagBytes);
    if (head.size() >= 12 && head.substr(0, 4) == "FORM" &&
        (head.substr(8, 4) == "AIFF" || head.substr(8, 4) == "AIFC"))
        return ChunkTags(f.get(), false, limitBytes, maxTagBytes);
    return TagAt(f.get(), 0, limitBytes, maxTagBytes);
}
