#include "platform/cd/CddbClient.h"

#include <cstdio>

namespace cd {

namespace {
// CDDB counts addresses from the disc's very start: the program area begins
// after a 2-second (150-sector) pregap.
constexpr std::int32_t kPregapSectors = 150;

int DigitSum(std::int32_t n) {
    int sum = 0;
    for (; n > 0; n /= 10)
        sum += static_cast<int>(n % 10);
    return sum;
}
}  // namespace

std::string CddbDiscId(const CdToc& toc) {
    const int tracks = toc.TrackCount();
    if (tracks <= 0 || static_cast<int>(toc.entries.size()) < tracks + 1)
        return "00000000";
    std::uint32_t sum = 0;
    for (int i = 0; i < tracks; ++i)
        sum += static_cast<std::uint32_t>(DigitSum((toc.entries[i].start + kPregapSectors) / 75));
    const std::int32_t length = (toc.entries[tracks].start + kPregapSectors) / 75 -
                                (toc.entries[0].start + kPregapSectors) / 75;
    const std::uint32_t id = ((sum % 0xFF) << 24) | (static_cast<std::uint32_t>(length) << 8) |
                             static_cast<std::uint32_t>(tracks);
    char text[9];
    std::snprintf(text, sizeof text, "%08x", id);
    return text;
}

}  // namespace cd
