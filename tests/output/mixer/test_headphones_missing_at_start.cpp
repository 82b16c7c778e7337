// The stored headphones device is not there when the program starts (a USB
// card not plugged in): the headphones mixer says so, the main output plays
// on, and the device is opened within five seconds of its appearing and
// handed the playing deck. Once on a test card that is "plugged in" later,
// once on a real JACK server (dummy driver) started after the mixers, the
// stored choice being the device's description as the configuration window
// keeps it; the window's list shows it missing, then as a device.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "JackTestSupport.h"
#include "TestSupport.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/engine/WriteAheadTarget.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundSystem.h"
#include "platform/sound/StallableBackend.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"
#include "settings/window/DeviceTable.h"

using testsupport::PlaybackRig;

namespace {

const QString kMissingText = QStringLiteral("Headphones device missing: ");

// What the configuration window sends for a stored headphones device that is
// not listed.
void SendStoredMissing(CRynMainMixer& mixer, const QString& stored) {
    Settings().SetSoundDevicePhones(stored);
    SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 1,
                   static_cast<LParam>(device_table::kMissingDeviceItem));
}

}  // namespace

TEST(HeadphonesMissingAtStart, ACardPluggedInLaterIsOpenedAndGivenTheDeck) {
    const QString tone = testsupport::MakeTone("phones-missing.wav", 440, 20);
    ASSERT_FALSE(tone.isEmpty());
    CRynHeadphonesMixer phones;
    std::vector<QString> boxes;
    phones.showMessage = [&](const QString& text) { boxes.push_back(text); };
    PlaybackRig rig(false, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();

    bool pluggedIn = false;
    int opens = 0;
    OutputDeviceWatch::Directory directory;
    directory.refresh = [] { return true; };
    directory.listed = [&](const std::string& id) { return pluggedIn && id == "USB Phones"; };
    directory.open = [&](const std::string& id, std::unique_ptr<sound::SoundDevice>* device) {
        ++opens;
        *device = testsupport::StallableDevice(id, std::make_shared<std::atomic<bool>>(false));
        return kStatusOk;
    };
    phones.DeviceWatch().SetDirectory(directory);

    // As at start-up: the configuration window sends the stored choice while
    // the layout is still being built.
    SendStoredMissing(mixer, QStringLiteral("USB Phones"));
    mixer.LayoutBuilt();
    // Opening the device later holds the interface up a moment: the main
    // output writes as far ahead as it can meanwhile.
    EXPECT_EQ(Engine().decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    EXPECT_TRUE(phones.StatusText().startsWith(kMissingText)) << phones.StatusText().toStdString();
    EXPECT_TRUE(phones.StatusText().contains(QStringLiteral("USB Phones")));
    EXPECT_TRUE(phones.DeviceLost());
    EXPECT_FALSE(phones.IsActive());
    EXPECT_EQ(phones.DeviceWatch().Watched(), "USB Phones");
    EXPECT_TRUE(boxes.empty());  // shown in the mixer, no box in the way
    // The stored choice is kept for the next start.
    EXPECT_EQ(Settings().GetSoundDevicePhones(), QStringLiteral("USB Phones"));

    // The main output plays the deck as if nothing were missing.
    sound::SoundDevice* mainDevice = mixer.MainOutput().Device();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderBlocks(20));
    EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
    int peak = 0;
    for (std::int16_t v : rig.Output())
        peak = std::max(peak, std::abs(static_cast<int>(v)));
    EXPECT_GT(peak, 1000);  // the tone, not silence
    // Looked for while missing, not found.
    testsupport::WaitFor([] { return false; }, 600);
    EXPECT_EQ(opens, 0);
    EXPECT_TRUE(phones.DeviceLost());

    // Plugged in: opened within five seconds, with the playing deck on it.
    pluggedIn = true;
    QElapsedTimer t;
    t.start();
    ASSERT_TRUE(testsupport::WaitFor([&] { return !phones.DeviceLost(); }, 8000));
    EXPECT_LE(t.elapsed(), 5000);
    EXPECT_EQ(opens, 1);
    EXPECT_TRUE(phones.IsActive());
    EXPECT_TRUE(phones.StatusText().startsWith(QStringLiteral("Headphones on USB Phones")))
        << phones.StatusText().toStdString();
    ASSERT_NE(phones.Output().Device(), nullptr);
    EXPECT_EQ(phones.Output().Device()->Identifier(), "USB Phones");
    EXPECT_TRUE(phones.Output().IsForwardPlaying(0));
    EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);
    EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
    EXPECT_LT(Engine().decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    EXPECT_EQ(phones.DeviceWatch().Losses(), 0);
    EXPECT_EQ(phones.DeviceWatch().Returns(), 1);
    phones.OpenDevice(std::string());
}

TEST(HeadphonesMissingAtStart, AJackServerStartedAfterTheMixersIsFoundByItsDescription) {
    const QString tone = testsupport::MakeTone("phones-missing-jack.wav", 440, 30);
    ASSERT_FALSE(tone.isEmpty());
    const QString name = QString("missing-phones-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackServer server(name);
    const QByteArray serverName = name.toUtf8();
    setenv("JACK_DEFAULT_SERVER", serverName.constData(), 1);
    ASSERT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);
    const std::string phonesId = "pa:JACK Audio Connection Kit:system";
    {
        CRynHeadphonesMixer phones;
        phones.showMessage = [](const QString&) {};
        PlaybackRig rig(false, false, &phones);
        phones.Initialise(rig.Mixer().Handle());
        CRynMainMixer& mixer = rig.Mixer();
        mixer.LayoutBuilt();
        mixer.ChooseMainDevice(sound::kNullDeviceId);
        sound::SoundDevice* mainDevice = mixer.MainOutput().Device();

        SendStoredMissing(mixer, QStringLiteral("system (JACK Audio Connection Kit)"));
        EXPECT_TRUE(phones.StatusText().startsWith(kMissingText))
            << phones.StatusText().toStdString();
        // The configuration window on the real device list; what it applies
        // goes to a log, the mixers are set up already.
        testsupport::MessageLog applied;
        CRynConfigure config;
        config.Initialise(applied.Handle());
        mixer.SetConfigureWindow(&config);
        const QComboBox* list = config.DeviceList(1);
        EXPECT_EQ(list->currentData().toInt(), device_table::kMissingDeviceItem);
        const int sent = applied.Count(UWM_SET_SOUND_DEVICE);
        EXPECT_FALSE(phones.IsActive());
        ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
        ASSERT_TRUE(rig.Drop(0));
        // The main output steps on while the headphones are missing.
        const int steps = mixer.MixSteps(0);
        testsupport::WaitFor([] { return false; }, 1000);
        EXPECT_GE(mixer.MixSteps(0) - steps, 30);  // 37.5 a second
        EXPECT_TRUE(phones.DeviceLost());

        if (!server.Start()) {
            mixer.SetConfigureWindow(nullptr);
            mixer.ChooseMainDevice(std::string());
            mixer.ChooseHeadphonesDevice(std::string());
            sound::ShutdownAudioLibrary();
            unsetenv("JACK_DEFAULT_SERVER");
            GTEST_SKIP() << "jackd with the dummy driver did not start: "
                         << server.Log().constData();
        }
        QElapsedTimer t;
        t.start();
        ASSERT_TRUE(testsupport::WaitFor([&] { return !phones.DeviceLost(); }, 8000))
            << phones.StatusText().toStdString();
        const qint64 openedMs = t.elapsed();
        std::printf("headphones missing at start: opened %lld ms after the JACK server ran\n",
                    static_cast<long long>(openedMs));
        EXPECT_LE(openedMs, 5000);
        EXPECT_TRUE(phones.IsActive());
        ASSERT_NE(phones.Output().Device(), nullptr);
        EXPECT_EQ(phones.Output().Device()->Identifier(), phonesId);
        EXPECT_TRUE(phones.StatusText().startsWith(QStringLiteral("Headphones on ")));
        EXPECT_TRUE(phones.Output().IsForwardPlaying(0));
        EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);
        EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
        // Listed now as a device, chosen, and not applied again.
        EXPECT_EQ(list->currentText(), QStringLiteral("system (JACK Audio Connection Kit)"));
        EXPECT_GT(list->currentData().toInt(), 0);
        EXPECT_EQ(list->findData(device_table::kMissingDeviceItem), -1);
        EXPECT_EQ(applied.Count(UWM_SET_SOUND_DEVICE), sent);

        mixer.SetConfigureWindow(nullptr);
        mixer.ChooseMainDevice(std::string());
        mixer.ChooseHeadphonesDevice(std::string());
    }
    sound::ShutdownAudioLibrary();
    unsetenv("JACK_DEFAULT_SERVER");
    server.Stop();
}
