// What a key does, in a few words for the keyboard pictures of the user
// guide, read from the key maps themselves (KeyMaps.h) so that the pictures
// never disagree with the keys. Map 1: the key alone; map 2: with Ctrl (and
// Ctrl+Shift for F5). Empty when the key does nothing in that map.
#pragma once

#include <QString>

QString KeyMapText(int key, bool ctrl);
