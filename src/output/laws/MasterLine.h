// Main volume and balance as the device's master line: volume v in 0 … 1
// and balance p in -1 … +1 give the left and right channel in percent.
#pragma once

struct LinePercent {
    int left = 0;   // percent, 0 … 100
    int right = 0;  // percent, 0 … 100
};

// V = trunc(v · 100); p < 0 lowers the right channel to trunc((p + 1) · V),
// p > 0 the left to trunc((1 − p) · V).
LinePercent MasterLineLevels(double volume, double balance);

// A channel written to a control of range [minimum, maximum]:
// percent · (maximum − minimum) / 100 in integer arithmetic.
int LineControlValue(int percent, int minimum, int maximum);
