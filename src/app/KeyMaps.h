// The three key maps, as pure functions of the key and the modifiers: which
// control a held key nudges and by how much, what a key press does and what a
// key release does. KeyboardControl applies the answers to the windows.
//
// Keys are virtual-key codes read as signed 8-bit values (VirtualKeys.h):
// letters 65-90, digits 48-57, Page Up 33, Page Down 34, End 35, Home 36,
// F5 116, semicolon -70, comma -68, full stop -66, slash -65.
//
// Held keys (every 30 ms poll). Plain / Shift / Ctrl (Shift adds):
//   Q R, U P    tempo slide of deck A, B  -/+0.05     —          —
//   W E, I O    tempo slide of deck A, B  -/+0.005    —          —
//   T G, Y H    main level of deck A, B   +/-0.01     +/-0.1     phones level +/-0.01 (0.1)
//   N B         main cross fader          +/-0.02     +/-0.2     phones cross fader
//   PgUp PgDn   main volume               +/-0.01     +/-0.1     phones volume
//   A Z, S X, D C           deck A equalizer bands 0, 1, 2  +/-0.05  +/-0.2  —
//   K , L . ; /             deck B equalizer bands 0, 1, 2  +/-0.05  +/-0.2  —
//   F V, J M    spindle of deck A, B      +/-0.05     tempo step +/-1 (the 1 % buttons)
// Ctrl silences every held key but the level, cross-fader and volume keys;
// Shift silences the tempo-slide keys.
//
// Key presses (no Ctrl, no Shift unless said):
//   1-5, 6-0     deck A, B jumps to 0, 20, 40, 60, 80 % of its track
//   Ctrl+ A/J eject, S/K start/stop, D/L needle, C/. previous, V// next,
//         F/; reverse (held), X/, fast forward (held), Z/M rewind (held)
//   Home         all windows to their default places (any modifiers)
//   End          full screen (any modifiers)
//   Ctrl+Shift+F5  write the HTML user guide
// Key releases:
//   F/V, J/M (no Ctrl, no Shift)  spindle of deck A, B back to 0
//   F, ; with Ctrl, no Shift      reverse of deck A, B released
//   X, , (any)                    fast forward of deck A, B released
//   Z (any), M with Ctrl          rewind of deck A, B released
//   W, O (any)                    the turntable of deck A, B takes its position again
#pragma once

#include <cstdint>

// The controls a held key nudges.
enum class HeldTarget {
    None,
    TempoSlide,        // deck's tempo slide, percent
    SpindleSlide,      // deck's spindle slide
    TempoStep,         // deck's arbitrary tempo: +1 up button, -1 down button
    MainLevel,         // main mixer's deck level
    MainCrossFader,    // main mixer's cross fader
    MainVolume,        // main mixer's volume
    PhonesLevel,       // headphones mixer's deck level
    PhonesCrossFader,  // headphones mixer's cross fader
    PhonesVolume,      // headphones mixer's volume
    EqualizerBand,     // deck's equalizer band level
};

struct HeldAction {
    HeldTarget target = HeldTarget::None;
    int deck = 0;
    int band = 0;       // EqualizerBand only
    double step = 0.0;  // added to the control's value (TempoStep: +1 or -1)
};

// What a key press or release does.
enum class KeyCommand {
    None,
    Jump,  // deck to `fraction` of its track
    Eject,
    StartStop,
    Needle,
    PreviousTrack,
    NextTrack,
    PressReverse,
    PressFastForward,
    PressRewind,
    ResetLayout,
    FullScreen,
    WriteUserGuide,
    // Releases.
    SpindleBack,
    ReleaseReverse,
    ReleaseFastForward,
    ReleaseRewind,
    TurntableRelease,
};

struct KeyAction {
    KeyCommand command = KeyCommand::None;
    int deck = 0;
    double fraction = 0.0;  // Jump only
};

// The momentary buttons a key holds (reverse, fast forward, rewind).
enum class MomentaryButton { None, Reverse, FastForward, Rewind };

HeldAction HeldKeyAction(int key, bool ctrl, bool shift);
KeyAction KeyDownAction(int key, bool ctrl, bool shift);
KeyAction KeyUpAction(int key, bool ctrl, bool shift);

// The button a Ctrl+key press holds, and its deck (None for other keys).
MomentaryButton MomentaryButtonOf(int key, int* deck);

// Key codes of the keys with no letter or digit.
namespace keycode {
constexpr int kPageUp = 33;
constexpr int kPageDown = 34;
constexpr int kEnd = 35;
constexpr int kHome = 36;
constexpr int kF5 = 116;
constexpr int kSemicolon = -70;  // 0xBA
constexpr int kComma = -68;      // 0xBC
constexpr int kFullStop = -66;   // 0xBE
constexpr int kSlash = -65;      // 0xBF
}  // namespace keycode
