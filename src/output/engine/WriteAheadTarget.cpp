#include "output/engine/WriteAheadTarget.h"

std::optional<int> WriteAheadTarget::RequestMaximum(int userSetting) {
    maximum_ = true;
    last_ = Override::Maximum;
    return Target(userSetting);
}

std::optional<int> WriteAheadTarget::WithdrawMaximum(int userSetting) {
    if (!maximum_)
        return std::nullopt;
    maximum_ = false;
    if (last_ == Override::Maximum)
        last_ = quarter_ ? Override::Quarter : Override::None;
    return Target(userSetting);
}

std::optional<int> WriteAheadTarget::RequestQuarter(int userSetting) {
    quarter_ = true;
    last_ = Override::Quarter;
    return Target(userSetting);
}

std::optional<int> WriteAheadTarget::WithdrawQuarter(int userSetting) {
    if (!quarter_)
        return std::nullopt;
    quarter_ = false;
    if (last_ == Override::Quarter)
        last_ = maximum_ ? Override::Maximum : Override::None;
    return Target(userSetting);
}

WriteAheadTarget::Override WriteAheadTarget::Active() const {
    return last_;
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
