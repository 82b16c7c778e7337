// The settings table: first-run defaults, bit-exact reals, persistence across
// runs, the window records and the name builders.
#include <gtest/gtest.h>

#include <QSettings>
#include <bit>
#include <cmath>

#include "SettingsTestSupport.h"
#include "core/Paths.h"
#include "settings/SettingsNames.h"

using settingstest::Fixture;

namespace {

// Every value a first run creates, with its default, written out by hand.
SettingsMap ExpectedFirstRun() {
    auto n = [](std::uint32_t v) { return SettingsValue::OfNumber(v); };
    auto t = [](const char* s) { return SettingsValue::OfText(QString::fromUtf8(s)); };
    SettingsMap m{
        {"mainMixerGraphEnabledState", n(1)},
        {"mainMixerNumGraphs", n(2)},
        {"mainMixerXFaderCurveParameter", n(0xBF800000)},
        {"phonesMixerGraphEnabledState", n(0)},
        {"phonesMixerNumGraphs", n(2)},
        {"scopeTriggerOnState", n(1)},
        {"beatLEDBandIndex", n(1)},
        {"beatLEDsEnabledState", n(1)},
        {"threeDGraphEnabledState", n(0)},
        {"threeDGraphJoinOrSplit", t("Split")},
        {"threeDGraphMode", t("3D Sound")},
        {"graphNumberType", t("Floats")},
        {"useIntegersForGraphs", n(0)},
        {"toolTipsOnSettingName", n(1)},
        {"titleBarsOnState", n(1)},
        {"showTipOfTheDay", n(1)},
        {"tipOfTheDayIndex", n(0)},
        {"cddbServer", t("gnudb.gnudb.org")},
        {"cddbServerPort", n(80)},
        {"cddbUserAddress", t("mixora@localhost")},
        {"cddbTimeoutSeconds", n(10)},
    };
    for (const QString x : {"A", "B"}) {
        m.insert("mainMixerGraphTypeDeck" + x, t("Bars"));
        m.insert("phonesMixerGraphTypeDeck" + x, t("Bars"));
        m.insert("mainDeck" + x + "Level", n(0x3F333333));
        m.insert("phonesDeck" + x + "Level", n(0x3F333333));
        m.insert("metersEnabledDeck" + x, n(1));
        m.insert("deck" + x + "Mode", n(1));
        m.insert("timeDisplayModeDeck" + x, t("Elapsed In Track:"));
        m.insert("turntableModeDeck" + x, t("Drop"));
        m.insert("turntable2DOr3DDeck" + x, t("3D"));
        m.insert("deckGraphEnabledDeck" + x, n(1));
        m.insert("deckGraphTypeDeck" + x, t("Bars"));
        m.insert("deckGraphNumChannelsDeck" + x, n(1));
        m.insert("deckGraphRangeEnabledDeck" + x, n(1));
        m.insert("deckPeakPowerMeterEnabledDeck" + x, n(1));
        m.insert("deckScopeGainSettingNameDeck" + x, n(0x3F800000));
        m.insert("deckBeatFindModeDeck" + x, t("Auto"));
        for (int band = 0; band < 3; ++band)
            m.insert("scopeBandOnState" + QString::number(band) + "Deck" + x, n(1));
        m.insert("EqOnStateDeck" + x, n(0));
        m.insert("EqClipProtectOnStateDeck" + x, n(1));
        m.insert("EqFilterTypeDeck" + x, t("Hanning"));
        m.insert("EqLatencyInNotifiesDeck" + x, n(10));
        m.insert("deck" + x + "EQType", n(1));
        m.insert("deck" + x + "EQNumberType", n(0));
        m.insert("numBandsInEqualizerDeck" + x, n(3));
        m.insert("numBandsInPlotDeck" + x, n(3));
    }
    return m;
}

}  // namespace

