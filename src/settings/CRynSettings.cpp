#include "settings/CRynSettings.h"

#include <QGuiApplication>
#include <QScreen>
#include <array>
#include <bit>

#include "settings/WindowDefaults.h"

namespace {

// Stems of the per-deck names ("turntableMode" + "DeckA").
const QString kMainMixerGraphType = QStringLiteral("mainMixerGraphType");
const QString kPhonesMixerGraphType = QStringLiteral("phonesMixerGraphType");
const QString kMetersEnabled = QStringLiteral("metersEnabled");
const QString kTimeDisplayMode = QStringLiteral("timeDisplayMode");
const QString kTurntableMode = QStringLiteral("turntableMode");
const QString kTurntable2DOr3D = QStringLiteral("turntable2DOr3D");
const QString kDeckGraphEnabled = QStringLiteral("deckGraphEnabled");
const QString kDeckGraphType = QStringLiteral("deckGraphType");
const QString kDeckGraphNumChannels = QStringLiteral("deckGraphNumChannels");
const QString kDeckGraphRangeEnabled = QStringLiteral("deckGraphRangeEnabled");
const QString kDeckPeakPowerMeterEnabled = QStringLiteral("deckPeakPowerMeterEnabled");
const QString kDeckScopeGain = QStringLiteral("deckScopeGainSettingName");
const QString kDeckBeatFindMode = QStringLiteral("deckBeatFindMode");
const QString kEqOnState = QStringLiteral("EqOnState");
const QString kEqClipProtectOnState = QStringLiteral("EqClipProtectOnState");
const QString kEqFilterType = QStringLiteral("EqFilterType");
const QString kEqLatencyInNotifies = QStringLiteral("EqLatencyInNotifies");
const QString kNumBandsInEqualizer = QStringLiteral("numBandsInEqualizer");
const QString kNumBandsInPlot = QStringLiteral("numBandsInPlot");

// Global names.
const QString kMainMixerGraphEnabledState = QStringLiteral("mainMixerGraphEnabledState");
const QString kMainMixerNumGraphs = QStringLiteral("mainMixerNumGraphs");
const QString kMainMixerXFaderCurveParameter = QStringLiteral("mainMixerXFaderCurveParameter");
const QString kPhonesMixerGraphEnabledState = QStringLiteral("phonesMixerGraphEnabledState");
const QString kPhonesMixerNumGraphs = QStringLiteral("phonesMixerNumGraphs");
const QString kScopeTriggerOnState = QStringLiteral("scopeTriggerOnState");
const QString kBeatLEDBandIndex = QStringLiteral("beatLEDBandIndex");
const QString kBeatLEDsEnabledState = QStringLiteral("beatLEDsEnabledState");
const QString kThreeDGraphEnabledState = QStringLiteral("threeDGraphEnabledState");
const QString kThreeDGraphJoinOrSplit = QStringLiteral("threeDGraphJoinOrSplit");
const QString kThreeDGraphMode = QStringLiteral("threeDGraphMode");
const QString kGraphNumberType = QStringLiteral("graphNumberType");
const QString kUseIntegersForGraphs = QStringLiteral("useIntegersForGraphs");
const QString kSoundDeviceMain = QStringLiteral("soundDeviceMain");
const QString kSoundDevicePhones = QStringLiteral("soundDevicePhones");
const QString kToolTipsOnSettingName = QStringLiteral("toolTipsOnSettingName");
const QString kTitleBarsOnState = QStringLiteral("titleBarsOnState");
const QString kShowTipOfTheDay = QStringLiteral("showTipOfTheDay");
const QString kTipOfTheDayIndex = QStringLiteral("tipOfTheDayIndex");

const QString kBars = QStringLiteral("Bars");
const QString kFloats = QStringLiteral("Floats");
const QString kInts = QStringLiteral("Ints");

constexpr float kDefaultLevel = 0.7f;

}  // namespace

QSize CRynSettings::PrimaryScreenSize() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (const QScreen* screen = QGuiApplication::primaryScreen()) {
            const QSize size = screen->availableSize();
            if (size.width() > 0 && size.height() > 0)
                return size;
        }
    }
    return {1024, 768};
}

