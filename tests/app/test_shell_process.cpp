// The real program as a child process on the offscreen platform: start-up
// order, the five shutdown steps, exit code 0, failing platform layers, and
// --help/--version without any display.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "app/MixoraChild.h"

#include <QFileInfo>

namespace {

const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");

struct Outcome {
    int exitCode = -1;
    bool normalExit = false;
    QStringList log;
    QString output;
};

// Runs the program to its end (a child process with its own folders) and
// collects its shell log and its output and errors together.
Outcome RunMixora(const QStringList& args, const QStringList& env) {
    Outcome o;
    testsupport::MixoraChild child;
    if (!child.Start(args, env) || !child.Wait(120000))
        return o;
    o.normalExit = child.NormalExit();
    o.exitCode = child.ExitCode();
    o.output = QString::fromUtf8(child.Stdout() + child.Stderr());
    o.log = child.Log();
    return o;
}

QStringList Matching(const QStringList& lines, const QString& prefix) {
    QStringList out;
    for (const QString& l : lines) {
        if (l.startsWith(prefix))
            out << l;
    }
    return out;
}

#define REQUIRE_PROGRAM() ASSERT_TRUE(QFileInfo::exists(kProgram)) << "no mixora in this build"

const QStringList kWindows = {"create CRynMainMixer 141", "create CRynHeadphonesMixer 143",
                              "create CRyn3DGraph 129",   "create CRynDeck 131",
                              "create CRynDeckInfo 132",  "create CRynEqualizer 137",
                              "create CRynPlayList 144",  "create CRynDeck 131",
                              "create CRynDeckInfo 132",  "create CRynEqualizer 137",
                              "create CRynPlayList 144"};

const QStringList kShutdown = {"shutdown lamp 1: Stopping Threads.",
                               "shutdown lamp 2: Destroying Decks",
                               "shutdown lamp 3: Stopping Timers",
                               "shutdown lamp 4: Killing COM.",
                               "shutdown lamp 5: Destroying Deck Components.",
                               "shutdown status: Destroying Mixer"};

void ExpectFullRun(const Outcome& o) {
    EXPECT_TRUE(o.normalExit);
    EXPECT_EQ(o.exitCode, 0) << o.output.toStdString();
    EXPECT_EQ(Matching(o.log, "create "), kWindows);
    EXPECT_EQ(Matching(o.log, "shutdown "), kShutdown);
    // Start-up finishes before the shutdown begins, and the end is last.
    const int running = o.log.indexOf("running");
    const int first = o.log.indexOf(kShutdown.first());
    ASSERT_GE(running, 0);
    EXPECT_LT(o.log.indexOf("platform layers ready"), o.log.indexOf(kWindows.first()));
    EXPECT_LT(o.log.indexOf("initialise CRynMainMixer"), running);
    EXPECT_LT(running, first);
    ASSERT_FALSE(o.log.isEmpty());
    EXPECT_EQ(o.log.last(), "exit 0");
}

}  // namespace

TEST(ShellProcess, ClosingTheMainMixerShutsDownInOrder) {
    REQUIRE_PROGRAM();
    const Outcome o = RunMixora({"deckA.wav", "deckB.mp3"}, {"MIXORA_AUTOTEST=close-mixer"});
    ExpectFullRun(o);
    EXPECT_EQ(Matching(o.log, "deck ").size(), 2);
    EXPECT_TRUE(Matching(o.log, "deck A file").value(0).endsWith("/deckA.wav"));
}

TEST(ShellProcess, AFileOnTheCommandLinePlaysOnDeckA) {
    REQUIRE_PROGRAM();
    const QString tone = testsupport::MakeTone("shell-tone.wav", 440, 5);
    ASSERT_FALSE(tone.isEmpty());
    const Outcome o = RunMixora({tone}, {"MIXORA_AUTOTEST=play-file"});
    ExpectFullRun(o);
    EXPECT_TRUE(o.log.contains("main device null"));
    const QString line = Matching(o.log, "deck A track").value(0);
    ASSERT_FALSE(line.isEmpty()) << o.log.join('\n').toStdString();
    EXPECT_TRUE(line.startsWith("deck A track shell-tone elapsed")) << line.toStdString();
    EXPECT_TRUE(line.endsWith("needle lift")) << line.toStdString();
    // Up to a second of the file has been heard on the clocked Null device
    // (less on a loaded machine, never nothing).
    const double elapsed = line.section(' ', 5, 5).toDouble();
    EXPECT_GT(elapsed, 0.05) << line.toStdString();
    EXPECT_LT(elapsed, 3.0) << line.toStdString();
}

TEST(ShellProcess, EscOnTheHostAndPlayingDecksShutDownTheSameWay) {
    REQUIRE_PROGRAM();
    ExpectFullRun(RunMixora({}, {"MIXORA_AUTOTEST=escape"}));
    // Both decks playing with their notification threads busy.
    ExpectFullRun(RunMixora({}, {"MIXORA_AUTOTEST=play-close"}));
}

TEST(ShellProcess, AFailingPlatformLayerEndsStartUpWithAMessage) {
    REQUIRE_PROGRAM();
    const Outcome sound = RunMixora({}, {"MIXORA_AUTOTEST_FAIL=sound"});
    EXPECT_EQ(sound.exitCode, 1);
    EXPECT_TRUE(sound.output.contains("Mixora cannot start: the PortAudio sound library"));
    EXPECT_TRUE(Matching(sound.log, "create ").isEmpty());

    const Outcome media = RunMixora({}, {"MIXORA_AUTOTEST_FAIL=media"});
    EXPECT_EQ(media.exitCode, 1);
    EXPECT_TRUE(media.output.contains("libavformat"));
    EXPECT_TRUE(Matching(media.log, "create ").isEmpty());
}

TEST(ShellProcess, HelpAndVersionNeedNoDisplay) {
    REQUIRE_PROGRAM();
    // No platform plugin can start here: a window system would fail.
    const Outcome help = RunMixora({"--help"}, {"QT_QPA_PLATFORM=none-such", "DISPLAY="});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.output.contains("Usage: mixora"));
    const Outcome version = RunMixora({"--version"}, {"QT_QPA_PLATFORM=none-such", "DISPLAY="});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output.trimmed(), "mixora " MIXORA_VERSION);
}
