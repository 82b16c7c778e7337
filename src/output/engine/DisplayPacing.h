// Display pacing of the mix cycle: how often a mix step asks for a drawing
// pass ("Update Graphs And Meters Event") and moves the turntable pictures.
// With one deck playing, every notification does both. With both playing, the
// notifications of both decks are counted together: the first of every four
// moves the turntables, the fourth sets the event. Drawing therefore runs at
// the block rate of one deck (37.5 per second) but never faster.
#pragma once

class DisplayPacing {
  public:
    struct Step {
        bool moveTurntables = false;
        bool updateGraphs = false;
    };

    // One forward or reverse notification; `playingDecks` is how many decks
    // play now (0, 1 or 2).
    Step OnNotification(int playingDecks);

    // Notifications counted since both decks began playing together.
    int Counter() const { return counter_; }

  private:
    int counter_ = 0;
};
