// SPDX-License-Identifier: ISC
/// A graph with its ten handles on a page, and a host that can report writes.
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "graph/GLView_ParametricEQ.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "tests/support/fake_page.h"
#include "tests/support/recording_host.h"

namespace brindle {

struct GraphFixture {
    /// Bands on and flat at 100 Hz x 2^band, sections off.
    GraphFixture() {
        const float m = page.pixelSize;
        const float s = page.interfaceScale;
        page.backgroundColor = {0.16f, 0.16f, 0.16f};
        graph = new GLView_ParametricEQ;
        graph->SetSize(920.0f * m, 342.0f * s);
        graph->SetPosition(0.0f, page.viewTop - (78.0f + 171.0f) * s);
        page.AddChild(graph);
        for (int i = 0; i < GLView_ParametricEQGrabber::kHandleCount; ++i) {
            auto* handle = new GLView_ParametricEQGrabber(*graph, i);
            handle->SetSize(22.0f * s, 22.0f * s);
            handle->SetWriter(host.Writer());
            handle->SetTouch(host.TouchFeature());
            handle->SetLabel(i < kBandCount ? std::to_string(i + 1).c_str() : i == 8 ? "A" : "B");
            graph->AddChild(handle);
            handles[static_cast<size_t>(i)] = handle;
            const bool isBand = i < kBandCount;
            Set(i, {isBand ? 1.0f : 0.0f, isBand ? 9.0f : 0.0f, 0.0f,
                    100.0f * static_cast<float>(1 << i), 1.0f});
        }
    }

    uint32_t Port(int handle, Control control) const {
        return handles[static_cast<size_t>(handle)]->firstPort + control;
    }
    float Value(int handle, Control control) { return page.GetParameter(Port(handle, control)); }
    /// Enable, type, gain in dB, frequency in Hz and Q as the host reports them.
    void Set(int handle, const std::array<float, kControlCount>& values) {
        for (uint32_t i = 0; i < kControlCount; ++i) {
            page.Report(handles[static_cast<size_t>(handle)]->firstPort + i, values[i]);
        }
        graph->UpdateCurves();
    }

    /// Converts a point from graph coordinates to the page's and to window pixels of the frame.
    GLPoint OnPage(GLPoint local) const { return {local.x + graph->x, local.y + graph->y}; }
    GLPoint InPixels(GLPoint local) const {
        const GLPoint p = OnPage(local);
        return {(p.x + page.viewRight) / (2.0f * page.viewRight) * page.pageWidth,
                (page.viewTop - p.y) / (2.0f * page.viewTop) * page.pageHeight};
    }
    /// Presses the centre of a handle, or its marker below the graph.
    GLPoint PressHandle(int handle) { return Press(handles[static_cast<size_t>(handle)]->Place()); }
    GLPoint PressMarker(int handle) {
        const float x = handles[static_cast<size_t>(handle)]->Place().x;
        return Press({x, -graph->hh - 42.0f * page.pixelSize});
    }
    GLPoint Press(GLPoint local) {
        const GLPoint pixel = InPixels(local);
        graph->MouseDown(OnPage(local), pixel);
        return pixel;
    }
    void Drag(GLPoint pixel) {
        page.capturedView->MouseDragTo(pixel);
        Echo();
    }
    std::vector<HostCall> Release() {
        if (page.capturedView != nullptr) page.capturedView->MouseUp({});
        return Echo();
    }
    /// Reports the writes since the last call, and returns them.
    std::vector<HostCall> Echo() {
        auto writes = std::exchange(host.calls, {});
        std::erase_if(writes, [](const HostCall& call) { return call.kind != HostCall::kWrite; });
        for (const HostCall& write : writes) page.Report(write.port, write.value);
        graph->UpdateCurves();
        return writes;
    }

    RecordingHost host;  // outlives the handles, whose destructors end gestures
    FakePage page;
    GLView_ParametricEQ* graph;
    std::array<GLView_ParametricEQGrabber*, GLView_ParametricEQGrabber::kHandleCount> handles{};
};

}  // namespace brindle
