// SPDX-License-Identifier: ISC
// The editor of the built bundle, opened as a host opens it.
#include <X11/XF86keysym.h>
#include <gmock/gmock.h>
#include <lv2/parameters/parameters.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <tuple>

#include "contract/ports.h"
#include "tests/support/gl_context.h"
#include "tests/support/ui_host.h"

namespace brindle {
namespace {

using test::BuiltEditor;
using test::UiHost;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

/// What the editor printed during a call.
struct Printed {
    std::string out;
    std::string err;
};
template <typename Action>
Printed PrintedBy(Action action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

/// Sanitizers keep freed memory and records of it, and are slow. The address sanitizer finds leaks
/// itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// Resident memory, KiB. 0 with sanitizers.
long ResidentKib() {
    if (kIsSanitized) return 0;
    malloc_trim(0);  // returns freed memory to the system
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * 4;
}

TEST(Editor, HasOneDescriptorWithAnIdleInterface) {
    ASSERT_NE(BuiltEditor(), nullptr);
    EXPECT_EQ(BuiltEditor(), BuiltEditor());
    EXPECT_EQ(BuiltEditor(1), nullptr);
    EXPECT_STREQ(BuiltEditor()->URI, kEditorUri);
    EXPECT_NE(BuiltEditor()->extension_data(LV2_UI__idleInterface), nullptr);
    EXPECT_EQ(BuiltEditor()->extension_data(LV2_UI__showInterface), nullptr);
}

TEST(Editor, OpensInTheParentAndAsksForItsSize) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    EXPECT_TRUE(host.window.IsShown(host.child));
    EXPECT_TRUE(host.window.HasSize(host.child, 1000, 600));
    EXPECT_THAT(host.resizes, ElementsAre(Pair(1000, 600)));
    EXPECT_EQ(host.Idle(), 0);
}

TEST(Editor, SaysItsTwoMessagesToTheByte) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    host.IdleTimes(3);
    host.Close();
    ASSERT_EQ(host.writes.size(), 2u);
    const char* types[] = {kEnableUiUri, kDisableUiUri};
    for (size_t i = 0; i < 2; ++i) {
        SCOPED_TRACE(types[i]);
        const uint32_t words[] = {8, host.map(LV2_ATOM__Object), 1, host.map(types[i])};
        const auto* bytes = reinterpret_cast<const uint8_t*>(words);
        EXPECT_EQ(host.writes[i].port, 0u);
        EXPECT_EQ(host.writes[i].protocol, host.map(LV2_ATOM__eventTransfer));
        EXPECT_THAT(host.writes[i].bytes, testing::ElementsAreArray(bytes, sizeof words));
    }
}

TEST(Editor, MapsOptionsThenMessagesInOrder) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    auto order = host.map.order();
    // The forge's types are in between, mapped in the order of LV2's own header.
    const std::vector<std::string> options = {LV2_ATOM__Int,
                                              LV2_ATOM__Bool,
                                              LV2_ATOM__Float,
                                              LV2_PARAMETERS__sampleRate,
                                              LV2_UI__scaleFactor,
                                              LV2_UI__foregroundColor,
                                              LV2_UI__backgroundColor,
                                              "http://lv2plug.in/ns/extensions/ui#contrastingColor",
                                              "http://ardour.org/lv2/theme/#styleBoxy",
                                              "http://ardour.org/lv2/theme/#styleFlat"};
    ASSERT_GE(order.size(), options.size());
    EXPECT_THAT(std::vector(order.begin(), order.begin() + 10), testing::ElementsAreArray(options));
    std::erase_if(order, [](const std::string& uri) { return !uri.starts_with("urn:"); });
    EXPECT_THAT(order, ElementsAre(kMessageUri, kSampleRateUri, kPlotIdUri, kPlotArrayUri,
                                   kEnableUiUri, kDisableUiUri));
}

