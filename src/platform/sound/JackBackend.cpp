#include "platform/sound/JackBackend.h"

#include <jack/jack.h>
#include <sys/stat.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "core/ThreadRole.h"
#include "core/Trace.h"
#include "platform/sound/SoundMixer.h"

namespace sound {

namespace {

constexpr char kClientName[] = "Mixora";
// Frames mixed at a time; JACK periods longer than this are mixed in parts.
constexpr int kChunkFrames = 1024;

// libjack's complaints ("cannot connect to server") go nowhere: a missing
// server is an answer, not an error.
void Quiet(const char*) {}

// libjack maps JACK's shared registry (/dev/shm/jack-shm-registry) with this
// process's first client and keeps that mapping for good: it cannot attach
// the registry again. A registry removed and made afresh (a clean-up of
// /dev/shm while no server ran) therefore leaves this process unable to
// reach any JACK server until it restarts ("Map shared memory segments"
// fails in every later jack_client_open), while the server itself is fine.
// The registry's inode, seen at the first client, tells that case apart
// from a server that is simply away. Guarded by g_openMutex; never on the
// audio thread.
constexpr char kRegistryPath[] = "/dev/shm/jack-shm-registry";
std::mutex g_openMutex;
ino_t g_registryInode = 0;  // 0 until a client opened
int g_lastStatus = -1;      // the last failed open's status, traced once
bool g_replacedTold = false;

ino_t RegistryInode() {
    struct stat st {};
    return stat(kRegistryPath, &st) == 0 ? st.st_ino : 0;
}

// jack_client_open without a server start, silent, traced when its outcome
// changes: `who` names the caller in the trace.
jack_client_t* OpenClient(const char* name, const char* who) {
    jack_set_error_function(Quiet);
    jack_set_info_function(Quiet);
    jack_status_t status{};
    jack_client_t* client = jack_client_open(name, JackNoStartServer, &status);
    std::lock_guard lock(g_openMutex);
    if (client != nullptr) {
        if (g_registryInode == 0)
            g_registryInode = RegistryInode();
        if (g_lastStatus != 0)
            qCDebug(lcTrace, "JACK: %s connected", who);
        g_lastStatus = 0;
        return client;
    }
    if (g_lastStatus != static_cast<int>(status)) {
        qCDebug(lcTrace, "JACK: %s cannot open a client, status 0x%x%s", who,
                static_cast<unsigned>(status), (status & JackServerFailed) ? " (no server)" : "");
    }
    g_lastStatus = static_cast<int>(status);
    // A server answered but its memory could not be mapped: is the
    // registry this process holds still the one in /dev/shm?
    if (!(status & JackServerFailed) && g_registryInode != 0 && !g_replacedTold) {
        const ino_t now = RegistryInode();
        if (now != 0 && now != g_registryInode) {
            g_replacedTold = true;
            qCWarning(lcTrace,
                      "JACK's shared registry %s was replaced after Mixora first connected; "
                      "JACK devices are reachable again after Mixora restarts",
                      kRegistryPath);
        }
    }
    return nullptr;
}

class JackBackend : public SoundBackend {
  public:
    JackBackend(std::string target, PrimaryFormat format)
        : target_(std::move(target)), format_(format), chunk_(2 * kChunkFrames) {}
    ~JackBackend() override { Stop(); }

