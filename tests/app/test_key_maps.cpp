// The three key maps on their own: every row of the held-key map with its
// steps and the Ctrl/Shift rules, the key-down and key-up maps with their
// conditions and the ranges of codes they take.
#include <gtest/gtest.h>

#include <string>

#include "app/KeyMaps.h"

using namespace keycode;

namespace {

struct HeldRow {
    int key;
    bool ctrl;
    bool shift;
    HeldTarget target;
    int deck;
    double step;
    int band;
};

std::string Describe(const HeldRow& r) {
    return std::string("key ") + std::to_string(r.key) + (r.ctrl ? " ctrl" : "") +
           (r.shift ? " shift" : "");
}

}  // namespace

TEST(KeyMaps, HeldKeysNudgeTheirControlByTheirStep) {
    using T = HeldTarget;
    const HeldRow rows[] = {
        // Tempo slides: coarse and fine.
        {'Q', false, false, T::TempoSlide, 0, -0.05, 0},
        {'R', false, false, T::TempoSlide, 0, +0.05, 0},
        {'W', false, false, T::TempoSlide, 0, -0.005, 0},
        {'E', false, false, T::TempoSlide, 0, +0.005, 0},
        {'U', false, false, T::TempoSlide, 1, -0.05, 0},
        {'P', false, false, T::TempoSlide, 1, +0.05, 0},
        {'I', false, false, T::TempoSlide, 1, -0.005, 0},
        {'O', false, false, T::TempoSlide, 1, +0.005, 0},
        // Levels: plain, Shift, Ctrl (headphones), Ctrl+Shift.
        {'T', false, false, T::MainLevel, 0, +0.01, 0},
        {'G', false, false, T::MainLevel, 0, -0.01, 0},
        {'T', false, true, T::MainLevel, 0, +0.1, 0},
        {'G', false, true, T::MainLevel, 0, -0.1, 0},
        {'T', true, false, T::PhonesLevel, 0, +0.01, 0},
        {'G', true, true, T::PhonesLevel, 0, -0.1, 0},
        {'Y', false, false, T::MainLevel, 1, +0.01, 0},
        {'H', false, true, T::MainLevel, 1, -0.1, 0},
        {'Y', true, false, T::PhonesLevel, 1, +0.01, 0},
        {'H', true, true, T::PhonesLevel, 1, -0.1, 0},
        // Cross faders and volumes.
        {'N', false, false, T::MainCrossFader, 0, +0.02, 0},
        {'B', false, true, T::MainCrossFader, 0, -0.2, 0},
        {'N', true, true, T::PhonesCrossFader, 0, +0.2, 0},
        {'B', true, false, T::PhonesCrossFader, 0, -0.02, 0},
        {kPageUp, false, false, T::MainVolume, 0, +0.01, 0},
        {kPageDown, false, true, T::MainVolume, 0, -0.1, 0},
        {kPageUp, true, true, T::PhonesVolume, 0, +0.1, 0},
        {kPageDown, true, false, T::PhonesVolume, 0, -0.01, 0},
        // Equalizer bands 0, 1, 2 of each deck.
        {'A', false, false, T::EqualizerBand, 0, +0.05, 0},
        {'Z', false, true, T::EqualizerBand, 0, -0.2, 0},
        {'S', false, false, T::EqualizerBand, 0, +0.05, 1},
        {'X', false, false, T::EqualizerBand, 0, -0.05, 1},
        {'D', false, true, T::EqualizerBand, 0, +0.2, 2},
        {'C', false, false, T::EqualizerBand, 0, -0.05, 2},
        {'K', false, false, T::EqualizerBand, 1, +0.05, 0},
        {kComma, false, false, T::EqualizerBand, 1, -0.05, 0},
        {'L', false, true, T::EqualizerBand, 1, +0.2, 1},
        {kFullStop, false, false, T::EqualizerBand, 1, -0.05, 1},
        {kSemicolon, false, false, T::EqualizerBand, 1, +0.05, 2},
        {kSlash, false, true, T::EqualizerBand, 1, -0.2, 2},
        // Spindles, and with Shift the whole tempo steps.
        {'F', false, false, T::SpindleSlide, 0, +0.05, 0},
        {'V', false, false, T::SpindleSlide, 0, -0.05, 0},
        {'F', false, true, T::TempoStep, 0, +1, 0},
        {'V', false, true, T::TempoStep, 0, -1, 0},
        {'J', false, false, T::SpindleSlide, 1, +0.05, 0},
        {'M', false, true, T::TempoStep, 1, -1, 0},
    };
    for (const HeldRow& r : rows) {
        const HeldAction a = HeldKeyAction(r.key, r.ctrl, r.shift);
        EXPECT_EQ(a.target, r.target) << Describe(r);
        EXPECT_EQ(a.deck, r.deck) << Describe(r);
        EXPECT_DOUBLE_EQ(a.step, r.step) << Describe(r);
        if (r.target == T::EqualizerBand) {
            EXPECT_EQ(a.band, r.band) << Describe(r);
        }
    }
}

