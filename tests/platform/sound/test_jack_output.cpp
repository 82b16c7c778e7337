// Our layer against a real audio server: a private JACK server with the
// dummy driver, PortAudio's JACK host API, a 1 kHz tone played through a
// looping buffer and read back by a small JACK client of the test.
#include <gtest/gtest.h>
#include <jack/jack.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

#include "JackTestServer.h"
#include "TestSupport.h"
#include "core/SyncEvent.h"
#include "platform/sound/SoundSystem.h"

namespace {

// Records the two inputs into preallocated memory from JACK's process thread.
class Recorder {
  public:
    explicit Recorder(std::size_t frames) : left_(frames), right_(frames) {}
    ~Recorder() { Close(); }

    bool Open(const char* server) {
        jack_status_t status;
        client_ = jack_client_open("mixora-probe",
                                   static_cast<jack_options_t>(JackNoStartServer | JackServerName),
                                   &status, server);
        if (client_ == nullptr)
            return false;
        inL_ = jack_port_register(client_, "in_l", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        inR_ = jack_port_register(client_, "in_r", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        rate_ = static_cast<int>(jack_get_sample_rate(client_));
        jack_set_process_callback(client_, &Recorder::Process, this);
        return inL_ && inR_ && jack_activate(client_) == 0;
    }

    bool Connect(const char* left, const char* right) {
        return jack_connect(client_, left, jack_port_name(inL_)) == 0 &&
               jack_connect(client_, right, jack_port_name(inR_)) == 0;
    }

    bool PortExists(const char* name) { return jack_port_by_name(client_, name) != nullptr; }
    void Begin() { recording_.store(true); }
    std::size_t Recorded() const { return count_.load(); }
    bool Full() const { return count_.load() >= left_.size(); }
    const std::vector<float>& Left() const { return left_; }
    const std::vector<float>& Right() const { return right_; }
    int Rate() const { return rate_; }

    void Close() {
        if (client_) {
            jack_deactivate(client_);
            jack_client_close(client_);
            client_ = nullptr;
        }
    }

  private:
    static int Process(jack_nframes_t n, void* arg) {
        auto* self = static_cast<Recorder*>(arg);
        if (!self->recording_.load())
            return 0;
        const auto* l = static_cast<const float*>(jack_port_get_buffer(self->inL_, n));
        const auto* r = static_cast<const float*>(jack_port_get_buffer(self->inR_, n));
        std::size_t at = self->count_.load(std::memory_order_relaxed);
        for (jack_nframes_t i = 0; i < n && at < self->left_.size(); ++i, ++at) {
            self->left_[at] = l[i];
            self->right_[at] = r[i];
        }
        self->count_.store(at, std::memory_order_release);
        return 0;
    }

    jack_client_t* client_ = nullptr;
    jack_port_t* inL_ = nullptr;
    jack_port_t* inR_ = nullptr;
    int rate_ = 0;
    std::vector<float> left_, right_;
    std::atomic<bool> recording_{false};
    std::atomic<std::size_t> count_{0};
};

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
    testsupport::JackServer server(name);
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
    // A JACK device is Mixora's own client, not a PortAudio stream: the
    // library may start afresh under it (to look for other devices) and it
    // plays on.
    EXPECT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);

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

    Recorder recorder(44100);
    ASSERT_TRUE(recorder.Open(serverName.constData()));
    ASSERT_TRUE(testsupport::WaitFor([&] { return recorder.PortExists("Mixora:out_1"); }, 10000));
    ASSERT_TRUE(recorder.Connect("Mixora:out_0", "Mixora:out_1"));
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
