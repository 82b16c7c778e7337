// The headphones mixer on Null devices with the manual clock: the drift
// correction's edges, Separate Ears on the ramp curve heard in the rendered
// output, a device that cannot be opened losing only the headphones, the
// volume law, and the window rendered to headphones-mixer.png.
#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <cmath>
#include <vector>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "output/engine/HeadphonesSync.h"
#include "output/engine/RingGeometry.h"
#include "output/laws/DeckGainLaw.h"
#include "output/laws/HeadphonesDrift.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "platform/sound/SoundDevice.h"
#include "settings/CRynSettings.h"

namespace {

std::unique_ptr<sound::SoundDevice> ManualNull() {
    return sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual);
}

// A headphones mixer on a manual Null device, messages shown into `shown`.
struct Phones {
    Phones() {
        ResetEngineStateForTest();
        mixer.showMessage = [this](const QString& m) { shown.push_back(m); };
        mixer.Initialise(0);
    }
    ~Phones() { ResetEngineStateForTest(); }
    CRynHeadphonesMixer mixer;
    std::vector<QString> shown;
};

// Fills the deck's forward ring with one constant frame value.
void FillRing(CRynAudioOutput& out, int deck, std::int16_t value) {
    PcmBlock block{};
    auto* s = reinterpret_cast<std::int16_t*>(block.data());
    for (int i = 0; i < kBlockFrames * 2; ++i)
        s[i] = value;
    for (int k = 0; k < kOutputRingBlocks; ++k)
        out.WriteForward(deck, block.data(), false);
}

}  // namespace

TEST(HeadphonesDriftLaw, TheShortWayRoundAndTheTolerance) {
    // 300000 bytes ahead with H < M is the other way round the ring.
    EXPECT_EQ(output::ShortWayDrift(300000 + 1000, 1000), 300000 - 564480);
    EXPECT_EQ(output::ShortWayDrift(300000 + 1000, 1000), -264480);
    EXPECT_EQ(output::ShortWayDrift(1000, 301000), 264480);
    EXPECT_EQ(output::ShortWayDrift(282240, 0), 282240);  // exactly half: as it is
    EXPECT_FALSE(output::DriftNeedsCorrection(10000));
    EXPECT_FALSE(output::DriftNeedsCorrection(-10000));
    EXPECT_TRUE(output::DriftNeedsCorrection(10001));
    EXPECT_TRUE(output::DriftNeedsCorrection(-10001));
    // 10000 bytes gathered in 28.35 s: 88.2 frames a second, cut to 88.
    EXPECT_EQ(output::FrequencyTrim(-10000, 28.35), -88);
    EXPECT_EQ(output::FrequencyTrim(10000, 0.0), 0);
}

TEST(HeadphonesMixer, DriftCorrectionEdges) {
    Phones p;
    CRynHeadphonesMixer& m = p.mixer;
    ASSERT_TRUE(m.OpenDevice(ManualNull()));
    ASSERT_TRUE(m.IsActive());
    CRynAudioOutput& out = m.Output();
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, false), kStatusOk);

    // Exactly 10000 bytes: no correction.
    out.SetForwardPositionBytes(0, 0);
    HeadphonesSync::Step s = m.SyncToMain(0, 10000, 1.0, 44100.0);
    EXPECT_EQ(s.drift, 10000);
    EXPECT_FALSE(s.repositioned);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 0);
    EXPECT_EQ(m.Sync().Corrections(0), 0);

    // 10004 (10001 rounded to a frame is the same cursor): the first
    // correction only repositions.
    s = m.SyncToMain(0, 10004, 2.0, 44100.0);
    EXPECT_TRUE(s.repositioned);
    EXPECT_EQ(s.frequencyChange, 0);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 10004);
    EXPECT_EQ(out.ForwardFrequency(0), 44100);
    EXPECT_EQ(Engine().decks[0].headphonesDrift.load(), 10004);

    // 300000 ahead with H < M: taken as -264480; the second correction also
    // trims the frequency by the drift gathered per second, in frames:
    // trunc(-264480 / (4 · 10 s)) = -6612 Hz.
    out.SetForwardPositionBytes(0, 1000);
    s = m.SyncToMain(0, 301000, 12.0, 44100.0);
    EXPECT_EQ(s.drift, -264480);
    EXPECT_TRUE(s.repositioned);
    EXPECT_EQ(s.frequencyChange, -6612);
    EXPECT_EQ(out.ForwardFrequency(0), 44100 - 6612);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 301000);
    // The diagnostics: the drift as 16 bits, the frequency, the deck rate.
    EXPECT_EQ(Engine().decks[0].headphonesDrift.load(), static_cast<std::int16_t>(-264480));
    EXPECT_EQ(Engine().decks[0].headphonesFrequency.load(), 44100 - 6612);
    EXPECT_EQ(Engine().decks[0].mainDeckRate.load(), 44100);

    // New deck buffers start over: their first correction only repositions.
    m.Sync().Reset(0);
    out.SetForwardPositionBytes(0, 0);
    s = m.SyncToMain(0, 20000, 13.0, 44100.0);
    EXPECT_TRUE(s.repositioned);
    EXPECT_EQ(s.frequencyChange, 0);

    // No device: nothing is synchronised.
    m.OpenDevice(std::string());
    EXPECT_FALSE(m.IsActive());
    s = m.SyncToMain(0, 200000, 14.0, 44100.0);
    EXPECT_FALSE(s.repositioned);
}

