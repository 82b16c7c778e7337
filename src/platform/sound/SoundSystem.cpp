#include "platform/sound/SoundSystem.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <portaudio.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>

#include "core/ThreadRole.h"
#include "platform/sound/JackBackend.h"
#include "platform/sound/PortAudioBackend.h"

namespace sound {

namespace {

std::mutex g_mutex;
bool g_initialised = false;
// PortAudio's JACK host API came up after all (it is kept away from the
// server, see InitLocked): PortAudio then holds a JACK client of its own,
// and terminating it after that server has gone aborts the process (its
// clean-up asserts on the dead client), so it is never terminated then.
// JACK devices are listed and played by Mixora's own client (JackBackend.h),
// which needs no restart of the library to find a server that came back.
bool g_paHoldsJack = false;

// ALSA's error handler type (alsa/error.h); libasound is reached through
// PortAudio, so its handler is looked up at run time.
using AlsaErrorHandler = void (*)(const char*, int, const char*, int, const char*, ...);
void QuietAlsaHandler(const char*, int, const char*, int, const char*, ...) {}

void SilenceAlsa() {
    void* lib = dlopen("libasound.so.2", RTLD_LAZY | RTLD_NOLOAD);
    if (lib == nullptr)
        lib = dlopen("libasound.so.2", RTLD_LAZY);
    if (lib == nullptr)
        return;
    using SetHandler = int (*)(AlsaErrorHandler);
    auto set = reinterpret_cast<SetHandler>(dlsym(lib, "snd_lib_error_set_handler"));
    if (set)
        set(&QuietAlsaHandler);
    // The library stays loaded (PortAudio uses it); the handle is not closed.
}

// Runs f with standard error sent to /dev/null: PortAudio's host APIs and
// libjack print probing failures there ("cannot find card", "cannot connect
// to server") on machines without sound cards or servers.
template <typename F>
auto WithQuietStderr(F f) {
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (saved >= 0 && null >= 0)
        dup2(null, STDERR_FILENO);
    auto result = f();
    std::fflush(stderr);
    if (saved >= 0) {
        dup2(saved, STDERR_FILENO);
        close(saved);
    }
    if (null >= 0)
        close(null);
    return result;
}

SoundStatus InitLocked(std::string* problem = nullptr) {
    if (g_initialised)
        return kStatusOk;
    SilenceAlsa();
    // PortAudio's JACK host API is kept from connecting (it is pointed at a
    // server that does not exist): JACK devices are Mixora's own client,
    // and PortAudio's idle client would only add a late member to the JACK
    // graph and a clean-up that aborts once its server has gone.
    const char* server = std::getenv("JACK_DEFAULT_SERVER");
    const std::optional<std::string> saved =
        server ? std::optional<std::string>(server) : std::nullopt;
    setenv("JACK_DEFAULT_SERVER", "mixora-portaudio-without-jack", 1);
    const PaError err = WithQuietStderr([] { return Pa_Initialize(); });
    if (saved)
        setenv("JACK_DEFAULT_SERVER", saved->c_str(), 1);
    else
        unsetenv("JACK_DEFAULT_SERVER");
    if (err != paNoError) {
        if (problem)
            *problem = Pa_GetErrorText(err);
        return kStatusFail;
    }
    g_paHoldsJack = g_paHoldsJack || Pa_HostApiTypeIdToHostApiIndex(paJACK) >= 0;
    g_initialised = true;
    return kStatusOk;
}

void TerminateLocked() {
    if (!g_initialised || g_paHoldsJack)
        return;
    WithQuietStderr([] { return Pa_Terminate(); });
    g_initialised = false;
}

struct PaEntry {
    SoundDeviceInfo info;
    PaDeviceIndex index;     // -1 for a JACK target
    std::string jackTarget;  // the JACK client that receives the sound
};

std::vector<PaEntry> ListPortAudioLocked() {
    std::vector<PaEntry> list;
    if (!g_initialised)
        return list;
    const PaDeviceIndex count = Pa_GetDeviceCount();
    std::map<std::string, int> seen;
    for (PaDeviceIndex i = 0; i < count; ++i) {
        const PaDeviceInfo* d = Pa_GetDeviceInfo(i);
        if (d == nullptr || d->maxOutputChannels < 1)
            continue;
        const PaHostApiInfo* api = Pa_GetHostApiInfo(d->hostApi);
        if (api != nullptr && api->type == paJACK)
            continue;  // JACK is listed live below
        const std::string apiName = api ? api->name : "Unknown";
        std::string id = "pa:" + apiName + ":" + d->name;
        std::string description = std::string(d->name) + " (" + apiName + ")";
        const int n = ++seen[id];
        if (n > 1) {
            id += "#" + std::to_string(n);
            description += " #" + std::to_string(n);
        }
        list.push_back({{description, id}, i, {}});
    }
    // JACK as the server is now, with the names PortAudio gives its devices.
    for (const std::string& target : JackTargets()) {
        list.push_back(
            {{target + " (" + kJackApiName + ")", std::string("pa:") + kJackApiName + ":" + target},
             -1,
             target});
    }
    return list;
}

}  // namespace

SoundStatus InitializeAudioLibrary(std::string* problem) {
    AssertNotAudioThread("sound::InitializeAudioLibrary");
    std::lock_guard lock(g_mutex);
    return InitLocked(problem);
}

SoundStatus ReinitializeAudioLibrary() {
    AssertNotAudioThread("sound::ReinitializeAudioLibrary");
    std::lock_guard lock(g_mutex);
    if (OpenPortAudioStreams() > 0)
        return kStatusFail;
    TerminateLocked();
    return InitLocked();
}

void ShutdownAudioLibrary() {
    AssertNotAudioThread("sound::ShutdownAudioLibrary");
    std::lock_guard lock(g_mutex);
    if (OpenPortAudioStreams() == 0)
        TerminateLocked();
}

std::vector<SoundDeviceInfo> EnumerateDevices() {
    AssertNotAudioThread("sound::EnumerateDevices");
    std::lock_guard lock(g_mutex);
    InitLocked();
    std::vector<SoundDeviceInfo> list{{"Null Output (silent)", kNullDeviceId}};
    for (auto& e : ListPortAudioLocked())
        list.push_back(std::move(e.info));
    return list;
}

SoundStatus OpenDevice(const std::string& identifier, bool use3D,
                       std::unique_ptr<SoundDevice>* device) {
    AssertNotAudioThread("sound::OpenDevice");
    if (device == nullptr)
        return kStatusInvalidParam;
    device->reset();
    if (identifier == kNullDeviceId || identifier == kNullManualDeviceId) {
        *device =
            SoundDevice::OpenNull(identifier == kNullDeviceId ? SoundDevice::NullClock::Realtime
                                                              : SoundDevice::NullClock::Manual,
                                  use3D);
        return *device ? kStatusOk : kStatusFail;
    }
    std::lock_guard lock(g_mutex);
    if (InitLocked() != kStatusOk)
        return kStatusFail;
    for (auto& e : ListPortAudioLocked()) {
        if (e.info.identifier != identifier)
            continue;
        const PrimaryFormat format = PrimaryFormatFor(use3D);
        // JACK devices get Mixora's own client, which survives its server.
        auto d = std::make_unique<SoundDevice>(e.info.identifier, e.info.description, format,
                                               e.jackTarget.empty()
                                                   ? MakePortAudioBackend(e.index, format)
                                                   : MakeJackBackend(e.jackTarget, format));
        const SoundStatus s = WithQuietStderr([&] { return d->Start(); });
        if (s != kStatusOk)
            return s;
        *device = std::move(d);
        return kStatusOk;
    }
    return kStatusNoDriver;
}

}  // namespace sound