TEST(SettingsStore, FirstRunCreatesEveryValueWithItsDefaultAndLaterRunsKeepChanges) {
    Fixture f;
    EXPECT_FALSE(QFile::exists(f.path));
    CRynSettings& s = *f.settings;

    // One getter on its own writes its value at once.
    EXPECT_EQ(s.GetTurntableMode(1), "Drop");
    EXPECT_EQ(f.FileValues().value("turntableModeDeckB"), SettingsValue::OfText("Drop"));

    s.ReadEverySetting();
    EXPECT_EQ(f.FileValues(), ExpectedFirstRun());
    EXPECT_TRUE(f.messages.isEmpty());

    // The getters answer the defaults; no device has been chosen yet.
    EXPECT_TRUE(s.GetMainMixerGraphEnabledState());
    EXPECT_FALSE(s.GetPhonesMixerGraphEnabledState());
    EXPECT_EQ(s.GetMainMixerXFaderCurveParameter(), -1.0f);
    EXPECT_EQ(s.GetMainDeckLevel(0), 0.7f);
    EXPECT_EQ(s.GetDeckLevel(1, 1), 0.7f);
    EXPECT_EQ(s.GetDeckScopeGainSettingName(1), 1.0f);
    EXPECT_EQ(s.GetTimeDisplayMode(0), "Elapsed In Track:");
    EXPECT_EQ(s.GetEqLatencyInNotifies(1), 10);
    EXPECT_TRUE(s.GetScopeBandOnState(1, 2));
    EXPECT_EQ(s.GetSoundDeviceMain(), "");
    EXPECT_FALSE(s.Exists("soundDeviceMain"));

    // The raw values are the 32-bit patterns of the floats.
    EXPECT_EQ(s.ReadNumber("mainDeckALevel"), 0x3F333333u);
    EXPECT_EQ(s.ReadNumber("mainMixerXFaderCurveParameter"), 0xBF800000u);

    // Readable by QSettings' own INI reader.
    QSettings qs(f.path, QSettings::IniFormat);
    EXPECT_EQ(qs.status(), QSettings::NoError);
    EXPECT_EQ(qs.allKeys().size(), ExpectedFirstRun().size());
    EXPECT_EQ(qs.value("mainMixerXFaderCurveParameter").toUInt(), 0xBF800000u);
    EXPECT_EQ(qs.value("timeDisplayModeDeckA").toString(), "Elapsed In Track:");

    // Changes survive the next run; a second run rewrites nothing.
    EXPECT_TRUE(s.SetTurntableMode(0, "Drag"));
    EXPECT_TRUE(s.SetMainDeckLevel(1, 0.123456f));
    EXPECT_TRUE(s.SetMainMixerXFaderCurveParameter(std::bit_cast<float>(0x7FC00123u)));  // a NaN
    EXPECT_TRUE(s.SetEqOnState(1, true));
    EXPECT_TRUE(s.SetSoundDevicePhones("USB Audio \"Phones\", analog"));
    EXPECT_TRUE(s.SetDeckEQType(0, 0));
    EXPECT_TRUE(s.SetBeatLEDBandIndex(-1));
    const FileIdentity before = StatFile(f.path);
    f.Reopen();
    CRynSettings& next = *f.settings;
    next.ReadEverySetting();
    EXPECT_EQ(StatFile(f.path), before);
    EXPECT_EQ(next.GetTurntableMode(0), "Drag");
    EXPECT_EQ(next.GetTurntableMode(1), "Drop");
    EXPECT_EQ(std::bit_cast<std::uint32_t>(next.GetMainDeckLevel(1)),
              std::bit_cast<std::uint32_t>(0.123456f));
    EXPECT_EQ(next.ReadNumber("mainMixerXFaderCurveParameter"), 0x7FC00123u);
    EXPECT_TRUE(next.GetEqOnState(1));
    EXPECT_EQ(next.GetSoundDevicePhones(), "USB Audio \"Phones\", analog");
    EXPECT_EQ(next.GetDeckEQType(0), 0);
    EXPECT_EQ(next.GetBeatLEDBandIndex(), -1);

    // "graphNumberType" stores only its two choices.
    EXPECT_FALSE(next.SetGraphNumberType("Doubles"));
    EXPECT_EQ(next.GetGraphNumberType(), "Floats");
    EXPECT_TRUE(next.SetGraphNumberType("Ints"));
    EXPECT_EQ(next.GetGraphNumberType(), "Ints");
}

