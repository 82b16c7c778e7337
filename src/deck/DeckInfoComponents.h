// The deck information window's registry rows, in the order the controls
// appear, each title naming the deck. The short labels are the controls'
// names ("Disc Buffer Display"). Called once the window knows its deck.
#pragma once

class CRynDeckInfo;

void RegisterDeckInfoComponents(CRynDeckInfo& info);
