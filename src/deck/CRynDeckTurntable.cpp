// The deck window's turntable side: start/stop and drop/lift, reverse, wind,
// reposition, the progress slide while playing, the time display and the
// track-ended state. The engine side of each is the deck's DeckTransport.
#include <QComboBox>
#include <QLabel>
#include <algorithm>
#include <cmath>
#include <vector>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/source/DeckSource.h"
#include "deck/transport/DeckTransport.h"
#include "deck/transport/TrackTime.h"
#include "deck/turntable/TurntableController.h"
#include "playlist/PlayList.h"
#include "settings/CRynSettings.h"

bool CRynDeck::Rotating() const {
    return startStop_->Caption() == QLatin1String("stop");
}

bool CRynDeck::NeedleDown() const {
    return dropLift_->Caption() == QLatin1String("lift");
}

void CRynDeck::StartTurntable() {
    transport_->StartReading();
    drives_->setEnabled(false);
    modeButton_->setEnabled(false);
    startStop_->SetCaption(QStringLiteral("stop"));
    dropLift_->setEnabled(true);
    rewind_->setEnabled(true);
    fastForward_->setEnabled(true);
    FocusHost();
}

void CRynDeck::StopTurntable() {
    if (NeedleDown())
        LiftNeedle();
    dropLift_->setEnabled(false);
    transport_->StopReading();
    if (source_->Mode() == DeckSource::kCdMode)
        drives_->setEnabled(true);
    modeButton_->setEnabled(true);
    startStop_->SetCaption(QStringLiteral("start"));
    FocusHost();
}

void CRynDeck::DropNeedle() {
    dropLift_->SetCaption(QStringLiteral("lift"));
    if (!trackEnded_) {
        Disc().SetReadErrorLed(false);
        transport_->RestartElapsedCount();
        PostAppMessageRetry(mainMixer_, UWM_START_FORWARD_THREAD, deck_, 0);
        direction_->setEnabled(true);
        SetWindowTimer(kProgressTimer, 50);
        SetWindowTimer(kTimeTimer, 500);
        SetWindowTimer(kTurntableTimer, 300);
        List().SetPlaying(1);
        UpdateTimeDisplay();
    }
    FocusHost();
}

void CRynDeck::LiftNeedle() {
    EndReverseQuietly();
    DeckSharedState& shared = Engine().decks[deck_];
    shared.freshDataLow.store(0);
    dropLift_->SetCaption(QStringLiteral("drop"));
    shared.discBufferVeryLow.store(0);
    Disc().LowerReaderPriority();
    PostAppMessageRetry(mainMixer_, UWM_STOP_DECK, deck_, 0);
    direction_->setEnabled(false);
    StopBlink();
    KillWindowTimer(kProgressTimer);
    KillWindowTimer(kTimeTimer);
    KillWindowTimer(kTurntableTimer);
    List().SetPlaying(0);
}

void CRynDeck::SetReverse(bool on) {
    if (on == transport_->IsReverse())
        return;
    if (on) {
        // Reverse ends a loop on the platter.
        if (Turntable().Holds() && Engine().decks[deck_].isPlaying.load() != 0)
            Turntable().RightUp();
        // The transport turns first (its readers stop and start, serving
        // this window's messages meanwhile), then the output.
        transport_->SetReverse(true);
        SendAppMessage(mainMixer_, UWM_FORWARD_PLAY, deck_, 0);
        SendAppMessage(mainMixer_, UWM_START_REVERSE_THREAD, deck_, 0);
    } else {
        transport_->SetReverse(false);
        SendAppMessage(mainMixer_, UWM_STOP_REVERSE, deck_, 0);
        // The forward ring resumes where the reverse one had got to.
        SendAppMessage(mainMixer_, UWM_SET_FORWARD_POSITION, deck_,
                       transport_->ForwardResumeBlocks());
        SendAppMessage(mainMixer_, UWM_FORWARD_PLAY, deck_, 1);
    }
    transport_->RestartElapsedCount();
}

