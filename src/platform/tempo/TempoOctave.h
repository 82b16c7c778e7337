// Which octave of a measured tempo is the beat a disc jockey counts.
//
// A beat tracker often locks onto every second beat of fast music (87 for a
// 174 drum-and-bass track) or, more rarely, onto the eighths of slow music.
// Two facts settle it: the range dance music lives in, and how strong the
// sound is half-way between the tracked beats compared with on them. When
// the half-way points carry nearly as much attack as the beats themselves
// (a snare between two kicks), they are beats too and the tempo doubles, as
// long as the double stays in range. Tempos outside the range are brought in
// by whole octaves.
#pragma once

namespace tempo {

// The range of tempos shown, beats per minute: [kLowestBpm, kHighestBpm).
inline constexpr double kLowestBpm = 70.0;
inline constexpr double kHighestBpm = 200.0;
// Half-way attack over on-beat attack from which the half-way points count as
// beats (a steady 8th-note hi-hat over kicks stays well below it).
inline constexpr double kHalfBeatRatio = 0.6;

// The tempo to show for a tracked tempo `bpm` (> 0) whose half-way points
// carry `halfBeatRatio` of the on-beat attack (0 when unknown). 0 stays 0.
double ChooseOctave(double bpm, double halfBeatRatio);

}  // namespace tempo
