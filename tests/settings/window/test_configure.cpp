// The configuration window against a recording main mixer: the device lists
// and the one-device-one-output rule, the first start with one real device,
// the latency labels, every option stored and read back as after a restart,
// and the window rendered to configure.png.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "settings/CRynSettings.h"
#include "settings/SettingsStore.h"
#include "settings/window/CRynConfigure.h"
#include "settings/window/DeviceTable.h"
#include "settings/window/LatencyText.h"

using testsupport::MessageLog;

namespace {

const sound::SoundDeviceInfo kNull{"Null Output (silent)", "null"};
const sound::SoundDeviceInfo kCard{"Card (ALSA)", "pa:ALSA:card"};
const sound::SoundDeviceInfo kUsb{"USB Headset (ALSA)", "pa:ALSA:usb"};
const sound::SoundDeviceInfo kBroken{"Broken (ALSA)", "pa:ALSA:broken"};

class ConfigureTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetEngineStateForTest();
        qunsetenv("MIXORA_SOUND_DEVICE");
        Settings().SetSoundDeviceMain(QString());
        Settings().SetSoundDevicePhones(QString());
    }
    void TearDown() override { ResetEngineStateForTest(); }

    // A configuration window over `devices`, initialised against the log.
    std::unique_ptr<CRynConfigure> Make(std::vector<sound::SoundDeviceInfo> devices) {
        auto c = std::make_unique<CRynConfigure>();
        c->enumerate = [devices] { return devices; };
        c->canOpen = [](const std::string& id) { return id != kBroken.identifier; };
        c->Initialise(mixer.Handle());
        return c;
    }

    // The device sends, as (output, device identifier) pairs.
    std::vector<std::pair<int, std::string>> DeviceSends() const {
        std::vector<std::pair<int, std::string>> out;
        for (const auto& m : mixer.got) {
            if (m.msg == UWM_SET_SOUND_DEVICE)
                out.push_back({static_cast<int>(m.w), device_table::Identifier(m.l)});
        }
        return out;
    }

    MessageLog mixer;
};

using Sends = std::vector<std::pair<int, std::string>>;

}  // namespace

TEST_F(ConfigureTest, HeadphonesTakingTheMainDeviceDisableTheMainFirst) {
    Settings().SetSoundDeviceMain(kCard.description.c_str());
    Settings().SetSoundDevicePhones(kUsb.description.c_str());
    auto c = Make({kNull, kCard, kBroken, kUsb});
    QComboBox* main = c->DeviceList(0);
    QComboBox* phones = c->DeviceList(1);
    // Disabled first, the real devices in order, the Null device last; the
    // device that cannot be opened is not listed.
    ASSERT_EQ(main->count(), 4);
    EXPECT_EQ(main->itemText(0), "No Sound Device Selected (Disabled)");
    EXPECT_EQ(main->itemText(1), "Card (ALSA)");
    EXPECT_EQ(main->itemText(2), "USB Headset (ALSA)");
    EXPECT_EQ(main->itemText(3), "Null Output (silent)");
    EXPECT_EQ(phones->count(), 4);
    EXPECT_EQ(main->currentText(), "Card (ALSA)");
    EXPECT_EQ(phones->currentText(), "USB Headset (ALSA)");
    EXPECT_EQ(DeviceSends(), (Sends{{0, kCard.identifier}, {1, kUsb.identifier}}));

    mixer.got.clear();
    c->ChooseDevice(1, 1);  // the headphones take the card
    EXPECT_EQ(DeviceSends(), (Sends{{0, ""}, {1, kCard.identifier}}));
    EXPECT_EQ(main->currentIndex(), 0);
    EXPECT_EQ(phones->currentText(), "Card (ALSA)");
    EXPECT_EQ(Settings().GetSoundDeviceMain(), "No Sound Device Selected (Disabled)");
    EXPECT_EQ(Settings().GetSoundDevicePhones(), "Card (ALSA)");

    // Disabling never takes anything from the other output.
    mixer.got.clear();
    c->ChooseDevice(0, 0);
    EXPECT_EQ(DeviceSends(), (Sends{{0, ""}}));
    EXPECT_EQ(phones->currentText(), "Card (ALSA)");
}

