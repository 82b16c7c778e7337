#include "app/KeyMapText.h"

#include <QStringList>
#include <cmath>

#include "app/KeyMaps.h"

namespace {

QString DeckName(int deck) {
    return deck == 1 ? QStringLiteral("B") : QStringLiteral("A");
}

QString HeldText(const HeldAction& a) {
    const QString sign = a.step > 0 ? QStringLiteral("+") : QStringLiteral("-");
    const QString d = DeckName(a.deck);
    switch (a.target) {
        case HeldTarget::TempoSlide:
            return d + QStringLiteral(" tempo ") + sign +
                   (std::fabs(a.step) < 0.01 ? QStringLiteral(" fine") : QString());
        case HeldTarget::SpindleSlide:
            return d + QStringLiteral(" spindle ") + sign;
        case HeldTarget::TempoStep:
            return d + QStringLiteral(" tempo 1% ") + sign;
        case HeldTarget::MainLevel:
            return d + QStringLiteral(" level ") + sign;
        case HeldTarget::MainCrossFader:
            return QStringLiteral("x-fader ") +
                   (a.step > 0 ? QStringLiteral("B") : QStringLiteral("A"));
        case HeldTarget::MainVolume:
            return QStringLiteral("volume ") + sign;
        case HeldTarget::PhonesLevel:
            return d + QStringLiteral(" phones ") + sign;
        case HeldTarget::PhonesCrossFader:
            return QStringLiteral("phones x-fader ") +
                   (a.step > 0 ? QStringLiteral("B") : QStringLiteral("A"));
        case HeldTarget::PhonesVolume:
            return QStringLiteral("phones vol ") + sign;
        case HeldTarget::EqualizerBand:
            return d + QStringLiteral(" EQ band %1 ").arg(a.band + 1) + sign;
        case HeldTarget::None:
            break;
    }
    return {};
}

QString PressText(const KeyAction& a) {
    const QString d = DeckName(a.deck);
    switch (a.command) {
        case KeyCommand::Jump:
            return d +
                   QStringLiteral(" to %1%").arg(static_cast<int>(std::lround(a.fraction * 100)));
        case KeyCommand::Eject:
            return d + QStringLiteral(" eject");
        case KeyCommand::StartStop:
            return d + QStringLiteral(" start/stop");
        case KeyCommand::Needle:
            return d + QStringLiteral(" needle");
        case KeyCommand::PreviousTrack:
            return d + QStringLiteral(" prev track");
        case KeyCommand::NextTrack:
            return d + QStringLiteral(" next track");
        case KeyCommand::PressReverse:
            return d + QStringLiteral(" reverse");
        case KeyCommand::PressFastForward:
            return d + QStringLiteral(" fast fwd");
        case KeyCommand::PressRewind:
            return d + QStringLiteral(" rewind");
        case KeyCommand::ResetLayout:
            return QStringLiteral("windows home");
        case KeyCommand::FullScreen:
            return QStringLiteral("full screen");
        case KeyCommand::WriteUserGuide:
            return QStringLiteral("+Shift: user guide");
        default:
            break;
    }
    return {};
}

}  // namespace

QString KeyMapText(int key, bool ctrl) {
    QStringList lines;
    const QString held = HeldText(HeldKeyAction(key, ctrl, false));
    if (!held.isEmpty())
        lines << held;
    QString press = PressText(KeyDownAction(key, ctrl, false));
    if (press.isEmpty() && ctrl)
        press = PressText(KeyDownAction(key, true, true));
    if (!press.isEmpty() && !lines.contains(press))
        lines << press;
    return lines.join(QLatin1Char('\n'));
}