TEST(SettingsStore, NameBuilders) {
    EXPECT_EQ(LevelName(0, 0), "mainDeckALevel");
    EXPECT_EQ(LevelName(1, 1), "phonesDeckBLevel");
    EXPECT_EQ(ScopeBandName(1, 2), "scopeBandOnState2DeckB");
    EXPECT_EQ(ScopeBandName(0, 10), "scopeBandOnState10DeckA");
    EXPECT_EQ(DeckModeName(1), "deckBMode");
    EXPECT_EQ(EqTypeName(0), "deckAEQType");
    EXPECT_EQ(EqNumberTypeName(1), "deckBEQNumberType");
    EXPECT_EQ(PositionName(SettingsWindow::Deck, 0, WindowField::Left, false), "deckAleftHiRes");
    EXPECT_EQ(PositionName(SettingsWindow::PlayList, 1, WindowField::Bottom, true),
              "playListBbottomLoRes");
    EXPECT_EQ(PositionName(SettingsWindow::ThreeDGraph, 1, WindowField::Top, false),
              "threeDGraphtopHiRes");
    EXPECT_EQ(PositionName(SettingsWindow::DeckInfo, 1, WindowField::Right, true),
              "deckInfoBrightLoRes");
    EXPECT_EQ(PositionName(SettingsWindow::Deck, 0, WindowField::HasMoved, true),
              "deckAhasMovedHiRes");
    EXPECT_EQ(PositionName(SettingsWindow::MainMixer, 0, WindowField::Ordinal, true),
              "mainMixerordinalHiRes");
    EXPECT_EQ(ShowName(SettingsWindow::Deck, 0, false), "showDeckAHiRes");
    EXPECT_EQ(ShowName(SettingsWindow::Configure, 1, true), "showConfigureLoRes");
    EXPECT_EQ(ShowName(SettingsWindow::MainMixer, 1, false), "showHiRes");
    EXPECT_EQ(ShowName(SettingsWindow::DeckInfo, 1, false), "showDeckInfoBHiRes");
    EXPECT_EQ(ShowName(SettingsWindow::PhonesMixer, 0, true), "showphonesMixerLoRes");
}

TEST(SettingsStore, WindowRecordsTakeScreenDefaultsAndKeepStoredPositions) {
    Fixture f;
    CRynSettings& s = *f.settings;
    using W = SettingsWindow;

    // High resolution on 1024 x 740.
    EXPECT_EQ(s.ReadWindowRect(W::Deck, 1, false), (WindowRect{655, 0, 1024, 325}));
    EXPECT_EQ(s.ReadNumber("deckBleftHiRes"), 655u);
    EXPECT_EQ(s.ReadNumber("deckBbottomHiRes"), 325u);
    EXPECT_EQ(s.ReadWindowRect(W::Deck, 0, false), (WindowRect{0, 0, 368, 325}));
    EXPECT_EQ(s.ReadWindowRect(W::DeckInfo, 1, false), (WindowRect{655, 325, 1024, 325}));
    EXPECT_EQ(s.ReadWindowRect(W::ThreeDGraph, 0, false), (WindowRect{368, 296, 655, 547}));
    EXPECT_EQ(s.ReadWindowRect(W::Configure, 0, false), (WindowRect{0, 0, 500, 280}));
    // Low resolution.
    EXPECT_EQ(s.ReadWindowRect(W::Deck, 0, true), (WindowRect{0, 0, 512, 407}));
    EXPECT_EQ(s.ReadWindowRect(W::PlayList, 1, true), (WindowRect{512, 407, 1024, 740}));
    EXPECT_EQ(s.ReadWindowRect(W::MainMixer, 0, true), (WindowRect{0, 407, 512, 740}));
    // 1024 x 768: the main mixer spans x 368 ... 655 and y 0 ... 307.
    s.SetScreenSizeSource([] { return QSize(1024, 768); });
    EXPECT_EQ(s.ReadWindowRect(W::MainMixer, 0, false), (WindowRect{368, 0, 655, 307}));

    // A stored rectangle wins over the default, negative positions included.
    EXPECT_TRUE(s.WriteWindowRect(W::Equalizer, 0, true, {-8, 20, 300, 400}));
    f.Reopen();
    EXPECT_EQ(f.settings->ReadWindowRect(W::Equalizer, 0, true), (WindowRect{-8, 20, 300, 400}));

    // One missing value brings all four back to the default.
    SettingsMap values = f.FileValues();
    values.remove("equalizerAtopLoRes");
    settingstest::WriteFileBytes(f.path, SerializeSettingsIni(values));
    EXPECT_EQ(f.settings->ReadWindowRect(W::Equalizer, 0, true), (WindowRect{0, 407, 512, 740}));
    EXPECT_EQ(f.FileValues().value("equalizerAleftLoRes"), SettingsValue::OfNumber(0));
}

