// SPDX-License-Identifier: ISC
// The editor of the built bundle, opened as a host opens it.
#include <X11/XF86keysym.h>
#include <gmock/gmock.h>
#include <lv2/parameters/parameters.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <tuple>

#include "contract/ports.h"
#include "tests/support/gl_context.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

using test::BuiltEditor;
using test::UiHost;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

constexpr const char* kNoTouch = "error: Required touch interface extension is not available.\n";
constexpr const char* kNoWindow = "error: No window with OpenGL can be opened.\n";

struct Editor : testing::Test {
    UiHost host{BuiltEditor()};

    void Open() {
        ASSERT_TRUE(host.Open());
        host.IdleTimes(3);
    }
    /// What the editor printed during a call.
    struct Printed {
        std::string out;
        std::string err;
    };
    template <typename Action>
    static Printed PrintedBy(Action action) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        action();
        std::fflush(stdout);
        return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
    }
    static void ExpectRefusal(UiHost& refused, const char* error) {
        EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(refused.Open()); }).err, EndsWith(error));
    }
};

TEST_F(Editor, OpensInTheParentAndSaysItsTwoMessagesToTheByte) {
    ASSERT_NE(BuiltEditor(), nullptr);
    EXPECT_EQ(BuiltEditor(1), nullptr);
    EXPECT_STREQ(BuiltEditor()->URI, kEditorUri);
    EXPECT_EQ(BuiltEditor()->extension_data(LV2_UI__showInterface), nullptr);
    EXPECT_EQ(BuiltEditor()->extension_data(nullptr), nullptr);
    Open();
    EXPECT_TRUE(host.window.IsShown(host.child));
    EXPECT_TRUE(host.window.HasSize(host.child, 1000, 600));
    EXPECT_THAT(host.resizes, ElementsAre(Pair(1000, 600)));
    EXPECT_EQ(host.Idle(), 0);
    host.Close();
    ASSERT_EQ(host.writes.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        const uint32_t words[] = {8, host.map(LV2_ATOM__Object), 1,
                                  host.map(i == 0 ? kEnableUiUri : kDisableUiUri)};
        const auto* bytes = reinterpret_cast<const uint8_t*>(words);
        EXPECT_EQ(host.writes[i].port, 0u);
        EXPECT_EQ(host.writes[i].protocol, host.map(LV2_ATOM__eventTransfer));
        EXPECT_THAT(host.writes[i].bytes, testing::ElementsAreArray(bytes, sizeof words));
    }
    // The forge's types are between options and messages, in the order of LV2's own header.
    auto order = host.map.order();
    ASSERT_GT(order.size(), 10u);
    EXPECT_THAT(
        std::vector(order.begin(), order.begin() + 10),
        ElementsAre(LV2_ATOM__Int, LV2_ATOM__Bool, LV2_ATOM__Float, LV2_PARAMETERS__sampleRate,
                    LV2_UI__scaleFactor, LV2_UI__foregroundColor, LV2_UI__backgroundColor,
                    LV2_UI_PREFIX "contrastingColor", kStyleBoxyUri, kStyleFlatUri));
    std::erase_if(order, [](const std::string& uri) { return !uri.starts_with("urn:"); });
    EXPECT_THAT(order, ElementsAre(kMessageUri, kSampleRateUri, kPlotIdUri, kPlotArrayUri,
                                   kEnableUiUri, kDisableUiUri));
}

TEST_F(Editor, TellsTheOptionsThatItUses) {
    host.AddOption(LV2_UI__scaleFactor, LV2_ATOM__Float, 2.0f);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, 0x11223380u);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, 0x445566ffu, false);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Float, 1.0f);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, uint8_t{1});
    host.AddOption(LV2_UI__foregroundColor, LV2_ATOM__Int, 0x778899ffu);
    host.AddOption(LV2_UI_PREFIX "contrastingColor", LV2_ATOM__Int, 0x0a0b0c0du);
    host.AddOption(kStyleBoxyUri, LV2_ATOM__Bool, 1);
    host.AddOption(kStyleFlatUri, LV2_ATOM__Bool, 0);
    host.AddOption(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, 44100.0f);
    host.AddOption("urn:x:unknown", LV2_ATOM__Int, 1);
    EXPECT_THAT(PrintedBy([&] { Open(); }).out,
                testing::StartsWith("HOST BG COLOR RGBA: 0x11223380\n"
                                    "HOST CONTRAST COLOR RGBA: 0xa0b0c0d\n"
                                    "HOST THEME BOXY: TRUE\n"
                                    "HOST THEME FLAT: FALSE\n"
                                    "HOST SAMPLE RATE: 44100.000\n"));
    host.Close();
    host.hasMap = false;
    EXPECT_THAT(PrintedBy([&] { Open(); }).out, Not(HasSubstr("HOST")));
    host.Report(kTrimPort, 3.0f);
    host.IdleTimes(3);
}

