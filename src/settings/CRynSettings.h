// Mixora's settings: one getter and one setter per setting, and the window
// records, over a SettingsStore.
//
// Naming: Get/Set + the value name with its first letter raised and the deck
// part taken out; the deck (0 = A, 1 = B) becomes the first parameter. So
// "turntableModeDeckA" is GetTurntableMode(0), "deckBEQType" is
// GetDeckEQType(1), "scopeBandOnState2DeckA" is GetScopeBandOnState(0, 2).
//
// Default rule: a getter with a default first writes the default (through its
// setter) when the value is missing or has the wrong type, then reads it.
// Flags read as value != 0 and are written as 0 or 1. Reals are 32-bit floats
// kept bit-exact. Texts are stored as given: the owning window decides what a
// text it does not know means. Setters return false only when the file could
// not be written (the value still holds for this run).
#pragma once

#include <QSize>
#include <QString>
#include <cstdint>
#include <functional>

#include "settings/SettingsNames.h"
#include "settings/SettingsStore.h"

class CRynSettings {
  public:
    // The full-screen client size in pixels (the usable screen without panels).
    using ScreenSizeSource = std::function<QSize()>;
    // The primary screen's available size; 1024 x 768 without a screen.
    static QSize PrimaryScreenSize();

    static constexpr int kScopeBands = 3;  // scope band groups per deck

    explicit CRynSettings(SettingsStore& store, ScreenSizeSource screen = PrimaryScreenSize);

    SettingsStore& Store() { return store_; }
    void SetScreenSizeSource(ScreenSizeSource screen) { screen_ = std::move(screen); }

    // Raw access (SettingsStore).
    bool Exists(const QString& name) { return store_.Exists(name); }
    std::uint32_t ReadNumber(const QString& name) { return store_.ReadNumber(name); }
    QString ReadText(const QString& name) { return store_.ReadText(name); }
    bool WriteNumber(const QString& name, std::uint32_t v) { return store_.WriteNumber(name, v); }
    bool WriteText(const QString& name, const QString& t) { return store_.WriteText(name, t); }

    // Reads every setting of the table for both decks, creating each missing
    // one with its default, in one file write. Window records are not
    // included: they depend on the screen layout.
    void ReadEverySetting();

    // Main mixer.
    bool GetMainMixerGraphEnabledState();  // default on
    bool SetMainMixerGraphEnabledState(bool on);
    int GetMainMixerNumGraphs();  // default 2
    bool SetMainMixerNumGraphs(int n);
    QString GetMainMixerGraphType(int deck);  // default "Bars"
    bool SetMainMixerGraphType(int deck, const QString& type);
    float GetMainMixerXFaderCurveParameter();  // default -1.0
    bool SetMainMixerXFaderCurveParameter(float c);

    // Headphones mixer.
    bool GetPhonesMixerGraphEnabledState();  // default off
    bool SetPhonesMixerGraphEnabledState(bool on);
    int GetPhonesMixerNumGraphs();  // default 2
    bool SetPhonesMixerNumGraphs(int n);
    QString GetPhonesMixerGraphType(int deck);  // default "Bars"
    bool SetPhonesMixerGraphType(int deck, const QString& type);

    // Deck levels 0 ... 1, default 0.7: "mainDeckXLevel", "phonesDeckXLevel".
    float GetMainDeckLevel(int deck);
    bool SetMainDeckLevel(int deck, float level);
    float GetPhonesDeckLevel(int deck);
    bool SetPhonesDeckLevel(int deck, float level);
    // The same through LevelName: mixer 0 = main, 1 = headphones.
    float GetDeckLevel(int mixer, int deck);
    bool SetDeckLevel(int mixer, int deck, float level);

    bool GetMetersEnabled(int deck);  // default on
    bool SetMetersEnabled(int deck, bool on);

    // Deck.
    int GetDeckMode(int deck);  // 1 = File mode (default), 0 = CD mode
    bool SetDeckMode(int deck, int mode);
    QString GetTimeDisplayMode(int deck);  // default "Elapsed In Track:"
    bool SetTimeDisplayMode(int deck, const QString& mode);
    QString GetTurntableMode(int deck);  // default "Drop"
    bool SetTurntableMode(int deck, const QString& mode);
    QString GetTurntable2DOr3D(int deck);  // default "3D"
    bool SetTurntable2DOr3D(int deck, const QString& drawing);