    SoundStatus Start(SoundMixer* mixer, std::atomic<std::uint64_t>* underruns) override {
        AssertNotAudioThread("JackBackend::Start");
        if (client_ != nullptr)
            return kStatusOk;
        mixer_ = mixer;
        underruns_ = underruns;
        client_ = OpenClient(kClientName, "the output");
        if (client_ == nullptr)
            return kStatusNoDriver;
        if (static_cast<int>(jack_get_sample_rate(client_)) != format_.rate) {
            Close();
            return kStatusFail;
        }
        ports_[0] =
            jack_port_register(client_, "out_0", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
        ports_[1] =
            jack_port_register(client_, "out_1", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
        if (ports_[0] == nullptr || ports_[1] == nullptr) {
            Close();
            return kStatusFail;
        }
        jack_set_process_callback(client_, &JackBackend::Process, this);
        jack_set_xrun_callback(client_, &JackBackend::Xrun, this);
        jack_on_shutdown(client_, &JackBackend::Shutdown, this);
        failed_.store(false);
        if (jack_activate(client_) != 0) {
            Close();
            return kStatusFail;
        }
        ConnectToTarget();
        return kStatusOk;
    }

    void Stop() override {
        AssertNotAudioThread("JackBackend::Stop");
        if (client_ == nullptr)
            return;
        // A client whose server has gone is only closed: nothing answers.
        if (!failed_.load())
            jack_deactivate(client_);
        else
            qCDebug(lcTrace, "JACK: the output's client closes after its server went away");
        Close();
    }

    bool Failed() const override { return failed_.load(std::memory_order_relaxed); }

  private:
    void Close() {
        jack_client_close(client_);
        client_ = nullptr;
        ports_[0] = ports_[1] = nullptr;
    }

    void ConnectToTarget() {
        const std::string pattern = "^" + target_ + ":";
        const char** inputs =
            jack_get_ports(client_, pattern.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput);
        if (inputs == nullptr)
            return;
        for (int i = 0; i < 2 && inputs[0] != nullptr; ++i) {
            // A target with one input gets both channels.
            const char* to =
                inputs[i] != nullptr && (i == 0 || inputs[1] != nullptr) ? inputs[i] : inputs[0];
            jack_connect(client_, jack_port_name(ports_[i]), to);
        }
        jack_free(inputs);
    }

    // The audio callback: no locks, allocation, logging or system calls.
    static int Process(jack_nframes_t frames, void* user) {
        auto* self = static_cast<JackBackend*>(user);
        MarkAudioThread();
        auto* left = static_cast<float*>(jack_port_get_buffer(self->ports_[0], frames));
        auto* right = static_cast<float*>(jack_port_get_buffer(self->ports_[1], frames));
        constexpr float kScale = 1.0f / 32768.0f;
        for (jack_nframes_t done = 0; done < frames;) {
            const int n = static_cast<int>(
                std::min<jack_nframes_t>(frames - done, static_cast<jack_nframes_t>(kChunkFrames)));
            std::int16_t* pcm = self->chunk_.data();
            self->mixer_->Mix(pcm, n);
            for (int i = 0; i < n; ++i) {
                left[done + i] = pcm[2 * i] * kScale;
                right[done + i] = pcm[2 * i + 1] * kScale;
            }
            done += static_cast<jack_nframes_t>(n);
        }
        return 0;
    }

    static int Xrun(void* user) {
        static_cast<JackBackend*>(user)->underruns_->fetch_add(1, std::memory_order_relaxed);
        return 0;
    }

    static void Shutdown(void* user) { static_cast<JackBackend*>(user)->failed_.store(true); }

    std::string target_;
    PrimaryFormat format_;
    jack_client_t* client_ = nullptr;
    jack_port_t* ports_[2] = {nullptr, nullptr};
    SoundMixer* mixer_ = nullptr;
    std::atomic<std::uint64_t>* underruns_ = nullptr;
    std::atomic<bool> failed_{false};
    std::vector<std::int16_t> chunk_;  // the callback's mix, taken before it runs
};

}  // namespace

std::vector<std::string> JackTargets() {
    std::vector<std::string> targets;
    jack_client_t* probe = OpenClient("Mixora probe", "the device list");
    if (probe == nullptr)
        return targets;
    if (const char** inputs =
            jack_get_ports(probe, nullptr, JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput)) {
        for (int i = 0; inputs[i] != nullptr; ++i) {
            const std::string port = inputs[i];
            const std::string client = port.substr(0, port.find(':'));
            if (client == kClientName || client.rfind("Mixora", 0) == 0)
                continue;
            if (std::find(targets.begin(), targets.end(), client) == targets.end())
                targets.push_back(client);
        }
        jack_free(inputs);
    }
    jack_client_close(probe);
    std::stable_partition(targets.begin(), targets.end(),
                          [](const std::string& c) { return c == "system"; });
    return targets;
}

std::unique_ptr<SoundBackend> MakeJackBackend(const std::string& target, PrimaryFormat format) {
    return std::make_unique<JackBackend>(target, format);
}

}  // namespace sound
