// SPDX-License-Identifier: ISC
// The panel's strips, presets and trim: what they write and show, and what the engine outputs.
#include <gmock/gmock.h>

#include <cmath>
#include <set>

#include "contract/presets.h"
#include "editor/pugl_window.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/editor/panel_fixture.h"

// Included last: Xlib defines words that the others use.
#include <GL/glx.h>
#include <X11/extensions/Xfixes.h>

namespace brindle {
namespace {

using test::PluginHost;
using testing::ElementsAre;

constexpr double kLn750 = 6.6200733;

constexpr Spot kFlatAll = {2.0f * 800.0f * 5.0f / 6.0f - 23.0f, 778.0f};

/// Gain as a factor: differences far below the audible level count little.
double Gain(const std::vector<double>& response, double hz) {
    return std::pow(10.0, test::gain_db(response, hz, kRate) / 20.0);
}

TEST_F(Panel, EachPresetIsWrittenInOrderAndHeard) {
    EXPECT_STREQ(Root().infoTitle, "");  // nothing is touched yet
    for (size_t i = 0; i < kPresets.size(); ++i) {
        SCOPED_TRACE(kPresets[i].name);
        const Spot place = PresetAt(static_cast<int>(i));
        MoveTo(place);
        Tick();
        EXPECT_STREQ(Root().infoTitle, "Preset");
        const auto writes = Click(place);
        ASSERT_EQ(writes.size(), 51u);
        Tick();
        EXPECT_STREQ(Root().infoTitle, "");  // until the pointer moves
        EXPECT_STREQ(Root().infoText, "");
        PluginHost wanted(1, kRate);
        for (uint32_t n = 0; n < 51; ++n) {
            EXPECT_EQ(writes[n].port, 2 + n);
            EXPECT_EQ(writes[n].protocol, 0u);
            EXPECT_EQ(writes[n].bytes.size(), 4u);
            EXPECT_EQ(writes[n].AsFloat(), kPresets[i].values[n]);
            wanted.port(2 + n) = kPresets[i].values[n];
        }
        wanted.settle();
        const auto reference = wanted.impulse_response(1 << 14);
        const auto heard = Response();
        for (double hz = 25.0; hz < 20000.0; hz *= 1.5) {
            EXPECT_NEAR(Gain(heard, hz), Gain(reference, hz), 0.002) << hz;
        }
    }
}

TEST_F(Panel, ASelectedStripIsOutlinedEquallyOnAllSides) {
    for (const int width : {1000, 1090, 1210, 1500}) {
        SCOPED_TRACE(width);
        const float scale = static_cast<float>(width) / 1333.0f;
        host.window.Resize(width, width * 6 / 10);
        host.window.ResizeWindow(host.child, width, width * 6 / 10);
        host.IdleTimes(3);
        Graph().SelectHandle(1);
        host.IdleTimes(2);
        // How many pixels inwards from an edge, given in points of the panel, are green.
        const auto thickness = [&](float x, float y, int dx, int dy) {
            int count = 0;
            for (int step = -3; step < 12; ++step) {
                const uint32_t rgb = host.GetPixel(static_cast<int>(x * scale) + step * dx,
                                                   static_cast<int>(y * scale) + step * dy);
                const bool isGreen = (rgb >> 8 & 255) > (rgb >> 16 & 255) + 60;
                if (count > 0 && !isGreen) break;
                count += isGreen ? 1 : 0;
            }
            return count;
        };
        const float left = 125.0f + 87.0f;
        const int wanted = thickness(left, 700.0f, 1, 0);
        EXPECT_GE(wanted, width / 500);
        EXPECT_EQ(thickness(left + 81.0f, 700.0f, -1, 0), wanted);
        EXPECT_EQ(thickness(left + 40.0f, 570.0f, 0, 1), wanted);
        EXPECT_EQ(thickness(left + 40.0f, 762.0f, 0, -1), wanted);
    }
}

TEST_F(Panel, FlatAllSwitchesEverythingOff) {
    Click(PresetAt(4));
    Report(kTrimPort, 6.0f);
    EXPECT_GT(std::abs(test::gain_db(Response(), 100.0, kRate)), 6.0);
    std::vector<uint32_t> ports;
    for (const auto& write : Click(kFlatAll)) {
        ports.push_back(write.port);
        EXPECT_EQ(write.AsFloat(), 0.0f);
    }
    EXPECT_THAT(ports, ElementsAre(2, 7, 12, 17, 22, 27, 32, 37, 42, 47, 52));
    const auto response = Response();
    for (double hz = 25.0; hz < 20000.0; hz *= 2.0) {
        EXPECT_NEAR(test::gain_db(response, hz, kRate), 0.0, 0.01) << hz;
        EXPECT_NEAR(CurveDb(hz), 0.0, 0.01);
    }
}

TEST_F(Panel, EachKeySwitchesItsStrip) {
    for (int strip = 0; strip < kStripCount; ++strip) {
        SCOPED_TRACE(strip);
        const uint32_t port = strip_port(strip);
        const bool on = plugin.port(port) != 0.0f;
        for (const float wanted : {on ? 0.0f : 1.0f, on ? 1.0f : 0.0f}) {
            const auto writes = Click(KeyOf(strip));
            ASSERT_EQ(writes.size(), 1u);
            EXPECT_EQ(writes[0].port, port);
            EXPECT_EQ(writes[0].AsFloat(), wanted);
            EXPECT_THAT(host.touches, ElementsAre(std::pair(port, true), std::pair(port, false)));
        }
    }
}

TEST_F(Panel, EachMenuOffersItsShapesInOrderInsideThePanel) {
    const std::vector<float> band = {1, 2, 3, 4, 5, 6, 9, 12};
    const std::vector<float> sections[] = {{17, 1, 2, 3, 4, 13, 14, 15, 16},
                                           {17, 5, 6, 7, 8, 9, 10, 11, 12}};
    for (int strip = 0; strip < kStripCount; ++strip) {
        const auto& shapes = strip < kBandCount ? band : sections[strip - kBandCount];
        for (size_t entry = 0; entry < shapes.size(); ++entry) {
            SCOPED_TRACE(testing::Message() << strip << ", entry " << entry);
            const Spot shape = ShapeOf(strip);
            // The entries stack upwards from the button; no edge of the panel moves the menu.
            const Spot place = {shape.x, shape.y + 18.0f * static_cast<float>(entry)};
            const auto writes = During([&] {
                MoveTo(shape);
                host.window.Click();
                MoveTo(place);
                host.window.Click();
            });
            ASSERT_EQ(writes.size(), 2u);  // one for the press, one for the release
            for (const auto& write : writes) {
                EXPECT_EQ(write.port, strip_port(strip) + kType);
                EXPECT_EQ(write.AsFloat(), shapes[entry]);
            }
        }
    }
}

TEST_F(Panel, EachKnobMovesItsControlByItsMeasure) {
    constexpr int kUp = 40;  // pixels
    for (int strip = 0; strip < kStripCount; ++strip) {
        Report(strip_port(strip) + kEnable, 1.0f);
        const double octaves = strip < kBandCount ? kLn1000 : kLn750;
        struct Row {
            float above;
            uint32_t control;
            float value;
            double moved;
        };
        for (const Row& row :
             {Row{40.0f, kGain, 3.0f, 3.0 + 36.0 * 0.003 * kUp},
              Row{0.0f, kQ, 1.0f, std::exp(kLn1000 * 0.003 * kUp)},
              Row{-40.0f, kFrequency, 500.0f, 500.0 * std::exp(octaves * 0.0005 * kUp)}}) {
            SCOPED_TRACE(testing::Message() << strip << ", control " << row.control);
            const uint32_t port = strip_port(strip) + row.control;
            Report(port, row.value);
            const auto writes = Drag(InStrip(strip, row.above), 0, kUp);
            ASSERT_FALSE(writes.empty());
            EXPECT_EQ(writes.back().port, port);
            EXPECT_NEAR(static_cast<double>(writes.back().AsFloat()), row.moved, 1e-3 * row.moved);
            EXPECT_THAT(host.touches, ElementsAre(std::pair(port, true), std::pair(port, false)));
            if (strip % kBandCount != 0) continue;
            const float maximum = strip_controls(strip)[row.control].maximum;
            Report(port, 0.999f * maximum);
            EXPECT_EQ(Drag(InStrip(strip, row.above), 0, kUp).back().AsFloat(), maximum);
        }
    }
    const auto trim = Drag(kTrim, 50, 0);
    ASSERT_FALSE(trim.empty());
    EXPECT_EQ(trim.back().port, kTrimPort);
    EXPECT_NEAR(trim.back().AsFloat(), 40.0f * 0.003f * 50.0f, 1e-3f);
}

TEST_F(Panel, ShapesThePointerByWhatItIsOver) {
    const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
    const auto shape = [&](const Spot& spot) {
        MoveTo(spot);
        Tick();
        const std::unique_ptr<XFixesCursorImage, int (*)(void*)> image(
            XFixesGetCursorImage(display.get()), XFree);
        return std::vector<unsigned long>(image->pixels,
                                          image->pixels + image->width * image->height);
    };
    const Spot handle = {(40.0f + 920.0f / 3.0f * std::log10(250.0f / 20.0f)) / 0.75f, 552.0f};
    const auto arrow = shape({-20.0f, 300.0f});
    const auto upDown = shape(InStrip(2, 40.0f));
    const auto sideways = shape(kTrim);
    const auto fourWays = shape(handle);
    const auto hand = shape(KeyOf(2));
    const std::set<std::vector<unsigned long>> shapes = {arrow, upDown, sideways, fourWays, hand};
    EXPECT_EQ(shapes.size(), 5u);
    const struct {
        Spot spot;
        const std::vector<unsigned long>& shape;
    } cases[] = {{InStrip(8, -40.0f), upDown},
                 {ShapeOf(8), hand},
                 {PresetAt(2), hand},
                 {kFlatAll, hand},
                 {InStrip(3, 60.0f), arrow},
                 {{handle.x, 328.0f}, sideways},
                 {{handle.x, 316.0f}, fourWays},
                 {InStrip(2, 0.0f), upDown}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_TRUE(shape(c.spot) == c.shape);
    }
    PressAt(InStrip(2, 0.0f));
    EXPECT_TRUE(shape({700.0f, 500.0f}) == upDown);  // while it is held
    host.window.Release();
    Tick();
    EXPECT_TRUE(shape({700.0f, 500.0f}) == arrow);
}

TEST_F(Panel, DrawsAnewForNewsOnly) {
    const auto draws_anew = [&](uint32_t port, float value) {
        host.IdleTimes(2);
        EXPECT_FALSE(Root().IsStale());
        host.Report(port, value);
        EXPECT_EQ(Root().GetParameter(port), port < 128 ? value : 0.0f);
        return Root().IsStale();
    };
    EXPECT_TRUE(draws_anew(kTrimPort, -1.0f));
    EXPECT_FALSE(draws_anew(kTrimPort, -1.0f));
    EXPECT_TRUE(draws_anew(band_port(3) + kEnable, 0.0f));
    EXPECT_FALSE(draws_anew(127, 1.0f));  // no view shows these
    EXPECT_FALSE(draws_anew(200, 1.0f));
    EXPECT_FALSE(draws_anew(kMeterInPort, 0.5f));
    EXPECT_FALSE(draws_anew(kMeterOutPort, 0.25f));

    // The moving parts need frames only.
    const auto needs_frame = [&](auto change) {
        host.IdleTimes(2);
        EXPECT_FALSE(Root().IsFrameDue());
        change();
        return Root().IsFrameDue();
    };
    const auto adds_row = [&](float level_db) {
        const std::vector<float> row(kPlotBins, level_db);
        return needs_frame([&] { Graph().AddSpectrumRow(5, row.data()); });
    };
    EXPECT_TRUE(needs_frame([&] { host.Report(kMeterInPort, 0.4f); }));
    EXPECT_FALSE(needs_frame([&] { host.Report(kMeterInPort, 0.4f); }));
    EXPECT_FALSE(adds_row(-90.0f));
    EXPECT_FALSE(adds_row(-41.0f));
    EXPECT_TRUE(adds_row(-30.0f));
    EXPECT_FALSE(adds_row(-30.0f));
    MoveTo(InStrip(4, 40.0f));  // its handle's rings pulse
    host.IdleTimes(2);
    EXPECT_TRUE(Root().IsFrameDue());

    // The help line, beside the presets, shows no reports while the pointer is outside.
    const auto help_line = [&] {
        host.Idle();
        const auto pixels = host.window.GetPixels(host.child, 1000, 24);
        std::vector<uint32_t> shown;
        for (size_t y = 10; y < 24; ++y) {
            const auto row = pixels.begin() + static_cast<std::ptrdiff_t>(1000 * y);
            shown.insert(shown.end(), row + 594, row + 966);
        }
        return shown;
    };
    MoveTo(kTrim);
    const auto trim = help_line();
    MoveTo({-20.0f, 300.0f});
    const auto empty = help_line();
    EXPECT_TRUE(trim != empty);
    host.Report(kTrimPort, 4.0f);
    EXPECT_TRUE(help_line() == empty);
}

TEST_F(Panel, ShowsTheSameWhetherDrawnInPartsOrWhole) {
    int width = 1000, height = 600;
    const auto shown = [&] {
        host.IdleTimes(2);
        EXPECT_TRUE(WaitFor([&] { return !Root().IsFrameDue(); }, [&] { host.IdleTimes(1); }));
        return host.window.GetPixels(host.child, width, height);
    };
    const auto shown_in_parts = [&] {
        auto parts = shown();
        Root().redrawNeeded = true;
        EXPECT_TRUE(parts == shown());
        return parts;
    };
    auto before = shown();
    for (int strip = 0; strip < kStripCount; strip += 3) {
        const bool wasOn = plugin.port(strip_port(strip)) != 0.0f;
        const float values[] = {wasOn ? 0.0f : 1.0f, 4.0f, 9.0f, 3000.0f, 4.0f};
        for (uint32_t control = 0; control < kControlCount; ++control) {
            SCOPED_TRACE(testing::Message() << strip << ", control " << control);
            Report(strip_port(strip) + kEnable, 1.0f);
            Report(strip_port(strip) + control, values[control]);
            const auto parts = shown_in_parts();
            EXPECT_TRUE(parts != before);
            before = parts;
        }
    }
    Report(kTrimPort, 5.0f);
    EXPECT_TRUE(shown_in_parts() != before);
    for (int band = 0; band < kBandCount; ++band) Report(band_port(band) + kGain, 18.0f);
    shown_in_parts();  // with handles above the graph
    for (GLView* view = Root().firstChild; view != nullptr; view = view->nextSibling) {
        SCOPED_TRACE(typeid(*view).name());
        GLView* held = view->firstChild != nullptr ? view->firstChild : view;
        held->SetCaptured(true);
        shown_in_parts();
        held->SetCaptured(false);
        shown_in_parts();
        view->SetPosition(view->x + 0.01f, view->y);
        before = shown_in_parts();
    }
    // What moves over the layers. The strip is off, or its handle would pulse.
    Report(strip_port(9) + kEnable, 0.0f);
    Graph().DeleteChildren();
    const std::vector<float> row(kPlotBins, -10.0f);
    const std::function<void()> changes[] = {
        [&] { host.Report(kMeterInPort, 0.3f); },
        [&] { Graph().AddSpectrumRow(7, row.data()); },
        [&] { MoveTo(InStrip(9, 40.0f)); },
        [&] { MoveTo(InStrip(9, 0.0f)); },
        [&] { host.window.Press(); },
        [&] { host.window.Release(); },
        [&] {
            MoveTo({-20.0f, 300.0f});
        },
        [&] { Click(ShapeOf(9)); },
        [&] { MoveTo(InStrip(9, 0.0f)); },
        [&] { host.window.Click(); },
        [&] { Root().ShowMessage("One", "two", "three", "four", "five"); },
        [&] { host.window.Click(); },
        [&] { hostContrastColor = kRed; },
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        change();
        Tick();
        const auto parts = shown_in_parts();
        EXPECT_TRUE(parts != before);
        before = parts;
    }
    hostContrastColor = kAmber;
    for (const auto& [newWidth, newHeight] : {std::pair(1333, 700), {777, 600}}) {
        host.window.ResizeWindow(host.child, width = newWidth, height = newHeight);
        host.IdleTimes(5);
        before = shown_in_parts();
        Report(band_port(2) + kType, static_cast<float>(width % 6));
        EXPECT_TRUE(shown_in_parts() != before);
    }
    themeFlat = true;  // as another editor of the process may set it
    EXPECT_TRUE(shown_in_parts() != before);
    themeFlat = false;
}

// Pixels that a view draws outside its area would remain after a redraw.
TEST_F(Panel, EachViewDrawsInsideItsArea) {
    constexpr int kWidth = 1000;
    constexpr int kHeight = 600;
    std::vector<uint8_t> pixels(size_t{4} * kWidth * kHeight);
    const auto expect_inside = [&](GLView& view) {
        glClear(GL_COLOR_BUFFER_BIT);
        for (void (GLView::*pass)() : {&GLView::DrawBack, &GLView::Draw}) {
            const MatrixScope matrix;
            if (view.parent != &Root()) view.parent->Enter();
            (view.*pass)();
        }
        glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        GLRect area = view.DrawnArea();
        if (view.parent != &Root()) {
            const GLPoint at = view.parent->GetPosition();
            area = {area.left + at.x, area.bottom + at.y, area.right + at.x, area.top + at.y};
        }
        const uint8_t ground = pixels[0];
        int outside = 0;
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const float x = (static_cast<float>(i % kWidth) + 0.5f) / 300.0f - 5.0f / 3.0f;
            const float y = (static_cast<float>(i / kWidth) + 0.5f) / 300.0f - 1.0f;
            if (pixels[static_cast<size_t>(4 * i)] == ground) continue;
            outside += x < area.left || x > area.right || y < area.bottom || y > area.top;
        }
        EXPECT_EQ(outside, 0) << typeid(view).name() << " " << view.infoTitle << view.label;
    };
    for (int strip = 0; strip < kStripCount; ++strip) {
        Report(strip_port(strip) + kEnable, 1.0f);
        Report(strip_port(strip) + kGain, strip % 2 == 0 ? 18.0f : -18.0f);
    }
    host.IdleTimes(2);
    ASSERT_TRUE(static_cast<EditorInstance*>(host.handle)->puglView->MakeCurrent());
    glViewport(0, 0, kWidth, kHeight);
    glClearColor(0.5f, 0.5f, 0.5f, 1.0f);
    for (GLView* view = Root().firstChild; view != nullptr; view = view->nextSibling) {
        expect_inside(*view);
        for (GLView* child = view->firstChild; child != nullptr; child = child->nextSibling) {
            for (const bool held : {false, true}) {
                child->SetCaptured(held);
                expect_inside(*child);
            }
            child->SetCaptured(false);
        }
    }
    glXMakeCurrent(glXGetCurrentDisplay(), 0, nullptr);  // as the editor found it
}

}  // namespace
}  // namespace brindle
