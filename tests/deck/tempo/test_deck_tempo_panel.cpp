// The deck's tempo panel as a real widget under the mouse and the keyboard
// steps: the 1 % buttons and their right-button reset, the slides' springs and
// resets, the display text, the output frequency at CD and file rates, the
// reset toggle, and the frequency reaching the deck's hook on every change.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QTest>
#include <vector>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "controls/ControlsGallery.h"
#include "core/EngineState.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "deck/tempo/TempoLaw.h"

namespace {

// A panel shown off screen for deck `deck`, recording every frequency handed
// to the deck.
struct PanelUnderTest {
    DeckTempoPanel panel;
    std::vector<int> sent;

    explicit PanelUnderTest(int deck = 0) {
        ResetEngineStateForTest();
        panel.Initialise(deck);
        panel.onFrequency = [this](int hz) { sent.push_back(hz); };
        panel.setAttribute(Qt::WA_DontShowOnScreen);
        panel.show();
        panel.adjustSize();
        QApplication::processEvents();
    }
    int Calls() const { return int(sent.size()); }
    int Last() const { return sent.empty() ? -1 : sent.back(); }
};

QPoint Centre(QWidget* w) {
    return w->rect().center();
}

}  // namespace

TEST(DeckTempoPanel, UpAndDownButtonsStepAndARightClickReapplies) {
    PanelUnderTest t;
    CNiButton* up = t.panel.UpButton();
    CNiButton* down = t.panel.DownButton();

    QTest::mouseClick(up, Qt::LeftButton, {}, Centre(up));
    QTest::mouseClick(up, Qt::LeftButton, {}, Centre(up));
    QTest::mouseClick(down, Qt::LeftButton, {}, Centre(down));
    EXPECT_EQ(t.panel.Arbitrary(), 1);
    EXPECT_EQ(t.sent, (std::vector<int>{44540, 44981, 44540}));
    EXPECT_EQ(t.panel.DisplayText(), "1.0%");

    // A right press steps nothing but still re-sends the frequency; its
    // release takes the steps back to 0.
    QTest::mousePress(up, Qt::RightButton, {}, Centre(up));
    EXPECT_EQ(t.panel.Arbitrary(), 1);
    EXPECT_EQ(t.sent, (std::vector<int>{44540, 44981, 44540, 44540}));
    QTest::mouseRelease(up, Qt::RightButton, {}, Centre(up));
    EXPECT_EQ(t.panel.Arbitrary(), 0);
    EXPECT_EQ(t.Last(), 44100);
    EXPECT_EQ(t.panel.DisplayText(), "0.0%");

    // With nothing to reset, a right click on the down button still sends
    // twice (press and release) and changes nothing.
    const int before = t.Calls();
    QTest::mouseClick(down, Qt::RightButton, {}, Centre(down));
    EXPECT_EQ(t.Calls(), before + 2);
    EXPECT_EQ(t.Last(), 44100);
    EXPECT_EQ(t.panel.Arbitrary(), 0);

    // Twenty up clicks and the tempo slide at +8: 28 %. Eighty: held at 75 %.
    t.panel.TempoSlide()->SetValue(8.0);
    for (int i = 0; i < 20; ++i)
        QTest::mouseClick(up, Qt::LeftButton, {}, Centre(up));
    EXPECT_DOUBLE_EQ(t.panel.TotalPercent(), 28.0);
    EXPECT_EQ(t.panel.OutputFrequency(), tempo::OutputFrequency(44100, 28.0));
    EXPECT_EQ(t.panel.DisplayText(), "28.0%");
    for (int i = 20; i < 80; ++i)
        QTest::mouseClick(up, Qt::LeftButton, {}, Centre(up));
    EXPECT_EQ(t.panel.Arbitrary(), 80);
    EXPECT_DOUBLE_EQ(t.panel.TotalPercent(), 75.0);
    EXPECT_EQ(t.panel.OutputFrequency(), 77174);
    EXPECT_EQ(Engine().decks[0].outputFrequency.load(), 77174);
    EXPECT_EQ(t.panel.DisplayText(), "75.0%");

    // The keyboard's steps act as left clicks.
    t.panel.ArbitraryReset();
    t.panel.ArbitraryDown();
    t.panel.ArbitraryDown();
    t.panel.ArbitraryUp();
    EXPECT_EQ(t.panel.Arbitrary(), -1);
    EXPECT_EQ(t.Last(), tempo::OutputFrequency(44100, 7.0));
}

