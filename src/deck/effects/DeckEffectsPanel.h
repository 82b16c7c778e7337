// DeckEffectsPanel: the deck's effect list and its two knobs, embedded in
// the deck window.
//
// The list holds "No Effect", "Chorus", "Compressor", "Distortion", "Echo",
// "Flanger", "Gargle" and "Reverb" ("No Effect" at start). Choosing an
// effect gives both knobs that effect's labels, ranges and start values
// (both disabled with empty labels for "No Effect") and then calls
// onEffectChanged; the deck posts UWM_APPLY_EFFECT with it. Moving knob n
// shows its value ("25.0%", "tri", ...) and calls onKnobMoved(n); the deck
// posts UWM_APPLY_EFFECT_PARAMETER (deck, n).
//
// The main mixer reads the list's text and the knob values back when it
// applies them (after new buffers too), and the deck's pan (-1..+1, centred
// at start) for UWM_APPLY_PAN.
//
// User-interface thread only.
#pragma once

#include <QString>
#include <QWidget>
#include <array>
#include <functional>

class CNiKnob;
class QComboBox;
class QLabel;

class DeckEffectsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit DeckEffectsPanel(QWidget* parent = nullptr);

    std::function<void()> onEffectChanged;
    std::function<void(int knob)> onKnobMoved;

    // The list's current text.
    QString EffectName() const;
    // Chooses an effect by its text (as the user would); false if unknown.
    bool SelectEffect(const QString& name);

    // Knob 1 or 2: value in the parameter's own units, label and display.
    double KnobValue(int knob) const;
    void SetKnobValue(int knob, double value);
    QString KnobLabel(int knob) const;
    QString KnobText(int knob) const;
    bool KnobEnabled(int knob) const;

    float Pan() const { return pan_; }
    void SetPan(float pan) { pan_ = pan; }

    QComboBox* List() const { return list_; }
    CNiKnob* Knob(int knob) const { return knobs_[Index(knob)]; }

  private:
    static std::size_t Index(int knob) { return knob == 2 ? 1 : 0; }
    void OnEffectChosen();
    void ShowKnob(int knob);

    QComboBox* list_ = nullptr;
    std::array<CNiKnob*, 2> knobs_{};
    std::array<QLabel*, 2> labels_{};
    std::array<QLabel*, 2> values_{};
    float pan_ = 0.0f;
    bool settingUp_ = false;  // ranges being changed: no knob events
};
