// SPDX-License-Identifier: ISC
/// Shows all controls in all their states, in normal, boxy and flat style side by side, as the
/// editor draws them into a window: widget_gallery BUNDLE ZOOM PNG
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "docs/png.h"
#include "gl/GLView_Caption.h"
#include "gl/GLView_DB60Meter.h"
#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_MomentaryButton.h"
#include "gl/GLView_PopButton.h"
#include "gl/GLView_Toggle.h"
#include "gl/GLView_TrimSlider.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/support/fake_page.h"

namespace brindle {
namespace {

constexpr float kScale = 2.0f / 800.0f;  ///< page units of a design point
constexpr float kPoints = 0.75f;         ///< design pixels of a design point
constexpr int kWidth = 480;              ///< design pixels of one style's column
constexpr int kHeight = 560;
constexpr GLColor kBandColor{0.5f, 0.9f, 0.65f};
constexpr GLColor kTrack{0.5f, 0.75f, 0.5f};

enum class State { kPlain, kHovered, kHeld, kIdle };
constexpr State kStates[] = {State::kPlain, State::kHovered, State::kHeld, State::kIdle};

/// One control on the sheet and how it is shown.
struct Exhibit {
    std::unique_ptr<GLView> view;
    State state;
};

/// Controls from the upper left corner on, row by row; places are in design points.
class Sheet : public FakePage {
  public:
    Sheet() {
        interfaceScale = kScale;
        viewRight = static_cast<float>(kWidth) / 600.0f;
        viewTop = static_cast<float>(kHeight) / 600.0f;
        backgroundColor = kGrey10;
    }

    void Add(std::unique_ptr<GLView> view, float left, float top, State state) {
        view->parent = this;
        view->SetPosition(-viewRight + left * kScale, viewTop - top * kScale);
        view->enabled = state != State::kIdle;
        exhibits_.push_back({std::move(view), state});
    }

    /// One row: the control that `make` makes, in each state.
    void Row(float top, float pitch, const std::function<std::unique_ptr<GLView>()>& make) {
        float left = 20.0f + pitch / 2.0f;
        for (const State state : kStates) {
            Add(make(), left, top, state);
            left += pitch;
        }
    }

    void Text(float left, float top, const char* text, float size = 7.0f) {
        auto caption = std::make_unique<GLView_Caption>();
        caption->SetSize(400.0f * kScale, 20.0f * kScale);
        caption->SetLabel(text);
        caption->SetLabelSize(size);
        caption->alignment = kAlignLeft;
        Add(std::move(caption), left + 200.0f, top, State::kPlain);
    }

    /// One pass over all controls.
    void Show(void (GLView::*pass)()) {
        for (const Exhibit& exhibit : exhibits_) {
            GLView* view = exhibit.view.get();
            selectedView = exhibit.state == State::kHovered ? view : nullptr;
            capturedView = exhibit.state == State::kHeld ? view : nullptr;
            const MatrixScope matrix;
            (view->*pass)();
        }
        selectedView = capturedView = nullptr;
    }

