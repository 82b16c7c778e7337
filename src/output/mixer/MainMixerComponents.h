// The main mixer's registry rows: the mixer panel (levels, cross fader and
// its curve, volume, balance, auto-pan, window buttons) and then the meters
// (per deck, then the system's), in the order they appear.
#pragma once

class CRynMainMixer;

void RegisterMainMixerComponents(CRynMainMixer& mixer);
