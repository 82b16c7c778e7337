// A deck's phase vocoder window (template 133, caption "Dialog"): a small
// diagnostic picture of how a phase vocoder's short-time analysis would frame
// the deck's audio. It does not touch the sound: playback, tempo and pitch
// never pass through it, and no audio is written into it.
//
// Seven graphs, by their control ids: the 513 spectrum bins of a frame
// (1068 magnitudes, 1069 phases), the overlap picture (1070), one channel of
// a block of 1176 samples (1071 in, 1073 out) and a 1024-sample frame (1072
// analysis, 1074 synthesis). Only 1070 holds data: fifteen periodic Hann
// windows of 1024 samples placed every 256 samples over 2048 points, drawn
// once by Initialise; the other six keep their axes and stay empty.
//
// "OK" and "Cancel" (upper right) end the dialog the usual way: the window
// hides. The deck creates the window hidden, as a child of its own, and shows
// or hides it from its "Show The Phase Vocoder:" toggle; nothing else shows
// it. Showing and hiding never draw the picture again. Everything runs on the
// user-interface thread.
#pragma once

#include <array>

#include "core/CRynWindow.h"

class CNiGraph;
class QPushButton;

class CRynPhaseVocoder : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 133;
    static constexpr int kFirstGraphId = 1068;
    static constexpr int kGraphCount = 7;  // ids 1068 … 1074
    static constexpr int kMagnitudeGraphId = 1068;
    static constexpr int kPhaseGraphId = 1069;
    static constexpr int kOverlapGraphId = 1070;
    static constexpr int kInputBlockGraphId = 1071;
    static constexpr int kAnalysisFrameGraphId = 1072;
    static constexpr int kOutputBlockGraphId = 1073;
    static constexpr int kSynthesisFrameGraphId = 1074;
    static constexpr int kOkId = 1;
    static constexpr int kCancelId = 2;

    explicit CRynPhaseVocoder(QWidget* parent = nullptr);

    // Sets each graph's x axis to its bins, block, frame or picture length,
    // then draws the fifteen windows on graph 1070 as plots 1 … 15 (graph
    // plots 0 … 14). Called once, right after creation.
    void Initialise();

    // Graph `id` (1068 … 1074); null for any other id.
    CNiGraph* Graph(int id) const;
    QPushButton* OkButton() const { return ok_; }
    QPushButton* CancelButton() const { return cancel_; }
    // How many times the overlap picture has been drawn (once by Initialise).
    int PictureDraws() const { return pictureDraws_; }

  protected:
    // Return presses "OK" (the default button), Escape "Cancel".
    void keyPressEvent(class QKeyEvent* event) override;

  private:
    void BuildControls();
    void RegisterControls();
    void DrawOverlapPicture();

    std::array<CNiGraph*, kGraphCount> graphs_{};
    QPushButton* ok_ = nullptr;
    QPushButton* cancel_ = nullptr;
    int pictureDraws_ = 0;
};
