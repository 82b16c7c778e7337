// The equalizer heard: a file of a 60 Hz and a 5 kHz tone plays on deck A
// through the real disc buffer, block routine, equalizer window and mix
// cycle onto the Null device. Three bands with band 0 at 0 take the low tone
// away and keep the high one; "EQ off" gives back the file sample for sample
// once the blocks written ahead have been heard; the 16-bit arithmetic,
// chosen through the main mixer's message, equalizes the same way.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QTest>
#include <cmath>
#include <complex>
#include <numbers>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/block/DeckBlockWork.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynMainMixer.h"
#include "settings/CRynSettings.h"

using testsupport::PlaybackRig;

namespace {

constexpr double kToneAmplitude = 8000.0;

std::int16_t TwoTones(int frame, int) {
    const double t = frame / 44100.0;
    const double v = kToneAmplitude * (std::sin(2 * std::numbers::pi * 60.0 * t) +
                                       std::sin(2 * std::numbers::pi * 5000.0 * t));
    return static_cast<std::int16_t>(std::lround(v));
}

// The level in dB, relative to the file's, of the tone at `hz` in the left
// channel of one second of output from `firstFrame` on (a whole number of
// periods of both tones, so neither leaks into the other's bin).
double ToneDb(const std::vector<std::int16_t>& out, long firstFrame, double hz) {
    const long n = 44100;
    std::complex<double> acc;
    for (long i = 0; i < n; ++i) {
        const double phase = -2 * std::numbers::pi * hz * i / 44100.0;
        acc += static_cast<double>(out[2 * (firstFrame + i)]) * std::polar(1.0, phase);
    }
    const double amplitude = 2.0 * std::abs(acc) / n;
    return 20.0 * std::log10(std::max(amplitude, 1e-9) / kToneAmplitude);
}

void Click(CNiButton* b) {
    QTest::mouseClick(b, Qt::LeftButton, {}, b->rect().center());
}

}  // namespace

TEST(DeckEqualizer, ThreeBandsTakeTheLowToneAwayAndEqOffGivesTheFileBack) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("tones-60-5000.wav");
    const int frames = 8 * 44100;
    const std::vector<std::int16_t> pcm = testsupport::WriteWav(path, 44100, frames, TwoTones);
    ASSERT_FALSE(pcm.empty());

    PlaybackRig rig(false, true);
    CRynDeck& deck = rig.Deck(0);
    CRynEqualizer& eq = rig.Equalizer(0);
    // The rectangular window gives the flattest sum of three bands at 5 kHz.
    eq.FilterTypeList()->setCurrentText(QStringLiteral("Rectangular"));
    Click(eq.BandCountButton(3));
    ASSERT_EQ(eq.Engines().BandCount(), 3);
    eq.LevelSlide(0)->SetValue(0.0);
    eq.AntiClipButton()->SetValue(false);
    Click(eq.OnButton());
    ASSERT_TRUE(eq.IsOn());
    EXPECT_EQ(eq.OnButton()->Caption(), "EQ on");

    ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
    ASSERT_TRUE(rig.Drop(0));
    const int phaseBlocks = 75;  // two seconds
    ASSERT_TRUE(rig.RenderBlocks(phaseBlocks));
    EXPECT_GT(deck.BlockWork().EqualizedBlocks(), phaseBlocks - 5);
    EXPECT_FALSE(deck.BlockWork().IntegerArithmetic());

    // Float arithmetic: the low tone falls by 30 dB or more, the high one
    // stays within 1 dB.
    const std::vector<std::int16_t>& out = rig.Output();
    const double lowFloat = ToneDb(out, 22050, 60.0);
    const double highFloat = ToneDb(out, 22050, 5000.0);
    EXPECT_LE(lowFloat, -30.0);
    EXPECT_NEAR(highFloat, 0.0, 1.0);

    // "EQ off": once the blocks written ahead with the equalizer have been
    // heard, the device plays the file sample for sample.
    Click(eq.OnButton());
    EXPECT_EQ(eq.OnButton()->Caption(), "EQ off");
    const long offBlock = static_cast<long>(out.size() / 2 / kBlockFrames);
    const long equalizedBefore = deck.BlockWork().EqualizedBlocks();
    // The blocks written ahead, and a few for the cycle's timing.
    const int lag = Engine().decks[0].writeAheadBlocks.load() + 3;
    ASSERT_TRUE(rig.RenderBlocks(lag + 40));
    EXPECT_EQ(deck.BlockWork().EqualizedBlocks(), equalizedBefore);
    const long from = (offBlock + lag) * kBlockFrames * 2;
    const long to = static_cast<long>(rig.Output().size());
    ASSERT_LT(from, to);
    long mismatches = 0;
    for (long i = from; i < to; ++i)
        mismatches += rig.Output()[i] != pcm[i];
    EXPECT_EQ(mismatches, 0) << "from frame " << from / 2 << " to " << to / 2;

    // Ints, through the main mixer's number-type message, the same way.
    SendAppMessage(rig.Mixer().Handle(), UWM_EQ_NUMBER_TYPE, 0, 1);
    EXPECT_TRUE(deck.BlockWork().IntegerArithmetic());
    EXPECT_TRUE(eq.IntegerArithmetic());
    EXPECT_EQ(Settings().GetDeckEQNumberType(0), 1);
    Click(eq.OnButton());
    const long intsBlock = static_cast<long>(rig.Output().size() / 2 / kBlockFrames);
    ASSERT_TRUE(rig.RenderBlocks(lag + 4 + 40));
    const long measureFrom = (intsBlock + lag + 4) * kBlockFrames;
    ASSERT_LE(measureFrom + 44100, static_cast<long>(rig.Output().size() / 2));
    EXPECT_LE(ToneDb(rig.Output(), measureFrom, 60.0), -30.0);
    EXPECT_NEAR(ToneDb(rig.Output(), measureFrom, 5000.0), 0.0, 1.0);
    // Both arithmetics agree to a small fraction of a decibel.
    EXPECT_NEAR(ToneDb(rig.Output(), measureFrom, 5000.0), highFloat, 0.1);

    SendAppMessage(rig.Mixer().Handle(), UWM_EQ_NUMBER_TYPE, 0, 0);
    EXPECT_FALSE(deck.BlockWork().IntegerArithmetic());
    EXPECT_EQ(Settings().GetDeckEQNumberType(0), 0);
}

