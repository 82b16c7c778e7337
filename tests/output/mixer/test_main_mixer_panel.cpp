// The main mixer's controls driving a real output on the manual-clock Null
// device: deck volumes from the levels, the cross fader and its curve, the
// master gain from main volume and balance, auto-pan, the mouse's right clicks
// and end arrows, the settings, and a picture of the panel.
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <memory>
#include <vector>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/laws/AutoPan.h"
#include "output/laws/MasterLine.h"
#include "output/mixer/MainMixerPanel.h"
#include "platform/sound/SoundDevice.h"
#include "settings/CRynSettings.h"
#include "settings/SettingsStore.h"

namespace {

constexpr float kStep = 1.0f / 99.0f;

// The deck gain law: 1.0 is 0, 0.0001 and below silence (-10000), otherwise
// -2500 + trunc(2500 · g) hundredths of a decibel.
int Law(float gain) {
    if (gain >= 1.0f)
        return 0;
    if (gain <= 0.0001f)
        return -10000;
    return -2500 + static_cast<int>(2500.0f * gain);
}

class MainMixerPanelTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetEngineStateForTest();
        ASSERT_EQ(
            out.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0),
            kStatusOk);
        ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
        ASSERT_EQ(out.CreateDeckBuffers(1, 44100, true), kStatusOk);
        store = std::make_unique<SettingsStore>(dir.path() + QStringLiteral("/Mixora.conf"),
                                                [](const QString&) {});
        settings = std::make_unique<CRynSettings>(*store, [] { return QSize(1024, 740); });
    }

    void MakePanel(CRynAudioOutput* output) {
        panel = std::make_unique<MainMixerPanel>(output, settings.get());
        panel->onCurveChanged = [this](float c) { curves.push_back(c); };
        panel->onCrossFaderMoved = [this] { ++faderMoves; };
        panel->setAttribute(Qt::WA_DontShowOnScreen);
        panel->resize(340, 300);
        panel->show();
        panel->Initialise();
    }

    int DeviceVolume(int deck) { return out.SoundEngine()->Deck(deck).forward->Volume(); }

    QTemporaryDir dir;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<CRynSettings> settings;
    CRynAudioOutput out;
    std::unique_ptr<MainMixerPanel> panel;  // destroyed before the output
    std::vector<float> curves;
    int faderMoves = 0;
};

TEST_F(MainMixerPanelTest, CurveShapesTheGainsAtTheCentre) {
    MakePanel(&out);
    panel->SetLevel(0, 0.8f);
    panel->SetLevel(1, 0.6f);
    panel->SetCrossFader(0.0f);
    EXPECT_EQ(panel->Gains().Index(), 49);

    // Ramp: both decks get 49/99 of their level.
    panel->SetCurveParameter(0.0f);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(0), 49 * kStep);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(1), 49 * kStep);
    EXPECT_EQ(DeviceVolume(0), -1511);  // 0.495 · 0.8
    EXPECT_EQ(DeviceVolume(1), -1758);  // 0.495 · 0.6
    EXPECT_EQ(out.SoundEngine()->Deck(0).reverse->Volume(), -1511);

    // Wedge: full gain at the centre, so the levels alone.
    panel->SetCurveParameter(1.0f);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(0), 1.0f);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(1), 1.0f);
    EXPECT_EQ(DeviceVolume(0), Law(0.8f));
    EXPECT_EQ(DeviceVolume(1), Law(0.6f));

    // Logarithmic: the cube root of 49/99, about 0.791.
    panel->SetCurveParameter(-1.0f);
    const float cube = static_cast<float>(std::pow(static_cast<double>(49 * kStep), 1.0 / 3.0));
    EXPECT_NEAR(cube, 0.791, 0.001);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(0), cube);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(1), cube);
    EXPECT_EQ(DeviceVolume(0), -918);
    EXPECT_EQ(DeviceVolume(1), -1314);

    // Each change went to the headphones hook and into the settings; the plot
    // shows the curves in use.
    EXPECT_EQ(curves, (std::vector<float>{0.0f, 1.0f, -1.0f}));
    EXPECT_FLOAT_EQ(settings->GetMainMixerXFaderCurveParameter(), -1.0f);
    EXPECT_FLOAT_EQ(panel->Gains().CurveParameter(), -1.0f);
    const QVector<double> b = panel->CrossFaderPlot()->PlotData(1);
    ASSERT_EQ(b.size(), 99);
    EXPECT_FLOAT_EQ(static_cast<float>(b[49]), cube);
    EXPECT_FLOAT_EQ(static_cast<float>(panel->CrossFaderPlot()->PlotData(0)[0]),
                    panel->Gains().Table(1)[98]);
}

