// How settings value names are formed: the deck letter, a few names of the
// settings table, and the window records (rectangle, moved, stacking, shown)
// of every movable window in both screen layouts.
//
// Deck numbers: 0 is deck A, 1 is deck B (any other number is taken as A).
#pragma once

#include <QString>
#include <array>

// The movable windows, numbered by their dialog template (UWM_WINDOW_CLOSED
// and CRynWindow::TemplateId carry the same numbers).
enum class SettingsWindow {
    ThreeDGraph = 129,
    Configure = 130,
    Deck = 131,
    DeckInfo = 132,
    Equalizer = 137,
    MainMixer = 141,
    PhonesMixer = 143,
    PlayList = 144,
};

inline constexpr std::array<SettingsWindow, 8> kAllSettingsWindows = {
    SettingsWindow::ThreeDGraph, SettingsWindow::Configure, SettingsWindow::Deck,
    SettingsWindow::DeckInfo,    SettingsWindow::Equalizer, SettingsWindow::MainMixer,
    SettingsWindow::PhonesMixer, SettingsWindow::PlayList,
};

// The fields of a window record.
enum class WindowField { Left, Top, Right, Bottom, HasMoved, Ordinal };

// A window rectangle in screen pixels; right and bottom are the far edges
// (width = right - left).
struct WindowRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const WindowRect&) const = default;
};

// Deck windows (deck, deck information, equalizer, play list) have one record per deck.
bool IsPerDeckWindow(SettingsWindow window);

// "A" or "B".
QString DeckLetter(int deck);

// Names of a few settings of the table (SettingsTable.h), formed by its rows.
// ("main" for mixer 0, "phones" for mixer 1) + "Deck" + letter + "Level".
QString LevelName(int mixer, int deck);
// "scopeBandOnState" + band (decimal, from 0) + "DeckA"/"DeckB".
QString ScopeBandName(int deck, int band);
// "deck" + letter + "Mode".
QString DeckModeName(int deck);
// "deck" + letter + "EQType" / "EQNumberType".
QString EqTypeName(int deck);
QString EqNumberTypeName(int deck);

// Position word + letter (deck windows) + field word + "HiRes"/"LoRes", e.g.
// "deckAleftHiRes", "playListBbottomLoRes", "threeDGraphtopHiRes". HasMoved
// and Ordinal are one value for both layouts: always the "HiRes" name.
QString PositionName(SettingsWindow window, int deck, WindowField field, bool lowRes);
// "show" + shown word + letter (deck windows) + "HiRes"/"LoRes", e.g.
// "showDeckAHiRes", "showConfigureLoRes", "showHiRes" (the main mixer).
QString ShowName(SettingsWindow window, int deck, bool lowRes);
