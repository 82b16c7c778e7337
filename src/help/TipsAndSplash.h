// The laws of the start-up help: which tip of the day a start shows and what
// it stores for the next start, and where the splash picture sits.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

namespace tips {

// The tips, in the order the starts show them.
inline constexpr int kTipCount = 7;
QString TipText(int index);  // empty outside 0 .. kTipCount - 1

// A start with `storedIndex` in the settings shows tip `shown` (the stored
// index clamped to 0 .. count - 1) and stores `next` = (shown + 1) mod count.
struct Step {
    int shown;
    int next;
};
Step NextTip(int storedIndex);

}  // namespace tips

namespace splash {

// The splash window's top left: centred on the full-screen work area `area`
// with integer division ((area width - picture width) / 2 from its left).
QPoint Place(const QRect& area, QSize picture);

}  // namespace splash
