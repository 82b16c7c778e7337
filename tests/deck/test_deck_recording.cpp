// Recording the mix in the real engine: both decks play on the manual Null
// device, the main mixer's "REC" button is clicked in its offscreen window,
// and after 60 s of mixing the file holds, sample for sample, what the
// device was given. A folder that does not exist gives a message on the
// mixer, and a mixer closed while recording leaves a complete file.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <numbers>
#include <vector>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/DeckRig.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MainMixerRecording.h"

using testsupport::PlaybackRig;

namespace {

// Recordings go to `folder` while it lives.
class MusicFolder {
  public:
    explicit MusicFolder(const QString& folder) { qputenv("MIXORA_MUSIC_DIR", folder.toUtf8()); }
    ~MusicFolder() { qunsetenv("MIXORA_MUSIC_DIR"); }
};

std::vector<std::int16_t> ReadAll(const QString& path, SF_INFO* info) {
    *info = SF_INFO{};
    SNDFILE* f = sf_open(path.toStdString().c_str(), SFM_READ, info);
    if (f == nullptr)
        return {};
    std::vector<std::int16_t> pcm(static_cast<std::size_t>(info->frames) * 2);
    pcm.resize(static_cast<std::size_t>(sf_readf_short(f, pcm.data(), info->frames)) * 2);
    sf_close(f);
    return pcm;
}

// Amplitude of `hz` in the left channel over the first `frames` frames.
double Amplitude(const std::vector<std::int16_t>& pcm, double hz, int frames) {
    const double w = 2.0 * std::numbers::pi * hz / 44100.0;
    double re = 0, im = 0;
    for (int n = 0; n < frames; ++n) {
        re += pcm[2 * static_cast<std::size_t>(n)] * std::cos(w * n);
        im -= pcm[2 * static_cast<std::size_t>(n)] * std::sin(w * n);
    }
    return 2.0 * std::hypot(re, im) / frames;
}

void Click(CNiButton* button) {
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, button->rect().center());
}

}  // namespace

TEST(DeckRecording, SixtySecondsOfBothDecksAreBitExactWithTheDevice) {
    const QString a = testsupport::MakeTone("rec-440.wav", 440, 66);
    const QString b = testsupport::MakeTone("rec-660.wav", 660, 66);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());
    QTemporaryDir music;
    const MusicFolder folder(music.path());

    PlaybackRig rig(true);
    MainMixerPanel& panel = rig.Mixer().Panel();
    panel.SetCurveParameter(0.0f);
    panel.SetCrossFader(0.0f);  // both decks heard
    ASSERT_TRUE(rig.LoadAndPrime(0, {a}));
    ASSERT_TRUE(rig.LoadAndPrime(1, {b}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.Drop(1));
    ASSERT_TRUE(rig.RenderBlocks(20));

    rig.Mixer().show();
    MainMixerRecording& rec = rig.Mixer().Recording();
    EXPECT_EQ(rec.RecButton()->Caption(), "REC");
    rec.FormatButton()->SetValue(false);
    EXPECT_EQ(rec.FormatButton()->Caption(), "WAV");
    Click(rec.RecButton());
    ASSERT_TRUE(rec.Recording()) << rec.NoticeText().toStdString();
    EXPECT_TRUE(rec.RecButton()->Value());
    EXPECT_FALSE(rec.FormatButton()->isEnabled());  // no change of type while recording
    rig.ClearOutput();
    constexpr int kBlocks = 2250;  // 60 s of 1176-frame blocks
    ASSERT_TRUE(rig.RenderBlocks(kBlocks));
    Click(rec.RecButton());
    ASSERT_FALSE(rec.Recording());
    EXPECT_FALSE(rec.RecButton()->Value());

    EXPECT_EQ(rec.TimeText(), "0:01:00");
    EXPECT_EQ(rec.LostText(), "");
    EXPECT_EQ(rec.Recorder().LostFrames(), 0u);
    const QFileInfo file(rec.FilePath());
    EXPECT_EQ(QDir(file.absolutePath()), QDir(music.path()));
    EXPECT_TRUE(file.fileName().startsWith("Mixora ")) << file.fileName().toStdString();
    EXPECT_TRUE(file.fileName().endsWith(".wav"));
    EXPECT_TRUE(rec.NoticeText().contains(file.fileName())) << rec.NoticeText().toStdString();

    SF_INFO info;
    const std::vector<std::int16_t> pcm = ReadAll(file.absoluteFilePath(), &info);
    EXPECT_EQ(info.samplerate, 44100);
    EXPECT_EQ(info.channels, 2);
    ASSERT_EQ(pcm.size(), rig.Output().size());
    ASSERT_EQ(pcm.size(), 2u * kBlocks * 1176);
    std::size_t firstDifference = pcm.size();
    for (std::size_t i = 0; i < pcm.size() && firstDifference == pcm.size(); ++i) {
        if (pcm[i] != rig.Output()[i])
            firstDifference = i;
    }
    EXPECT_EQ(firstDifference, pcm.size()) << "the file differs at sample " << firstDifference;
    // Both decks are in it.
    EXPECT_GT(Amplitude(pcm, 440, 44100), 500.0);
    EXPECT_GT(Amplitude(pcm, 660, 44100), 500.0);
}

TEST(DeckRecording, AMissingFolderIsToldOnTheMixerAndAClosingMixerKeepsTheFile) {
    QTemporaryDir music;
    const QString missing = music.path() + "/no-such-folder";
    QString path;
    {
        PlaybackRig rig(true);
        MainMixerRecording& rec = rig.Mixer().Recording();
        {
            const MusicFolder folder(missing);
            rec.RecButton()->SetValue(true);
        }
        EXPECT_FALSE(rec.Recording());
        EXPECT_FALSE(rec.RecButton()->Value());
        EXPECT_EQ(rec.NoticeText(), QStringLiteral("Recording not started: the folder %1 does not "
                                                   "exist.")
                                        .arg(QDir::toNativeSeparators(missing)));

        // FLAC this time; the mixer goes away while it records.
        const MusicFolder folder(music.path());
        rec.FormatButton()->SetValue(true);
        EXPECT_EQ(rec.FormatButton()->Caption(), "FLAC");
        rec.RecButton()->SetValue(true);
        ASSERT_TRUE(rec.Recording());
        EXPECT_EQ(rec.NoticeText(), "");
        ASSERT_TRUE(rig.RenderBlocks(100));
        path = rec.FilePath();
    }
    EXPECT_TRUE(path.endsWith(".flac"));
    SF_INFO info;
    const std::vector<std::int16_t> pcm = ReadAll(path, &info);
    EXPECT_EQ(info.format, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    EXPECT_EQ(info.frames, 100 * 1176);
}