CRynSettings::CRynSettings(SettingsStore& store, ScreenSizeSource screen)
    : store_(store), screen_(std::move(screen)) {}

// The default rule: a value missing (or of the wrong type) is written with its
// default, then read back, so a value that cannot be saved still holds.
bool CRynSettings::Flag(const QString& name, bool defaultValue) {
    if (std::optional<std::uint32_t> v = store_.FindNumber(name))
        return *v != 0;
    SetFlag(name, defaultValue);
    return store_.ReadNumber(name) != 0;
}

int CRynSettings::Number(const QString& name, int defaultValue) {
    if (std::optional<std::uint32_t> v = store_.FindNumber(name))
        return static_cast<int>(*v);
    SetNumber(name, defaultValue);
    return static_cast<int>(store_.ReadNumber(name));
}

float CRynSettings::Real(const QString& name, float defaultValue) {
    if (std::optional<std::uint32_t> v = store_.FindNumber(name))
        return std::bit_cast<float>(*v);
    store_.WriteReal(name, defaultValue);
    return store_.ReadReal(name);
}

QString CRynSettings::Text(const QString& name, const QString& defaultValue) {
    if (std::optional<QString> v = store_.FindText(name))
        return *v;
    store_.WriteText(name, defaultValue);
    return store_.ReadText(name);
}

void CRynSettings::ReadEverySetting() {
    SettingsStore::Batch batch(store_);
    GetMainMixerGraphEnabledState();
    GetMainMixerNumGraphs();
    GetMainMixerXFaderCurveParameter();
    GetPhonesMixerGraphEnabledState();
    GetPhonesMixerNumGraphs();
    GetScopeTriggerOnState();
    GetBeatLEDBandIndex();
    GetBeatLEDsEnabledState();
    GetThreeDGraphEnabledState();
    GetThreeDGraphJoinOrSplit();
    GetThreeDGraphMode();
    GetGraphNumberType();
    GetUseIntegersForGraphs();
    GetSoundDeviceMain();
    GetSoundDevicePhones();
    GetToolTipsOnSettingName();
    GetTitleBarsOnState();
    GetShowTipOfTheDay();
    GetTipOfTheDayIndex();
    for (int deck = 0; deck < 2; ++deck) {
        GetMainMixerGraphType(deck);
        GetPhonesMixerGraphType(deck);
        GetMainDeckLevel(deck);
        GetPhonesDeckLevel(deck);
        GetMetersEnabled(deck);
        GetDeckMode(deck);
        GetTimeDisplayMode(deck);
        GetTurntableMode(deck);
        GetTurntable2DOr3D(deck);
        GetDeckGraphEnabled(deck);
        GetDeckGraphType(deck);
        GetDeckGraphNumChannels(deck);
        GetDeckGraphRangeEnabled(deck);
        GetDeckPeakPowerMeterEnabled(deck);
        GetDeckScopeGainSettingName(deck);
        GetDeckBeatFindMode(deck);
        for (int band = 0; band < kScopeBands; ++band)
            GetScopeBandOnState(deck, band);
        GetEqOnState(deck);
        GetEqClipProtectOnState(deck);
        GetEqFilterType(deck);
        GetEqLatencyInNotifies(deck);
        GetDeckEQType(deck);
        GetDeckEQNumberType(deck);
        GetNumBandsInEqualizer(deck);
        GetNumBandsInPlot(deck);
    }
}

