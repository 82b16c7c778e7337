// The mixer's meters on the Null device: what is drawn is the block being
// heard. A 1 kHz tone at −6 dBFS on deck A shows its RMS text and lamps at
// the heard slot, and a later drop in level shows only once that block is
// heard, not when the deck writes it; a 120 BPM click track lights deck A's
// beat LED about twice a second. The windows are rendered to PNGs.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <cmath>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/graphs/DeckGraphs.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"

using testsupport::PlaybackRig;

namespace {

// sox fixtures in the build tree, made once.
QString MakeWithSox(const QString& name, const QStringList& effects) {
    const QString path = testsupport::FixtureDir() + "/" + name;
    if (QFile::exists(path))
        return path;
    QStringList args{"-n", "-r", "44100", "-c", "2", "-b", "16", path};
    args += effects;
    return testsupport::RunInto(path, "sox", args) ? path : QString();
}

// The slot holding the first block whose RMS is below `db`, or -1.
int QuietSlot(const dsp::DeckAnalysis& a, float db) {
    for (int s = 0; s < dsp::DeckAnalysis::kSlots; ++s)
        if (a.At(s).channels[0].rmsDb > 0.0f && a.At(s).channels[0].rmsDb < db)
            return s;
    return -1;
}

// The deck window in each graph type and the main mixer, while deck A plays,
// rendered to PNGs in the build folder.
void SaveWindows(PlaybackRig& rig) {
    DeckGraphs& graphs = rig.Deck(0).Graphs();
    for (const QString& type : {QStringLiteral("Bars"), QStringLiteral("Scope")}) {
        graphs.SetGraphType(type);
        graphs.SetChannels(type == QStringLiteral("Scope") ? 2 : 1);
        rig.Deck(0).show();
        for (int i = 0; i < 12; ++i) {
            ASSERT_TRUE(rig.RenderAndDraw(1));
        }
        EXPECT_GT(graphs.Draws(), 0);
        QImage deck = rig.Deck(0).grab().toImage();
        EXPECT_TRUE(deck.save(QStringLiteral(MIXORA_BINARY_DIR "/deck-graphs-") + type.toLower() +
                              QStringLiteral(".png")));
    }
    QImage shot = rig.Mixer().grab().toImage();
    EXPECT_TRUE(shot.save(QStringLiteral(MIXORA_BINARY_DIR "/main-mixer-meters.png")));
    graphs.SetGraphType(QStringLiteral("Bars"));
    graphs.SetChannels(1);
}

}  // namespace