TEST_F(MainMixerPanelTest, FaderEndsAndTheTableIndex) {
    MakePanel(&out);
    panel->SetCurveParameter(0.0f);
    panel->SetLevel(0, 1.0f);
    panel->SetLevel(1, 0.6f);

    // Start-up put the fader at -1: all deck A, and A's gain is T[98] = 98/99.
    panel->SetCrossFader(-1.0f);
    EXPECT_EQ(panel->Gains().Index(), 0);
    EXPECT_EQ(DeviceVolume(1), -10000);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(0), 98 * kStep);
    EXPECT_EQ(DeviceVolume(0), -26);  // -2500 + trunc(2500 · 0.9899)

    panel->SetCrossFader(0.999f);
    EXPECT_EQ(panel->Gains().Index(), 97);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(0), 1 * kStep);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(1), 97 * kStep);
    EXPECT_EQ(DeviceVolume(1), Law(97 * kStep * 0.6f));
    EXPECT_DOUBLE_EQ(panel->CrossFaderPlot()->CursorX(0), 97.0);

    panel->SetCrossFader(1.0f);
    EXPECT_EQ(panel->Gains().Index(), 98);
    EXPECT_EQ(DeviceVolume(0), -10000);
    EXPECT_EQ(DeviceVolume(1), Law(98 * kStep * 0.6f));

    // A level move applies the fader again.
    panel->SetLevel(1, 0.3f);
    EXPECT_EQ(DeviceVolume(1), Law(98 * kStep * 0.3f));

    // Timer 5 puts back gains something else changed.
    out.SetDeckGain(1, 1.0f);
    EXPECT_TRUE(panel->TimerActive(MainMixerPanel::kReapplyTimer));
    panel->FireTimerForTest(MainMixerPanel::kReapplyTimer);
    EXPECT_EQ(DeviceVolume(1), Law(98 * kStep * 0.3f));
}

TEST_F(MainMixerPanelTest, RightClickCentresAndArrowsMoveHalfwayAcross) {
    MakePanel(&out);
    panel->SetCurveParameter(0.0f);
    CNiSlide* fader = panel->CrossFaderSlide();
    ASSERT_DOUBLE_EQ(fader->Value(), -1.0);
    EXPECT_FALSE(panel->CatchUp());

    QTest::mouseClick(fader, Qt::RightButton, {}, fader->rect().center());
    EXPECT_DOUBLE_EQ(fader->Value(), 0.0);
    EXPECT_EQ(panel->Gains().Index(), 49);
    EXPECT_DOUBLE_EQ(panel->CrossFaderPlot()->CursorX(0), 49.0);
    EXPECT_EQ(faderMoves, 1);
    // Each move sets the catch-up switch; timer 1 clears it.
    EXPECT_TRUE(panel->CatchUp());
    EXPECT_TRUE(panel->TimerActive(MainMixerPanel::kCatchUpTimer));
    panel->FireTimerForTest(MainMixerPanel::kCatchUpTimer);
    EXPECT_FALSE(panel->CatchUp());

    const QPoint right(fader->width() - 8, fader->height() / 2);
    const QPoint left(8, fader->height() / 2);
    QTest::mouseClick(fader, Qt::LeftButton, {}, right);
    EXPECT_DOUBLE_EQ(fader->Value(), 1.0);
    EXPECT_EQ(panel->Gains().Index(), 98);
    EXPECT_TRUE(panel->CatchUp());
    QTest::mouseClick(fader, Qt::LeftButton, {}, right);  // held at the end
    EXPECT_DOUBLE_EQ(fader->Value(), 1.0);
    QTest::mouseClick(fader, Qt::LeftButton, {}, left);
    QTest::mouseClick(fader, Qt::LeftButton, {}, left);
    EXPECT_DOUBLE_EQ(fader->Value(), -1.0);
    EXPECT_EQ(panel->Gains().Index(), 0);
    EXPECT_EQ(DeviceVolume(1), -10000);

    // Centring an already centred fader still applies it.
    fader->SetValue(0.0);
    out.SetDeckGain(0, 1.0f);
    QTest::mouseClick(fader, Qt::RightButton, {}, fader->rect().center());
    EXPECT_EQ(DeviceVolume(0), Law(49 * kStep * panel->Level(0)));
}

