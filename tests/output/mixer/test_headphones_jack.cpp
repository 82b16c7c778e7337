// Cueing on a real audio server: a private JACK server with the dummy
// driver, the main output on its system ports and the headphones on a second
// JACK device (a client of the test with two inputs, which PortAudio lists as
// an output device). Deck A plays 440 Hz, deck B 660 Hz; with the headphones
// cross fader at +1 the headphones carry deck B alone while the main output,
// its cross fader centred on the wedge curve, carries both.
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
#include <string>
#include <vector>

#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundSystem.h"
#include "settings/window/DeviceTable.h"

using testsupport::PlaybackRig;

namespace {

// A JACK server of this test process alone, stopped by its PID.
class CueServer {
  public:
    explicit CueServer(QString name) : name_(std::move(name)) {}
    ~CueServer() { Stop(); }

    bool Start() {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("JACK_NO_AUDIO_RESERVATION", "1");
        process_.setProcessEnvironment(env);
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start("jackd",
                       {"-n", name_, "--no-realtime", "-d", "dummy", "-r", "44100", "-p", "256"});
        return process_.waitForStarted(10000) &&
               testsupport::Run("jack_wait", {"-s", name_, "-w", "-t", "10"}, 20000);
    }

    void Stop() {
        if (process_.state() != QProcess::NotRunning) {
            process_.terminate();
            if (!process_.waitForFinished(5000)) {
                process_.kill();
                process_.waitForFinished(5000);
            }
        }
        QDir shm("/dev/shm");
        for (const QString& f :
             shm.entryList({"jack_" + name_ + "_*", "jack_sem.*_" + name_ + "_*"},
                           QDir::System | QDir::Files))
            shm.remove(f);
    }

  private:
    QString name_;
    QProcess process_;
};

// A client with two inputs that records them once asked to.
class Ears {
  public:
    explicit Ears(std::size_t frames) : left_(frames), right_(frames) {}
    ~Ears() { Close(); }

    bool Open(const char* name, const char* server) {
        jack_status_t status;
        client_ = jack_client_open(
            name, static_cast<jack_options_t>(JackNoStartServer | JackServerName), &status, server);
        if (client_ == nullptr)
            return false;
        in_[0] = jack_port_register(client_, "in_l", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        in_[1] = jack_port_register(client_, "in_r", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
        jack_set_process_callback(client_, &Ears::Process, this);
        return in_[0] && in_[1] && jack_activate(client_) == 0;
    }

    // Connects each input to the output port that feeds `target` port k.
    bool ListenTo(const char* target0, const char* target1) {
        const char* targets[2] = {target0, target1};
        for (int k = 0; k < 2; ++k) {
            jack_port_t* port = jack_port_by_name(client_, targets[k]);
            if (port == nullptr)
                return false;
            const char** feeders = jack_port_get_all_connections(client_, port);
            if (feeders == nullptr || feeders[0] == nullptr)
                return false;
            const int r = jack_connect(client_, feeders[0], jack_port_name(in_[k]));
            jack_free(feeders);
            if (r != 0)
                return false;
        }
        return true;
    }

    bool Connected() const {
        return jack_port_connected(in_[0]) > 0 && jack_port_connected(in_[1]) > 0;
    }
    void Begin() { recording_.store(true); }
    bool Full() const { return count_.load() >= left_.size(); }
    const std::vector<float>& Left() const { return left_; }
    const std::vector<float>& Right() const { return right_; }

    void Close() {
        if (client_) {
            jack_deactivate(client_);
            jack_client_close(client_);
            client_ = nullptr;
        }
    }

  private:
    static int Process(jack_nframes_t n, void* arg) {
        auto* self = static_cast<Ears*>(arg);
        if (!self->recording_.load())
            return 0;
        const auto* l = static_cast<const float*>(jack_port_get_buffer(self->in_[0], n));
        const auto* r = static_cast<const float*>(jack_port_get_buffer(self->in_[1], n));
        std::size_t at = self->count_.load(std::memory_order_relaxed);
        for (jack_nframes_t i = 0; i < n && at < self->left_.size(); ++i, ++at) {
            self->left_[at] = l[i];
            self->right_[at] = r[i];
        }
        self->count_.store(at, std::memory_order_release);
        return 0;
    }

    jack_client_t* client_ = nullptr;
    jack_port_t* in_[2] = {nullptr, nullptr};
    std::vector<float> left_, right_;
    std::atomic<bool> recording_{false};
    std::atomic<std::size_t> count_{0};
};

// Amplitude of `hz` in `s`, Hann-windowed Goertzel.
double Amplitude(const std::vector<float>& s, double hz) {
    const double w = 2.0 * std::numbers::pi * hz / 44100.0;
    double re = 0, im = 0, windowSum = 0;
    const std::size_t n = s.size();
    for (std::size_t i = 0; i < n; ++i) {
        const double hann = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * i / (n - 1));
        re += s[i] * hann * std::cos(w * i);
        im -= s[i] * hann * std::sin(w * i);
        windowSum += hann;
    }
    return 2.0 * std::hypot(re, im) / windowSum;
}

}  // namespace

TEST(HeadphonesJack, TheHeadphonesHearDeckBAloneWhileTheMainOutputHearsBoth) {
    if (QStandardPaths::findExecutable("jackd").isEmpty() ||
        QStandardPaths::findExecutable("jack_wait").isEmpty())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    const QString toneA = testsupport::MakeTone("cue-a.wav", 440, 8);
    const QString toneB = testsupport::MakeTone("cue-b.wav", 660, 8);
    ASSERT_FALSE(toneA.isEmpty());
    ASSERT_FALSE(toneB.isEmpty());
    const QString name = QString("mixora-cue-%1").arg(QCoreApplication::applicationPid());
    CueServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start";
    const QByteArray serverName = name.toUtf8();
    setenv("JACK_DEFAULT_SERVER", serverName.constData(), 1);

    // The headphones: a client with two inputs, there before PortAudio looks.
    Ears phonesEars(22050);
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
        PlaybackRig rig(true, &phones);
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

        Ears mainEars(22050);
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

        const double phonesA = Amplitude(phonesEars.Left(), 440);
        const double phonesB = Amplitude(phonesEars.Left(), 660);
        const double mainA = Amplitude(mainEars.Left(), 440);
        const double mainB = Amplitude(mainEars.Left(), 660);
        std::printf(
            "JACK cue: headphones 440 Hz %.4f, 660 Hz %.4f; main 440 Hz %.4f, 660 Hz "
            "%.4f; headphones drift %d bytes\n",
            phonesA, phonesB, mainA, mainB, phones.Sync().Drift(1));
        EXPECT_GT(phonesB, 0.03);
        EXPECT_LT(phonesA, 0.002);
        EXPECT_GT(Amplitude(phonesEars.Right(), 660), 0.03);
        EXPECT_LT(Amplitude(phonesEars.Right(), 440), 0.002);
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
