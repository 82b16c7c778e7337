// Qt key codes to the virtual-key codes the keyboard maps use: letters
// 65-90, digits 48-57, Esc 27, Page Up 33, Page Down 34, End 35, Home 36,
// arrows 37-40, F1-F12 112-123, semicolon 0xBA, comma 0xBC, full stop 0xBE,
// slash 0xBF (also the keypad's divide key), Shift 16, Ctrl 17.
#pragma once

// 0 for keys the program has no use for.
int VirtualKeyFromQt(int qtKey);

// The lParam of a key message: repeat count 1 in bits 0-15, the scan code in
// bits 16-23, bit 30 set when the key was already down (auto repeat), bit 31
// set for a key release; above those, Mixora's own bits: Ctrl and Shift as
// they were held at the key event.
constexpr long long kKeyParamCtrl = 1LL << 32;
constexpr long long kKeyParamShift = 1LL << 33;
long long KeyMessageParam(unsigned scanCode, bool autoRepeat, bool release, bool ctrl = false,
                          bool shift = false);
