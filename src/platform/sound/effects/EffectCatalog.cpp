#include "platform/sound/effects/EffectCatalog.h"

#include <cmath>
#include <cstdio>

#include "platform/sound/effects/CompressorEffect.h"
#include "platform/sound/effects/DistortionEffect.h"
#include "platform/sound/effects/EchoEffect.h"
#include "platform/sound/effects/GargleEffect.h"
#include "platform/sound/effects/ModulatedDelayEffect.h"
#include "platform/sound/effects/ReverbEffect.h"

namespace sound::fx {

namespace {
constexpr KnobSpec kOff{"", 0, 1, 0, 0, ""};

const std::array<EffectSpec, 8> kList = {{
    {EffectKind::None, "No Effect", {kOff, kOff}},
    {EffectKind::Chorus,
     "Chorus",
     {KnobSpec{"fdbk", -99, 99, 25, 1, "%"}, KnobSpec{"freq", 0, 10, 1.1f, -1, "Hz"}}},
    {EffectKind::Compressor,
     "Compressor",
     {KnobSpec{"gain", -60, 60, 0, 1, "dB"}, KnobSpec{"attack", 0.01f, 500, 10, 2, "s"}}},
    {EffectKind::Distortion,
     "Distortion",
     {KnobSpec{"gain", -60, 0, -18, 1, "dB"}, KnobSpec{"edge", 0, 100, 15, 1, "%"}}},
    {EffectKind::Echo,
     "Echo",
     {KnobSpec{"fdbk", 0, 100, 50, 2, "%"}, KnobSpec{"delay", 1, 2000, 500, 2, "s"}}},
    {EffectKind::Flanger,
     "Flanger",
     {KnobSpec{"fdbck", -99, 99, -50, 2, "%"}, KnobSpec{"delay", 0, 4, 2, 2, "ms"}}},
    {EffectKind::Gargle,
     "Gargle",
     {KnobSpec{"rate", 1, 1000, 20, 0, "Hz"}, KnobSpec{"wave", 0, 2, 0, 0, ""}}},
    {EffectKind::Reverb,
     "Reverb",
     {KnobSpec{"Length", 0.001f, 3000, 1000, 2, "s"},
      KnobSpec{"HF%", 0.001f, 0.999f, 0.001f, 2, "%"}}},
}};
}  // namespace

const std::array<EffectSpec, 8>& EffectList() {
    return kList;
}

const EffectSpec& SpecOf(EffectKind kind) {
    return kList[static_cast<std::size_t>(kind)];
}

std::optional<EffectKind> EffectKindFromName(std::string_view name) {
    for (const EffectSpec& s : kList)
        if (name == s.name)
            return s.kind;
    return std::nullopt;
}

std::shared_ptr<SoundEffect> CreateEffect(EffectKind kind) {
    switch (kind) {
        case EffectKind::Chorus:
            return std::make_shared<ChorusEffect>();
        case EffectKind::Compressor:
            return std::make_shared<CompressorEffect>();
        case EffectKind::Distortion:
            return std::make_shared<DistortionEffect>();
        case EffectKind::Echo:
            return std::make_shared<EchoEffect>();
        case EffectKind::Flanger:
            return std::make_shared<FlangerEffect>();
        case EffectKind::Gargle:
            return std::make_shared<GargleEffect>();
        case EffectKind::Reverb:
            return std::make_shared<ReverbEffect>();
        case EffectKind::None:
            break;
    }
    return nullptr;
}

SoundStatus ApplyKnob(SoundEffect& effect, EffectKind kind, int knob, float v) {
    if (knob != 1 && knob != 2)
        return kStatusInvalidParam;
    const bool first = knob == 1;
    switch (kind) {
        case EffectKind::Chorus:
        case EffectKind::Flanger: {
            auto& e = static_cast<ModulatedDelayEffect&>(effect);
            auto p = e.GetParameters();
            (first ? p.feedback : (kind == EffectKind::Chorus ? p.frequency : p.delay)) = v;
            return e.SetParameters(p);
        }
        case EffectKind::Compressor: {
            auto& e = static_cast<CompressorEffect&>(effect);
            auto p = e.GetParameters();
            (first ? p.gain : p.attack) = v;
            return e.SetParameters(p);
        }
        case EffectKind::Distortion: {
            auto& e = static_cast<DistortionEffect&>(effect);
            auto p = e.GetParameters();
            (first ? p.gain : p.edge) = v;
            return e.SetParameters(p);
        }
        case EffectKind::Echo: {
            auto& e = static_cast<EchoEffect&>(effect);
            auto p = e.GetParameters();
            if (first)
                p.feedback = v;
            else
                p.leftDelay = p.rightDelay = v;
            return e.SetParameters(p);
        }
        case EffectKind::Gargle: {
            auto& e = static_cast<GargleEffect&>(effect);
            auto p = e.GetParameters();
            if (first)
                p.rateHz = static_cast<int>(std::trunc(v));
            else
                p.wave = v < 1.0f ? GargleEffect::Wave::Triangle : GargleEffect::Wave::Square;
            return e.SetParameters(p);
        }
        case EffectKind::Reverb: {
            auto& e = static_cast<ReverbEffect&>(effect);
            auto p = e.GetParameters();
            (first ? p.reverbTime : p.highFreqRatio) = v;
            return e.SetParameters(p);
        }
        case EffectKind::None:
            break;
    }
    return kStatusOk;
}

std::string KnobText(EffectKind kind, int knob, float value) {
    if (kind == EffectKind::None || (knob != 1 && knob != 2))
        return {};
    if (kind == EffectKind::Gargle && knob == 2)
        return value < 1.0f ? "tri" : "sqr";
    const KnobSpec& k = SpecOf(kind).knobs[static_cast<std::size_t>(knob - 1)];
    char text[48];
    if (k.decimals < 0) {
        std::snprintf(text, sizeof text, "%g%s", static_cast<double>(value), k.unit);
    } else {
        // Truncated, not rounded: the display never shows more than is set.
        const double scale = std::pow(10.0, k.decimals);
        const double shown =
            std::trunc(static_cast<double>(value) * scale + std::copysign(1e-6, value)) / scale;
        std::snprintf(text, sizeof text, "%.*f%s", k.decimals, shown, k.unit);
    }
    return text;
}

}  // namespace sound::fx
