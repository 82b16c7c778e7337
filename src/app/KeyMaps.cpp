#include "app/KeyMaps.h"

using namespace keycode;

namespace {

// Steps of the held keys.
constexpr double kTempoCoarse = 0.05;  // tempo slide, Q R / U P
constexpr double kTempoFine = 0.005;   // tempo slide, W E / I O
constexpr double kLevel = 0.01;        // levels and volumes; Shift: ten times
constexpr double kCrossFader = 0.02;   // cross faders; Shift: ten times
constexpr double kBand = 0.05;         // equalizer bands
constexpr double kBandShift = 0.2;
constexpr double kSpindle = 0.05;

// A key that moves one control up and another key that moves it down.
struct Pair {
    int up;
    int down;
};

// +1 when key is the pair's up key, -1 for its down key, 0 otherwise.
int Direction(int key, Pair pair) {
    return key == pair.up ? 1 : key == pair.down ? -1 : 0;
}

HeldAction Held(HeldTarget target, int deck, double step, int band = 0) {
    return HeldAction{target, deck, band, step};
}

// The mixer keys: level, cross-fader and volume pairs, which Ctrl sends to
// the headphones mixer.
HeldAction MixerKey(int key, bool ctrl, bool shift) {
    const double ten = shift ? 10.0 : 1.0;
    struct Row {
        Pair keys;
        HeldTarget main;
        HeldTarget phones;
        int deck;
        double step;
    };
    static constexpr Row kRows[] = {
        {{'T', 'G'}, HeldTarget::MainLevel, HeldTarget::PhonesLevel, 0, kLevel},
        {{'Y', 'H'}, HeldTarget::MainLevel, HeldTarget::PhonesLevel, 1, kLevel},
        {{'N', 'B'}, HeldTarget::MainCrossFader, HeldTarget::PhonesCrossFader, 0, kCrossFader},
        {{kPageUp, kPageDown}, HeldTarget::MainVolume, HeldTarget::PhonesVolume, 0, kLevel},
    };
    for (const Row& row : kRows) {
        if (const int dir = Direction(key, row.keys))
            return Held(ctrl ? row.phones : row.main, row.deck, dir * row.step * ten);
    }
    return {};
}

HeldAction DeckKey(int key, bool shift) {
    struct TempoRow {
        Pair keys;
        int deck;
        double step;
    };
    static constexpr TempoRow kTempo[] = {{{'R', 'Q'}, 0, kTempoCoarse},
                                          {{'E', 'W'}, 0, kTempoFine},
                                          {{'P', 'U'}, 1, kTempoCoarse},
                                          {{'O', 'I'}, 1, kTempoFine}};
    for (const TempoRow& row : kTempo) {
        if (const int dir = Direction(key, row.keys))
            return shift ? HeldAction{} : Held(HeldTarget::TempoSlide, row.deck, dir * row.step);
    }
    static constexpr Pair kSpindleKeys[] = {{'F', 'V'}, {'J', 'M'}};
    for (int deck = 0; deck < 2; ++deck) {
        if (const int dir = Direction(key, kSpindleKeys[deck])) {
            return shift ? Held(HeldTarget::TempoStep, deck, dir)
                         : Held(HeldTarget::SpindleSlide, deck, dir * kSpindle);
        }
    }
    static constexpr Pair kBands[2][3] = {{{'A', 'Z'}, {'S', 'X'}, {'D', 'C'}},
                                          {{'K', kComma}, {'L', kFullStop}, {kSemicolon, kSlash}}};
    for (int deck = 0; deck < 2; ++deck) {
        for (int band = 0; band < 3; ++band) {
            if (const int dir = Direction(key, kBands[deck][band]))
                return Held(HeldTarget::EqualizerBand, deck, dir * (shift ? kBandShift : kBand),
                            band);
        }
    }
    return {};
}

}  // namespace

HeldAction HeldKeyAction(int key, bool ctrl, bool shift) {
    const HeldAction mixer = MixerKey(key, ctrl, shift);
    if (mixer.target != HeldTarget::None || ctrl)
        return mixer;  // Ctrl silences every other key
    return DeckKey(key, shift);
}

KeyAction KeyDownAction(int key, bool ctrl, bool shift) {
    if (key < kSemicolon || key > kF5)
        return {};
    if (key == kHome)
        return {KeyCommand::ResetLayout, 0, 0.0};
    if (key == kEnd)
        return {KeyCommand::FullScreen, 0, 0.0};
    if (key == kF5)
        return ctrl && shift ? KeyAction{KeyCommand::WriteUserGuide, 0, 0.0} : KeyAction{};
    if (shift)
        return {};
    if (!ctrl) {
        // 1 … 5 on deck A, 6 … 9 and 0 on deck B: 0, 20, 40, 60, 80 %.
        if (key >= '1' && key <= '5')
            return {KeyCommand::Jump, 0, (key - '1') * 0.2};
        if (key >= '6' && key <= '9')
            return {KeyCommand::Jump, 1, (key - '6') * 0.2};
        if (key == '0')
            return {KeyCommand::Jump, 1, 0.8};
        return {};
    }
    struct Row {
        Pair keys;  // deck A's key, deck B's key
        KeyCommand command;
    };
    static constexpr Row kRows[] = {
        {{'A', 'J'}, KeyCommand::Eject},
        {{'S', 'K'}, KeyCommand::StartStop},
        {{'D', 'L'}, KeyCommand::Needle},
        {{'C', kFullStop}, KeyCommand::PreviousTrack},
        {{'V', kSlash}, KeyCommand::NextTrack},
        {{'F', kSemicolon}, KeyCommand::PressReverse},
        {{'X', kComma}, KeyCommand::PressFastForward},
        {{'Z', 'M'}, KeyCommand::PressRewind},
    };
    for (const Row& row : kRows) {
        if (key == row.keys.up)
            return {row.command, 0, 0.0};
        if (key == row.keys.down)
            return {row.command, 1, 0.0};
    }
    return {};
}

KeyAction KeyUpAction(int key, bool ctrl, bool shift) {
    if (key > 'Z')
        return {};
    const bool plain = !ctrl && !shift;
    if (plain && (key == 'F' || key == 'V'))
        return {KeyCommand::SpindleBack, 0, 0.0};
    if (plain && (key == 'J' || key == 'M'))
        return {KeyCommand::SpindleBack, 1, 0.0};
    if (ctrl && !shift && (key == 'F' || key == kSemicolon))
        return {KeyCommand::ReleaseReverse, key == 'F' ? 0 : 1, 0.0};
    if (key == 'X' || key == kComma)
        return {KeyCommand::ReleaseFastForward, key == 'X' ? 0 : 1, 0.0};
    if (key == 'Z' || (key == 'M' && ctrl))
        return {KeyCommand::ReleaseRewind, key == 'Z' ? 0 : 1, 0.0};
    if (key == 'W' || key == 'O')
        return {KeyCommand::TurntableRelease, key == 'W' ? 0 : 1, 0.0};
    return {};
}

MomentaryButton MomentaryButtonOf(int key, int* deck) {
    const KeyAction press = KeyDownAction(key, true, false);
    *deck = press.deck;
    switch (press.command) {
        case KeyCommand::PressReverse:
            return MomentaryButton::Reverse;
        case KeyCommand::PressFastForward:
            return MomentaryButton::FastForward;
        case KeyCommand::PressRewind:
            return MomentaryButton::Rewind;
        default:
            return MomentaryButton::None;
    }
}