TEST(DeckEqualizer, TheShowToggleFollowsTheWindowAndClosingItResetsTheToggle) {
    PlaybackRig rig(false, true);
    CRynDeck& deck = rig.Deck(0);
    CRynEqualizer& eq = rig.Equalizer(0);
    CNiButton* toggle = deck.findChild<CNiButton*>();
    for (CNiButton* b : deck.findChildren<CNiButton*>()) {
        if (b->Caption() == QLatin1String("Show The Equalizer:"))
            toggle = b;
    }
    ASSERT_EQ(toggle->Caption(), "Show The Equalizer:");
    EXPECT_FALSE(eq.isVisible());
    EXPECT_FALSE(toggle->Value());

    Click(toggle);
    EXPECT_TRUE(eq.isVisible());
    EXPECT_TRUE(toggle->Value());
    eq.close();
    EXPECT_FALSE(eq.isVisible());
    EXPECT_TRUE(testsupport::WaitFor([&] { return !toggle->Value(); }));

    // Shown by anything else (the start-up layout), the toggle goes on.
    eq.show();
    EXPECT_TRUE(toggle->Value());
    Click(toggle);
    EXPECT_FALSE(eq.isVisible());
}

TEST(DeckEqualizer, TheMainMixerSwitchesTheEqualizerTypeAndStoresIt) {
    PlaybackRig rig(false, true);
    CRynEqualizer& eq = rig.Equalizer(0);
    SendAppMessage(rig.Mixer().Handle(), UWM_EQ_TYPE, 0, 0);
    EXPECT_EQ(eq.Type(), CRynEqualizer::EqType::Device);
    EXPECT_EQ(Settings().GetDeckEQType(0), 0);
    SendAppMessage(rig.Mixer().Handle(), UWM_EQ_TYPE, 0, 1);
    EXPECT_EQ(eq.Type(), CRynEqualizer::EqType::Own);
    EXPECT_EQ(Settings().GetDeckEQType(0), 1);
    // A deck that does not exist is ignored.
    EXPECT_EQ(SendAppMessage(rig.Mixer().Handle(), UWM_EQ_TYPE, 5, 0), 0);
}
