// SPDX-License-Identifier: ISC
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gl/GLView_MenuSelector.h"
#include "tests/support/fake_page.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr uint32_t kPort = 13;
constexpr float kScale = 2.0f / 800.0f;
constexpr float kItem = 18.0f * kScale;

/// A selector of 60 x 20 with three entries, 1, 5 and 9, in a menu 110 wide.
struct Menu : ::testing::Test {
    FakePage page;
    GLView_MenuSelector* selector = new GLView_MenuSelector;

    Menu() {
        selector->SetPosition(0.5f, -0.25f);
        selector->SetSize(60.0f * kScale, 20.0f * kScale);
        page.AddChild(selector);
        selector->AddItem(kPort, 1.0f, 110.0f * kScale, "LP 6dB/oct");
        selector->AddItem(kPort, 5.0f, 110.0f * kScale, "Lo Shelf");
        selector->AddItem(kPort, 9.0f, 110.0f * kScale, "Bell");
    }
    GLView_Menu& Opened() {
        selector->MouseDown(selector->GetPosition(), {});
        selector->MouseUp(selector->GetPosition());
        return selector->menu;
    }
    GLView_Menu_Item* Item(int index) {
        GLView* child = selector->menu.firstChild;
        for (; index > 0; --index) child = child->nextSibling;
        return dynamic_cast<GLView_Menu_Item*>(child);
    }
    /// An entry's centre in page coordinates.
    GLPoint At(int index) { return Item(index)->LocalToPage({0.0f, 0.0f}); }
};

TEST_F(Menu, TheClickThatOpensItChoosesNothingButADragOntoAnEntryDoes) {
    // Pressed and released on the selector, which the first entry covers.
    GLView_Menu& menu = Opened();
    EXPECT_EQ(page.dialog, &menu);
    EXPECT_EQ(page.capturedView, nullptr);
    EXPECT_TRUE(menu.HitTest(At(1)));
    EXPECT_FALSE(menu.HitTest({menu.x + 56.0f * kScale, menu.y}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y + 2.6f * kItem}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y - 0.6f * kItem}));
    page.CloseDialog(true);
    EXPECT_FALSE(menu.HitTest(At(1)));

    selector->MouseDown(selector->GetPosition(), {});
    EXPECT_EQ(page.capturedView, selector);
    selector->MouseUp({-1.0f, 0.9f});
    EXPECT_EQ(page.dialog, &menu);
    EXPECT_THAT(page.sent, IsEmpty());
    page.CloseDialog(true);

    selector->MouseDown(selector->GetPosition(), {});
    selector->MouseUp(At(2));
    EXPECT_THAT(page.sent, ElementsAre(Pair(kPort, 9.0f)));
    EXPECT_EQ(page.dialog, nullptr);
    selector->MouseUp(At(2));  // a release without a menu
    EXPECT_THAT(page.sent, ElementsAre(Pair(kPort, 9.0f)));

    // Just above the selector's upper edge, on the second entry: a click that slipped, unless the
    // pointer comes from afar or the button was held.
    struct Release {
        float fromAbove;  // points above the selector's centre at the press
        uint32_t heldMs;
        bool chooses;
    };
    const GLPoint centre = selector->GetPosition();
    const GLPoint above = {centre.x, centre.y + 12.0f * kScale};
    for (const auto& [fromAbove, heldMs, chooses] :
         {Release{9.0f, 299, false}, {3.0f, 299, false}, {9.0f, 300, true}, {1.9f, 20, true}}) {
        SCOPED_TRACE(testing::Message() << fromAbove << " points, " << heldMs << " ms");
        page.sent.clear();
        page.eventTime = 0xffffffffu - 100u;  // the server's clock wraps around
        selector->MouseDown({centre.x, centre.y + fromAbove * kScale}, {});
        page.eventTime += heldMs;
        selector->MouseUp(above);
        EXPECT_EQ(page.dialog, chooses ? nullptr : &menu);
        EXPECT_EQ(page.sent.size(), chooses ? 1u : 0u);
        page.CloseDialog(true);
    }

    Opened().MouseDown(At(1), {});  // a press is enough
    EXPECT_EQ(page.dialog, nullptr);
    EXPECT_EQ(page.sent.back(), std::pair(kPort, 5.0f));
}

TEST_F(Menu, OpensFullyVisibleWhereverTheSelectorStands) {
    for (const auto& [x, y] : {GLPoint{1.66f, -0.99f}, GLPoint{-1.66f, 0.99f},
                               GLPoint{1.66f, 0.99f}, GLPoint{-1.66f, -0.99f}, GLPoint{}}) {
        SCOPED_TRACE(::testing::Message() << x << ' ' << y);
        selector->SetPosition(x, y);
        Opened();
        for (int i = 0; i < 3; ++i) {
            const GLPoint centre = At(i);
            EXPECT_GT(centre.x - Item(i)->hw, page.GetViewLeft());
            EXPECT_LT(centre.x + Item(i)->hw, page.GetViewRight());
            EXPECT_GT(centre.y - Item(i)->hh, page.GetViewBottom());
            EXPECT_LT(centre.y + Item(i)->hh, page.GetViewTop());
        }
    }
    EXPECT_FLOAT_EQ(At(0).x, 0.0f);  // with enough space it opens over the selector
    EXPECT_FLOAT_EQ(At(0).y, 0.0f);
}

TEST_F(Menu, MarksTheEntryThatTheEngineReads) {
    for (const auto& [reported, entry] : {std::pair(1.0f, 0),
                                          {5.5f, 1},
                                          {4.95f, 1},
                                          {4.85f, -1},
                                          {9.0f, 2},
                                          {0.0f, -1},
                                          {-7.0f, -1}}) {
        SCOPED_TRACE(reported);
        page.Report(kPort, reported);
        EXPECT_EQ(selector->menu.PresentItem(), entry < 0 ? nullptr : Item(entry));
    }
}

}  // namespace
}  // namespace brindle
