// SPDX-License-Identifier: ISC
#include "editor/GLView_StripEqView.h"

#include <algorithm>

namespace brindle {
namespace {

constexpr int32_t kDesignWidth = 1000;
constexpr int32_t kDesignHeight = 600;

}  // namespace

GLView_StripEqView::GLView_StripEqView(const EditorInstance& instance)
    : GLView_BaseView(kDesignWidth, kDesignHeight),
      connection({instance.writeFunction, instance.controller}, instance.map) {
    SetName("Brindle Console EQ");
}

void GLView_StripEqView::PortEvent(uint32_t port, uint32_t size, uint32_t format,
                                   const void* buffer) {
    if (const auto plot = connection.ReadPlot(format, buffer, size)) {
        std::copy_n(plot->values, kPlotBins, spectrum.rows[static_cast<size_t>(plot->id)].begin());
        spectrum.newest = plot->id;
    } else if (const auto value = connection.ReadControl(port, format, buffer, size)) {
        TakeControl(port, *value);
    }
}

void GLView_StripEqView::TakeControl(uint32_t port, float value) {
    // Hosts report the meters some 30 times a second, and much that has not changed. The meters are
    // drawn in each frame anyway.
    const bool isMeter = port == kMeterInPort || port == kMeterOutPort;
    const bool isNews = port >= reported.size() || !reported[port] || GetParameter(port) != value;
    if (port < reported.size()) {
        reported[port] = true;
    }
    SetParameter(port, value, isNews && !isMeter);
    if (port == kMeterInPort && inputMeter != nullptr) {
        inputMeter->level = value;
    }
    if (port == kMeterOutPort && outputMeter != nullptr) {
        outputMeter->level = value;
    }
}

void GLView_StripEqView::TakeUnreportedWrites() {
    connection.TakeUnreported(HostConnection::Now(),
                              [this](uint32_t port, float value) { TakeControl(port, value); });
}

void GLView_StripEqView::SendParameter(uint32_t index, float value) {
    connection.Write(index, value);
}

void GLView_StripEqView::EditorOpened() {
    GLView_BaseView::EditorOpened();
    connection.SendOpened();
}

void GLView_StripEqView::EditorClosed() {
    ReleaseAll();  // what a held control has changed for as long as it is held is put back
    connection.SendClosed();
}

}  // namespace brindle