TEST_F(Editor, ShowsTheHostsColorsAndStyles) {
    // The ground at the panel's edge, and the brightest pixel of the product's second name.
    struct Colors {
        uint32_t ground = 0;
        uint32_t name = 0;
    };
    std::vector<uint32_t> picture;
    const auto with = [&](const char* key, const char* type, uint32_t value) {
        UiHost told(BuiltEditor());
        told.AddOption(key, type, value);
        EXPECT_TRUE(told.Open());
        told.IdleTimes(2);
        picture = told.window.GetPixels(told.child, 1000, 600);
        Colors colors{picture[2 * 1000 + 2]};
        for (size_t y = 460; y < 484; ++y) {
            const auto row = picture.begin() + static_cast<std::ptrdiff_t>(1000 * y);
            colors.name = std::max(colors.name, *std::max_element(row + 800, row + 890));
        }
        return colors;
    };
    const auto background = [&](uint32_t rgba) {
        return with(LV2_UI__backgroundColor, LV2_ATOM__Int, rgba).ground;
    };
    const auto contrast = [&](uint32_t rgba) {
        return with(LV2_UI_PREFIX "contrastingColor", LV2_ATOM__Int, rgba).name;
    };
    const auto part = [](uint32_t color, int shift) { return color >> shift & 0xffu; };
    const uint32_t dark = background(0x0a1400ffu);
    EXPECT_LT(part(dark, 16), part(dark, 8));
    EXPECT_EQ(part(dark, 0), 0u);
    EXPECT_EQ(background(0xff800080u), dark) << "not opaque";
    const uint32_t light = background(0xff8000ffu);
    EXPECT_GT(part(light, 16), part(light, 8));
    EXPECT_LT(part(light, 16), 0x20u) << "too light for the texts";
    const uint32_t red = contrast(0xff0000ffu);
    EXPECT_GT(part(red, 16), 2 * part(red, 0));
    EXPECT_GT(part(contrast(0x000000ffu), 0), 0x60u) << "too dark to be read";
    std::set<std::vector<uint32_t>> pictures;
    for (const char* key : {kStyleBoxyUri, kStyleFlatUri, LV2_UI__foregroundColor}) {
        with(key, LV2_ATOM__Bool, 1);
        pictures.insert(picture);
    }
    EXPECT_EQ(pictures.size(), 3u);
}

TEST_F(Editor, RefusesHostsThatLackWhatItNeeds) {
    host.hasTouch = false;
    ExpectRefusal(host, kNoTouch);
    host.hasTouch = true;
    host.hasTouchData = false;  // as in Carla if it prefers bridges
    ExpectRefusal(host, kNoTouch);
    EXPECT_THAT(host.resizes, IsEmpty());
    host.Report(kTrimPort, 1.0f);
    EXPECT_EQ(host.Idle(), 0);
    BuiltEditor()->cleanup(nullptr);

    host.hasTouchData = true;
    host.hasParent = false;
    ExpectRefusal(host, "error: No parent window provided.\n");
    EXPECT_THAT(host.resizes, ElementsAre(Pair(1000, 600)));
    host.hasParent = true;
    const std::string display = XDisplayName(nullptr);
    setenv("DISPLAY", ":765", 1);
    ExpectRefusal(host, kNoWindow);
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_THAT(host.writes, IsEmpty());

    UiHost orphan(BuiltEditor());
    orphan.parent = orphan.window.MakeInvisibleChild();
    ExpectRefusal(orphan, kNoWindow);
    orphan.parent = 0;
    orphan.window.Destroy();
    ExpectRefusal(orphan, kNoWindow);

    // Features without their functions.
    const auto touch = std::exchange(host.touch.touch, nullptr);
    ExpectRefusal(host, kNoTouch);
    host.touch.touch = touch;
    host.resize.ui_resize = nullptr;
    host.map.get()->map = nullptr;
    ASSERT_TRUE(host.Open(nullptr));
    host.Deliver(kTrimPort, 0, nullptr, sizeof(float));
}

