// A double click shows one graph alone, the headphones mixer's plots among
// the others: a double click on a headphones plot reaches the host through
// the main mixer, and the selection switches every other graph off, the
// other headphones plot too; the same double click brings them all back.
#include <gtest/gtest.h>

#include <QTest>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "dsp/window/CRyn3DGraph.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"
#include "settings/CRynSettings.h"

using testsupport::MessageLog;

namespace {

// The host (a log), the main mixer with both decks, the headphones mixer and
// the 3D graph, all real windows.
struct Rig {
    MessageLog host;
    CRynHeadphonesMixer phones;
    CRyn3DGraph graph3d;
    std::unique_ptr<CRynMainMixer> mixer;
    std::unique_ptr<CRynDeck> decks[2];
    Rig() {
        ResetEngineStateForTest();
        Engine().mainDialogWindow = host.Handle();
        mixer = std::make_unique<CRynMainMixer>();
        for (int d = 0; d < 2; ++d) {
            decks[d] = std::make_unique<CRynDeck>();
            decks[d]->Initialise(nullptr, nullptr, nullptr, mixer->Handle(), d);
        }
        mixer->Initialise(host.Handle(), decks[0].get(), decks[1].get(), &phones, &graph3d);
        phones.Initialise(mixer->Handle());
        graph3d.Initialise(mixer->Handle());
        phones.PlotCountButton()->SetValue(true);  // two plots: left and right ear
    }
    ~Rig() {
        for (auto& d : decks)
            d->Shutdown();
        decks[0].reset();
        decks[1].reset();
        mixer.reset();
        ResetEngineStateForTest();
    }
};

}  // namespace

TEST(GraphSelection, AHeadphonesPlotShownAloneAndBack) {
    Rig rig;
    MessageLog& host = rig.host;
    CRynHeadphonesMixer& phones = rig.phones;
    CRynMainMixer* mixer = rig.mixer.get();
    auto& decks = rig.decks;
    phones.show();

    QTest::mouseDClick(phones.Plot(1), Qt::LeftButton);
    ASSERT_TRUE(testsupport::WaitFor([&] { return host.Count(UWM_GRAPH_DOUBLE_CLICK) > 0; }));
    EXPECT_EQ(host.got.back().w, static_cast<WParam>(CRynHeadphonesMixer::kTemplateId));
    EXPECT_EQ(host.got.back().l, CRynHeadphonesMixer::kPlotIds[1]);

    // What the host does with it: the right-ear plot alone.
    mixer->SelectGraphOnly(CRynHeadphonesMixer::kTemplateId, CRynHeadphonesMixer::kPlotIds[1]);
    EXPECT_TRUE(phones.PlotOn(1));
    EXPECT_FALSE(phones.PlotOn(0));
    EXPECT_FALSE(decks[0]->Graphs().GraphsOn());
    EXPECT_FALSE(decks[1]->Graphs().GraphsOn());
    EXPECT_TRUE(mixer->Meters().BandGraph(0)->isHidden());
    EXPECT_TRUE(mixer->Meters().BandGraph(1)->isHidden());
    // A deck's graph alone switches both headphones plots off.
    mixer->SelectGraphOnly(CRynDeck::kTemplateId, CRynDeck::GraphControlId(0, 0));
    EXPECT_FALSE(phones.PlotOn(0));
    EXPECT_FALSE(phones.PlotOn(1));
    EXPECT_TRUE(decks[0]->Graphs().GraphsOn());
    // The same double click again: every graph back.
    mixer->SelectGraphOnly(CRynDeck::kTemplateId, CRynDeck::GraphControlId(0, 0));
    EXPECT_TRUE(phones.PlotOn(0));
    EXPECT_TRUE(phones.PlotOn(1));
    EXPECT_TRUE(decks[1]->Graphs().GraphsOn());
    EXPECT_FALSE(mixer->Meters().BandGraph(1)->isHidden());
}

