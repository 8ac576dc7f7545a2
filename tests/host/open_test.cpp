// SPDX-License-Identifier: ISC
// `brindle open` on a real display: the window, a user's hands on it, and the state that is left.
// The thread sanitizer, where it is built in, watches audio and editor meet in queues only.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <future>
#include <regex>
#include <string>

#include "tests/host/program.h"
#include "tests/support/host_window.h"

namespace brindle::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

/// The third band's gain at the editor's design size, in pixels of the window.
constexpr int kGainX = 254;
constexpr int kGainY = 470;

/// Sends a program to the background and waits until it plays.
const std::string kUntilItPlays = " >said & wait_for grep Playing said; ";

/// The program's window as another client of the X server sees it, and a user's hands on it.
class OpenedWindow : UsedWindow {
  public:
    /// Waits until a window with the program's title stands on the screen and the editor in it has
    /// drawn.
    OpenedWindow() {
        // A window may go between two looks at it.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        const auto draws = [&] {
            for (const Window each : children(DefaultRootWindow(display))) {
                char* name = nullptr;
                XFetchName(display, each, &name);
                if (name != nullptr && name == std::string("Brindle Console EQ")) id = each;
                XFree(name);
            }
            return id != 0 && IsShown(id) && child() != 0 && GetPixel(child(), 2, 2) != 0;
        };
        WaitFor(draws, [] {});
    }

    /// As a window manager does it whose close button is pressed.
    void close() {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = id;
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] =
            static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
        XSendEvent(display, id, False, NoEventMask, &event);
        Sync();
    }

    /// Presses the first button at a point of the window, moves in steps and lets go.
    void drag(int x, int y, int dx, int dy) {
        constexpr int kSteps = 10;
        Window ignored = 0;
        XTranslateCoordinates(display, id, DefaultRootWindow(display), 0, 0, &left, &top, &ignored);
        for (int i = 0; i <= kSteps; ++i) {
            MovePointer(x + dx * i / kSteps, y + dy * i / kSteps);
            rest();
            if (i == 0) Press();
        }
        Release();
        rest();
    }

    std::pair<int, int> size() { return GetSize(id); }
    std::pair<int, int> screen_size() { return GetSize(DefaultRootWindow(display)); }

    /// Resizes the window and waits until the editor in it has the same size; false if it never
    /// has.
    bool resize(int width, int height) {
        ResizeWindow(id, width, height);
        return WaitFor([&] { return HasSize(child(), width, height); }, [] {});
    }

  private:
    std::vector<Window> children(Window parent) {
        Window root = 0;
        Window* list = nullptr;
        unsigned count = 0;
        XQueryTree(display, parent, &root, &parent, &list, &count);
        std::vector<Window> found;
        for (unsigned i = 0; i < count; ++i) found.push_back(list[i]);
        XFree(list);
        return found;
    }
    Window child() {
        const auto found = children(id);
        return found.empty() ? 0 : found.back();
    }
    /// Longer than the time between two looks at events.
    static void rest() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }
};

class Open : public ProgramTest {
  protected:
    /// Starts the program without waiting for its end.
    std::future<Outcome> start(const std::string& arguments) {
        return std::async(std::launch::async, [this, arguments] {
            return shell("timeout 60 brindle open --silent " + arguments);
        });
    }

    /// Values of a state by symbol.
    [[nodiscard]] std::map<std::string, double> state(const std::string& name) const {
        const std::regex port("lv2:symbol \"(\\w+)\"\\s*;\\s*pset:value ([-+.0-9eE]+)");
        const std::string text = text_of(name);
        std::map<std::string, double> values;
        for (std::sregex_iterator i(text.begin(), text.end(), port); i != std::sregex_iterator();
             ++i) {
            values[(*i)[1]] = std::stod((*i)[2]);
        }
        return values;
    }
};