/// Everything that identifies the current GL context.
auto CurrentContext() {
    return std::tuple(glXGetCurrentDisplay(), glXGetCurrentDrawable(), glXGetCurrentReadDrawable(),
                      glXGetCurrentContext(), eglGetCurrentContext());
}

/// A context that a host keeps current with GLX, in its own window.
struct GlxContext {
    Display* display = XOpenDisplay(nullptr);

    GlxContext() {
        int wanted[] = {GLX_RGBA, GLX_DOUBLEBUFFER, 0};
        XVisualInfo* visual = glXChooseVisual(display, DefaultScreen(display), wanted);
        const Window root = DefaultRootWindow(display);
        XSetWindowAttributes attributes{};
        attributes.colormap = XCreateColormap(display, root, visual->visual, AllocNone);
        std::array<Window, 2> windows{};  // drawn to, and read from
        for (Window& window : windows) {
            window = XCreateWindow(display, root, 0, 0, 10, 10, 0, visual->depth, InputOutput,
                                   visual->visual, CWColormap, &attributes);
        }
        GLXContext context = glXCreateContext(display, visual, nullptr, True);
        XFree(visual);
        glXMakeContextCurrent(display, windows[0], windows[1], context);
    }
    ~GlxContext() {
        GLXContext context = glXGetCurrentContext();
        glXMakeCurrent(display, None, nullptr);
        glXDestroyContext(display, context);
        XCloseDisplay(display);
    }
};

TEST_F(Editor, LeavesTheHostsGlContextCurrent) {
    const auto use = [](const char* kind) {
        SCOPED_TRACE(kind);
        const auto before = CurrentContext();
        UiHost user(BuiltEditor());
        user.hasParent = false;
        EXPECT_FALSE(user.Open());
        EXPECT_EQ(CurrentContext(), before) << "refused";
        user.hasParent = true;
        for (const bool parentGoesFirst : {false, true}) {
            ASSERT_TRUE(user.Open());
            EXPECT_EQ(CurrentContext(), before) << "opened";
            user.IdleTimes(2);
            EXPECT_EQ(CurrentContext(), before) << "drawn";
            EXPECT_NE(user.GetPixel(20, 20), 0u);
            if (parentGoesFirst) user.window.Destroy();
            user.Close();
            EXPECT_EQ(CurrentContext(), before) << "closed";
        }
    };
    use("no context");
    {
        const GlxContext current;
        use("GLX");
    }
    const GLContext current(8, 8);
    use("EGL");
}

TEST_F(Editor, RefusesABrokenDriver) {
    for (const auto& [name, value] : {std::pair("LIBGL_ALWAYS_INDIRECT", "1"),
                                      std::pair("LIBGL_DRIVERS_PATH", "/nonexistent")}) {
        SCOPED_TRACE(name);
        setenv(name, value, 1);
        ExpectRefusal(host, kNoWindow);
        unsetenv(name);
    }
    setenv("MESA_GL_VERSION_OVERRIDE", "1.4", 1);  // all required functions exist nevertheless
    Open();
    unsetenv("MESA_GL_VERSION_OVERRIDE");
}

TEST_F(Editor, TellsKeysOnStandardErrorAndPassesThemOn) {
    Open();
    host.window.Focus(host.child);
    const std::vector<std::pair<KeySym, bool>> keys = {{XK_q, true},
                                                       {XK_q, false},
                                                       {XK_Control_L, true},
                                                       {XK_F5, true},
                                                       {XK_F5, false},
                                                       {XF86XK_AudioPlay, true},  // unknown to Pugl
                                                       {XF86XK_AudioPlay, false},
                                                       {XK_Control_L, false}};
    std::vector<XKeyEvent> passed;
    const Printed printed = PrintedBy([&] {
        for (const auto& [symbol, press] : keys) host.window.Key(symbol, press);
        host.IdleTimes(3);
        passed = host.window.TakeKeys();
    });
    ASSERT_EQ(passed.size(), keys.size());
    for (size_t i = 0; i < keys.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(passed[i].type, keys[i].second ? KeyPress : KeyRelease);
        EXPECT_EQ(passed[i].keycode, host.window.KeyCode(keys[i].first));
        EXPECT_EQ(passed[i].state, i > 2 ? unsigned{ControlMask} : 0u);
        EXPECT_GE(passed[i].time, i == 0 ? 1 : passed[i - 1].time);
    }
    EXPECT_THAT(printed.err,
                testing::AllOf(testing::StartsWith("Key q down Modifiers:\n"
                                                   "Key q up Modifiers:\n"
                                                   "Special key 23 down Modifiers:\n"
                                                   "Special key 5 down Modifiers: Ctrl\n"
                                                   "Special key 5 up Modifiers: Ctrl\n"),
                               EndsWith("Special key 23 up Modifiers: Ctrl\n")));
    EXPECT_THAT(printed.out, HasSubstr("GLView_BaseView::KeyDown, doing nothing\n"));
    host.window.SendKey(host.child, passed[0]);
    host.IdleTimes(3);
    EXPECT_THAT(host.window.TakeKeys(), IsEmpty()) << "what was sent comes back";
}

