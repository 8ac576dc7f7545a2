// SPDX-License-Identifier: ISC
/// Measures in pictures of the editor how well each text stands out from its ground, in each look
/// that a host can ask for: contrast [WIDTH], on an X server with room for the window. Prints a
/// table of the weakest text of each kind and each look's weakest text. Fails if a text that is
/// read has less than 4.5:1, a text of something that is off less than 3:1, or a lamp that is on
/// less than 3:1 to one that is off (luminance ratios after WCAG 2).
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "contract/ports.h"
#include "contract/presets.h"
#include "editor/GLView_HelpLine.h"
#include "editor/GLView_MeterScale.h"
#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "gl/GLView_Caption.h"
#include "gl/GLView_DB60Meter.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_Toggle.h"
#include "gl/GLView_TrimSlider.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "graph/GLView_ParametricEQGrabber.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

/// A text as the editor has drawn it, and its place on the page.
struct DrawnText {
    std::string text;
    GLRect place;
};
std::vector<DrawnText> drawnTexts;

void Record(const char* text, int alignment) {
    if (text == nullptr || *text == '\0') return;
    constexpr float kCapital = 0.585f;  // half a capital's height
    std::array<GLfloat, 16> matrix{};
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data());
    const float width = TextWidth(text) * matrix[0];
    const float left = matrix[12] - 0.5f * static_cast<float>(alignment) * width;
    const float reach = kCapital * matrix[5];
    drawnTexts.push_back({text, {left, matrix[13] - reach, left + width, matrix[13] + reach}});
}

}  // namespace

// The linker directs all calls of DrawText here (--wrap).
void RealDrawText(const GLResources* resources, const char* text,
                  int alignment) asm("__real__ZN7brindle8DrawTextEPKNS_11GLResourcesEPKci");
void RecordDrawText(const GLResources* resources, const char* text,
                    int alignment) asm("__wrap__ZN7brindle8DrawTextEPKNS_11GLResourcesEPKci");
void RecordDrawText(const GLResources* resources, const char* text, int alignment) {
    Record(text, alignment);
    RealDrawText(resources, text, alignment);
}