// Main mixer.
bool CRynSettings::GetMainMixerGraphEnabledState() {
    return Flag(kMainMixerGraphEnabledState, true);
}
bool CRynSettings::SetMainMixerGraphEnabledState(bool on) {
    return SetFlag(kMainMixerGraphEnabledState, on);
}
int CRynSettings::GetMainMixerNumGraphs() {
    return Number(kMainMixerNumGraphs, 2);
}
bool CRynSettings::SetMainMixerNumGraphs(int n) {
    return SetNumber(kMainMixerNumGraphs, n);
}
QString CRynSettings::GetMainMixerGraphType(int deck) {
    return Text(DeckName(kMainMixerGraphType, deck), kBars);
}
bool CRynSettings::SetMainMixerGraphType(int deck, const QString& type) {
    return store_.WriteText(DeckName(kMainMixerGraphType, deck), type);
}
float CRynSettings::GetMainMixerXFaderCurveParameter() {
    return Real(kMainMixerXFaderCurveParameter, -1.0f);
}
bool CRynSettings::SetMainMixerXFaderCurveParameter(float c) {
    return store_.WriteReal(kMainMixerXFaderCurveParameter, c);
}

// Headphones mixer.
bool CRynSettings::GetPhonesMixerGraphEnabledState() {
    return Flag(kPhonesMixerGraphEnabledState, false);
}
bool CRynSettings::SetPhonesMixerGraphEnabledState(bool on) {
    return SetFlag(kPhonesMixerGraphEnabledState, on);
}
int CRynSettings::GetPhonesMixerNumGraphs() {
    return Number(kPhonesMixerNumGraphs, 2);
}
bool CRynSettings::SetPhonesMixerNumGraphs(int n) {
    return SetNumber(kPhonesMixerNumGraphs, n);
}
QString CRynSettings::GetPhonesMixerGraphType(int deck) {
    return Text(DeckName(kPhonesMixerGraphType, deck), kBars);
}
bool CRynSettings::SetPhonesMixerGraphType(int deck, const QString& type) {
    return store_.WriteText(DeckName(kPhonesMixerGraphType, deck), type);
}

// Levels.
float CRynSettings::GetMainDeckLevel(int deck) {
    return GetDeckLevel(0, deck);
}
bool CRynSettings::SetMainDeckLevel(int deck, float level) {
    return SetDeckLevel(0, deck, level);
}
float CRynSettings::GetPhonesDeckLevel(int deck) {
    return GetDeckLevel(1, deck);
}
bool CRynSettings::SetPhonesDeckLevel(int deck, float level) {
    return SetDeckLevel(1, deck, level);
}
float CRynSettings::GetDeckLevel(int mixer, int deck) {
    return Real(LevelName(mixer, deck), kDefaultLevel);
}
bool CRynSettings::SetDeckLevel(int mixer, int deck, float level) {
    return store_.WriteReal(LevelName(mixer, deck), level);
}
bool CRynSettings::GetMetersEnabled(int deck) {
    return Flag(DeckName(kMetersEnabled, deck), true);
}
bool CRynSettings::SetMetersEnabled(int deck, bool on) {
    return SetFlag(DeckName(kMetersEnabled, deck), on);
}

// Deck.
int CRynSettings::GetDeckMode(int deck) {
    return Number(DeckModeName(deck), 1);
}
bool CRynSettings::SetDeckMode(int deck, int mode) {
    return SetNumber(DeckModeName(deck), mode);
}
QString CRynSettings::GetTimeDisplayMode(int deck) {
    return Text(DeckName(kTimeDisplayMode, deck), QStringLiteral("Elapsed In Track:"));
}
bool CRynSettings::SetTimeDisplayMode(int deck, const QString& mode) {
    return store_.WriteText(DeckName(kTimeDisplayMode, deck), mode);
}
QString CRynSettings::GetTurntableMode(int deck) {
    return Text(DeckName(kTurntableMode, deck), QStringLiteral("Drop"));
}
bool CRynSettings::SetTurntableMode(int deck, const QString& mode) {
    return store_.WriteText(DeckName(kTurntableMode, deck), mode);
}
QString CRynSettings::GetTurntable2DOr3D(int deck) {
    return Text(DeckName(kTurntable2DOr3D, deck), QStringLiteral("3D"));
}
bool CRynSettings::SetTurntable2DOr3D(int deck, const QString& drawing) {
    return store_.WriteText(DeckName(kTurntable2DOr3D, deck), drawing);
}

