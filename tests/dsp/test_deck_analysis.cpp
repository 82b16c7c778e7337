// The measurements of a deck's sound: the level laws, the scope band with
// its trigger, the beat range, and the analysis bank against the equalizer's
// own band outputs.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "dsp/AnalysisBank.h"
#include "dsp/BeatRange.h"
#include "dsp/DeckAnalysis.h"
#include "dsp/LevelLaws.h"
#include "dsp/ScopeBand.h"
#include "dsp/eq/EqualizerEngine.h"

namespace {

constexpr int kN = kBlockFrames;

std::vector<float> Sine(double hz, double amplitude, int blockIndex, double phase = 0.0) {
    std::vector<float> v(kN);
    for (int i = 0; i < kN; ++i) {
        const double t = (blockIndex * kN + i) / 44100.0;
        v[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hz * t + phase));
    }
    return v;
}

std::vector<std::int16_t> ToInt(const std::vector<float>& v) {
    std::vector<std::int16_t> out(v.size());
    for (size_t i = 0; i < v.size(); ++i)
        out[i] = static_cast<std::int16_t>(std::lround(v[i]));
    return out;
}

}  // namespace

TEST(LevelLaws, SilenceFullScaleAndTheLoneNegativePeak) {
    std::vector<std::int16_t> silent(kN, 0);
    const dsp::ChannelLevels s = dsp::MeasureChannel(silent);
    EXPECT_EQ(s.rmsDb, 0.0f);
    EXPECT_EQ(s.peakDb, 0.0f);

    std::vector<std::int16_t> left(kN, 3);
    left[100] = -32768;
    const dsp::ChannelLevels l = dsp::MeasureChannel(left);
    EXPECT_NEAR(l.peakDb, 20 * std::log10(32768.0), 1e-4);
    EXPECT_NEAR(l.peakDb, 90.31, 0.005);

    // A −6 dBFS sine: σ = 16384/√2 ≈ 11585 → 81.28 dB.
    const auto tone = ToInt(Sine(1000, 16384, 0));
    const dsp::ChannelLevels t = dsp::MeasureChannel(tone);
    // 26.7 cycles in a block: within 0.05 dB of the long-run value.
    EXPECT_NEAR(t.rmsDb, 20 * std::log10(16384 / std::sqrt(2.0)), 0.05);
}

TEST(LevelLaws, GroupsSmoothingAndBeatValue) {
    EXPECT_EQ(dsp::GroupsFor(6).groups, 3);
    EXPECT_EQ(dsp::GroupsFor(6).bandsPerGroup, 2);
    EXPECT_EQ(dsp::GroupsFor(2).groups, 2);
    EXPECT_EQ(dsp::GroupsFor(2).bandsPerGroup, 1);
    EXPECT_EQ(dsp::GroupsFor(24).bandsPerGroup, 8);
    EXPECT_NEAR(dsp::SmoothedLevel({1000, 1000, 1000, 1000, 1000}), 1000.0, 1e-9);
    EXPECT_NEAR(dsp::SmoothedLevel({3300, 0, 0, 0, 0}), 1000.0, 1e-9);
    EXPECT_NEAR(dsp::SmoothedLevel({0, 0, 0, 0, 3300}), 200.0, 1e-9);
    EXPECT_EQ(dsp::BeatValue(50, 0, 100), 0.5f);
    EXPECT_EQ(dsp::BeatValue(150, 0, 100), 1.0f);
    EXPECT_EQ(dsp::BeatValue(-1, 0, 100), 0.0f);
    EXPECT_EQ(dsp::BeatValue(70, 70, 70), 1.0f);  // a closed range reads as the peak
}

