// SPDX-License-Identifier: ISC
#include "gl/GLView_Knob.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "gl/GLView_TrimSlider.h"
#include "tests/support/fake_page.h"
#include "tests/support/recording_host.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr uint32_t kPort = 4;
constexpr GLPoint kGrip{100.0f, 200.0f};  // window pixels, y downwards

/// A vertical gain knob from -18 to 18 on a page; the host reported 0.
struct Knob : ::testing::Test {
    RecordingHost host;
    FakePage page;
    GLView_Knob* knob = Add(new GLView_Knob(false, -18.0f, 18.0f));

    template <typename Control>
    Control* Add(Control* control) {
        control->SetPort(host.Writer(), kPort);
        control->SetTouch(host.TouchFeature(), kPort);
        page.AddChild(control);
        page.Report(kPort, 0.0f);
        return control;
    }
    void Drag(float dx, float dy) { knob->MouseDragTo({kGrip.x + dx, kGrip.y + dy}); }
    float LastWrite() const { return host.calls.empty() ? NAN : host.calls.back().value; }
};

TEST_F(Knob, ADragIsBracketedByTouchAndWritesEachStep) {
    knob->SetTouch(host.TouchFeature(), 90);
    knob->gesturePort = 77;
    knob->MouseDown({}, kGrip);
    EXPECT_EQ(page.capturedView, knob);
    EXPECT_EQ(activePort, 4);
    Drag(0.0f, -100.0f);  // 100 pixels up are 0.3 of the range of 36
    Drag(50.0f, 50.0f);   // sideways is ignored
    knob->MouseUp({});
    EXPECT_EQ(page.capturedView, nullptr);
    EXPECT_EQ(activePort, -1);
    ASSERT_THAT(host.calls, SizeIs(6));
    EXPECT_EQ(host.calls[0], Touched(90));
    EXPECT_EQ(host.calls[1].port, kPort);
    EXPECT_NEAR(host.calls[1].value, 10.8f, 1e-4f);
    EXPECT_EQ(host.calls[2], Wrote(77, 1.0f));
    EXPECT_NEAR(host.calls[3].value, -5.4f, 1e-4f);
    EXPECT_EQ(host.calls[5], Released(90));
}

TEST_F(Knob, ATouchThatBeganEndsOnceHoweverTheKnobLosesThePointer) {
    GLView thief;
    page.AddChild(&thief);
    knob->MouseDown({}, kGrip);
    knob->MouseDown({}, kGrip);  // a second mouse button
    thief.SetCaptured(true);
    EXPECT_EQ(page.capturedView, &thief);
    EXPECT_EQ(activePort, -1);
    knob->MouseUp({});
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort), Released(kPort)));
    page.RemoveChild(&thief);

    host.calls.clear();
    knob->MouseDown({}, kGrip);
    page.RemoveChild(knob);
    page.capturedView = nullptr;
    delete knob;
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort), Released(kPort)));
}

TEST_F(Knob, BeyondAnEndItWritesTheEndAndTheWayBackCountsAtOnce) {
    knob->MouseDown({}, kGrip);
    Drag(0.0f, -100.0f);
    EXPECT_FLOAT_EQ(knob->dragLast.y, 100.0f);
    Drag(0.0f, -400.0f);
    EXPECT_EQ(LastWrite(), 18.0f);
    EXPECT_FLOAT_EQ(knob->dragLast.y, 100.0f);  // stays at its last position in range
    Drag(0.0f, 400.0f);
    EXPECT_EQ(LastWrite(), -18.0f);
    EXPECT_FLOAT_EQ(knob->dragLast.y, 100.0f);
    Drag(0.0f, -150.0f);
    EXPECT_NEAR(LastWrite(), 16.2f, 1e-4f);
}

TEST_F(Knob, TheNextStepStartsFromWhatTheHostReported) {
    knob->MouseDown({}, kGrip);
    Drag(0.0f, -100.0f);
    Drag(0.0f, -100.0f);  // not reported yet: the same value again, not twice the distance
    EXPECT_NEAR(LastWrite(), 10.8f, 1e-4f);
    page.Report(kPort, 9.0f);  // the host took another value
    EXPECT_FLOAT_EQ(knob->dragStart.y, 100.0f);
    EXPECT_FLOAT_EQ(knob->dragStart.x, 100.0f);
    Drag(0.0f, -110.0f);
    EXPECT_NEAR(LastWrite(), 9.0f + 1.08f, 1e-4f);
    knob->MouseUp({});
    knob->MouseDown({}, {7.0f, 8.0f});
    page.Report(kPort, 0.0f);  // before the pointer has moved
    EXPECT_FLOAT_EQ(knob->dragStart.y, 8.0f);
}

