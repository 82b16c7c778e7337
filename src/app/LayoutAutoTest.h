// Scripted runs of the real program for the window layout's tests, chosen by
// $MIXORA_AUTOTEST (see ShellAutoTest.h for the others):
//   "layout-move":   deck A goes to 101, 57 (400 x 300) as if the user had
//                    dragged it, then the main mixer closes;
//   "layout-save-off": "Save Window Positions" is switched off, deck A is
//                    moved as above, then the main mixer closes;
//   "layout-report": one "layout window" line per window, then the main
//                    mixer closes;
//   "layout-full-screen": End, as the key does it; a second later one
//                    "layout window" line per window, one "layout outside"
//                    line per control that is not wholly inside its window's
//                    client area, and a "layout check" summary (windows
//                    checked, frames without a client area, controls,
//                    controls outside); the program
//                    then waits $MIXORA_LAYOUT_HOLD_MS (default 3000) for a
//                    screenshot and closes the main mixer.
// A "layout window" line reads: class, deck, left, top, right, bottom of the
// frame, "shown" or "hidden".
#pragma once

#include <QString>

class CMixoraDlg;

// Arms the script when `script` is one of the above; else does nothing.
void ArmLayoutAutoTest(CMixoraDlg& host, const QString& script);