// Double clicks on every kind of graph, through the real windows: the one
// clicked stays on, every other kind is off (each deck's graphs one by one,
// the 3D graph's enable, the mixer's graphs, the headphones plots) and the
// settings say so; the same double click again brings all back, the 3D graph
// as it was.
TEST(GraphSelection, EveryKindOfGraphShownAloneByItsDoubleClick) {
    Rig rig;
    MessageLog& host = rig.host;
    CRynHeadphonesMixer& phones = rig.phones;
    CRyn3DGraph& graph3d = rig.graph3d;
    CRynMainMixer* mixer = rig.mixer.get();
    auto& decks = rig.decks;
    for (auto& deck : decks) {
        deck->Graphs().SetChannels(2);  // a left and a right graph
        deck->show();
    }
    graph3d.SetGraphEnabled(true);
    graph3d.SetSoundMode(false);
    mixer->show();
    phones.show();
    graph3d.show();
    MixerMeters& meters = mixer->Meters();

    // What the host does with a double click: the selection.
    auto doubleClick = [&](QWidget* graph) {
        host.got.clear();
        QTest::mouseDClick(graph, Qt::LeftButton, Qt::NoModifier, graph->rect().center());
        if (!testsupport::WaitFor([&] { return host.Count(UWM_GRAPH_DOUBLE_CLICK) > 0; }))
            return false;
        mixer->SelectGraphOnly(static_cast<int>(host.got.back().w),
                               static_cast<int>(host.got.back().l));
        return true;
    };
    // Which graphs are on, in order: deck A left, right, deck B left, right,
    // 3D, mixer A, mixer B, headphones left, right.
    auto on = [&] {
        return std::vector<bool>{decks[0]->Graphs().GraphOn(0),
                                 decks[0]->Graphs().GraphOn(1),
                                 decks[1]->Graphs().GraphOn(0),
                                 decks[1]->Graphs().GraphOn(1),
                                 graph3d.GraphEnabled(),
                                 !meters.BandGraph(0)->isHidden(),
                                 !meters.BandGraph(1)->isHidden(),
                                 phones.PlotOn(0),
                                 phones.PlotOn(1)};
    };
    auto stored = [&] {
        CRynSettings& s = Settings();
        return std::vector<bool>{s.GetDeckGraphEnabled(0), s.GetDeckGraphEnabled(1),
                                 s.GetThreeDGraphEnabledState(), s.GetMainMixerGraphEnabledState(),
                                 s.GetPhonesMixerGraphEnabledState()};
    };
    const std::vector<bool> all(9, true);
    auto only = [](int k) {
        std::vector<bool> v(9, false);
        v[k] = true;
        return v;
    };

    // Deck A's right graph: deck A keeps only that one.
    ASSERT_TRUE(doubleClick(decks[0]->Graphs().Graph(1)));
    EXPECT_EQ(host.got.back().w, static_cast<WParam>(CRynDeck::kTemplateId));
    EXPECT_EQ(on(), only(1));
    EXPECT_EQ(stored(), (std::vector<bool>{true, false, false, false, false}));
    EXPECT_EQ(graph3d.Surface()->PlotAreaColor(), QColor(128, 128, 128));  // greyed
    // On screen: the band values reach the right graph only.
    decks[0]->Graphs().Draw(0);
    EXPECT_EQ(decks[0]->Graphs().Graph(0)->PlotPointCount(0), 0);
    EXPECT_GT(decks[0]->Graphs().Graph(1)->PlotPointCount(0), 0);
    ASSERT_TRUE(doubleClick(decks[0]->Graphs().Graph(1)));
    EXPECT_EQ(on(), all);
    EXPECT_EQ(stored(), (std::vector<bool>(5, true)));

    // The 3D graph alone.
    ASSERT_TRUE(doubleClick(graph3d.Surface()));
    EXPECT_EQ(host.got.back().w, static_cast<WParam>(CRyn3DGraph::kTemplateId));
    EXPECT_EQ(host.got.back().l, CRyn3DGraph::kSurfaceId);
    EXPECT_EQ(on(), only(4));
    EXPECT_EQ(stored(), (std::vector<bool>{false, false, true, false, false}));
    EXPECT_EQ(graph3d.Surface()->PlotAreaColor(), QColor(Qt::black));

    // From there straight to the mixer's graph of deck B, then the
    // headphones' left plot, then back to all: the 3D graph enabled as it was
    // before the first selection.
    ASSERT_TRUE(doubleClick(meters.BandGraph(1)));
    EXPECT_EQ(on(), only(6));
    EXPECT_EQ(stored(), (std::vector<bool>{false, false, false, true, false}));
    ASSERT_TRUE(doubleClick(phones.Plot(0)));
    EXPECT_EQ(on(), only(7));
    EXPECT_EQ(stored(), (std::vector<bool>{false, false, false, false, true}));
    ASSERT_TRUE(doubleClick(phones.Plot(0)));
    EXPECT_EQ(on(), all);

    // A 3D graph switched off before stays off when all come back.
    graph3d.SetGraphEnabled(false);
    ASSERT_TRUE(doubleClick(decks[1]->Graphs().Graph(0)));
    EXPECT_EQ(on(), only(2));
    ASSERT_TRUE(doubleClick(decks[1]->Graphs().Graph(0)));
    std::vector<bool> back = all;
    back[4] = false;
    EXPECT_EQ(on(), back);
    EXPECT_FALSE(Settings().GetThreeDGraphEnabledState());
}

