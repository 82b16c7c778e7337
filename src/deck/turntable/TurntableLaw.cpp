#include "deck/turntable/TurntableLaw.h"

#include <algorithm>
#include <cmath>

namespace turntable {

double AngleOfCursor(int cursorBytes) {
    return Wrap(double(cursorBytes) / kRingBytes);
}

int AngleInBlocks(double angle) {
    return std::clamp(static_cast<int>(Wrap(angle) * kRingBlocks), 0, kRingBlocks - 1);
}

int ReverseAngleInBlocks(double angle) {
    return kRingBlocks - AngleInBlocks(angle);
}

int BlocksAhead(int playCursorBytes, int writeCursorBytes) {
    const int ahead = writeCursorBytes / kBlockBytes - playCursorBytes / kBlockBytes;
    return ahead < 0 ? ahead + kRingBlocks : ahead;
}

int BytesPlayed(double before, double now) {
    double d = now - before;
    if (d < 0)
        d += 1.0;
    return static_cast<int>(d * kRingBytes);
}

int LoopBytes(double playAngle, double releasedAngle) {
    double distance = playAngle - releasedAngle;
    if (distance < 0)
        distance += 1.0;
    return static_cast<int>(kRingBytes * distance) / kBytesPerFrame * kBytesPerFrame;
}

int ScratchOffset(double position) {
    return static_cast<int>(Wrap(position) * kRingBytes) / kBytesPerFrame * kBytesPerFrame;
}

double DragDelta(double previous, double now) {
    double d = now - previous;
    if (d > 0.5)
        d -= 1.0;
    else if (d < -0.5)
        d += 1.0;
    return d;
}

double SpinStep(double angle, int filledSlots) {
    const double fill = double(std::clamp(filledSlots, 0, kDiscSlots)) / kDiscSlots;
    double a = angle + (kSpinPeriodMs / 1000.0 / kSecondsPerRevolution) * fill;
    if (a >= 1.0)
        a -= 1.0;
    return Wrap(a);
}

double Wrap(double angle) {
    if (!std::isfinite(angle))
        return 0.0;
    double a = angle - std::floor(angle);
    return a >= 1.0 ? 0.0 : a;
}

}  // namespace turntable
