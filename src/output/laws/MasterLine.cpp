#include "output/laws/MasterLine.h"

#include <cmath>

LinePercent MasterLineLevels(double volume, double balance) {
    const int v = static_cast<int>(std::trunc(volume * 100.0));
    LinePercent out{v, v};
    if (balance < 0) {
        out.right = static_cast<int>(std::trunc((balance + 1.0) * v));
    } else if (balance > 0) {
        out.left = static_cast<int>(std::trunc((1.0 - balance) * v));
    }
    return out;
}

int LineControlValue(int percent, int minimum, int maximum) {
    return percent * (maximum - minimum) / 100;
}