    // Deck graph and scope.
    bool GetDeckGraphEnabled(int deck);  // default on
    bool SetDeckGraphEnabled(int deck, bool on);
    QString GetDeckGraphType(int deck);  // default "Bars"
    bool SetDeckGraphType(int deck, const QString& type);
    int GetDeckGraphNumChannels(int deck);  // default 1
    bool SetDeckGraphNumChannels(int deck, int n);
    bool GetDeckGraphRangeEnabled(int deck);  // default on
    bool SetDeckGraphRangeEnabled(int deck, bool on);
    bool GetDeckPeakPowerMeterEnabled(int deck);  // default on
    bool SetDeckPeakPowerMeterEnabled(int deck, bool on);
    float GetDeckScopeGainSettingName(int deck);  // the scope gain, default 1.0
    bool SetDeckScopeGainSettingName(int deck, float gain);
    QString GetDeckBeatFindMode(int deck);  // default "Auto"
    bool SetDeckBeatFindMode(int deck, const QString& mode);
    bool GetScopeBandOnState(int deck, int band);  // band 0 ... kScopeBands-1, default on
    bool SetScopeBandOnState(int deck, int band, bool on);
    bool GetScopeTriggerOnState();  // default on
    bool SetScopeTriggerOnState(bool on);
    int GetBeatLEDBandIndex();  // default 1
    bool SetBeatLEDBandIndex(int band);
    bool GetBeatLEDsEnabledState();  // default on
    bool SetBeatLEDsEnabledState(bool on);

    // Equalizer.
    bool GetEqOnState(int deck);  // default off
    bool SetEqOnState(int deck, bool on);
    bool GetEqClipProtectOnState(int deck);  // default on
    bool SetEqClipProtectOnState(int deck, bool on);
    QString GetEqFilterType(int deck);  // default "Hanning"
    bool SetEqFilterType(int deck, const QString& type);
    int GetEqLatencyInNotifies(int deck);  // output notifications, default 10
    bool SetEqLatencyInNotifies(int deck, int notifies);
    int GetDeckEQType(int deck);  // 1 = "Orvane" (default), 0 = "Direct Sound"
    bool SetDeckEQType(int deck, int type);
    int GetDeckEQNumberType(int deck);  // 0 = "Floats" (default), 1 = "Ints"
    bool SetDeckEQNumberType(int deck, int type);
    int GetNumBandsInEqualizer(int deck);  // default 3
    bool SetNumBandsInEqualizer(int deck, int bands);
    int GetNumBandsInPlot(int deck);  // default 3
    bool SetNumBandsInPlot(int deck, int bands);

    // 3D graph.
    bool GetThreeDGraphEnabledState();  // default off
    bool SetThreeDGraphEnabledState(bool on);
    QString GetThreeDGraphJoinOrSplit();  // default "Split"
    bool SetThreeDGraphJoinOrSplit(const QString& caption);
    QString GetThreeDGraphMode();  // default "3D Sound"
    bool SetThreeDGraphMode(const QString& mode);

    // Configuration.
    QString GetGraphNumberType();                  // "Floats" (default) or "Ints"
    bool SetGraphNumberType(const QString& type);  // any other text is not stored (false)
    bool GetUseIntegersForGraphs();                // default off
    bool SetUseIntegersForGraphs(bool on);
    QString GetSoundDeviceMain();  // no default: empty when never chosen
    bool SetSoundDeviceMain(const QString& description);
    QString GetSoundDevicePhones();  // no default: empty when never chosen
    bool SetSoundDevicePhones(const QString& description);
    bool GetToolTipsOnSettingName();  // tool tips, default on
    bool SetToolTipsOnSettingName(bool on);
    bool GetTitleBarsOnState();  // default on
    bool SetTitleBarsOnState(bool on);

    // Tip of the day.
    bool GetShowTipOfTheDay();  // default on
    bool SetShowTipOfTheDay(bool on);
    int GetTipOfTheDayIndex();  // default 0
    bool SetTipOfTheDayIndex(int index);

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
    bool Flag(const QString& name, bool defaultValue);
    int Number(const QString& name, int defaultValue);
    float Real(const QString& name, float defaultValue);
    QString Text(const QString& name, const QString& defaultValue);
    bool SetFlag(const QString& name, bool on) { return store_.WriteNumber(name, on ? 1 : 0); }
    bool SetNumber(const QString& name, int n) {
        return store_.WriteNumber(name, static_cast<std::uint32_t>(n));
    }

    SettingsStore& store_;
    ScreenSizeSource screen_;
};

// The program's settings, over SettingsStore::DefaultPath() (resolved on first use).
CRynSettings& Settings();
