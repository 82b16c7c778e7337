// The host's diagnostic texts, per deck: the main deck's measured playback
// rate, the headphones copy's drift and its buffer frequency (refreshed by
// UWM_DIAGNOSTICS from the main mixer while the panel is on screen), and the
// value the deck last reported (UWM_DECK_VALUE), shown only while the
// "diagnostics" button is on. A small tool window the host's menu opens.
// User-interface thread only.
#pragma once

#include <QWidget>
#include <array>
#include <cstdint>

class QLabel;
class QPushButton;

class DiagnosticsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit DiagnosticsPanel(QWidget* parent = nullptr);

    // UWM_DIAGNOSTICS for `deck`: the texts from the engine's per-deck
    // diagnostics, when the panel is on screen.
    void Refresh(int deck);
    // UWM_DECK_VALUE: shown while the diagnostics button is on.
    void DeckValue(int deck, std::intptr_t value);

    QPushButton* DiagnosticsButton() const { return button_; }
    QString Text(int deck, int row) const;  // rows: rate, drift, frequency, value

  private:
    static constexpr int kRows = 4;
    std::array<std::array<QLabel*, kRows>, 2> texts_{};
    QPushButton* button_ = nullptr;
};
