// The settings table: one row per setting, holding its stored name, its type
// and its default. The rows make CRynSettings' getters and setters, its
// start-up read of every setting and the setting numbers below.
//
// A row is KIND(Accessor, "stored name", Type, default):
//  - KIND: ONE (one value for the program), DECK (one value per deck), BAND
//    (one value per deck and scope band group, kScopeBandGroups of them).
//  - Accessor: the setting's number Setting::Accessor and its accessors
//    CRynSettings::GetAccessor / SetAccessor; per-deck settings take the deck
//    (0 = A, 1 = B) first, band settings then the band.
//  - stored name: "@" stands for the deck letter, "#" for the band (decimal,
//    from 0), so "deck@EQType" is stored as "deckAEQType" and "deckBEQType",
//    and "scopeBandOnState#Deck@" as "scopeBandOnState2DeckA" and so on.
//  - Type: Flag (a Number, written 0 or 1, read as value != 0), Number (32
//    bits, read as int), Real (a 32-bit float kept bit-exact in a Number's
//    bit pattern) or Text.
//  - default: written by a getter that finds the value missing or of the
//    wrong type, then read back. OneOf("a", "b") is a text that only takes
//    those values (the first is the default; the setter refuses any other);
//    NoDefault is read as found (a missing text reads empty, a number 0).
#pragma once

#include <QString>
#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

// clang-format off
#define MIXORA_SETTINGS(ONE, DECK, BAND)                                                          \
    /* Main mixer. */                                                                             \
    ONE (MainMixerGraphEnabledState,      "mainMixerGraphEnabledState",      Flag,   true)          \
    ONE (MainMixerNumGraphs,              "mainMixerNumGraphs",              Number, 2)             \
    DECK(MainMixerGraphType,              "mainMixerGraphTypeDeck@",         Text,   "Bars")        \
    ONE (MainMixerXFaderCurveParameter,   "mainMixerXFaderCurveParameter",   Real,   -1.0f)         \
    /* Headphones mixer. */                                                                       \
    ONE (PhonesMixerGraphEnabledState,    "phonesMixerGraphEnabledState",    Flag,   false)         \
    ONE (PhonesMixerNumGraphs,            "phonesMixerNumGraphs",            Number, 2)             \
    DECK(PhonesMixerGraphType,            "phonesMixerGraphTypeDeck@",       Text,   "Bars")        \
    /* Deck levels 0 ... 1 in the main and the headphones mix. */                                 \
    DECK(MainDeckLevel,                   "mainDeck@Level",                  Real,   0.7f)          \
    DECK(PhonesDeckLevel,                 "phonesDeck@Level",                Real,   0.7f)          \
    DECK(MetersEnabled,                   "metersEnabledDeck@",              Flag,   true)          \
    /* Deck: mode 1 = File mode, 0 = CD mode. */                                                  \
    DECK(DeckMode,                        "deck@Mode",                       Number, 1)             \
    DECK(TimeDisplayMode,                 "timeDisplayModeDeck@",            Text,   "Elapsed In Track:") \
    DECK(TurntableMode,                   "turntableModeDeck@",              Text,   "Drop")        \
    DECK(Turntable2DOr3D,                 "turntable2DOr3DDeck@",            Text,   "3D")          \
    /* Deck graph and scope. */                                                                   \
    DECK(DeckGraphEnabled,                "deckGraphEnabledDeck@",           Flag,   true)          \
    DECK(DeckGraphType,                   "deckGraphTypeDeck@",              Text,   "Bars")        \
    DECK(DeckGraphNumChannels,            "deckGraphNumChannelsDeck@",       Number, 1)             \
    DECK(DeckGraphRangeEnabled,           "deckGraphRangeEnabledDeck@",      Flag,   true)          \
    DECK(DeckPeakPowerMeterEnabled,       "deckPeakPowerMeterEnabledDeck@",  Flag,   true)          \
    DECK(DeckScopeGainSettingName,        "deckScopeGainSettingNameDeck@",   Real,   1.0f)          \
    DECK(DeckBeatFindMode,                "deckBeatFindModeDeck@",           Text,   "Auto")        \
    BAND(ScopeBandOnState,                "scopeBandOnState#Deck@",          Flag,   true)          \
    ONE (ScopeTriggerOnState,             "scopeTriggerOnState",             Flag,   true)          \
    ONE (BeatLEDBandIndex,                "beatLEDBandIndex",                Number, 1)             \
    ONE (BeatLEDsEnabledState,            "beatLEDsEnabledState",            Flag,   true)          \
    /* Equalizer: latency in output notifications; type 1 = "Orvane", 0 = "Direct Sound";     */ \
    /* number type 0 = "Floats", 1 = "Ints".                                                   */ \
    DECK(EqOnState,                       "EqOnStateDeck@",                  Flag,   false)         \
    DECK(EqClipProtectOnState,            "EqClipProtectOnStateDeck@",       Flag,   true)          \
    DECK(EqFilterType,                    "EqFilterTypeDeck@",               Text,   "Hanning")     \
    DECK(EqLatencyInNotifies,             "EqLatencyInNotifiesDeck@",        Number, 10)            \
    DECK(DeckEQType,                      "deck@EQType",                     Number, 1)             \
    DECK(DeckEQNumberType,                "deck@EQNumberType",               Number, 0)             \
    DECK(NumBandsInEqualizer,             "numBandsInEqualizerDeck@",        Number, 3)             \
    DECK(NumBandsInPlot,                  "numBandsInPlotDeck@",             Number, 3)             \
    /* 3D graph; the join or split caption is stored as the button shows it. */                   \
    ONE (ThreeDGraphEnabledState,         "threeDGraphEnabledState",         Flag,   false)         \
    ONE (ThreeDGraphJoinOrSplit,          "threeDGraphJoinOrSplit",          Text,   "Split")       \
    ONE (ThreeDGraphMode,                 "threeDGraphMode",                 Text,   "3D Sound")    \
    /* Configuration; the sound devices are empty until one is chosen. */                         \
    ONE (GraphNumberType,                 "graphNumberType",                 Text,   OneOf("Floats", "Ints")) \
    ONE (UseIntegersForGraphs,            "useIntegersForGraphs",            Flag,   false)         \
    ONE (SoundDeviceMain,                 "soundDeviceMain",                 Text,   NoDefault)     \
    ONE (SoundDevicePhones,               "soundDevicePhones",               Text,   NoDefault)     \
    ONE (ToolTipsOnSettingName,           "toolTipsOnSettingName",           Flag,   true)          \
    ONE (TitleBarsOnState,                "titleBarsOnState",                Flag,   true)          \
    /* Tip of the day. */                                                                         \
    ONE (ShowTipOfTheDay,                 "showTipOfTheDay",                 Flag,   true)          \
    ONE (TipOfTheDayIndex,                "tipOfTheDayIndex",                Number, 0)
