// The deck window's registry rows: every control of the deck and of its
// panels (transport, source, tempo, platter, effects, graphs), in the order
// they appear, with the deck's letter in each title and its keys in the
// descriptions. Called once the deck knows its index.
#pragma once

class CRynDeck;

void RegisterDeckComponents(CRynDeck& deck);