TEST_F(Knob, ModifiersMakeDragAndWheelTenTimesFiner) {
    for (const uint32_t modifiers : {1u, 2u, 3u, 4u, 8u}) {
        SCOPED_TRACE(modifiers);
        const float share = modifiers < 4 ? 0.1f : 1.0f;
        page.modifiers = modifiers;
        knob->MouseDown({}, kGrip);
        Drag(0.0f, -100.0f);
        EXPECT_NEAR(LastWrite(), 10.8f * share, 1e-4f);
        knob->MouseUp({});
        knob->Scroll(-2.0f);
        EXPECT_NEAR(LastWrite(), -2.0f * 0.72f * share, 1e-4f);
    }
}

TEST_F(Knob, LimitsHoldForDragsAndNotForTheWheel) {
    knob->SetLimits(-12.0f, 12.0f);
    knob->MouseDown({}, kGrip);
    Drag(0.0f, -999.0f);
    EXPECT_EQ(LastWrite(), 12.0f);
    Drag(0.0f, 999.0f);
    EXPECT_EQ(LastWrite(), -12.0f);
    knob->MouseUp({});
    host.calls.clear();
    knob->Scroll(1000.0f);
    knob->Scroll(-1000.0f);
    EXPECT_THAT(host.calls, ElementsAre(Wrote(kPort, 18.0f), Wrote(kPort, -18.0f)));
}

TEST_F(Knob, AResetPressWritesTheResetValueIfThereIsOne) {
    page.resetPress = true;
    knob->MouseDown({}, kGrip);
    knob->MouseUp({});
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort), Released(kPort)));
    knob->SetResetValue(0.0f);
    page.Report(kPort, 9.0f);
    host.calls.clear();
    knob->MouseDown({}, kGrip);
    page.resetPress = false;
    Drag(0.0f, -1.0f);  // a trembling hand does not undo the reset
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort), Wrote(kPort, 0.0f)));
    page.Report(kPort, 0.0f);
    Drag(0.0f, -11.0f);  // ten pixels from the pointer's position at the report
    EXPECT_NEAR(LastWrite(), 1.08f, 1e-4f);

    knob->MouseUp({});
    page.resetPress = true;
    knob->MouseDown({}, kGrip);
    knob->MouseUp({});
    page.resetPress = false;
    host.calls.clear();
    knob->MouseDown({}, kGrip);  // without a report: a new press starts a new drag
    EXPECT_THAT(host.calls, ElementsAre(Touched(kPort)));
    Drag(0.0f, -10.0f);
    EXPECT_NEAR(LastWrite(), 1.08f, 1e-4f);
}

TEST_F(Knob, AChildTakesThePressAndHearsEveryPort) {
    struct Child : GLView {
        void MouseDown(GLPoint, GLPoint pagePoint) override { pressed = pagePoint.x; }
        void ParameterChanged(uint32_t index) override { heard.push_back(index); }
        float pressed = 0.0f;
        std::vector<uint32_t> heard;
    };
    auto* child = new Child;
    child->SetPosition(0.5f, 0.0f);
    child->SetSize(0.5f, 0.5f);
    knob->SetPosition(3.0f, 0.0f);
    knob->AddChild(child);
    knob->MouseDown({3.5f, 0.0f}, kGrip);
    EXPECT_FLOAT_EQ(child->pressed, 100.0f);
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_EQ(page.capturedView, nullptr);

    page.texts.clear();
    page.Report(kPort + 1, 12.0f);
    EXPECT_THAT(page.texts, IsEmpty());
    EXPECT_FLOAT_EQ(knob->normalised, 0.5f);
    page.Report(kPort, 9.0f);
    EXPECT_THAT(child->heard, ElementsAre(kPort + 1, kPort));
    EXPECT_FLOAT_EQ(knob->normalised, 0.75f);
}

