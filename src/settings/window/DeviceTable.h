// The table of output devices the configuration window offers: at most 20,
// each with the text the lists show and the identifier the sound layer opens
// (sound::OpenDevice). Index 0 is "No Sound Device Selected (Disabled)"; the
// device index sent with UWM_SET_SOUND_DEVICE is an index of this table, so
// the main mixer opens exactly the device the user picked.
//
// User-interface thread only.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "platform/sound/SoundTypes.h"

namespace device_table {

inline constexpr int kMaxDevices = 20;
inline constexpr char kDisabledText[] = "No Sound Device Selected (Disabled)";
// The item sent for a stored device that is not listed (a USB card not
// plugged in): the receiver looks for the device by its stored name.
inline constexpr int kMissingDeviceItem = -1;

// Replaces the table: item 0 the disabled entry, then `devices` in order
// (beyond the 20th they are left out).
void Publish(const std::vector<sound::SoundDeviceInfo>& devices);
// The identifier of item `index`; "" for item 0 and any index not in the table.
std::string Identifier(long long index);
// The item with this identifier, -1 when none.
int IndexOf(const std::string& identifier);
// Items, the disabled entry included.
int Count();
QString Text(int index);

}  // namespace device_table
