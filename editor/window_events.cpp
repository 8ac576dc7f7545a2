// SPDX-License-Identifier: ISC
#include "editor/window_events.h"

#include <cstdio>
#include <mutex>

#include "editor/draw_mutex.h"

namespace brindle {
namespace {

GLView_BaseView& RootOf(const PuglWindow& window) {
    return *static_cast<GLView_BaseView*>(window.GetHandle());
}

void OnDisplay(PuglWindow& window) {
    const std::lock_guard lock(drawMutex);
    RootOf(window).RenderFrame();
}

void OnReshape(PuglWindow& window, int width, int height) {
    RootOf(window).SetWindowSize(static_cast<float>(width), static_cast<float>(height));
}

void OnMotion(PuglWindow& window, int x, int y) {
    RootOf(window).SetModifiers(window.GetModifiers());
    RootOf(window).PointerMotion(static_cast<float>(x), static_cast<float>(y));
}

void OnMouse(PuglWindow& window, int button, bool press, int x, int y) {
    RootOf(window).SetEventTime(window.GetEventTime());
    RootOf(window).SetModifiers(window.GetModifiers());
    RootOf(window).MouseButton(button, press, static_cast<float>(x), static_cast<float>(y));
}

void OnScroll(PuglWindow& window, int /*x*/, int /*y*/, float /*dx*/, float dy) {
    RootOf(window).SetModifiers(window.GetModifiers());
    RootOf(window).MouseWheel(dy);
}

void PrintModifiers(uint32_t modifiers) {
    std::fprintf(stderr, "Modifiers:%s%s%s%s\n", (modifiers & 1u) != 0 ? " Shift" : "",
                 (modifiers & 2u) != 0 ? " Ctrl" : "", (modifiers & 4u) != 0 ? " Alt" : "",
                 (modifiers & 8u) != 0 ? " Super" : "");
}

void OnKeyboard(PuglWindow& window, bool press, uint32_t character) {
    std::fprintf(stderr, "Key %c %s ", static_cast<int>(character), press ? "down" : "up");
    PrintModifiers(window.GetModifiers());
    RootOf(window).SetEventTime(window.GetEventTime());
    RootOf(window).Key(press, character);
}

void OnSpecial(PuglWindow& window, bool press, int key) {
    std::fprintf(stderr, "Special key %d %s ", key, press ? "down" : "up");
    PrintModifiers(window.GetModifiers());
    RootOf(window).SetEventTime(window.GetEventTime());
    RootOf(window).SpecialKey(press, static_cast<uint32_t>(key));
}

constexpr PuglCallbacks kCallbacks = {
    .display = OnDisplay,
    .reshape = OnReshape,
    .motion = OnMotion,
    .mouse = OnMouse,
    .scroll = OnScroll,
    .keyboard = OnKeyboard,
    .special = OnSpecial,
};

}  // namespace

void ConnectWindow(PuglWindow& window, GLView_BaseView& root) {
    window.SetCallbacks(&kCallbacks, &root);
}

}  // namespace brindle
