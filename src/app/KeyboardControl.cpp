#include "app/KeyboardControl.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <algorithm>
#include <cstdint>

#include "app/KeyTargets.h"
#include "app/ShellLog.h"
#include "app/VirtualKeys.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/source/DeckSource.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "output/mixer/CRynMainMixer.h"

namespace {

QString DeckName(int deck) {
    return deck == 0 ? QStringLiteral("deck A") : QStringLiteral("deck B");
}

void LogKey(int deck, const QString& what) {
    ShellLog(QStringLiteral("key: %1 %2").arg(DeckName(deck), what));
}

const char* ButtonName(MomentaryButton which) {
    switch (which) {
        case MomentaryButton::Reverse:
            return "reverse";
        case MomentaryButton::FastForward:
            return "fast forward";
        case MomentaryButton::Rewind:
            return "rewind";
        default:
            return "";
    }
}

}  // namespace

bool NudgeSlide(CNiSlide* slide, double step) {
    if (!slide || !slide->isEnabled())
        return false;
    slide->SetValue(std::clamp(slide->Value() + step, slide->Minimum(), slide->Maximum()));
    return true;
}

KeyboardControl::KeyboardControl(std::function<KeyWindows()> windows, KeySource& keys)
    : windows_(std::move(windows)), keys_(keys) {
    if (qApp) {
        QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &context_,
                         [this](Qt::ApplicationState state) {
                             if (state != Qt::ApplicationActive)
                                 ReleaseAll();
                         });
    }
}

void KeyboardControl::ReleaseAll() {
    const KeyWindows w = windows_();
    for (int deck = 0; deck < 2; ++deck) {
        for (MomentaryButton which :
             {MomentaryButton::Reverse, MomentaryButton::FastForward, MomentaryButton::Rewind}) {
            if (heldByKey_[deck][static_cast<int>(which)])
                Hold(deck, which, false, w);
        }
        if (spindleByKey_[deck] && w.decks[deck])
            w.decks[deck]->Tempo().ReleaseSpindle();
        spindleByKey_[deck] = false;
    }
}

void KeyboardControl::Handle(Uwm msg, WParam wParam, LParam lParam) {
    // Codes travel sign-extended or as 0 … 255; both read back as int8.
    const int key = static_cast<std::int8_t>(static_cast<std::uint8_t>(wParam & 0xFF));
    const bool ctrl = (lParam & kKeyParamCtrl) != 0;
    const bool shift = (lParam & kKeyParamShift) != 0;
    switch (msg) {
        case UWM_KEY_POLLED:
            OnPolled(key);
            break;
        case UWM_KEY_DOWN:
            OnKeyDown(key, ctrl, shift);
            break;
        case UWM_KEY_UP:
            OnKeyUp(key, ctrl, shift);
            break;
        default:
            break;
    }
}

int KeyboardControl::PolledCount(int key) const {
    const auto it = polled_.find(key);
    return it == polled_.end() ? 0 : it->second;
}

void KeyboardControl::OnPolled(int key) {
    ++polled_[key];
    const HeldAction action = HeldKeyAction(key, keys_.IsCtrlDown(), keys_.IsShiftDown());
    if (action.target != HeldTarget::None)
        Nudge(action, windows_());
}

void KeyboardControl::OnKeyDown(int key, bool ctrl, bool shift) {
    const KeyAction action = KeyDownAction(key, ctrl, shift);
    if (action.command != KeyCommand::None)
        Run(action, windows_());
}

void KeyboardControl::OnKeyUp(int key, bool ctrl, bool shift) {
    const KeyWindows w = windows_();
    const KeyAction action = KeyUpAction(key, ctrl, shift);
    if (action.command != KeyCommand::None)
        Run(action, w);
    // A button this key holds is let go with it, even after Ctrl was.
    int deck = 0;
    const MomentaryButton which = MomentaryButtonOf(key, &deck);
    if (which != MomentaryButton::None && heldByKey_[deck][static_cast<int>(which)])
        Hold(deck, which, false, w);
}

void KeyboardControl::Nudge(const HeldAction& a, const KeyWindows& w) {
    CRynDeck* deck = w.decks[a.deck == 1 ? 1 : 0];
    switch (a.target) {
        case HeldTarget::TempoSlide:
            if (deck)
                deck->Tempo().StepTempo(a.step);
            break;
        case HeldTarget::SpindleSlide:
            if (deck) {
                deck->Tempo().StepSpindle(a.step);
                spindleByKey_[a.deck == 1 ? 1 : 0] = true;
            }
            break;
        case HeldTarget::TempoStep:
            if (!deck)
                break;
            if (a.step > 0 && deck->Tempo().UpButton()->isEnabled())
                deck->Tempo().ArbitraryUp();
            else if (a.step < 0 && deck->Tempo().DownButton()->isEnabled())
                deck->Tempo().ArbitraryDown();
            break;
        case HeldTarget::MainLevel:
            if (w.mainMixer)
                NudgeSlide(w.mainMixer->Panel().DeckLevelSlide(a.deck), a.step);
            break;
        case HeldTarget::MainCrossFader:
            if (w.mainMixer)
                NudgeSlide(w.mainMixer->Panel().CrossFaderSlide(), a.step);
            break;
        case HeldTarget::MainVolume:
            if (w.mainMixer)
                NudgeSlide(w.mainMixer->Panel().VolumeSlide(), a.step);
            break;
        case HeldTarget::PhonesLevel:
        case HeldTarget::PhonesCrossFader:
        case HeldTarget::PhonesVolume:
            NudgeSlide(PhonesSlide(w.headphones, a.target, a.deck), a.step);
            break;
        case HeldTarget::EqualizerBand:
            NudgeSlide(EqualizerBandSlide(w.equalizers[a.deck == 1 ? 1 : 0], a.band), a.step);
            break;
        case HeldTarget::None:
            break;
    }
}

