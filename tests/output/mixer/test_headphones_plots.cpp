// The headphones mixer's plots and the main mixer's scope on the Null
// device: a 1 kHz tone on deck A is drawn from the block being heard, as bars
// or as a scope, on one plot (both ears) or two (left, right ear); nothing is
// drawn while the window is hidden, and the decks build scope traces only
// while a scope is on show. The window is rendered to a PNG.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/graphs/DeckGraphs.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"
#include "settings/CRynSettings.h"

using testsupport::PlaybackRig;

namespace {

QString Tone() {
    const QString path = testsupport::FixtureDir() + "/phones-plots-1k.wav";
    if (QFile::exists(path))
        return path;
    const QStringList args{"-n",    "-r", "44100", "-c",   "2",    "-b",  "16",  path,
                           "synth", "20", "sine",  "1000", "sine", "150", "vol", "0.5"};
    return testsupport::RunInto(path, "sox", args) ? path : QString();
}

void Step(PlaybackRig& rig, int blocks = 1) {
    ASSERT_TRUE(rig.RenderAndDraw(blocks));
}

// The expected scope trace: every group of the slot summed, `channel` -1
// averaging both.
std::vector<double> Trace(const dsp::DeckAnalysis& a, int slot, int channel) {
    std::vector<double> out(dsp::DeckAnalysis::kPoints, 0.0);
    const auto& s = a.At(slot);
    for (int g = 0; g < a.Groups().groups; ++g)
        for (int j = 0; j < dsp::DeckAnalysis::kPoints; ++j)
            out[j] += channel < 0 ? 0.5 * (s.channels[0].traces[g][j] + s.channels[1].traces[g][j])
                                  : s.channels[channel].traces[g][j];
    return out;
}

std::vector<double> Data(const CNiGraph* g, int plot) {
    const QVector<double> d = g->PlotData(plot);
    return std::vector<double>(d.begin(), d.end());
}

double Largest(const std::vector<double>& v) {
    double m = 0.0;
    for (double x : v)
        m = std::max(m, std::abs(x));
    return m;
}

}  // namespace

TEST(HeadphonesPlots, DrawTheBlockBeingHeardAsBarsOrScope) {
    const QString tone = Tone();
    ASSERT_FALSE(tone.isEmpty());
    CRynHeadphonesMixer phones;
    PlaybackRig rig(false, false, &phones);
    Settings().SetPhonesMixerGraphEnabledState(true);  // the plots are off until shown
    phones.Initialise(rig.Mixer().Handle());
    phones.SetDeckColours(0, rig.Deck(0).Colour(0), rig.Deck(0).Colour(1));
    CRynMainMixer& mixer = rig.Mixer();
    DeckGraphs& graphs = rig.Deck(0).Graphs();
    graphs.SetGraphType(QStringLiteral("Bars"));
    graphs.SetBandsInPlot(6);
    const dsp::DeckAnalysis& a = graphs.Analysis();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));

    // Hidden: nothing drawn and no scope traces wanted.
    phones.PlotCountButton()->SetValue(false);
    phones.PlotTypeButton(0)->SetValue(true);  // "Scope"
    Step(rig, 6);
    EXPECT_EQ(phones.PlotDraws(), 0);
    EXPECT_EQ(phones.Plot(0)->PlotPointCount(0), 0);
    EXPECT_FALSE(a.ScopeWanted());

    // One plot, scope: both ears' traces of the heard block, all groups summed.
    phones.show();
    // The deck writes some 8 blocks ahead of what is heard: the first traces
    // heard are those built once the scope was wanted.
    Step(rig, 12);
    EXPECT_TRUE(a.ScopeWanted());
    EXPECT_GT(phones.PlotDraws(), 0);
    std::vector<double> shown = Data(phones.Plot(0), 0);
    std::vector<double> heard = Trace(a, mixer.HeardSlot(0), -1);
    ASSERT_EQ(shown.size(), heard.size());
    for (size_t j = 0; j < shown.size(); ++j)
        EXPECT_DOUBLE_EQ(shown[j], heard[j]) << "point " << j;
    EXPECT_GT(Largest(shown), 2000.0);  // a −6 dBFS tone, not a stale zero trace

    // One plot, bars: the current band values (both ears) spread over 24
    // columns; the 6 bands fill 4 columns each.
    phones.PlotTypeButton(0)->SetValue(false);
    EXPECT_EQ(phones.PlotTypeButton(0)->Caption(), QStringLiteral("Bars"));
    EXPECT_EQ(Settings().GetPhonesMixerGraphType(0), QStringLiteral("Bars"));
    Step(rig, 3);
    EXPECT_FALSE(a.ScopeWanted());
    shown = Data(phones.Plot(0), 0);
    ASSERT_EQ(shown.size(), 25u);
    const auto both = a.CurrentValues();
    EXPECT_EQ(shown[0], 0.0);
    for (int c = 1; c <= 24; ++c)
        EXPECT_DOUBLE_EQ(shown[c], both[1 + (c - 1) / 4]) << "column " << c;
    EXPECT_GT(*std::max_element(shown.begin(), shown.end()), 50000.0);

    // Two plots: the left ear as a scope, the right ear as bars.
    phones.PlotCountButton()->SetValue(true);
    EXPECT_EQ(Settings().GetPhonesMixerNumGraphs(), 2);
    EXPECT_FALSE(phones.Plot(1)->isHidden());
    phones.PlotTypeButton(0)->SetValue(true);
    phones.PlotTypeButton(1)->SetValue(false);
    Step(rig, 12);
    shown = Data(phones.Plot(0), 0);
    heard = Trace(a, mixer.HeardSlot(0), 0);
    for (size_t j = 0; j < shown.size(); ++j)
        EXPECT_DOUBLE_EQ(shown[j], heard[j]) << "point " << j;
    EXPECT_GT(Largest(shown), 2000.0);
    shown = Data(phones.Plot(1), 0);
    const auto right = a.ChannelValues(1);
    ASSERT_EQ(shown.size(), 25u);
    for (int c = 1; c <= 24; ++c)
        EXPECT_DOUBLE_EQ(shown[c], right[1 + (c - 1) / 4]) << "column " << c;

    const QImage shot = phones.grab().toImage();
    EXPECT_TRUE(shot.save(QStringLiteral(MIXORA_BINARY_DIR "/headphones-mixer-plots.png")));

    // The deck's meters off clears its traces and stops the drawing.
    mixer.SetMetersEnabled(0, false);
    EXPECT_EQ(phones.Plot(0)->PlotPointCount(0), 0);
    const int draws = phones.PlotDraws();
    Step(rig, 3);
    EXPECT_EQ(phones.PlotDraws(), draws);
    mixer.SetMetersEnabled(0, true);

    // Hidden again: the drawing stops.
    phones.hide();
    Step(rig, 3);
    const int hiddenDraws = phones.PlotDraws();
    Step(rig, 3);
    EXPECT_EQ(phones.PlotDraws(), hiddenDraws);
}

