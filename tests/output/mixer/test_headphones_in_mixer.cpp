// The headphones mixer as the main mixer drives it: a headphones device
// chosen while a deck plays joins it in step, new deck buffers get the
// headphones mix and pans again, the curve selector reaches the headphones,
// the show buttons and the close boxes, and the title bars.
#include <gtest/gtest.h>

#include <QComboBox>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/laws/DeckGainLaw.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundSystem.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"
#include "settings/window/DeviceTable.h"

using testsupport::PlaybackRig;

TEST(HeadphonesInMixer, AHeadphonesDeviceChosenWhileADeckPlaysJoinsInStep) {
    const QString tone = testsupport::MakeTone("join-tone.wav", 440, 4);
    ASSERT_FALSE(tone.isEmpty());
    CRynHeadphonesMixer phones;
    PlaybackRig rig(false, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();
    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(20));
    EXPECT_FALSE(phones.IsActive());

    // The Null device chosen from the device table, as the configuration
    // window sends it.
    device_table::Publish({{"Null Output (silent)", sound::kNullDeviceId}});
    SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 1, 1);
    ASSERT_TRUE(phones.IsActive()) << phones.StatusText().toStdString();
    CRynAudioOutput& h = phones.Output();
    CRynAudioOutput& m = mixer.MainOutput();
    EXPECT_TRUE(h.IsForwardPlaying(0));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);
    EXPECT_EQ(h.ForwardFrequency(0), m.ForwardFrequency(0));
    EXPECT_LT(std::abs(h.ForwardPlayCursor(0).bytes - m.ForwardPlayCursor(0).bytes), 20000);
    // From now on every block goes to both devices at the same place.
    ASSERT_TRUE(rig.RenderBlocks(5));
    EXPECT_EQ(h.ForwardWriteCursor(0).bytes, m.ForwardWriteCursor(0).bytes);

    // New deck buffers carry no settings: the headphones mix and pan again.
    phones.SetBalance(0, -0.5f);
    phones.SetCrossFader(-1.0f);
    SendAppMessage(mixer.Handle(), UWM_CREATE_DECK_BUFFERS, 0, 44100);
    ASSERT_NE(h.SoundEngine()->Deck(0).forward, nullptr);
    EXPECT_EQ(h.SoundEngine()->Deck(0).forward->Pan(), -5000);
    EXPECT_EQ(h.SoundEngine()->Deck(0).forward->Volume(),
              output::DeckGainToVolume(phones.Gains().Gain(0) * phones.Level(0)));

    // The main curve selector reaches the headphones.
    mixer.Panel().SetCurveParameter(-1.0f);
    EXPECT_FLOAT_EQ(phones.Gains().CurveParameter(), -1.0f);

    // Disabled again: the headphones are off, the main device plays on.
    SendAppMessage(mixer.Handle(), UWM_SET_SOUND_DEVICE, 1, 0);
    EXPECT_FALSE(phones.IsActive());
    EXPECT_TRUE(m.HasDevice());
    EXPECT_FALSE(h.HasDevice());
}

TEST(HeadphonesInMixer, ShowButtonsCloseBoxesAndTitleBars) {
    CRynHeadphonesMixer phones;
    PlaybackRig rig(false, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();
    CRynConfigure configure;
    configure.enumerate = [] { return std::vector<sound::SoundDeviceInfo>{}; };
    mixer.SetConfigureWindow(&configure);
    configure.Initialise(mixer.Handle());  // no devices: both outputs disabled

    MainMixerPanel& panel = mixer.Panel();
    panel.ShowPhonesButton()->SetValue(true);
    EXPECT_TRUE(phones.isVisible());
    panel.ShowOptionsButton()->SetValue(true);
    EXPECT_TRUE(configure.isVisible());
    EXPECT_EQ(configure.size(), QSize(500, 280));

    // The close boxes hide the windows and turn their buttons off.
    phones.close();
    configure.close();
    EXPECT_FALSE(phones.isVisible());
    EXPECT_FALSE(configure.isVisible());
    ASSERT_TRUE(testsupport::WaitFor(
        [&] { return !panel.ShowPhonesButton()->Value() && !panel.ShowOptionsButton()->Value(); }));

    // Title bars off and on again: the headphones mixer loses and regains
    // its frame; the main mixer keeps its own.
    panel.ShowPhonesButton()->SetValue(true);
    SendAppMessage(mixer.Handle(), UWM_TITLE_BARS, 0);
    EXPECT_TRUE(phones.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_FALSE(mixer.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(phones.isVisible());
    SendAppMessage(mixer.Handle(), UWM_TITLE_BARS, 1);
    EXPECT_FALSE(phones.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(Settings().GetTitleBarsOnState());
}

TEST(HeadphonesInMixer, AConfigurationRefreshReachesTheConfigurationWindowThroughTheMainMixer) {
    CRynHeadphonesMixer phones;
    PlaybackRig rig(false, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    CRynMainMixer& mixer = rig.Mixer();
    CRynConfigure configure;
    std::vector<sound::SoundDeviceInfo> devices;
    configure.enumerate = [&] { return devices; };
    mixer.SetConfigureWindow(&configure);
    configure.Initialise(mixer.Handle());  // no devices: both outputs disabled
    EXPECT_FALSE(mixer.MainOutput().HasDevice());
    const int before = configure.DeviceList(0)->count();

    // A device appears and is the stored main choice: the refresh the 3D
    // graph asks of the main mixer lists it and opens it for the main output.
    devices = {{"Null Output (silent)", sound::kNullDeviceId}};
    Settings().SetSoundDeviceMain(QStringLiteral("Null Output (silent)"));
    SendAppMessage(mixer.Handle(), UWM_CONFIG_REFRESH, 0, 0);
    EXPECT_EQ(configure.DeviceList(0)->count(), before + 1);
    ASSERT_TRUE(mixer.MainOutput().HasDevice());
    EXPECT_EQ(mixer.MainOutput().Device()->Identifier(), sound::kNullDeviceId);
    mixer.ChooseMainDevice(std::string());
}