TEST(Editor, TellsTheOptionsThatItUses) {
    UiHost host(BuiltEditor());
    host.AddOption(LV2_UI__scaleFactor, LV2_ATOM__Float, 2.0f);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, 0x11223380u);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Int, 0x445566ffu, false);
    host.AddOption(LV2_UI__backgroundColor, LV2_ATOM__Float, 1.0f);
    host.AddOption(LV2_UI__foregroundColor, LV2_ATOM__Int, 0x778899ffu);
    host.AddOption(LV2_UI_PREFIX "contrastingColor", LV2_ATOM__Int, 0x0a0b0c0du);
    host.AddOption(kStyleBoxyUri, LV2_ATOM__Bool, 1);
    host.AddOption(kStyleFlatUri, LV2_ATOM__Bool, 0);
    host.AddOption(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, 44100.0f);
    host.AddOption("urn:x:unknown", LV2_ATOM__Int, 1);
    const Printed printed = PrintedBy([&] { EXPECT_TRUE(host.Open()); });
    std::string ours;
    std::istringstream lines(printed.out);
    for (std::string line; std::getline(lines, line);) {
        ours += line.starts_with("HOST") ? line + "\n" : "";
    }
    EXPECT_EQ(ours,
              "HOST BG COLOR RGBA: 0x11223380\n"
              "HOST CONTRAST COLOR RGBA: 0xa0b0c0d\n"
              "HOST THEME BOXY: TRUE\n"
              "HOST THEME FLAT: FALSE\n"
              "HOST SAMPLE RATE: 44100.000\n");
    EXPECT_TRUE(host.window.HasSize(host.child, 1000, 600));
}

TEST(Editor, ReadsNoOptionsWithoutAMap) {
    UiHost host(BuiltEditor());
    host.AddOption(kStyleBoxyUri, LV2_ATOM__Bool, 1);
    host.hasMap = false;
    const Printed printed = PrintedBy([&] { EXPECT_TRUE(host.Open()); });
    EXPECT_THAT(printed.out, Not(HasSubstr("HOST")));
    host.Report(kTrimPort, 3.0f);
    host.IdleTimes(3);
}

TEST(Editor, RefusesHostsThatLackWhatItNeeds) {
    UiHost host(BuiltEditor());
    host.hasTouch = false;
    EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(host.Open()); }).err,
                "error: Required touch interface extension is not available.\n");
    EXPECT_THAT(host.resizes, IsEmpty());

    // As Carla does if it prefers bridges.
    host.hasTouch = true;
    host.hasTouchData = false;
    EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(host.Open()); }).err,
                "error: Required touch interface extension is not available.\n");
    host.hasTouchData = true;
    host.Report(kTrimPort, 1.0f);
    EXPECT_EQ(host.Idle(), 0);
    BuiltEditor()->cleanup(nullptr);

    host.hasParent = false;
    EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(host.Open()); }).err,
                "error: No parent window provided.\n");
    EXPECT_THAT(host.resizes, ElementsAre(Pair(1000, 600)));

    host.hasParent = true;
    const std::string display = XDisplayName(nullptr);
    setenv("DISPLAY", ":765", 1);
    EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(host.Open()); }).err, testing::StartsWith("error: "));
    setenv("DISPLAY", display.c_str(), 1);
    EXPECT_THAT(host.writes, IsEmpty());
    EXPECT_TRUE(host.Open());

    UiHost orphan(BuiltEditor());
    const auto refuses = [&] {
        EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(orphan.Open()); }).err,
                    testing::EndsWith("error: No window with OpenGL can be opened.\n"));
    };
    orphan.parent = orphan.window.MakeInvisibleChild();
    refuses();
    orphan.parent = 0;
    orphan.window.Destroy();
    refuses();
}

