// The equalizer window on the offscreen platform: band counts (12 through
// the delayed path and its latency posts), levels, isolation, the cut-off
// lines, the taps slide and its timer, reset, right-click resets, anti-clip
// shown on the "AC" button and the second pointers, the stored settings,
// the device type's messages, and a rendering to equalizer-window.png.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QElapsedTimer>
#include <QTest>
#include <bit>
#include <cmath>
#include <vector>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "dsp/window/CRynEqualizer.h"
#include "dsp/window/CRynEqualizerLaws.h"
#include "settings/CRynSettings.h"

using testsupport::MessageLog;
using testsupport::WaitFor;

namespace {

void Click(CNiButton* b) {
    QTest::mouseClick(b, Qt::LeftButton, {}, b->rect().center());
}

// A window on deck A whose deck and main mixer are message logs.
struct EqualizerRig {
    EqualizerRig() {
        ResetEngineStateForTest();
        Engine().mainMixerWindow = mixer.Handle();
        eq.Initialise(0, deck.Handle());
        eq.resize(640, 440);
    }
    ~EqualizerRig() { ResetEngineStateForTest(); }
    MessageLog deck;
    MessageLog mixer;
    CRynEqualizer eq;
};

std::vector<double> Levels(const CRynEqualizer& eq) {
    std::vector<double> v;
    for (int b = 0; b < CRynEqualizer::kLevelSlides; ++b)
        v.push_back(eq.LevelSlide(b)->Value());
    return v;
}

// Blocks of a square wave near full scale: the bands' ringing pushes the
// sum past the 16-bit range.
template <typename Sample>
std::vector<Sample> Square(double amplitude) {
    std::vector<Sample> x(kBlockFrames);
    for (int i = 0; i < kBlockFrames; ++i)
        x[i] = static_cast<Sample>((i / 147) % 2 ? amplitude : -amplitude);
    return x;
}

}  // namespace

TEST(EqualizerWindow, TwelveBandsComeAfter750MsTheOthersAtOnce) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    ASSERT_EQ(eq.BandCount(), 3);

    Click(eq.BandCountButton(6));
    EXPECT_EQ(eq.Engines().BandCount(), 6);
    EXPECT_EQ(Settings().GetNumBandsInEqualizer(0), 6);
    Click(eq.BandCountButton(2));
    EXPECT_EQ(eq.Engines().BandCount(), 2);
    EXPECT_EQ(rig.deck.Count(UWM_LATENCY_MAXIMUM), 0);

    QElapsedTimer clock;
    clock.start();
    Click(eq.BandCountButton(12));
    // Stored at once, designed later; the deck is asked for the longest
    // latency first.
    EXPECT_EQ(eq.BandCount(), 12);
    EXPECT_EQ(Settings().GetNumBandsInEqualizer(0), 12);
    EXPECT_EQ(eq.Engines().BandCount(), 2);
    ASSERT_TRUE(WaitFor([&] { return rig.deck.Count(UWM_LATENCY_MAXIMUM) == 1; }));
    EXPECT_EQ(rig.deck.got.back().w, 0u);
    EXPECT_EQ(rig.deck.got.back().l, 0);
    QTest::qWait(300);
    EXPECT_EQ(eq.Engines().BandCount(), 2);
    EXPECT_FALSE(eq.LevelSlide(11)->isVisibleTo(&eq));

    ASSERT_TRUE(WaitFor([&] { return eq.Engines().BandCount() == 12; }, 3000));
    EXPECT_GE(clock.elapsed(), 700);
    EXPECT_EQ(eq.Engines().TapCount(1), 500);
    EXPECT_TRUE(eq.LevelSlide(11)->isVisibleTo(&eq));
    ASSERT_TRUE(WaitFor([&] { return rig.deck.Count(UWM_LATENCY_MAXIMUM) == 2; }));
    EXPECT_EQ(rig.deck.got.back().l, 1);
    for (int b = 0; b < 12; ++b) {
        EXPECT_DOUBLE_EQ(eq.LevelSlide(b)->Value(), 1.0) << b;
        EXPECT_EQ(eq.LevelSlide(b)->PointerColor(0), eq_window::BandColour(b, 12)) << b;
        EXPECT_EQ(eq.Graph()->PlotColor(b), eq_window::BandColour(b, 12)) << b;
    }
}