// Deck graph and scope.
bool CRynSettings::GetDeckGraphEnabled(int deck) {
    return Flag(DeckName(kDeckGraphEnabled, deck), true);
}
bool CRynSettings::SetDeckGraphEnabled(int deck, bool on) {
    return SetFlag(DeckName(kDeckGraphEnabled, deck), on);
}
QString CRynSettings::GetDeckGraphType(int deck) {
    return Text(DeckName(kDeckGraphType, deck), kBars);
}
bool CRynSettings::SetDeckGraphType(int deck, const QString& type) {
    return store_.WriteText(DeckName(kDeckGraphType, deck), type);
}
int CRynSettings::GetDeckGraphNumChannels(int deck) {
    return Number(DeckName(kDeckGraphNumChannels, deck), 1);
}
bool CRynSettings::SetDeckGraphNumChannels(int deck, int n) {
    return SetNumber(DeckName(kDeckGraphNumChannels, deck), n);
}
bool CRynSettings::GetDeckGraphRangeEnabled(int deck) {
    return Flag(DeckName(kDeckGraphRangeEnabled, deck), true);
}
bool CRynSettings::SetDeckGraphRangeEnabled(int deck, bool on) {
    return SetFlag(DeckName(kDeckGraphRangeEnabled, deck), on);
}
bool CRynSettings::GetDeckPeakPowerMeterEnabled(int deck) {
    return Flag(DeckName(kDeckPeakPowerMeterEnabled, deck), true);
}
bool CRynSettings::SetDeckPeakPowerMeterEnabled(int deck, bool on) {
    return SetFlag(DeckName(kDeckPeakPowerMeterEnabled, deck), on);
}
float CRynSettings::GetDeckScopeGainSettingName(int deck) {
    return Real(DeckName(kDeckScopeGain, deck), 1.0f);
}
bool CRynSettings::SetDeckScopeGainSettingName(int deck, float gain) {
    return store_.WriteReal(DeckName(kDeckScopeGain, deck), gain);
}
QString CRynSettings::GetDeckBeatFindMode(int deck) {
    return Text(DeckName(kDeckBeatFindMode, deck), QStringLiteral("Auto"));
}
bool CRynSettings::SetDeckBeatFindMode(int deck, const QString& mode) {
    return store_.WriteText(DeckName(kDeckBeatFindMode, deck), mode);
}
bool CRynSettings::GetScopeBandOnState(int deck, int band) {
    return Flag(ScopeBandName(deck, band), true);
}
bool CRynSettings::SetScopeBandOnState(int deck, int band, bool on) {
    return SetFlag(ScopeBandName(deck, band), on);
}
bool CRynSettings::GetScopeTriggerOnState() {
    return Flag(kScopeTriggerOnState, true);
}
bool CRynSettings::SetScopeTriggerOnState(bool on) {
    return SetFlag(kScopeTriggerOnState, on);
}
int CRynSettings::GetBeatLEDBandIndex() {
    return Number(kBeatLEDBandIndex, 1);
}
bool CRynSettings::SetBeatLEDBandIndex(int band) {
    return SetNumber(kBeatLEDBandIndex, band);
}
bool CRynSettings::GetBeatLEDsEnabledState() {
    return Flag(kBeatLEDsEnabledState, true);
}
bool CRynSettings::SetBeatLEDsEnabledState(bool on) {
    return SetFlag(kBeatLEDsEnabledState, on);
}