void KeyboardControl::Run(const KeyAction& a, const KeyWindows& w) {
    const int d = a.deck == 1 ? 1 : 0;
    CRynDeck* deck = w.decks[d];
    switch (a.command) {
        case KeyCommand::Jump:
            Jump(deck, a.fraction);
            break;
        case KeyCommand::Eject:
            Click(deck, deck ? deck->EjectButton() : nullptr, "eject");
            break;
        case KeyCommand::StartStop:
            Click(deck, deck ? deck->StartStopButton() : nullptr, "start/stop");
            break;
        case KeyCommand::Needle:
            Click(deck, deck ? deck->DropLiftButton() : nullptr, "needle");
            break;
        case KeyCommand::PreviousTrack:
            Click(deck, deck ? deck->PreviousButton() : nullptr, "previous");
            break;
        case KeyCommand::NextTrack:
            Click(deck, deck ? deck->NextButton() : nullptr, "next");
            break;
        case KeyCommand::PressReverse:
        case KeyCommand::ReleaseReverse:
            Hold(d, MomentaryButton::Reverse, a.command == KeyCommand::PressReverse, w);
            break;
        case KeyCommand::PressFastForward:
        case KeyCommand::ReleaseFastForward:
            Hold(d, MomentaryButton::FastForward, a.command == KeyCommand::PressFastForward, w);
            break;
        case KeyCommand::PressRewind:
        case KeyCommand::ReleaseRewind:
            Hold(d, MomentaryButton::Rewind, a.command == KeyCommand::PressRewind, w);
            break;
        case KeyCommand::SpindleBack:
            if (deck)
                deck->Tempo().ReleaseSpindle();
            spindleByKey_[d] = false;
            break;
        case KeyCommand::TurntableRelease:
            TurntableKeyRelease(deck);
            break;
        case KeyCommand::ResetLayout:
            ResetWindowPositions(w.mainMixer);
            break;
        case KeyCommand::FullScreen:
            ShowFullScreen(w.mainMixer);
            break;
        case KeyCommand::WriteUserGuide:
            WriteUserGuide();
            break;
        case KeyCommand::None:
            break;
    }
}

void KeyboardControl::Jump(CRynDeck* deck, double fraction) {
    // As a drag of the progress slide let go at the fraction.
    if (!deck || deck->TrackNameText() == QLatin1String(DeckSource::kNoTrack) ||
        deck->TrackNameText() == QLatin1String(DeckSource::kNoFile))
        return;
    deck->ProgressSlide()->SetValue(fraction);
    deck->Reposition(fraction);
    deck->UpdateTimeDisplay();
    LogKey(deck->DeckIndex(), QStringLiteral("jump %1%").arg(qRound(fraction * 100)));
}

void KeyboardControl::Click(CRynDeck* deck, CNiButton* button, const char* what) {
    if (!deck || !button || !button->isEnabled())
        return;
    // The left button pressed and released at the middle of the button: the
    // window acts on the press as it does for the mouse.
    const QPointF centre = QRectF(button->rect()).center();
    const QPointF global = button->mapToGlobal(centre);
    QMouseEvent press(QEvent::MouseButtonPress, centre, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(button, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, centre, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(button, &release);
    LogKey(deck->DeckIndex(),
           QStringLiteral("%1 -> %2").arg(QLatin1String(what), button->Caption()));
}

CNiButton* KeyboardControl::MomentaryOf(CRynDeck* deck, MomentaryButton which) {
    if (!deck)
        return nullptr;
    switch (which) {
        case MomentaryButton::Reverse:
            return deck->DirectionButton();
        case MomentaryButton::FastForward:
            return deck->FastForwardButton();
        case MomentaryButton::Rewind:
            return deck->RewindButton();
        default:
            return nullptr;
    }
}

void KeyboardControl::Hold(int deck, MomentaryButton which, bool on, const KeyWindows& w) {
    bool& held = heldByKey_[deck][static_cast<int>(which)];
    CNiButton* button = MomentaryOf(w.decks[deck], which);
    if (!button)
        return;
    if (on) {
        // Pressed only while enabled, as the mouse can; a repeated press of a
        // held key changes nothing.
        if (!button->isEnabled() || button->Value())
            return;
        held = true;
        button->SetValue(true);
        LogKey(deck, QStringLiteral("%1 on").arg(QLatin1String(ButtonName(which))));
        return;
    }
    held = false;
    if (!button->Value())
        return;
    button->SetValue(false);
    LogKey(deck, QStringLiteral("%1 off").arg(QLatin1String(ButtonName(which))));
}