TEST(Editor, IgnoresNullPointersOfTheHost) {
    HostWindow window;
    window.Sync();
    LV2_URID_Map map{};
    LV2UI_Touch touch{};
    LV2UI_Resize resize{};
    const LV2_Feature unknown = {nullptr, nullptr};
    const LV2_Feature parent = {LV2_UI__parent, reinterpret_cast<void*>(window.GetId())};
    const LV2_Feature mapFeature = {LV2_URID__map, &map};
    const LV2_Feature touchFeature = {LV2_UI__touch, &touch};
    const LV2_Feature resizeFeature = {LV2_UI__resize, &resize};
    const LV2_Feature* features[] = {&unknown,      &parent,        &mapFeature,
                                     &touchFeature, &resizeFeature, nullptr};
    const auto write = [](LV2UI_Controller, uint32_t, uint32_t, uint32_t, const void*) {};
    const auto open = [&] {
        return BuiltEditor()->instantiate(BuiltEditor(), nullptr, nullptr, write, nullptr, nullptr,
                                          features);
    };
    EXPECT_EQ(open(), nullptr) << "touches cannot be told";
    touch.touch = [](LV2UI_Feature_Handle, uint32_t, bool) {};
    LV2UI_Handle handle = open();
    ASSERT_NE(handle, nullptr);
    BuiltEditor()->port_event(handle, kTrimPort, sizeof(float), 0, nullptr);
    EXPECT_EQ(BuiltEditor()->extension_data(nullptr), nullptr);
    BuiltEditor()->cleanup(handle);
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

TEST(Editor, LeavesTheHostsGlContextCurrent) {
    const auto use = [](const char* kind) {
        SCOPED_TRACE(kind);
        const auto before = CurrentContext();
        UiHost host(BuiltEditor());
        host.hasParent = false;
        EXPECT_FALSE(host.Open());
        EXPECT_EQ(CurrentContext(), before) << "refused";
        host.hasParent = true;
        ASSERT_TRUE(host.Open());
        EXPECT_EQ(CurrentContext(), before) << "opened";
        host.Report(band_port(0) + kGain, 6.0f);
        host.IdleTimes(2);
        EXPECT_EQ(CurrentContext(), before) << "drawn";
        EXPECT_NE(host.GetPixel(20, 20), 0u);
        host.Close();
        EXPECT_EQ(CurrentContext(), before) << "closed";
        ASSERT_TRUE(host.Open());
        host.window.Destroy();
        host.IdleTimes(2);
        host.Close();
        EXPECT_EQ(CurrentContext(), before) << "closed after its parent";
    };
    use("no context");
    {
        const GlxContext current;
        use("GLX");
    }
    const GLContext current(8, 8);
    use("EGL");
}

TEST(Editor, RefusesABrokenDriver) {
    UiHost host(BuiltEditor());
    for (const auto& [name, value] : {std::pair("LIBGL_ALWAYS_INDIRECT", "1"),
                                      std::pair("LIBGL_DRIVERS_PATH", "/nonexistent")}) {
        SCOPED_TRACE(name);
        setenv(name, value, 1);
        EXPECT_THAT(PrintedBy([&] { EXPECT_FALSE(host.Open()); }).err,
                    testing::EndsWith("error: No window with OpenGL can be opened.\n"));
        unsetenv(name);
    }
    setenv("MESA_GL_VERSION_OVERRIDE", "1.4", 1);  // all required functions exist nevertheless
    EXPECT_TRUE(host.Open());
    host.IdleTimes(3);
    unsetenv("MESA_GL_VERSION_OVERRIDE");
}

TEST(Editor, TellsKeysOnStandardErrorAndPassesThemOn) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    host.IdleTimes(3);
    host.window.MovePointer(20, 20);
    std::vector<std::pair<KeySym, bool>> keys = {{XK_q, true},         {XK_q, false},
                                                 {XK_Control_L, true}, {XK_F5, true},
                                                 {XK_F5, false},       {XK_Control_L, false}};
    std::vector<XKeyEvent> passed;
    const auto type = [&] {
        for (const auto& [symbol, press] : keys) host.window.Key(symbol, press);
        host.IdleTimes(3);
        std::fflush(stdout);
        passed = host.window.TakeKeys();
    };
    const auto expectPassed = [&] {
        ASSERT_EQ(passed.size(), keys.size());
        for (size_t i = 0; i < keys.size(); ++i) {
            const auto& [symbol, press] = keys[i];
            SCOPED_TRACE(i);
            EXPECT_EQ(passed[i].type, press ? KeyPress : KeyRelease);
            EXPECT_EQ(passed[i].keycode, host.window.KeyCode(symbol));
            EXPECT_EQ(passed[i].state, i > 2 ? unsigned{ControlMask} : 0u);
            EXPECT_GE(passed[i].time, i == 0 ? 1 : passed[i - 1].time);
        }
    };
    const Printed printed = PrintedBy(type);
    expectPassed();
    // The host has set the focus to the editor; one of the keys is unknown to Pugl.
    host.window.MovePointer(-10, -10);
    host.window.Focus(host.child);
    keys.insert(keys.end() - 1, {{XF86XK_AudioPlay, true}, {XF86XK_AudioPlay, false}});
    type();
    expectPassed();
    host.window.SendKey(host.child, passed.at(0));
    host.IdleTimes(3);
    EXPECT_THAT(host.window.TakeKeys(), IsEmpty()) << "what was sent comes back";

    EXPECT_EQ(printed.err,
              "Key q down Modifiers:\n"
              "Key q up Modifiers:\n"
              "Special key 23 down Modifiers:\n"
              "Special key 5 down Modifiers: Ctrl\n"
              "Special key 5 up Modifiers: Ctrl\n"
              "Special key 23 up Modifiers: Ctrl\n");
    EXPECT_THAT(printed.out, HasSubstr("GLView_BaseView::KeyDown, doing nothing\n"));
}