TEST_F(ConfigureTest, OneRealDeviceGoesToTheMainOutputOnTheFirstStart) {
    auto c = Make({kNull, kCard});
    EXPECT_EQ(c->DeviceList(0)->currentText(), "Card (ALSA)");
    EXPECT_EQ(c->DeviceList(1)->currentIndex(), 0);
    EXPECT_EQ(DeviceSends(), (Sends{{0, kCard.identifier}, {1, ""}}));
    EXPECT_EQ(Settings().GetSoundDeviceMain(), "Card (ALSA)");
    EXPECT_EQ(Settings().GetSoundDevicePhones(), "No Sound Device Selected (Disabled)");

    // No device at all but the silent one: it plays the main output.
    mixer.got.clear();
    Settings().SetSoundDeviceMain(QString());
    Settings().SetSoundDevicePhones(QString());
    auto bare = Make({kNull});
    EXPECT_EQ(bare->DeviceList(0)->count(), 2);
    EXPECT_EQ(DeviceSends(), (Sends{{0, kNull.identifier}, {1, ""}}));

    // Stored devices that are gone (a card not plugged in): each output
    // keeps its choice, shown last in its list in grey and sent as missing so
    // that its mixer looks for it; neither takes another device meanwhile.
    mixer.got.clear();
    Settings().SetSoundDeviceMain("Gone (ALSA)");
    Settings().SetSoundDevicePhones("Gone too (ALSA)");
    auto gone = Make({kNull, kCard, kUsb});
    std::vector<std::pair<int, long long>> sent;
    for (const auto& m : mixer.got) {
        if (m.msg == UWM_SET_SOUND_DEVICE)
            sent.push_back({static_cast<int>(m.w), static_cast<long long>(m.l)});
    }
    const long long missing = device_table::kMissingDeviceItem;
    EXPECT_EQ(sent, (std::vector<std::pair<int, long long>>{{0, missing}, {1, missing}}));
    for (int output = 0; output < 2; ++output) {
        const QComboBox* list = gone->DeviceList(output);
        EXPECT_EQ(list->count(), 5);  // the missing one after the three listed
        EXPECT_EQ(list->currentIndex(), 4);
        EXPECT_EQ(list->currentData().toInt(), device_table::kMissingDeviceItem);
        EXPECT_FALSE(list->itemData(4, Qt::ToolTipRole).toString().isEmpty());
    }
    EXPECT_EQ(gone->DeviceList(0)->currentText(), "Gone (ALSA)");
    EXPECT_EQ(gone->DeviceList(1)->currentText(), "Gone too (ALSA)");
    EXPECT_EQ(Settings().GetSoundDevicePhones(), "Gone too (ALSA)");
    EXPECT_EQ(Settings().GetSoundDeviceMain(), "Gone (ALSA)");

    // Choosing a listed device ends the wait; coming back to the missing one
    // sends it as missing again, under its own stored name.
    mixer.got.clear();
    gone->ChooseDevice(0, 1);
    EXPECT_EQ(DeviceSends(), (Sends{{0, kCard.identifier}}));
    EXPECT_EQ(Settings().GetSoundDeviceMain(), kCard.description.c_str());
    mixer.got.clear();
    gone->ChooseDevice(0, 4);
    ASSERT_EQ(mixer.got.size(), 1u);
    EXPECT_EQ(mixer.got[0].l, device_table::kMissingDeviceItem);
    EXPECT_EQ(Settings().GetSoundDeviceMain(), "Gone (ALSA)");
    EXPECT_EQ(gone->DeviceList(1)->currentText(), "Gone too (ALSA)");

    // A forced main device (MIXORA_SOUND_DEVICE) still wins over a stored
    // one that is gone.
    mixer.got.clear();
    qputenv("MIXORA_SOUND_DEVICE", "pa:ALSA:usb");
    auto forced = Make({kNull, kCard, kUsb});
    qunsetenv("MIXORA_SOUND_DEVICE");
    ASSERT_FALSE(DeviceSends().empty());
    EXPECT_EQ(DeviceSends()[0], (std::pair<int, std::string>{0, kUsb.identifier}));
    EXPECT_EQ(forced->DeviceList(0)->findData(device_table::kMissingDeviceItem), -1);
}

