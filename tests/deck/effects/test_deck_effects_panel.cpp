// The deck's effect list and its two knobs, offscreen: what each choice
// shows and which events it raises (rendered to deck-effects-panel.png in
// the build folder).
#include <gtest/gtest.h>

#include <QComboBox>
#include <vector>

#include "controls/CNiKnob.h"
#include "deck/effects/DeckEffectsPanel.h"

TEST(DeckEffectsPanel, ChoicesShowTheirKnobsAndRaiseTheirEvents) {
    DeckEffectsPanel panel;
    int changes = 0;
    std::vector<int> moved;
    panel.onEffectChanged = [&] { ++changes; };
    panel.onKnobMoved = [&](int n) { moved.push_back(n); };

    EXPECT_EQ(panel.EffectName(), "No Effect");
    EXPECT_EQ(panel.List()->count(), 8);
    EXPECT_EQ(panel.List()->itemText(7), "Reverb");
    EXPECT_FALSE(panel.KnobEnabled(1));
    EXPECT_FALSE(panel.KnobEnabled(2));
    EXPECT_EQ(panel.KnobLabel(1), "");

    ASSERT_TRUE(panel.SelectEffect(QStringLiteral("Flanger")));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(moved.empty()) << "new ranges are not knob moves";
    EXPECT_TRUE(panel.KnobEnabled(1));
    EXPECT_EQ(panel.KnobLabel(1), "fdbck");
    EXPECT_EQ(panel.KnobLabel(2), "delay");
    EXPECT_EQ(panel.KnobText(1), "-50.00%");
    EXPECT_EQ(panel.KnobText(2), "2.00ms");
    EXPECT_DOUBLE_EQ(panel.Knob(2)->Maximum(), 4.0);

    ASSERT_TRUE(panel.SelectEffect(QStringLiteral("Echo")));
    panel.SetKnobValue(2, 750.0);
    EXPECT_EQ(panel.KnobText(2), "750.00s");
    EXPECT_EQ(moved, std::vector<int>{2});

    ASSERT_TRUE(panel.SelectEffect(QStringLiteral("Gargle")));
    EXPECT_EQ(panel.KnobText(1), "20Hz");
    panel.SetKnobValue(2, 0.99);
    EXPECT_EQ(panel.KnobText(2), "tri");
    panel.SetKnobValue(2, 1.0);
    EXPECT_EQ(panel.KnobText(2), "sqr");
    EXPECT_FALSE(panel.SelectEffect(QStringLiteral("Phaser")));
    EXPECT_EQ(changes, 3);

    panel.resize(panel.sizeHint());
    EXPECT_TRUE(panel.grab().save(QStringLiteral(MIXORA_BINARY_DIR "/deck-effects-panel.png")));
}