TEST(BeatRange, AutoRisesAtOnceAndFallsAThousandPerTick) {
    dsp::BeatRange r;
    r.SetCursors(100000, 120000);
    r.Widen(150000);  // a new peak sets high at once
    EXPECT_DOUBLE_EQ(r.High(), 150000);
    EXPECT_EQ(dsp::BeatValue(150000, r.Low(), r.High()), 1.0f);
    for (int i = 0; i < 10; ++i)  // one second of playing
        r.Narrow();
    EXPECT_DOUBLE_EQ(r.High(), 140000);
    EXPECT_DOUBLE_EQ(r.Low(), 110000);
    // A later, smaller peak reaches 1.0 again.
    EXPECT_EQ(dsp::BeatValue(141000, r.Low(), r.High()), 1.0f);
    // The range stays within 0 … 280000 and stops closing at one value.
    r.SetCursors(-5000, 300000);
    r.Narrow();
    EXPECT_DOUBLE_EQ(r.Low(), 0.0);
    EXPECT_DOUBLE_EQ(r.High(), 280000.0);
    r.SetCursors(50000, 50001);
    r.Narrow();
    EXPECT_DOUBLE_EQ(r.Low(), 50000);
    // Manual: fixed, and switching to it resets the cursors.
    r.SetAutomatic(false);
    EXPECT_DOUBLE_EQ(r.Low(), 0.0);
    EXPECT_DOUBLE_EQ(r.High(), 280000.0);
    r.Widen(290000);
    r.Narrow();
    EXPECT_DOUBLE_EQ(r.High(), 280000.0);
}

TEST(ScopeBand, TriggeredTracesStartAtAnUpwardZeroCrossing) {
    dsp::ScopeBand scope;
    const double factor = 0.05;  // step trunc(0.05 · 441) = 22 → held to 11
    EXPECT_EQ(scope.StepFor(factor), 11);
    EXPECT_EQ(scope.StepFor(0.001), 1);
    for (int block = 0; block < 6; ++block) {
        scope.Add(Sine(375, 8000, block, 2.0));  // ten cycles a block, each starting to fall
        const dsp::ScopeBand::Trace& t = scope.BuildTrace(factor, true);
        const int start = scope.LastStart();
        // The sample before the start is at or below zero, the start at or above.
        {
            EXPECT_GE(t[0], 0.0);
            EXPECT_LT(t[0], 8000 * std::sin(2 * std::numbers::pi * 375 / 44100.0) + 1);
            EXPECT_GT(t[1], t[0]);  // rising
            EXPECT_GT(start, 0);
        }
        scope.Advance();
    }
    // Without triggering the trace starts at the oldest block's first sample.
    dsp::ScopeBand plain;
    plain.Add(Sine(441, 8000, 0, 1.0));
    plain.Advance();
    const auto second = Sine(441, 8000, 1, 1.0);
    plain.Add(second);
    const dsp::ScopeBand::Trace& t = plain.BuildTrace(0.001, false);
    EXPECT_EQ(plain.LastStart(), 0);
    EXPECT_FLOAT_EQ(static_cast<float>(t[0]), Sine(441, 8000, 0, 1.0)[0]);
    EXPECT_FLOAT_EQ(static_cast<float>(t[5]), Sine(441, 8000, 0, 1.0)[5]);
}

TEST(AnalysisBank, SilenceReadsZeroAndAToneLandsInItsBand) {
    dsp::AnalysisBank bank;
    bank.SetNumberOfBands(12);
    std::vector<float> silent(kN, 0.0f);
    bank.Process(silent);
    for (int b = 0; b < 12; ++b)
        EXPECT_EQ(bank.BandLevel(b), 0.0) << b;

    // Against the equalizer's exact band outputs: a tone's own band within 1 dB.
    dsp::EqualizerEngineFloat exact;
    exact.SetNumberOfBands(12);
    for (double hz : {200.0, 1000.0, 5000.0}) {
        for (int block = 0; block < 3; ++block) {
            auto s = Sine(hz, 10000, block);
            bank.Process(s);
            bool clipped = false;
            exact.ProcessBlock(s.data(), false, false, clipped);
        }
        int loudest = 0;
        for (int b = 1; b < 12; ++b)
            if (exact.BandRmsMilliDb(b) > exact.BandRmsMilliDb(loudest))
                loudest = b;
        EXPECT_NEAR(bank.BandLevel(loudest), exact.BandRmsMilliDb(loudest), 1000.0) << hz;
        // Bands far from the tone read far lower.
        const int far = loudest < 6 ? 11 : 0;
        EXPECT_LT(bank.BandLevel(far), bank.BandLevel(loudest) - 20000.0) << hz;
    }
}

