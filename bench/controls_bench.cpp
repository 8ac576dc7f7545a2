// SPDX-License-Identifier: ISC
/// The cost of the panel's controls in software GL: ten strips of box, toggle, selector and three
/// knobs, drawn into a layer of twice the design size, and their front pass.
#include <benchmark/benchmark.h>

#include <memory>

#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_Knob.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_Toggle.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/support/fake_page.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

constexpr float kScale = 2.0f / 800.0f;

void Place(FakePage& page, GLView* view, float x, float y, float width, float height) {
    view->SetPosition(x * kScale, y * kScale);
    view->SetSize(width * kScale, height * kScale);
    page.AddChild(view);
}

void AddStrip(FakePage& page, float x, uint32_t port) {
    Place(page, new GLView_DecoratorBox, x, 0.0f, 81.0f, 192.0f);
    auto* toggle = new GLView_Toggle;
    toggle->SetPort({}, port);
    toggle->SetText("1");
    Place(page, toggle, x, 80.0f, 46.0f, 20.0f);
    auto* selector = new GLView_MenuSelector;
    Place(page, selector, x, -78.0f, 64.0f, 20.0f);
    selector->AddItem(port, 1.0f, 110.0f * kScale, "Lo Shelf");
    for (const float y : {40.0f, 0.0f, -40.0f}) {
        auto* knob = new GLView_Knob(false, -18.0f, 18.0f);
        knob->SetPort({}, port);
        knob->SetUnit("dB");
        knob->SetLabel("Gain");
        Place(page, knob, x, y, 48.0f, 22.0f);
    }
    page.Report(port, 1.0f);
}

struct Panel {
    GLContext context{2000, 1200};
    std::unique_ptr<GLResources> resources;
    FakePage page;

    Panel() {
        resourceDirectory = BRINDLE_BUNDLE "/";
        resources = std::make_unique<GLResources>(kScale);
        page.resources = resources.get();
        for (int strip = 0; strip < 10; ++strip) {
            AddStrip(page, -391.5f + 87.0f * static_cast<float>(strip),
                     static_cast<uint32_t>(strip));
        }
        context.Clear();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-5.0 / 3.0, 5.0 / 3.0, -1.0, 1.0, -1.0, 1.0);
        glMatrixMode(GL_MODELVIEW);
    }
    void Draw(void (GLView::*pass)()) {
        const MatrixScope matrix;
        (page.*pass)();
    }
};

void BM_StripsIntoTheLayer(benchmark::State& state) {
    Panel panel;
    for ([[maybe_unused]] auto _ : state) {
        panel.Draw(&GLView::DrawBack);
        panel.Draw(&GLView::Draw);
        glFinish();
    }
}
BENCHMARK(BM_StripsIntoTheLayer)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_StripsFrontPass(benchmark::State& state) {
    Panel panel;
    for ([[maybe_unused]] auto _ : state) {
        panel.Draw(&GLView::DrawFront);
        glFinish();
    }
}
BENCHMARK(BM_StripsFrontPass)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace brindle
