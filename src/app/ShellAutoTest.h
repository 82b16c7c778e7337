// Scripted runs of the real program for the tests, chosen by
// $MIXORA_AUTOTEST once start-up has finished:
//   "close-mixer": closes the main mixer (the user's way to quit);
//   "escape":      presses Esc on the host;
//   "device-watch": deck A plays its file; ten times a second a "watch" line
//                  logs the main device, its loss and deck A (for the tests
//                  that take the sound server away); a returning device gets
//                  the needle dropped again;
//   "change-and-wait": deck A's time display mode moves on (a stored
//                  setting), "changed" is logged, and the run waits;
//   "set-curve":   the cross-fader curve moves to 0.5, then the main mixer
//                  closes;
//   "soak":        both decks play their command-line files over and over
//                  (bench/soak); a "soak" line every ten seconds counts the
//                  main device's underruns;
//   "play-close":  starts both decks' notification threads, lets a simulated
//                  device signal block boundaries for a while, then closes
//                  the main mixer while both decks play;
//   "eq-change":   changes both decks' equalizer settings through their
//                  windows (deck A: 6 bands, "Blackman", anti-clip off, on;
//                  deck B: 12 bands, "Hamming"), then closes the main mixer;
//   "eq-report":   logs each equalizer window's state once a delayed
//                  12-band change would have come, then closes the mixer;
//   "record":      deck A plays its command-line file while the main mixer's
//                  REC button records two seconds; "record" lines log the
//                  file, its time, lost frames and the notice; then closes;
//   "play-both":   once both decks hold the tracks of the command line, logs
//                  "both tracks loaded", turns on both equalizers with 12
//                  bands, shows both decks' scopes ($MIXORA_AUTOTEST_GRAPH
//                  names another graph type) and drops both needles;
//                  the program then plays until it is closed (bench/program_cpu).
// $MIXORA_AUTOTEST_FAIL=sound or media makes that platform layer fail at
// start-up (the message then goes to stderr only).
// Unset, nothing happens.
#pragma once

#include <memory>

class CMixoraDlg;
class PlatformLayers;

// The layers to use: the system's, or a failing one for MIXORA_AUTOTEST_FAIL.
std::unique_ptr<PlatformLayers> AutoTestPlatformLayers();

// True when a scripted run is asked for (message boxes are then not shown).
bool AutoTestActive();

// Arms the script on a host whose start-up has finished.
void ArmAutoTest(CMixoraDlg& host);