TEST(AnalysisBank, GroupOutputIsTheSumOfTheEqualizersBandOutputs) {
    dsp::AnalysisBank bank;
    bank.SetNumberOfBands(6);
    ASSERT_EQ(bank.Groups().groups, 3);
    dsp::EqualizerEngineFloat exact;
    exact.SetNumberOfBands(6);
    for (int block = 0; block < 2; ++block) {
        std::vector<float> s(kN);
        for (int i = 0; i < kN; ++i)
            s[i] = static_cast<float>(3000 * std::sin(0.01 * (block * kN + i) * (1 + i % 7)));
        bank.Process(s);
        bool clipped = false;
        exact.ProcessBlock(s.data(), false, false, clipped);
    }
    for (int g = 0; g < 3; ++g) {
        const auto out = bank.GroupOutput(g);
        ASSERT_EQ(out.size(), static_cast<size_t>(kN));
        for (int i = 0; i < kN; i += 37) {
            const double want = exact.BandOutput(2 * g)[i] + exact.BandOutput(2 * g + 1)[i];
            EXPECT_NEAR(out[i], want, 0.5) << g << " " << i;
        }
    }
}

TEST(DeckAnalysis, SlotsHoldWhatWasMeasuredAndCurrentValuesSmooth) {
    dsp::DeckAnalysis a;
    a.SetBandsInPlot(6);
    EXPECT_EQ(a.Groups().groups, 3);
    EXPECT_EQ(a.Groups().bandsPerGroup, 2);
    a.SetBandsInPlot(2);
    EXPECT_EQ(a.Groups().groups, 2);
    a.SetBandsInPlot(12);

    std::vector<std::int16_t> silent16(kN, 0);
    std::vector<float> silent(kN, 0.0f);
    a.MeasureChannels(5, silent16, silent16);
    a.AnalyzeBands(5, silent, silent);
    EXPECT_EQ(a.At(5).channels[0].rmsDb, 0.0f);
    EXPECT_EQ(a.At(5).channels[1].rmsDb, 0.0f);
    for (int b = 0; b < 12; ++b)
        EXPECT_EQ(a.At(5).channels[0].bands[b], 0.0);

    const auto tone = Sine(1000, 16384, 0);
    const auto tone16 = ToInt(tone);
    a.MeasureChannels(6, tone16, silent16);
    a.AnalyzeBands(6, tone, silent);
    EXPECT_NEAR(a.At(6).channels[0].rmsDb, 81.27, 0.02);
    EXPECT_EQ(a.At(6).channels[1].rmsDb, 0.0f);
    EXPECT_EQ(a.At(5).channels[0].rmsDb, 0.0f);  // the other slot is untouched

    // Current values: entry 0 unused, left + right smoothed, history weights.
    a.SetIntegerValues(true);
    int loud = 1;
    a.UpdateCurrent(6);
    auto cur = a.CurrentValues();
    ASSERT_EQ(cur.size(), 13u);
    EXPECT_EQ(cur[0], 0.0);
    for (int e = 1; e <= 12; ++e)
        if (cur[e] > cur[loud])
            loud = e;
    const double first = cur[loud];
    EXPECT_EQ(first, std::trunc(a.At(6).channels[0].bands[loud - 1] / 3.3));
    a.UpdateCurrent(6);
    EXPECT_NEAR(a.CurrentValues()[loud],
                std::trunc(1.9 / 3.3 * a.At(6).channels[0].bands[loud - 1]), 1.0);

    // Beat value of the selected band within the auto range.
    a.SetBeatBand(loud);
    a.Range().SetCursors(0, 1);
    a.UpdateCurrent(6);
    EXPECT_EQ(a.Range().High(), a.CurrentValues()[loud]);
    EXPECT_EQ(a.BeatValue(), 1.0f);
}
