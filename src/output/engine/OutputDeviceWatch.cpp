#include "output/engine/OutputDeviceWatch.h"

#include "core/Trace.h"
#include "output/engine/CRynAudioOutput.h"
#include "platform/sound/SoundSystem.h"

namespace {

// The identifier of the listed device named `name` (its identifier or its
// description), "" when none is listed.
std::string ListedIdentifier(const std::string& name) {
    for (const sound::SoundDeviceInfo& info : sound::EnumerateDevices()) {
        if (info.identifier == name || info.description == name)
            return info.identifier;
    }
    return {};
}

}  // namespace

OutputDeviceWatch::Directory OutputDeviceWatch::SystemDirectory() {
    Directory d;
    d.refresh = [] { return sound::ReinitializeAudioLibrary() == kStatusOk; };
    d.listed = [](const std::string& id) { return !ListedIdentifier(id).empty(); };
    d.open = [](const std::string& id, std::unique_ptr<sound::SoundDevice>* device) {
        const std::string listed = ListedIdentifier(id);
        return sound::OpenDevice(listed.empty() ? id : listed, false, device);
    };
    return d;
}

OutputDeviceWatch::OutputDeviceWatch(CRynAudioOutput& output, Directory directory)
    : output_(output), directory_(std::move(directory)) {}

void OutputDeviceWatch::Watch(const std::string& identifier) {
    watched_ = identifier == sound::kNullDeviceId ? std::string() : identifier;
    lost_ = false;
    lostDescription_.clear();
}

void OutputDeviceWatch::WatchMissing(const std::string& name) {
    Watch(name);
    if (watched_.empty())
        return;
    lost_ = true;
    lostDescription_ = name;
    nextRetryMs_ = 0;  // the first Check looks
}

void OutputDeviceWatch::Check(double nowMs) {
    if (watched_.empty())
        return;
    if (lost_) {
        if (nowMs >= nextRetryMs_) {
            nextRetryMs_ = nowMs + kRetryMs;
            TryReopen();
        }
        return;
    }
    sound::SoundDevice* device = output_.Device();
    if (device == nullptr || !device->Lost())
        return;
    lost_ = true;
    ++losses_;
    lostDescription_ = device->Description();
    nextRetryMs_ = nowMs + kRetryMs;
    if (onLost)
        onLost(lostDescription_);
    // The Null device keeps the decks' clocks; it cannot fail to open.
    Switch(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Realtime));
}

void OutputDeviceWatch::TryReopen() {
    // Listed already (a JACK server is looked at live): no refresh. A
    // refused refresh (another output holds a PortAudio stream) still leaves
    // the old list, which may name the device.
    if (!directory_.listed)
        return;
    if (!directory_.listed(watched_)) {
        if (directory_.refresh)
            directory_.refresh();
        if (!directory_.listed(watched_)) {
            qCDebug(lcTrace, "OutputDeviceWatch: %s is not listed yet", watched_.c_str());
            return;
        }
    }
    std::unique_ptr<sound::SoundDevice> device;
    const SoundStatus opened =
        directory_.open ? directory_.open(watched_, &device) : SoundStatus(kStatusFail);
    if (opened != kStatusOk || !device) {
        qCDebug(lcTrace, "OutputDeviceWatch: %s is listed but does not open (0x%x)",
                watched_.c_str(), static_cast<unsigned>(opened));
        return;
    }
    qCDebug(lcTrace, "OutputDeviceWatch: %s is back", watched_.c_str());
    const std::string description = device->Description();
    Switch(std::move(device));
    lost_ = false;
    lostDescription_.clear();
    ++returns_;
    if (onBack)
        onBack(description);
}

void OutputDeviceWatch::Switch(std::unique_ptr<sound::SoundDevice> device) {
    // The rates of the decks that had buffers, before they go with the device.
    std::array<int, kDeckCount> rates{};
    if (CRynSoundEngine* engine = output_.SoundEngine()) {
        for (int d = 0; d < kDeckCount; ++d) {
            if (engine->Deck(d).forward)
                rates[d] = engine->Deck(d).rate;
        }
    }
    output_.OpenDevice(std::move(device), output_.DeviceWindow());
    for (int d = 0; d < kDeckCount; ++d) {
        if (rates[d] == 0)
            continue;
        output_.CreateDeckBuffers(d, rates[d], notifyingBuffers);
        if (onBuffersRebuilt)
            onBuffersRebuilt(d);
    }
}
