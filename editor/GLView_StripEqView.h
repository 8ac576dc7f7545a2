// SPDX-License-Identifier: ISC
#pragma once

#include <bitset>
#include <cstdint>

#include "editor/GLView_BaseView.h"
#include "editor/editor_instance.h"
#include "editor/host_connection.h"
#include "gl/GLView_DB60Meter.h"
#include "graph/spectrum_history.h"

namespace brindle {

/// The editor's one panel: the root of its tree, and between that and the host. Every widget writes
/// through the connection's writer. UI thread.
class GLView_StripEqView : public GLView_BaseView {
  public:
    /// `instance` has the host's features; it is looked at during construction only.
    explicit GLView_StripEqView(const EditorInstance& instance);

    /// What the host reports of a port: a control value (format 0) reaches the parameters, tree and
    /// meters, an analyser row the spectrum. All else is ignored.
    void PortEvent(uint32_t port, uint32_t size, uint32_t format, const void* buffer);
    /// Takes the writes as reported that the host has not answered in time. Call it when idle.
    void TakeUnreportedWrites();
    const SpectrumHistory& GetSpectrum() const { return spectrum; }

    void SendParameter(uint32_t index, float value) override;
    /// Switch the engine's analyser on, and off.
    void EditorOpened() override;
    void EditorClosed() override;

  private:
    void TakeControl(uint32_t port, float value);

    HostConnection connection;
    SpectrumHistory spectrum;
    std::bitset<128> reported;               ///< ports that the host has told a value of
    GLView_DB60Meter* inputMeter = nullptr;  ///< children, null until they are made
    GLView_DB60Meter* outputMeter = nullptr;
};

}  // namespace brindle
