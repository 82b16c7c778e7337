// Each deck's phase vocoder window in the real program: the host's own
// start-up (Null sound device) makes both decks, each with its window made
// hidden as a child of the deck and its picture drawn once. The deck's
// "Show The Phase Vocoder:" toggle shows and hides it without drawing the
// picture again; "OK" and the deck's close box switch the toggle off.
#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <memory>

#include "app/CMixoraDlg.h"
#include "app/InProcessHost.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "deck/CRynDeck.h"
#include "dsp/window/CRynPhaseVocoder.h"

namespace {

class DeckPhaseVocoder : public ::testing::Test {
  protected:
    void SetUp() override {
        host_ = testsupport::StartInProcessHost();
        ASSERT_NE(host_, nullptr);
    }
    void TearDown() override { host_.reset(); }

    // A left click on the toggle, as the user gives it.
    static void Press(CNiButton* b) {
        QTest::mouseClick(b, Qt::LeftButton, {}, b->rect().center());
        QApplication::processEvents();
    }

    std::unique_ptr<CMixoraDlg> host_;
};

}  // namespace

TEST_F(DeckPhaseVocoder, EachDeckMakesItsWindowHiddenWithThePictureDrawnOnce) {
    for (int d = 0; d < 2; ++d) {
        CRynDeck* deck = host_->Deck(d);
        CRynPhaseVocoder* v = deck->PhaseVocoder();
        ASSERT_NE(v, nullptr) << d;
        EXPECT_EQ(v->parentWidget(), deck);
        EXPECT_TRUE(v->isWindow());
        EXPECT_FALSE(v->isVisible());
        EXPECT_EQ(v->PictureDraws(), 1);
        EXPECT_EQ(v->Graph(1070)->PlotCount(), 15);
        EXPECT_FALSE(deck->ShowPhaseVocoderButton()->Value());
    }
    EXPECT_NE(host_->Deck(0)->PhaseVocoder(), host_->Deck(1)->PhaseVocoder());

    // The toggle is in the deck's registry, its label its tool tip.
    const ComponentRegistry& r = host_->Deck(0)->Registry();
    int found = -1;
    for (int k = 0; k < r.Count(); ++k)
        if (r.Control(k) == host_->Deck(0)->ShowPhaseVocoderButton())
            found = k;
    ASSERT_GE(found, 0);
    EXPECT_EQ(r.Title(found), QStringLiteral("Deck A Show The Phase Vocoder:"));
    EXPECT_EQ(host_->Deck(0)->ShowPhaseVocoderButton()->toolTip(), r.Label(found));
}

TEST_F(DeckPhaseVocoder, TheTogglePressedTwiceShowsAndHidesWithoutRedrawing) {
    CRynDeck* deck = host_->Deck(1);
    deck->show();
    QApplication::processEvents();
    CRynPhaseVocoder* v = deck->PhaseVocoder();
    CNiButton* toggle = deck->ShowPhaseVocoderButton();
    const QVector<double> before = v->Graph(1070)->PlotData(7);

    Press(toggle);
    EXPECT_TRUE(toggle->Value());
    EXPECT_TRUE(v->isVisible());
    EXPECT_FALSE(host_->Deck(0)->PhaseVocoder()->isVisible());
    Press(toggle);
    EXPECT_FALSE(toggle->Value());
    EXPECT_FALSE(v->isVisible());
    for (int i = 0; i < 3; ++i) {
        Press(toggle);
        Press(toggle);
    }
    EXPECT_FALSE(v->isVisible());
    EXPECT_EQ(v->PictureDraws(), 1);
    EXPECT_EQ(v->Graph(1070)->PlotCount(), 15);
    EXPECT_EQ(v->Graph(1070)->PlotData(7), before);
}

TEST_F(DeckPhaseVocoder, OkAndTheDecksCloseBoxSwitchTheToggleOff) {
    CRynDeck* deck = host_->Deck(0);
    deck->show();
    QApplication::processEvents();
    CRynPhaseVocoder* v = deck->PhaseVocoder();
    CNiButton* toggle = deck->ShowPhaseVocoderButton();

    Press(toggle);
    ASSERT_TRUE(v->isVisible());
    QTest::mouseClick(v->OkButton(), Qt::LeftButton);
    EXPECT_FALSE(v->isVisible());
    EXPECT_FALSE(toggle->Value());
    // One press shows it again.
    Press(toggle);
    EXPECT_TRUE(v->isVisible());
    EXPECT_TRUE(toggle->Value());

    // Closing the deck hides the windows it shows.
    deck->close();
    QApplication::processEvents();
    EXPECT_FALSE(v->isVisible());
    EXPECT_FALSE(toggle->Value());
    EXPECT_EQ(v->PictureDraws(), 1);
}
