// Damaged, foreign and unwritable settings files: repaired by the defaults,
// set aside as Mixora.conf.bad and reported once, never fatal.
#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QSettings>

#include "SettingsTestSupport.h"

using settingstest::Fixture;
using settingstest::ReadFileBytes;
using settingstest::WriteFileBytes;

TEST(SettingsDamage, TruncatedFileKeepsWhatItCanAndIsRepaired) {
    Fixture f;
    f.settings->ReadEverySetting();
    f.settings->SetTurntableMode(0, "Drag");  // "turntableModeDeckA" sorts near the end
    f.settings->SetTurntableMode(1, "Drag");  // after it
    f.settings->SetUseIntegersForGraphs(true);
    f.settings->SetMainDeckLevel(0, 0.25f);
    const QByteArray whole = ReadFileBytes(f.path);
    const qsizetype cut = whole.indexOf("turntableModeDeckA=\"Dr") + 22;  // inside the quotes
    ASSERT_GT(cut, 22);
    const QByteArray truncated = whole.left(cut);
    WriteFileBytes(f.path, truncated);

    f.Reopen();
    CRynSettings& s = *f.settings;
    EXPECT_EQ(s.GetMainDeckLevel(0), 0.25f);   // before the cut: kept
    EXPECT_EQ(s.GetTurntableMode(0), "Drop");  // the cut value: back to its default
    EXPECT_EQ(s.GetTurntable2DOr3D(0), "3D");  // after the cut: back to its default
    ASSERT_EQ(f.messages.size(), 1);
    EXPECT_TRUE(f.messages[0].contains("Mixora.conf.bad"));
    EXPECT_EQ(ReadFileBytes(f.store->DamagedCopyPath()), truncated);

    // The file is whole again and the user is not told twice.
    s.ReadEverySetting();
    EXPECT_FALSE(ParseSettingsIni(ReadFileBytes(f.path)).damaged);
    f.Reopen();
    f.settings->ReadEverySetting();
    EXPECT_EQ(f.messages.size(), 1);
}

TEST(SettingsDamage, GarbageFileReadsAsDefaults) {
    Fixture f;
    QByteArray garbage(3000, '\0');
    QRandomGenerator rng(42);
    for (char& c : garbage)
        c = static_cast<char>(rng.bounded(256));
    WriteFileBytes(f.path, garbage);

    CRynSettings& s = *f.settings;
    EXPECT_TRUE(s.GetTitleBarsOnState());
    EXPECT_EQ(s.GetNumBandsInEqualizer(1), 3);
    EXPECT_EQ(s.ReadWindowRect(SettingsWindow::Deck, 1, false), (WindowRect{655, 0, 1024, 325}));
    EXPECT_EQ(f.messages.size(), 1);
    EXPECT_EQ(ReadFileBytes(f.store->DamagedCopyPath()), garbage);
    EXPECT_FALSE(ParseSettingsIni(ReadFileBytes(f.path)).damaged);

    // An empty file is simply a file without values: nothing to report.
    Fixture empty;
    WriteFileBytes(empty.path, {});
    EXPECT_EQ(empty.settings->GetDeckGraphType(0), "Bars");
    EXPECT_TRUE(empty.messages.isEmpty());
}

TEST(SettingsDamage, WrongTypesAndForeignValuesReadAsMissing) {
    Fixture f;
    WriteFileBytes(f.path,
                   "[General]\n"
                   "mainMixerNumGraphs=\"3\"\n"               // a text where a number belongs
                   "turntableModeDeckA=12\n"                  // a number where a text belongs
                   "mainDeckALevel=zero point seven\n"        // a text where a real belongs
                   "deckGraphNumChannelsDeckB=99999999999\n"  // out of 32 bits: a text
                   "EqOnStateDeckA=@Invalid()\n"              // a QSettings typed value
                   "titleBarsOnState = 0 \r\n"                // spaces and CRLF are fine
                   "deckBMode=-1\n"                           // negative: its 32-bit pattern
                   "[Other]\n"
                   "toolTipsOnSettingName=0\n");  // not our section
    CRynSettings& s = *f.settings;
    EXPECT_EQ(s.GetMainMixerNumGraphs(), 2);
    EXPECT_EQ(s.GetTurntableMode(0), "Drop");
    EXPECT_EQ(s.GetMainDeckLevel(0), 0.7f);
    EXPECT_EQ(s.GetDeckGraphNumChannels(1), 1);
    EXPECT_FALSE(s.GetEqOnState(0));
    EXPECT_FALSE(s.GetTitleBarsOnState());
    EXPECT_EQ(s.ReadNumber("deckBMode"), 0xFFFFFFFFu);
    EXPECT_TRUE(s.GetToolTipsOnSettingName());
    EXPECT_TRUE(f.messages.isEmpty());
    EXPECT_FALSE(QFile::exists(f.store->DamagedCopyPath()));

    // Repaired with the right types.
    const SettingsMap values = f.FileValues();
    EXPECT_EQ(values.value("mainMixerNumGraphs"), SettingsValue::OfNumber(2));
    EXPECT_EQ(values.value("turntableModeDeckA"), SettingsValue::OfText("Drop"));
    EXPECT_EQ(values.value("mainDeckALevel"), SettingsValue::OfNumber(0x3F333333));
}

