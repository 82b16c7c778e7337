// Where Mixora keeps its files.
#pragma once

#include <QString>

// Settings folder: $MIXORA_CONFIG_DIR, else ~/.config/Orvane (XDG).
QString ConfigDir();
// Data folder (default play lists, the user guide): $MIXORA_DATA_DIR, else
// ~/.local/share/Orvane/Mixora (XDG).
QString DataDir();