TEST(Editor, FollowsItsParentsSizeUnlessTheHostSizesIt) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
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

TEST(Editor, OpensAndClosesWithoutTrace) {
    UiHost other(BuiltEditor());
    ASSERT_TRUE(other.Open());
    UiHost host(BuiltEditor());
    const auto round = [&](bool parentGoesFirst) {
        ASSERT_TRUE(host.Open());
        host.Report(kTrimPort, 1.0f);
        host.IdleTimes(3);
        other.Idle();
        if (parentGoesFirst) {
            host.window.Destroy();
            host.Idle();
        }
        host.Close();
        EXPECT_EQ(glXGetCurrentContext(), nullptr);
    };
    long settled = 0;
    for (int i = 0; i < (kIsSanitized ? 10 : 100); ++i) {
        if (i == 30) settled = ResidentKib();
        round(false);
    }
    EXPECT_LT(ResidentKib() - settled, 2048) << "KiB in 70 rounds";
    round(true);
    other.IdleTimes(3);
    EXPECT_TRUE(other.window.IsShown(other.child));
}

/// The trim slider's centre, in window pixels.
constexpr int kTrimX = 843;
constexpr int kTrimY = 537;

/// Presses the trim slider and holds it.
void HoldTrim(UiHost& host) {
    host.Report(kTrimPort, 0.0f);
    host.IdleTimes(2);
    host.window.MovePointer(kTrimX, kTrimY);
    host.window.Press();
    host.IdleTimes(1);
    host.touches.clear();
    host.writes.clear();
}