namespace {

constexpr double kWantedRead = 4.5;
constexpr double kWantedOff = 3.0;

struct LookRow {
    const char* name;
    GLColor background = kCream;
    GLColor contrast = kAmber;
    bool boxy = false;
    bool flat = false;
};
const LookRow kLooks[] = {
    {.name = "default"},
    {.name = "boxy", .boxy = true},
    {.name = "flat", .flat = true},
    {.name = "dark host", .background = {0.05f, 0.06f, 0.08f}, .contrast = {0.19f, 0.75f, 0.88f}},
    {.name = "light host", .background = {0.93f, 0.93f, 0.95f}, .contrast = {0.0f, 0.3f, 0.7f}},
    {.name = "black contrast", .contrast = kBlack},
    {.name = "yellow contrast", .contrast = kYellow},
};
constexpr size_t kLookCount = std::size(kLooks);

double Linear(uint32_t component) {
    const double c = component / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}
double Luminance(uint32_t rgb) {
    return 0.2126 * Linear(rgb >> 16 & 255u) + 0.7152 * Linear(rgb >> 8 & 255u) +
           0.0722 * Linear(rgb & 255u);
}
double Ratio(double a, double b) {
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// The least ratio of a kind in each look, and what has it.
struct Weakest {
    double ratio = 1e9;
    std::string what;
    void Add(double newRatio, const std::string& newWhat) {
        if (newRatio < ratio) *this = {newRatio, newWhat};
    }
};
struct Kind {
    std::string name;
    double wanted;
    std::array<Weakest, kLookCount> looks;
};

/// What a text belongs to, in the table's words.
std::string KindOf(GLView& view, const DrawnText& drawn) {
    const auto is = [&view](auto* type) { return dynamic_cast<decltype(type)>(&view) != nullptr; };
    if (is(static_cast<GLView_ParametricEQ*>(nullptr))) {
        const float height = (drawn.place.bottom + drawn.place.top) / 2 - view.y;
        if (height > view.hh) return "frequencies";
        return height < -view.hh ? "note and frequency of a handle" : "decibels";
    }
    if (is(static_cast<GLView_ParametricEQGrabber*>(nullptr))) return "numbers of handles";
    if (is(static_cast<GLView_Toggle*>(nullptr))) return "lamps";
    if (is(static_cast<GLView_MenuSelector*>(nullptr))) return "shapes";
    if (is(static_cast<GLView_PresetButton*>(nullptr))) return "presets, flat";
    if (is(static_cast<GLView_HelpLine*>(nullptr))) return "help line";
    if (is(static_cast<GLView_MeterName*>(nullptr))) return "names of meters";
    if (is(static_cast<GLView_MeterScale*>(nullptr))) return "levels beside meters";
    if (is(static_cast<GLView_Knob*>(nullptr))) {
        return drawn.text == view.label ? "captions of knobs" : "values";
    }
    return "captions";
}

bool IsOff(GLView& view) {
    auto* lamp = dynamic_cast<GLView_Toggle*>(&view);
    return lamp != nullptr ? !lamp->IsOn() : !view.enabled;
}

/// The smallest view that draws at a place, in the coordinates of `parent`.
struct Found {
    GLView* view = nullptr;
    float size = 1e9f;
};
void FindSmallest(GLView& parent, GLPoint place, Found& found) {
    for (GLView* view = parent.firstChild; view != nullptr; view = view->nextSibling) {
        const GLRect area = view->DrawnArea();
        if (place.x < area.left || place.x > area.right || place.y < area.bottom ||
            place.y > area.top) {
            continue;
        }
        const float size = (area.right - area.left) * (area.top - area.bottom);
        if (size < found.size) found = {view, size};
        GLPoint inside = place;
        view->ParentToLocal(inside);
        FindSmallest(*view, inside, found);
    }
}

/// Calls `use` with each view of a class.
template <typename View, typename Use>
void ForEach(GLView& parent, Use use) {
    for (GLView* view = parent.firstChild; view != nullptr; view = view->nextSibling) {
        if (auto* wanted = dynamic_cast<View*>(view)) use(*wanted);
        ForEach<View>(*view, use);
    }
}

/// An editor in one look, and the pixels of its window.
class Scene {
  public:
    Scene(const LookRow& look, int width) : width_(width), height_(width * 6 / 10) {
        hostBackgroundColor = look.background;
        hostContrastColor = look.contrast;
        if (look.boxy) editor_.AddOption(kStyleBoxyUri, LV2_ATOM__Bool, int32_t{1});
        if (look.flat) editor_.AddOption(kStyleFlatUri, LV2_ATOM__Bool, int32_t{1});
        if (!editor_.Open()) throw std::runtime_error("no editor");
        root = static_cast<EditorInstance*>(editor_.handle)->rootView.get();
        editor_.window.Resize(width_, height_);
        editor_.window.ResizeWindow(editor_.child, width_, height_);
        editor_.IdleTimes(3);
        // Bands and sections that are on and off.
        const Preset& preset = kPresets.back();
        for (uint32_t i = 0; i < preset.values.size(); ++i) {
            editor_.Report(kFirstPresetPort + i, preset.values[i]);
        }
        editor_.Report(section_port(1) + kEnable, 0.0f);
        editor_.Report(kMeterInPort, 0.02f);
    }

    /// Moves the pointer to a view's middle, moved down by `below` page units.
    void PointAt(GLView& view, float below = 0.0f) {
        const GLPoint place = view.LocalToPage({0.0f, -below});
        editor_.window.MovePointer(PixelX(place.x), PixelY(place.y));
        editor_.IdleTimes(2);
    }
    void Press() { editor_.window.Press(); }
    void Release() { editor_.window.Release(); }
    /// Takes a picture of the editor and of all its texts.
    void Shoot() {
        editor_.IdleTimes(40);  // until menus have darkened what is behind them
        drawnTexts.clear();
        root->redrawNeeded = true;
        editor_.IdleTimes(2);
        pixels_ = editor_.window.GetPixels(editor_.child, width_, height_);
    }
    /// The sorted luminances of an area.
    std::vector<double> Luminances(const GLRect& area) const {
        std::vector<double> luminances;
        for (int y = PixelY(area.top); y < PixelY(area.bottom); ++y) {
            for (int x = PixelX(area.left); x < PixelX(area.right); ++x) {
                luminances.push_back(
                    Luminance(pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) +
                                      static_cast<size_t>(x)]));
            }
        }
        std::sort(luminances.begin(), luminances.end());
        return luminances;
    }

    GLView_StripEqView* root = nullptr;

  private:
    int Pixel(float share, int size) const {
        return std::clamp(static_cast<int>(std::lround(share * static_cast<float>(size))), 0, size);
    }
    int PixelX(float x) const { return Pixel((x / root->GetViewRight() + 1.0f) / 2.0f, width_); }
    int PixelY(float y) const { return Pixel((1.0f - y / root->GetViewTop()) / 2.0f, height_); }

    int width_;
    int height_;
    test::UiHost editor_{lv2ui_descriptor(0)};
    std::vector<uint32_t> pixels_;
};

class Measurement {
  public:
    /// Measures one look in a window `width` pixels wide.
    void Run(size_t look, int width) {
        look_ = look;
        Scene scene(kLooks[look], width);
        GLView_StripEqView& root = *scene.root;
        scene.PointAt(*root.firstChild);  // the button for "flat", which has a long help text
        scene.Shoot();
        MeasurePanel(scene);
        MeasureLamps(scene);
        GLView_Knob* knob = nullptr;
        ForEach<GLView_Knob>(root, [&](GLView_Knob& each) {
            if (each.port == band_port(0) + kGain) knob = &each;
        });
        scene.PointAt(*knob);  // selects the band's handle
        scene.Shoot();
        MeasurePanel(scene);
        scene.Press();
        scene.Shoot();
        MeasurePanel(scene);
        scene.Release();
        ForEach<GLView_MenuSelector>(root, [&](GLView_MenuSelector& selector) {
            if (!selector.menu.HasPort(band_port(0) + kType)) return;
            scene.PointAt(selector);
            scene.Press();
            scene.Release();
            scene.PointAt(*selector.menu.firstChild->nextSibling);
            scene.Shoot();
            MeasureMenu(scene, selector.menu);
        });
    }

