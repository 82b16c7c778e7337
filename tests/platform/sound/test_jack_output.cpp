// Our layer against a real audio server: a private JACK server with the
// dummy driver, PortAudio's JACK host API, a 1 kHz tone played through a
// looping buffer and read back by a small JACK client of the test.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QStandardPaths>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

#include "JackTestSupport.h"
#include "TestSupport.h"
#include "core/SyncEvent.h"
#include "platform/sound/SoundSystem.h"

namespace {

using testsupport::JackRecorder;
using testsupport::JackTestServer;

double Frequency(const std::vector<float>& s, int rate) {
    double first = -1, last = -1;
    int crossings = 0;
    for (std::size_t i = 1; i < s.size(); ++i) {
        if (s[i - 1] < 0 && s[i] >= 0) {
            const double t = (i - 1) + (-s[i - 1]) / (s[i] - s[i - 1]);
            if (first < 0)
                first = t;
            last = t;
            ++crossings;
        }
    }
    return crossings > 1 ? (crossings - 1) * rate / (last - first) : 0.0;
}

double Rms(const std::vector<float>& s) {
    double sum = 0;
    for (float v : s)
        sum += static_cast<double>(v) * v;
    return std::sqrt(sum / s.size());
}

TEST(JackOutputTest, ToneThroughPortAudioJackIsHeardAtItsPitchAndLevel) {
    if (QStandardPaths::findExecutable("jackd").isEmpty() ||
        QStandardPaths::findExecutable("jack_wait").isEmpty())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    const QString name = QString("mixora-sound-%1").arg(QCoreApplication::applicationPid());
    JackTestServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start: " << server.Log().constData();
    const QByteArray serverName = name.toUtf8();
    setenv("JACK_DEFAULT_SERVER", serverName.constData(), 1);

    // PortAudio only sees servers that run when it initialises.
    ASSERT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);
    std::string id;
    for (const auto& d : sound::EnumerateDevices())
        if (d.identifier.rfind("pa:JACK", 0) == 0 && id.empty())
            id = d.identifier;
    ASSERT_FALSE(id.empty()) << "PortAudio lists no JACK device";

    std::unique_ptr<sound::SoundDevice> device;
    ASSERT_EQ(sound::OpenDevice(id, false, &device), kStatusOk);
    // No re-initialising under an open stream.
    EXPECT_EQ(sound::ReinitializeAudioLibrary(), kStatusFail);

    // One second of 1 kHz at half scale: the ring loops seamlessly.
    std::unique_ptr<sound::SoundBuffer> tone;
    ASSERT_EQ(device->CreateBuffer({44100 * 4, 44100}, &tone), kStatusOk);
    sound::LockedRegion r;
    ASSERT_EQ(tone->Lock(0, tone->SizeBytes(), &r), kStatusOk);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    for (int i = 0; i < 44100; ++i) {
        const auto v = static_cast<std::int16_t>(
            std::lround(16384 * std::sin(2 * std::numbers::pi * i / 44.1)));
        s[2 * i] = v;
        s[2 * i + 1] = v;
    }
    tone->Unlock(r);
    SyncEvent looped;
    const sound::NotificationPosition atStart{0, &looped};
    tone->SetNotificationPositions(&atStart, 1);
    ASSERT_EQ(tone->Play(true), kStatusOk);

    JackRecorder recorder(44100);
    ASSERT_TRUE(recorder.Open("mixora-probe", serverName.constData()));
    ASSERT_TRUE(
        testsupport::WaitFor([&] { return recorder.PortExists("PortAudio:out_1"); }, 10000));
    ASSERT_TRUE(recorder.Connect("PortAudio:out_0", "PortAudio:out_1"));
    EXPECT_TRUE(looped.Wait(10000)) << "the play cursor never passed the start of the ring";
    recorder.Begin();
    ASSERT_TRUE(testsupport::WaitFor([&] { return recorder.Full(); }, 20000))
        << "recorded " << recorder.Recorded() << " frames";
    recorder.Close();

    EXPECT_NEAR(Frequency(recorder.Left(), recorder.Rate()), 1000.0, 0.5);
    EXPECT_NEAR(Frequency(recorder.Right(), recorder.Rate()), 1000.0, 0.5);
    EXPECT_NEAR(Rms(recorder.Left()), 0.5 / std::numbers::sqrt2, 0.01);
    EXPECT_NEAR(Rms(recorder.Right()), 0.5 / std::numbers::sqrt2, 0.01);

    std::printf("JACK output: %.3f Hz, RMS %.4f; %llu underruns, %llu frames mixed\n",
                Frequency(recorder.Left(), recorder.Rate()), Rms(recorder.Left()),
                static_cast<unsigned long long>(device->UnderrunCount()),
                static_cast<unsigned long long>(device->FramesRendered()));

    tone.reset();
    device.reset();
    sound::ShutdownAudioLibrary();
    unsetenv("JACK_DEFAULT_SERVER");
    server.Stop();
}

}  // namespace