TEST_F(Open, ClosingTheWindowLeavesTheStateThatWasSet) {
    std::future<Outcome> ended = start("--preset Kick --set trim=-3.25 --save s.ttl");
    OpenedWindow window;
    EXPECT_TRUE(window.resize(1300, 700));
    EXPECT_TRUE(window.resize(640, 500));
    window.close();
    const Outcome outcome = ended.get();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("Playing pink noise (stereo, 48000 Hz) without a sound "
                                "device. Close the window to end.\n"),
                      EndsWith("Wrote s.ttl.\n")));
    const auto values = state("s.ttl");
    EXPECT_EQ(values.size(), 51u);
    EXPECT_EQ(values.at("trim"), -3.25);
    EXPECT_NEAR(values.at("b1_freq"), 419.428, 1e-4);

    // Read again from another place, as a file or a folder, it sounds the same.
    std::filesystem::create_directory(path("folder"));
    std::filesystem::rename(path("s.ttl"), path("folder/state.ttl"));
    shell("cp folder/state.ttl moved.ttl");
    brindle("response asked.csv --preset Kick --set trim=-3.25");
    brindle("response file.csv --load moved.ttl");
    brindle("response folder.csv --load folder");
    EXPECT_EQ(text_of("file.csv"), text_of("asked.csv"));
    EXPECT_EQ(text_of("folder.csv"), text_of("asked.csv"));
    EXPECT_NE(text_of("asked.csv"), "");
}

TEST_F(Open, ADraggedKnobChangesItsControlAndNothingElse) {
    save("loop.wav", tone(500.0, 0.3, 0.4, 44100, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16));
    std::future<Outcome> ended = start("loop.wav --save before.ttl");
    OpenedWindow().close();
    Outcome outcome = ended.get();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Playing loop.wav (mono, 44100 Hz)"));
    ended = start("--signal sweep --load before.ttl --save after.ttl");
    OpenedWindow window;
    window.drag(kGainX, kGainY, 30, -30);
    window.close();
    outcome = ended.get();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Playing a sweep"));
    auto before = state("before.ttl");
    auto after = state("after.ttl");
    EXPECT_EQ(before["b3_gain"], 0.0);
    EXPECT_GT(after["b3_gain"], 1.0);
    before.erase("b3_gain");
    after.erase("b3_gain");
    EXPECT_EQ(before, after);
}

TEST_F(Open, StartsAtItsDesignSizeOrTheScreensWhereThatIsSmaller) {
    auto run = start("");
    OpenedWindow window;
    const auto [width, height] = window.screen_size();
    EXPECT_EQ(window.size(), std::pair(std::min(width, 1000), std::min(height, 600)));
    window.close();
    EXPECT_EQ(run.get().status, 0);
}

TEST_F(Open, ARequestToStopEndsItLikeAClosedWindow) {
    const Outcome outcome = shell("brindle open --silent --set b2_gain=4 --save s.ttl" +
                                  kUntilItPlays + "kill -TERM $!; wait $!");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(state("s.ttl")["b2_gain"], 4.0);
    // The state that was loaded may be written over.
    shell("rm said; brindle open --silent --load s.ttl --set b2_gain=5 --save s.ttl" +
          kUntilItPlays + "kill -INT $!; wait $!");
    EXPECT_EQ(state("s.ttl")["b2_gain"], 5.0);
    EXPECT_THAT(files(), testing::ElementsAre("s.ttl", "said"));
}

TEST_F(Open, TheStateIsSavedWhenTheDisplayIsLost) {
    const Outcome outcome = shell(
        "Xvfb -displayfd 3 -screen 0 1200x800x24 -noreset -nolisten tcp 3>number & "
        "server=$!; wait_for test -s number; export DISPLAY=:$(cat number); "
        "timeout 60 brindle open --silent --set b2_gain=4 --save s.ttl" +
        kUntilItPlays + "kill -KILL $server; wait $!");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("brindle: the connection to the display was lost.\n"));
    EXPECT_EQ(state("s.ttl")["b2_gain"], 4.0);
}

TEST_F(Open, ADisplayWithoutOpenGlIsRefused) {
    // The inner shell tells the program's own status: xvfb-run has failures of its own at the end.
    const Outcome plain = shell(
        "xvfb-run -a -s '-screen 0 1200x800x24 -extension GLX -noreset' sh -c 'brindle doctor; "
        "brindle open --silent --save s.ttl; echo status $?'");
    EXPECT_THAT(plain.out,
                AllOf(HasSubstr("FAULT  display: no OpenGL over GLX"), EndsWith("status 1\n")));
    EXPECT_THAT(plain.err, HasSubstr("brindle: the editor cannot be opened on this display.\n"));
    EXPECT_TRUE(files().empty());
    EXPECT_THAT(brindle("doctor").out,
                testing::ContainsRegex("note   display: .+, llvmpipe.+, OpenGL [2-9].+, direct"));
}

}  // namespace
}  // namespace brindle::test
