// The real program on a real JACK server (dummy driver) that goes away under
// it and comes back: deck A plays a file, the server stops, the decks show
// the loss within a second while the program keeps answering; the server
// starts again and the program plays on it again within five seconds, all
// without a restart.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <csignal>

#include "JackTestServer.h"
#include "TestSupport.h"
#include "app/MixoraChild.h"

namespace {

const char kJackDevice[] = "pa:JACK Audio Connection Kit:system";

// A "watch" line of the device-watch script, split into its fields.
struct Watch {
    qint64 ms = 0;
    bool lost = false;
    QString device;
    qint64 frames = 0;
    QString needle;
    double elapsed = 0;
    QString display;
};

Watch Parse(const QString& line) {
    // watch MS lost L device ID frames F needle N elapsed E display TEXT...
    const QStringList f = line.split(' ');
    Watch w;
    if (f.size() < 14)
        return w;
    w.ms = f[1].toLongLong();
    w.lost = f[3] == "1";
    // The device identifier holds spaces: it runs up to " frames ".
    const int deviceAt = line.indexOf(" device ") + 8;
    const int framesAt = line.indexOf(" frames ");
    w.device = line.mid(deviceAt, framesAt - deviceAt);
    const QStringList rest = line.mid(framesAt + 1).split(' ');
    w.frames = rest.value(1).toLongLong();
    w.needle = rest.value(3);
    w.elapsed = rest.value(5).toDouble();
    w.display = line.mid(line.indexOf(" display ") + 9);
    return w;
}

std::vector<Watch> Watches(const QStringList& log) {
    std::vector<Watch> out;
    for (const QString& l : log) {
        if (l.startsWith("watch "))
            out.push_back(Parse(l));
    }
    return out;
}

// Waits until a watch line after `afterMs` satisfies `pred`; returns it
// (ms 0 when none came within timeoutMs).
template <typename Pred>
Watch WaitForWatch(const testsupport::MixoraChild& child, qint64 afterMs, int timeoutMs,
                   Pred pred) {
    const qint64 end = QDateTime::currentMSecsSinceEpoch() + timeoutMs;
    do {
        for (const Watch& w : Watches(child.Log())) {
            if (w.ms > afterMs && pred(w))
                return w;
        }
        QThread::msleep(20);
    } while (QDateTime::currentMSecsSinceEpoch() < end);
    return {};
}

TEST(DeviceLoss, TheJackServerGoesAwayAndComesBack) {
    if (!testsupport::JackServer::Installed())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    ASSERT_TRUE(QFileInfo::exists(MIXORA_BINARY_DIR "/mixora"));
    const QString name = QString("mixora-loss-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start: " << server.Log().constData();
    const QString tone = testsupport::MakeTone("loss-tone.wav", 440, 60);
    ASSERT_FALSE(tone.isEmpty());

    testsupport::MixoraChild child;
    ASSERT_TRUE(child.Start(
        {tone}, {"MIXORA_AUTOTEST=device-watch", QString("MIXORA_SOUND_DEVICE=") + kJackDevice,
                 "JACK_DEFAULT_SERVER=" + name}));

    // Playing on JACK: the needle is down and the time runs.
    const Watch playing = WaitForWatch(child, 0, 15000, [](const Watch& w) {
        return w.device == kJackDevice && w.needle == "lift" && w.elapsed > 0.5;
    });
    ASSERT_NE(playing.ms, 0) << child.Log().join('\n').toStdString();

    // The server goes away.
    server.Stop();
    const qint64 stopped = QDateTime::currentMSecsSinceEpoch();
    const Watch lost = WaitForWatch(child, stopped - 1, 5000, [](const Watch& w) {
        return w.lost && w.display.startsWith("Sound device lost: ");
    });
    ASSERT_NE(lost.ms, 0) << child.Log().join('\n').toStdString();
    EXPECT_LE(lost.ms - stopped, 1000) << "the loss showed after " << lost.ms - stopped << " ms";
    EXPECT_EQ(lost.needle, "drop");  // the deck stopped as if the needle were lifted
    EXPECT_EQ(lost.device, "null");

    // Still answering: the watch lines keep coming ten times a second.
    QThread::msleep(1500);
    qint64 previous = stopped;
    int after = 0;
    for (const Watch& w : Watches(child.Log())) {
        if (w.ms <= stopped)
            continue;
        ++after;
        EXPECT_LT(w.ms - previous, 600)
            << "the program did not answer for " << w.ms - previous << " ms";
        previous = w.ms;
    }
    EXPECT_GE(after, 10);

    // The server comes back; the program finds it, reopens it and plays.
    ASSERT_TRUE(server.Start()) << server.Log().constData();
    const qint64 restarted = QDateTime::currentMSecsSinceEpoch();
    const Watch back = WaitForWatch(child, restarted, 8000, [](const Watch& w) {
        return !w.lost && w.device == kJackDevice && w.needle == "lift" && w.frames > 4410;
    });
    ASSERT_NE(back.ms, 0) << child.Log().join('\n').toStdString();
    EXPECT_LE(back.ms - restarted, 5000);
    EXPECT_FALSE(back.display.startsWith("Sound device lost"));
    // Time runs again on the returned device.
    const Watch later = WaitForWatch(child, back.ms + 500, 3000, [&](const Watch& w) {
        return w.device == kJackDevice && w.elapsed > back.elapsed + 0.2;
    });
    EXPECT_NE(later.ms, 0) << child.Log().join('\n').toStdString();
    std::printf(
        "device loss: shown %lld ms after the server stopped; playing again %lld ms "
        "after it started\n",
        lost.ms - stopped, back.ms - restarted);

    // And it still ends the ordinary way.
    child.Signal(SIGTERM);
    ASSERT_TRUE(child.Wait(20000));
    EXPECT_EQ(child.ExitCode(), 0);
    server.Stop();
}

// The stored main device is a JACK server's output that is not running yet
// when the program starts: the program plays on the Null device and says the
// device is missing, quietly (nothing on standard error); the server starts
// and the program opens it and plays on it within five seconds.
TEST(DeviceLoss, AMainDeviceMissingAtStartIsOpenedWhenItsServerStarts) {
    if (!testsupport::JackServer::Installed())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    ASSERT_TRUE(QFileInfo::exists(MIXORA_BINARY_DIR "/mixora"));
    const QString name = QString("mixora-missing-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackServer server(name);
    const QString tone = testsupport::MakeTone("missing-tone.wav", 440, 60);
    ASSERT_FALSE(tone.isEmpty());

    testsupport::MixoraChild child;
    // The choice stored by an earlier run, as the configuration window keeps it.
    ASSERT_TRUE(QDir().mkpath(child.ConfigDir()));
    QFile conf(child.ConfigDir() + "/Mixora.conf");
    ASSERT_TRUE(conf.open(QIODevice::WriteOnly));
    conf.write("[General]\nsoundDeviceMain=\"system (JACK Audio Connection Kit)\"\n");
    conf.close();
    ASSERT_TRUE(child.Start({tone}, {"MIXORA_AUTOTEST=device-watch",
                                     "MIXORA_SOUND_DEVICE=", "JACK_DEFAULT_SERVER=" + name}));

    // Missing: shown in the track display, deck A plays on the Null device.
    const Watch missing = WaitForWatch(child, 0, 15000, [](const Watch& w) {
        return w.lost && w.device == "null" && w.needle == "lift" && w.elapsed > 0.5 &&
               w.display.startsWith("Sound device missing: system (JACK Audio Connection Kit)");
    });
    ASSERT_NE(missing.ms, 0) << child.Log().join('\n').toStdString();

    ASSERT_TRUE(server.Start()) << server.Log().constData();
    const qint64 started = QDateTime::currentMSecsSinceEpoch();
    const Watch opened = WaitForWatch(child, started, 8000, [](const Watch& w) {
        return !w.lost && w.device == kJackDevice && w.needle == "lift" && w.frames > 4410;
    });
    ASSERT_NE(opened.ms, 0) << child.Log().join('\n').toStdString();
    EXPECT_LE(opened.ms - started, 5000);
    EXPECT_FALSE(opened.display.startsWith("Sound device missing"));
    std::printf("main device missing at start: playing on it %lld ms after its server started\n",
                opened.ms - started);

    child.Signal(SIGTERM);
    ASSERT_TRUE(child.Wait(20000));
    EXPECT_EQ(child.ExitCode(), 0);
    EXPECT_TRUE(child.Stderr().isEmpty()) << child.Stderr().constData();
    server.Stop();
}

// A process keeps the JACK registry it first attached for good; a stopped
// test server that took the registry with it would cut the program above
// (and this test process) off from the server that comes back.
TEST(DeviceLoss, AStoppedTestServerLeavesJacksSharedRegistry) {
    if (!testsupport::JackServer::Installed())
        GTEST_SKIP() << "jackd is not installed (Debian package jackd2)";
    const QString name = QString("mixora-registry-%1").arg(QCoreApplication::applicationPid());
    testsupport::JackServer server(name);
    if (!server.Start())
        GTEST_SKIP() << "jackd with the dummy driver did not start: " << server.Log().constData();
    ASSERT_TRUE(QFileInfo::exists("/dev/shm/jack-shm-registry"));
    server.Stop();
    EXPECT_TRUE(QFileInfo::exists("/dev/shm/jack-shm-registry"));
    EXPECT_TRUE(QDir("/dev/shm")
                    .entryList({"jack_" + name + "_*", "jack_sem.*_" + name + "_*"},
                               QDir::System | QDir::Files)
                    .isEmpty());
}

}  // namespace
