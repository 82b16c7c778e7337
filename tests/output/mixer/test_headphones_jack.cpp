// Cueing on a real audio server: a private JACK server with the dummy
// driver, the main output on its system ports and the headphones on a second
// JACK device (a client of the test with two inputs, which PortAudio lists as
// an output device). Deck A plays 440 Hz, deck B 660 Hz; with the headphones
// cross fader at +1 the headphones carry deck B alone while the main output,
// its cross fader centred on the wedge curve, carries both.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QStandardPaths>
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
#include "settings/window/DeviceTable.h"

using testsupport::PlaybackRig;

TEST(HeadphonesJack, TheHeadphonesHearDeckBAloneWhileTheMainOutputHearsBoth) {
    if (QStandardPaths::findExecutable("jackd").isEmpty() ||
        QStandardPaths::findExecutable("jack_wait").isEmpty())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    const QString toneA = testsupport::MakeTone("cue-a.wav", 440, 8);
    const QString toneB = testsupport::MakeTone("cue-b.wav", 660, 8);
    ASSERT_FALSE(toneA.isEmpty());
    ASSERT_FALSE(toneB.isEmpty());
    const QString name = QString("mixora-cue-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackTestServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start";
    const QByteArray serverName = name.toUtf8();
    setenv("JACK_DEFAULT_SERVER", serverName.constData(), 1);

    // The headphones: a client with two inputs, there before PortAudio looks.
    testsupport::JackRecorder phonesEars(22050);
    ASSERT_TRUE(phonesEars.Open("mixora-cue", serverName.constData()));
    ASSERT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);
    const std::vector<sound::SoundDeviceInfo> devices = sound::EnumerateDevices();
    device_table::Publish(devices);
    std::string mainId, phonesId;
    for (const auto& d : devices) {
        if (d.identifier.rfind("pa:JACK", 0) != 0)
            continue;
        if (d.identifier.find(":system") != std::string::npos && mainId.empty())
            mainId = d.identifier;
        if (d.identifier.find("mixora-cue") != std::string::npos)
            phonesId = d.identifier;
    }
    ASSERT_FALSE(mainId.empty()) << "PortAudio lists no JACK system device";
    ASSERT_FALSE(phonesId.empty()) << "PortAudio does not list the test's client as a device";

    {
        CRynHeadphonesMixer phones;
        PlaybackRig rig(true, false, &phones);
        phones.Initialise(rig.Mixer().Handle());
        CRynMainMixer& mixer = rig.Mixer();
        // Both devices chosen as the configuration window chooses them.
        SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 0, device_table::IndexOf(mainId));
        SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 1, device_table::IndexOf(phonesId));
        ASSERT_TRUE(mixer.MainOutput().HasDevice());
        ASSERT_EQ(mixer.MainOutput().Device()->Identifier(), mainId);
        ASSERT_TRUE(phones.IsActive()) << phones.StatusText().toStdString();
        ASSERT_EQ(phones.Output().Device()->Identifier(), phonesId);

        // Main: wedge curve, fader centred, both decks at full level.
        mixer.Panel().SetCurveParameter(1.0f);
        mixer.Panel().SetCrossFader(0.0f);
        mixer.Panel().SetVolume(1.0f);
        // Headphones: the same curve, all deck B.
        phones.SetLevel(0, 1.0f);
        phones.SetLevel(1, 1.0f);
        phones.SetCrossFader(1.0f);
        phones.SetVolume(1.0f);

        ASSERT_TRUE(rig.LoadAndPrime(0, {toneA}));
        ASSERT_TRUE(rig.LoadAndPrime(1, {toneB}));
        ASSERT_TRUE(rig.Drop(0));
        ASSERT_TRUE(rig.Drop(1));
        ASSERT_TRUE(testsupport::WaitFor([&] { return phonesEars.Connected(); }, 5000))
            << "the headphones stream is not connected to the test's client";

        testsupport::JackRecorder mainEars(22050);
        ASSERT_TRUE(mainEars.Open("mixora-main-ears", serverName.constData()));
        ASSERT_TRUE(mainEars.ListenTo("system:playback_1", "system:playback_2"));
        // A second of playing (the mix cycle runs on this thread's events),
        // then half a second of both outputs.
        testsupport::WaitFor([] { return false; }, 1000);
        phonesEars.Begin();
        mainEars.Begin();
        ASSERT_TRUE(
            testsupport::WaitFor([&] { return phonesEars.Full() && mainEars.Full(); }, 10000));
        mainEars.Close();

        const double phonesA = testsupport::ToneAmplitude(phonesEars.Left(), 440);
        const double phonesB = testsupport::ToneAmplitude(phonesEars.Left(), 660);
        const double mainA = testsupport::ToneAmplitude(mainEars.Left(), 440);
        const double mainB = testsupport::ToneAmplitude(mainEars.Left(), 660);
        std::printf(
            "JACK cue: headphones 440 Hz %.4f, 660 Hz %.4f; main 440 Hz %.4f, 660 Hz "
            "%.4f; headphones drift %d bytes\n",
            phonesA, phonesB, mainA, mainB, phones.Sync().Drift(1));
        EXPECT_GT(phonesB, 0.03);
        EXPECT_LT(phonesA, 0.002);
        EXPECT_GT(testsupport::ToneAmplitude(phonesEars.Right(), 660), 0.03);
        EXPECT_LT(testsupport::ToneAmplitude(phonesEars.Right(), 440), 0.002);
        EXPECT_GT(mainA, 0.03);
        EXPECT_GT(mainB, 0.03);
        EXPECT_TRUE(phones.IsActive());

        mixer.ChooseMainDevice(std::string());
        mixer.ChooseHeadphonesDevice(std::string());
    }
    phonesEars.Close();
    sound::ShutdownAudioLibrary();
    unsetenv("JACK_DEFAULT_SERVER");
    server.Stop();
}