// Equalizer.
bool CRynSettings::GetEqOnState(int deck) {
    return Flag(DeckName(kEqOnState, deck), false);
}
bool CRynSettings::SetEqOnState(int deck, bool on) {
    return SetFlag(DeckName(kEqOnState, deck), on);
}
bool CRynSettings::GetEqClipProtectOnState(int deck) {
    return Flag(DeckName(kEqClipProtectOnState, deck), true);
}
bool CRynSettings::SetEqClipProtectOnState(int deck, bool on) {
    return SetFlag(DeckName(kEqClipProtectOnState, deck), on);
}
QString CRynSettings::GetEqFilterType(int deck) {
    return Text(DeckName(kEqFilterType, deck), QStringLiteral("Hanning"));
}
bool CRynSettings::SetEqFilterType(int deck, const QString& type) {
    return store_.WriteText(DeckName(kEqFilterType, deck), type);
}
int CRynSettings::GetEqLatencyInNotifies(int deck) {
    return Number(DeckName(kEqLatencyInNotifies, deck), 10);
}
bool CRynSettings::SetEqLatencyInNotifies(int deck, int notifies) {
    return SetNumber(DeckName(kEqLatencyInNotifies, deck), notifies);
}
int CRynSettings::GetDeckEQType(int deck) {
    return Number(EqTypeName(deck), 1);
}
bool CRynSettings::SetDeckEQType(int deck, int type) {
    return SetNumber(EqTypeName(deck), type);
}
int CRynSettings::GetDeckEQNumberType(int deck) {
    return Number(EqNumberTypeName(deck), 0);
}
bool CRynSettings::SetDeckEQNumberType(int deck, int type) {
    return SetNumber(EqNumberTypeName(deck), type);
}
int CRynSettings::GetNumBandsInEqualizer(int deck) {
    return Number(DeckName(kNumBandsInEqualizer, deck), 3);
}
bool CRynSettings::SetNumBandsInEqualizer(int deck, int bands) {
    return SetNumber(DeckName(kNumBandsInEqualizer, deck), bands);
}
int CRynSettings::GetNumBandsInPlot(int deck) {
    return Number(DeckName(kNumBandsInPlot, deck), 3);
}
bool CRynSettings::SetNumBandsInPlot(int deck, int bands) {
    return SetNumber(DeckName(kNumBandsInPlot, deck), bands);
}

// 3D graph.
bool CRynSettings::GetThreeDGraphEnabledState() {
    return Flag(kThreeDGraphEnabledState, false);
}
bool CRynSettings::SetThreeDGraphEnabledState(bool on) {
    return SetFlag(kThreeDGraphEnabledState, on);
}
QString CRynSettings::GetThreeDGraphJoinOrSplit() {
    return Text(kThreeDGraphJoinOrSplit, QStringLiteral("Split"));
}
bool CRynSettings::SetThreeDGraphJoinOrSplit(const QString& caption) {
    return store_.WriteText(kThreeDGraphJoinOrSplit, caption);
}
QString CRynSettings::GetThreeDGraphMode() {
    return Text(kThreeDGraphMode, QStringLiteral("3D Sound"));
}
bool CRynSettings::SetThreeDGraphMode(const QString& mode) {
    return store_.WriteText(kThreeDGraphMode, mode);
}

// Configuration.
QString CRynSettings::GetGraphNumberType() {
    if (std::optional<QString> v = store_.FindText(kGraphNumberType))
        return *v;
    SetGraphNumberType(kFloats);
    return store_.ReadText(kGraphNumberType);
}
bool CRynSettings::SetGraphNumberType(const QString& type) {
    if (type != kFloats && type != kInts)
        return false;
    return store_.WriteText(kGraphNumberType, type);
}
bool CRynSettings::GetUseIntegersForGraphs() {
    return Flag(kUseIntegersForGraphs, false);
}
bool CRynSettings::SetUseIntegersForGraphs(bool on) {
    return SetFlag(kUseIntegersForGraphs, on);
}
QString CRynSettings::GetSoundDeviceMain() {
    return store_.ReadText(kSoundDeviceMain);
}
bool CRynSettings::SetSoundDeviceMain(const QString& description) {
    return store_.WriteText(kSoundDeviceMain, description);
}
QString CRynSettings::GetSoundDevicePhones() {
    return store_.ReadText(kSoundDevicePhones);
}
bool CRynSettings::SetSoundDevicePhones(const QString& description) {
    return store_.WriteText(kSoundDevicePhones, description);
}
bool CRynSettings::GetToolTipsOnSettingName() {
    return Flag(kToolTipsOnSettingName, true);
}
bool CRynSettings::SetToolTipsOnSettingName(bool on) {
    return SetFlag(kToolTipsOnSettingName, on);
}
bool CRynSettings::GetTitleBarsOnState() {
    return Flag(kTitleBarsOnState, true);
}
bool CRynSettings::SetTitleBarsOnState(bool on) {
    return SetFlag(kTitleBarsOnState, on);
}