TEST(DeckTempoPanel, TempoSlideDisplayAndRightRelease) {
    PanelUnderTest t;
    CNiSlide* slide = t.panel.TempoSlide();
    EXPECT_DOUBLE_EQ(slide->Minimum(), -8.0);
    EXPECT_DOUBLE_EQ(slide->Maximum(), 8.0);

    slide->SetValue(2.349);
    EXPECT_EQ(t.panel.DisplayText(), "2.3%");
    EXPECT_EQ(t.panel.Display()->text(), "2.3%");
    slide->SetValue(2.0);
    EXPECT_EQ(t.panel.DisplayText(), "2.0%");
    slide->SetValue(-0.04);  // -0.05 after the nudge: truncates to 0
    EXPECT_EQ(t.panel.DisplayText(), "0.0%");
    EXPECT_EQ(t.Last(), tempo::OutputFrequency(44100, -0.04));
    slide->SetValue(-3.5);
    EXPECT_EQ(t.panel.DisplayText(), "-3.5%");
    EXPECT_EQ(t.Last(), 44100 - 1544);  // trunc(44100 × -3.5 × 0.01f + 44100)

    // A left click moves it; a right click moves nothing until its release,
    // which sets 0.
    QTest::mouseClick(slide, Qt::LeftButton, {}, QPoint(slide->width() / 2, 12));
    EXPECT_GT(slide->Value(), 7.0);
    EXPECT_EQ(t.Last(), t.panel.OutputFrequency());
    const int before = t.Calls();
    QTest::mousePress(slide, Qt::RightButton, {}, QPoint(slide->width() / 2, 12));
    EXPECT_GT(slide->Value(), 7.0);
    EXPECT_EQ(t.Calls(), before);
    QTest::mouseRelease(slide, Qt::RightButton, {}, QPoint(slide->width() / 2, 12));
    EXPECT_DOUBLE_EQ(slide->Value(), 0.0);
    EXPECT_EQ(t.Last(), 44100);
    EXPECT_EQ(t.panel.DisplayText(), "0.0%");

    // Keyboard steps add, clamp to the slide's range and apply.
    t.panel.StepTempo(DeckTempoPanel::kTempoCoarseStep);
    t.panel.StepTempo(DeckTempoPanel::kTempoFineStep);
    EXPECT_NEAR(slide->Value(), 0.055, 1e-12);
    EXPECT_EQ(t.panel.DisplayText(), "0.0%");  // 0.065 after the nudge
    t.panel.StepTempo(DeckTempoPanel::kTempoCoarseStep);
    EXPECT_EQ(t.panel.DisplayText(), "0.1%");  // 0.115 after the nudge
    for (int i = 0; i < 200; ++i)
        t.panel.StepTempo(DeckTempoPanel::kTempoCoarseStep);
    EXPECT_DOUBLE_EQ(slide->Value(), 8.0);
    EXPECT_EQ(t.Last(), 47627);
    const int atTop = t.Calls();
    t.panel.StepTempo(DeckTempoPanel::kTempoCoarseStep);  // nothing changes, nothing sent
    EXPECT_EQ(t.Calls(), atTop);
    EXPECT_DOUBLE_EQ(t.panel.NominalRate(), 8 * 441.0 + 44100);
}

TEST(DeckTempoPanel, SpindleSpringsBackOnAnyRelease) {
    PanelUnderTest t;
    CNiSlide* spindle = t.panel.SpindleSlide();
    t.panel.TempoSlide()->SetValue(2.0);
    t.panel.ArbitraryUp();
    const int base = tempo::OutputFrequency(44100, 3.0);  // T + A
    EXPECT_EQ(t.Last(), base);

    // Pressed near the right end the spindle jumps there and speeds the deck
    // up while held; let go, it is back at 0 and so is its share of the tempo.
    const QPoint right(spindle->width() - 14, spindle->height() / 2);
    QTest::mousePress(spindle, Qt::LeftButton, {}, right);
    EXPECT_GT(spindle->Value(), 0.8);
    EXPECT_GT(t.Last(), base);
    EXPECT_NEAR(t.panel.TotalPercent(), 3.0 + 4.0 * spindle->Value(), 1e-9);
    EXPECT_DOUBLE_EQ(t.panel.NominalRate(), (2.0 + 4.0 * spindle->Value()) * 441.0 + 44100);
    QTest::mouseMove(spindle, QPoint(14, spindle->height() / 2));
    EXPECT_LT(spindle->Value(), -0.8);
    QTest::mouseRelease(spindle, Qt::LeftButton, {}, QPoint(14, spindle->height() / 2));
    EXPECT_DOUBLE_EQ(spindle->Value(), 0.0);
    EXPECT_EQ(t.Last(), base);
    EXPECT_EQ(t.panel.DisplayText(), "3.0%");

    // Keyboard steps clamp at a unit; a right click (any button) releases it too.
    for (int i = 0; i < 30; ++i)
        t.panel.StepSpindle(DeckTempoPanel::kSpindleStep);
    EXPECT_DOUBLE_EQ(spindle->Value(), 1.0);
    EXPECT_EQ(t.Last(), tempo::OutputFrequency(44100, 7.0));
    QTest::mouseClick(spindle, Qt::RightButton, {}, right);
    EXPECT_DOUBLE_EQ(spindle->Value(), 0.0);
    EXPECT_EQ(t.Last(), base);

    // The key let go does the same.
    t.panel.StepSpindle(-DeckTempoPanel::kSpindleStep);
    EXPECT_EQ(t.panel.DisplayText(), "2.8%");
    t.panel.ReleaseSpindle();
    EXPECT_EQ(t.Last(), base);
}

