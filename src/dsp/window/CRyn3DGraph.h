// The 3D graph window (template 129). Two modes, chosen by the mode button
// whose caption is the mode shown:
//  - "3D Plot": the recent band levels of both decks as a 3D surface, bands
//    across, time along (80 rows, newest at the front), level up; the decks
//    side by side (the split/join button reads "Join") or joined into one
//    surface (it reads "Split");
//  - "3D Sound": a 2D plot of the listener's position, read from the
//    joystick every 50 ms (timer 1) and posted to the main mixer as
//    UWM_LISTENER_POSITION with x and y as 32-bit floats (their bits in
//    wParam and lParam). Without a joystick the position stays (0, 0).
// The "3D Sound On" button sends UWM_CONFIG_REFRESH to the main mixer, which
// opens the main device again with 3D sound on or off (Sound3DOn()).
//
// The main mixer feeds the surface on every graphs pass: AddRow then
// PlotSurface per deck, while the graph is enabled; the surface is drawn
// only while the window is on screen in "3D Plot" mode. The "FPS:" read-out
// shows how many graphs passes (NoteGraphsPass) came in the last second.
//
// Enabled (threeDGraphEnabledState; right-click on the surface toggles it):
// a black surface area; disabled or not plotting: grey. The mode and the
// split/join choice persist (threeDGraphMode, threeDGraphJoinOrSplit).
// User-interface thread only.
#pragma once

#include <QElapsedTimer>
#include <memory>
#include <span>

#include "core/CRynWindow.h"
#include "dsp/SpectrumHistory.h"
#include "platform/joystick/Joystick.h"

class CNiButton;
class CNiGraph;
class CNiGraph3D;
class QLabel;

class CRyn3DGraph : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 129;
    // The surface's control id: a double click on it is sent to the main
    // mixer as UWM_GRAPH_DOUBLE_CLICK (template 129, this id).
    static constexpr int kSurfaceId = 1022;
    static constexpr int kPositionTimer = 1;  // the joystick, in "3D Sound" mode
    static constexpr int kPositionMs = 50;

    explicit CRyn3DGraph(QWidget* parent = nullptr);
    ~CRyn3DGraph() override;

    // Records the main mixer and applies the stored enable, mode and
    // split/join choices.
    void Initialise(WindowHandle mainMixer);
    WindowHandle MainMixer() const { return mainMixer_; }

    // --- The surface (CRyn3DGraphSurface.cpp) ---
    // The deck's current band values (entries 1 … n of the deck's values,
    // 1/1000 dB) become the newest row; the x axis follows the band counts.
    void AddRow(int deck, std::span<const double> levels, int bandCount);
    // Rebuilds the surface matrix and draws it (only while it is shown).
    void PlotSurface(int deck);
    // The deck's history to zero, and a redraw.
    void ClearDeck(int deck);
    // The normalising range of the deck, 1/1000 dB (pointer 2 and pointer 1
    // of the deck's graph range slide).
    void SetLevelRange(int deck, double maximum);
    void SetLevelMinimum(int deck, double minimum);
    // True while rows are wanted: the graph is enabled.
    bool WantsRows() const { return enabled_; }
    // True while a surface drawn now would be seen.
    bool Plotting() const;
    // Decks side by side ("Join" shown) or joined ("Split" shown).
    bool SideBySide() const;
    void SetSideBySide(bool on);
    void ResetView();
    void FlattenView();
    dsp::SpectrumHistory& History() { return history_; }
    // Surfaces drawn so far (tests, bench).
    int SurfaceDraws() const { return surfaceDraws_; }

    // --- Window state (CRyn3DGraph.cpp) ---
    void SetGraphEnabled(bool on);
    bool GraphEnabled() const { return enabled_; }
    // "3D Plot" (false) or "3D Sound" (true).
    void SetSoundMode(bool sound);
    bool SoundMode() const;
    bool Sound3DOn() const;
    void SetSound3DOn(bool on);
    // One graphs-and-meters pass happened (the "FPS:" read-out counts them).
    void NoteGraphsPass();
    double GraphsRate() const { return rate_; }

    // The joystick polled in "3D Sound" mode (SDL's when none is given).
    void SetJoystick(std::unique_ptr<joystick::Joystick> joystick);
    // One 50 ms poll (timer 1 runs it; tests call it directly).
    void PollPosition();
    joystick::Position Position() const { return position_; }

    CNiGraph3D* Surface() const { return surface_; }
    CNiGraph* PositionPlot() const { return positionPlot_; }
    CNiButton* ModeButton() const { return mode_; }
    CNiButton* Sound3DButton() const { return sound3D_; }
    CNiButton* SplitButton() const { return split_; }
    CNiButton* ResetButton() const { return reset_; }
    CNiButton* FlattenButton() const { return flatten_; }
    QLabel* RateLabel() const { return rateValue_; }

    // Packs a float into a message parameter, and back.
    static WParam FloatParam(float v);
    static float ParamFloat(std::uintptr_t bits);

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void OnWindowTimer(int id) override;

  private:
    void BuildControls();
    void RegisterControls();
    void ApplyLook();  // the surface area's colour for enabled and plotting
    void ApplySplitPicture();
    void SetXAxis(int columns);  // 0 … columns − 1

    WindowHandle mainMixer_ = 0;
    dsp::SpectrumHistory history_;
    bool enabled_ = false;
    int surfaceDraws_ = 0;

    CNiGraph3D* surface_ = nullptr;
    CNiGraph* positionPlot_ = nullptr;
    QLabel* rateLabel_ = nullptr;
    QLabel* rateValue_ = nullptr;
    CNiButton* mode_ = nullptr;
    CNiButton* sound3D_ = nullptr;
    CNiButton* split_ = nullptr;
    CNiButton* reset_ = nullptr;
    CNiButton* flatten_ = nullptr;

    std::unique_ptr<joystick::Joystick> joystick_;
    joystick::Position position_;

    QElapsedTimer rateClock_;
    int passes_ = 0;
    double rate_ = 0.0;
};
