// The 3D sound law: how the listener's position, set with the joystick,
// spreads the decks' mono mix over the left and right speakers.
//
// The decks' sound is one source at the centre of the plane; the listener
// stands at (x, y), each −1000 … 1000, where 1000 is one unit of distance.
// Seen from the listener the source lies at (−x, −y), so a listener moved to
// the right hears the decks on the left:
//   pan  p = −x / 1000, held to −1 … 1 (−1 all left, +1 all right); the ear
//        nearer the source keeps its full level, the far ear falls in a
//        straight line to silence at full pan: left = min(1, 1 − p),
//        right = min(1, 1 + p);
//   distance d = √(x² + y²) / 1000; both ears are multiplied by 1 / (1 + d),
//        an inverse-distance fall-off with one unit as its reference, so
//        the centre plays at full level and a corner (d = √2) 7.7 dB down.
// y (in front or behind) only moves the listener away: two speakers cannot
// tell front from back.
#pragma once

namespace listener_law {

inline constexpr float kUnit = 1000.0f;  // joystick units per unit of distance

struct Gains {
    float left = 1.0f;
    float right = 1.0f;
};

Gains GainsAt(float x, float y);

}  // namespace listener_law