TEST(HeadphonesPlots, MainMixerGraphShowsTheScopeOnRightClick) {
    const QString tone = Tone();
    ASSERT_FALSE(tone.isEmpty());
    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    MixerMeters& meters = mixer.Meters();
    DeckGraphs& graphs = rig.Deck(0).Graphs();
    graphs.SetGraphType(QStringLiteral("Bars"));
    const dsp::DeckAnalysis& a = graphs.Analysis();
    mixer.show();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    Step(rig, 4);
    EXPECT_EQ(meters.GraphType(0), QStringLiteral("Bars"));
    EXPECT_FALSE(a.ScopeWanted());

    QTest::mouseClick(meters.BandGraph(0), Qt::RightButton);
    EXPECT_EQ(meters.GraphType(0), QStringLiteral("Scope"));
    EXPECT_EQ(Settings().GetMainMixerGraphType(0), QStringLiteral("Scope"));
    // The blocks written before the switch carry no traces: the scope shows
    // once the first block measured after it is heard (the deck writes a
    // varying number of blocks ahead).
    for (int i = 0; i < 60 && Largest(Data(meters.BandGraph(0), 0)) == 0.0; ++i)
        Step(rig, 1);
    Step(rig, 1);
    EXPECT_TRUE(a.ScopeWanted());
    const std::vector<double> shown = Data(meters.BandGraph(0), 0);
    const std::vector<double> heard = Trace(a, mixer.HeardSlot(0), -1);
    ASSERT_EQ(shown.size(), heard.size());
    for (size_t j = 0; j < shown.size(); ++j)
        EXPECT_DOUBLE_EQ(shown[j], heard[j]) << "point " << j;
    EXPECT_GT(Largest(shown), 2000.0);

    QTest::mouseClick(meters.BandGraph(0), Qt::RightButton);
    EXPECT_EQ(meters.GraphType(0), QStringLiteral("Bars"));
    Step(rig, 2);
    EXPECT_FALSE(a.ScopeWanted());
    EXPECT_EQ(meters.BandGraph(0)->PlotPointCount(0), a.BandsInPlot() + 1);
}