  private:
    std::vector<Exhibit> exhibits_;
};

uint32_t NextPort(Sheet& sheet, float value) {
    static uint32_t port = 0;
    port = (port + 1) % 128;
    sheet.parameters[port] = value;
    return port;
}

/// A control of the knob family, showing a value.
template <typename Control>
std::unique_ptr<GLView> MakeControl(Sheet& sheet, float width, float height, float low, float high,
                                    float value, const char* unit, const char* label,
                                    bool horizontal = true) {
    auto control = std::make_unique<Control>(horizontal, low, high);
    control->parent = &sheet;
    control->SetSize(width * kScale, height * kScale);
    control->SetUnit(unit);
    control->SetLabel(label);
    control->SetColor(kTrack);
    control->SetPort({}, NextPort(sheet, value));
    control->ParameterChanged(control->port);
    return control;
}

std::unique_ptr<GLView> MakeToggle(Sheet& sheet, const char* text, const GLColor& color, bool on) {
    auto toggle = std::make_unique<GLView_Toggle>();
    toggle->SetSize(46.0f * kScale, 20.0f * kScale);
    toggle->SetColor(color);
    toggle->SetText(text);
    toggle->SetPort({}, NextPort(sheet, on ? 1.0f : 0.0f));
    return toggle;
}

template <typename Button>
std::unique_ptr<GLView> MakeButton(float width, float height, const char* label) {
    auto button = std::make_unique<Button>();
    button->SetSize(width * kScale, height * kScale);
    button->SetLabel(label);
    return button;
}

std::unique_ptr<GLView> MakeSelector(Sheet& sheet, const char* shown) {
    auto selector = std::make_unique<GLView_MenuSelector>();
    selector->parent = &sheet;
    selector->SetSize(64.0f * kScale, 20.0f * kScale);
    const uint32_t port = NextPort(sheet, 1.0f);
    selector->AddItem(port, 1.0f, 110.0f * kScale, shown);
    return selector;
}

void AddControls(Sheet& sheet) {
    const auto knob = [&](float value, float low, float high, const char* unit, const char* label) {
        return [=, &sheet] {
            return MakeControl<GLView_Knob>(sheet, 48, 22, low, high, value, unit, label);
        };
    };
    sheet.Text(20, 40, "plain");
    sheet.Text(98, 40, "pointer");
    sheet.Text(180, 40, "held");
    sheet.Text(260, 40, "without effect");
    sheet.Row(70, 80, knob(4.5f, -18, 18, "dB", "Gain"));
    sheet.Row(110, 80, knob(-12.0f, -18, 18, "dB", "Gain"));
    sheet.Row(150, 80, knob(0.7f, 0, 1, " ", "Q"));
    sheet.Row(190, 80, knob(12500.0f, 20, 20000, "Hz", "Freq"));
    sheet.Row(262, 80,
              [&] { return MakeControl<GLView_Knob>(sheet, 66, 66, -18, 18, 6.0f, "dB", "Gain"); });
    sheet.Row(335, 80, [&] { return MakeToggle(sheet, "3", kBandColor, false); });
    sheet.Row(365, 80, [&] { return MakeToggle(sheet, "3", kBandColor, true); });
    sheet.Row(395, 80, [&] { return MakeToggle(sheet, "A", kGreen, true); });
    sheet.Row(430, 80, [&] { return MakeSelector(sheet, "Hi Sh 48"); });
    sheet.Row(460, 115, [&] { return MakeButton<GLView_PresetButton>(106, 16, "60Hz Buzz Kill"); });
    sheet.Row(485, 115, [&] { return MakeButton<GLView_PopButton>(60, 20, "OK"); });
    sheet.Row(515, 80, [&] { return MakeButton<GLView_MomentaryButton>(26, 26, "flat"); });
    sheet.Row(550, 80,
              [&] { return MakeControl<GLView_Slider>(sheet, 72, 18, -1, 1, 0.4f, "", "Blend"); });
    sheet.Row(590, 80, [&] {
        return MakeControl<GLView_TextSlider>(sheet, 72, 22, 0, 100, 62.0f, "%", "");
    });
    sheet.Row(625, 150, [&] {
        return MakeControl<GLView_TrimSlider>(sheet, 140, 26, -20, 20, -3.5f, "dB",
                                              "Output Trim: ");
    });
}

void AddStandingPieces(Sheet& sheet) {
    const float levels[] = {0.0f, 0.1f, 0.5f, 1.0f, 2.0f};
    float left = 380.0f;
    for (const float level : levels) {
        auto meter = std::make_unique<GLView_DB60Meter>();
        meter->SetSize(22.0f * kScale, 160.0f * kScale);
        meter->level = level;
        sheet.Add(std::move(meter), left, 150.0f, State::kPlain);
        left += 40.0f;
    }
    left = 380.0f;
    for (const State state : kStates) {
        sheet.Add(MakeControl<GLView_Slider>(sheet, 20, 110, 0, 10, 7.0f, "", "Dry", false), left,
                  310.0f, state);
        left += 50.0f;
    }
    for (int style = 0; style < 5; ++style) {
        auto box = std::make_unique<GLView_DecoratorBox>();
        box->SetSize(80.0f * kScale, 70.0f * kScale);
        box->style = style;
        box->SetLabel(("Box " + std::to_string(style)).c_str());
        sheet.Add(std::move(box), 70.0f + 95.0f * static_cast<float>(style), 690.0f, State::kPlain);
    }
}

constexpr float kMenuLeft = 230.0f;  ///< design points from the sheet's middle
constexpr float kMenuTop = -50.0f;

/// An open menu with a present entry and another under the pointer.
void ShowMenu(Sheet& sheet) {
    GLView_MenuSelector selector;
    selector.parent = &sheet;
    const uint32_t port = NextPort(sheet, 5.0f);
    const char* labels[] = {"LP 6dB/oct", "HP 6dB/oct", "LP 12dB/oct", "HP 12dB/oct",
                            "Lo Shelf",   "Hi Shelf",   "Bell",        "Notch"};
    float value = 1.0f;
    for (const char* label : labels) selector.AddItem(port, value++, 110.0f * kScale, label);
    selector.menu.SetPosition(0.0f, -63.0f * kScale);
    selector.menu.fade = 0.6f;
    sheet.selectedView = selector.menu.firstChild->nextSibling;
    // The menu darkens the whole page: here, a part around itself.
    const float right = sheet.viewRight;
    const float top = sheet.viewTop;
    const MatrixScope matrix;
    glTranslatef(kMenuLeft * kScale, kMenuTop * kScale, 0.0f);
    sheet.viewRight = 80.0f * kScale;
    sheet.viewTop = 90.0f * kScale;
    {
        const MatrixScope pass;
        selector.menu.Draw();
    }
    sheet.viewRight = right;
    sheet.viewTop = top;
    selector.menu.DrawFront();
    sheet.selectedView = nullptr;
}

void Project(const Sheet& sheet) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-sheet.viewRight, sheet.viewRight, -sheet.viewTop, sheet.viewTop, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

/// Renders a sheet as the editor does: back and main pass at twice the design size, the front pass
/// over a copy of it at the window's size.
Picture Render(Sheet& sheet, int zoom, const char* title, bool boxy, bool flat) {
    themeBoxy = sheet.boxy = boxy;
    themeFlat = sheet.flat = flat;
    GLContext layer(2 * kWidth, 2 * kHeight);
    GLResources resources(kScale);
    sheet.resources = &resources;
    layer.Clear(0.105f);
    sheet.Text(20, 18, title, 9.0f);
    AddControls(sheet);
    AddStandingPieces(sheet);
    Project(sheet);
    sheet.Show(&GLView::DrawBack);
    sheet.Show(&GLView::Draw);

    GLuint window = 0;
    GLuint framebuffer = 0;
    glGenTextures(1, &window);
    glBindTexture(GL_TEXTURE_2D, window);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, zoom * kWidth, zoom * kHeight, 0, GL_RGB,
                 GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, window, 0);
    glViewport(0, 0, zoom * kWidth, zoom * kHeight);
    kWhite.Apply();
    glDisable(GL_BLEND);
    DrawTexture(layer.Texture(), sheet.viewRight, sheet.viewTop);
    glEnable(GL_BLEND);
    sheet.Show(&GLView::DrawFront);
    ShowMenu(sheet);

