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
#include <functional>
#include <string>
#include <vector>

#include "JackTestSupport.h"
#include "TestSupport.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/engine/RingGeometry.h"
#include "output/engine/WriteAheadTarget.h"
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
    mixer.LayoutBuilt();  // latency requests count from now on
    const int writeAhead = Engine().decks[0].writeAheadBlocks.load();
    ASSERT_LT(writeAhead, WriteAheadTarget::kTopBlocks);

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
    // Reopening will hold the thread up: the main output writes further ahead.
    EXPECT_EQ(Engine().decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    EXPECT_EQ(Engine().decks[1].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
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
    EXPECT_EQ(Engine().decks[0].writeAheadBlocks.load(), writeAhead);
    EXPECT_TRUE(h.IsForwardPlaying(0));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);
    ASSERT_TRUE(rig.RenderBlocks(5));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);
    EXPECT_EQ(m.Device(), mainDevice);
    EXPECT_EQ(m.ForwardBuffer(0), mainBuffer);

    // Lost again, and the user chooses no headphones meanwhile: the loss
    // ends, and so does the request for the longer write-ahead.
    listed = false;
    stalled = std::make_shared<std::atomic<bool>>(false);
    ASSERT_TRUE(phones.OpenDevice(testsupport::StallableDevice("test:phones", stalled)));
    stalled->store(true);
    ASSERT_TRUE(testsupport::WaitFor([&] { return phones.DeviceLost(); }, 3000));
    EXPECT_EQ(Engine().decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    mixer.ChooseHeadphonesDevice(std::string());
    EXPECT_FALSE(phones.DeviceLost());
    EXPECT_EQ(phones.StatusText(), "No headphones device");
    EXPECT_EQ(Engine().decks[0].writeAheadBlocks.load(), writeAhead);
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
        mixer.LayoutBuilt();
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

        // The main output's mix steps, looked at whenever this thread waits:
        // the longest pause between two while the headphones server goes
        // away and comes back. The server is stopped and started without
        // waiting for it, so only the program's own work can hold the steps
        // up; a pause longer than the write-ahead would let the main device
        // play blocks not written again (a glitch).
        // The margin of a pause is what the main output had written ahead
        // of its play cursor at the step before it, less the pause.
        CRynAudioOutput& main = mixer.MainOutput();
        auto aheadMs = [&] {
            const int bytes = (main.ForwardWriteCursor(0).bytes - main.ForwardPlayCursor(0).bytes +
                               output::kRingBytes) %
                              output::kRingBytes;
            return static_cast<qint64>(bytes) * 1000 / (4 * 44100);
        };
        int lastSteps = mixer.MixSteps(0);
        QElapsedTimer sinceStep;
        sinceStep.start();
        qint64 longestPause = 0;
        qint64 aheadAtStep = aheadMs();
        qint64 leastMargin = aheadAtStep;
        auto watchMain = [&] {
            if (mixer.MixSteps(0) != lastSteps) {
                longestPause = std::max(longestPause, sinceStep.elapsed());
                leastMargin = std::min(leastMargin, aheadAtStep - sinceStep.elapsed());
                lastSteps = mixer.MixSteps(0);
                aheadAtStep = aheadMs();
                sinceStep.restart();
            }
        };
        auto waitWatching = [&](const std::function<bool()>& pred, int ms) {
            return testsupport::WaitFor(
                [&] {
                    watchMain();
                    return pred();
                },
                ms);
        };
        const int stepsBefore = mixer.MixSteps(0);
        QElapsedTimer episode;
        episode.start();

        server.Terminate();
        QElapsedTimer t;
        t.start();
        ASSERT_TRUE(waitWatching([&] { return phones.DeviceLost(); }, 5000))
            << phones.StatusText().toStdString();
        const qint64 shownMs = t.elapsed();
        EXPECT_LE(shownMs, 1000);
        EXPECT_TRUE(phones.StatusText().startsWith("Headphones device lost: "))
            << phones.StatusText().toStdString();
        EXPECT_FALSE(phones.IsActive());
        ASSERT_TRUE(waitWatching([&] { return !server.Running(); }, 10000));
        server.Stop();  // its files
        // The main output plays on: its deck steps on for a second more.
        const int stepsAtLoss = mixer.MixSteps(0);
        waitWatching([] { return false; }, 1000);
        EXPECT_GE(mixer.MixSteps(0) - stepsAtLoss, 30);  // 37.5 a second
        EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);
        EXPECT_TRUE(mixer.MainOutput().IsForwardPlaying(0));
        EXPECT_TRUE(rig.Deck(0).NeedleDown());

        ASSERT_TRUE(server.Launch());
        t.restart();
        ASSERT_TRUE(waitWatching([&] { return !phones.DeviceLost(); }, 8000))
            << phones.StatusText().toStdString();
        const qint64 backMs = t.elapsed();
        EXPECT_LE(backMs, 5000);
        ASSERT_TRUE(phones.IsActive());
        EXPECT_EQ(phones.Output().Device()->Identifier(), phonesId);
        EXPECT_TRUE(phones.Output().IsForwardPlaying(0));
        EXPECT_EQ(mixer.MainOutput().Device(), mainDevice);

        waitWatching([] { return false; }, 500);  // the steps after the return
        // Every step of the main output ran: 37.5 a second all along.
        const double stepsPerSecond =
            (mixer.MixSteps(0) - stepsBefore) * 1000.0 / static_cast<double>(episode.elapsed());

        // And the tone is heard on the server's playback ports again once the
        // blocks written since the return come round: three seconds of them,
        // looked at a tenth of a second at a time.
        testsupport::JackRecorder ears(3 * 44100);
        ASSERT_TRUE(ears.Open("realuse-ears", serverName.constData()));
        ASSERT_TRUE(testsupport::WaitFor(
            [&] { return ears.ListenTo("system:playback_1", "system:playback_2"); }, 3000));
        const qint64 recordedFrom = t.elapsed();
        ears.Begin();
        ASSERT_TRUE(testsupport::WaitFor([&] { return ears.Full(); }, 8000));
        ears.Close();
        const std::size_t window = static_cast<std::size_t>(ears.Rate()) / 10;
        qint64 heardMs = -1;
        for (std::size_t at = 0; at + window <= ears.Left().size() && heardMs < 0; at += window) {
            const std::vector<float> part(ears.Left().begin() + at,
                                          ears.Left().begin() + at + window);
            if (testsupport::ToneAmplitude(part, 440, ears.Rate()) > 0.03)
                heardMs = recordedFrom + static_cast<qint64>(at * 1000 / ears.Rate());
        }
        std::printf(
            "headphones JACK loss: shown after %lld ms; reopened %lld ms and heard %lld ms after "
            "the server started; the main output: %.1f mix steps a second, longest pause %lld "
            "ms, least margin %lld ms\n",
            shownMs, backMs, heardMs, stepsPerSecond, longestPause, leastMargin);
        ASSERT_GE(heardMs, 0) << "the tone is not heard on the returned headphones device";
        EXPECT_LE(heardMs, 5000);
        EXPECT_GT(stepsPerSecond, 33.0);
        // No pause ran past what the main output had written: nothing stale
        // was heard on it.
        EXPECT_GT(leastMargin, 0);

        mixer.ChooseMainDevice(std::string());
        mixer.ChooseHeadphonesDevice(std::string());
    }
    sound::ShutdownAudioLibrary();
    unsetenv("JACK_DEFAULT_SERVER");
    server.Stop();
}