    /// Prints the table in Markdown, then each look's weakest text and what is too weak. True if
    /// nothing is.
    bool Print() const {
        std::printf("| weakest of each kind | wanted |");
        for (const LookRow& look : kLooks) std::printf(" %s |", look.name);
        std::printf("\n|---|---|");
        for (size_t i = 0; i < kLookCount; ++i) std::printf("---|");
        for (const Kind& kind : kinds_) {
            std::printf("\n| %s | %.1f |", kind.name.c_str(), kind.wanted);
            for (const Weakest& weakest : kind.looks) std::printf(" %.2f |", weakest.ratio);
        }
        std::puts("\n");
        bool good = true;
        for (size_t look = 0; look < kLookCount; ++look) {
            const auto share = [look](const Kind& kind) {
                return kind.looks[look].ratio / kind.wanted;
            };
            const Kind& worst = *std::ranges::min_element(kinds_, {}, share);
            for (const Kind& kind : kinds_) {
                if (share(kind) >= 1.0 && &kind != &worst) continue;
                std::printf("- %s: %s %.2f:1, wanted %.1f:1 (%s \"%s\")\n", kLooks[look].name,
                            share(kind) < 1.0 ? "TOO WEAK," : "weakest are", kind.looks[look].ratio,
                            kind.wanted, kind.name.c_str(), kind.looks[look].what.c_str());
            }
            good = good && share(worst) >= 1.0;
        }
        return good;
    }

  private:
    void Add(const std::string& name, double wanted, double ratio, const std::string& what) {
        auto kind = std::ranges::find(kinds_, name, &Kind::name);
        if (kind == kinds_.end()) kind = kinds_.insert(kind, {name, wanted, {}});
        kind->looks[look_].Add(ratio, what);
    }
    /// The contrast of a light or dark text with its ground. Shadows and edges are neither: the
    /// ground is darker or lighter than two thirds of the text's area.
    void AddText(const Scene& scene, std::string kind, bool off, const DrawnText& drawn) {
        const float edge = scene.root->GetPixelSize();
        const GLRect& place = drawn.place;
        const auto sorted = scene.Luminances(
            {place.left - edge, place.bottom - edge, place.right + edge, place.top + edge});
        const auto at = [&sorted](size_t percent) { return sorted[sorted.size() * percent / 100]; };
        if (off) kind += ", off";
        Add(kind, off ? kWantedOff : kWantedRead,
            std::max(Ratio(at(98), at(33)), Ratio(at(2), at(67))), drawn.text);
    }

    void MeasurePanel(const Scene& scene) {
        for (const DrawnText& drawn : drawnTexts) {
            const GLRect& place = drawn.place;
            Found found;
            FindSmallest(*scene.root,
                         {(place.left + place.right) / 2, (place.bottom + place.top) / 2}, found);
            if (found.view == nullptr) continue;
            AddText(scene, KindOf(*found.view, drawn), IsOff(*found.view), drawn);
        }
    }
    void MeasureMenu(const Scene& scene, GLView_Menu& menu) {
        for (const DrawnText& drawn : drawnTexts) {
            for (GLView* item = menu.firstChild; item != nullptr; item = item->nextSibling) {
                const GLPoint at = item->LocalToPage({0.0f, 0.0f});
                if (drawn.text != item->label || at.y < drawn.place.bottom ||
                    at.y > drawn.place.top) {
                    continue;
                }
                const bool isPointedAt = scene.root->GetSelectedView() == item;
                AddText(scene, isPointedAt ? "menu entry pointed at" : "menu entries", false,
                        drawn);
            }
        }
    }
    /// The dimmest lamp that is on against the brightest one that is off.
    void MeasureLamps(const Scene& scene) {
        for (const bool ofBands : {true, false}) {
            double on = 1.0;
            double off = 0.0;
            ForEach<GLView_Toggle>(*scene.root, [&](GLView_Toggle& lamp) {
                if (ofBands != (lamp.port < section_port(0))) return;
                const GLPoint at = lamp.LocalToPage({0.0f, 0.0f});
                const float hw = 0.75f * lamp.hw;
                const float hh = 0.75f * lamp.hh;
                const auto face = scene.Luminances({at.x - hw, at.y - hh, at.x + hw, at.y + hh});
                const double median = face[face.size() / 2];
                if (lamp.IsOn()) {
                    on = std::min(on, median);
                } else {
                    off = std::max(off, median);
                }
            });
            Add(ofBands ? "lit to unlit lamp of bands" : "lit to unlit lamp of sections",
                kWantedOff, Ratio(on, off), "median of the face");
        }
    }

    size_t look_ = 0;
    std::vector<Kind> kinds_;
};

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    const int width = argc > 1 ? std::atoi(argv[1]) : brindle::kEditorWidthPx;
    brindle::Measurement measurement;
    for (size_t look = 0; look < brindle::kLookCount; ++look) measurement.Run(look, width);
    return measurement.Print() ? 0 : 1;
}
