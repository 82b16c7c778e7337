// Rhythm fixtures for the tempo tests, generated once with sox into the
// fixture folder: click tracks (a 10 ms 1 kHz tick a beat over digital
// silence) and a drum pattern (kick on beats 1 and 3, snare on 2 and 4,
// hi-hat on every eighth). A beat is a whole number of samples at 44100 Hz,
// round(2646000 / bpm): 120 BPM is exact, 128 is 127.997, 174 is 173.999.
#pragma once

#include <QString>

namespace testsupport {

// Stereo 16-bit WAV click track of `bpm` lasting about `seconds`.
QString MakeClickTrack(const QString& name, double bpm, int seconds);
// Stereo 16-bit WAV drum pattern of `bpm` lasting about `seconds`.
QString MakeDrumPattern(const QString& name, double bpm, int seconds);

}  // namespace testsupport
