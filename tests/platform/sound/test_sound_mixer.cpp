// The sound-device layer: buffers, laws, interpolation, notifications,
// effects and the lock-free hand-over, on the Null device (manual clock for
// exact checks, real-time clock for the threads).
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "TestSupport.h"
#include "core/SyncEvent.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundSystem.h"

namespace {

using sound::SoundBuffer;
using sound::SoundDevice;

std::unique_ptr<SoundDevice> Manual(bool use3D = false) {
    return SoundDevice::OpenNull(SoundDevice::NullClock::Manual, use3D);
}

std::unique_ptr<SoundBuffer> MakeBuffer(SoundDevice& device, std::uint32_t bytes,
                                        std::uint32_t hz = 44100) {
    std::unique_ptr<SoundBuffer> b;
    EXPECT_EQ(device.CreateBuffer({bytes, hz}, &b), kStatusOk);
    return b;
}

// Writes frames from f(frame index) -> (left, right) over the whole buffer.
template <typename F>
void Fill(SoundBuffer& b, F f) {
    sound::LockedRegion r;
    ASSERT_EQ(b.Lock(0, b.SizeBytes(), &r), kStatusOk);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    for (std::uint32_t i = 0; i < b.SizeBytes() / 4; ++i) {
        const auto [l, rr] = f(i);
        s[2 * i] = l;
        s[2 * i + 1] = rr;
    }
    b.Unlock(r);
}

std::vector<std::int16_t> Render(SoundDevice& d, int frames) {
    std::vector<std::int16_t> out(2 * static_cast<std::size_t>(frames));
    EXPECT_TRUE(d.Render(frames, out.data()));
    return out;
}

// Frequency of the left channel from interpolated rising zero crossings.
double ZeroCrossingFrequency(const std::vector<std::int16_t>& s, int rate) {
    double first = -1, last = -1;
    int count = 0;
    for (std::size_t i = 2; i + 2 < s.size(); i += 2) {
        const double a = s[i - 2], b = s[i];
        if (a < 0 && b >= 0) {
            const double t = (i / 2 - 1) + (-a) / (b - a);
            if (first < 0)
                first = t;
            last = t;
            ++count;
        }
    }
    return count > 1 ? (count - 1) * rate / (last - first) : 0.0;
}

TEST(SoundBufferTest, LockVolumePanFrequencyAndStatus) {
    auto device = Manual();
    std::unique_ptr<SoundBuffer> b;
    EXPECT_EQ(device->CreateBuffer({8, 44100}, &b), kStatusBufferTooSmall);
    EXPECT_EQ(device->CreateBuffer({1002, 44100}, &b), kStatusInvalidParam);
    EXPECT_EQ(device->CreateBuffer({1000, 50}, &b), kStatusInvalidParam);
    b = MakeBuffer(*device, 1000);
    ASSERT_TRUE(b);
    EXPECT_EQ(b->SizeBytes(), 1000u);

    // A range past the end comes back as two spans.
    sound::LockedRegion r;
    ASSERT_EQ(b->Lock(800, 400, &r), kStatusOk);
    EXPECT_EQ(r.firstBytes, 200u);
    EXPECT_EQ(r.secondBytes, 200u);
    EXPECT_EQ(r.second + 800, r.first);
    EXPECT_EQ(b->Unlock(r), kStatusOk);
    ASSERT_EQ(b->Lock(0, 1000, &r), kStatusOk);
    EXPECT_EQ(r.second, nullptr);
    EXPECT_EQ(b->Lock(1000, 4, &r), kStatusInvalidParam);
    EXPECT_EQ(b->Lock(0, 1004, &r), kStatusInvalidParam);

    EXPECT_EQ(b->SetVolume(1), kStatusInvalidParam);
    EXPECT_EQ(b->SetVolume(-10001), kStatusInvalidParam);
    EXPECT_EQ(b->SetPan(10001), kStatusInvalidParam);
    EXPECT_EQ(b->SetFrequency(99), kStatusInvalidParam);
    EXPECT_EQ(b->SetFrequency(48000), kStatusOk);
    EXPECT_EQ(b->Frequency(), 48000u);

    EXPECT_EQ(b->Status(), 0u);
    b->Play(true);
    EXPECT_EQ(b->Status(), sound::kBufferPlaying | sound::kBufferLooping);
    SyncEvent e;
    const sound::NotificationPosition n{4, &e};
    EXPECT_EQ(b->SetNotificationPositions(&n, 1), kStatusFail);  // only while stopped
    b->Stop();
    EXPECT_EQ(b->Status(), 0u);
    EXPECT_EQ(b->SetNotificationPositions(&n, 1), kStatusOk);
    const sound::NotificationPosition bad{1000, &e};
    EXPECT_EQ(b->SetNotificationPositions(&bad, 1), kStatusInvalidParam);

    // A one-shot buffer stops by itself at its end.
    b->SetCurrentPosition(0);
    b->Play(false);
    Render(*device, 300);
    EXPECT_FALSE(b->IsPlaying());

    // The volume and pan laws: amplitude 10^(v/2000), the far channel
    // attenuated by the pan.
    EXPECT_FLOAT_EQ(sound::VolumeToGain(0), 1.0f);
    EXPECT_FLOAT_EQ(sound::VolumeToGain(-2000), 0.1f);
    EXPECT_EQ(sound::VolumeToGain(-10000), 0.0f);
    float l, rr;
    sound::PanToGains(-4000, &l, &rr);
    EXPECT_FLOAT_EQ(l, 1.0f);
    EXPECT_FLOAT_EQ(rr, 0.01f);
    sound::PanToGains(10000, &l, &rr);
    EXPECT_EQ(l, 0.0f);
    EXPECT_FLOAT_EQ(rr, 1.0f);
}

TEST(SoundMixerTest, CubicResamplerIsCleanAndPhaseContinuous) {
    auto device = Manual();
    // One second of a 1 kHz sine at half scale: the ring loops seamlessly.
    auto b = MakeBuffer(*device, 44100 * 4);
    const double w = 2 * std::numbers::pi * 1000.0 / 44100.0;
    Fill(*b, [&](std::uint32_t i) {
        const auto v = static_cast<std::int16_t>(std::lround(16384 * std::sin(w * i)));
        return std::pair<std::int16_t, std::int16_t>{v, v};
    });
    b->SetFrequency(47000);
    b->Play(true);
    Render(*device, 1000);
    const auto s = Render(*device, 44100);
    const double expected = 1000.0 * 47000.0 / 44100.0;
    EXPECT_NEAR(ZeroCrossingFrequency(s, 44100), expected, 0.05);

    // Distortion: the residual after a least-squares fit of the ideal sine
    // is more than 60 dB down.
    const double wo = 2 * std::numbers::pi * expected / 44100.0;
    double ss = 0, sc = 0, cc = 0, ys = 0, yc = 0;
    for (std::size_t k = 0; k < s.size() / 2; ++k) {
        const double sn = std::sin(wo * k), cs = std::cos(wo * k), y = s[2 * k];
        ss += sn * sn, sc += sn * cs, cc += cs * cs, ys += y * sn, yc += y * cs;
    }
    const double det = ss * cc - sc * sc;
    const double a = (ys * cc - yc * sc) / det, c = (yc * ss - ys * sc) / det;
    double err = 0, sig = 0;
    for (std::size_t k = 0; k < s.size() / 2; ++k) {
        const double fit = a * std::sin(wo * k) + c * std::cos(wo * k);
        err += (s[2 * k] - fit) * (s[2 * k] - fit);
        sig += fit * fit;
    }
    EXPECT_LT(10 * std::log10(err / sig), -60.0);
    EXPECT_NEAR(std::hypot(a, c), 16384, 40);

    // The frequency moving every 64 frames (a spindle nudge) leaves no
    // step: no sample-to-sample jump beyond the fastest slope of the sine.
    std::vector<std::int16_t> moving;
    for (int chunk = 0; chunk < 200; ++chunk) {
        b->SetFrequency(chunk % 2 ? 40000 : 48000);
        const auto part = Render(*device, 64);
        moving.insert(moving.end(), part.begin(), part.end());
    }
    const double maxSlope = 16384 * 2 * std::numbers::pi * 1000.0 * 48000.0 / 44100.0 / 44100.0;
    for (std::size_t i = 2; i < moving.size(); i += 2)
        ASSERT_LE(std::abs(moving[i] - moving[i - 2]), maxSlope * 1.05 + 2) << i;
}

TEST(SoundMixerTest, NotificationsEffectsMasterGainAnd3D) {
    auto device = Manual();
    auto b = MakeBuffer(*device, 4000);  // 1000 frames
    Fill(*b, [](std::uint32_t) { return std::pair<std::int16_t, std::int16_t>{8000, 8000}; });
    SyncEvent start, middle;
    const sound::NotificationPosition list[] = {{0, &start}, {2003, &middle}};
    ASSERT_EQ(b->SetNotificationPositions(list, 2), kStatusOk);
    b->SetFrequency(88200);  // two buffer frames per device frame
    b->Play(true);
    Render(*device, 250);  // buffer frames 0..499: passes byte 0 only
    EXPECT_TRUE(start.Wait(0));
    EXPECT_FALSE(middle.IsSet());
    Render(*device, 250);  // 500..999: passes byte 2003
    EXPECT_FALSE(start.IsSet());
    EXPECT_TRUE(middle.Wait(0));
    Render(*device, 1);  // leaves frame 0 of the next loop: passes byte 0 again
    EXPECT_TRUE(start.Wait(0));
    std::uint32_t play = 0, write = 0;
    b->GetCurrentPosition(&play, &write);
    EXPECT_EQ(play, 8u);
    EXPECT_EQ(write, 16u);  // the last pass took 2 frames past the play cursor

    // An effect in the chain sees the frames before volume and pan.
    struct Halve : sound::SoundEffect {
        int frames = 0;
        void Process(float* f, int n, int rate) override {
            EXPECT_EQ(rate, 44100);
            for (int i = 0; i < 2 * n; ++i)
                f[i] *= 0.5f;
            frames += n;
        }
    };
    auto halve = std::make_shared<Halve>();
    ASSERT_EQ(b->SetEffects({halve}), kStatusOk);
    b->SetFrequency(44100);
    b->SetPan(-2000);  // right at a tenth
    Render(*device, 300);
    auto s = Render(*device, 10);
    EXPECT_EQ(s[0], 4000);
    EXPECT_EQ(s[1], 400);
    EXPECT_EQ(halve->frames, 310);
    ASSERT_EQ(b->SetEffects({}), kStatusOk);
    device->SetMasterGain(25, 50);
    Render(*device, 300);
    s = Render(*device, 1);
    EXPECT_EQ(s[0], 2000);
    EXPECT_EQ(s[1], 400);

    // With 3D sound the device mixes mono at 22050 Hz and has a listener.
    auto mono = Manual(true);
    EXPECT_EQ(mono->Format().channels, 1);
    EXPECT_EQ(mono->Format().rate, 22050);
    ASSERT_NE(mono->Listener(), nullptr);
    mono->Listener()->x.store(1.5f);
    EXPECT_EQ(device->Listener(), nullptr);
    auto m = MakeBuffer(*mono, 4000, 22050);
    Fill(*m, [](std::uint32_t) { return std::pair<std::int16_t, std::int16_t>{1000, 3000}; });
    m->Play(true);
    Render(*mono, 100);
    s = Render(*mono, 1);
    EXPECT_EQ(s[0], 2000);
    EXPECT_EQ(s[1], 2000);
}

TEST(SoundDeviceTest, NullClockConsumesAudioAndBuffersComeAndGoSafely) {
    auto device = SoundDevice::OpenNull(SoundDevice::NullClock::Realtime);
    ASSERT_TRUE(device);
    EXPECT_FALSE(device->IsManualClock());
    std::int16_t dummy[4];
    EXPECT_FALSE(device->Render(2, dummy));

    // The clock moves the cursor and the service thread sets the event.
    auto b = MakeBuffer(*device, 4 * 4410);
    SyncEvent passed;
    const sound::NotificationPosition n{4 * 2205, &passed};
    b->SetNotificationPositions(&n, 1);
    b->Play(true);
    EXPECT_TRUE(passed.Wait(5000));
    EXPECT_TRUE(testsupport::WaitFor([&] { return device->FramesRendered() > 8820; }));
    std::uint32_t play = 0;
    b->GetCurrentPosition(&play, nullptr);
    EXPECT_LT(play, 4u * 4410);

    // Buffers created, played, given effects and destroyed while the clock
    // mixes: freed only once the mix has let go (checked under ASan).
    struct Nothing : sound::SoundEffect {
        void Process(float*, int, int) override {}
    };
    for (int i = 0; i < 300; ++i) {
        auto t = MakeBuffer(*device, 4 * 1024, 30000 + 50 * i);
        ASSERT_TRUE(t);
        const sound::NotificationPosition tn{0, &passed};
        t->SetNotificationPositions(&tn, 1);
        t->SetEffects({std::make_shared<Nothing>()});
        t->Play(true);
        if (i % 3 == 0)
            t->SetEffects({});
        if (i % 50 == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    b.reset();
    device.reset();
}

TEST(SoundSystemTest, EnumerationListsTheNullDeviceFirst) {
    const auto list = sound::EnumerateDevices();
    ASSERT_FALSE(list.empty());
    EXPECT_EQ(list.front().identifier, sound::kNullDeviceId);
    for (const auto& d : list)
        EXPECT_FALSE(d.description.empty());
    std::unique_ptr<SoundDevice> d;
    EXPECT_EQ(sound::OpenDevice("pa:No Such API:none", false, &d), kStatusNoDriver);
    EXPECT_FALSE(d);
    EXPECT_EQ(sound::OpenDevice(sound::kNullManualDeviceId, false, &d), kStatusOk);
    ASSERT_TRUE(d);
    EXPECT_TRUE(d->IsManualClock());
    EXPECT_EQ(sound::ReinitializeAudioLibrary(), kStatusOk);
}

}  // namespace
