// The main sound device: its choice, a device missing at start-up, its loss
// and its return.
//
//   chosen  -> ChooseMainDevice: the device opens (or, failing that, the
//              Null device plays) and is watched from then on.
//   missing -> WaitForMainDevice: the stored device is not there when the
//              program starts (a USB card not plugged in, a JACK server not
//              started). The output plays on the Null device so the decks,
//              meters and times run; the mixer and the decks' track displays
//              say the device is missing; the watch looks for it every two
//              seconds (by identifier or by its stored description).
//   lost    -> OnMainDeviceLost: the decks stop as if the needles were
//              lifted, the notice shows, the Null device plays.
//   back    -> OnMainDeviceReturned: the watch has opened the device again,
//              or for the first time; the notice goes and the needles are
//              lifted (what played silently meanwhile does not burst out). A
//              device opened for the first time is then treated as chosen:
//              the volume slide takes its master level, the balance centres.
// A new choice in the configuration window ends a wait or a loss.
#include <QLabel>
#include <QThread>

#include "core/Trace.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MainMixerPanel.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundSystem.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"

std::string CRynMainMixer::StartupDeviceIdentifier() {
    const QByteArray forced = qgetenv("MIXORA_SOUND_DEVICE");
    if (!forced.isEmpty())
        return forced.toStdString();
    const std::vector<sound::SoundDeviceInfo> devices = sound::EnumerateDevices();
    const std::string stored = Settings().GetSoundDeviceMain().toStdString();
    if (!stored.empty()) {
        for (const sound::SoundDeviceInfo& d : devices) {
            if (d.description == stored || d.identifier == stored)
                return d.identifier;
        }
    }
    // The system's default output: PortAudio lists it as "default" on ALSA
    // and PulseAudio systems; else the first real device, else silence.
    const sound::SoundDeviceInfo* first = nullptr;
    for (const sound::SoundDeviceInfo& d : devices) {
        if (d.identifier.rfind("pa:", 0) != 0)
            continue;
        if (d.identifier.size() >= 8 &&
            d.identifier.compare(d.identifier.size() - 8, 8, ":default") == 0)
            return d.identifier;
        if (!first)
            first = &d;
    }
    return first ? first->identifier : std::string(sound::kNullDeviceId);
}

void CRynMainMixer::ChooseMainDevice(const std::string& identifier) {
    mainNeverOpened_ = false;  // a choice ends a wait for a missing device
    for (int d = 0; d < 2; ++d) {
        if (decks_[d] && decks_[d]->Rotating())
            decks_[d]->StopTurntable();
    }
    if (identifier.empty()) {
        // The disabled choice: no device, the master controls at rest.
        mainWatch_.Watch(std::string());
        watchTimer_.stop();
        if (!deviceNotice_->isHidden())
            OnMainDeviceBack();
        mainOutput_.ReleaseAll();
        mainOutput_.CloseDevice();
        panel_->SetBalance(0.0f);
        QThread::msleep(100);
        panel_->SetVolume(0.0f);
        panel_->SetMasterEnabled(false);
        return;
    }
    panel_->SetMasterEnabled(true);
    qCDebug(lcTrace, "CRynMainMixer opens the main device %s", identifier.c_str());
    if (mainOutput_.OpenDevice(identifier, identifier, Handle(), sound3D_) != 0) {
        qWarning("Mixora: the sound device %s could not be opened; playing silently.",
                 identifier.c_str());
        mainOutput_.OpenDevice(sound::kNullDeviceId, sound::kNullDeviceId, Handle(), sound3D_);
        mainWatch_.Watch(std::string());
    } else {
        mainWatch_.Watch(identifier);
    }
    if (!deviceNotice_->isHidden())
        OnMainDeviceBack();  // a new choice ends a loss
    watchTimer_.start();
    ShowMasterLevel();
}

void CRynMainMixer::ShowMasterLevel() {
    // The volume slide shows the device's master level; balance to the centre.
    panel_->SetVolume(static_cast<float>(
        (mainOutput_.MasterLeftPercent() + mainOutput_.MasterRightPercent()) * 0.005));
    panel_->SetBalance(0.0f);
}

void CRynMainMixer::WaitForMainDevice(const std::string& name) {
    if (name.empty()) {
        ChooseMainDevice(StartupDeviceIdentifier());
        return;
    }
    // Already looked for (the configuration's lists filled again): as it is.
    if (mainWatch_.Lost() && mainWatch_.Watched() == name && mainNeverOpened_)
        return;
    for (int d = 0; d < 2; ++d) {
        if (decks_[d] && decks_[d]->Rotating())
            decks_[d]->StopTurntable();
    }
    panel_->SetMasterEnabled(true);
    qCDebug(lcTrace, "CRynMainMixer waits for the main device %s", name.c_str());
    // The Null device keeps the decks' clocks until the device comes.
    mainOutput_.OpenDevice(sound::kNullDeviceId, sound::kNullDeviceId, Handle(), sound3D_);
    mainWatch_.WatchMissing(name);
    mainNeverOpened_ = true;
    watchTimer_.start();
    const QString shown = QString::fromStdString(name);
    ShowMainDeviceNotice(QStringLiteral("Sound device missing: %1").arg(shown),
                         QStringLiteral("Main sound device missing: %1. Playing silently until it "
                                        "is plugged in or started; Mixora opens it then.")
                             .arg(shown));
    ShowMasterLevel();
}

void CRynMainMixer::OnMainDeviceReturned() {
    const bool first = mainNeverOpened_;
    mainNeverOpened_ = false;
    OnMainDeviceBack();
    sound::SoundDevice* device = mainOutput_.Device();
    if (first && device) {
        // Watched from now on by the identifier it opened with, as a device
        // chosen in the configuration window.
        mainWatch_.Watch(device->Identifier());
        ShowMasterLevel();
        // The configuration window lists it as it is now, no longer missing.
        if (auto* configure = qobject_cast<CRynConfigure*>(configure_))
            configure->DeviceFound(0, device->Identifier());
    }
    Keep3DSound();
}

void CRynMainMixer::OnMainDeviceLost(const std::string& description) {
    const QString name = QString::fromStdString(description);
    ShowMainDeviceNotice(QStringLiteral("Sound device lost: %1").arg(name),
                         QStringLiteral("Main sound device lost: %1. Playing silently until it "
                                        "returns; Mixora reopens it then.")
                             .arg(name));
}

void CRynMainMixer::ShowMainDeviceNotice(const QString& deckText, const QString& mixerText) {
    for (CRynDeck* deck : decks_) {
        if (!deck)
            continue;
        // Stopped as if the needle were lifted; lists and settings stay.
        if (deck->NeedleDown())
            deck->LiftNeedle();
        deck->SetDeviceNotice(deckText);
    }
    deviceNotice_->setText(mixerText);
    deviceNotice_->show();
}

void CRynMainMixer::OnMainDeviceBack() {
    for (CRynDeck* deck : decks_) {
        if (!deck)
            continue;
        // Whatever played on the Null device meanwhile stops: drop the needle again.
        if (deck->NeedleDown())
            deck->LiftNeedle();
        deck->SetDeviceNotice(QString());
    }
    deviceNotice_->clear();
    deviceNotice_->hide();
}