TEST_F(Knob, ValuesBeyondTheRangeShowAtItsEndsAndNonsenseNotAtAll) {
    knob->SetUnit("dB");
    page.Report(kPort, 40.0f);
    EXPECT_EQ(knob->normalised, 1.0f);
    page.Report(kPort, -40.0f);
    EXPECT_EQ(knob->normalised, 0.0f);
    page.Report(kPort, -9.0f);
    for (const float nonsense :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity()}) {
        page.Report(kPort, nonsense);
        EXPECT_EQ(knob->normalised, 0.25f);
        EXPECT_STREQ(knob->infoText, "-9.0dB");
        EXPECT_EQ(page.texts.back(), "-9.0dB");
    }
    // Logarithms of 0 and less are not finite; the value is at the lower end.
    knob->SetMapping([](float n) { return std::exp(n); }, [](float v) { return std::log(v); });
    page.Report(kPort, -1.0f);
    EXPECT_EQ(knob->normalised, 0.0f);
    page.Report(kPort, 0.0f);
    EXPECT_EQ(knob->normalised, 0.0f);
}

TEST_F(Knob, TrackStartsAtZeroOrAtTheNearestEnd) {
    EXPECT_FLOAT_EQ(knob->NormalisedZero(), 0.5f);
    EXPECT_FLOAT_EQ(GLView_Knob(false, -6.0f, 18.0f).NormalisedZero(), 0.25f);
    EXPECT_FLOAT_EQ(GLView_Knob(false, 20.0f, 20000.0f).NormalisedZero(), 0.0f);
    EXPECT_FLOAT_EQ(GLView_Knob(false, -60.0f, -10.0f).NormalisedZero(), 1.0f);
}

TEST_F(Knob, ASliderDragsSidewaysAndIsOneRectangle) {
    auto* slider = Add(new GLView_TrimSlider(true, -20.0f, 20.0f));
    auto* child = new GLView;
    child->SetPosition(5.0f, 0.0f);
    slider->AddChild(child);
    EXPECT_FALSE(slider->HitTest({5.0f, 0.0f}));  // over the child

    slider->MouseDown({9.0f, 9.0f}, kGrip);
    slider->MouseDragTo({kGrip.x + 50.0f, kGrip.y + 50.0f});
    EXPECT_NEAR(LastWrite(), 6.0f, 1e-4f);
    page.Report(kPort, 6.0f);
    EXPECT_FLOAT_EQ(slider->dragStart.x, 150.0f);
    EXPECT_FLOAT_EQ(slider->dragStart.y, 200.0f);
}

TEST(ValueText, FollowsTheSizeOfTheValue) {
    constexpr auto kPlain = ValueStyle::Plain;
    constexpr auto kWhole = ValueStyle::Whole;
    constexpr auto kDecibels = ValueStyle::Decibels;
    struct Row {
        float value;
        ValueStyle style;
        const char* unit;
        const char* text;
    };
    for (const Row& row : {
             Row{1500.0f, kPlain, "Hz", "1.5kHz"},
             Row{999.0f, kPlain, "Hz", "999Hz"},
             Row{20000.0f, kPlain, "Hz", "20.0kHz"},
             Row{50.0f, kPlain, "", " 50"},
             Row{5.0f, kPlain, "", "5.0"},
             Row{0.7125f, kPlain, " ", "0.7 "},
             Row{-12.4f, kPlain, "dB", "-12dB"},
             Row{-9.54f, kPlain, "dB", "-9.5dB"},
             Row{-1500.0f, kPlain, "", "-1.5k"},
             Row{-0.04f, kPlain, "dB", "0.0dB"},
             Row{3.6f, kWhole, "", " 4"},
             Row{-0.3f, kWhole, "%", " 0%"},
             Row{1.0f, kDecibels, "dB", "0.0dB"},
             Row{0.7943f, kDecibels, "dB", "-2.0dB"},
             Row{0.1f, kDecibels, "dB", "-20dB"},
             Row{4.0f, kDecibels, "dB", " 12dB"},
             Row{0.0f, kDecibels, "dB", "-120dB"},
             Row{-1.0f, kDecibels, "dB", "-120dB"},
         }) {
        char text[32];
        FormatValue(text, sizeof text, row.value, row.style, row.unit);
        EXPECT_STREQ(text, row.text) << row.value;
    }
    char narrow[8];
    FormatValue(narrow, sizeof narrow, std::numeric_limits<float>::max(), ValueStyle::Whole, "Hz");
    EXPECT_STREQ(narrow, "3402823");
}

}  // namespace
}  // namespace brindle
