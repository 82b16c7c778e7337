#include "app/ScreenMode.h"

bool ChooseLowResolution(int width, int height) {
    return !(width > 800 && height > 600);
}