// Tip of the day.
bool CRynSettings::GetShowTipOfTheDay() {
    return Flag(kShowTipOfTheDay, true);
}
bool CRynSettings::SetShowTipOfTheDay(bool on) {
    return SetFlag(kShowTipOfTheDay, on);
}
int CRynSettings::GetTipOfTheDayIndex() {
    return Number(kTipOfTheDayIndex, 0);
}
bool CRynSettings::SetTipOfTheDayIndex(int index) {
    return SetNumber(kTipOfTheDayIndex, index);
}

// Window records.
WindowRect CRynSettings::DefaultRect(SettingsWindow window, int deck, bool lowRes) {
    return DefaultWindowRect(window, deck, lowRes, screen_ ? screen_() : PrimaryScreenSize());
}

WindowRect CRynSettings::ReadWindowRect(SettingsWindow window, int deck, bool lowRes) {
    const std::array<QString, 4> names = {
        PositionName(window, deck, WindowField::Left, lowRes),
        PositionName(window, deck, WindowField::Top, lowRes),
        PositionName(window, deck, WindowField::Right, lowRes),
        PositionName(window, deck, WindowField::Bottom, lowRes),
    };
    std::array<std::optional<std::uint32_t>, 4> stored;
    for (int i = 0; i < 4; ++i)
        stored[i] = store_.FindNumber(names[i]);
    const bool complete = stored[0] && stored[1] && stored[2] && stored[3];
    if (complete)
        return {static_cast<int>(*stored[0]), static_cast<int>(*stored[1]),
                static_cast<int>(*stored[2]), static_cast<int>(*stored[3])};
    WriteWindowRect(window, deck, lowRes, DefaultRect(window, deck, lowRes));
    auto read = [&](int i) { return static_cast<int>(store_.ReadNumber(names[i])); };
    return {read(0), read(1), read(2), read(3)};
}

bool CRynSettings::WriteWindowRect(SettingsWindow window, int deck, bool lowRes,
                                   const WindowRect& rect) {
    SettingsStore::Batch batch(store_);
    bool ok = SetNumber(PositionName(window, deck, WindowField::Left, lowRes), rect.left);
    ok = SetNumber(PositionName(window, deck, WindowField::Top, lowRes), rect.top) && ok;
    ok = SetNumber(PositionName(window, deck, WindowField::Right, lowRes), rect.right) && ok;
    ok = SetNumber(PositionName(window, deck, WindowField::Bottom, lowRes), rect.bottom) && ok;
    return batch.Commit() && ok;
}

bool CRynSettings::ReadHasMoved(SettingsWindow window, int deck) {
    return Flag(PositionName(window, deck, WindowField::HasMoved, false), false);
}

bool CRynSettings::WriteHasMoved(SettingsWindow window, int deck, bool moved) {
    return SetFlag(PositionName(window, deck, WindowField::HasMoved, false), moved);
}

int CRynSettings::ReadOrdinal(SettingsWindow window, int deck) {
    return static_cast<int>(
        store_.ReadNumber(PositionName(window, deck, WindowField::Ordinal, false)));
}

bool CRynSettings::WriteOrdinal(SettingsWindow window, int deck, int ordinal) {
    return SetNumber(PositionName(window, deck, WindowField::Ordinal, false), ordinal);
}

bool CRynSettings::ReadShow(SettingsWindow window, int deck, bool lowRes) {
    return Flag(ShowName(window, deck, lowRes), DefaultShown(window));
}

bool CRynSettings::WriteShow(SettingsWindow window, int deck, bool lowRes, bool shown) {
    return SetFlag(ShowName(window, deck, lowRes), shown);
}

CRynSettings& Settings() {
    static SettingsStore store(SettingsStore::DefaultPath());
    static CRynSettings settings(store);
    return settings;
}
