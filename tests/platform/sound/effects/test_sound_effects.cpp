// The deck effects measured on test signals played through a real buffer of
// the sound layer (manual-clock Null device): what each one does to the
// sound, at the parameters the deck's knobs set.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/CompressorEffect.h"
#include "platform/sound/effects/DistortionEffect.h"
#include "platform/sound/effects/EchoEffect.h"
#include "platform/sound/effects/EffectCatalog.h"
#include "platform/sound/effects/EffectProbe.h"
#include "platform/sound/effects/GargleEffect.h"
#include "platform/sound/effects/ModulatedDelayEffect.h"
#include "platform/sound/effects/ParamEqEffect.h"
#include "platform/sound/effects/ReverbEffect.h"

namespace {

using namespace effect_probe;
using namespace sound::fx;

std::pair<float, float> Silence(int) {
    return {0.0f, 0.0f};
}

auto Sine(double hz, double amplitude, int from = 0) {
    return [=](int i) -> std::pair<float, float> {
        if (i < from)
            return {0.0f, 0.0f};
        const auto v =
            static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hz * i / kRate));
        return {v, v};
    };
}

TEST(SoundEffects, EchoRepeatsAnImpulseAtTheDelayKnobAndTheFeedbackRatio) {
    auto echo = std::make_shared<EchoEffect>();
    ASSERT_EQ(ApplyKnob(*echo, EffectKind::Echo, 2, 750.0f), kStatusOk);
    EXPECT_EQ(echo->GetParameters().leftDelay, 750.0f);  // both delays follow the knob
    EXPECT_EQ(echo->GetParameters().rightDelay, 750.0f);
    ASSERT_EQ(ApplyKnob(*echo, EffectKind::Echo, 1, 60.0f), kStatusOk);
    constexpr int kAt = 1000, kDelay = 33075;  // 750 ms at 44100 Hz
    const Stereo out = PlayThrough(echo, kAt + 3 * kDelay, [](int i) -> std::pair<float, float> {
        return i == kAt ? std::pair{20000.0f, 20000.0f} : std::pair{0.0f, 0.0f};
    });
    // Wet/dry at 50 %: the dry impulse at half, then the repeats.
    EXPECT_NEAR(out.left[kAt], 10000, 2);
    const float first = out.left[kAt + kDelay];
    const float second = out.left[kAt + 2 * kDelay];
    EXPECT_NEAR(first, 10000, 2);
    EXPECT_NEAR(second / first, 0.6, 0.001);
    EXPECT_NEAR(out.right[kAt + 2 * kDelay], second, 1);
    // Nothing between the repeats.
    float between = 0;
    for (int i = kAt + 1; i < kAt + 2 * kDelay; ++i)
        if (i != kAt + kDelay)
            between = std::max(between, std::fabs(out.left[i]));
    EXPECT_LT(between, 1.0f);
}

// Power of harmonics 2..9 relative to the fundamental, in dB.
double HarmonicsDb(const std::vector<float>& x, int from, int to, double hz) {
    const double f = Amplitude(x, from, to, hz);
    double h = 0;
    for (int n = 2; n <= 9; ++n)
        h += std::pow(Amplitude(x, from, to, n * hz), 2);
    return 10 * std::log10(h / (f * f));
}

TEST(SoundEffects, DistortionAddsHarmonicsAsGainRises) {
    // The harmonics grow with the gain until the wave is nearly square.
    double last = -1000;
    for (float gain : {-50.0f, -40.0f, -30.0f, -20.0f, -10.0f, 0.0f}) {
        auto d = std::make_shared<DistortionEffect>();
        ASSERT_EQ(ApplyKnob(*d, EffectKind::Distortion, 1, gain), kStatusOk);
        const Stereo out = PlayThrough(d, kRate, Sine(441, 12000));
        const double h = HarmonicsDb(out.left, 4410, 4410 + 44100 / 2, 441);
        if (gain < 0.0f) {
            EXPECT_GT(h, last + 3) << "gain " << gain;
        } else {
            EXPECT_GT(h, last - 3) << "full gain stays as rich";
        }
        last = h;
        if (gain == -50.0f) {
            EXPECT_LT(h, -40) << "a low gain stays clean";
        }
    }
    EXPECT_GT(last, -12) << "full gain is heavily distorted";
}