TEST(KeyMaps, CtrlSilencesAllButTheMixerKeysAndShiftSilencesTheTempoSlides) {
    for (int key : std::initializer_list<int>{
             'Q', 'W', 'E', 'R',        'U', 'I', 'O', 'P', 'A', 'S',    'D',       'F',
             'J', 'K', 'L', kSemicolon, 'Z', 'X', 'C', 'V', 'M', kComma, kFullStop, kSlash}) {
        EXPECT_EQ(HeldKeyAction(key, true, false).target, HeldTarget::None) << key;
        EXPECT_EQ(HeldKeyAction(key, true, true).target, HeldTarget::None) << key;
    }
    for (int key : {'Q', 'W', 'E', 'R', 'U', 'I', 'O', 'P'})
        EXPECT_EQ(HeldKeyAction(key, false, true).target, HeldTarget::None) << key;
    // Keys outside the table, and the held map's own keys without a row.
    for (int key : std::initializer_list<int>{'1', kHome, kEnd, 0, 127, -1})
        EXPECT_EQ(HeldKeyAction(key, false, false).target, HeldTarget::None) << key;
}

TEST(KeyMaps, KeyDownJumpsWithoutModifiersAndRunsTransportWithCtrl) {
    const double jumps[] = {0.0, 0.2, 0.4, 0.6, 0.8};
    for (int i = 0; i < 5; ++i) {
        const KeyAction a = KeyDownAction('1' + i, false, false);
        EXPECT_EQ(a.command, KeyCommand::Jump);
        EXPECT_EQ(a.deck, 0);
        EXPECT_NEAR(a.fraction, jumps[i], 1e-12);
        const int bKey = i == 4 ? '0' : '6' + i;
        const KeyAction b = KeyDownAction(bKey, false, false);
        EXPECT_EQ(b.command, KeyCommand::Jump);
        EXPECT_EQ(b.deck, 1);
        EXPECT_NEAR(b.fraction, jumps[i], 1e-12);
        // Ctrl or Shift: no jump.
        EXPECT_EQ(KeyDownAction('1' + i, true, false).command, KeyCommand::None);
        EXPECT_EQ(KeyDownAction(bKey, false, true).command, KeyCommand::None);
    }
    struct Row {
        int keyA, keyB;
        KeyCommand command;
    };
    const Row rows[] = {{'A', 'J', KeyCommand::Eject},
                        {'S', 'K', KeyCommand::StartStop},
                        {'D', 'L', KeyCommand::Needle},
                        {'C', kFullStop, KeyCommand::PreviousTrack},
                        {'V', kSlash, KeyCommand::NextTrack},
                        {'F', kSemicolon, KeyCommand::PressReverse},
                        {'X', kComma, KeyCommand::PressFastForward},
                        {'Z', 'M', KeyCommand::PressRewind}};
    for (const Row& r : rows) {
        const KeyAction a = KeyDownAction(r.keyA, true, false);
        const KeyAction b = KeyDownAction(r.keyB, true, false);
        EXPECT_EQ(a.command, r.command) << r.keyA;
        EXPECT_EQ(a.deck, 0) << r.keyA;
        EXPECT_EQ(b.command, r.command) << r.keyB;
        EXPECT_EQ(b.deck, 1) << r.keyB;
        // Without Ctrl, or with Shift as well, those keys do nothing on a press.
        EXPECT_EQ(KeyDownAction(r.keyA, false, false).command, KeyCommand::None) << r.keyA;
        EXPECT_EQ(KeyDownAction(r.keyA, true, true).command, KeyCommand::None) << r.keyA;
    }
    for (bool ctrl : {false, true}) {
        for (bool shift : {false, true}) {
            EXPECT_EQ(KeyDownAction(kHome, ctrl, shift).command, KeyCommand::ResetLayout);
            EXPECT_EQ(KeyDownAction(kEnd, ctrl, shift).command, KeyCommand::FullScreen);
        }
    }
    EXPECT_EQ(KeyDownAction(kF5, true, true).command, KeyCommand::WriteUserGuide);
    EXPECT_EQ(KeyDownAction(kF5, true, false).command, KeyCommand::None);
    EXPECT_EQ(KeyDownAction(kF5, false, false).command, KeyCommand::None);
    // Codes outside -70 … 116 are ignored.
    EXPECT_EQ(KeyDownAction(-71, true, false).command, KeyCommand::None);
    EXPECT_EQ(KeyDownAction(117, true, true).command, KeyCommand::None);
}

