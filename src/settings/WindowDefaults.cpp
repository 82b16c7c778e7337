#include "settings/WindowDefaults.h"

namespace {

// One default rectangle as fractions of W (left, right) and H (top, bottom).
struct Fractions {
    double left, top, right, bottom;
};

// Fractions per window and layout; for deck windows deck A, then deck B.
struct LayoutEntry {
    Fractions lowA, lowB, highA, highB;
};

LayoutEntry EntryFor(SettingsWindow window) {
    switch (window) {
        case SettingsWindow::ThreeDGraph:
            return {{0.5, 0.55, 1, 1},
                    {0.5, 0.55, 1, 1},
                    {0.36, 0.4, 0.64, 0.74},
                    {0.36, 0.4, 0.64, 0.74}};
        case SettingsWindow::Deck:
            return {{0, 0, 0.5, 0.55}, {0.5, 0, 1, 0.55}, {0, 0, 0.36, 0.44}, {0.64, 0, 1, 0.44}};
        case SettingsWindow::DeckInfo:
            return {{0, 0.55, 0.5, 0.55},
                    {0.5, 0.55, 1, 0.55},
                    {0, 0.44, 0.36, 0.44},
                    {0.64, 0.44, 1, 0.44}};
        case SettingsWindow::Equalizer:
            return {
                {0, 0.55, 0.5, 1}, {0.5, 0.55, 1, 1}, {0, 0.44, 0.36, 0.76}, {0.64, 0.44, 1, 0.76}};
        case SettingsWindow::MainMixer:
            return {
                {0, 0.55, 0.5, 1}, {0, 0.55, 0.5, 1}, {0.36, 0, 0.64, 0.4}, {0.36, 0, 0.64, 0.4}};
        case SettingsWindow::PhonesMixer:
            return {{0.5, 0.55, 1, 1},
                    {0.5, 0.55, 1, 1},
                    {0.36, 0.4, 0.64, 0.66},
                    {0.36, 0.4, 0.64, 0.66}};
        case SettingsWindow::PlayList:
            return {
                {0, 0.55, 0.5, 1}, {0.5, 0.55, 1, 1}, {0, 0.44, 0.36, 0.68}, {0.64, 0.44, 1, 0.68}};
        case SettingsWindow::Configure:
            break;  // fixed size, below
    }
    return {};
}

// Truncated toward zero, as the layout has always placed its windows.
int Scale(double fraction, int extent) {
    return static_cast<int>(fraction * extent);
}

}  // namespace

WindowRect DefaultWindowRect(SettingsWindow window, int deck, bool lowRes, QSize fullScreen) {
    if (window == SettingsWindow::Configure)
        return {0, 0, 500, 280};
    const LayoutEntry e = EntryFor(window);
    const bool b = IsPerDeckWindow(window) && deck == 1;
    const Fractions& f = lowRes ? (b ? e.lowB : e.lowA) : (b ? e.highB : e.highA);
    const int w = fullScreen.width();
    const int h = fullScreen.height();
    return {Scale(f.left, w), Scale(f.top, h), Scale(f.right, w), Scale(f.bottom, h)};
}

bool DefaultShown(SettingsWindow window) {
    return window == SettingsWindow::Deck || window == SettingsWindow::MainMixer ||
           window == SettingsWindow::PhonesMixer;
}
