// The deck effects: their names as the effect list shows them, the two
// knobs of each (label, range, start value, display) and the effect
// parameter each knob sets, and the factory that creates an effect.
//
// Knob ranges and start values are the effect parameters' own, so every
// knob position is a legal parameter value. Pure functions apart from
// CreateEffect (which allocates; call it off the audio thread).
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"

namespace sound::fx {

enum class EffectKind { None, Chorus, Compressor, Distortion, Echo, Flanger, Gargle, Reverb };

struct KnobSpec {
    const char* label;  // "" when the knob is disabled
    float minimum, maximum, start;
    int decimals;      // shown, truncated; -1: as many as the value needs
    const char* unit;  // appended to the value
};

struct EffectSpec {
    EffectKind kind;
    const char* name;
    std::array<KnobSpec, 2> knobs;
};

// In the effect list's order, "No Effect" first.
const std::array<EffectSpec, 8>& EffectList();
const EffectSpec& SpecOf(EffectKind kind);
// The kind named `name`; nothing for a name outside the list.
std::optional<EffectKind> EffectKindFromName(std::string_view name);

// A new effect of `kind` at its start values (null for None).
std::shared_ptr<SoundEffect> CreateEffect(EffectKind kind);

// Reads all parameters of `effect` (of `kind`), replaces the one knob
// `knob` (1 or 2) controls by `value`, and writes them back. The echo's
// delay knob sets both delays; the gargle's rate is truncated to whole
// hertz and its wave knob gives the triangle below 1, the square from 1.
SoundStatus ApplyKnob(SoundEffect& effect, EffectKind kind, int knob, float value);

// The knob's display: "25.0%", "1.1Hz", "tri", ... (empty for None).
std::string KnobText(EffectKind kind, int knob, float value);

}  // namespace sound::fx
