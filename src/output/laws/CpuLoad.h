// CpuLoad: the processor load in percent from the kernel's counters.
//
// The first line of /proc/stat gives the time all processors spent in each
// state since boot (user, nice, system, idle, iowait, irq, softirq, steal, in
// clock ticks). Between two readings the load is
//   100 − (Δidle / Δtotal) · 100 + 0.5, truncated and held to 0 … 100,
// where idle counts idle and iowait and total is every state. (Summed over
// all processors both deltas carry the processor count, so it cancels.)
// The first reading has no previous one and gives 0; an unreadable file
// gives 0.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class CpuLoad {
  public:
    struct Counters {
        bool valid = false;
        std::uint64_t idle = 0;
        std::uint64_t total = 0;
    };

    // Parses the "cpu " line of /proc/stat text.
    static Counters Parse(std::string_view statText);
    // The load between two readings, 0 … 100 (0 when either is invalid or
    // no time passed).
    static int Load(const Counters& before, const Counters& after);

    explicit CpuLoad(std::string path = "/proc/stat") : path_(std::move(path)) {}
    // Reads the file and returns the load since the previous call.
    int Read();

  private:
    std::string path_;
    Counters last_;
};
