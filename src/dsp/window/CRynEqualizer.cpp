// The equalizer window: start-up, stored settings, the block routine's entry,
// the on and anti-clip buttons, the equalizer type and the window's messages.
#include "dsp/window/CRynEqualizer.h"

#include <QCloseEvent>
#include <QComboBox>
#include <bit>
#include <type_traits>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "dsp/window/EqualizerComponents.h"
#include "settings/CRynSettings.h"

CRynEqualizer::CRynEqualizer(QWidget* parent) : CRynWindow("CRynEqualizer", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("Equalizer"));
    resize(580, 420);
    BuildControls();
    WireControls();
    // The engines are never left without bands: the settings' defaults until
    // the host applies the stored ones.
    engines_.SetWindowType("Hanning");
    SetBandCount(3, true);
}

CRynEqualizer::~CRynEqualizer() = default;

void CRynEqualizer::Initialise(int deck, WindowHandle deckWindow) {
    deck_ = deck == 1 ? 1 : 0;
    deckWindow_ = deckWindow;
    setWindowTitle(QStringLiteral("Equalizer Deck %1").arg(QChar('A' + deck_)));
    RegisterEqualizerComponents(*this);
}

void CRynEqualizer::ApplyStoredSettings() {
    CRynSettings& s = Settings();
    if (s.GetDeckEQType(deck_) == 0)
        SetEqualizerType(EqType::Device);

    // The design window first, so that the band count designs with it.
    const QString filter = s.GetEqFilterType(deck_);
    const int entry = filterType_->findText(filter, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (entry >= 0) {
        const QSignalBlocker quiet(filterType_);
        filterType_->setCurrentIndex(entry);
        engines_.SetWindowType(filter.toStdString());
    }
    const int n = s.GetNumBandsInEqualizer(deck_);
    if (n == 2 || n == 3 || n == 6)
        SetBandCount(n, true);
    else if (n == 12)
        ChooseBandCount(12);
    else if (entry >= 0)
        SetBandCount(bandCount_, false);

    antiClip_->SetValue(s.GetEqClipProtectOnState(deck_));
    onButton_->SetValue(s.GetEqOnState(deck_));
}

// ------------------------------------------------------------ block routine

bool CRynEqualizer::IsOn() const {
    return onButton_->Value();
}

void CRynEqualizer::ProcessStereo(std::int16_t* left, std::int16_t* right, bool writeBack) {
    ProcessStereoOf(left, right, writeBack);
}

void CRynEqualizer::ProcessStereo(float* left, float* right, bool writeBack) {
    ProcessStereoOf(left, right, writeBack);
}

template <typename Sample>
void CRynEqualizer::ProcessStereoOf(Sample* left, Sample* right, bool writeBack) {
    const bool antiClip = antiClip_->Value();
    const bool clipped = engines_.ProcessStereo(left, right, writeBack, antiClip);
    if (!antiClip)
        return;
    ShowClipColour(clipped);
    constexpr bool ints = std::is_same_v<Sample, std::int16_t>;
    for (int b = 0; b < bandCount_ && b < kLevelSlides; ++b)
        levels_[b]->SetPointerValue(1, engines_.EffectiveGain(ints, b));
}

void CRynEqualizer::SetIntegerArithmetic(bool ints) {
    if (ints == ints_)
        return;
    ints_ = ints;
    DrawAllBands();
    DrawTotal();
}

// ------------------------------------------------------------ buttons

void CRynEqualizer::ChooseBandCount(int n) {
    if (n == 12) {
        // Designing twelve long filters takes a while: the decks are asked
        // for their longest latency first, and the bands follow 750 ms later.
        bandCount_ = 12;
        Settings().SetNumBandsInEqualizer(deck_, 12);
        PostAppMessageRetry(deckWindow_, UWM_LATENCY_MAXIMUM, static_cast<WParam>(deck_), 0);
        SetWindowTimer(kBandsTimer, kBandsDelayMs, true);
        return;
    }
    if (n != 2 && n != 3 && n != 6)
        return;
    Settings().SetNumBandsInEqualizer(deck_, n);
    SetBandCount(n, true);
}

void CRynEqualizer::DelayedBandCountDue() {
    KillWindowTimer(kBandsTimer);
    SetBandCount(bandCount_, true);
    PostAppMessageRetry(deckWindow_, UWM_LATENCY_MAXIMUM, static_cast<WParam>(deck_), 1);
}

bool CRynEqualizer::TapChangePending() const {
    return WindowTimerActive(kTapsTimer);
}

void CRynEqualizer::SendToMainMixer(Uwm msg, WParam wParam, LParam lParam, bool post) {
    const WindowHandle mixer = Engine().mainMixerWindow;
    if (mixer == 0)
        return;
    if (post)
        PostAppMessageRetry(mixer, msg, wParam, lParam);
    else
        SendAppMessage(mixer, msg, wParam, lParam);
}

// ------------------------------------------------------------ type

void CRynEqualizer::SetEqualizerType(EqType type) {
    if (type == type_)
        return;
    if (type == EqType::Device) {
        type_ = EqType::Device;
        ShowTypeControls();
        LayOut();
        DrawAllBands();
        DrawTotal();
        return;
    }
    // Back to the own equalizer: the device's bands go to 0 and its
    // equalizer off, then the own bands start flat.
    for (int b = 0; b < kLevelSlides; ++b)
        levels_[b]->SetValue(0.0);
    type_ = EqType::Own;
    isolate_->SetCaption(QStringLiteral("Isolate -->"));
    ShowTypeControls();
    LayOut();
    SendToMainMixer(UWM_DEVICE_EQ_ON, static_cast<WParam>(deck_), 0, false);
    SetBandCount(bandCount_, true);
}

// ------------------------------------------------------------ window events

void CRynEqualizer::OnWindowTimer(int id) {
    if (id == kBandsTimer)
        DelayedBandCountDue();
    else if (id == kTapsTimer)
        ApplyTapCount();
}

void CRynEqualizer::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}

void CRynEqualizer::changeEvent(QEvent* event) {
    CRynWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || deckWindow_ == 0)
        return;
    // While the user works the equalizer the decks play at the user's
    // latency setting, so a change is heard soon; otherwise at a quarter of
    // the top of the latency range.
    PostAppMessageRetry(deckWindow_, UWM_LATENCY_QUARTER_REQUEST, static_cast<WParam>(deck_),
                        isActiveWindow() ? 1 : 0);
}
