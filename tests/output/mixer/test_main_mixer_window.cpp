// The main mixer window around its controls: choosing and disabling the main
// device, the decks' write-ahead targets, and its picture.
#include <gtest/gtest.h>

#include <QDir>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/engine/WriteAheadTarget.h"
#include "output/mixer/CRynMainMixer.h"

using testsupport::PlaybackRig;

TEST(MainMixerWindow, DeviceChangeStopsTheDecksAndSetsTheMasterControls) {
    const QString tone = testsupport::MakeTone("device-tone.wav", 440, 3);
    ASSERT_FALSE(tone.isEmpty());
    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));

    // The disabled entry: the turning deck stops, no device, the master
    // slides at rest and disabled.
    SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 0, 0);
    EXPECT_EQ(rig.Deck(0).StartStopButton()->Caption(), "start");
    EXPECT_FALSE(mixer.MainOutput().HasDevice());
    EXPECT_FALSE(mixer.Panel().MasterEnabled());
    EXPECT_FLOAT_EQ(mixer.Panel().Volume(), 0.0f);
    EXPECT_FLOAT_EQ(mixer.Panel().Balance(), 0.0f);

    // A device chosen again: opened, the volume read back from it.
    qputenv("MIXORA_SOUND_DEVICE", "null");
    SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 0, 1);
    qunsetenv("MIXORA_SOUND_DEVICE");
    EXPECT_TRUE(mixer.MainOutput().HasDevice());
    EXPECT_TRUE(mixer.Panel().MasterEnabled());
    EXPECT_FLOAT_EQ(mixer.Panel().Volume(), 1.0f);
    mixer.Panel().SetBalance(-0.5f);
    mixer.Panel().SetVolume(0.8f);
    EXPECT_EQ(mixer.MainOutput().MasterLeftPercent(), 80);
    EXPECT_EQ(mixer.MainOutput().MasterRightPercent(), 40);
}

TEST(MainMixerWindow, WriteAheadFollowsTheLatencyRequests) {
    PlaybackRig rig(true);
    CRynMainMixer& mixer = rig.Mixer();
    SharedEngineState& e = Engine();
    const int user = e.decks[0].latencyBlocks.load();
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), user);

    // While the layout is built, requests are ignored.
    SendAppMessage(mixer.Handle(), UWM_LATENCY_MAXIMUM, 0, 0);
    EXPECT_EQ(e.decks[1].writeAheadBlocks.load(), user);

    mixer.LayoutBuilt();  // a quarter for both decks
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), WriteAheadTarget::kQuarterBlocks);
    EXPECT_EQ(e.decks[1].writeAheadBlocks.load(), WriteAheadTarget::kQuarterBlocks);
    SendAppMessage(mixer.Handle(), UWM_LATENCY_MAXIMUM, 1, 0);
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    EXPECT_EQ(e.decks[1].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    // Deck A's equalizer window active: its quarter withdrawn, but the
    // maximum still holds; once that goes, deck A runs at the user's setting.
    SendAppMessage(mixer.Handle(), UWM_LATENCY_QUARTER, 0, 1);
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), WriteAheadTarget::kTopBlocks);
    e.decks[0].latencyBlocks.store(17);
    SendAppMessage(mixer.Handle(), UWM_LATENCY_MAXIMUM, 1, 1);
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), 17);
    EXPECT_EQ(e.decks[1].writeAheadBlocks.load(), WriteAheadTarget::kQuarterBlocks);
    // Moving the user's setting alone leaves the target.
    e.decks[0].latencyBlocks.store(20);
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), 17);
    // The deck relays its equalizer window's request for both decks.
    SendAppMessage(rig.Deck(0).Handle(), UWM_LATENCY_QUARTER_REQUEST, 0, 0);
    testsupport::WaitFor(
        [&] { return e.decks[0].writeAheadBlocks.load() == WriteAheadTarget::kQuarterBlocks; });
    EXPECT_EQ(e.decks[0].writeAheadBlocks.load(), WriteAheadTarget::kQuarterBlocks);
}

TEST(MainMixerWindow, RendersToAPicture) {
    PlaybackRig rig(true);
    CRynMainMixer& mixer = rig.Mixer();
    mixer.Panel().SetCrossFader(-0.3f);
    mixer.Panel().SetLevel(0, 0.8f);
    mixer.Panel().SetLevel(1, 0.6f);
    mixer.Panel().SetCurveParameter(-0.4f);
    const QImage shot = mixer.grab().toImage();
    ASSERT_FALSE(shot.isNull());
    EXPECT_TRUE(shot.save(QDir(testsupport::FixtureDir()).filePath("../main-mixer.png")));
}
