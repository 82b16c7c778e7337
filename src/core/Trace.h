// Mixora's developer traces: one logging category, "mixora.trace", whose
// debug and info messages are off by default, so a user starting the
// program from a terminal sees nothing unless something is wrong. The
// command line's --verbose turns them on, as does
// QT_LOGGING_RULES="mixora.trace.debug=true". Warnings still show.
//
//   qCDebug(lcTrace) << "CMixoraDlg ignores" << UwmName(msg);
#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcTrace)

// Turns the traces on (--verbose).
void EnableTraces();
