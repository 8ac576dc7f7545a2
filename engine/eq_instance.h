// SPDX-License-Identifier: ISC
/// Everything that one instance of the plugin owns.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/urid/urid.h>

#include <array>
#include <cstdint>

#include "contract/brindle.h"
#include "contract/types.h"
#include "contract/urids.h"
#include "engine/analyser.h"
#include "engine/cascade.h"
#include "engine/filter_stage.h"
#include "engine/sample_loops.h"
#include "engine/sections.h"

namespace brindle {

/// Most samples that pass the cascade at once; longer blocks are cut.
inline constexpr size_t kChunk = 1024;
/// Most stretches in a chunk: one before the first control tick, then one after each.
inline constexpr size_t kMaxStretches = kChunk / kMinStretch + 1;

/// One value of each sample of a chunk.
struct alignas(64) Samples : std::array<float, kChunk> {};

/// What run works on between reading a chunk of input and writing its output.
struct Workspace {
    alignas(64) std::array<float, kChunk + kDitherRoom> dither;
    std::array<Samples, 2> in, out;  ///< of each channel, before and after the cascade
    Samples in_square;               ///< of the loudest channel, weighted for its follower
    Samples in_powers, out_powers;   ///< the followers' after each sample
};

/// The record of one instance, allocated zero-filled in one piece. Port buffers and the host's
/// features are borrowed. Only the audio thread touches it between creation and destruction.
struct EqInstance {
    LV2_URID_Map* map;
    EqUris uris;
    LV2_Atom_Forge forge;
    LV2_Atom_Sequence* notify_port;
    const LV2_Atom_Sequence* control_port;
    bool ui_active;                              ///< the editor asks for analyser rows
    std::array<float*, kStereoPortCount> ports;  ///< by port number; 0 and 1 stand above
    int32_t sample_rate;                         ///< Hz, truncated
    uint32_t control_mask;                       ///< a control tick every mask + 1 samples
    uint32_t meter_mask;                         ///< a meter tick every mask + 1 samples
    int32_t noise_state;                         ///< of the dither's generator
    float noise;                                 ///< current dither value
    uint32_t sample_counter;                     ///< modulo 2^18
    float meter_decay;                           ///< of the held meters, for each meter tick
    float trim_gain;                             ///< smoothed, linear
    float in_power, out_power;                   ///< mean squares, one-pole followers
    float power_keep, power_take;                ///< their weights for each sample
    std::array<bool, kSectionCount> section_on;
    std::array<SectionType, kSectionCount> section_type;
    std::array<float, kSectionCount> section_gain;  ///< dB
    std::array<float, kSectionCount> section_freq;  ///< Hz, as section_frequency gives it
    std::array<float, kSectionCount> section_q;
    std::array<SectionStages, kSectionCount> sections;
    std::array<bool, kBandCount> band_on;
    std::array<FilterStage, kBandCount> bands;
    SpectrumAnalyser analyser;
    /// Of the stages in chain order: those of the last control tick at newest_weights, those of the
    /// ticks before it behind it in a ring.
    std::array<CascadeWeights, kMaxStretches> weights;
    std::array<CascadeState, 2> states;  ///< likewise, for each channel
    Workspace work;
    size_t newest_weights;
    CascadeKernels cascade;
    SampleLoops loops;
    double trim_target;                            ///< linear
    std::array<float, 2> last_out;                 ///< last output sample of each channel
    std::array<uint32_t, kMeterInPort> port_bits;  ///< of each control port's value when last read
    std::array<float, kMeterInPort> controls;      ///< last valid value of each control port
    bool turned;   ///< controls have changed since the last control tick
    bool at_rest;  ///< the last control tick changed nothing, so that another one would not
};

/// A new instance for a host's sample rate [Hz], its stages passing audio unchanged; null without
/// memory. Held between 1 Hz and what fits into 32 bits; rates that are no number count as 1 Hz.
/// To be given to destroy_instance. Not for the audio thread.
EqInstance* create_instance(double rate, LV2_URID_Map* map);

/// Frees an instance; null is allowed. Not for the audio thread.
void destroy_instance(EqInstance* eq) noexcept;

/// Remembers the host's buffer for a port; numbers outside the port table are ignored.
void connect(EqInstance& eq, uint32_t port, void* data) noexcept;

}  // namespace brindle
