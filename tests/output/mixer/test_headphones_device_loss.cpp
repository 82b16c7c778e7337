// The headphones device goes away while a deck plays and comes back: the
// headphones mixer shows the loss within a second, the main output plays on
// untouched, and the chosen device is opened again and handed the playing
// deck, in step with the main device. Once on a test card that can be
// "unplugged", once on a real JACK server (dummy driver) that stops and
// starts again.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "JackTestSupport.h"
#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundSystem.h"
#include "platform/sound/StallableBackend.h"

using testsupport::PlaybackRig;

TEST(HeadphonesDeviceLoss, AnUnpluggedCardIsShownAndReopenedWithoutTouchingTheMainOutput) {
    const QString tone = testsupport::MakeTone("phones-loss.wav", 440, 20);
    ASSERT_FALSE(tone.isEmpty());
    CRynHeadphonesMixer phones;
    std::vector<QString> boxes;
    phones.showMessage = [&](const QString& text) { boxes.push_back(text); };
    PlaybackRig rig(false, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();

    auto stalled = std::make_shared<std::atomic<bool>>(false);
    bool listed = true;
    int opens = 0;
    OutputDeviceWatch::Directory directory;
    directory.refresh = [] { return true; };
    directory.listed = [&](const std::string& id) { return listed && id == "test:phones"; };
    directory.open = [&](const std::string& id, std::unique_ptr<sound::SoundDevice>* device) {
        ++opens;
        *device = testsupport::StallableDevice(id, std::make_shared<std::atomic<bool>>(false));
        return kStatusOk;
    };
    phones.DeviceWatch().SetDirectory(directory);
    ASSERT_TRUE(phones.OpenDevice(testsupport::StallableDevice("test:phones", stalled)));
    EXPECT_EQ(phones.DeviceWatch().Watched(), "test:phones");
    phones.OpenDevice(std::string());  // no headphones: nothing watched
    EXPECT_TRUE(phones.DeviceWatch().Watched().empty());
    ASSERT_TRUE(phones.OpenDevice(testsupport::StallableDevice("test:phones", stalled)));
    phones.SetVolume(0.6f);
    phones.SetCrossFader(0.5f);

    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(10));
    CRynAudioOutput& h = phones.Output();
    CRynAudioOutput& m = mixer.MainOutput();
    ASSERT_TRUE(h.IsForwardPlaying(0));
    sound::SoundDevice* mainDevice = m.Device();
    sound::SoundBuffer* mainBuffer = m.ForwardBuffer(0);

    // The card is unplugged: shown within a second, the headphones quiet.
    stalled->store(true);
    QElapsedTimer t;
    t.start();
    ASSERT_TRUE(testsupport::WaitFor([&] { return phones.DeviceLost(); }, 3000));
    EXPECT_LE(t.elapsed(), 1000);
    EXPECT_FALSE(phones.IsActive());
    EXPECT_TRUE(phones.StatusText().startsWith("Headphones device lost: test:phones (test card)"))
        << phones.StatusText().toStdString();
    EXPECT_TRUE(boxes.empty());
    ASSERT_TRUE(h.HasDevice());
    EXPECT_EQ(h.Device()->Identifier(), sound::kNullDeviceId);
    // The main output plays on as it was.
    ASSERT_TRUE(rig.RenderBlocks(20));
    EXPECT_EQ(m.Device(), mainDevice);
    EXPECT_EQ(m.ForwardBuffer(0), mainBuffer);
    EXPECT_TRUE(m.IsForwardPlaying(0));
    EXPECT_TRUE(rig.Deck(0).NeedleDown());

    // While the card is not listed it is only looked for.
    listed = false;
    testsupport::WaitFor([] { return false; }, OutputDeviceWatch::kRetryMs + 300);
    EXPECT_TRUE(phones.DeviceLost());
    EXPECT_EQ(opens, 0);

    // Plugged in again: opened, the volume as it was, joined to the deck.
    listed = true;
    t.restart();
    ASSERT_TRUE(testsupport::WaitFor([&] { return !phones.DeviceLost(); }, 5000));
    EXPECT_LE(t.elapsed(), OutputDeviceWatch::kRetryMs + 500);
    EXPECT_EQ(opens, 1);
    EXPECT_TRUE(phones.IsActive());
    ASSERT_TRUE(h.HasDevice());
    EXPECT_EQ(h.Device()->Identifier(), "test:phones");
    EXPECT_NEAR(phones.Volume(), 0.6f, 1e-6);
    EXPECT_FLOAT_EQ(phones.CrossFader(), 0.5f);
    EXPECT_EQ(phones.StatusText(), "Headphones on test:phones (test card)");
    EXPECT_TRUE(h.IsForwardPlaying(0));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);
    ASSERT_TRUE(rig.RenderBlocks(5));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);
    EXPECT_EQ(m.Device(), mainDevice);
    EXPECT_EQ(m.ForwardBuffer(0), mainBuffer);
    mixer.ChooseHeadphonesDevice(std::string());
}

