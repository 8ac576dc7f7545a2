// SPDX-License-Identifier: ISC
#include "engine/messages.h"

#include <lv2/atom/util.h>

#include <cstring>

namespace brindle {
namespace {

/// A property: key, context and an Int atom, padded to eight bytes.
constexpr size_t kIntPropertyBytes = 2 * sizeof(uint32_t) + sizeof(LV2_Atom_Int) + 4;
/// A property that holds a row, padded to eight bytes.
constexpr size_t kRowPropertyBytes =
    2 * sizeof(uint32_t) + (sizeof(LV2_Atom_Vector) + kPlotBins * sizeof(float) + 7) / 8 * 8;
constexpr size_t kEmptySequenceBytes = sizeof(LV2_Atom_Sequence);
constexpr size_t kRowSequenceBytes = kEmptySequenceBytes + sizeof(int64_t) +
                                     sizeof(LV2_Atom_Object) + 2 * kIntPropertyBytes +
                                     kRowPropertyBytes;
static_assert(kRowSequenceBytes == 1080);

/// Reads a structure from any address.
template <typename T>
T read_as(const uint8_t* bytes) noexcept {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

void write_row(LV2_Atom_Forge& forge, const EqUris& uris, int32_t sample_rate,
               const SpectrumAnalyser& analyser) noexcept {
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_frame_time(&forge, 0);
    lv2_atom_forge_object(&forge, &object, 1, uris.message);
    lv2_atom_forge_key(&forge, uris.sample_rate);
    lv2_atom_forge_int(&forge, sample_rate);
    lv2_atom_forge_key(&forge, uris.plot_id);
    lv2_atom_forge_int(&forge, static_cast<int32_t>(analyser.row_index));
    lv2_atom_forge_key(&forge, uris.plot_array);
    lv2_atom_forge_vector(&forge, sizeof(float), uris.atom_float, kPlotBins,
                          analyser.rows[analyser.row_index].data());
    lv2_atom_forge_pop(&forge, &object);
}

}  // namespace

bool read_requests(const LV2_Atom_Sequence* control, const EqUris& uris, bool ui_active) noexcept {
    if (control == nullptr) return ui_active;
    const auto* bytes = reinterpret_cast<const uint8_t*>(control);
    const size_t end = sizeof(LV2_Atom) + read_as<LV2_Atom>(bytes).size;
    size_t at = sizeof(LV2_Atom_Sequence);
    while (at < end && end - at >= sizeof(LV2_Atom_Event)) {
        const LV2_Atom body = read_as<LV2_Atom>(bytes + at + offsetof(LV2_Atom_Event, body));
        at += sizeof(LV2_Atom_Event);
        if (body.size > end - at) break;
        const bool is_object = body.type == uris.atom_object || body.type == uris.atom_blank;
        if (is_object && body.size >= sizeof(LV2_Atom_Object_Body)) {
            const LV2_URID type = read_as<LV2_Atom_Object_Body>(bytes + at).otype;
            ui_active = type == uris.enable_ui || (ui_active && type != uris.disable_ui);
        }
        at += (size_t{body.size} + 7) / 8 * 8;
    }
    return ui_active;
}

void write_notify(LV2_Atom_Forge& forge, LV2_Atom_Sequence* notify, const EqUris& uris,
                  bool ui_active, int32_t sample_rate, const SpectrumAnalyser& analyser) noexcept {
    if (notify == nullptr || notify->atom.size < kEmptySequenceBytes) return;
    const uint32_t capacity = notify->atom.size;
    LV2_Atom_Forge_Frame sequence;
    lv2_atom_forge_set_buffer(&forge, reinterpret_cast<uint8_t*>(notify), capacity);
    lv2_atom_forge_sequence_head(&forge, &sequence, 0);
    if (ui_active && capacity >= kRowSequenceBytes) write_row(forge, uris, sample_rate, analyser);
    lv2_atom_forge_pop(&forge, &sequence);
}

}  // namespace brindle
