#include "output/laws/CpuLoad.h"

#include <algorithm>
#include <charconv>
#include <fstream>

CpuLoad::Counters CpuLoad::Parse(std::string_view text) {
    Counters c;
    if (text.substr(0, 4) != "cpu ")
        return c;
    text.remove_prefix(4);
    const size_t end = text.find('\n');
    if (end != std::string_view::npos)
        text = text.substr(0, end);
    int field = 0;
    while (!text.empty()) {
        const size_t start = text.find_first_not_of(' ');
        if (start == std::string_view::npos)
            break;
        text.remove_prefix(start);
        std::uint64_t v = 0;
        const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
        if (ec != std::errc())
            return Counters{};
        text.remove_prefix(static_cast<size_t>(ptr - text.data()));
        // user nice system idle iowait irq softirq steal; guest time is
        // already counted in user and nice.
        if (field < 8) {
            c.total += v;
            if (field == 3 || field == 4)
                c.idle += v;
        }
        ++field;
    }
    c.valid = field >= 4;
    return c;
}

int CpuLoad::Load(const Counters& before, const Counters& after) {
    if (!before.valid || !after.valid || after.total <= before.total || after.idle < before.idle)
        return 0;
    const double dIdle = static_cast<double>(after.idle - before.idle);
    const double dTotal = static_cast<double>(after.total - before.total);
    const double load = 100.0 - dIdle / dTotal * 100.0 + 0.5;
    return std::clamp(static_cast<int>(load), 0, 100);
}

int CpuLoad::Read() {
    std::ifstream in(path_);
    std::string line;
    Counters now;
    if (in && std::getline(in, line))
        now = Parse(line);
    const int load = Load(last_, now);
    last_ = now;
    return load;
}
