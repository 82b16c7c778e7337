// Qt's notes that say nothing is wrong stay off standard error: the
// platform plugin's "This plugin does not support raise()" and
// "... propagateSizeHints()" (the offscreen and some Wayland plugins), and
// the runtime folder defaulted for a session without XDG_RUNTIME_DIR. They
// become developer traces (core/Trace.h); every other message goes on as
// before.
#pragma once

#include <QString>

// True for a message that is only such a note.
bool IsHarmlessQtNote(const QString& message);

// Installs the filter in front of the current message handler. Once.
void InstallQuietMessages();
