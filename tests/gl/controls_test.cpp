// SPDX-License-Identifier: ISC
/// What controls write and tell when they are pressed, dragged and turned.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_Dialog.h"
#include "gl/GLView_MenuSelector.h"
#include "gl/GLView_MomentaryButton.h"
#include "gl/GLView_PopButton.h"
#include "gl/GLView_Toggle.h"
#include "gl/GLView_TrimSlider.h"
#include "tests/support/fake_page.h"
#include "tests/support/recording_host.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uint32_t kPort = 7;
constexpr GLPoint kGrip{100.0f, 200.0f};  // window pixels, y downwards

struct Controls : ::testing::Test {
    RecordingHost host;
    FakePage page;
    GLView bystander;  // not in the tree: it only captures the pointer

    Controls() { bystander.parent = &page; }

    template <typename Control>
    Control* Add(Control* control) {
        page.AddChild(control);
        return control;
    }
    /// Adds a control of the port; the host reported 0.
    template <typename Control>
    Control* AddWithPort(Control* control) {
        control->SetPort(host.Writer(), kPort);
        control->SetTouch(host.TouchFeature(), kPort);
        return Add(control);
    }
    std::vector<HostCall> TakeCalls() { return std::exchange(host.calls, {}); }
};

struct Knob : Controls {
    GLView_Knob* knob = AddWithPort(new GLView_Knob(false, -18.0f, 18.0f));

    Knob() { page.Report(kPort, 0.0f); }

    /// Drags from the grip: 100 pixels are 0.3 of the range of 36. Returns the value written.
    float Drag(float dx, float dy) {
        host.calls.clear();
        knob->MouseDragTo({kGrip.x + dx, kGrip.y + dy});
        return host.calls.empty() ? NAN : host.calls[0].value;
    }
};

TEST_F(Knob, GesturesAreBracketedByTouchHoweverThePointerIsLost) {
    knob->gesturePort = 77;
    knob->MouseDown({}, kGrip);
    knob->MouseDown({}, kGrip);  // a second mouse button
    EXPECT_EQ(page.capturedView, knob);
    EXPECT_EQ(activePort, 7);
    knob->MouseDragTo({kGrip.x + 50.0f, kGrip.y + 100.0f});
    bystander.SetCaptured(true);
    EXPECT_EQ(activePort, -1);
    knob->MouseUp({});
    EXPECT_EQ(page.capturedView, nullptr);
    EXPECT_THAT(TakeCalls(), ElementsAre(Touched(kPort), Wrote(kPort, -10.8f), Wrote(77, 1.0f),
                                         Released(kPort)));
    knob->MouseDown({}, kGrip);
    page.RemoveChild(knob);
    delete knob;
    page.capturedView = nullptr;
    EXPECT_THAT(TakeCalls(), ElementsAre(Touched(kPort), Released(kPort)));
}

TEST_F(Knob, DragsGoOnFromWhatTheHostReportsAndStopAtTheEnds) {
    knob->MouseDown({}, kGrip);
    for (int i = 0; i < 2; ++i) {  // not reported yet: the same value again, not twice the distance
        EXPECT_NEAR(Drag(0.0f, -100.0f), 10.8f, 1e-4f);
    }
    page.Report(kPort, 9.0f);  // the host took another value
    EXPECT_NEAR(Drag(50.0f, -110.0f), 9.0f + 1.08f, 1e-4f);
    EXPECT_EQ(Drag(0.0f, -400.0f), 18.0f);
    page.Report(kPort, 18.0f);
    EXPECT_NEAR(Drag(0.0f, -90.0f), 18.0f - 2.16f, 1e-4f);  // from -110, the last one in range
    EXPECT_EQ(Drag(0.0f, 400.0f), -18.0f);
    knob->SetLimits(-12.0f, 12.0f);
    EXPECT_EQ(Drag(0.0f, -999.0f), 12.0f);
    EXPECT_EQ(Drag(0.0f, 999.0f), -12.0f);
    knob->MouseUp({});
    page.Report(kPort, 0.0f);
    for (const uint32_t modifiers : {1u, 2u, 4u}) {  // Shift, Ctrl, Alt
        const float share = modifiers < 4 ? 0.1f : 1.0f;
        page.modifiers = modifiers;
        knob->MouseDown({}, kGrip);
        EXPECT_NEAR(Drag(0.0f, -100.0f), 10.8f * share, 1e-4f);
        knob->MouseUp({});
        knob->Scroll(-2.0f);
        EXPECT_NEAR(host.calls.back().value, -2.0f * 0.72f * share, 1e-4f);
    }
    knob->Scroll(1000.0f);  // the wheel has no limits
    EXPECT_EQ(host.calls.back().value, 18.0f);
}