// clang-format on

enum class SettingType { Flag, Number, Real, Text };
enum class SettingScope { One, Deck, Band };

inline constexpr int kScopeBandGroups = 3;  // scope band groups per deck

// A row's default, as the table writes it; the constructor used tells its type.
struct SettingDefault {
    SettingType type = SettingType::Text;
    std::uint32_t number = 0;           // a flag's 0 or 1, a number, a real's bit pattern
    const char* text = nullptr;         // a text's default (UTF-8)
    const char* otherChoice = nullptr;  // OneOf: the one other text it takes
    bool none = false;                  // NoDefault

    constexpr SettingDefault(bool flag) : type(SettingType::Flag), number(flag ? 1 : 0) {}
    constexpr SettingDefault(int n)
        : type(SettingType::Number), number(static_cast<std::uint32_t>(n)) {}
    constexpr SettingDefault(float real)
        : type(SettingType::Real), number(std::bit_cast<std::uint32_t>(real)) {}
    constexpr SettingDefault(const char* t) : text(t) {}

    // Whether the setter stores `t` (every text, unless the row is a OneOf).
    bool Accepts(const QString& t) const;
};

constexpr SettingDefault OneOf(const char* first, const char* other) {
    SettingDefault d(first);
    d.otherChoice = other;
    return d;
}

inline constexpr SettingDefault NoDefault = [] {
    SettingDefault d("");
    d.none = true;
    return d;
}();

struct SettingRow {
    const char* name;  // the stored name, "@" for the deck letter, "#" for the band
    SettingScope scope;
    SettingType type;
    SettingDefault byDefault;
};

// The setting numbers, Setting::MainMixerGraphEnabledState ... in table order.
#define MIXORA_SETTING_ID(accessor, name, type, byDefault) accessor,
enum class Setting { MIXORA_SETTINGS(MIXORA_SETTING_ID, MIXORA_SETTING_ID, MIXORA_SETTING_ID) };
#undef MIXORA_SETTING_ID

#define MIXORA_SETTING_ONE(a, name, type, d) \
    SettingRow{name, SettingScope::One, SettingType::type, d},
#define MIXORA_SETTING_DECK(a, name, type, d) \
    SettingRow{name, SettingScope::Deck, SettingType::type, d},
#define MIXORA_SETTING_BAND(a, name, type, d) \
    SettingRow{name, SettingScope::Band, SettingType::type, d},
inline constexpr std::array kSettingsTable = {
    MIXORA_SETTINGS(MIXORA_SETTING_ONE, MIXORA_SETTING_DECK, MIXORA_SETTING_BAND)};
#undef MIXORA_SETTING_ONE
#undef MIXORA_SETTING_DECK
#undef MIXORA_SETTING_BAND

// Every row's default is of the row's type.
static_assert([] {
    for (const SettingRow& row : kSettingsTable) {
        if (row.byDefault.type != row.type)
            return false;
    }
    return true;
}());

constexpr const SettingRow& RowOf(Setting s) {
    return kSettingsTable[static_cast<std::size_t>(s)];
}
// How many decks and bands a row's values span (1 for a one-value setting).
constexpr int DeckCount(const SettingRow& row) {
    return row.scope == SettingScope::One ? 1 : 2;
}
constexpr int BandCount(const SettingRow& row) {
    return row.scope == SettingScope::Band ? kScopeBandGroups : 1;
}

// The stored name of setting `s` for `deck` (0 = A, 1 = B, any other A) and band.
QString StoredName(Setting s, int deck = 0, int band = 0);

// The C++ types of a setting's value: read as SettingValueOf, written from SettingParamOf.
template <SettingType T>
using SettingValueOf = std::conditional_t<
    T == SettingType::Flag, bool,
    std::conditional_t<T == SettingType::Number, int,
                       std::conditional_t<T == SettingType::Real, float, QString>>>;
template <SettingType T>
using SettingParamOf =
    std::conditional_t<T == SettingType::Text, const QString&, SettingValueOf<T>>;