TEST(EqualizerWindow, ThreeBandsResetTheLevelsAndIsolateLeavesOneBand) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    Click(eq.BandCountButton(6));
    for (int b = 0; b < 6; ++b)
        eq.LevelSlide(b)->SetValue(0.3 + 0.1 * b);
    EXPECT_FLOAT_EQ(eq.Engines().Level(4), 0.7f);

    Click(eq.BandCountButton(3));
    EXPECT_EQ(Levels(eq), std::vector<double>({1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_FLOAT_EQ(eq.Engines().Level(2), 1.0f);
    EXPECT_EQ(eq.SelectedBandSlide()->Maximum(), 2.0);

    // Isolating band 1 of 6: only its slide stays up, and the total is its curve.
    Click(eq.BandCountButton(6));
    eq.SelectedBandSlide()->SetValue(1);
    eq.LevelSlide(1)->SetValue(0.8);
    Click(eq.IsolateButton());
    EXPECT_EQ(Levels(eq), std::vector<double>({0, 0.8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    const QVector<double> total = eq.Graph()->PlotData(CRynEqualizer::kTotalPlot);
    const QVector<double> band = eq.Graph()->PlotData(1);
    ASSERT_EQ(total.size(), 150);
    ASSERT_EQ(band.size(), 150);
    for (int i = 0; i < 150; ++i) {
        // Where the band is far above the floor of the other bands at 0.
        if (band[i] > 75.0) {
            EXPECT_NEAR(total[i], band[i], 0.01) << i;
        }
    }
    // A right click returns a slide to its resting level.
    CNiSlide* s = eq.LevelSlide(3);
    QTest::mouseClick(s, Qt::RightButton, {}, s->rect().center());
    EXPECT_DOUBLE_EQ(s->Value(), 1.0);
    EXPECT_FLOAT_EQ(eq.Engines().Level(3), 1.0f);
}

TEST(EqualizerWindow, CrossedCutOffLineSnapsAndAnOrdinaryDragMovesTheEdge) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    eq.show();
    Click(eq.BandCountButton(6));
    eq.SelectedBandSlide()->SetValue(2);
    CNiGraph* g = eq.Graph();
    const auto& engine = eq.Engines().LeftFloat();
    const double lowEdge = engine.CutoffHz(2, 0);
    const double lowX = g->CursorX(CRynEqualizer::kLowLine);
    const double highX = g->CursorX(CRynEqualizer::kHighLine);
    ASSERT_EQ(lowX, engine.CutoffPlotIndex(2, 0));
    ASSERT_EQ(highX, engine.CutoffPlotIndex(2, 1));
    ASSERT_LT(lowX, highX);

    // Low line dragged past the high one: it sits on the high line, and the
    // band keeps its edges and its filter (as the press left them).
    QTest::mousePress(g, Qt::LeftButton, {}, g->ToPixel(lowX, 50).toPoint());
    const double low = engine.CutoffHz(2, 0), high = engine.CutoffHz(2, 1);
    const std::vector<double> taps(engine.DesignedTaps(2).begin(), engine.DesignedTaps(2).end());
    EXPECT_NEAR(low, lowEdge, 1e-6);
    QTest::mouseMove(g, g->ToPixel(highX + 10, 50).toPoint());
    QTest::mouseRelease(g, Qt::LeftButton, {}, g->ToPixel(highX + 10, 50).toPoint());
    EXPECT_DOUBLE_EQ(g->CursorX(CRynEqualizer::kLowLine), highX);
    EXPECT_EQ(engine.CutoffHz(2, 0), low);
    EXPECT_EQ(engine.CutoffHz(2, 1), high);
    EXPECT_EQ(std::vector<double>(engine.DesignedTaps(2).begin(), engine.DesignedTaps(2).end()),
              taps);

    // Selecting the band again puts the lines on its edges; a drag of the
    // low line to the left lowers the low edge on all four engines.
    eq.SelectedBandSlide()->SetValue(1);
    eq.SelectedBandSlide()->SetValue(2);
    ASSERT_DOUBLE_EQ(g->CursorX(CRynEqualizer::kLowLine), lowX);
    QTest::mousePress(g, Qt::LeftButton, {}, g->ToPixel(lowX, 50).toPoint());
    QTest::mouseMove(g, g->ToPixel(lowX - 8, 50).toPoint());
    QTest::mouseRelease(g, Qt::LeftButton, {}, g->ToPixel(lowX - 8, 50).toPoint());
    const int moved = static_cast<int>(g->CursorX(CRynEqualizer::kLowLine));
    EXPECT_LT(moved, lowX);
    EXPECT_LT(engine.CutoffHz(2, 0), low);
    EXPECT_EQ(eq.Engines().Left16().CutoffPlotIndex(2, 0), engine.CutoffPlotIndex(2, 0));
    EXPECT_EQ(eq.Engines().RightFloat().CutoffHz(2, 0), engine.CutoffHz(2, 0));

    // The first band has only its upper line, the last only its lower one.
    eq.SelectedBandSlide()->SetValue(0);
    EXPECT_TRUE(g->CursorX(CRynEqualizer::kHighLine) > 0);
    eq.SelectedBandSlide()->SetValue(5);
    EXPECT_EQ(eq.SelectedBand(), 5);
}

TEST(EqualizerWindow, TapsSettleFor100MsAndResetRestoresTheDefaults) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    Click(eq.BandCountButton(6));
    eq.SelectedBandSlide()->SetValue(1);
    EXPECT_EQ(eq.TapsSlide()->Value(), 396.0);
    EXPECT_EQ(eq.TapsDisplay()->Caption(), "396");
    EXPECT_FALSE(eq.TapChangePending());

    eq.TapsSlide()->SetValue(200);
    eq.TapsSlide()->SetValue(250);
    EXPECT_TRUE(eq.TapChangePending());
    EXPECT_EQ(eq.Engines().TapCount(1), 396);
    ASSERT_TRUE(WaitFor([&] { return !eq.TapChangePending(); }, 1000));
    EXPECT_EQ(eq.Engines().TapCount(1), 250);
    EXPECT_EQ(eq.Engines().Right16().TapCount(1), 250);
    EXPECT_EQ(eq.TapsDisplay()->Caption(), "250");

    // A change still settling when another band is selected goes to its band.
    eq.TapsSlide()->SetValue(120);
    eq.SelectedBandSlide()->SetValue(3);
    EXPECT_EQ(eq.Engines().TapCount(1), 120);
    EXPECT_EQ(eq.Engines().TapCount(3), 75);
    EXPECT_EQ(eq.TapsSlide()->Value(), 75.0);

    Click(eq.ResetButton());
    const std::vector<int> defaults{182, 396, 162, 75, 49, 25};
    for (int b = 0; b < 6; ++b) {
        EXPECT_EQ(eq.Engines().TapCount(b), defaults[b]) << b;
        EXPECT_EQ(eq.Engines().LeftFloat().DesignedTaps(b).size(),
                  static_cast<std::size_t>(defaults[b]))
            << b;
    }
    EXPECT_EQ(eq.SelectedBand(), 3);
}

TEST(EqualizerWindow, AntiClipShowsRedForAClippingBlockAndTheGainsRecover) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    Click(eq.BandCountButton(3));
    eq.AntiClipButton()->SetValue(true);
    EXPECT_EQ(eq.AntiClipButton()->Caption(), "AC on");
    eq.LevelSlide(1)->SetValue(0.9);

    auto loud = Square<float>(32000);
    auto loudRight = loud;
    eq.ProcessStereo(loud.data(), loudRight.data(), true);
    EXPECT_EQ(eq.AntiClipButton()->OnColor(), CRynEqualizer::kClipColour);
    bool anyBelow = false;
    for (int b = 0; b < 3; ++b) {
        CNiSlide* s = eq.LevelSlide(b);
        EXPECT_LE(s->PointerValue(1), s->Value() + 1e-6) << b;
        anyBelow |= s->PointerValue(1) < s->Value() - 0.05;
    }
    EXPECT_TRUE(anyBelow);
    for (float v : loud)
        ASSERT_LE(std::abs(v), 32767.0f);

    // Quiet blocks: black again, and each gain climbs back to its level.
    auto quietBlock = [&] {
        std::vector<float> l(kBlockFrames, 0.0f), r(kBlockFrames, 0.0f);
        eq.ProcessStereo(l.data(), r.data(), true);
    };
    quietBlock();
    EXPECT_EQ(eq.AntiClipButton()->OnColor(), CRynEqualizer::kNoClipColour);
    EXPECT_LT(eq.LevelSlide(0)->PointerValue(1), 0.5);
    for (int block = 0; block < 60; ++block)
        quietBlock();
    for (int b = 0; b < 3; ++b)
        EXPECT_NEAR(eq.LevelSlide(b)->PointerValue(1), eq.LevelSlide(b)->Value(), 1e-6) << b;

    // The 16-bit engines scale by half under anti-clip: a full-scale block
    // does not clip there.
    auto loud16 = Square<std::int16_t>(32000);
    auto loud16Right = loud16;
    eq.ProcessStereo(loud16.data(), loud16Right.data(), true);
    EXPECT_EQ(eq.AntiClipButton()->OnColor(), CRynEqualizer::kNoClipColour);
    ASSERT_TRUE(loud.size() > 0);
    EXPECT_TRUE(Settings().GetEqClipProtectOnState(0));
    eq.LevelSlide(0)->SetPointerValue(1, 0.2);
    eq.AntiClipButton()->SetValue(false);
    EXPECT_EQ(eq.AntiClipButton()->OnColor(), CRynEqualizer::kNoClipColour);
    EXPECT_DOUBLE_EQ(eq.LevelSlide(0)->PointerValue(1), 1.0);
    EXPECT_FALSE(Settings().GetEqClipProtectOnState(0));
}

TEST(EqualizerWindow, StoredSettingsAreAppliedAndChangesAreSaved) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    CRynSettings& s = Settings();
    s.SetNumBandsInEqualizer(0, 6);
    s.SetEqFilterType(0, QStringLiteral("Blackman"));
    s.SetEqClipProtectOnState(0, false);
    s.SetEqOnState(0, true);
    s.SetDeckEQType(0, 1);
    eq.ApplyStoredSettings();
    EXPECT_EQ(eq.Engines().BandCount(), 6);
    EXPECT_EQ(eq.FilterTypeList()->currentText(), "Blackman");
    EXPECT_EQ(eq.Engines().LeftFloat().WindowType(), dsp::FirWindow::Blackman);
    EXPECT_FALSE(eq.AntiClipButton()->Value());
    EXPECT_TRUE(eq.IsOn());

    // Names are compared exactly; counts other than 2, 3, 6 and 12 are ignored.
    s.SetEqFilterType(0, QStringLiteral("hamming"));
    s.SetNumBandsInEqualizer(0, 5);
    eq.ApplyStoredSettings();
    EXPECT_EQ(eq.FilterTypeList()->currentText(), "Blackman");
    EXPECT_EQ(eq.Engines().BandCount(), 6);

    eq.FilterTypeList()->setCurrentText(QStringLiteral("Hamming"));
    EXPECT_EQ(s.GetEqFilterType(0), "Hamming");
    EXPECT_EQ(eq.Engines().Right16().WindowType(), dsp::FirWindow::Hamming);
    Click(eq.OnButton());
    EXPECT_FALSE(s.GetEqOnState(0));
    // The list is sorted and offers no "Gaussian".
    QStringList items;
    for (int i = 0; i < eq.FilterTypeList()->count(); ++i)
        items << eq.FilterTypeList()->itemText(i);
    EXPECT_EQ(items, QStringList({"Bartlett", "Blackman", "Hamming", "Hanning", "Rectangular"}));
}

TEST(EqualizerWindow, TheDeviceTypeForwardsItsSettingsToTheMainMixer) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    Click(eq.BandCountButton(3));
    eq.SetEqualizerType(CRynEqualizer::EqType::Device);
    EXPECT_FALSE(eq.OwnType());
    EXPECT_FALSE(eq.AntiClipButton()->isVisibleTo(&eq));

    Click(eq.BandCountButton(6));
    ASSERT_EQ(rig.mixer.Count(UWM_DEVICE_EQ_BANDS), 1);
    // Every level rests at 0.5 (the 0 dB line of the staircase).
    EXPECT_DOUBLE_EQ(eq.LevelSlide(5)->Value(), 0.5);
    // Each band's resting gain went to the device, band by band.
    ASSERT_TRUE(WaitFor([&] { return rig.mixer.Count(UWM_EQ_BAND_GAIN) == 6; }));
    rig.mixer.got.clear();
    eq.LevelSlide(2)->SetValue(0.75);
    ASSERT_TRUE(WaitFor([&] { return rig.mixer.Count(UWM_EQ_BAND_GAIN) == 1; }));
    EXPECT_EQ(rig.mixer.got[0].msg, UWM_EQ_BAND_GAIN);
    EXPECT_EQ(rig.mixer.got[0].w, 2u);  // deck A (0) in the high 16 bits, band 2
    EXPECT_EQ(std::bit_cast<float>(static_cast<std::uint32_t>(rig.mixer.got[0].l)), 0.75f);
    const QVector<double> stairs = eq.Graph()->PlotData(CRynEqualizer::kTotalPlot);
    EXPECT_NEAR(stairs[2 * 25], 0.75 * 192.66, 1e-3);
    EXPECT_NEAR(stairs[0], 0.5 * 192.66, 1e-3);

    Click(eq.OnButton());
    ASSERT_EQ(rig.mixer.Count(UWM_DEVICE_EQ_ON), 1);
    EXPECT_EQ(rig.mixer.got.back().l, 1);

    // Back to the own type: the device equalizer goes off and the bands start flat.
    eq.SetEqualizerType(CRynEqualizer::EqType::Own);
    EXPECT_EQ(rig.mixer.got.back().msg, UWM_DEVICE_EQ_ON);
    EXPECT_EQ(rig.mixer.got.back().l, 0);
    EXPECT_EQ(eq.IsolateButton()->Caption(), "Isolate -->");
    EXPECT_EQ(Levels(eq), std::vector<double>({1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0}));
}

