// The equalizer latency as the configuration window writes it: v output
// notifications of 1176 frames at 44100 Hz, cut down to tenths of a second,
// in the shortest number format, then " s": 10 gives "0.2 s", 38 "1 s",
// 1 "0 s".
#pragma once

#include <QString>

QString LatencySecondsText(double notifications);