TEST(HeadphonesMixer, SeparateEarsOnTheRampCurveSplitsTheDecks) {
    Phones p;
    CRynHeadphonesMixer& m = p.mixer;
    ASSERT_TRUE(m.OpenDevice(ManualNull()));
    CRynAudioOutput& out = m.Output();
    for (int deck = 0; deck < 2; ++deck)
        ASSERT_EQ(out.CreateDeckBuffers(deck, 44100, false), kStatusOk);
    m.SetCurve(0.0f);  // ramp
    m.SetLevel(0, 1.0f);
    m.SetLevel(1, 1.0f);
    m.SetCrossFader(0.0f);
    m.SetSeparateEars(true);
    EXPECT_DOUBLE_EQ(m.BalanceSlide(0)->Value(), -1.0);
    EXPECT_DOUBLE_EQ(m.BalanceSlide(1)->Value(), 1.0);
    EXPECT_FLOAT_EQ(m.Gains().Gain(0), 49.0f / 99.0f);
    EXPECT_FLOAT_EQ(m.Gains().Gain(1), 49.0f / 99.0f);

    const double expected = 16000.0 * sound::VolumeToGain(output::DeckGainToVolume(49.0f / 99.0f));
    std::vector<std::int16_t> rendered(2 * 8192);
    // Deck A alone: the left ear only.
    FillRing(out, 0, 16000);
    FillRing(out, 1, 0);
    out.PlayForward(0);
    out.PlayForward(1);
    m.Output().Device()->Render(8192, rendered.data());  // past the fade-in
    m.Output().Device()->Render(1024, rendered.data());
    EXPECT_NEAR(rendered[0], expected, 2.0);
    EXPECT_EQ(rendered[1], 0);
    // Deck B alone: the right ear only.
    FillRing(out, 0, 0);
    FillRing(out, 1, 16000);
    m.Output().Device()->Render(1024, rendered.data());
    EXPECT_EQ(rendered[0], 0);
    EXPECT_NEAR(rendered[1], expected, 2.0);

    // Off: both balances back to the centre.
    m.ToggleSeparateEars();
    EXPECT_FALSE(m.SeparateEars());
    EXPECT_DOUBLE_EQ(m.BalanceSlide(0)->Value(), 0.0);
    EXPECT_DOUBLE_EQ(m.BalanceSlide(1)->Value(), 0.0);
}

TEST(HeadphonesMixer, ADeviceThatCannotBeOpenedLosesOnlyTheHeadphones) {
    Phones p;
    CRynHeadphonesMixer& m = p.mixer;
    CRynAudioOutput main;
    ASSERT_EQ(main.OpenDevice(ManualNull(), 0), kStatusOk);
    ASSERT_EQ(main.CreateDeckBuffers(0, 44100, false), kStatusOk);

    ASSERT_TRUE(m.OpenDevice(ManualNull()));
    m.SetVolume(0.6f);
    EXPECT_FALSE(m.OpenDevice("pa:Nowhere:no such device"));
    EXPECT_FALSE(m.IsActive());
    EXPECT_FALSE(m.Output().HasDevice());
    EXPECT_FALSE(m.VolumeSlide()->isEnabled());
    EXPECT_DOUBLE_EQ(m.VolumeSlide()->Value(), 0.0);
    ASSERT_EQ(p.shown.size(), 1u);
    EXPECT_TRUE(p.shown[0].contains("could not be opened")) << p.shown[0].toStdString();
    EXPECT_EQ(m.StatusText(), p.shown[0]);
    // The main output plays on.
    EXPECT_TRUE(main.HasDevice());
    EXPECT_EQ(main.PlayForward(0), kStatusOk);
    // Every headphones operation is a quiet no-op.
    EXPECT_EQ(m.Output().SetDeckPan(0, -1.0f), kStatusNotInitialised);
    m.SetCrossFader(0.5f);
    m.SetBalance(1, 0.3f);
}

TEST(HeadphonesMixer, VolumeIsTheDevicesMasterGainAndLevelsAreStored) {
    Phones p;
    CRynHeadphonesMixer& m = p.mixer;
    ASSERT_TRUE(m.OpenDevice(ManualNull()));
    // Opened: volume from the device (full), cross fader centred.
    EXPECT_FLOAT_EQ(m.Volume(), 1.0f);
    EXPECT_FLOAT_EQ(m.CrossFader(), 0.0f);
    m.SetVolume(0.8f);
    EXPECT_EQ(m.Output().MasterLeftPercent(), 80);
    EXPECT_EQ(m.Output().MasterRightPercent(), 80);
    // Levels are stored as the headphones levels.
    m.SetLevel(1, 0.25f);
    EXPECT_FLOAT_EQ(Settings().GetPhonesDeckLevel(1), 0.25f);
    // The curve follows the main selector: wedge, fader +1 gives deck B all.
    m.SetCurve(1.0f);
    m.SetCrossFader(1.0f);
    EXPECT_FLOAT_EQ(m.Gains().Gain(0), 0.0f);
    EXPECT_FLOAT_EQ(m.Gains().Gain(1), 1.0f);
}

TEST(HeadphonesMixer, RendersToAPicture) {
    Phones p;
    CRynHeadphonesMixer& m = p.mixer;
    m.SetDeckColours(0, QColor(70, 160, 255), QColor(20, 60, 140));
    m.SetDeckColours(1, QColor(255, 150, 50), QColor(130, 60, 10));
    ASSERT_TRUE(m.OpenDevice(ManualNull()));
    m.SetLevel(0, 0.8f);
    m.SetLevel(1, 0.5f);
    m.SetCrossFader(-0.4f);
    m.SetSeparateEars(true);
    m.resize(320, 300);
    const QImage image = m.grab().toImage();
    ASSERT_FALSE(image.isNull());
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/headphones-mixer.png");
    ASSERT_TRUE(image.save(file)) << file.toStdString();
}