TEST_F(MainMixerPanelTest, VolumeAndBalanceSetTheMasterLine) {
    MakePanel(&out);
    panel->SetVolume(0.8f);
    panel->SetBalance(-0.5f);
    EXPECT_EQ(out.MasterLeftPercent(), 80);
    EXPECT_EQ(out.MasterRightPercent(), 40);
    panel->SetBalance(0.25f);
    EXPECT_EQ(out.MasterLeftPercent(), 60);
    EXPECT_EQ(out.MasterRightPercent(), 80);

    CNiSlide* balance = panel->BalanceSlide();
    QTest::mouseClick(balance, Qt::RightButton, {}, balance->rect().center());
    EXPECT_DOUBLE_EQ(balance->Value(), 0.0);
    EXPECT_EQ(out.MasterLeftPercent(), 80);
    EXPECT_EQ(out.MasterRightPercent(), 80);

    // The main device disabled: the slides go grey and nothing is written.
    panel->SetMasterEnabled(false);
    EXPECT_FALSE(panel->VolumeSlide()->isEnabled());
    EXPECT_FALSE(balance->isEnabled());
    panel->SetVolume(0.3f);
    EXPECT_FLOAT_EQ(panel->Volume(), 0.3f);
    EXPECT_EQ(out.MasterLeftPercent(), 80);
    panel->SetMasterEnabled(true);
    panel->SetVolume(0.3f);  // unchanged value: written all the same
    EXPECT_EQ(out.MasterLeftPercent(), 30);
    EXPECT_EQ(out.MasterRightPercent(), 30);
}

TEST_F(MainMixerPanelTest, WithoutADeviceTheControlsStillMove) {
    CRynAudioOutput none;
    MakePanel(&none);
    panel->SetCurveParameter(1.0f);
    panel->SetCrossFader(0.0f);
    EXPECT_FLOAT_EQ(panel->Gains().Gain(1), 1.0f);
    panel->SetVolume(0.5f);
    panel->SetBalance(0.5f);
    EXPECT_EQ(none.MasterLeftPercent(), 100);  // never written
    EXPECT_FLOAT_EQ(panel->Balance(), 0.5f);
    panel.reset();

    MakePanel(nullptr);
    panel->SetCrossFader(0.5f);
    panel->SetCurveParameter(-0.5f);
    panel->SetAutoPan(true);
    panel->AutoPanTickForTest();
    EXPECT_FLOAT_EQ(panel->CrossFader(), 0.5f);
    EXPECT_FLOAT_EQ(panel->Curve(), -0.5f);
    EXPECT_NE(panel->Balance(), 0.0f);
}

TEST_F(MainMixerPanelTest, AutoPanWalksTheBalanceAndPutsItBack) {
    MakePanel(&out);
    EXPECT_FLOAT_EQ(panel->AutoPanSpeed(), 0.5f);
    EXPECT_DOUBLE_EQ(panel->AutoPanSpeedSlide()->Value(), 0.5);
    panel->SetVolume(0.8f);
    panel->BalanceSlide()->SetValue(0.3);  // not a float value: restored exactly

    panel->SetAutoPan(true);
    EXPECT_TRUE(panel->AutoPanButton()->Value());
    EXPECT_TRUE(panel->TimerActive(MainMixerPanel::kAutoPanTimer));
    float phase = 0.0f;
    for (int i = 0; i < 3; ++i) {
        panel->AutoPanTickForTest();
        phase += 0.1f * 0.5f * 6.2831936f;
        EXPECT_FLOAT_EQ(panel->AutoPanPhase(), phase);
        EXPECT_FLOAT_EQ(panel->Balance(), std::sin(phase));
        const LinePercent line =
            MasterLineLevels(panel->VolumeSlide()->Value(), panel->BalanceSlide()->Value());
        EXPECT_EQ(out.MasterLeftPercent(), line.left);
        EXPECT_EQ(out.MasterRightPercent(), line.right);
    }
    EXPECT_LT(out.MasterLeftPercent(), 80);  // panned right

    // The speed slide sets the step.
    panel->AutoPanSpeedSlide()->SetValue(1.0);
    panel->AutoPanTickForTest();
    phase += 0.1f * 1.0f * AutoPan::kTwoPi;
    EXPECT_FLOAT_EQ(panel->AutoPanPhase(), phase);

    panel->SetAutoPan(false);
    EXPECT_FALSE(panel->TimerActive(MainMixerPanel::kAutoPanTimer));
    EXPECT_EQ(panel->BalanceSlide()->Value(), 0.3);
    const LinePercent back = MasterLineLevels(panel->VolumeSlide()->Value(), 0.3);
    EXPECT_EQ(out.MasterLeftPercent(), back.left);
    EXPECT_EQ(out.MasterRightPercent(), 80);

    // The phase runs on when auto-pan comes back; the button works too.
    QTest::mouseClick(panel->AutoPanButton(), Qt::LeftButton);
    EXPECT_TRUE(panel->AutoPanOn());
    panel->AutoPanTickForTest();
    phase += 0.1f * 1.0f * AutoPan::kTwoPi;
    EXPECT_FLOAT_EQ(panel->AutoPanPhase(), phase);
    QTest::mouseClick(panel->AutoPanButton(), Qt::LeftButton);
    EXPECT_EQ(panel->BalanceSlide()->Value(), 0.3);
}

