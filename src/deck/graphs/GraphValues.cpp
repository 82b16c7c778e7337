#include "deck/graphs/GraphValues.h"

#include <algorithm>
#include <cmath>

namespace graph_values {

namespace {

std::span<const double> Values(const dsp::DeckAnalysis& a, int channel) {
    return channel < 0 ? a.CurrentValues() : a.ChannelValues(channel);
}

}  // namespace

std::size_t Bars(const dsp::DeckAnalysis& a, int channel, std::span<double> out) {
    const auto values = Values(a, channel);
    const std::size_t n = std::min(values.size(), out.size());
    std::copy_n(values.begin(), n, out.begin());
    return n;
}

void SpreadBars(const dsp::DeckAnalysis& a, int channel, std::span<double> out) {
    if (out.empty())
        return;
    const auto values = Values(a, channel);
    const std::size_t bands = values.size() - 1;
    const std::size_t columns = out.size() - 1;
    out[0] = 0.0;
    for (std::size_t c = 1; c <= columns; ++c)
        out[c] = bands > 0 ? values[1 + (c - 1) * bands / columns] : 0.0;
}

void ScopeTrace(const dsp::DeckAnalysis::Slot& s, int channel, int first, int last,
                unsigned groupMask, double gain, bool integers,
                std::span<double, dsp::DeckAnalysis::kPoints> out) {
    first = std::max(first, 0);
    last = std::min(last, dsp::DeckAnalysis::kMaxGroups);
    for (int j = 0; j < dsp::DeckAnalysis::kPoints; ++j) {
        double v = 0.0;
        for (int g = first; g < last; ++g) {
            if ((groupMask & (1u << g)) == 0)
                continue;
            v += channel < 0 ? 0.5 * (s.channels[0].traces[g][j] + s.channels[1].traces[g][j])
                             : s.channels[channel == 1 ? 1 : 0].traces[g][j];
        }
        out[j] = integers ? std::trunc(v * gain) : v * gain;
    }
}

}  // namespace graph_values
