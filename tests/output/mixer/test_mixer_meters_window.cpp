// The meters and graphs as the user works them: the overload lamp, the meters
// enable and the graphs thread it asks for, right clicks on the lamps, the
// double click that keeps one graph, and the deck's graph buttons (graph
// type, split/join, bands in plot with the delayed 24, Auto/Man, the range
// slide's band pointers).
#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTest>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"
#include "settings/CRynSettings.h"

using testsupport::MessageLog;

namespace {

struct Rig {
    MessageLog host;
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
        mixer->Initialise(host.Handle(), decks[0].get(), decks[1].get(), nullptr, nullptr);
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

void Click(QWidget* w) {
    QTest::mouseClick(w, Qt::LeftButton, Qt::NoModifier, w->rect().center());
}

void RightClick(QWidget* w) {
    QTest::mouseClick(w, Qt::RightButton, Qt::NoModifier, w->rect().center());
}

}  // namespace

TEST(MixerMetersWindow, OverloadLampShowsTheBacklog) {
    Rig rig;
    MixerMeters& m = rig.mixer->Meters();
    m.SetOverloadLamp(true, 2);
    EXPECT_EQ(m.OverloadLamp()->Caption(), QStringLiteral("2"));
    EXPECT_EQ(m.OverloadLamp()->OnColor(), MixerMeters::kRedOn);
    EXPECT_EQ(m.OverloadLamp()->OffColor(), MixerMeters::kRedOff);
    m.SetOverloadLamp(false, 0);
    EXPECT_EQ(m.OverloadLamp()->Caption(), QStringLiteral("0"));
    EXPECT_EQ(m.OverloadLamp()->OnColor(), MixerMeters::kGreenOn);

    // A tick answered: pendingTicks goes down by one and the caption shows it.
    Engine().pendingTicks.store(3);
    SendAppMessage(rig.mixer->Handle(), UWM_TICK);
    EXPECT_EQ(Engine().pendingTicks.load(), 2);
    EXPECT_EQ(m.OverloadLamp()->Caption(), QStringLiteral("2"));
    SendAppMessage(rig.mixer->Handle(), UWM_TICK);
    SendAppMessage(rig.mixer->Handle(), UWM_TICK);
    EXPECT_EQ(m.OverloadLamp()->Caption(), QStringLiteral("0"));
    EXPECT_EQ(m.OverloadLamp()->OnColor(), MixerMeters::kGreenOn);

    // The processor load reaches the CPU meter.
    rig.mixer->ReadCpuLoad();
    EXPECT_TRUE(m.CpuText().endsWith(QStringLiteral(" %")));
    EXPECT_GE(m.CpuValue(), 0.0);
    EXPECT_LE(m.CpuValue(), 100.0);
}

TEST(MixerMetersWindow, EnableButtonSwitchesTheDeckAndTheGraphsThread) {
    Rig rig;
    MixerMeters& m = rig.mixer->Meters();
    m.EnableButton(1)->SetValue(false);
    EXPECT_EQ(Engine().decks[1].metersOff.load(), 1);
    EXPECT_FALSE(rig.decks[1]->Graphs().GraphsOn());
    ASSERT_GE(rig.host.Count(UWM_METERS_THREAD), 1);
    EXPECT_EQ(rig.host.got.back().msg, UWM_METERS_THREAD);
    EXPECT_EQ(rig.host.got.back().w, 0u);
    m.EnableButton(1)->SetValue(true);
    EXPECT_EQ(Engine().decks[1].metersOff.load(), 0);
    EXPECT_TRUE(rig.decks[1]->Graphs().GraphsOn());
    EXPECT_EQ(rig.host.got.back().w, 1u);

    // Nothing is drawn while overloaded, or for a deck that is not playing.
    Engine().decks[0].isPlaying.store(1);
    Engine().overload.store(1);
    rig.mixer->DrawGraphsAndMeters();
    EXPECT_EQ(rig.mixer->MeterDraws(0), 0);
    Engine().overload.store(0);
    Engine().decks[0].freshDataLow.store(1);  // short of data: the pass stops
    rig.mixer->DrawGraphsAndMeters();
    EXPECT_EQ(rig.mixer->MeterDraws(0), 0);
    Engine().decks[0].freshDataLow.store(0);
    Engine().decks[0].isPlaying.store(0);
}

TEST(MixerMetersWindow, RightClicksSwitchTheMetersAndADoubleClickKeepsOneGraph) {
    Rig rig;
    MixerMeters& m = rig.mixer->Meters();
    rig.mixer->show();
    ASSERT_TRUE(m.BeatMetersOn());
    RightClick(m.BeatLamp(0, 3));
    EXPECT_FALSE(m.BeatMetersOn());
    RightClick(m.BeatLamp(1, 0));
    EXPECT_TRUE(m.BeatMetersOn());
    RightClick(m.DecibelLamp(1, 8));
    EXPECT_FALSE(m.DecibelMetersOn());
    EXPECT_EQ(m.RmsText(0), QStringLiteral("0.0"));
    RightClick(m.DecibelLamp(0, 0));
    EXPECT_TRUE(m.DecibelMetersOn());

    // Deck B's right graph alone; the same double click brings all back.
    rig.mixer->SelectGraphOnly(CRynDeck::kTemplateId, CRynDeck::GraphControlId(1, 1));
    EXPECT_FALSE(rig.decks[0]->Graphs().GraphsOn());
    EXPECT_TRUE(rig.decks[1]->Graphs().GraphsOn());
    EXPECT_TRUE(m.BandGraph(0)->isHidden());
    rig.mixer->SelectGraphOnly(CRynDeck::kTemplateId, CRynDeck::GraphControlId(1, 1));
    EXPECT_TRUE(rig.decks[0]->Graphs().GraphsOn());
    EXPECT_FALSE(m.BandGraph(0)->isHidden());
    // A double click on the mixer's graph of deck A reaches the host.
    QTest::mouseDClick(m.BandGraph(0), Qt::LeftButton);
    ASSERT_GE(rig.host.Count(UWM_GRAPH_DOUBLE_CLICK), 1);
    EXPECT_EQ(rig.host.got.back().w, static_cast<WParam>(CRynMainMixer::kTemplateId));
    EXPECT_EQ(rig.host.got.back().l, CRynMainMixer::kBandGraphIds[0]);
}

TEST(DeckGraphsWindow, ButtonsTypeSplitBandsAndBeatMode) {
    Rig rig;
    DeckGraphs& g = rig.decks[0]->Graphs();
    rig.decks[0]->show();
    g.SetGraphType(QStringLiteral("Bars"));
    g.SetChannels(1);
    g.SetBandsInPlot(3);
    Click(g.TypeButton());
    EXPECT_EQ(g.GraphType(), QStringLiteral("Scope"));
    EXPECT_TRUE(g.Analysis().ScopeWanted());
    Click(g.TypeButton());
    EXPECT_EQ(g.GraphType(), QStringLiteral("Chart"));
    EXPECT_FALSE(g.Analysis().ScopeWanted());
    Click(g.TypeButton());
    EXPECT_EQ(g.GraphType(), QStringLiteral("Bars"));
    EXPECT_EQ(Settings().GetDeckGraphType(0), QStringLiteral("Bars"));

    Click(g.SplitButton());
    EXPECT_EQ(g.SplitButton()->Caption(), QStringLiteral("2"));
    EXPECT_EQ(Settings().GetDeckGraphNumChannels(0), 2);
    Click(g.SplitButton());
    EXPECT_EQ(g.SplitButton()->Caption(), QStringLiteral("1"));

    // 6 bands at once; 24 only after 750 ms.
    Click(g.BandsButton(2));
    EXPECT_EQ(g.Analysis().BandsInPlot(), 6);
    EXPECT_EQ(g.Analysis().Groups().groups, 3);
    Click(g.BandsButton(4));
    EXPECT_EQ(g.Analysis().BandsInPlot(), 6);
    QTest::qWait(400);
    EXPECT_EQ(g.Analysis().BandsInPlot(), 6);
    EXPECT_TRUE(testsupport::WaitFor([&] { return g.Analysis().BandsInPlot() == 24; }, 2000));
    EXPECT_EQ(Settings().GetNumBandsInPlot(0), 24);
    g.SetBandsInPlot(3);

    // Man puts the cursors at 0 and 280000; the caption toggles and persists.
    g.Analysis().Range().SetCursors(5000, 6000);
    Click(g.BeatModeButton());
    EXPECT_EQ(g.BeatModeButton()->Caption(), QStringLiteral("Man"));
    EXPECT_EQ(g.Analysis().Range().Low(), 0.0);
    EXPECT_EQ(g.Analysis().Range().High(), 280000.0);
    EXPECT_EQ(Settings().GetDeckBeatFindMode(0), QStringLiteral("Man"));
    Click(g.BeatModeButton());
    EXPECT_EQ(g.BeatModeButton()->Caption(), QStringLiteral("Auto"));

    // The range slide's pointers 3 and 4: smallest and largest band value.
    std::vector<std::int16_t> l16(kBlockFrames), r16(kBlockFrames, 0);
    std::vector<float> lf(kBlockFrames), rf(kBlockFrames, 0.0f);
    for (int i = 0; i < kBlockFrames; ++i) {
        lf[i] = static_cast<float>(8000 * std::sin(2 * 3.14159265 * 100 * i / 44100.0));
        l16[i] = static_cast<std::int16_t>(lf[i]);
    }
    g.SetGraphRangeEnabled(true);
    g.Analysis().MeasureChannels(7, l16, r16);
    g.Analysis().AnalyzeBands(7, lf, rf);
    g.Draw(7);
    const auto cur = g.Analysis().CurrentValues();
    EXPECT_DOUBLE_EQ(g.RangeSlide()->PointerValue(3),
                     *std::max_element(cur.begin() + 1, cur.end()));
    EXPECT_DOUBLE_EQ(g.RangeSlide()->PointerValue(2),
                     *std::min_element(cur.begin() + 1, cur.end()));
    // Moving pointer 1 tells the main mixer (for the 3D graph).
    int pointer = 0;
    g.onRangePointer = [&](int p, double) { pointer = p; };
    g.RangeSlide()->SetPointerValue(0, 10000);
    EXPECT_EQ(pointer, 1);
    // Right click on the slide switches the range pointers off.
    RightClick(g.RangeSlide());
    EXPECT_FALSE(g.GraphRangeEnabled());
    RightClick(g.RangeSlide());
    EXPECT_TRUE(g.GraphRangeEnabled());
}
