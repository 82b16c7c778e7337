// One deck's turntable: the platter drawn by a knob whose pointer is the play
// position in the deck's 120-block output ring, and what the hand does with
// it. Drop mode: a click plays from the clicked point; a shift-click loops
// the stretch from that point round to the play position until a right
// click. Drag mode: the ring plays forwards or backwards as the hand turns
// the platter and pauses while the hand is still.
//
// The controller keeps the platter's state and sends the host (the main
// mixer) its messages; the deck window's DeckTurntablePanel owns the knobs
// and buttons and hands their events in. The deck's transport asks it
// whether new blocks may be written (Writing, the deck's IsTurning), whether
// a loop plays (Holds) and where a scratch starts (ScratchPosition).
//
// Writing pause: after a reposition, and while the platter is dragged
// backwards, writing stops (the pointer shows red) so the blocks already
// written ahead are heard first; the first position update that finds fewer
// blocks ahead than the deck's write-ahead starts it again (green).
//
// User-interface thread only.
#pragma once

#include <QColor>
#include <array>
#include <functional>

#include "core/AppMessages.h"

class CNiButton;
class CNiKnob;

class TurntableController {
  public:
    enum Mode { kDrag = 0, kDrop = 1 };
    static inline const QColor kWritingColour{10, 100, 10};
    static inline const QColor kPausedColour{100, 10, 10};

    // What the controller asks of its deck.
    struct DeckSide {
        std::function<bool()> needleDown;      // the needle is down (isPlaying too)
        std::function<int()> filledSlots;      // filled forward disc buffer slots
        std::function<void(bool)> setReverse;  // the direction button on / off
        std::function<void(bool)> enableDirection;
        std::function<void()> applyTempo;
        std::function<void(int, int)> platter;  // to the information window: blocks, reverse form
    };

    TurntableController(int deck, WindowHandle host, DeckSide side);

    // The two knobs (first: the flat look, second: the perspective one) and
    // the mode button; the second knob is active until SetKnob says otherwise.
    void Attach(CNiKnob* first, CNiKnob* second, CNiButton* modeButton);

    // --- Buttons
    void SetMode(Mode mode);  // pointer style, caption "Drag" / "Drop"
    Mode GetMode() const { return mode_; }
    void SetKnob(int which);  // 0 = "2D", 1 = "3D": that knob shows and is read
    int ActiveKnobIndex() const { return activeKnob_; }
    CNiKnob* ActiveKnob() const { return knobs_[activeKnob_]; }

    // --- Mouse on the platter (only with the needle down)
    void LeftDown();
    void LeftUp(bool shift);
    void RightUp();
    // The drag update: every pointer change (fromTimer false) and timer 17
    // (true). Stillness is the knob unchanged since the last sample: at the
    // grab, or over a whole timer period (a tick that follows a move within
    // its period does not count as the hand holding still).
    void DragUpdate(bool fromTimer = false);
    // The keyboard's release: a left release without shift at the knob's
    // value, without applying the tempo.
    void KeyboardRelease();

    // --- From the mix cycle
    // Forward play and write cursors (bytes), each forward notification.
    void NoteForwardCursors(int playCursor, int writeCursor);
    // Reverse play and write cursors (bytes), each reverse notification.
    void NoteReverseCursors(int playCursor, int writeCursor);
    // Bytes heard since the last forward update.
    int BytesPlayed() const;
    // Sets the active knob to the play angle (or 1 - the reverse angle while
    // playing backwards), unless grabbed or everything is minimised.
    void Draw();
    // While a loop plays: the pointer follows the loop (loop angle + `angle`).
    void DrawLoop(double angle);
    // Timer 13 with the needle up: the platter turns with the disc buffer's fill.
    void Spin();
    // The host ended the scratch loop.
    void ScratchDone();
    // The deck's CD drive was released: knobs to 0.0, everything reset.
    void Reset();

    // --- State
    bool Writing() const { return writing_; }
    bool Holds() const { return hold_; }
    bool Grabbed() const { return grabbed_; }
    bool Still() const { return still_; }
    bool Reverse() const { return direction_; }
    void SetDirection(bool reverse) { direction_ = reverse; }
    double PlayAngle() const { return playAngle_; }
    double ReverseAngle() const { return reverseAngle_; }
    double LoopAngle() const { return loopAngle_; }
    double ScratchTravel() const { return scratchTravel_; }
    int BlocksAhead() const { return blocksAhead_; }
    // Where a scratch copy starts: the loop's released angle.
    double ScratchPosition() const { return loopAngle_; }

  private:
    // The left release: reposition (or, with shift in drop mode, a loop).
    void Release(bool shift);
    void SetWriting(bool on);
    void Send(Uwm msg, LParam lParam);
    int WriteAhead() const;
    bool IsPlaying() const;

    int deck_;
    WindowHandle host_;
    DeckSide side_;
    std::array<CNiKnob*, 2> knobs_{};
    CNiButton* modeButton_ = nullptr;

    bool grabbed_ = false;
    bool hold_ = false;
    bool direction_ = false;
    bool firstSampleTaken_ = false;
    int activeKnob_ = 1;
    bool still_ = false;
    bool movedSinceTick_ = false;
    bool writing_ = true;
    double scratchTravel_ = 0;
    double grabAngle_ = 0;
    double lastDelta_ = 0;
    double loopPlayAngle_ = 0;
    double loopAngle_ = 0;
    double lastKnobValue_ = 0;
    double previousPlayAngle_ = 0;
    double playAngle_ = 0;
    double reverseAngle_ = 0;
    Mode mode_ = kDrop;
    int blocksAhead_ = 0;
};
