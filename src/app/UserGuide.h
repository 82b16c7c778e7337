// Writing the HTML user guide of the running program: the pages from each
// window's control registry and the pictures rendered from the windows
// themselves. Ctrl+Shift+F5 asks for the folder with a save dialog
// ("index.htm"); the command line (--write-guide DIR) names it.
//
// Window pages: Deck (deck A), Equalizer (deck A's), Play List (deck A's),
// Main Mixer, Headphones Mixer, 3D Graph and Configuration Window. Pictures:
// "images/<page>.png" per window, "images/fullscreen600x451.png",
// "images/overview.png", "images/keyboard_map1.png" and "keyboard_map2.png".
// User-interface thread only.
#pragma once

#include <QString>

class CMixoraDlg;

// The host whose windows the keyboard command describes (null: none).
void SetUserGuideHost(CMixoraDlg* host);

// Writes the whole guide into `folder` (made when missing). False with a
// sentence for the user in *error when a file cannot be written.
bool WriteUserGuideTo(CMixoraDlg& host, const QString& folder, QString* error);

// The keyboard command: the save dialog, then the guide into the chosen
// file's folder; a problem is shown in a message box. False when cancelled,
// failed or there is no host.
bool AskAndWriteUserGuide();

// --write-guide: a second after start-up the guide is written into `folder`
// and the program shuts down; a problem goes to standard error and makes
// GuideWritingFailed() true (the exit status is then 1).
void ArmGuideWriting(CMixoraDlg& host, const QString& folder);
bool GuideWritingFailed();
