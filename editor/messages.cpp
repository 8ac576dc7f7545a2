// SPDX-License-Identifier: ISC
#include "editor/messages.h"

#include <lv2/atom/util.h>

namespace brindle {
namespace {

/// Whether all properties are inside the object, so that a query cannot read beyond its end.
bool IsWhole(const LV2_Atom_Object& object) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&object.body);
    const uint32_t size = object.atom.size;
    uint32_t offset = sizeof(LV2_Atom_Object_Body);
    while (offset < size) {
        if (size - offset < sizeof(LV2_Atom_Property_Body)) return false;
        const auto* property = reinterpret_cast<const LV2_Atom_Property_Body*>(bytes + offset);
        const uint32_t room = size - offset - static_cast<uint32_t>(sizeof(LV2_Atom_Property_Body));
        if (property->value.size > room) return false;
        const uint32_t step = static_cast<uint32_t>(sizeof(LV2_Atom_Property_Body)) +
                              lv2_atom_pad_size(property->value.size);
        offset = step < size - offset ? offset + step : size;
    }
    return true;
}

/// The value of an Int atom; empty for other atoms.
std::optional<int32_t> ReadInt(const EqUris& uris, const LV2_Atom* value) {
    if (value == nullptr || value->type != uris.atom_int || value->size < sizeof(int32_t)) {
        return std::nullopt;
    }
    return reinterpret_cast<const LV2_Atom_Int*>(value)->body;
}

/// The elements of a row; null if the atom is not a row or too short.
const float* ReadRow(const EqUris& uris, const LV2_Atom* value) {
    constexpr uint32_t kRowSize = sizeof(LV2_Atom_Vector_Body) + kPlotBins * sizeof(float);
    if (value == nullptr || value->type != uris.atom_vector || value->size < kRowSize) {
        return nullptr;
    }
    const auto* vector = reinterpret_cast<const LV2_Atom_Vector*>(value);
    if (vector->body.child_type != uris.atom_float || vector->body.child_size != sizeof(float)) {
        return nullptr;
    }
    return reinterpret_cast<const float*>(vector + 1);
}

}  // namespace

std::optional<PlotMessage> ReadPlotMessage(const EqUris& uris, const void* buffer, uint32_t size) {
    if (buffer == nullptr || size < sizeof(LV2_Atom_Object)) return std::nullopt;
    const auto* object = static_cast<const LV2_Atom_Object*>(buffer);
    const bool isObject =
        object->atom.type == uris.atom_object || object->atom.type == uris.atom_blank;
    if (!isObject || object->atom.size > size - sizeof(LV2_Atom) ||
        object->atom.size < sizeof(LV2_Atom_Object_Body) || object->body.otype != uris.message ||
        !IsWhole(*object)) {
        return std::nullopt;
    }
    const LV2_Atom* rate = nullptr;
    const LV2_Atom* id = nullptr;
    const LV2_Atom* row = nullptr;
    lv2_atom_object_get(object, uris.sample_rate, &rate, uris.plot_id, &id, uris.plot_array, &row,
                        0);
    const std::optional<int32_t> number = ReadInt(uris, id);
    const float* values = ReadRow(uris, row);
    if (!ReadInt(uris, rate) || !number || *number < 0 || *number >= kPlotRows ||
        values == nullptr) {
        return std::nullopt;
    }
    return PlotMessage{*number, values};
}

Request::Request(LV2_Atom_Forge forge, LV2_URID type) {
    constexpr LV2_URID kObjectId = 1;
    lv2_atom_forge_set_buffer(&forge, buffer_, sizeof buffer_);
    lv2_atom_forge_frame_time(&forge, 0);
    LV2_Atom_Forge_Frame frame;
    lv2_atom_forge_object(&forge, &frame, kObjectId, type);
    lv2_atom_forge_pop(&forge, &frame);
}

uint32_t Request::Size() const {
    return lv2_atom_total_size(Atom());
}

}  // namespace brindle
