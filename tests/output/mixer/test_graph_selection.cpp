// A double click shows one graph alone, the headphones mixer's plots among
// the others: a double click on a headphones plot reaches the host through
// the main mixer, and the selection switches every other graph off, the
// other headphones plot too; the same double click brings them all back.
#include <gtest/gtest.h>

#include <QTest>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"

using testsupport::MessageLog;

TEST(GraphSelection, AHeadphonesPlotShownAloneAndBack) {
    ResetEngineStateForTest();
    MessageLog host;
    Engine().mainDialogWindow = host.Handle();
    CRynHeadphonesMixer phones;
    auto mixer = std::make_unique<CRynMainMixer>();
    std::unique_ptr<CRynDeck> decks[2];
    for (int d = 0; d < 2; ++d) {
        decks[d] = std::make_unique<CRynDeck>();
        decks[d]->Initialise(nullptr, nullptr, nullptr, mixer->Handle(), d);
    }
    mixer->Initialise(host.Handle(), decks[0].get(), decks[1].get(), &phones, nullptr);
    phones.Initialise(mixer->Handle());
    phones.PlotCountButton()->SetValue(true);  // two plots: left and right ear
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

    for (auto& d : decks)
        d->Shutdown();
    decks[0].reset();
    decks[1].reset();
    mixer.reset();
    ResetEngineStateForTest();
}
