// SPDX-License-Identifier: ISC
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_Dialog.h"
#include "gl/GLView_MomentaryButton.h"
#include "gl/GLView_PopButton.h"
#include "gl/GLView_Toggle.h"
#include "tests/support/fake_page.h"
#include "tests/support/recording_host.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Buttons : ::testing::Test {
    RecordingHost host;
    FakePage page;
    GLView bystander;  // not in the tree: it only captures the pointer

    template <typename Button>
    Button* Add(Button* button) {
        page.AddChild(button);
        return button;
    }
    void StealPointer() {
        bystander.parent = &page;
        bystander.SetCaptured(true);
    }
};

TEST_F(Buttons, ToggleWritesTheOtherStateBetweenTouchAndRelease) {
    auto* toggle = Add(new GLView_Toggle);
    toggle->SetPort(host.Writer(), 7);
    toggle->SetTouch(host.TouchFeature(), 8);
    for (const auto& [reported, written] :
         {std::pair(0.0f, 1.0f), {1.0f, 0.0f}, {0.5f, 0.0f}, {-2.0f, 0.0f}}) {
        SCOPED_TRACE(reported);
        host.calls.clear();
        page.Report(7, reported);
        toggle->MouseDown({}, {});
        EXPECT_EQ(page.capturedView, toggle);
        EXPECT_EQ(toggle->IsOn(), reported != 0.0f);  // follows the host's report, not the press
        toggle->MouseUp({});
        EXPECT_EQ(page.capturedView, nullptr);
        EXPECT_THAT(host.calls, ElementsAre(Touched(8), Wrote(7, written), Released(8)));
    }
}

TEST_F(Buttons, AToggleThatLosesThePointerEndsItsTouch) {
    auto* toggle = Add(new GLView_Toggle);
    toggle->SetPort(host.Writer(), 7);
    toggle->SetTouch(host.TouchFeature(), 7);
    toggle->MouseDown({}, {});
    StealPointer();
    EXPECT_EQ(host.calls.back(), Released(7));
    host.calls.clear();
    toggle->MouseDown({}, {});
    page.RemoveChild(toggle);
    delete toggle;
    EXPECT_THAT(host.calls, ElementsAre(Touched(7), Wrote(7, 1.0f), Released(7)));
}

TEST_F(Buttons, PresetWritesItsValuesInThePortsOrderAndClearsTheHelpLine) {
    auto* button = Add(new GLView_PresetButton);
    button->SetWriter(host.Writer());
    page.SetInfoText("old");
    button->MouseDown({}, {});
    EXPECT_THAT(host.calls, IsEmpty());
    EXPECT_STREQ(page.infoText, "");
    for (const uint32_t port : {52u, 2u, 127u, 128u, std::numeric_limits<uint32_t>::max()}) {
        button->SetPresetValue(port, static_cast<float>(port));
    }
    button->MouseDown({}, {});
    EXPECT_EQ(page.capturedView, button);
    button->MouseUp({});
    EXPECT_EQ(page.capturedView, nullptr);
    EXPECT_THAT(host.calls, ElementsAre(Wrote(2, 2.0f), Wrote(52, 52.0f), Wrote(127, 127.0f)));
}

TEST_F(Buttons, MomentaryRestoresWhatItFoundAtThePress) {
    auto* button = Add(new GLView_MomentaryButton);
    button->SetWriter(host.Writer());
    button->SetPresetValue(9, 4.0f);
    button->SetPresetValue(3, 5.0f);
    const auto press = [&] {
        host.calls.clear();
        page.Report(3, 0.25f);
        page.Report(9, -7.5f);
        button->MouseDown({}, {});
        page.Report(3, 5.0f);
        page.Report(9, 1.0f);  // meanwhile the host changes a value
    };
    const auto expected =
        ElementsAre(Wrote(3, 5.0f), Wrote(9, 4.0f), Wrote(3, 0.25f), Wrote(9, -7.5f));
    press();
    EXPECT_STREQ(page.infoText, "");
    button->MouseUp({});
    EXPECT_THAT(host.calls, expected);
    EXPECT_EQ(page.capturedView, nullptr);
    button->MouseUp({});  // a release without a press
    EXPECT_THAT(host.calls, expected);

    press();
    StealPointer();
    EXPECT_THAT(host.calls, expected);
    button->MouseUp({});
    EXPECT_THAT(host.calls, expected);

    press();
    button->MouseDown({}, {});  // a second mouse button, while the preset's values are in force
    button->MouseUp({});
    EXPECT_THAT(host.calls, ElementsAre(Wrote(3, 5.0f), Wrote(9, 4.0f), Wrote(3, 5.0f),
                                        Wrote(9, 4.0f), Wrote(3, 0.25f), Wrote(9, -7.5f)));
}

TEST_F(Buttons, PopButtonActsWhenReleasedOverItself) {
    auto* button = Add(new GLView_PopButton);
    GLView_Dialog box;
    box.visible = false;
    button->dialog = &box;
    button->MouseUp({0.0f, 0.0f});  // a release without a press
    EXPECT_EQ(page.dialog, nullptr);
    button->MouseDown({0.0f, 0.0f}, {});
    button->MouseUp({3.0f, 0.0f});
    EXPECT_EQ(page.dialog, nullptr);
    button->MouseDown({0.0f, 0.0f}, {});
    button->MouseUp({0.5f, 0.0f});
    EXPECT_EQ(page.dialog, &box);
    EXPECT_EQ(page.capturedView, nullptr);
}

TEST_F(Buttons, AFrameLeavesThePointerToWhatItSurrounds) {
    auto* frame = Add(new GLView_DecoratorBox);
    auto* toggle = Add(new GLView_Toggle);
    toggle->SetPort(host.Writer(), 7);
    page.MouseDown({0.0f, 0.0f}, {});
    EXPECT_THAT(host.calls, ElementsAre(Wrote(7, 1.0f)));
    auto* inside = new GLView;
    inside->SetPosition(0.0f, 3.0f);
    frame->AddChild(inside);
    EXPECT_TRUE(frame->HitTest({0.0f, 3.0f}));
}

}  // namespace
}  // namespace brindle