void CRynDeck::WindPressed(bool fastForward, bool pressed) {
    (fastForward ? windForward_ : windBack_) = pressed;
    if (pressed) {
        progressFollowsPlay_ = false;
        StopBlink();
        SetWindowTimer(kWindTimer, 100);
        return;
    }
    if (windForward_ || windBack_)
        return;  // the other button is still held
    KillWindowTimer(kWindTimer);
    Reposition(progress_->Value());
}

void CRynDeck::WindTick() {
    const double step = tracktime::WindStep(source_->TrackSeconds());
    if (windForward_)
        progress_->SetValue(progress_->Value() + step);
    else if (windBack_)
        progress_->SetValue(progress_->Value() - step);
}

void CRynDeck::Reposition(double fraction) {
    if (TrackNameText() == QLatin1String(DeckSource::kNoTrack))
        return;
    trackEnded_ = false;
    const bool wasDown = NeedleDown();
    if (wasDown)
        LiftNeedle();
    transport_->StopReading();
    fraction = std::clamp(std::isfinite(fraction) ? fraction : 0.0, 0.0, 1.0);
    source_->SeekFraction(fraction, transport_->EndOfTrackPending());
    transport_->SetElapsedSeconds(fraction * source_->TrackSeconds());
    if (Rotating())
        transport_->StartReading();
    if (wasDown) {
        redropCount_ = 0;
        SetWindowTimer(kRedropTimer, 100);
    }
    progressFollowsPlay_ = true;
}

void CRynDeck::RedropTick() {
    ++redropCount_;
    // Only once the output is primed again: a needle dropped before the new
    // first fill would start buffers that the fill then rebuilds.
    if (dropLift_->isEnabled() && Rotating() && dropLift_->Caption() == QLatin1String("drop") &&
        transport_->Primed()) {
        KillWindowTimer(kRedropTimer);
        DropNeedle();
        return;
    }
    if (redropCount_ > 50)
        KillWindowTimer(kRedropTimer);
}

void CRynDeck::ProgressTick() {
    if (!progressFollowsPlay_)
        return;
    const double length = source_->TrackSeconds();
    if (length <= 0)
        return;
    if (transport_->IsReverse()) {
        progress_->SetValue(source_->SourceSeconds() / length);
        return;
    }
    const double elapsed = transport_->FollowForwardPlay(source_->SourceSeconds(), length);
    progress_->SetValue(std::clamp(elapsed / length, 0.0, 1.0));
}

void CRynDeck::UpdateTimeDisplay() {
    PlayList& list = List();
    std::vector<double> lengths;
    lengths.reserve(list.Count());
    for (int i = 0; i < list.Count(); ++i)
        lengths.push_back(list.Duration(i));
    const long seconds = tracktime::DisplayedSeconds(
        TimeModeCaption().toStdString(), progress_->Value(), lengths, list.CurrentIndex());
    timeDisplay_->setText(QString::fromStdString(tracktime::FormatHms(seconds)));
}

void CRynDeck::NextTimeDisplayMode() {
    const std::string next = tracktime::NextMode(TimeModeCaption().toStdString());
    SetTimeDisplayMode(QString::fromStdString(next));
    Settings().SetTimeDisplayMode(deck_, TimeModeCaption());
}

void CRynDeck::SetTimeDisplayMode(const QString& caption) {
    timeMode_->SetCaption(caption);
}

void CRynDeck::StartBlink() {
    blinkRed_ = false;
    SetWindowTimer(kBlinkTimer, 300);
}

void CRynDeck::StopBlink() {
    KillWindowTimer(kBlinkTimer);
    progress_->SetFillColor(kProgressGrey);
    blinkRed_ = false;
    transport_->CancelEndOfTrack();
}

void CRynDeck::BlinkTick() {
    blinkRed_ = !blinkRed_;
    progress_->SetFillColor(blinkRed_ ? kProgressRed : kProgressGrey);
}

void CRynDeck::OnTrackEnded() {
    trackEnded_ = true;
    if (Rotating())
        StopTurntable();
    StopBlink();
    progress_->SetValue(progress_->Maximum());
    UpdateTimeDisplay();
}