TEST(SettingsStore, MovedOrdinalAndShownFlags) {
    Fixture f;
    CRynSettings& s = *f.settings;
    using W = SettingsWindow;

    // A whole low-resolution restore of deck A never forms a "LoRes" moved name.
    s.ReadWindowRect(W::Deck, 0, true);
    EXPECT_TRUE(s.ReadShow(W::Deck, 0, true));
    EXPECT_FALSE(s.ReadHasMoved(W::Deck, 0));
    EXPECT_EQ(s.ReadOrdinal(W::Deck, 0), 0);
    EXPECT_TRUE(s.WriteHasMoved(W::Deck, 0, true));
    EXPECT_TRUE(s.WriteOrdinal(W::Deck, 0, 4));
    const SettingsMap values = f.FileValues();
    EXPECT_EQ(values.value("deckAhasMovedHiRes"), SettingsValue::OfNumber(1));
    EXPECT_EQ(values.value("deckAordinalHiRes"), SettingsValue::OfNumber(4));
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        EXPECT_FALSE(it.key().contains("hasMovedLoRes")) << it.key().toStdString();
        EXPECT_FALSE(it.key().contains("ordinalLoRes")) << it.key().toStdString();
    }
    EXPECT_TRUE(s.ReadHasMoved(W::Deck, 0));
    EXPECT_EQ(s.ReadOrdinal(W::Deck, 0), 4);

    // An ordinal is never created by reading it.
    EXPECT_EQ(s.ReadOrdinal(W::PlayList, 1), 0);
    EXPECT_FALSE(s.Exists("playListBordinalHiRes"));

    // Shown defaults: decks and mixers on, the others off.
    EXPECT_TRUE(s.ReadShow(W::MainMixer, 0, false));
    EXPECT_TRUE(s.ReadShow(W::PhonesMixer, 0, true));
    EXPECT_TRUE(s.ReadShow(W::Deck, 1, false));
    EXPECT_FALSE(s.ReadShow(W::Configure, 0, true));
    EXPECT_FALSE(s.ReadShow(W::ThreeDGraph, 0, false));
    EXPECT_FALSE(s.ReadShow(W::Equalizer, 1, false));
    EXPECT_FALSE(s.ReadShow(W::DeckInfo, 0, true));
    EXPECT_EQ(s.ReadNumber("showHiRes"), 1u);
    EXPECT_EQ(s.ReadNumber("showConfigureLoRes"), 0u);
    EXPECT_TRUE(s.WriteShow(W::Equalizer, 1, false, true));
    EXPECT_TRUE(s.ReadShow(W::Equalizer, 1, false));
    EXPECT_FALSE(s.ReadShow(W::Equalizer, 1, true));
}

TEST(SettingsStore, ProgramStoreLivesInTheSettingsFolder) {
    EXPECT_EQ(Settings().Store().FilePath(), ConfigDir() + "/Mixora.conf");
    EXPECT_TRUE(Settings().GetTitleBarsOnState());
    EXPECT_TRUE(QFile::exists(ConfigDir() + "/Mixora.conf"));
}