TEST_F(Knob, AResetPressWritesTheResetValueIfThereIsOne) {
    page.resetPress = true;
    knob->MouseDown({}, kGrip);
    knob->MouseUp({});
    EXPECT_THAT(TakeCalls(), ElementsAre(Touched(kPort), Released(kPort)));
    knob->SetResetValue(0.0f);
    page.Report(kPort, 9.0f);
    knob->MouseDown({}, kGrip);
    EXPECT_THAT(TakeCalls(), ElementsAre(Touched(kPort), Wrote(kPort, 0.0f)));
    page.Report(kPort, 0.0f);
    EXPECT_NEAR(Drag(0.0f, -10.0f), 1.08f, 1e-4f);
}

TEST_F(Knob, ShowsWhatIsReportedAndNoNonsense) {
    knob->SetUnit("dB");
    for (const auto& [reported, normalised, text] : {std::tuple(40.0f, 1.0f, " 40dB"),
                                                     {-40.0f, 0.0f, "-40dB"},
                                                     {-9.0f, 0.25f, "-9.0dB"},
                                                     {NAN, 0.25f, "-9.0dB"},
                                                     {-INFINITY, 0.25f, "-9.0dB"}}) {
        page.Report(kPort, reported);
        page.Report(kPort + 1, 12.0f);
        EXPECT_EQ(knob->normalised, normalised);
        EXPECT_STREQ(knob->infoText, text);
        EXPECT_STREQ(page.infoText, text);
    }
    // Logarithms of 0 and less are not finite; the value is at the lower end.
    knob->SetMapping([](float n) { return std::exp(n); }, [](float v) { return std::log(v); });
    page.Report(kPort, -1.0f);
    EXPECT_EQ(knob->normalised, 0.0f);
    // The track starts at zero or at the nearest end.
    for (const auto& [low, high, zero] :
         {std::tuple(-6.0f, 18.0f, 0.25f), {20.0f, 20000.0f, 0.0f}, {-60.0f, -10.0f, 1.0f}}) {
        EXPECT_FLOAT_EQ(GLView_Knob(false, low, high).NormalisedZero(), zero);
    }
}

TEST_F(Knob, AChildTakesThePressOfAKnobButNotOfASlider) {
    const auto addChild = [](GLView_Knob* parent) {
        auto* child = new GLView;
        child->SetPosition(5.0f, 0.0f);
        child->SetSize(0.5f, 0.5f);
        parent->AddChild(child);
    };
    addChild(knob);
    knob->MouseDown({5.0f, 0.0f}, kGrip);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    auto* slider = AddWithPort(new GLView_TrimSlider(true, -20.0f, 20.0f));
    addChild(slider);
    EXPECT_FALSE(slider->HitTest({5.0f, 0.0f}));
    slider->MouseDown({9.0f, 9.0f}, kGrip);
    for (const float dx : {50.0f, 75.0f}) {
        slider->MouseDragTo({kGrip.x + dx, kGrip.y + 20.0f});
        EXPECT_NEAR(host.calls.back().value, -20.0f + 0.12f * dx, 1e-4f);
        page.Report(kPort, host.calls.back().value);
    }
}

TEST_F(Controls, ToggleWritesTheOtherStateBetweenTouchAndRelease) {
    auto* toggle = AddWithPort(new GLView_Toggle);
    for (const auto& [reported, written] : {std::pair(0.0f, 1.0f), {1.0f, 0.0f}, {0.5f, 0.0f}}) {
        page.Report(kPort, reported);
        toggle->MouseDown({}, {});
        EXPECT_EQ(toggle->IsOn(), reported != 0.0f);  // follows the host's report, not the press
        toggle->MouseUp({});
        EXPECT_EQ(page.capturedView, nullptr);
        EXPECT_THAT(TakeCalls(),
                    ElementsAre(Touched(kPort), Wrote(kPort, written), Released(kPort)));
    }
    toggle->MouseDown({}, {});
    bystander.SetCaptured(true);
    EXPECT_EQ(host.calls.back(), Released(kPort));
}

TEST_F(Controls, PresetWritesItsValuesInThePortsOrderAndClearsTheHelpLine) {
    auto* button = Add(new GLView_PresetButton);
    button->SetWriter(host.Writer());
    page.SetInfoText("old");
    for (const uint32_t port : {52u, 2u, 127u, 128u, std::numeric_limits<uint32_t>::max()}) {
        button->SetPresetValue(port, static_cast<float>(port));
    }
    button->MouseDown({}, {});
    button->MouseUp({});
    EXPECT_STREQ(page.infoText, "");
    EXPECT_EQ(page.capturedView, nullptr);
    EXPECT_THAT(host.calls, ElementsAre(Wrote(2, 2.0f), Wrote(52, 52.0f), Wrote(127, 127.0f)));
}