TEST(SettingsDamage, FilesOfQSettingsAndOfTheStoreReadEachOther) {
    Fixture f;
    const QStringList texts = {"plain",
                               "with \"quotes\" and \\",
                               "a, comma; semi=eq",
                               "  padded  ",
                               "line\nbreak\ttab\x01",
                               "@at the start",
                               "12",
                               "Ünïcødé ♫ 🎧",
                               ""};
    for (int i = 0; i < texts.size(); ++i)
        ASSERT_TRUE(f.store->WriteText(QString("text%1").arg(i), texts[i]));
    ASSERT_TRUE(f.store->WriteNumber("big", 0xFFFFFFFFu));
    {
        QSettings qs(f.path, QSettings::IniFormat);
        ASSERT_EQ(qs.status(), QSettings::NoError);
        for (int i = 0; i < texts.size(); ++i)
            EXPECT_EQ(qs.value(QString("text%1").arg(i)).toString(), texts[i]) << i;
        EXPECT_EQ(qs.value("big").toUInt(), 0xFFFFFFFFu);

        // And the other way round: what QSettings writes, the store reads.
        qs.clear();
        qs.setValue("turntableModeDeckA", "Drag");
        qs.setValue("mainMixerNumGraphs", 4);
        for (int i = 0; i < texts.size(); ++i) {
            if (texts[i] != "12" && !texts[i].isEmpty())  // unquoted, those are a number / nothing
                qs.setValue(QString("text%1").arg(i), texts[i]);
        }
        qs.sync();
        ASSERT_EQ(qs.status(), QSettings::NoError);
    }
    f.Reopen();
    EXPECT_EQ(f.settings->GetTurntableMode(0), "Drag");
    EXPECT_EQ(f.settings->GetMainMixerNumGraphs(), 4);
    for (int i = 0; i < texts.size(); ++i) {
        if (texts[i] != "12" && !texts[i].isEmpty()) {
            EXPECT_EQ(f.store->ReadText(QString("text%1").arg(i)), texts[i]) << i;
        }
    }
    EXPECT_TRUE(f.messages.isEmpty());
}

TEST(SettingsDamage, ChangesByAnotherWriterAreSeenAndUnwritableFolderIsReportedOnce) {
    Fixture f;
    EXPECT_EQ(f.settings->GetDeckBeatFindMode(0), "Auto");
    SettingsStore other(f.path, [](const QString&) {});
    EXPECT_TRUE(other.WriteText("deckBeatFindModeDeckA", "Man"));
    EXPECT_EQ(f.settings->GetDeckBeatFindMode(0), "Man");

    QStringList told;
    SettingsStore nowhere("/nonexistent-mixora-folder/Mixora.conf",
                          [&](const QString& m) { told.push_back(m); });
    CRynSettings s(nowhere, [] { return QSize(1024, 740); });
    EXPECT_EQ(s.GetThreeDGraphMode(), "3D Sound");  // the default still holds
    EXPECT_FALSE(s.SetThreeDGraphMode("3D Plot"));  // not saved ...
    EXPECT_EQ(s.GetThreeDGraphMode(), "3D Plot");   // ... but kept for this run
    EXPECT_FALSE(nowhere.WriteNumber("bad name", 1));
    EXPECT_EQ(told.size(), 1);
}