    Picture picture{zoom * kWidth, zoom * kHeight, {}};
    picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        glReadPixels(
            0, picture.height - 1 - y, picture.width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
            picture.pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(picture.width));
    }
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &window);
    sheet.resources = nullptr;
    return picture;
}

/// Pictures of the same height side by side.
Picture Join(const std::vector<Picture>& pictures) {
    Picture joined{0, pictures.front().height, {}};
    for (const Picture& picture : pictures) joined.width += picture.width;
    for (int y = 0; y < joined.height; ++y) {
        for (const Picture& picture : pictures) {
            const auto row = picture.pixels.begin() + std::ptrdiff_t{y} * picture.width;
            joined.pixels.insert(joined.pixels.end(), row, row + picture.width);
        }
    }
    return joined;
}

bool MakeGallery(const std::string& bundle, int zoom, const char* path) {
    resourceDirectory = bundle + "/";
    struct Style {
        const char* title;
        bool boxy;
        bool flat;
    };
    std::vector<Picture> pictures;
    for (const Style& style :
         {Style{"Normal", false, false}, Style{"Boxy", true, false}, Style{"Flat", false, true}}) {
        Sheet sheet;
        pictures.push_back(Render(sheet, zoom, style.title, style.boxy, style.flat));
    }
    return WritePng(Join(pictures), path);
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    const int zoom = argc == 4 ? std::atoi(argv[2]) : 0;
    if (zoom < 1 || zoom > 4) {
        std::fputs("usage: widget_gallery BUNDLE ZOOM PNG\n", stderr);
        return 2;
    }
    return brindle::MakeGallery(argv[1], zoom, argv[3]) ? 0 : 1;
}