TEST_F(Controls, MomentaryRestoresWhatItFoundAtThePress) {
    auto* button = Add(new GLView_MomentaryButton);
    button->SetWriter(host.Writer());
    button->SetPresetValue(9, 4.0f);
    button->SetPresetValue(3, 5.0f);
    const std::function<void()> endings[] = {
        [&] { button->MouseUp({}); },
        [&] { bystander.SetCaptured(true); },
    };
    for (const auto& end : endings) {
        page.Report(3, 0.25f);
        page.Report(9, -7.5f);
        button->MouseDown({}, {});
        page.Report(3, 5.0f);
        page.Report(9, 1.0f);  // meanwhile the host changes a value
        EXPECT_THAT(TakeCalls(), ElementsAre(Wrote(3, 5.0f), Wrote(9, 4.0f)));
        button->MouseDown({}, {});  // a second mouse button, while the preset is in force
        EXPECT_THAT(TakeCalls(), ElementsAre(Wrote(3, 5.0f), Wrote(9, 4.0f)));
        end();
        EXPECT_THAT(TakeCalls(), ElementsAre(Wrote(3, 0.25f), Wrote(9, -7.5f)));
        button->MouseUp({});  // a release without a press
        EXPECT_THAT(TakeCalls(), IsEmpty());
    }
}

TEST_F(Controls, PopButtonActsWhenReleasedOverItself) {
    auto* button = Add(new GLView_PopButton);
    GLView_Dialog box;
    button->dialog = &box;
    button->MouseUp({0.0f, 0.0f});  // a release without a press
    EXPECT_EQ(page.dialog, nullptr);
    button->MouseDown({0.0f, 0.0f}, {});
    button->MouseUp({3.0f, 0.0f});
    EXPECT_EQ(page.dialog, nullptr);
    button->MouseDown({0.0f, 0.0f}, {});
    button->MouseUp({0.5f, 0.0f});
    EXPECT_EQ(page.dialog, &box);
}

TEST_F(Controls, AFrameLeavesThePointerToWhatItSurrounds) {
    auto* frame = Add(new GLView_DecoratorBox);
    AddWithPort(new GLView_Toggle);
    page.MouseDown({0.0f, 0.0f}, {});
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort), Wrote(kPort, 1.0f)));
    auto* inside = new GLView;
    inside->SetPosition(0.0f, 3.0f);
    frame->AddChild(inside);
    EXPECT_TRUE(frame->HitTest({0.0f, 3.0f}));
}

constexpr float kScale = 2.0f / 800.0f;
constexpr float kItem = 18.0f * kScale;

/// A selector of 60 x 20 with three entries, 1, 5 and 9, in a menu 110 wide.
struct Menu : Controls {
    GLView_MenuSelector* selector = Add(new GLView_MenuSelector);
    GLView_Menu& menu = selector->menu;

    Menu() {
        selector->SetPosition(0.5f, -0.25f);
        selector->SetSize(60.0f * kScale, 20.0f * kScale);
        for (const float value : {1.0f, 5.0f, 9.0f}) {
            selector->AddItem(kPort, value, 110.0f * kScale, "Bell");
        }
    }
    /// Presses the selector this far above its centre and releases at a point of the page; returns
    /// what was sent.
    std::vector<std::pair<uint32_t, float>> Choose(float pointsAbove, GLPoint release) {
        const GLPoint centre = selector->GetPosition();
        selector->MouseDown({centre.x, centre.y + pointsAbove * kScale}, {});
        EXPECT_EQ(page.capturedView, selector);
        page.eventTime += held_ms;
        selector->MouseUp(release);
        EXPECT_EQ(page.capturedView, nullptr);
        EXPECT_EQ(page.dialog, page.sent.empty() ? &menu : nullptr);
        return std::exchange(page.sent, {});
    }
    GLView_Menu_Item* Item(int index) {
        GLView* child = menu.firstChild;
        for (; index > 0; --index) child = child->nextSibling;
        return dynamic_cast<GLView_Menu_Item*>(child);
    }
    /// An entry's centre in page coordinates.
    GLPoint At(int index) { return Item(index)->LocalToPage({0.0f, 0.0f}); }

    uint32_t held_ms = 20;
};

