// The start-up choice between the high- and the low-resolution layout.
#pragma once

// High resolution needs a full-screen client area wider than 800 and taller
// than 600 pixels; exactly 800 wide or 600 high is low resolution.
bool ChooseLowResolution(int fullScreenWidth, int fullScreenHeight);