TEST_F(Editor, FollowsItsParentsSizeUnlessTheHostSizesIt) {
    Open();
    const auto takes = [&](int width, int height) {
        return WaitFor([&] { return host.window.HasSize(host.child, width, height); },
                       [&] { host.Idle(); });
    };
    for (const auto& [width, height] : {std::pair(1500, 700), {500, 480}, {640, 384}}) {
        host.window.Resize(width, height);
        EXPECT_TRUE(takes(width, height)) << width;
    }
    host.window.ResizeWindow(host.child, 300, 200);
    EXPECT_TRUE(takes(300, 200));
    host.window.Resize(900, 500);
    host.IdleTimes(30);
    EXPECT_TRUE(host.window.HasSize(host.child, 300, 200));
}

// Sanitizers keep freed memory. The address sanitizer finds leaks itself.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(Editor, OpensAndClosesWithoutTrace) {
    UiHost other(BuiltEditor());
    ASSERT_TRUE(other.Open());
    std::vector<long> growths;  // bytes; X and GL keep some two thousand, a view has 12 thousand
    auto used = mallinfo2();
    for (int round = 0; round < 25; ++round) {
        Open();
        host.Report(kTrimPort, 1.0f);
        other.Idle();
        host.Close();
        EXPECT_EQ(glXGetCurrentContext(), nullptr);
        const auto before = std::exchange(used, mallinfo2());
        growths.push_back(static_cast<long>(used.uordblks + used.hblkhd) -
                          static_cast<long>(before.uordblks + before.hblkhd));
    }
    std::ranges::nth_element(growths, growths.begin() + 12);
    EXPECT_LT(growths[12], 6000) << "bytes in most rounds";
    Open();
    host.window.Destroy();
    host.Idle();
    host.Close();
    other.IdleTimes(3);
    EXPECT_TRUE(other.window.IsShown(other.child));
}
#endif

TEST_F(Editor, TellsTheUserWherePicturesAreMissing) {
    // A bundle's folder without pictures, and then without letters.
    const std::filesystem::path folder = testing::TempDir() + "brindle_part.lv2";
    const std::string bundle = folder.string() + '/';
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "res");
    std::filesystem::copy(BRINDLE_BUNDLE "res/chars", folder / "res/chars");
    const auto click = [&](int x, int y) {
        host.writes.clear();
        host.window.MovePointer(x, y);
        host.window.Click();
        host.IdleTimes(2);
        return host.writes.size();
    };
    const auto showsText = [&] {
        const auto shown = host.window.GetPixels(host.child, 1000, 600);
        return std::count_if(shown.begin() + 250 * 1000, shown.begin() + 350 * 1000,
                             [](uint32_t pixel) { return (pixel & 0xff) > 0x80; }) > 300;
    };
    // Both clicks, on the message and outside it, only dismiss it; the next one is a preset's.
    for (const auto& [x, y] : {std::pair(500, 300), {120, 16}}) {
        ASSERT_TRUE(host.Open(bundle.c_str()));
        EXPECT_TRUE(WaitFor(showsText, [&] { host.IdleTimes(1); }));
        EXPECT_EQ(click(x, y), 0u);
        EXPECT_FALSE(showsText());
        EXPECT_EQ(click(120, 16), 51u);
        host.Close();
    }
    std::filesystem::remove_all(folder / "res/chars");
    ASSERT_TRUE(host.Open(bundle.c_str()));
    EXPECT_THAT(PrintedBy([&] { host.IdleTimes(3); }).err,
                HasSubstr("letters in " + bundle + "res\n"));
    EXPECT_EQ(click(120, 16), 51u) << "something lies above the panel";
    std::filesystem::remove_all(folder);
}

TEST_F(Editor, LetsNoExceptionThrough) {
    host.failsWrites = true;
    EXPECT_FALSE(host.Open());
    host.failsWrites = false;
    Open();
    host.failsWrites = true;
    host.Close();
}

}  // namespace
}  // namespace brindle