TEST(KeyMaps, KeyUpReleasesSpindlesAndMomentaryButtons) {
    struct Row {
        int key;
        bool ctrl, shift;
        KeyCommand command;
        int deck;
    };
    const Row rows[] = {
        {'F', false, false, KeyCommand::SpindleBack, 0},
        {'V', false, false, KeyCommand::SpindleBack, 0},
        {'J', false, false, KeyCommand::SpindleBack, 1},
        {'M', false, false, KeyCommand::SpindleBack, 1},
        {'F', false, true, KeyCommand::None, 0},  // Shift+F stepped the tempo
        {'F', true, false, KeyCommand::ReleaseReverse, 0},
        {kSemicolon, true, false, KeyCommand::ReleaseReverse, 1},
        {kSemicolon, false, false, KeyCommand::None, 0},
        {'X', false, false, KeyCommand::ReleaseFastForward, 0},
        {'X', true, true, KeyCommand::ReleaseFastForward, 0},
        {kComma, false, true, KeyCommand::ReleaseFastForward, 1},
        {'Z', false, false, KeyCommand::ReleaseRewind, 0},
        {'Z', true, false, KeyCommand::ReleaseRewind, 0},
        {'M', true, false, KeyCommand::ReleaseRewind, 1},
        {'W', false, false, KeyCommand::TurntableRelease, 0},
        {'O', true, true, KeyCommand::TurntableRelease, 1},
        {'T', false, false, KeyCommand::None, 0},
        {91, true, false, KeyCommand::None, 0},  // above Z: ignored
    };
    for (const Row& r : rows) {
        const KeyAction a = KeyUpAction(r.key, r.ctrl, r.shift);
        EXPECT_EQ(a.command, r.command) << r.key << " ctrl " << r.ctrl << " shift " << r.shift;
        if (r.command != KeyCommand::None) {
            EXPECT_EQ(a.deck, r.deck) << r.key;
        }
    }
    int deck = -1;
    EXPECT_EQ(MomentaryButtonOf(kSemicolon, &deck), MomentaryButton::Reverse);
    EXPECT_EQ(deck, 1);
    EXPECT_EQ(MomentaryButtonOf('X', &deck), MomentaryButton::FastForward);
    EXPECT_EQ(deck, 0);
    EXPECT_EQ(MomentaryButtonOf('M', &deck), MomentaryButton::Rewind);
    EXPECT_EQ(deck, 1);
    EXPECT_EQ(MomentaryButtonOf('S', &deck), MomentaryButton::None);
}
