// Recording soak: the mix recorder on a device that takes audio in real
// time (the Null device's clock, 256-frame periods at 44100 Hz) playing a
// looping voice of noise, for 10 minutes while stress-ng keeps both cores
// busy (--cpu 2). Prints the frames the device handed over, written to the
// WAV file, and lost by the full ring (goal: 0), the fullest the ring was,
// and the device's late periods. Not part of the tests; run by hand:
//     build/record_soak [seconds]      (600 by default)
// Needs stress-ng on the PATH for the CPU hog (without it, runs unloaded).
#include <sndfile.h>

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "output/engine/MixRecorder.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundDevice.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 600;

    auto device = sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Realtime);
    if (!device) {
        std::fprintf(stderr, "record_soak: the Null device did not open\n");
        return 1;
    }
    sound::BufferDesc desc;
    desc.bytes = 4 * 44100 * 3;
    std::unique_ptr<sound::SoundBuffer> voice;
    if (device->CreateBuffer(desc, &voice) != kStatusOk)
        return 1;
    sound::LockedRegion r;
    voice->Lock(0, desc.bytes, &r);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    std::uint32_t x = 2463534242u;
    for (std::uint32_t i = 0; i < desc.bytes / 2; ++i) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        s[i] = static_cast<std::int16_t>(x >> 18);
    }
    voice->Unlock(r);
    voice->Play(true);

    QProcess hog;
    const QString stress = QStandardPaths::findExecutable(QStringLiteral("stress-ng"));
    if (!stress.isEmpty()) {
        hog.start(stress,
                  {QStringLiteral("--cpu"), QStringLiteral("2"), QStringLiteral("--timeout"),
                   QString::number(seconds + 5), QStringLiteral("--quiet")});
        hog.waitForStarted();
    }

    QTemporaryDir dir;
    const std::string path = (dir.path() + QStringLiteral("/soak.wav")).toStdString();
    MixRecorder recorder;
    std::string error;
    if (!recorder.Start(path, MixRecorder::Format::Wav, 44100, &error)) {
        std::fprintf(stderr, "record_soak: %s\n", error.c_str());
        return 1;
    }
    const std::uint64_t underrunsBefore = device->UnderrunCount();
    device->SetTap(&recorder);
    const auto start = std::chrono::steady_clock::now();
    std::uint64_t peakWaiting = 0;
    while (std::chrono::steady_clock::now() - start < std::chrono::seconds(seconds)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        peakWaiting = std::max<std::uint64_t>(
            peakWaiting, recorder.FramesTaken() - recorder.LostFrames() - recorder.FramesWritten());
        if (recorder.Failed())
            break;
    }
    device->SetTap(nullptr);
    const std::uint64_t underruns = device->UnderrunCount() - underrunsBefore;
    recorder.Stop();
    if (hog.state() != QProcess::NotRunning) {
        hog.terminate();
        hog.waitForFinished(5000);
    }

    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    const long long fileFrames = f ? static_cast<long long>(info.frames) : -1;
    if (f)
        sf_close(f);

    std::printf("record_soak: %d s recorded%s\n", seconds,
                stress.isEmpty() ? " (no stress-ng: unloaded)" : " under stress-ng --cpu 2");
    std::printf("  frames handed over     %llu\n",
                static_cast<unsigned long long>(recorder.FramesTaken()));
    std::printf("  frames written         %llu (file: %lld)\n",
                static_cast<unsigned long long>(recorder.FramesWritten()), fileFrames);
    std::printf("  lost_frames            %llu   goal 0\n",
                static_cast<unsigned long long>(recorder.LostFrames()));
    std::printf("  ring peak              %llu of %zu frames (%.1f %%)\n",
                static_cast<unsigned long long>(peakWaiting), MixRecorder::kRingFrames,
                100.0 * static_cast<double>(peakWaiting) / MixRecorder::kRingFrames);
    std::printf("  device late periods    %llu (the clock's own, under load)\n",
                static_cast<unsigned long long>(underruns));
    if (recorder.Failed())
        std::printf("  writer failed: %s\n", recorder.Error().c_str());
    return recorder.LostFrames() == 0 && !recorder.Failed() ? 0 : 2;
}