TEST(DeckTempoPanel, FileRateComesFromTheDeckAndTheFrequencyIsStored) {
    PanelUnderTest t(1);
    int rate = 48000;
    t.panel.baseRate = [&rate] { return rate; };
    t.panel.TempoSlide()->SetValue(5.0);
    EXPECT_EQ(t.Last(), 50399);
    EXPECT_EQ(t.panel.OutputFrequency(), 50399);
    EXPECT_EQ(Engine().decks[1].outputFrequency.load(), 50399);
    EXPECT_EQ(Engine().decks[0].outputFrequency.load(), 44100);

    // Back to a CD: the next ApplyTempo scales from 44100. A rate a decoder
    // without a file might answer (0) counts as a CD's.
    rate = 44100;
    t.panel.ApplyTempo();
    EXPECT_EQ(t.Last(), tempo::OutputFrequency(44100, 5.0));
    rate = 0;
    t.panel.ApplyTempo();
    EXPECT_EQ(t.Last(), tempo::OutputFrequency(44100, 5.0));
    EXPECT_EQ(t.Calls(), 3);
}

TEST(DeckTempoPanel, ResetToggleRoundTrip) {
    PanelUnderTest t;
    CNiSlide* slide = t.panel.TempoSlide();
    CNiButton* reset = t.panel.ResetToggle();
    slide->SetValue(3.5);
    const int at35 = tempo::OutputFrequency(44100, 3.5);
    EXPECT_EQ(t.Last(), at35);

    QTest::mouseClick(reset, Qt::LeftButton, {}, Centre(reset));
    EXPECT_TRUE(t.panel.ResetTempo());
    EXPECT_DOUBLE_EQ(slide->Value(), 0.0);
    EXPECT_FALSE(slide->isEnabled());
    EXPECT_EQ(t.Last(), 44100);
    EXPECT_EQ(t.panel.DisplayText(), "0.0%");

    // Held at 0: the keys leave it alone; the other controls still work.
    t.panel.StepTempo(DeckTempoPanel::kTempoCoarseStep);
    EXPECT_DOUBLE_EQ(slide->Value(), 0.0);
    t.panel.ArbitraryUp();
    EXPECT_EQ(t.Last(), 44540);
    t.panel.ArbitraryReset();

    QTest::mouseClick(reset, Qt::LeftButton, {}, Centre(reset));
    EXPECT_FALSE(t.panel.ResetTempo());
    EXPECT_TRUE(slide->isEnabled());
    EXPECT_DOUBLE_EQ(slide->Value(), 3.5);
    EXPECT_EQ(t.Last(), at35);
    EXPECT_EQ(t.panel.DisplayText(), "3.5%");

    // From code, as the deck's settings or keys would set it.
    t.panel.SetResetTempo(true);
    EXPECT_DOUBLE_EQ(slide->Value(), 0.0);
    t.panel.SetResetTempo(true);  // no change: the remembered value stays 3.5
    t.panel.SetResetTempo(false);
    EXPECT_DOUBLE_EQ(slide->Value(), 3.5);
    EXPECT_EQ(Engine().decks[0].outputFrequency.load(), at35);
}

TEST(DeckTempoPanel, RendersToPng) {
    PanelUnderTest t(1);
    t.panel.SetDeckColours(QColor(255, 160, 30), QColor(110, 60, 10));
    t.panel.TempoSlide()->SetValue(2.349);
    t.panel.SpindleSlide()->SetValue(0.25);
    t.panel.ArbitraryUp();
    EXPECT_EQ(t.panel.DisplayText(), "4.3%");
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/deck-tempo-panel.png");
    ASSERT_TRUE(SaveWidgetPng(&t.panel, file));
    EXPECT_GT(QFileInfo(file).size(), 1000);
}
