// The list each deck keeps between runs: "DeckAPlayList.m3u" and
// "DeckBPlayList.m3u" in the data folder (DataDir()).
#pragma once

#include <string>

#include "playlist/PlayList.h"

// Full path of a deck's default list (deck 0 = A, 1 = B; other values give B's).
std::string DefaultListPath(int deck);

// File mode start: empties the list and loads the deck's default list. A
// missing file (first run) leaves the list empty and reports CannotOpen.
ListLoadResult LoadDefaultList(PlayList& list, int deck);

// Shutdown in File mode: saves the list as the deck's default M3U (atomically),
// making the data folder when it is missing.
ListFileStatus SaveDefaultList(PlayList& list, int deck);
