// The equalizer window's registry rows, in the order the controls appear
// (plot, command row, band level slides, isolation and selected band), each
// title naming the deck. Called once the window knows its deck.
#pragma once

class CRynEqualizer;

void RegisterEqualizerComponents(CRynEqualizer& equalizer);
