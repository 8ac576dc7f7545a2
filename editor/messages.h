// SPDX-License-Identifier: ISC
/// The editor's side of the conversation with the engine, over the host. UI thread.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <optional>

#include "contract/urids.h"

namespace brindle {

/// One analyser row as the engine sends it.
struct PlotMessage {
    int32_t id = 0;                 ///< row of the ring, 0..kPlotRows-1
    const float* values = nullptr;  ///< kPlotBins levels in dB, in the message's own memory
};

/// Reads what the host delivers as an atom: `size` bytes at `buffer`, 8-byte aligned as atoms are.
/// Nothing where it is no whole plot message, or its row is none of the ring's or too short. Never
/// looks beyond `size`.
std::optional<PlotMessage> ReadPlotMessage(const EqUris& uris, const void* buffer, uint32_t size);

/// A message to the engine that has no properties, as the write function takes it.
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
    alignas(8) uint8_t buffer_[1024] = {};  ///< the time of an event, and the message
};

}  // namespace brindle
