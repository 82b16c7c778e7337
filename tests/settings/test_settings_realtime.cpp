// Settings are never written from the audio callback: every write of the
// store aborts, naming itself, on a thread marked as the audio thread, and a
// batch that ends there (the file save) does too. Reads stay allowed.
#include <gtest/gtest.h>

#include "SettingsTestSupport.h"
#include "core/RealtimeDeathTest.h"

namespace {

using rttest::OnAudioThread;
using SettingsRealtimeDeathTest = rttest::RealtimeDeathTest;

TEST_F(SettingsRealtimeDeathTest, WritesFromTheAudioThreadAbort) {
    settingstest::Fixture f;
    EXPECT_DEATH(OnAudioThread([&f] { f.store->WriteNumber(QStringLiteral("n"), 1); }),
                 "Mixora: SettingsStore::WriteNumber called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&f] { f.store->WriteReal(QStringLiteral("r"), 0.5f); }),
                 "Mixora: SettingsStore::WriteReal called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&f] { f.store->WriteText(QStringLiteral("t"), "x"); }),
                 "Mixora: SettingsStore::WriteText called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&f] { f.settings->SetTurntableMode(0, QStringLiteral("Drag")); }),
                 "Mixora: SettingsStore::WriteText called from the audio callback");
}

}  // namespace
