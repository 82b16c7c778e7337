// Platter drag positions in the deck's buffer statistics.
#include <gtest/gtest.h>

#include "deck/disc/DeckInfoStats.h"

TEST(DeckInfoStats, PlatterPositionsMirrorTheAngleOnTheReverseRing) {
    DeckInfoStats stats;
    stats.SetForwardPositions(10, 20, 10, nullptr);
    stats.SetReversePositions(40, 45, 10);
    stats.SetPlatterPositions(30);
    EXPECT_EQ(stats.ForwardPlaySlot(), 30);
    EXPECT_EQ(stats.ReversePlaySlot(), 90);
    // Write slots and blocks ahead are the cursors', untouched by a drag.
    EXPECT_EQ(stats.ForwardWriteSlot(), 20);
    EXPECT_EQ(stats.ReverseWriteSlot(), 45);
    EXPECT_EQ(stats.BlocksAhead(), 5);
    stats.SetPlatterPositions(0);
    EXPECT_EQ(stats.ReversePlaySlot(), 120);
    stats.SetPlatterPositions(-5);  // held within one turn
    EXPECT_EQ(stats.ForwardPlaySlot(), 0);
    stats.SetPlatterPositions(500);
    EXPECT_EQ(stats.ForwardPlaySlot(), 120);
    EXPECT_EQ(stats.ReversePlaySlot(), 0);
}
