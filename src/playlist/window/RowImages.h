// Which image a play list row shows, from whether it is the selected row,
// whether its entry is loaded in the deck and whether the deck plays:
//   0 selected, not loaded          3 loaded, the deck does not play
//   1 plain                         4 selected and loaded, the deck does not play
//   2 loaded, the deck plays        5 selected and loaded, the deck plays
#pragma once

constexpr int RowImageFor(bool selected, bool loaded, bool playing) {
    if (!loaded)
        return selected ? 0 : 1;
    if (selected)
        return playing ? 5 : 4;
    return playing ? 2 : 3;
}
