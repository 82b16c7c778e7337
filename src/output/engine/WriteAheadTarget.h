// How many blocks the mix cycle keeps written ahead of a deck's play cursor
// (the deck's writeAheadBlocks, its effective equalizer latency). It is the
// user's latency setting unless one of two overrides is requested: maximum
// (the top of the latency range, while the program is busy elsewhere: the
// mixer minimised, a file dialog or a drive change) or quarter (a quarter of
// that top, while no equalizer window is active). The override requested
// last wins; withdrawing it brings back the other if that is still
// requested, else the user's setting as it stands then.
//
// Pure state, user-interface thread only. Request and Withdraw answer the
// new target only when they changed a request; moving the user's setting
// alone never moves the target.
#pragma once

#include <optional>

class WriteAheadTarget {
  public:
    // Top of the latency range in output notifications (blocks): 40 blocks
    // are 1.07 s at 44100 Hz, the most a DJ would set for a slow machine.
    static constexpr int kTopBlocks = 40;
    static constexpr int kQuarterBlocks = kTopBlocks / 4;

    enum class Override { None, Maximum, Quarter };

    // Request or withdraw Maximum or Quarter. Each answers the target to write
    // into writeAheadBlocks, or nothing when the call changes no request (a
    // withdrawal of what was not requested).
    std::optional<int> Request(Override which, int userSetting);
    std::optional<int> Withdraw(Override which, int userSetting);

    Override Active() const { return last_; }
    bool MaximumRequested() const { return maximum_; }
    bool QuarterRequested() const { return quarter_; }

  private:
    bool& Requested(Override which) { return which == Override::Maximum ? maximum_ : quarter_; }
    int Target(int userSetting) const;

    bool maximum_ = false;
    bool quarter_ = false;
    Override last_ = Override::None;  // the one requested last
};
