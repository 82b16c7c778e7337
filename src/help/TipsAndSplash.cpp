#include "help/TipsAndSplash.h"

#include <algorithm>

namespace tips {

QString TipText(int index) {
    static const char* const kTips[kTipCount] = {
        "You can right click any graph or meter to turn it off in order to save CPU time.",
        "You can right click any control to reset it back to the zero position.",
        "You can double click any graph or meter to view just that meter.",
        "Usually you will want to turn off the meters for the track you are currently playing.  "
        "This allows you to use more CPU time for visualizing the track you are bringing in.",
        "Press the \"home\" key to move all open windows back to their original positions.",
        "Press the \"end\" key for full screen.",
        "To delete all of the items in the list hold shift and click the delete item button.",
    };
    if (index < 0 || index >= kTipCount)
        return {};
    return QString::fromLatin1(kTips[index]);
}

Step NextTip(int storedIndex) {
    const int shown = std::clamp(storedIndex, 0, kTipCount - 1);
    return {shown, (shown + 1) % kTipCount};
}

}  // namespace tips

namespace splash {

QPoint Place(const QRect& area, QSize picture) {
    return {area.x() + (area.width() - picture.width()) / 2,
            area.y() + (area.height() - picture.height()) / 2};
}

}  // namespace splash
