// The stored main device is not there when the program starts (a JACK
// server not started yet): the real configuration window keeps it as the
// choice, the main mixer plays the decks on the Null device and says the
// device is missing, on the mixer and in the decks' track displays. A real
// JACK server (dummy driver) started after the mixer is opened within five
// seconds and the deck is heard on it, without a restart; choosing another
// device during the wait ends it.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "JackTestSupport.h"
#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundSystem.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"
#include "settings/window/DeviceTable.h"

namespace {

const char kJackDevice[] = "pa:JACK Audio Connection Kit:system";
const QString kJackDescription = QStringLiteral("system (JACK Audio Connection Kit)");

// A JACK server of its own, not started, that the sound layer looks at; the
// stored main device is its output. Undone at the end.
class MainMissingAtStart : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!testsupport::JackServer::Installed())
            GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
        name_ = QString("missing-main-%1").arg(QCoreApplication::applicationPid());
        server_ = std::make_unique<testsupport::JackServer>(name_);
        serverName_ = name_.toUtf8();
        setenv("JACK_DEFAULT_SERVER", serverName_.constData(), 1);
        forced_ = qgetenv("MIXORA_SOUND_DEVICE");
        qunsetenv("MIXORA_SOUND_DEVICE");
        ASSERT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);
        Settings().SetSoundDeviceMain(kJackDescription);
        Settings().SetSoundDevicePhones(QString::fromLatin1(device_table::kDisabledText));
    }
    void TearDown() override {
        sound::ShutdownAudioLibrary();
        unsetenv("JACK_DEFAULT_SERVER");
        if (!forced_.isEmpty())
            qputenv("MIXORA_SOUND_DEVICE", forced_);
        Settings().SetSoundDeviceMain(QString());
        Settings().SetSoundDevicePhones(QString());
        if (server_)
            server_->Stop();
    }

    // The program's start: the configuration window fills its lists and
    // applies the stored choices to the main mixer.
    static void Configure(CRynConfigure& config, CRynMainMixer& mixer) {
        mixer.SetConfigureWindow(&config);
        config.Initialise(mixer.Handle());
        mixer.LayoutBuilt();
    }

    QString name_;
    QByteArray serverName_;
    QByteArray forced_;
    std::unique_ptr<testsupport::JackServer> server_;
};

}  // namespace

