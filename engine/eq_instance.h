// SPDX-License-Identifier: ISC
/// All data of one plugin instance.
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
/// Most stretches in a chunk: one before the first control tick, one after each tick.
inline constexpr size_t kMaxStretches = kChunk / kMinStretch + 1;

/// The buffers of run between reading a chunk of input and writing its output. They follow each
/// other without gaps, so that short blocks use little memory.
struct Workspace {
    std::array<float*, 2> in, out;  ///< of each channel, before and after the cascade
    float* in_square;               ///< of the louder channel, weighted for its follower
    float *in_powers, *out_powers;  ///< the followers' values after each sample
    float* dither;
    alignas(64) std::array<float, 8 * kChunk + kDitherRoom> room;

    /// Makes each buffer hold `n` samples, kChunk at most, and `dither` kDitherRoom more. Real-time
    /// safe.
    void hold(size_t n) noexcept {
        float* next = room.data();
        for (float** buffer :
             {&in[0], &in[1], &out[0], &out[1], &in_square, &in_powers, &out_powers, &dither}) {
            *buffer = next;
            next += (n + 15) / 16 * 16;  // whole cache lines
        }
    }
};

/// One instance, allocated zero-filled in one piece. It borrows port buffers and the host's
/// features. Only the audio thread uses it between creation and destruction.
struct EqInstance {
    LV2_URID_Map* map;
    EqUris uris;
    LV2_Atom_Forge forge;
    LV2_Atom_Sequence* notify_port;
    const LV2_Atom_Sequence* control_port;
    bool ui_active;                              ///< the editor wants analyser rows
    std::array<float*, kStereoPortCount> ports;  ///< by port number; 0 and 1 unused
    int32_t sample_rate;                         ///< Hz, truncated
    uint32_t control_mask;                       ///< a control tick every mask + 1 samples
    uint32_t meter_mask;                         ///< a meter tick every mask + 1 samples
    int32_t noise_state;                         ///< of the dither's generator
    float noise;                                 ///< current dither value
    uint32_t sample_counter;                     ///< modulo 2^18
    float meter_decay;                           ///< factor of a held meter at each meter tick
    float trim_gain;                             ///< smoothed, linear
    float in_power, out_power;                   ///< mean squares, one-pole followers
    float power_keep, power_take;                ///< weights of the last power and a new square
    std::array<bool, kSectionCount> section_on;
    std::array<SectionType, kSectionCount> section_type;
    std::array<float, kSectionCount> section_gain;  ///< dB
    std::array<float, kSectionCount> section_freq;  ///< Hz, from section_frequency
    std::array<float, kSectionCount> section_q;
    std::array<SectionStages, kSectionCount> sections;
    std::array<bool, kBandCount> band_on;
    std::array<FilterStage, kBandCount> bands;
    SpectrumAnalyser analyser;
    // The fields below are used in each block; the analyser above only while an editor is open.
    alignas(64) std::array<uint32_t, kMeterInPort> port_bits;  ///< last read from each control port
    std::array<float, kMeterInPort> controls;  ///< last valid values of the control ports
    double trim_target;                        ///< linear
    std::array<float, 2> last_out;             ///< last output sample of each channel
    bool turned;   ///< controls have changed since the last control tick
    bool at_rest;  ///< the last control tick changed nothing, and neither will another
    CascadeKernels cascade;
    SampleLoops loops;
    size_t newest_weights;
    std::array<CascadeState, 2> states;  ///< of each channel
    /// A ring of the stages' weights after the last control ticks; the newest are at
    /// newest_weights.
    std::array<CascadeWeights, kMaxStretches> weights;
    Workspace work;
};

}  // namespace brindle
