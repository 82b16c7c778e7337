#include "settings/window/DeviceTable.h"

namespace device_table {

namespace {

std::vector<sound::SoundDeviceInfo>& Table() {
    static std::vector<sound::SoundDeviceInfo> table{{kDisabledText, ""}};
    return table;
}

}  // namespace

void Publish(const std::vector<sound::SoundDeviceInfo>& devices) {
    auto& t = Table();
    t.assign(1, {kDisabledText, ""});
    for (const sound::SoundDeviceInfo& d : devices) {
        if (static_cast<int>(t.size()) > kMaxDevices)
            break;
        t.push_back(d);
    }
}

std::string Identifier(long long index) {
    const auto& t = Table();
    if (index <= 0 || index >= static_cast<long long>(t.size()))
        return {};
    return t[static_cast<std::size_t>(index)].identifier;
}

int IndexOf(const std::string& identifier) {
    const auto& t = Table();
    for (std::size_t i = 1; i < t.size(); ++i) {
        if (t[i].identifier == identifier)
            return static_cast<int>(i);
    }
    return -1;
}

int Count() {
    return static_cast<int>(Table().size());
}

QString Text(int index) {
    const auto& t = Table();
    if (index < 0 || index >= static_cast<int>(t.size()))
        return {};
    return QString::fromStdString(t[static_cast<std::size_t>(index)].description);
}

}  // namespace device_table