TEST(EqualizerWindow, RendersToAPng) {
    EqualizerRig rig;
    CRynEqualizer& eq = rig.eq;
    Click(eq.BandCountButton(6));
    eq.AntiClipButton()->SetValue(true);
    eq.OnButton()->SetValue(true);
    eq.SelectedBandSlide()->SetValue(2);
    for (int b = 0; b < 6; ++b)
        eq.LevelSlide(b)->SetValue(0.55 + 0.08 * b);
    std::vector<float> x(kBlockFrames), y(kBlockFrames);
    for (int i = 0; i < kBlockFrames; ++i)
        x[i] = y[i] = static_cast<float>(30000.0 * std::sin(i * 0.05));
    eq.ProcessStereo(x.data(), y.data(), true);
    eq.show();
    QApplication::processEvents();
    const QImage img = eq.grab().toImage();
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/equalizer-window.png");
    ASSERT_TRUE(img.save(file, "PNG"));
    // Not a blank picture: the plot holds band colours.
    int coloured = 0;
    for (int yy = 0; yy < img.height(); yy += 2) {
        for (int xx = 0; xx < img.width(); xx += 2) {
            const QColor c = img.pixelColor(xx, yy);
            coloured += std::abs(c.red() - c.green()) > 60 || std::abs(c.green() - c.blue()) > 60;
        }
    }
    EXPECT_GT(coloured, 200);
}
