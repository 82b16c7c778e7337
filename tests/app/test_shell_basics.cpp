// The shell's small decisions: screen mode, command line, key codes, display
// pacing, the platform-layer check and thread priorities.
#include <gtest/gtest.h>

#include <QDir>
#include <Qt>

#include "app/CommandLine.h"
#include "app/ScreenMode.h"
#include "app/VirtualKeys.h"
#include "core/ThreadPriority.h"
#include "core/WorkerThread.h"
#include "output/engine/DisplayPacing.h"
#include "platform/PlatformLayers.h"

TEST(ScreenMode, HighResolutionNeedsMoreThan800By600) {
    EXPECT_FALSE(ChooseLowResolution(1024, 768));
    EXPECT_FALSE(ChooseLowResolution(801, 601));
    EXPECT_TRUE(ChooseLowResolution(800, 1200));  // exactly 800 wide
    EXPECT_TRUE(ChooseLowResolution(1920, 600));  // exactly 600 high
    EXPECT_TRUE(ChooseLowResolution(640, 480));
}

TEST(CommandLine, FilesHelpVersionAndErrors) {
    CommandLine run = ParseCommandLine({"mixora", "a.mp3", "/music/b.ogg"});
    ASSERT_EQ(run.action, CommandLine::Action::Run);
    ASSERT_EQ(run.files.size(), 2);
    EXPECT_EQ(run.files[0], QDir::current().absoluteFilePath("a.mp3"));
    EXPECT_EQ(run.files[1], "/music/b.ogg");

    CommandLine help = ParseCommandLine({"/usr/bin/mixora", "--help"});
    EXPECT_EQ(help.action, CommandLine::Action::Help);
    // (Here the test program's name; the program itself says "mixora".)
    EXPECT_TRUE(help.text.contains("Usage: ")) << help.text.toStdString();
    EXPECT_TRUE(help.text.contains("[file ...]"));
    EXPECT_FALSE(help.text.contains("<executable_name>"));
    EXPECT_EQ(ParseCommandLine({"mixora", "-v"}).action, CommandLine::Action::Version);
    EXPECT_EQ(ParseCommandLine({"mixora", "--version"}).text, "mixora " MIXORA_VERSION "\n");

    CommandLine bad = ParseCommandLine({"mixora", "--no-such-option"});
    EXPECT_EQ(bad.action, CommandLine::Action::Error);
    EXPECT_TRUE(bad.text.contains("no-such-option"));
}

TEST(VirtualKeys, QtKeysToKeyMapCodes) {
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_A), 65);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_Z), 90);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_3), 51);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_PageUp), 33);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_PageDown), 34);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_End), 35);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_Home), 36);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_F5), 116);
    EXPECT_EQ(static_cast<signed char>(VirtualKeyFromQt(Qt::Key_Semicolon)), -70);
    EXPECT_EQ(static_cast<signed char>(VirtualKeyFromQt(Qt::Key_Comma)), -68);
    EXPECT_EQ(static_cast<signed char>(VirtualKeyFromQt(Qt::Key_Period)), -66);
    EXPECT_EQ(static_cast<signed char>(VirtualKeyFromQt(Qt::Key_Slash)), -65);
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_Exclam), '1');  // Shift+1
    EXPECT_EQ(VirtualKeyFromQt(Qt::Key_MediaPlay), 0);
    const long long up = KeyMessageParam(0x1E, false, true);
    EXPECT_EQ(up & 0xFFFF, 1);
    EXPECT_EQ((up >> 16) & 0xFF, 0x1E);
    EXPECT_NE(up & (1LL << 31), 0);
    EXPECT_EQ(KeyMessageParam(0, false, false) >> 30, 0);
}

TEST(DisplayPacing, EveryNotificationWithOneDeckEveryFourthWithTwo) {
    DisplayPacing pacing;
    for (int i = 0; i < 6; ++i) {
        const auto step = pacing.OnNotification(1);
        EXPECT_TRUE(step.updateGraphs);
        EXPECT_TRUE(step.moveTurntables);
    }
    std::string graphs, turntables;
    for (int i = 0; i < 8; ++i) {
        const auto step = pacing.OnNotification(2);
        graphs += step.updateGraphs ? 'G' : '.';
        turntables += step.moveTurntables ? 'T' : '.';
    }
    EXPECT_EQ(graphs, "...G...G");
    EXPECT_EQ(turntables, "T...T...");
    // One deck stops mid-count: back to every notification, and a fresh
    // count of four when both play again.
    pacing.OnNotification(2);
    EXPECT_TRUE(pacing.OnNotification(1).updateGraphs);
    EXPECT_FALSE(pacing.OnNotification(2).updateGraphs);
    EXPECT_EQ(pacing.Counter(), 1);
}

namespace {
class FakeLayers : public PlatformLayers {
  public:
    bool soundFails = false, mediaFails = false;
    int soundUp = 0;
    bool InitialiseSound(QString* problem) override {
        if (soundFails) {
            *problem = "the PortAudio sound library (libportaudio2) could not start: no devices";
            return false;
        }
        ++soundUp;
        return true;
    }
    void ReleaseSound() override { --soundUp; }
    bool CheckMedia(QString* problem) override {
        if (mediaFails)
            *problem = "the FFmpeg media library libavformat is version 58.1";
        return !mediaFails;
    }
};
}  // namespace

TEST(PlatformLayers, ChecksNameTheFailingLibrary) {
    FakeLayers ok;
    EXPECT_TRUE(CheckPlatformLayers(ok).isEmpty());
    EXPECT_EQ(ok.soundUp, 1);  // stays up for the program's life

    FakeLayers noSound;
    noSound.soundFails = true;
    const QString sound = CheckPlatformLayers(noSound);
    EXPECT_TRUE(sound.startsWith("Mixora cannot start:"));
    EXPECT_TRUE(sound.contains("PortAudio"));

    FakeLayers noMedia;
    noMedia.mediaFails = true;
    const QString media = CheckPlatformLayers(noMedia);
    EXPECT_TRUE(media.contains("libavformat"));
    EXPECT_EQ(noMedia.soundUp, 0);  // released again

    // The real layers work on this machine (PortAudio starts without a
    // device; FFmpeg is the version built against).
    auto real = MakeSystemPlatformLayers();
    EXPECT_TRUE(CheckPlatformLayers(*real).isEmpty());
    real->ReleaseSound();
}

TEST(ThreadPriority, LevelsMapToNiceValuesAndNeverFailHard) {
    EXPECT_LT(NiceValueFor(ThreadPriority::TimeCritical),
              NiceValueFor(ThreadPriority::AboveNormal));
    EXPECT_EQ(NiceValueFor(ThreadPriority::Normal), 0);
    EXPECT_GT(NiceValueFor(ThreadPriority::Lowest), NiceValueFor(ThreadPriority::BelowNormal));
    // Whether permitted or not, a thread runs at each level and can be moved.
    WorkerThread t;
    std::atomic<bool> go{false};
    t.Start("prio", ThreadPriority::Lowest, [&](const std::atomic<bool>& cancelled) {
        while (!go.load() && !cancelled.load())
            std::this_thread::yield();
    });
    t.SetPriority(ThreadPriority::BelowNormal);
    go.store(true);
    t.Join();
    EXPECT_TRUE(t.Finished());
}
