// The real program as a child process on the offscreen platform: start-up
// order, the five shutdown steps, exit code 0, failing platform layers, and
// --help/--version without any display.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "app/MixoraChild.h"

#include <QFileInfo>

#include <csignal>
#include <functional>

#include <unistd.h>

namespace {

const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");

struct Outcome {
    int exitCode = -1;
    bool normalExit = false;
    QStringList log;
    QString output;
};

// Runs the program to its end (a child process with its own folders) and
// collects its shell log and its output and errors together. `whileRunning`,
// when given, is called with the child once it has started (it may kill it).
Outcome RunMixora(const QStringList& args, const QStringList& env,
                  const std::function<void(testsupport::MixoraChild&)>& whileRunning = nullptr) {
    Outcome o;
    testsupport::MixoraChild child;
    if (!child.Start(args, env))
        return o;
    if (whileRunning)
        whileRunning(child);
    if (!child.Wait(120000))
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
                              "create CRynPlayList 144",  "create CRynConfigure 130"};

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
    // The graphs thread started with the program (meters on by default) and
    // the mixer drew the heard blocks: ffmpeg's tone peaks at 4096 and each
    // side of the stereo file at 4096/√2, so σ ≈ 2048 and the RMS 66.2 dB.
    const QString graphs = Matching(o.log, "deck A graphs drawn").value(0);
    ASSERT_FALSE(graphs.isEmpty()) << o.log.join('\n').toStdString();
    EXPECT_GT(graphs.section(' ', 4, 4).toInt(), 0) << graphs.toStdString();
    EXPECT_NEAR(graphs.section(' ', 6, 6).toDouble(), 66.2, 0.3) << graphs.toStdString();
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

TEST(ShellProcess, EqualizerSettingsChangedInOneRunAreInTheWindowsAfterTheNext) {
    REQUIRE_PROGRAM();
    QTemporaryDir config;
    const QString dir = QStringLiteral("MIXORA_CONFIG_DIR=") + config.path();
    const Outcome first = RunMixora({}, {"MIXORA_AUTOTEST=eq-change", dir});
    ExpectFullRun(first);
    ASSERT_TRUE(first.log.contains("equalizers changed")) << first.log.join('\n').toStdString();

    const Outcome second = RunMixora({}, {"MIXORA_AUTOTEST=eq-report", dir});
    ExpectFullRun(second);
    EXPECT_EQ(Matching(second.log, "equalizer "),
              QStringList({"equalizer A bands 6 designed 6 filter Blackman AC off EQ on",
                           "equalizer B bands 12 designed 12 filter Hamming AC on EQ off"}))
        << second.log.join('\n').toStdString();

    // A fresh configuration starts from the defaults.
    const Outcome fresh = RunMixora({}, {"MIXORA_AUTOTEST=eq-report"});
    EXPECT_EQ(Matching(fresh.log, "equalizer "),
              QStringList({"equalizer A bands 3 designed 3 filter Hanning AC on EQ off",
                           "equalizer B bands 3 designed 3 filter Hanning AC on EQ off"}));
}

TEST(ShellProcess, ADefaultListMadeInOneRunIsThereAfterARestart) {
    REQUIRE_PROGRAM();
    QTemporaryDir data;
    const QString tone = testsupport::MakeTone("shell-list-tone.wav", 330, 2);
    ASSERT_FALSE(tone.isEmpty());
    const QString dataDir = QStringLiteral("MIXORA_DATA_DIR=") + data.path();
    const QString list = data.path() + "/DeckAPlayList.m3u";

    // First run: the file given to deck A goes into its list, saved at shutdown.
    ExpectFullRun(RunMixora({tone}, {"MIXORA_AUTOTEST=close-mixer", dataDir}));
    QFile first(list);
    ASSERT_TRUE(first.open(QIODevice::ReadOnly));
    const QString saved = QString::fromUtf8(first.readAll());
    first.close();
    EXPECT_TRUE(saved.startsWith("#EXTM3U\n")) << saved.toStdString();
    EXPECT_TRUE(saved.contains("\n" + tone + "\n")) << saved.toStdString();

    // A hand-added entry and an old date: the second run must read the list
    // (at File mode) and write it back (at shutdown) with both entries.
    ASSERT_TRUE(first.open(QIODevice::Append));
    first.write("#EXTINF:5,Hand Added\n/music/hand added.mp3\n");
    first.close();
    const QDateTime old = QDateTime::currentDateTime().addDays(-30);
    ASSERT_TRUE(first.open(QIODevice::ReadWrite));
    ASSERT_TRUE(first.setFileTime(old, QFileDevice::FileModificationTime));
    first.close();

    ExpectFullRun(RunMixora({}, {"MIXORA_AUTOTEST=close-mixer", dataDir}));
    QFile second(list);
    ASSERT_TRUE(second.open(QIODevice::ReadOnly));
    EXPECT_GT(QFileInfo(list).lastModified(), old.addDays(1));
    const QString again = QString::fromUtf8(second.readAll());
    EXPECT_TRUE(again.contains("\n" + tone + "\n")) << again.toStdString();
    EXPECT_TRUE(again.contains("#EXTINF:5,Hand Added\n/music/hand added.mp3\n"))
        << again.toStdString();
}

TEST(ShellProcess, AKillDuringTheShutdownSaveLeavesTheDefaultListWhole) {
    REQUIRE_PROGRAM();
    QTemporaryDir data;
    const QString tone = testsupport::MakeTone("shell-kill-tone.wav", 330, 2);
    ASSERT_FALSE(tone.isEmpty());
    const QString list = data.path() + "/DeckAPlayList.m3u";
    // A long default list, so that the save at shutdown takes a while.
    constexpr int kEntries = 20000;
    QByteArray text = "#EXTM3U\n";
    for (int i = 0; i < kEntries; ++i)
        text += "#EXTINF:200,Entry " + QByteArray::number(i) + "\n/music/long/entry " +
                QByteArray::number(i) + ".mp3\n";
    QFile out(list);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(text);
    out.close();

    // From the first lamp of the decks' shutdown, where deck A's list is saved
    // (a save of this list takes about 100 ms): before, during and after it.
    const int kDelaysMs[] = {0, 30, 60, 90, 120, 150, 180};
    int killedInShutdown = 0;
    for (int round = 0; round < 7; ++round) {
        // The file on the command line joins the list: the save writes kEntries + 1.
        const Outcome o =
            RunMixora({tone}, {"MIXORA_AUTOTEST=close-mixer", "MIXORA_DATA_DIR=" + data.path()},
                      [&](testsupport::MixoraChild& child) {
                          if (!child.WaitForLine("shutdown lamp 2", 6000).isEmpty())
                              ++killedInShutdown;
                          usleep(static_cast<useconds_t>(kDelaysMs[round] * 1000));
                          child.Signal(SIGKILL);
                      });
        (void)o;  // killed, or (late rounds on a fast machine) ended by itself
        QFile in(list);
        ASSERT_TRUE(in.open(QIODevice::ReadOnly)) << "round " << round;
        const QList<QByteArray> lines = in.readAll().split('\n');
        ASSERT_FALSE(lines.isEmpty());
        EXPECT_EQ(lines.first(), "#EXTM3U");
        // Header, two lines an entry, and the empty text after the last line end.
        const int entries = static_cast<int>(lines.size() - 2) / 2;
        EXPECT_TRUE(entries == kEntries || entries == kEntries + 1)
            << "round " << round << ": " << entries << " entries";
        EXPECT_EQ(lines.last(), "");
        EXPECT_TRUE(lines[lines.size() - 2].endsWith(".mp3") ||
                    lines[lines.size() - 2].endsWith(".wav"));
        // Put the long list back for the next round.
        in.close();
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
        out.close();
    }
    EXPECT_GT(killedInShutdown, 0);
}