TEST_F(ConfigureTest, LatencyLabelsAndTargets) {
    EXPECT_EQ(LatencySecondsText(10), "0.2 s");
    EXPECT_EQ(LatencySecondsText(1), "0 s");
    EXPECT_EQ(LatencySecondsText(38), "1 s");
    EXPECT_EQ(LatencySecondsText(40), "1 s");
    auto c = Make({kNull});
    c->LatencySlide(0)->SetValue(1);
    EXPECT_EQ(c->LatencyLabel(0)->text(), "0 s");
    EXPECT_EQ(Engine().decks[0].latencyBlocks.load(), 1);
    c->LatencySlide(1)->SetValue(10);
    EXPECT_EQ(c->LatencyLabel(1)->text(), "0.2 s");
    EXPECT_EQ(Engine().decks[1].latencyBlocks.load(), 10);
    EXPECT_EQ(Settings().GetEqLatencyInNotifies(1), 10);
    // The user's setting does not move the actual latency; the mix cycle's
    // write-ahead does.
    Engine().decks[0].writeAheadBlocks.store(38);
    c->RefreshActualLatency();
    EXPECT_DOUBLE_EQ(c->ActualLatencySlide(0)->Value(), 38.0);
    EXPECT_EQ(c->ActualLatencyLabel(0)->text(), "1 s");
    EXPECT_EQ(Engine().decks[0].latencyBlocks.load(), 1);
}

TEST_F(ConfigureTest, EveryOptionSurvivesARestart) {
    Settings().SetSoundDeviceMain(kCard.description.c_str());
    Settings().SetSoundDevicePhones(QString());
    {
        auto c = Make({kNull, kCard, kUsb});
        c->ChooseDevice(1, 2);
        c->EqTypeButton(0)->SetValue(!c->EqTypeButton(0)->Value());
        c->EqNumberTypeButton(1)->SetValue(!c->EqNumberTypeButton(1)->Value());
        c->GraphNumberTypeButton()->SetValue(true);  // "Ints"
        c->ScopeTriggerButton()->SetValue(false);
        c->ToolTipsButton()->SetValue(false);
        c->TitleBarsButton()->SetValue(false);
        c->TipOfTheDayBox()->setChecked(false);
        c->LatencySlide(0)->SetValue(17);
        c->LatencySlide(1)->SetValue(3);
        EXPECT_EQ(Engine().scopeTriggerOn.load(), 0);
        EXPECT_EQ(Engine().toolTipsOn.load(), 0);
        EXPECT_EQ(c->EqTypeButton(0)->Caption(), "Direct Sound");
        EXPECT_EQ(c->EqNumberTypeButton(1)->Caption(), "Ints");
    }
    // The equalizer buttons post to the main mixer, which stores them.
    ASSERT_TRUE(testsupport::WaitFor(
        [&] { return mixer.Count(UWM_EQ_TYPE) == 1 && mixer.Count(UWM_EQ_NUMBER_TYPE) == 1; }));
    for (const auto& m : mixer.got) {
        if (m.msg == UWM_EQ_TYPE) {
            EXPECT_EQ(m.w, 0u);
            EXPECT_EQ(m.l, 0);  // "Direct Sound"
            Settings().SetDeckEQType(0, 0);
        } else if (m.msg == UWM_EQ_NUMBER_TYPE) {
            EXPECT_EQ(m.w, 1u);
            EXPECT_EQ(m.l, 1);  // "Ints"
            Settings().SetDeckEQNumberType(1, 1);
        } else if (m.msg == UWM_GRAPH_NUMBER_TYPE) {
            EXPECT_EQ(m.w, 0u);
            EXPECT_EQ(m.l, 1);
            Settings().SetUseIntegersForGraphs(true);
        } else if (m.msg == UWM_TITLE_BARS) {
            EXPECT_EQ(m.w, 0u);
        }
    }

    // What a second run reads from the file.
    SettingsStore file(Settings().Store().FilePath());
    CRynSettings again(file);
    EXPECT_EQ(again.GetSoundDeviceMain(), "Card (ALSA)");
    EXPECT_EQ(again.GetSoundDevicePhones(), "USB Headset (ALSA)");
    EXPECT_EQ(again.GetGraphNumberType(), "Ints");
    EXPECT_FALSE(again.GetScopeTriggerOnState());
    EXPECT_FALSE(again.GetToolTipsOnSettingName());
    EXPECT_FALSE(again.GetTitleBarsOnState());
    EXPECT_FALSE(again.GetShowTipOfTheDay());
    EXPECT_EQ(again.GetEqLatencyInNotifies(0), 17);
    EXPECT_EQ(again.GetEqLatencyInNotifies(1), 3);

    // The second run's window: every control as left, the flags set, the
    // title bars taken off again, the same devices opened.
    ResetEngineStateForTest();
    mixer.got.clear();
    auto c = Make({kNull, kCard, kUsb});
    EXPECT_EQ(c->DeviceList(0)->currentText(), "Card (ALSA)");
    EXPECT_EQ(c->DeviceList(1)->currentText(), "USB Headset (ALSA)");
    EXPECT_EQ(c->EqTypeButton(0)->Caption(), "Direct Sound");
    EXPECT_EQ(c->EqTypeButton(1)->Caption(), "Orvane");
    EXPECT_EQ(c->EqNumberTypeButton(0)->Caption(), "Floats");
    EXPECT_EQ(c->EqNumberTypeButton(1)->Caption(), "Ints");
    EXPECT_EQ(c->GraphNumberTypeButton()->Caption(), "Ints");
    EXPECT_EQ(c->ScopeTriggerButton()->Caption(), "OFF");
    EXPECT_EQ(c->ToolTipsButton()->Caption(), "OFF");
    EXPECT_EQ(c->TitleBarsButton()->Caption(), "OFF");
    EXPECT_FALSE(c->TipOfTheDayBox()->isChecked());
    EXPECT_TRUE(c->SaveWindowPositionsBox()->isChecked());  // not a stored setting
    EXPECT_DOUBLE_EQ(c->LatencySlide(0)->Value(), 17.0);
    EXPECT_EQ(c->LatencyLabel(1)->text(), "0 s");
    EXPECT_EQ(Engine().decks[0].latencyBlocks.load(), 17);
    EXPECT_EQ(Engine().scopeTriggerOn.load(), 0);
    EXPECT_EQ(Engine().toolTipsOn.load(), 0);
    EXPECT_EQ(mixer.Count(UWM_TITLE_BARS), 1);
    EXPECT_EQ(DeviceSends(), (Sends{{0, kCard.identifier}, {1, kUsb.identifier}}));

    // Back to the defaults for the tests that follow.
    c->TitleBarsButton()->SetValue(true);
    c->ScopeTriggerButton()->SetValue(true);
    c->ToolTipsButton()->SetValue(true);
    c->TipOfTheDayBox()->setChecked(true);
    c->GraphNumberTypeButton()->SetValue(false);
    Settings().SetUseIntegersForGraphs(false);
    Settings().SetDeckEQType(0, 1);
    Settings().SetDeckEQNumberType(1, 0);
    c->LatencySlide(0)->SetValue(10);
    c->LatencySlide(1)->SetValue(10);
}