TEST(SoundEffects, CompressorLowersALoudToneAndLeavesAQuietOne) {
    auto level = [](double amplitude) {
        auto c = std::make_shared<CompressorEffect>();  // -20 dB threshold, ratio 3
        const Stereo out = PlayThrough(c, kRate, Sine(1000, amplitude));
        return Db(Rms(out.left, kRate / 2, kRate) / (amplitude / std::sqrt(2.0)));
    };
    const double loud = level(16384);  // -6 dB of full scale: 14 dB over
    EXPECT_LT(loud, -7.0);
    EXPECT_GT(loud, -11.0);
    EXPECT_NEAR(level(328), 0.0, 0.2);  // -40 dB of full scale: untouched
}

// The delay (ms) of the wet signal of a 1 kHz sine, every 10 ms (ten whole
// periods), from its phase against the input.
std::vector<double> DelayTrack(const std::vector<float>& y, int from) {
    std::vector<double> d;
    double last = 0, turns = 0;
    for (int w = from; w + 441 <= static_cast<int>(y.size()); w += 441) {
        double re = 0, im = 0;
        for (int i = w; i < w + 441; ++i) {
            const double ph = 2 * std::numbers::pi * 1000.0 * i / kRate;
            re += y[i] * std::cos(ph);
            im += y[i] * std::sin(ph);
        }
        double cycles = std::atan2(-re, im) / (2 * std::numbers::pi);
        if (!d.empty()) {  // unwrap
            while (cycles + turns - last > 0.5)
                turns -= 1;
            while (cycles + turns - last < -0.5)
                turns += 1;
        }
        last = cycles + turns;
        d.push_back(last);  // 1 cycle = 1 ms at 1 kHz
    }
    return d;
}

// Rising crossings of the mean per second (10 ms a point), and the swing.
std::pair<double, double> Sweep(const std::vector<double>& d) {
    const double mean = std::accumulate(d.begin(), d.end(), 0.0) / d.size();
    std::vector<double> ups;
    for (std::size_t i = 1; i < d.size(); ++i)
        if (d[i - 1] < mean && d[i] >= mean)
            ups.push_back(i - 1 + (mean - d[i - 1]) / (d[i] - d[i - 1]));
    const auto [lo, hi] = std::minmax_element(d.begin(), d.end());
    if (ups.size() < 2)
        return {0.0, *hi - *lo};
    return {(ups.size() - 1) / ((ups.back() - ups.front()) * 0.01), *hi - *lo};
}

TEST(SoundEffects, ChorusAndFlangerDelayMovesAtTheSetFrequency) {
    {
        auto chorus = std::make_shared<ChorusEffect>();
        auto p = chorus->GetParameters();
        p.wetDryMix = 100;
        p.feedback = 0;  // wet only, no feedback: the output is the swept delay
        ASSERT_EQ(chorus->SetParameters(p), kStatusOk);
        ASSERT_EQ(ApplyKnob(*chorus, EffectKind::Chorus, 2, 2.5f), kStatusOk);
        const Stereo out = PlayThrough(chorus, 4 * kRate, Sine(1000, 8000));
        const auto [hz, swing] = Sweep(DelayTrack(out.left, kRate / 10));
        EXPECT_NEAR(hz, 2.5, 0.05);
        EXPECT_NEAR(swing, 2 * 0.1 * 16, 0.15);  // 16 ms +- 10 %
    }
    {
        auto flanger = std::make_shared<FlangerEffect>();
        auto p = flanger->GetParameters();
        p.wetDryMix = 100;
        p.feedback = 0;
        p.frequency = 0.75f;
        p.depth = 50;
        ASSERT_EQ(flanger->SetParameters(p), kStatusOk);
        ASSERT_EQ(ApplyKnob(*flanger, EffectKind::Flanger, 2, 3.0f), kStatusOk);
        const Stereo out = PlayThrough(flanger, 6 * kRate, Sine(1000, 8000));
        const auto [hz, swing] = Sweep(DelayTrack(out.left, kRate / 10));
        EXPECT_NEAR(hz, 0.75, 0.02);
        EXPECT_NEAR(swing, 3.0, 0.15);  // 3 ms +- 50 %
    }
}