TEST_F(MainMissingAtStart, TheStoredJackDeviceIsShownPlayedSilentlyAndOpenedWhenItsServerStarts) {
    const QString tone = testsupport::MakeTone("main-missing-jack.wav", 440, 30);
    ASSERT_FALSE(tone.isEmpty());
    {
        testsupport::PlaybackRig rig(false, false);
        CRynMainMixer& mixer = rig.Mixer();
        CRynConfigure config;
        Configure(config, mixer);

        // The stored choice stays, listed and marked missing.
        const QComboBox* list = config.DeviceList(0);
        EXPECT_EQ(list->currentText(), kJackDescription);
        EXPECT_EQ(list->currentData().toInt(), device_table::kMissingDeviceItem);
        EXPECT_EQ(Settings().GetSoundDeviceMain(), kJackDescription);
        // Shown where the user looks: the mixer and the deck's track display.
        EXPECT_TRUE(mixer.DeviceNoticeText().startsWith(
            QStringLiteral("Main sound device missing: ") + kJackDescription))
            << mixer.DeviceNoticeText().toStdString();
        EXPECT_TRUE(mixer.DeviceNoticeText().contains(QStringLiteral("Mixora opens it")));
        EXPECT_EQ(rig.Deck(0).TrackDisplayText(),
                  QStringLiteral("Sound device missing: ") + kJackDescription);
        EXPECT_TRUE(mixer.MainWatch().Lost());
        EXPECT_EQ(mixer.MainWatch().Watched(), kJackDescription.toStdString());
        ASSERT_NE(mixer.MainOutput().Device(), nullptr);
        EXPECT_EQ(mixer.MainOutput().Device()->Identifier(), sound::kNullDeviceId);

        // The deck plays on the Null device meanwhile: its time runs.
        ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
        ASSERT_TRUE(rig.Drop(0));
        const int steps = mixer.MixSteps(0);
        testsupport::WaitFor([] { return false; }, 1000);
        EXPECT_GE(mixer.MixSteps(0) - steps, 30);  // 37.5 a second
        EXPECT_GT(rig.Deck(0).ElapsedSeconds(), 0.5);
        EXPECT_TRUE(mixer.MainWatch().Lost());  // looked for, not there

        if (!server_->Start())
            GTEST_SKIP() << "jackd with the dummy driver did not start: "
                         << server_->Log().constData();
        QElapsedTimer t;
        t.start();
        ASSERT_TRUE(testsupport::WaitFor([&] { return !mixer.MainWatch().Lost(); }, 8000))
            << mixer.DeviceNoticeText().toStdString();
        const qint64 openedMs = t.elapsed();
        std::printf("main device missing at start: opened %lld ms after the JACK server ran\n",
                    static_cast<long long>(openedMs));
        EXPECT_LE(openedMs, 5000);
        ASSERT_NE(mixer.MainOutput().Device(), nullptr);
        EXPECT_EQ(mixer.MainOutput().Device()->Identifier(), kJackDevice);
        EXPECT_TRUE(mixer.DeviceNoticeText().isEmpty());
        EXPECT_NE(rig.Deck(0).TrackDisplayText(),
                  QStringLiteral("Sound device missing: ") + kJackDescription);
        EXPECT_EQ(mixer.MainWatch().Returns(), 1);
        // The configuration window lists it now as a device, no longer missing.
        EXPECT_EQ(list->currentText(), kJackDescription);
        EXPECT_GT(list->currentData().toInt(), 0);
        EXPECT_EQ(list->findData(device_table::kMissingDeviceItem), -1);
        // As after a loss, what played silently stopped; the needle dropped
        // again is heard on the device (recorded half a second at a time).
        EXPECT_FALSE(rig.Deck(0).NeedleDown());
        ASSERT_TRUE(rig.Drop(0));
        QElapsedTimer sinceDrop;
        sinceDrop.start();
        double heard = 0;
        int windows = 0;  // quarter seconds listened to
        while (heard <= 0.03 && sinceDrop.elapsed() < 10000) {
            ++windows;
            testsupport::JackRecorder ears(11025);
            ASSERT_TRUE(ears.Open("mixora-main-missing-ears", serverName_.constData()));
            ASSERT_TRUE(ears.ListenTo("system:playback_1", "system:playback_2"));
            ears.Begin();
            ASSERT_TRUE(testsupport::WaitFor([&] { return ears.Full(); }, 10000));
            ears.Close();
            heard = testsupport::ToneAmplitude(ears.Left(), 440, ears.Rate());
        }
        EXPECT_GT(heard, 0.03);  // the tone through the deck's level and the fader's curve
        // Heard at once: rings left unprimed on the new device stay silent
        // for a lap of the ring (over 3 s).
        EXPECT_LE(windows, 2);
        std::printf(
            "main device missing at start: the tone heard %lld ms after the needle "
            "dropped again\n",
            static_cast<long long>(sinceDrop.elapsed()));
        EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
        // The choice is kept for the next start.
        EXPECT_EQ(Settings().GetSoundDeviceMain(), kJackDescription);

        mixer.ChooseMainDevice(std::string());
        mixer.SetConfigureWindow(nullptr);
    }
}

TEST_F(MainMissingAtStart, ChoosingAnotherDeviceEndsTheWait) {
    testsupport::PlaybackRig rig(false, false);
    CRynMainMixer& mixer = rig.Mixer();
    CRynConfigure config;
    Configure(config, mixer);
    ASSERT_TRUE(mixer.MainWatch().Lost());
    ASSERT_FALSE(mixer.DeviceNoticeText().isEmpty());

    // The user picks the silent Null device.
    const int null = config.DeviceList(0)->findText(QStringLiteral("Null Output (silent)"));
    ASSERT_GT(null, 0);
    config.ChooseDevice(0, null);
    EXPECT_FALSE(mixer.MainWatch().Lost());
    EXPECT_TRUE(mixer.MainWatch().Watched().empty());
    EXPECT_TRUE(mixer.DeviceNoticeText().isEmpty());
    EXPECT_NE(rig.Deck(0).TrackDisplayText(),
              QStringLiteral("Sound device missing: ") + kJackDescription);
    EXPECT_EQ(Settings().GetSoundDeviceMain(), QStringLiteral("Null Output (silent)"));

    // The device that was waited for appears: nothing moves.
    if (!server_->Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start: " << server_->Log().constData();
    testsupport::WaitFor([] { return false; }, 2600);
    ASSERT_NE(mixer.MainOutput().Device(), nullptr);
    EXPECT_EQ(mixer.MainOutput().Device()->Identifier(), sound::kNullDeviceId);
    EXPECT_EQ(mixer.MainWatch().Returns(), 0);
    EXPECT_TRUE(mixer.DeviceNoticeText().isEmpty());
    mixer.ChooseMainDevice(std::string());
}