TEST_F(MainMixerPanelTest, LevelsComeFromAndGoToTheSettings) {
    settings->SetMainDeckLevel(0, 0.25f);
    settings->SetMainDeckLevel(1, 0.5f);
    MakePanel(&out);
    EXPECT_FLOAT_EQ(panel->Level(0), 0.25f);
    EXPECT_FLOAT_EQ(panel->Level(1), 0.5f);
    EXPECT_FLOAT_EQ(panel->CrossFader(), -1.0f);
    // Initialise applied the fader with the loaded levels (ramp, all deck A).
    EXPECT_EQ(DeviceVolume(0), Law(98 * kStep * 0.25f));
    EXPECT_EQ(DeviceVolume(1), -10000);

    // A drag is stored when the mouse lets go.
    CNiSlide* a = panel->DeckLevelSlide(0);
    const QPoint top(a->width() / 2, 10);
    QTest::mousePress(a, Qt::LeftButton, {}, a->rect().center());
    EXPECT_FLOAT_EQ(settings->GetMainDeckLevel(0), 0.25f);  // not while held
    QTest::mouseMove(a, top);
    QTest::mouseRelease(a, Qt::LeftButton, {}, top);
    EXPECT_GT(panel->Level(0), 0.9f);
    EXPECT_FLOAT_EQ(settings->GetMainDeckLevel(0), panel->Level(0));

    // Key moves are stored once they stop; a pending one when the panel goes.
    panel->SetLevel(1, 0.55f);
    panel->SetLevel(1, 0.56f);
    EXPECT_TRUE(testsupport::WaitFor([&] { return settings->GetMainDeckLevel(1) == 0.56f; }));
    panel->SetLevel(1, 0.4f);
    panel.reset();
    EXPECT_FLOAT_EQ(settings->GetMainDeckLevel(1), 0.4f);

    // The stored curve comes back through the layout step, even when the
    // selector already sits there.
    settings->SetMainMixerXFaderCurveParameter(0.0f);
    MakePanel(&out);
    curves.clear();
    panel->SetCurveParameter(settings->GetMainMixerXFaderCurveParameter());
    EXPECT_EQ(curves, std::vector<float>{0.0f});
}

TEST_F(MainMixerPanelTest, PanelPicture) {
    MakePanel(&out);
    panel->SetDeckColours(0, QColor(60, 200, 90), QColor(20, 80, 30));
    panel->SetDeckColours(1, QColor(230, 80, 200), QColor(90, 30, 80));
    EXPECT_EQ(panel->DeckLevelSlide(1)->PointerColor(0), QColor(230, 80, 200));
    EXPECT_EQ(panel->CrossFaderPlot()->PlotColor(0), QColor(60, 200, 90));
    panel->SetCurveParameter(-0.4f);
    panel->SetLevel(0, 0.8f);
    panel->SetLevel(1, 0.6f);
    panel->SetCrossFader(-0.3f);
    panel->SetVolume(0.75f);
    panel->SetBalance(0.2f);
    panel->SetAutoPan(true);
    const QImage image = panel->grab().toImage();
    ASSERT_FALSE(image.isNull());
    EXPECT_TRUE(image.save(QStringLiteral(MIXORA_BINARY_DIR "/main-mixer-panel.png")));
    // The three curve pictures differ from one another.
    const QImage ramp = panel->CurvePictureGraph(MainMixerPanel::kRampPicture)->grab().toImage();
    const QImage log = panel->CurvePictureGraph(MainMixerPanel::kLogPicture)->grab().toImage();
    const QImage wedge = panel->CurvePictureGraph(MainMixerPanel::kWedgePicture)->grab().toImage();
    EXPECT_NE(ramp, log);
    EXPECT_NE(ramp, wedge);
    panel->SetAutoPan(false);
}

}  // namespace