TEST(SoundEffects, GargleModulatesAtTheRateWithTheChosenWave) {
    auto run = [](float waveKnob) {
        auto g = std::make_shared<GargleEffect>();
        EXPECT_EQ(ApplyKnob(*g, EffectKind::Gargle, 1, 25.7f), kStatusOk);
        EXPECT_EQ(g->GetParameters().rateHz, 25);
        EXPECT_EQ(ApplyKnob(*g, EffectKind::Gargle, 2, waveKnob), kStatusOk);
        return PlayThrough(g, kRate, [](int) { return std::pair{10000.0f, 10000.0f}; });
    };
    for (float knob : {0.99f, 1.0f}) {
        const Stereo out = run(knob);
        const bool square = knob >= 1.0f;
        EXPECT_EQ(KnobText(EffectKind::Gargle, 2, knob), square ? "sqr" : "tri");
        // Periods: the envelope rises through half level once a period.
        int rises = 0, silent = 0;
        const int from = 441;
        for (int i = from + 1; i < kRate; ++i) {
            rises += out.left[i - 1] < 5000 && out.left[i] >= 5000;
            silent += out.left[i] < 50;
        }
        EXPECT_NEAR(rises, 25 * (kRate - from) / kRate, 1);
        const double silentShare = static_cast<double>(silent) / (kRate - from);
        if (square) {
            EXPECT_NEAR(silentShare, 0.5, 0.01);
        } else {
            EXPECT_LT(silentShare, 0.02);
            // A triangle: a quarter period after a peak the level is half.
            const int period = kRate / 25;
            int peak = from;
            for (int i = from; i < from + period; ++i)
                if (out.left[i] > out.left[peak])
                    peak = i;
            EXPECT_NEAR(out.left[peak], 10000, 10);
            EXPECT_NEAR(out.left[peak + period / 4], 5000, 20);
            EXPECT_NEAR(Rms(out.left, from, from + 10 * period), 10000 / std::sqrt(3.0), 60);
        }
    }
}

// Reverb time from the energy decay (backward-integrated), -5 to -35 dB.
double DecayTime(const std::vector<float>& y, int from) {
    std::vector<double> edc(y.size() + 1, 0.0);
    for (int i = static_cast<int>(y.size()) - 1; i >= from; --i)
        edc[i] = edc[i + 1] + static_cast<double>(y[i]) * y[i];
    const double total = edc[from];
    int t5 = -1, t35 = -1;
    for (int i = from; i < static_cast<int>(y.size()); ++i) {
        const double db = 10 * std::log10(edc[i] / total);
        if (t5 < 0 && db <= -5)
            t5 = i;
        if (t35 < 0 && db <= -35)
            t35 = i;
    }
    return (t35 - t5) * 2.0 / kRate;  // 30 dB of fall, doubled for 60
}

TEST(SoundEffects, ReverbDecaysInTheSetTime) {
    for (float ms : {400.0f, 1000.0f, 2000.0f}) {
        auto rv = std::make_shared<ReverbEffect>();
        ASSERT_EQ(ApplyKnob(*rv, EffectKind::Reverb, 1, ms), kStatusOk);
        ASSERT_EQ(ApplyKnob(*rv, EffectKind::Reverb, 2, 0.999f), kStatusOk);
        const int at = 1000;
        const Stereo out =
            PlayThrough(rv, at + static_cast<int>(ms * 0.001f * 2.5f * kRate),
                        [](int i) -> std::pair<float, float> {
                            return i == at ? std::pair{30000.0f, 30000.0f} : std::pair{0.0f, 0.0f};
                        });
        EXPECT_NEAR(DecayTime(out.left, at + 1), ms * 0.001, ms * 0.001 * 0.2) << ms << " ms";
        EXPECT_NEAR(DecayTime(out.right, at + 1), ms * 0.001, ms * 0.001 * 0.2) << ms << " ms";
    }
    // A low high-frequency ratio dulls the tail: less of it above 5 kHz.
    auto bright = std::make_shared<ReverbEffect>();
    auto dull = std::make_shared<ReverbEffect>();
    ASSERT_EQ(ApplyKnob(*bright, EffectKind::Reverb, 2, 0.999f), kStatusOk);
    ASSERT_EQ(ApplyKnob(*dull, EffectKind::Reverb, 2, 0.1f), kStatusOk);
    auto noiseBurst = [](int i) -> std::pair<float, float> {
        const float v = i < 4410 ? static_cast<float>((i * 7919 % 2001) - 1000) * 10.0f : 0.0f;
        return {v, v};
    };
    const Stereo b = PlayThrough(bright, kRate, noiseBurst);
    const Stereo d = PlayThrough(dull, kRate, noiseBurst);
    const double hb = Amplitude(b.left, 13230, 22050, 6000) + Amplitude(b.left, 13230, 22050, 8000);
    const double hd = Amplitude(d.left, 13230, 22050, 6000) + Amplitude(d.left, 13230, 22050, 8000);
    EXPECT_LT(hd, hb * 0.3);
}

