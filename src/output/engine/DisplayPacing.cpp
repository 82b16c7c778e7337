#include "output/engine/DisplayPacing.h"

DisplayPacing::Step DisplayPacing::OnNotification(int playingDecks) {
    Step step;
    if (playingDecks < 2) {
        // A fresh count of four starts when both decks play again.
        counter_ = 0;
        step.moveTurntables = true;
        step.updateGraphs = true;
        return step;
    }
    counter_ = counter_ % 4 + 1;  // 1, 2, 3, 4, 1, ...
    step.moveTurntables = counter_ == 1;
    step.updateGraphs = counter_ == 4;
    return step;
}
