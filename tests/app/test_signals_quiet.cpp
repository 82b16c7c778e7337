// The real program in a terminal user's shoes: a signal ends it the ordinary
// way (its list and settings saved, exit code 0), a second one during that
// shutdown ends it at once, and on this machine (no sound cards) nothing at
// all reaches standard error from start-up to the end.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <csignal>

#include "TestSupport.h"
#include "app/MixoraChild.h"

namespace {

#define REQUIRE_PROGRAM() ASSERT_TRUE(QFileInfo::exists(MIXORA_BINARY_DIR "/mixora"))

QString ReadText(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// A private runtime folder, as a desktop session has (Qt warns without one).
QString RuntimeDir() {
    const QString dir = testsupport::FixtureDir() + "/runtime";
    QDir().mkpath(dir);
    QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return dir;
}

}  // namespace

TEST(SignalsAndQuiet, EachSignalRunsTheOrdinaryShutdownAndSavesTheListAndSettings) {
    REQUIRE_PROGRAM();
    const QString tone = testsupport::MakeTone("signal-tone.wav", 440, 2);
    ASSERT_FALSE(tone.isEmpty());
    for (int sig : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(sig);
        testsupport::MixoraChild child;
        ASSERT_TRUE(child.Start({tone}, {"MIXORA_AUTOTEST=change-and-wait"}));
        ASSERT_FALSE(child.WaitForLine("changed", 20000).isEmpty())
            << child.Log().join('\n').toStdString() << child.Stderr().constData();
        child.Signal(sig);
        ASSERT_TRUE(child.Wait(20000));
        EXPECT_TRUE(child.NormalExit());
        EXPECT_EQ(child.ExitCode(), 0) << child.Stderr().constData();
        const QStringList log = child.Log();
        EXPECT_TRUE(log.contains("shutdown lamp 5: Destroying Deck Components."));
        EXPECT_EQ(log.value(log.size() - 1), "exit 0");
        // Deck A's list, with the file it was given, and the changed setting.
        EXPECT_TRUE(ReadText(child.DataDir() + "/DeckAPlayList.m3u").contains("signal-tone.wav"));
        EXPECT_TRUE(ReadText(child.ConfigDir() + "/Mixora.conf").contains("Remaining In Track:"));
    }
}

TEST(SignalsAndQuiet, ASecondSignalDuringTheShutdownEndsAtOnce) {
    REQUIRE_PROGRAM();
    testsupport::MixoraChild child;
    // Long shutdown pauses: the second signal surely comes during them.
    ASSERT_TRUE(
        child.Start({}, {"MIXORA_AUTOTEST=change-and-wait", "MIXORA_SHUTDOWN_PAUSE_MS=3000"}));
    ASSERT_FALSE(child.WaitForLine("changed", 20000).isEmpty());
    child.Signal(SIGTERM);
    ASSERT_FALSE(child.WaitForLine("shutdown lamp 1", 10000).isEmpty());
    child.Signal(SIGTERM);
    ASSERT_TRUE(child.Wait(2000)) << "the second signal did not end the program";
    EXPECT_EQ(child.ExitCode(), 128 + SIGTERM);
    EXPECT_FALSE(child.Log().contains("exit 0"));
}

TEST(SignalsAndQuiet, NothingReachesStandardErrorFromStartUpToTheEnd) {
    REQUIRE_PROGRAM();
    const QString tone = testsupport::MakeTone("quiet-tone.wav", 440, 2);
    ASSERT_FALSE(tone.isEmpty());
    testsupport::MixoraChild child;
    // The system's own choice of device (PortAudio probes ALSA and JACK,
    // which have nothing here), a file playing, then the user's close.
    ASSERT_TRUE(child.Start({tone}, {"MIXORA_AUTOTEST=play-file", "MIXORA_SOUND_DEVICE=",
                                     "XDG_RUNTIME_DIR=" + RuntimeDir(), "QT_LOGGING_RULES="}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(child.ExitCode(), 0);
    EXPECT_EQ(child.Log().value(child.Log().size() - 1), "exit 0");
    EXPECT_EQ(child.Stderr(), QByteArray());
    EXPECT_EQ(child.Stdout(), QByteArray());

    // --verbose shows the developer traces.
    testsupport::MixoraChild verbose;
    ASSERT_TRUE(verbose.Start({"--verbose"},
                              {"MIXORA_AUTOTEST=close-mixer", "XDG_RUNTIME_DIR=" + RuntimeDir()}));
    ASSERT_TRUE(verbose.Wait(30000));
    EXPECT_EQ(verbose.ExitCode(), 0);
    EXPECT_TRUE(verbose.Stderr().contains("CRynMainMixer opens the main device null"))
        << verbose.Stderr().constData();
}
