#include "output/engine/WriteAheadTarget.h"

std::optional<int> WriteAheadTarget::Request(Override which, int userSetting) {
    if (which == Override::None)
        return std::nullopt;
    Requested(which) = true;
    last_ = which;
    return Target(userSetting);
}

std::optional<int> WriteAheadTarget::Withdraw(Override which, int userSetting) {
    if (which == Override::None || !Requested(which))
        return std::nullopt;
    Requested(which) = false;
    if (last_ == which) {
        const Override other = which == Override::Maximum ? Override::Quarter : Override::Maximum;
        last_ = Requested(other) ? other : Override::None;
    }
    return Target(userSetting);
}

int WriteAheadTarget::Target(int userSetting) const {
    switch (last_) {
        case Override::Maximum:
            return kTopBlocks;
        case Override::Quarter:
            return kQuarterBlocks;
        case Override::None:
            break;
    }
    return userSetting;
}
