// SPDX-License-Identifier: ISC
/// The editor's messages to and from the engine, sent through the host. UI thread.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <optional>

#include "contract/urids.h"

namespace brindle {

/// An analyser row as the engine sends it.
struct PlotMessage {
    int32_t id = 0;                 ///< index in the ring buffer, 0..kPlotRows-1
    const float* values = nullptr;  ///< kPlotBins levels in dB, inside the message
};

/// Reads an atom from the host: `size` bytes at `buffer`, 8-byte aligned like all atoms. Empty if
/// it is not a complete plot message, its row index is out of range or its row is too short. Never
/// reads beyond `size`.
std::optional<PlotMessage> ReadPlotMessage(const EqUris& uris, const void* buffer, uint32_t size);

/// A message without properties to the engine, ready for the write function.
class Request {
  public:
    /// `type` is one of the two requests' URIDs.
    Request(LV2_Atom_Forge forge, LV2_URID type);
    const LV2_Atom* Atom() const {
        return reinterpret_cast<const LV2_Atom*>(buffer_ + sizeof(int64_t));
    }
    /// Bytes at `Atom`: its head and its body.
    uint32_t Size() const;

  private:
    alignas(8) uint8_t buffer_[1024] = {};  ///< an event's time, then the message
};

}  // namespace brindle
