// The real program records: as a child process on the clocked Null device,
// deck A plays a tone while the main mixer's REC button records two seconds
// into the music folder; the program says where the file went, and the file
// is a complete WAV with the tone in it and no frame lost.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cmath>
#include <vector>

#include "TestSupport.h"
#include "app/MixoraChild.h"

namespace {
const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");
}  // namespace

TEST(ShellRecording, TheRecButtonOfTheRunningProgramMakesAFile) {
    ASSERT_TRUE(QFileInfo::exists(kProgram)) << "no mixora in this build";
    const QString tone = testsupport::MakeTone("shell-record-tone.wav", 440, 6);
    ASSERT_FALSE(tone.isEmpty());
    QTemporaryDir music;
    testsupport::MixoraChild child;
    ASSERT_TRUE(
        child.Start({tone}, {"MIXORA_AUTOTEST=record", "MIXORA_MUSIC_DIR=" + music.path()}));
    ASSERT_TRUE(child.Wait(60000));
    EXPECT_EQ(child.ExitCode(), 0) << child.Stderr().constData();
    EXPECT_EQ(child.Stderr(), QByteArray());

    QString line, notice;
    for (const QString& l : child.Log()) {
        if (l.startsWith("record notice "))
            notice = l;
        else if (l.startsWith("record "))
            line = l;
    }
    ASSERT_FALSE(line.isEmpty()) << child.Log().join('\n').toStdString();
    // "record <path> time H:MM:SS lost N"
    const QStringList words = line.split(' ');
    ASSERT_GE(words.size(), 6);
    EXPECT_EQ(words.last(), "0");
    const QStringList files = QDir(music.path()).entryList({"Mixora *.wav"}, QDir::Files);
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(line.contains(files.first())) << line.toStdString();
    EXPECT_TRUE(notice.contains(files.first())) << notice.toStdString();

    SF_INFO info{};
    SNDFILE* f =
        sf_open(QDir(music.path()).filePath(files.first()).toStdString().c_str(), SFM_READ, &info);
    ASSERT_NE(f, nullptr);
    std::vector<std::int16_t> pcm(static_cast<std::size_t>(info.frames) * 2);
    sf_readf_short(f, pcm.data(), info.frames);
    sf_close(f);
    EXPECT_EQ(info.samplerate, 44100);
    // About two seconds (the clocked device runs in real time; a loaded
    // machine may stretch the timers).
    EXPECT_GT(info.frames, 44100);
    EXPECT_LT(info.frames, 6 * 44100);
    long long peak = 0;
    for (std::int16_t s : pcm)
        peak = std::max<long long>(peak, std::abs(static_cast<int>(s)));
    EXPECT_GT(peak, 1000) << "the tone is in the recording";
}