TEST_F(ConfigureTest, RendersToAPicture) {
    auto c = Make({kNull, kCard, kUsb});
    c->resize(500, 280);
    const QImage image = c->grab().toImage();
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(c->windowTitle(), "Mixora Configuration");
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/configure.png");
    ASSERT_TRUE(image.save(file)) << file.toStdString();
}

TEST_F(ConfigureTest, ARefreshListsTheDevicesAgainAndReopensTheChoices) {
    Settings().SetSoundDeviceMain(kCard.description.c_str());
    std::vector<sound::SoundDeviceInfo> devices{kNull, kCard};
    auto c = std::make_unique<CRynConfigure>();
    c->enumerate = [&devices] { return devices; };
    c->canOpen = [](const std::string& id) { return id != kBroken.identifier; };
    c->Initialise(mixer.Handle());
    EXPECT_EQ(c->DeviceList(1)->currentIndex(), 0);

    // A headset plugged in since: listed, and the stored choices opened again.
    devices = {kNull, kCard, kUsb};
    mixer.got.clear();
    SendAppMessage(c->Handle(), UWM_CONFIG_REFRESH);
    EXPECT_EQ(c->DeviceList(0)->count(), 4);
    EXPECT_EQ(c->DeviceList(0)->currentText(), "Card (ALSA)");
    EXPECT_EQ(DeviceSends(), (Sends{{0, kCard.identifier}, {1, ""}}));
}
