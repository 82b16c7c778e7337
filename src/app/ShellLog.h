// The shell's record of start-up and shutdown: one line per step ("create
// CRynDeck 131", "shutdown lamp 2: Destroying Decks"). Kept in memory for
// in-process checks and, when $MIXORA_SHELL_LOG names a file, appended to that
// file line by line (flushed at once, so a child process's log survives its
// exit). User-interface thread only.
#pragma once

#include <QString>
#include <QStringList>

void ShellLog(const QString& line);

// Every line logged since the start (or the last clear).
const QStringList& ShellLogLines();
void ClearShellLogForTest();