TEST(MixerMetersHeard, RmsTextAndLampsFollowTheBlockBeingHeard) {
    // 6 s at −6 dBFS, then 6 s at −20 dBFS.
    const QString loud =
        MakeWithSox("meters-1k-6db.wav", {"synth", "6", "sine", "1000", "vol", "0.5"});
    const QString quiet =
        MakeWithSox("meters-1k-20db.wav", {"synth", "6", "sine", "1000", "vol", "0.1"});
    ASSERT_FALSE(loud.isEmpty() || quiet.isEmpty());
    const QString both = testsupport::FixtureDir() + "/meters-1k-steps.wav";
    if (!QFile::exists(both)) {
        ASSERT_TRUE(testsupport::RunInto(both, "sox", {loud, quiet, both}));
    }

    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    MixerMeters& meters = mixer.Meters();
    dsp::DeckAnalysis& analysis = rig.Deck(0).Graphs().Analysis();
    ASSERT_TRUE(rig.LoadAndPrime(0, {both}));
    ASSERT_TRUE(rig.Drop(0));

    const double loudDb = 20 * std::log10(16384 / std::sqrt(2.0));  // 81.27
    bool sawLoud = false;
    int loudDraws = 0;
    int writtenAt = -1, heardAt = -1, shownAt = -1;
    for (int block = 0; block < 400 && shownAt < 0; ++block) {
        ASSERT_TRUE(rig.RenderAndDraw(1));
        const int heard = mixer.HeardSlot(0);
        ASSERT_GE(heard, 0);
        const float heardDb = analysis.At(heard).channels[0].rmsDb;
        if (writtenAt < 0 && QuietSlot(analysis, 75.0f) >= 0)
            writtenAt = block;
        if (heardAt < 0 && heardDb > 0 && heardDb < 75.0f)
            heardAt = block;
        const QString text = meters.RmsText(0);
        if (!sawLoud && block > 10 && text == QString::number(loudDb, 'f', 1))
            sawLoud = true;
        if (sawLoud && ++loudDraws == 4) {
            // The bar climbs three lamps a draw to f = 81.27 / 68.11 − 0.4
            // = 0.793: 7 of 9 lamps.
            EXPECT_EQ(meters.RmsText(0), QString::number(loudDb, 'f', 1));
            EXPECT_EQ(meters.DecibelLit(0), 7);
            int lit = 0;
            for (int i = 0; i < MixerMeters::kDecibelLamps; ++i)
                lit += meters.DecibelLamp(0, i)->Value() ? 1 : 0;
            EXPECT_EQ(lit, 7);
        }
        if (sawLoud && text.toDouble() < 75.0)
            shownAt = block;
    }
    EXPECT_TRUE(sawLoud);
    ASSERT_GE(writtenAt, 0);
    ASSERT_GE(shownAt, 0);
    // Written several blocks ahead, shown only when heard.
    EXPECT_GT(shownAt, writtenAt + 1);
    EXPECT_EQ(shownAt, heardAt);
    // −20 dBFS: σ = 3277/√2 → 67.3 dB.
    EXPECT_NEAR(meters.RmsText(0).toDouble(), 67.3, 0.1);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(rig.RenderAndDraw(1));
    }
    EXPECT_EQ(meters.DecibelLit(0), 5);  // f = 0.588
    SaveWindows(rig);
}

TEST(MixerMetersHeard, ClickTrackAt120BpmLightsTheBeatLedTwiceASecond) {
    // A 30 ms 80 Hz click every half second.
    const QString clicks = MakeWithSox(
        "meters-clicks-120-60s.wav",
        {"synth", "0.03", "sine", "80", "vol", "0.8", "pad", "0", "0.47", "repeat", "119"});
    ASSERT_FALSE(clicks.isEmpty());

    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    DeckGraphs& graphs = rig.Deck(0).Graphs();
    graphs.SetBandsInPlot(3);
    graphs.Analysis().SetBeatBand(1);  // the lowest band
    ASSERT_TRUE(rig.LoadAndPrime(0, {clicks}));
    ASSERT_TRUE(rig.Drop(0));
    // The auto range starts at 0 … 280000 and closes by 1 dB a side every
    // 100 ms of playing: after 22 s it hugs the clicks' envelope.
    for (int i = 0; i < 825; ++i) {
        ASSERT_TRUE(rig.RenderAndDraw(1));
        if (i % 4 == 0)
            graphs.AutoRangeTick();
    }

    const QColor dark = rig.Deck(0).Colour(1);
    int flashes = 0;
    bool lit = false;
    const int blocks = 375;  // 10 s
    for (int i = 0; i < blocks; ++i) {
        ASSERT_TRUE(rig.RenderAndDraw(1));
        // The auto range narrows every 100 ms of playing: about every 4 blocks.
        if (i % 4 == 0)
            graphs.AutoRangeTick();
        const bool now = graphs.BeatValue() > 0.7f;
        if (now && !lit)
            ++flashes;
        lit = now;
        if (now) {
            EXPECT_NE(mixer.Meters().BeatLedColour(0), dark);
        }
    }
    // Ten seconds at 120 BPM: twenty beats.
    EXPECT_GE(flashes, 18);
    EXPECT_LE(flashes, 22);
}
