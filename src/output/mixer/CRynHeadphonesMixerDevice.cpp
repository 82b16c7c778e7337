// The headphones mixer's watch over its device. The headphones output runs on
// a sound device of its own; when that device stops playing (its JACK server
// stopped, the USB card unplugged) the watch notices within a second:
//
//   lost  -> the headphones output plays on the Null device (its deck
//            buffers made again there, without notifications: the main
//            device paces the mix cycle), the volume slide is disabled so
//            that the mix step leaves the alignment out, and the status line
//            says what was lost. The main output is never touched: its
//            device, buffers and streams play on.
//   missing -> (WaitForDevice: the chosen device was not there at start-up)
//            as lost, the headphones on the Null device from the start.
//   back  -> every two seconds the chosen device is looked for; once listed
//            it is opened again, the volume slide comes back with the level
//            it had, the headphones mix and balances are set on the new
//            buffers and onDeviceBack gives it the decks that play.
//
// Opening a device again holds this thread up for a moment (a JACK client
// takes some 200 ms to join its server), longer than the mix cycle's usual
// write-ahead: so while the device is lost the main mixer is asked for the
// maximum write-ahead (UWM_LATENCY_MAXIMUM, as for a file dialog), which the
// main output fills long before the device returns, and the request is
// withdrawn once it is back or another device is chosen.
//
// User-interface thread only.
#include <QLabel>

#include "controls/CNiSlide.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "platform/sound/JackBackend.h"
#include "platform/sound/SoundDevice.h"

namespace {

// JACK devices are listed as the server is now: no need to start PortAudio
// afresh to find them again.
bool IsJackDevice(const std::string& identifier) {
    return identifier.rfind(std::string("pa:") + sound::kJackApiName + ":", 0) == 0;
}

const QString kLostStyle =
    QStringLiteral("QLabel { background: rgb(90, 10, 10); color: rgb(255, 220, 200); }");

}  // namespace

void CRynHeadphonesMixer::SetUpDeviceWatch() {
    // The headphones buffers never pace the mix cycle.
    watch_.notifyingBuffers = false;
    // PortAudio is started afresh (a moment of this thread, while the main
    // output plays on) only to look for a device that is not a JACK one,
    // such as a USB card plugged in again.
    OutputDeviceWatch::Directory directory = OutputDeviceWatch::SystemDirectory();
    directory.refresh = [this, refresh = directory.refresh] {
        return IsJackDevice(watch_.Watched()) || refresh();
    };
    watch_.SetDirectory(std::move(directory));
    watch_.onLost = [this](const std::string& description) { OnDeviceLost(description); };
    watch_.onBack = [this](const std::string& description) { OnDeviceBack(description); };
    watchClock_.start();
    watchTimer_.setInterval(OutputDeviceWatch::kCheckMs);
    connect(&watchTimer_, &QTimer::timeout, this,
            [this] { watch_.Check(static_cast<double>(watchClock_.elapsed())); });
}

void CRynHeadphonesMixer::RaiseLatencyWhileLost(bool raise) {
    if (raise == latencyRaised_)
        return;
    latencyRaised_ = raise;
    // lParam 0 requests the maximum write-ahead, 1 withdraws it.
    SendAppMessage(mainMixer_, UWM_LATENCY_MAXIMUM, 0, raise ? 0 : 1);
}

void CRynHeadphonesMixer::WaitForDevice(const std::string& name) {
    stalledEngine_.reset();
    WatchDevice(std::string());
    if (name.empty())
        return;
    output_.ReleaseAll();
    // The Null device keeps the headphones buffers' clocks until it comes.
    output_.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Realtime),
                       Handle());
    neverOpened_ = true;
    watch_.WatchMissing(name);
    watchTimer_.start();
    const QString shown = QString::fromStdString(name);
    OnDeviceLost(name);
    status_->setText(QStringLiteral("Headphones device missing: %1. The headphones are off until "
                                    "it is plugged in; Mixora opens it then.")
                         .arg(shown));
}

void CRynHeadphonesMixer::WatchDevice(const std::string& identifier) {
    RaiseLatencyWhileLost(false);
    neverOpened_ = false;
    watch_.Watch(identifier);
    status_->setStyleSheet(QString());
    if (watch_.Watched().empty())
        watchTimer_.stop();
    else
        watchTimer_.start();
}

void CRynHeadphonesMixer::OnDeviceLost(const std::string& description) {
    // Quiet, not closed: the volume keeps its value for the device's return,
    // and a disabled slide stops the alignment with the main device.
    volume_->setEnabled(false);
    for (int deck = 0; deck < kDeckCount; ++deck) {
        sync_.Reset(deck);
        lastCursor_[deck] = -1;
        stalled_[deck] = 0;
    }
    RaiseLatencyWhileLost(true);
    status_->setStyleSheet(kLostStyle);
    status_->setText(QStringLiteral("Headphones device lost: %1. The headphones are off until it "
                                    "returns; Mixora reopens it then.")
                         .arg(QString::fromStdString(description)));
}

void CRynHeadphonesMixer::OnDeviceBack(const std::string& description) {
    status_->setStyleSheet(QString());
    if (neverOpened_) {
        // First opened now: as a device chosen, with its own master level.
        neverOpened_ = false;
        Opened(QString::fromStdString(description));
        for (int deck = 0; deck < kDeckCount; ++deck)
            ApplyPan(deck);
    } else {
        for (int deck = 0; deck < kDeckCount; ++deck) {
            sync_.Reset(deck);
            lastCursor_[deck] = -1;
            stalled_[deck] = 0;
        }
        volume_->setEnabled(true);
        OnVolumeMoved();
        ApplyMix();
        for (int deck = 0; deck < kDeckCount; ++deck)
            ApplyPan(deck);
        status_->setText(
            QStringLiteral("Headphones on %1").arg(QString::fromStdString(description)));
    }
    if (onDeviceBack)
        onDeviceBack();
    RaiseLatencyWhileLost(false);
}