TEST_F(Menu, TheClickThatOpensItChoosesNothingButADragOntoAnEntryDoes) {
    const GLPoint centre = selector->GetPosition();
    EXPECT_THAT(Choose(0.0f, centre), IsEmpty());  // the first entry covers the selector
    EXPECT_TRUE(menu.HitTest(At(1)));
    EXPECT_FALSE(menu.HitTest({menu.x + 56.0f * kScale, menu.y}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y + 2.6f * kItem}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y - 0.6f * kItem}));
    page.CloseDialog(true);
    EXPECT_FALSE(menu.HitTest(At(1)));
    EXPECT_THAT(Choose(0.0f, {-1.0f, 0.9f}), IsEmpty());
    EXPECT_THAT(Choose(0.0f, At(2)), ElementsAre(std::pair(kPort, 9.0f)));

    // Just above the selector's upper edge, on the second entry: a click that slipped, unless the
    // pointer comes from afar or the button was held.
    const GLPoint above = {centre.x, centre.y + 12.0f * kScale};
    held_ms = 299;
    EXPECT_THAT(Choose(9.0f, above), IsEmpty());
    EXPECT_THAT(Choose(3.0f, above), IsEmpty());
    held_ms = 300;
    EXPECT_THAT(Choose(0.0f, centre), IsEmpty());
    page.eventTime = 0xffffffffu - 100u;  // the server's clock wraps around
    EXPECT_THAT(Choose(9.0f, above), ElementsAre(std::pair(kPort, 5.0f)));
    held_ms = 20;
    EXPECT_THAT(Choose(1.9f, above), ElementsAre(std::pair(kPort, 5.0f)));

    Choose(0.0f, centre);
    menu.MouseDown(At(1), {});  // a press is enough
    EXPECT_EQ(page.dialog, nullptr);
    EXPECT_THAT(page.sent, ElementsAre(std::pair(kPort, 5.0f)));
}

TEST_F(Menu, OpensFullyVisibleAndMarksTheEntryThatTheEngineReads) {
    for (const auto& [x, y] : {GLPoint{1.66f, -0.99f}, GLPoint{-1.66f, 0.99f}, GLPoint{}}) {
        selector->SetPosition(x, y);
        Choose(0.0f, {x, y});
        for (const int i : {0, 2}) {
            const GLPoint centre = At(i);
            EXPECT_GT(centre.x - Item(i)->hw, page.GetViewLeft());
            EXPECT_LT(centre.x + Item(i)->hw, page.GetViewRight());
            EXPECT_GT(centre.y - Item(i)->hh, page.GetViewBottom());
            EXPECT_LT(centre.y + Item(i)->hh, page.GetViewTop());
        }
    }
    EXPECT_FLOAT_EQ(At(0).x, 0.0f);  // with enough space it opens over the selector
    EXPECT_FLOAT_EQ(At(0).y, 0.0f);
    for (const auto& [reported, entry] :
         {std::pair(1.0f, 0), {5.5f, 1}, {4.95f, 1}, {4.85f, -1}, {9.0f, 2}, {-7.0f, -1}}) {
        page.Report(kPort, reported);
        EXPECT_EQ(menu.PresentItem(), entry < 0 ? nullptr : Item(entry)) << reported;
    }
}

TEST(ValueText, FollowsTheSizeOfTheValue) {
    struct Row {
        float value;
        ValueStyle style;
        const char* text;
    };
    for (const Row& row : {
             Row{1500.0f, ValueStyle::Plain, "1.5kHz"},
             Row{1000.0f, ValueStyle::Plain, "1.0kHz"},
             Row{999.0f, ValueStyle::Plain, "999Hz"},
             Row{50.0f, ValueStyle::Plain, " 50Hz"},
             Row{-12.4f, ValueStyle::Plain, "-12Hz"},
             Row{-9.54f, ValueStyle::Plain, "-9.5Hz"},
             Row{-0.04f, ValueStyle::Plain, "0.0Hz"},
             Row{3.6f, ValueStyle::Whole, " 4Hz"},
             Row{-0.3f, ValueStyle::Whole, " 0Hz"},
             Row{0.7943f, ValueStyle::Decibels, "-2.0Hz"},
             Row{4.0f, ValueStyle::Decibels, " 12Hz"},
             Row{0.0f, ValueStyle::Decibels, "-120Hz"},
         }) {
        char text[32];
        FormatValue(text, sizeof text, row.value, row.style, "Hz");
        EXPECT_STREQ(text, row.text) << row.value;
    }
    char narrow[8];
    FormatValue(narrow, sizeof narrow, std::numeric_limits<float>::max(), ValueStyle::Whole, "Hz");
    EXPECT_STREQ(narrow, "3402823");
}

}  // namespace
}  // namespace brindle
