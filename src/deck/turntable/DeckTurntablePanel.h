// DeckTurntablePanel: the deck window's platter and its two buttons.
//
// - two platter knobs, a flat one ("2D") and a perspective one ("3D"); only
//   the active one shows. Left press grabs the platter, left release lets go
//   (shift: a loop in drop mode), right release ends a loop; every pointer
//   change runs the drag update.
// - the turntable mode button, caption "Drag" or "Drop" (the current mode);
//   a press switches to the other mode and stores it (turntableModeDeckA/B).
// - the look button, caption "2D" or "3D"; a press switches the knob and
//   stores it (turntable2DOr3DDeckA/B).
//
// The panel owns the deck's TurntableController and hands it every event.
// User-interface thread only.
#pragma once

#include <QWidget>
#include <memory>

#include "deck/turntable/TurntableController.h"

class CNiButton;
class CNiKnob;

class DeckTurntablePanel : public QWidget {
    Q_OBJECT
  public:
    explicit DeckTurntablePanel(QWidget* parent = nullptr);
    ~DeckTurntablePanel() override;

    // The deck (0 = A, 1 = B), where its messages go and what it asks of
    // the deck; applies the stored mode and look.
    void Initialise(int deck, WindowHandle host, TurntableController::DeckSide side);

    TurntableController& Controller() { return *controller_; }
    CNiKnob* Knob(int which) const { return knobs_[which == 0 ? 0 : 1]; }
    CNiButton* ModeButton() const { return modeButton_; }
    CNiButton* LookButton() const { return lookButton_; }

    // The buttons' presses: the other mode / the other look, stored.
    void ToggleMode();
    void ToggleLook();
    // "Drag"/"Drop" and "2D"/"3D" as stored (anything else: "Drop", "3D").
    void ApplyMode(const QString& caption);
    void ApplyLook(const QString& caption);

  private:
    void WireKnob(CNiKnob* knob);

    int deck_ = 0;
    std::unique_ptr<TurntableController> controller_;
    CNiKnob* knobs_[2] = {};
    CNiButton* modeButton_ = nullptr;
    CNiButton* lookButton_ = nullptr;
};