TEST(Editor, ClosesWhileOthersControlsMove) {
    std::array<std::optional<UiHost>, 3> hosts;
    for (auto& host : hosts) {
        ASSERT_TRUE(host.emplace(BuiltEditor()).Open());
        host->Report(kTrimPort, 0.0f);
        host->IdleTimes(2);
    }
    UiHost& top = *hosts[2];  // the topmost one; its trim is held
    HoldTrim(top);
    for (int step = 1; step <= 10; ++step) {
        top.window.MovePointer(kTrimX + 3 * step, kTrimY);
        if (step == 5) hosts[1].reset();
        for (auto& host : hosts) {
            if (!host) continue;
            host->Report(band_port(step % kBandCount) + kGain, static_cast<float>(step));
            host->Idle();
        }
    }
    top.window.Release();
    top.IdleTimes(1);
    EXPECT_THAT(top.touches, ElementsAre(Pair(kTrimPort, false)));
    EXPECT_EQ(top.writes.size(), 10u);
    for (size_t i = 1; i < top.writes.size(); ++i) {
        EXPECT_EQ(top.writes[i].port, kTrimPort);
        EXPECT_GT(top.writes[i].AsFloat(), top.writes[i - 1].AsFloat());
    }
    // Neither late reports from the host nor the pointer cause another write.
    top.Report(kTrimPort, -1.0f);
    WaitFor([] { return false; }, [&] { top.IdleTimes(1); }, std::chrono::milliseconds(700));
    EXPECT_EQ(top.writes.size(), 10u);

    hosts[2].reset();
    UiHost& left = *hosts[0];
    left.IdleTimes(3);
    const auto before = left.window.GetPixels(left.child, 1000, 600);
    left.Report(band_port(3) + kGain, -12.0f);
    left.IdleTimes(3);
    EXPECT_NE(left.window.GetPixels(left.child, 1000, 600), before);
}

TEST(Editor, ForgetsWhatWasPointedAtWhenThePointerLeaves) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    for (int strip = 0; strip < kStripCount; ++strip) {
        for (uint32_t i = 0; i < kControlCount; ++i) {
            host.Report(strip_port(strip) + i, strip_row(strip).defaults[i]);
        }
    }
    host.Report(kTrimPort, 0.0f);
    host.IdleTimes(3);
    const auto picture = [&] {
        host.IdleTimes(2);
        return host.window.GetPixels(host.child, 1000, 600);
    };
    const auto strips = [&] {  // the area without pulsing parts
        auto pixels = picture();
        pixels.erase(pixels.begin(), pixels.begin() + 420 * 1000);
        return pixels;
    };
    host.window.MovePointer(500, 595);  // no control is there
    host.IdleTimes(2);
    host.window.MovePointer(500, 610);
    const auto untouched = picture();
    // A handle, a knob, an on/off button and a preset.
    for (const auto& [x, y] : {std::pair(561, 187), {124, 470}, {124, 440}, {120, 16}}) {
        SCOPED_TRACE(x);
        host.window.MovePointer(x, y);
        EXPECT_FALSE(picture() == untouched);
        host.window.MovePointer(-10, y);
        EXPECT_TRUE(picture() == untouched);
    }
    // A held knob, which only moves vertically, stays highlighted until it is released outside.
    host.window.MovePointer(124, 470);
    host.window.Press();
    const auto held = strips();
    host.window.MovePointer(-10, 470);
    EXPECT_TRUE(strips() == held);
    host.window.Release();
    EXPECT_TRUE(picture() == untouched);
    // A host that grabs the pointer, as for a menu, changes no highlight.
    host.window.MovePointer(124, 470);
    const auto pointed = strips();
    host.window.Grab();
    EXPECT_TRUE(strips() == pointed);
    // The grab may end over a control that the pointer was not over before.
    host.window.Ungrab();
    host.window.MovePointer(-10, -10);
    EXPECT_TRUE(picture() == untouched);
    host.window.Grab();
    host.window.MovePointer(124, 470);
    host.window.Ungrab();
    host.window.MovePointer(124, 471);
    EXPECT_TRUE(strips() == pointed);
}