// The selection outlives the windows: the next start shows the graphs the
// settings say are on, a deck's graphs, the mixer's, the headphones plots and
// the 3D graph each as stored. A deck hides its mixer graph while its meters
// are off and shows it again only if it was on.
TEST(GraphSelection, TheNextStartShowsTheStoredSelection) {
    auto on = [](Rig& rig) {
        return std::vector<bool>{rig.decks[0]->Graphs().GraphOn(0),
                                 rig.decks[1]->Graphs().GraphOn(0),
                                 rig.graph3d.GraphEnabled(),
                                 !rig.mixer->Meters().BandGraph(0)->isHidden(),
                                 !rig.mixer->Meters().BandGraph(1)->isHidden(),
                                 rig.phones.PlotOn(0),
                                 rig.phones.PlotOn(1)};
    };
    {
        Rig rig;
        rig.mixer->LayoutBuilt();  // start-up applies the stored meters
        rig.mixer->show();
        rig.mixer->SelectGraphOnly(CRynMainMixer::kTemplateId, CRynMainMixer::kBandGraphIds[1]);
        EXPECT_EQ(on(rig), (std::vector<bool>{false, false, false, false, true, false, false}));
    }
    {
        Rig rig;                   // the next start
        rig.mixer->LayoutBuilt();  // start-up applies the stored meters
        rig.mixer->show();
        // The mixer's graphs are stored as one flag: both come back.
        EXPECT_EQ(on(rig), (std::vector<bool>{false, false, false, true, true, false, false}));
        rig.mixer->SetMetersEnabled(0, false);
        EXPECT_TRUE(rig.mixer->Meters().BandGraph(0)->isHidden());
        rig.mixer->SetMetersEnabled(0, true);
        EXPECT_FALSE(rig.mixer->Meters().BandGraph(0)->isHidden());
        rig.mixer->SelectGraphOnly(CRynHeadphonesMixer::kTemplateId,
                                   CRynHeadphonesMixer::kPlotIds[0]);
        rig.mixer->SetMetersEnabled(1, false);
        rig.mixer->SetMetersEnabled(1, true);
        EXPECT_TRUE(rig.mixer->Meters().BandGraph(1)->isHidden()) << "shown by the meters switch";
    }
    {
        Rig rig;
        rig.mixer->LayoutBuilt();  // start-up applies the stored meters
        rig.mixer->show();
        EXPECT_EQ(on(rig), (std::vector<bool>{false, false, false, false, false, true, true}));
        rig.mixer->SelectGraphOnly(CRynDeck::kTemplateId, CRynDeck::GraphControlId(1, 0));
    }
    Rig rig;
    rig.mixer->LayoutBuilt();
    rig.mixer->show();
    EXPECT_EQ(on(rig), (std::vector<bool>{false, true, false, false, false, false, false}));
}
