#include "output/mixer/CRynHeadphonesMixer.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMessageBox>
#include <cstdint>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "output/laws/MasterLine.h"
#include "output/mixer/HeadphonesMixerComponents.h"
#include "platform/sound/SoundDevice.h"
#include "settings/CRynSettings.h"

namespace {

void ShowMessageBox(const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Mixora"), text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}

}  // namespace

CRynHeadphonesMixer::CRynHeadphonesMixer(QWidget* parent)
    : CRynWindow("CRynHeadphonesMixer", kTemplateId, parent), showMessage(ShowMessageBox) {
    setWindowTitle(QStringLiteral("Headphones Mixer"));
    BuildControls();
    LayOut();
    // No device yet: the volume rests at 0 and cannot be moved.
    volume_->SetValue(0.0);
    volume_->setEnabled(false);
    crossFader_->SetValue(0.0);
    Connect();
    SetUpDeviceWatch();
    status_->setText(QStringLiteral("No headphones device"));
    resize(300, 300);
    RegisterHeadphonesMixerComponents(*this);
}

CRynHeadphonesMixer::~CRynHeadphonesMixer() {
    output_.ReleaseAll();
}

void CRynHeadphonesMixer::Initialise(WindowHandle mainMixer) {
    mainMixer_ = mainMixer;
    CRynSettings& s = Settings();
    loading_ = true;
    for (int deck = 0; deck < 2; ++deck) {
        levels_[deck]->SetValue(s.GetPhonesDeckLevel(deck));
        const QString type = s.GetPhonesMixerGraphType(deck);
        plotTypes_[deck]->SetValue(type == plotTypes_[deck]->OnText());
    }
    // Off unless stored on: a double click on a graph keeps it alone, and
    // the next start shows the same choice.
    const bool plots = s.GetPhonesMixerGraphEnabledState();
    SetPlotOn(0, plots);
    SetPlotOn(1, plots);
    const bool two = s.GetPhonesMixerNumGraphs() != 1;
    plotCount_->SetValue(two);
    OnPlotCount(two);
    loading_ = false;
    ApplyMix();
}

void CRynHeadphonesMixer::SetDeckColours(int deck, const QColor& first, const QColor& second) {
    if (deck < 0 || deck > 1)
        return;
    colours_[deck] = {first, second};
    levels_[deck]->SetPointerColor(0, first);
    levels_[deck]->SetFillColor(second);
    ShapePlot(0);
    ShapePlot(1);
    update();
}

bool CRynHeadphonesMixer::OpenDevice(const std::string& identifier) {
    stalledEngine_.reset();
    WatchDevice(std::string());
    if (identifier.empty()) {
        output_.ReleaseAll();
        output_.CloseDevice();
        volume_->SetValue(0.0);
        volume_->setEnabled(false);
        status_->setText(QStringLiteral("No headphones device"));
        return true;
    }
    const SoundStatus s = output_.OpenDevice(identifier, identifier, Handle(), false);
    if (s != kStatusOk || !output_.HasDevice()) {
        Lose(QStringLiteral("The headphones device \"%1\" could not be opened; the headphones "
                            "are off.")
                 .arg(QString::fromStdString(identifier)));
        return false;
    }
    WatchDevice(identifier);
    return Opened(QString::fromStdString(output_.Device()->Description()));
}

bool CRynHeadphonesMixer::OpenDevice(std::unique_ptr<sound::SoundDevice> device) {
    stalledEngine_.reset();
    if (!device)
        return OpenDevice(std::string());
    WatchDevice(std::string());
    const std::string identifier = device->Identifier();
    const QString name = QString::fromStdString(device->Description());
    if (output_.OpenDevice(std::move(device), Handle()) != kStatusOk) {
        Lose(QStringLiteral("The headphones device could not be opened; the headphones are off."));
        return false;
    }
    WatchDevice(identifier);
    return Opened(name);
}

bool CRynHeadphonesMixer::Opened(const QString& name) {
    for (int deck = 0; deck < kDeckCount; ++deck) {
        sync_.Reset(deck);
        lastCursor_[deck] = -1;
        stalled_[deck] = 0;
    }
    volume_->setEnabled(true);
    const double volume = (output_.MasterLeftPercent() + output_.MasterRightPercent()) * 0.005;
    if (volume_->Value() == volume)
        OnVolumeMoved();
    else
        volume_->SetValue(volume);
    if (crossFader_->Value() == 0.0)
        ApplyMix();
    else
        crossFader_->SetValue(0.0);
    status_->setText(QStringLiteral("Headphones on %1").arg(name));
    return true;
}

void CRynHeadphonesMixer::Lose(const QString& message, bool stalled) {
    output_.ReleaseAll();
    if (stalled)
        stalledEngine_ = output_.DetachEngine();
    else
        output_.CloseDevice();
    volume_->SetValue(0.0);
    volume_->setEnabled(false);
    status_->setText(message);
    if (showMessage)
        showMessage(message);
}

bool CRynHeadphonesMixer::IsActive() const {
    return volume_->isEnabled();
}

QString CRynHeadphonesMixer::StatusText() const {
    return status_->text();
}

void CRynHeadphonesMixer::SetCurve(float c) {
    gains_.SetCurve(c);
    ApplyMix();
}

void CRynHeadphonesMixer::ApplyMix() {
    gains_.MoveTo(CrossFader());
    const float levels[2] = {Level(0), Level(1)};
    output_.ApplyCrossFader(gains_, levels);
}

void CRynHeadphonesMixer::ApplyPan(int deck) {
    output_.SetDeckPan(deck, Balance(deck));
}

void CRynHeadphonesMixer::OnLevelMoved(int deck) {
    ApplyMix();
    if (!loading_)
        Settings().SetPhonesDeckLevel(deck, Level(deck));
}

void CRynHeadphonesMixer::OnVolumeMoved() {
    if (!output_.HasDevice())
        return;
    const LinePercent line = MasterLineLevels(volume_->Value(), 0.0);
    output_.SetMasterGain(line.left, line.right);
}

void CRynHeadphonesMixer::OnSeparateEars(bool on) {
    if (on) {
        balances_[0]->SetValue(balances_[0]->Minimum());
        balances_[1]->SetValue(balances_[1]->Maximum());
    } else {
        balances_[0]->SetValue(0.0);
        balances_[1]->SetValue(0.0);
    }
}

HeadphonesSync::Step CRynHeadphonesMixer::SyncToMain(int deck, int mainCursor, double nowSeconds,
                                                     double deckRate) {
    deck = deck == 1 ? 1 : 0;
    NoteStall(deck);
    if (!IsActive())
        return {};
    const HeadphonesSync::Step step = sync_.SyncToMain(output_, deck, mainCursor, nowSeconds);
    lastCursor_[deck] = output_.ForwardPlayCursor(deck).bytes;
    DeckSharedState& d = Engine().decks[deck];
    d.headphonesDrift.store(static_cast<std::int16_t>(step.drift));
    d.headphonesFrequency.store(output_.ForwardFrequency(deck));
    d.mainDeckRate.store(static_cast<std::int32_t>(deckRate));
    return step;
}

void CRynHeadphonesMixer::NoteStall(int deck) {
    // A playing buffer whose cursor has not moved since the last step while
    // the main device moved on: the headphones device has stopped (unplugged,
    // its sound server gone). The manual clock of tests moves only on demand;
    // a watched device's own watchdog tells its loss to the device watch.
    if (!output_.IsForwardPlaying(deck) || output_.Device() == nullptr ||
        output_.Device()->IsManualClock() || !watch_.Watched().empty()) {
        lastCursor_[deck] = -1;
        stalled_[deck] = 0;
        return;
    }
    const int cursor = output_.ForwardPlayCursor(deck).bytes;
    stalled_[deck] = cursor == lastCursor_[deck] ? stalled_[deck] + 1 : 0;
    if (stalled_[deck] >= kStalledSteps)
        Lose(QStringLiteral("The headphones device stopped playing; the headphones are off."),
             true);
}

void CRynHeadphonesMixer::SetLevel(int deck, float level) {
    LevelSlide(deck)->SetValue(level);
}

void CRynHeadphonesMixer::SetBalance(int deck, float balance) {
    BalanceSlide(deck)->SetValue(balance);
}

void CRynHeadphonesMixer::SetCrossFader(float position) {
    crossFader_->SetValue(position);
}

void CRynHeadphonesMixer::SetVolume(float volume) {
    volume_->SetValue(volume);
}

void CRynHeadphonesMixer::SetSeparateEars(bool on) {
    separateEars_->SetValue(on);
}

void CRynHeadphonesMixer::ToggleSeparateEars() {
    separateEars_->SetValue(!separateEars_->Value());
}

float CRynHeadphonesMixer::Level(int deck) const {
    return static_cast<float>(LevelSlide(deck)->Value());
}

float CRynHeadphonesMixer::Balance(int deck) const {
    return static_cast<float>(BalanceSlide(deck)->Value());
}

float CRynHeadphonesMixer::CrossFader() const {
    return static_cast<float>(crossFader_->Value());
}

float CRynHeadphonesMixer::Volume() const {
    return static_cast<float>(volume_->Value());
}

bool CRynHeadphonesMixer::SeparateEars() const {
    return separateEars_->Value();
}

void CRynHeadphonesMixer::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, 0);
}