TEST(Editor, LetsGoOfWhatIsHeldWhereItIsHidden) {
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open());
    host.IdleTimes(3);
    for (const uintptr_t hidden : {host.child, host.window.GetId()}) {
        HoldTrim(host);
        host.window.Hide(hidden);
        host.IdleTimes(2);
        EXPECT_THAT(host.touches, ElementsAre(Pair(kTrimPort, false)));
        host.window.Release();
        host.window.Show(hidden);
        host.window.MovePointer(kTrimX + 20, kTrimY);
        host.IdleTimes(2);
        EXPECT_THAT(host.writes, IsEmpty());
        host.window.MovePointer(-10, -10);
    }
    // Hidden and shown between two idle calls.
    HoldTrim(host);
    host.window.Hide(host.child);
    host.window.Release();
    host.window.Show(host.child);
    host.window.MovePointer(kTrimX + 20, kTrimY);
    host.IdleTimes(1);
    EXPECT_THAT(host.touches, ElementsAre(Pair(kTrimPort, false)));
    EXPECT_THAT(host.writes, IsEmpty());

    // The picture is there with the first idle call.
    host.window.MovePointer(-10, -10);
    host.IdleTimes(2);
    const auto before = host.window.GetPixels(host.child, 1000, 600);
    host.window.Hide(host.child);
    host.IdleTimes(2);
    host.window.Show(host.child);
    host.IdleTimes(1);
    EXPECT_EQ(host.window.GetPixels(host.child, 1000, 600), before);

    HoldTrim(host);
    host.window.Destroy();
    host.IdleTimes(2);
    EXPECT_THAT(host.touches, ElementsAre(Pair(kTrimPort, false)));
    host.window.Release();
}

/// A bundle's folder with only the requested pictures and letters.
struct PartOfBundle {
    std::filesystem::path folder = testing::TempDir() + "brindle_part.lv2";

    explicit PartOfBundle(const std::vector<const char*>& parts) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder / "res");
        for (const char* part : parts) {
            std::filesystem::copy(std::filesystem::path(BRINDLE_BUNDLE) / "res" / part,
                                  folder / "res" / part);
        }
    }
    ~PartOfBundle() { std::filesystem::remove_all(folder); }
    std::string Path() const { return folder.string() + '/'; }
};

TEST(Editor, TellsTheUserWherePicturesAreMissing) {
    const std::pair<int, int> clicks[] = {{500, 300}, {120, 16}};  // on the message, and outside it
    for (const auto& [x, y] : clicks) {
        SCOPED_TRACE(x);
        const PartOfBundle bundle({"chars"});
        UiHost host(BuiltEditor());
        ASSERT_TRUE(host.Open(bundle.Path().c_str()));
        host.IdleTimes(2);
        std::this_thread::sleep_for(std::chrono::milliseconds(250));  // until it has slid in
        host.IdleTimes(2);
        const auto isText = [](uint32_t pixel) { return (pixel & 0xff) > 0x80; };
        auto shown = host.window.GetPixels(host.child, 1000, 600);
        EXPECT_GT(std::count_if(shown.begin() + 250 * 1000, shown.begin() + 350 * 1000, isText),
                  300);

        host.writes.clear();
        host.window.MovePointer(x, y);
        host.window.Click();
        host.IdleTimes(2);
        shown = host.window.GetPixels(host.child, 1000, 600);
        EXPECT_LT(std::count_if(shown.begin() + 250 * 1000, shown.begin() + 350 * 1000, isText),
                  300);
        EXPECT_THAT(host.writes, IsEmpty()) << "what is below gets the click";
        host.window.MovePointer(120, 16);  // a preset
        host.window.Click();
        host.IdleTimes(2);
        EXPECT_GT(host.writes.size(), 50u);
    }
    const PartOfBundle bundle({});
    UiHost host(BuiltEditor());
    ASSERT_TRUE(host.Open(bundle.Path().c_str()));
    EXPECT_THAT(PrintedBy([&] { host.IdleTimes(3); }).err,
                HasSubstr("letters in " + bundle.Path() + "res\n"));
    host.window.MovePointer(120, 16);
    host.window.Click();
    host.IdleTimes(2);
    EXPECT_GT(host.writes.size(), 50u) << "something lies above the panel";
}

TEST(Editor, LetsNoExceptionThrough) {
    UiHost host(BuiltEditor());
    host.failsWrites = true;
    EXPECT_FALSE(host.Open());
    host.failsWrites = false;
    ASSERT_TRUE(host.Open());
    host.failsWrites = true;
    host.Close();
    host.failsWrites = false;
    EXPECT_TRUE(host.Open());
}

}  // namespace
}  // namespace brindle
