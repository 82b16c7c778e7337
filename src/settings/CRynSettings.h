// Mixora's settings: one getter and one setter per setting of the settings
// table (SettingsTable.h), and the window records, over a SettingsStore.
//
// Naming: Get/Set + the row's accessor name; the deck (0 = A, 1 = B) is the
// first parameter of a per-deck setting, the band the second of a band one.
// So "turntableModeDeckA" is GetTurntableMode(0), "deckBEQType" is
// GetDeckEQType(1), "scopeBandOnState2DeckA" is GetScopeBandOnState(0, 2).
// Getters answer bool (Flag), int (Number), float (Real) or QString (Text);
// setters take the same.
//
// Default rule: a getter first writes the row's default when the value is
// missing or has the wrong type, then reads it back (a value that cannot be
// saved still holds for this run). Setters return false when the file could
// not be written (the value still holds for this run) or a OneOf text refuses
// the value (nothing is stored).
#pragma once

#include <QSize>
#include <QString>
#include <bit>
#include <cstdint>
#include <functional>

#include "settings/SettingsNames.h"
#include "settings/SettingsStore.h"
#include "settings/SettingsTable.h"

class CRynSettings {
  public:
    // The full-screen client size in pixels (the usable screen without
    // panels), for the default window rectangles. The shell passes the
    // primary screen's; without it the screen is taken as 1024 x 768.
    using ScreenSizeSource = std::function<QSize()>;
    static QSize HeadlessScreenSize() { return {1024, 768}; }

    static constexpr int kScopeBands = kScopeBandGroups;  // scope band groups per deck

    explicit CRynSettings(SettingsStore& store, ScreenSizeSource screen = HeadlessScreenSize);

    SettingsStore& Store() { return store_; }
    void SetScreenSizeSource(ScreenSizeSource screen) { screen_ = std::move(screen); }

    // Raw access (SettingsStore).
    bool Exists(const QString& name) { return store_.Exists(name); }
    std::uint32_t ReadNumber(const QString& name) { return store_.ReadNumber(name); }
    QString ReadText(const QString& name) { return store_.ReadText(name); }
    bool WriteNumber(const QString& name, std::uint32_t v) { return store_.WriteNumber(name, v); }
    bool WriteText(const QString& name, const QString& t) { return store_.WriteText(name, t); }

    // Reads every setting of the table for both decks (and every band),
    // creating each missing one with its default, in one file write. Window
    // records are not included: they depend on the screen layout.
    void ReadEverySetting();

    // Any setting of the table, by its number; `deck` and `band` matter for
    // per-deck and band settings only. The type must be the row's.
    SettingsValue Read(Setting s, int deck = 0, int band = 0);
    bool Write(Setting s, int deck, int band, const SettingsValue& value);
    bool GetFlag(Setting s, int deck = 0, int band = 0) { return Read(s, deck, band).number != 0; }
    int GetNumber(Setting s, int deck = 0, int band = 0) {
        return static_cast<int>(Read(s, deck, band).number);
    }
    float GetReal(Setting s, int deck = 0, int band = 0) {
        return std::bit_cast<float>(Read(s, deck, band).number);
    }
    QString GetText(Setting s, int deck = 0, int band = 0) { return Read(s, deck, band).text; }
    bool SetFlag(Setting s, int deck, int band, bool on) {
        return Write(s, deck, band, SettingsValue::OfNumber(on ? 1 : 0));
    }
    bool SetNumber(Setting s, int deck, int band, int n) {
        return Write(s, deck, band, SettingsValue::OfNumber(static_cast<std::uint32_t>(n)));
    }
    bool SetReal(Setting s, int deck, int band, float r) {
        return Write(s, deck, band, SettingsValue::OfNumber(std::bit_cast<std::uint32_t>(r)));
    }
    bool SetText(Setting s, int deck, int band, const QString& t) {
        return Write(s, deck, band, SettingsValue::OfText(t));
    }

    // The named getter and setter of every row, e.g. GetTurntableMode(deck).
#define MIXORA_ACCESS_ONE(A, name, T, d)            \
    SettingValueOf<SettingType::T> Get##A() {       \
        return Get##T(Setting::A);                  \
    }                                               \
    bool Set##A(SettingParamOf<SettingType::T> v) { \
        return Set##T(Setting::A, 0, 0, v);         \
    }
#define MIXORA_ACCESS_DECK(A, name, T, d)                     \
    SettingValueOf<SettingType::T> Get##A(int deck) {         \
        return Get##T(Setting::A, deck);                      \
    }                                                         \
    bool Set##A(int deck, SettingParamOf<SettingType::T> v) { \
        return Set##T(Setting::A, deck, 0, v);                \
    }
#define MIXORA_ACCESS_BAND(A, name, T, d)                               \
    SettingValueOf<SettingType::T> Get##A(int deck, int band) {         \
        return Get##T(Setting::A, deck, band);                          \
    }                                                                   \
    bool Set##A(int deck, int band, SettingParamOf<SettingType::T> v) { \
        return Set##T(Setting::A, deck, band, v);                       \
    }
    MIXORA_SETTINGS(MIXORA_ACCESS_ONE, MIXORA_ACCESS_DECK, MIXORA_ACCESS_BAND)
#undef MIXORA_ACCESS_ONE
#undef MIXORA_ACCESS_DECK
#undef MIXORA_ACCESS_BAND

    // A deck's level by mixer: 0 = main ("mainDeckXLevel"), 1 = headphones
    // ("phonesDeckXLevel"); any other mixer is the main one.
    float GetDeckLevel(int mixer, int deck) {
        return GetReal(LevelSetting(mixer), deck);
    }
    bool SetDeckLevel(int mixer, int deck, float level) {
        return SetReal(LevelSetting(mixer), deck, 0, level);
    }

    // Window records. `deck` matters for deck windows only; lowRes picks the
    // layout. A missing rectangle value makes all four the layout's default
    // for the current screen size, written before reading.
    WindowRect ReadWindowRect(SettingsWindow window, int deck, bool lowRes);
    bool WriteWindowRect(SettingsWindow window, int deck, bool lowRes, const WindowRect& rect);
    WindowRect DefaultRect(SettingsWindow window, int deck, bool lowRes);
    // Moved by the user: one flag for both layouts, default 0.
    bool ReadHasMoved(SettingsWindow window, int deck);
    bool WriteHasMoved(SettingsWindow window, int deck, bool moved);
    // Place in the stacking order, one for both layouts; no default (missing reads 0).
    int ReadOrdinal(SettingsWindow window, int deck);
    bool WriteOrdinal(SettingsWindow window, int deck, int ordinal);
    // Shown; default on for the decks and the mixers, off for the others.
    bool ReadShow(SettingsWindow window, int deck, bool lowRes);
    bool WriteShow(SettingsWindow window, int deck, bool lowRes, bool shown);

  private:
    static Setting LevelSetting(int mixer) {
        return mixer == 1 ? Setting::PhonesDeckLevel : Setting::MainDeckLevel;
    }
    // The default rule for the value `name` of `type`.
    SettingsValue ReadOrCreate(const QString& name, SettingType type, const SettingDefault& d);
    bool WriteFlag(const QString& name, bool on) {
        return store_.WriteNumber(name, on ? 1 : 0);
    }

    SettingsStore& store_;
    ScreenSizeSource screen_;
};

// The program's settings, over SettingsStore::DefaultPath() (resolved on
// first use), with the headless notifier and screen size until the shell
// hands in its own (SettingsStore::SetNotifier, SetScreenSizeSource).
CRynSettings& Settings();