TEST(SoundEffects, ParametricBandGivesItsGainAtTheCentreAndNoneTwoOctavesAway) {
    for (float gain : {15.0f, -15.0f, 6.0f}) {
        auto band = std::make_shared<ParamEqEffect>();
        ASSERT_EQ(band->SetParameters({1000.0f, 12.0f, gain}), kStatusOk);
        auto measure = [&](double hz) {
            const Stereo out = PlayThrough(band, kRate / 2, Sine(hz, 4000));
            return Db(Rms(out.left, kRate / 4, kRate / 2) / (4000 / std::sqrt(2.0)));
        };
        EXPECT_NEAR(measure(1000), gain, 0.5) << gain;
        EXPECT_NEAR(measure(4000), 0.0, 1.0) << gain;
        EXPECT_NEAR(measure(250), 0.0, 1.0) << gain;
    }
    ParamEqEffect band;
    EXPECT_EQ(band.SetParameters({79.0f, 12.0f, 0.0f}), kStatusInvalidParam);
    EXPECT_EQ(band.SetParameters({1000.0f, 12.0f, 15.5f}), kStatusInvalidParam);
    EXPECT_EQ(band.GetParameters().centre, 8000.0f);  // a refused set changes nothing
}

TEST(SoundEffects, EveryKnobPositionIsALegalParameter) {
    for (const EffectSpec& spec : EffectList()) {
        if (spec.kind == EffectKind::None) {
            EXPECT_EQ(CreateEffect(spec.kind), nullptr);
            continue;
        }
        auto e = CreateEffect(spec.kind);
        ASSERT_NE(e, nullptr) << spec.name;
        for (int n = 1; n <= 2; ++n) {
            const KnobSpec& k = spec.knobs[n - 1];
            for (float v : {k.minimum, k.start, k.maximum})
                EXPECT_EQ(ApplyKnob(*e, spec.kind, n, v), kStatusOk) << spec.name << " " << n;
        }
        // And each runs on silence without making sound.
        const Stereo out = PlayThrough(e, 4096, Silence);
        EXPECT_EQ(*std::max_element(out.left.begin(), out.left.end()), 0.0f) << spec.name;
    }
    EXPECT_EQ(EffectKindFromName("Reverb"), EffectKind::Reverb);
    EXPECT_FALSE(EffectKindFromName("Phaser").has_value());
}

TEST(SoundEffects, KnobDisplays) {
    EXPECT_EQ(KnobText(EffectKind::Chorus, 1, 25.0f), "25.0%");
    EXPECT_EQ(KnobText(EffectKind::Chorus, 2, 1.1f), "1.1Hz");
    EXPECT_EQ(KnobText(EffectKind::Compressor, 2, 10.0f), "10.00s");
    EXPECT_EQ(KnobText(EffectKind::Distortion, 1, -18.0f), "-18.0dB");
    EXPECT_EQ(KnobText(EffectKind::Echo, 2, 750.0f), "750.00s");
    EXPECT_EQ(KnobText(EffectKind::Flanger, 1, -50.0f), "-50.00%");
    EXPECT_EQ(KnobText(EffectKind::Flanger, 2, 1.239f), "1.23ms");  // truncated
    EXPECT_EQ(KnobText(EffectKind::Gargle, 1, 20.9f), "20Hz");
    EXPECT_EQ(KnobText(EffectKind::Reverb, 2, 0.001f), "0.00%");
    EXPECT_EQ(KnobText(EffectKind::None, 1, 3.0f), "");
    EXPECT_STREQ(SpecOf(EffectKind::Flanger).knobs[0].label, "fdbck");
    EXPECT_STREQ(SpecOf(EffectKind::Reverb).knobs[0].label, "Length");
}

}  // namespace
