// The graphs' number type chosen in the configuration window reaches every
// graph: with "Ints" the deck's graphs, the main mixer's graph and the
// headphones plots draw whole numbers only (scopes included, whose one-graph
// trace is the mean of two channels), with "Floats" fractions come back; the
// choice is stored, so a deck made later (a restart) starts with it and the
// configuration window shows it again.
#include <gtest/gtest.h>

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
#include "settings/window/CRynConfigure.h"

using testsupport::MessageLog;
using testsupport::PlaybackRig;

namespace {

struct Count {
    int points = 0;
    int fractions = 0;
};

void Tally(const CNiGraph* g, int plot, Count& c) {
    for (double v : g->PlotData(plot)) {
        ++c.points;
        if (v != std::trunc(v))
            ++c.fractions;
    }
}

// The configuration window's graphs number type button pressed; what it sends
// is handed to the main mixer as the host would.
void ChooseNumbers(CRynConfigure& configure, MessageLog& log, CRynMainMixer& mixer, bool ints) {
    log.got.clear();
    configure.GraphNumberTypeButton()->SetValue(ints);
    ASSERT_EQ(log.Count(UWM_GRAPH_NUMBER_TYPE), 1);
    for (const auto& m : log.got)
        if (m.msg == UWM_GRAPH_NUMBER_TYPE)
            SendAppMessage(mixer.Handle(), m.msg, m.w, m.l);
}

}  // namespace

TEST(GraphNumberType, EveryGraphDrawsWholeNumbersOrFractionsAsChosen) {
    const QString tone = testsupport::MakeTone("graph-numbers-1k.wav", 1000, 20);
    ASSERT_FALSE(tone.isEmpty());
    Settings().SetUseIntegersForGraphs(false);
    Settings().SetGraphNumberType(QStringLiteral("Floats"));
    CRynHeadphonesMixer phones;
    PlaybackRig rig(false, false, &phones);
    Settings().SetPhonesMixerGraphEnabledState(true);  // the plots are off until shown
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();
    MessageLog log;
    CRynConfigure configure;
    configure.enumerate = [] { return std::vector<sound::SoundDeviceInfo>{}; };
    configure.Initialise(log.Handle());

    DeckGraphs& graphs = rig.Deck(0).Graphs();
    MixerMeters& meters = mixer.Meters();
    graphs.SetBandsInPlot(6);
    phones.PlotCountButton()->SetValue(false);  // one plot: both ears
    rig.Deck(0).show();
    mixer.show();
    phones.show();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));

    // Every graph as a scope (one graph: both channels' mean) or as bars.
    auto drawAll = [&](bool scope) {
        const QString type = scope ? QStringLiteral("Scope") : QStringLiteral("Bars");
        graphs.SetGraphType(type);
        meters.SetGraphType(0, type);
        phones.PlotTypeButton(0)->SetValue(scope);
        // Past the blocks written ahead before the change.
        EXPECT_TRUE(rig.RenderAndDraw(16));
        std::array<Count, 3> c{};
        for (int g = 0; g < 3; ++g)
            Tally(graphs.Graph(0), g, c[0]);
        Tally(meters.BandGraph(0), 0, c[1]);
        Tally(phones.Plot(0), 0, c[2]);
        return c;
    };

    ChooseNumbers(configure, log, mixer, true);
    EXPECT_EQ(configure.GraphNumberTypeButton()->Caption(), QStringLiteral("Ints"));
    EXPECT_TRUE(Settings().GetUseIntegersForGraphs());
    for (bool scope : {true, false}) {
        const auto c = drawAll(scope);
        const char* names[] = {"deck", "main mixer", "headphones"};
        for (int k = 0; k < 3; ++k) {
            EXPECT_GT(c[k].points, scope ? 99 : 6) << names[k] << (scope ? " scope" : " bars");
            EXPECT_EQ(c[k].fractions, 0) << names[k] << (scope ? " scope" : " bars");
        }
    }

    ChooseNumbers(configure, log, mixer, false);
    EXPECT_FALSE(Settings().GetUseIntegersForGraphs());
    for (bool scope : {true, false}) {
        const auto c = drawAll(scope);
        const char* names[] = {"deck", "main mixer", "headphones"};
        for (int k = 0; k < 3; ++k)
            EXPECT_GT(c[k].fractions, 0) << names[k] << (scope ? " scope" : " bars");
    }

    // "Ints" again; what the next start makes of it.
    ChooseNumbers(configure, log, mixer, true);
    CRynDeck later;
    later.Initialise(nullptr, nullptr, nullptr, mixer.Handle(), 1);
    EXPECT_TRUE(later.Graphs().Analysis().IntegerValues());
    later.Shutdown();
    CRynConfigure again;
    again.enumerate = [] { return std::vector<sound::SoundDeviceInfo>{}; };
    again.Initialise(log.Handle());
    EXPECT_EQ(again.GraphNumberTypeButton()->Caption(), QStringLiteral("Ints"));
    Settings().SetUseIntegersForGraphs(false);
    Settings().SetGraphNumberType(QStringLiteral("Floats"));
}
