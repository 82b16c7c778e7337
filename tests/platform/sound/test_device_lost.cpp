// The device's own watchdog: a device whose backend stops taking audio, or
// reports its stream failed, calls itself lost within a second; one that
// keeps playing never does.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QThread>

#include "platform/sound/SoundDevice.h"
#include "platform/sound/StallableBackend.h"

namespace {

// Milliseconds until the device calls itself lost (-1: not within 3 s).
int MsUntilLost(sound::SoundDevice& device) {
    QElapsedTimer t;
    t.start();
    while (!device.Lost()) {
        if (t.elapsed() > 3000)
            return -1;
        QThread::msleep(5);
    }
    return static_cast<int>(t.elapsed());
}

TEST(DeviceLost, AStalledDeviceIsLostAfterHalfASecondAndAPlayingOneNever) {
    auto stalled = std::make_shared<std::atomic<bool>>(false);
    auto device = testsupport::StallableDevice("test:card", stalled);
    ASSERT_TRUE(device);
    QThread::msleep(800);
    EXPECT_FALSE(device->Lost()) << "a device that plays is not lost";
    EXPECT_GT(device->FramesRendered(), 0u);

    stalled->store(true);
    const int ms = MsUntilLost(*device);
    EXPECT_GE(ms, sound::SoundDevice::kLostAfterMs - 50);
    EXPECT_LE(ms, 1000);
    // Lost stays lost: the device is closed and opened again, never revived.
    stalled->store(false);
    QThread::msleep(50);
    EXPECT_TRUE(device->Lost());
}

TEST(DeviceLost, AStreamThatReportsItsEndIsLostAtOnce) {
    auto stalled = std::make_shared<std::atomic<bool>>(false);
    auto failed = std::make_shared<std::atomic<bool>>(false);
    auto device = testsupport::StallableDevice("test:card", stalled, failed);
    ASSERT_TRUE(device);
    failed->store(true);
    const int ms = MsUntilLost(*device);
    EXPECT_GE(ms, 0);
    EXPECT_LT(ms, 100);
}

TEST(DeviceLost, ManualClockDevicesAreNeverLost) {
    auto device = sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual);
    QThread::msleep(700);
    EXPECT_FALSE(device->Lost());
}

}  // namespace
