// The main mixer's window commands, as one row of buttons the main mixer
// window embeds below its other controls:
//   "Show/Hide Deck A" (1021), "Show/Hide Deck B" (1066): switches showing or
//       hiding the deck window; a right click sends the deck to its default
//       rectangle;
//   "Show 3D Graph" (1038): switch;
//   "Reset To Default Window Positions" (1124) and "Full Screen" (1103):
//       commands on the left button;
//   "Low/High Resolution Mode Button" (1167): caption "Hi" in the
//       high-resolution layout, "Lo" in the low-resolution one; a left click
//       asks for the other layout.
// The buttons only report; the main mixer does the work (the callbacks). A
// switch moved from code (SetValue) reports exactly as a click does.
//
// User-interface thread only.
#pragma once

#include <QWidget>
#include <array>
#include <functional>

class CNiButton;

class MainMixerWindowButtons : public QWidget {
    Q_OBJECT
  public:
    static constexpr int kShowDeckIds[2] = {1021, 1066};
    static constexpr int kShow3DGraphId = 1038;
    static constexpr int kResetId = 1124;
    static constexpr int kFullScreenId = 1103;
    static constexpr int kModeId = 1167;

    explicit MainMixerWindowButtons(QWidget* parent = nullptr);

    CNiButton* ShowDeckButton(int deck) const { return showDeck_[deck == 1 ? 1 : 0]; }
    CNiButton* Show3DGraphButton() const { return show3D_; }
    CNiButton* ResetButton() const { return reset_; }
    CNiButton* FullScreenButton() const { return fullScreen_; }
    CNiButton* ModeButton() const { return mode_; }

    // The mode button's caption: "Lo" for the low-resolution layout, "Hi" for the other.
    void ShowMode(bool lowResolution);

    // A show switch changed (from the mouse or from code).
    std::function<void(int deck, bool on)> onShowDeck;
    std::function<void(bool on)> onShow3DGraph;
    // A right click on a deck's show button.
    std::function<void(int deck)> onDeckToDefault;
    std::function<void()> onReset;
    std::function<void()> onFullScreen;
    std::function<void()> onSwitchMode;

  private:
    std::array<CNiButton*, 2> showDeck_{};
    CNiButton* show3D_ = nullptr;
    CNiButton* reset_ = nullptr;
    CNiButton* fullScreen_ = nullptr;
    CNiButton* mode_ = nullptr;
};
