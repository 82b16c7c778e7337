// KeyboardControl: the host's three key handlers. UWM_KEY_POLLED runs the
// held-key map, UWM_KEY_DOWN the key-down map and UWM_KEY_UP the key-up map
// (KeyMaps.h has the maps). Every action moves a control of a window, and
// the control's own change event does the work, as if the user had used it:
// - a held key adds its step to a slide's value, clamped to the slide's
//   range; a disabled slide is left alone;
// - eject, start/stop, needle, previous and next are clicked (left button
//   pressed and released on the button), only while the button is enabled;
// - reverse, fast forward and rewind are switched on while their key is held
//   and off when it is let go (also when Ctrl was let go first).
//
// Modifiers: a held key is read with Ctrl and Shift as the key source has
// them when the poll is served; a key press or release carries the Ctrl and
// Shift of its own key event in its lParam (VirtualKeys.h), so a quick
// Ctrl+D is still Ctrl+D when its posted message is served.
//
// When the program loses the focus, what the keys held is let go: the
// momentary buttons they hold are switched off and the spindles they pushed
// spring back (their key-ups will go to another program).
//
// Discrete actions are written to the shell log ("key: deck A needle lift").
// The windows are asked for at each key, so keys arriving while the windows
// are torn down find none and do nothing. User-interface thread only.
#pragma once

#include <array>
#include <functional>
#include <map>

#include <QObject>

#include "app/KeyMaps.h"
#include "app/KeySource.h"
#include "core/AppMessages.h"

class CNiButton;
class CNiSlide;
class CRynDeck;
class CRynEqualizer;
class CRynHeadphonesMixer;
class CRynMainMixer;

// The windows the keys drive; any may be null.
struct KeyWindows {
    CRynMainMixer* mainMixer = nullptr;
    CRynHeadphonesMixer* headphones = nullptr;
    std::array<CRynDeck*, 2> decks{};
    std::array<CRynEqualizer*, 2> equalizers{};
};

class KeyboardControl {
  public:
    KeyboardControl(std::function<KeyWindows()> windows, KeySource& keys);

    // Runs the map of a UWM_KEY_POLLED, UWM_KEY_DOWN or UWM_KEY_UP message.
    void Handle(Uwm msg, WParam wParam, LParam lParam);

    // The maps, with the key as a signed 8-bit code.
    void OnPolled(int key);
    void OnKeyDown(int key, bool ctrl, bool shift);
    void OnKeyUp(int key, bool ctrl, bool shift);

    // How many polls of `key` have been served.
    int PolledCount(int key) const;

    // Lets go of every button the keys hold and every spindle they pushed.
    void ReleaseAll();

  private:
    void Nudge(const HeldAction& action, const KeyWindows& w);
    void Run(const KeyAction& action, const KeyWindows& w);
    void Jump(CRynDeck* deck, double fraction);
    void Click(CRynDeck* deck, CNiButton* button, const char* what);
    // Switches the deck's momentary button on (key pressed) or off.
    void Hold(int deck, MomentaryButton which, bool on, const KeyWindows& w);
    static CNiButton* MomentaryOf(CRynDeck* deck, MomentaryButton which);

    std::function<KeyWindows()> windows_;
    KeySource& keys_;
    std::map<int, int> polled_;
    // The momentary buttons a key press holds, per deck.
    std::array<std::array<bool, 4>, 2> heldByKey_{};
    std::array<bool, 2> spindleByKey_{};
    QObject context_;  // for the application's focus signal
};

// Adds step to the slide's value, clamped to the slide's range; nothing for a
// null or disabled slide. Returns whether the slide was moved.
bool NudgeSlide(CNiSlide* slide, double step);