TEST(HeadphonesDeviceLoss, TheHeadphonesJackServerStopsAndStartsWhileTheMainOutputPlaysOn) {
    if (!testsupport::JackServer::Installed())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    const QString tone = testsupport::MakeTone("phones-jack-loss.wav", 440, 60);
    ASSERT_FALSE(tone.isEmpty());
    const QString name = QString("realuse-phones-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start: " << server.Log().constData();
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
        // The main output on the Null device's real-time clock, the
        // headphones on the JACK server.
        mixer.ChooseMainDevice(sound::kNullDeviceId);
        mixer.ChooseHeadphonesDevice(phonesId);
        ASSERT_TRUE(phones.IsActive()) << phones.StatusText().toStdString();
        ASSERT_EQ(phones.Output().Device()->Identifier(), phonesId);
        phones.SetLevel(0, 1.0f);
        phones.SetVolume(1.0f);
        ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
        ASSERT_TRUE(rig.Drop(0));
        testsupport::WaitFor([] { return false; }, 1000);
        ASSERT_TRUE(phones.Output().IsForwardPlaying(0));
        sound::SoundDevice* mainDevice = mixer.MainOutput().Device();

        // The mix steps of the main device, sampled every 10 ms: the longest
        // pause while the headphones server goes away and comes back.
        int lastSteps = mixer.MixSteps(0);
        QElapsedTimer sinceStep;
        sinceStep.start();
        qint64 longestPause = 0;
        auto watchMain = [&] {
            if (mixer.MixSteps(0) != lastSteps) {
                longestPause = std::max(longestPause, sinceStep.elapsed());
                lastSteps = mixer.MixSteps(0);
                sinceStep.restart();
            }
        };

        server.Stop();
        QElapsedTimer t;
        t.start();
        ASSERT_TRUE(testsupport::WaitFor(
            [&] {
                watchMain();
                return phones.DeviceLost();
            },
            5000))
            << phones.StatusText().toStdString();
        const qint64 shownMs = t.elapsed();
        EXPECT_LE(shownMs, 1000);
        EXPECT_TRUE(phones.StatusText().startsWith("Headphones device lost: "))
            << phones.StatusText().toStdString();
        // The main output renders on: its deck steps for a second more.
        const int stepsAtLoss = mixer.MixSteps(0);
        testsupport::WaitFor(
            [&] {
                watchMain();
                return false;
            },
            1000);
        EXPECT_GE(mixer.MixSteps(0) - stepsAtLoss, 30);  // 37.5 a second
        EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);
        EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
        EXPECT_TRUE(rig.Deck(0).NeedleDown());

        ASSERT_TRUE(server.Start()) << server.Log().constData();
        t.restart();
        ASSERT_TRUE(testsupport::WaitFor(
            [&] {
                watchMain();
                return !phones.DeviceLost();
            },
            8000))
            << phones.StatusText().toStdString();
        const qint64 backMs = t.elapsed();
        EXPECT_LE(backMs, 5000);
        ASSERT_TRUE(phones.IsActive());
        EXPECT_EQ(phones.Output().Device()->Identifier(), phonesId);
        EXPECT_TRUE(phones.Output().IsForwardPlaying(0));
        EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);

        // And the tone is heard on the server's playback ports again.
        testsupport::JackRecorder ears(11025);
        ASSERT_TRUE(ears.Open("realuse-ears", serverName.constData()));
        ASSERT_TRUE(testsupport::WaitFor(
            [&] {
                watchMain();
                return ears.ListenTo("system:playback_1", "system:playback_2");
            },
            3000));
        ears.Begin();
        ASSERT_TRUE(testsupport::WaitFor(
            [&] {
                watchMain();
                return ears.Full();
            },
            5000));
        const double heard = testsupport::ToneAmplitude(ears.Left(), 440, ears.Rate());
        ears.Close();
        std::printf(
            "headphones JACK loss: shown after %lld ms, playing again %lld ms after the server "
            "started; 440 Hz at %.4f; the main output's longest pause between mix steps "
            "%lld ms\n",
            shownMs, backMs, heard, longestPause);
        EXPECT_GT(heard, 0.03);
        // Steps come every 26.7 ms; the loss and the return must not hold the
        // main output's mix cycle up for long.
        EXPECT_LT(longestPause, 250);

        mixer.ChooseMainDevice(std::string());
        mixer.ChooseHeadphonesDevice(std::string());
    }
    sound::ShutdownAudioLibrary();
    unsetenv("JACK_DEFAULT_SERVER");
    server.Stop();
}
