// The tempo a deck is heard at, and how the mixer's read-out writes it.
//
// A deck plays its track at outputHz / baseHz of its own speed (the tempo
// slide, spindle and steps move outputHz; baseHz is the track's rate), so a
// track measured at bpm is heard at bpm x outputHz / baseHz: 120 BPM at
// +8 % (47628 Hz over 44100 Hz) is heard at 129.6.
#pragma once

#include <QString>

// bpm x outputHz / baseHz; 0 when the tempo is not known (bpm <= 0). A
// missing rate (0 or less) counts as 44100 Hz.
double HeardTempo(double bpm, int outputHz, int baseHz);

// "129.6 BPM" (one decimal), or "--- BPM" when the tempo is not known.
QString TempoReadout(double bpm);
