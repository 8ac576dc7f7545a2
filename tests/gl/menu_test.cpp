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
        for (; index > 0; --index) {
            child = child->nextSibling;
        }
        return dynamic_cast<GLView_Menu_Item*>(child);
    }
    /// The page's point at an entry's centre.
    GLPoint At(int index) { return Item(index)->LocalToPage({0.0f, 0.0f}); }
};

TEST_F(Menu, EntriesStackUpwardsFromTheSelector) {
    EXPECT_FLOAT_EQ(selector->menu.x, 0.5f);
    EXPECT_FLOAT_EQ(selector->menu.y, -0.25f);
    EXPECT_EQ(selector->menu.CountChildren(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(Item(i)->x, 0.0f);
        EXPECT_FLOAT_EQ(Item(i)->y, static_cast<float>(i) * kItem);
        EXPECT_FLOAT_EQ(Item(i)->hw, 55.0f * kScale);
        EXPECT_FLOAT_EQ(Item(i)->hh, kItem / 2.0f);
    }
    EXPECT_STREQ(Item(2)->label, "Bell");
    EXPECT_STREQ(selector->menu.name, "Menu");
}

TEST_F(Menu, AnEntryWritesOnPressAndReleaseAndClosesTheMenu) {
    GLView_Menu& menu = Opened();
    EXPECT_EQ(page.dialog, &menu);
    EXPECT_THAT(page.sent, IsEmpty());
    ASSERT_TRUE(menu.HitTest(At(1)));
    menu.MouseDown(At(1), {});
    EXPECT_EQ(page.dialog, nullptr);
    EXPECT_FALSE(menu.visible);
    EXPECT_THAT(page.sent, ElementsAre(Pair(kPort, 5.0f)));
    ASSERT_EQ(page.capturedView, Item(1));
    page.capturedView->MouseUp(At(1));
    EXPECT_THAT(page.sent, ElementsAre(Pair(kPort, 5.0f), Pair(kPort, 5.0f)));
    EXPECT_THAT(page.closings, ElementsAre(false, false));
    EXPECT_EQ(page.capturedView, nullptr);
    Opened();  // entries come back with the menu
    EXPECT_TRUE(menu.HitTest(At(1)));
}

TEST_F(Menu, OnlyEntriesBelongToIt) {
    GLView_Menu& menu = Opened();
    EXPECT_FALSE(menu.HitTest({menu.x + 56.0f * kScale, menu.y}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y + 2.6f * kItem}));
    EXPECT_FALSE(menu.HitTest({menu.x, menu.y - 0.6f * kItem}));
    page.CloseDialog(true);
    EXPECT_FALSE(menu.HitTest(At(1)));
}

TEST_F(Menu, TheClickThatOpensItChoosesNothingButADragOntoAnEntryDoes) {
    GLView_Menu& menu =
        Opened();  // pressed and released over the selector, where the first entry is
    EXPECT_EQ(page.dialog, &menu);
    EXPECT_EQ(page.capturedView, nullptr);
    page.CloseDialog(true);

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
}

TEST_F(Menu, OpensFullyVisibleWhereverTheSelectorStands) {
    struct Row {
        float x, y;
    };
    for (const Row& row : {Row{1.66f, -0.99f}, Row{-1.66f, 0.99f}, Row{1.66f, 0.99f},
                           Row{-1.66f, -0.99f}, Row{0.0f, 0.0f}}) {
        SCOPED_TRACE(::testing::Message() << row.x << ' ' << row.y);
        selector->SetPosition(row.x, row.y);
        Opened();
        for (int i = 0; i < 3; ++i) {
            const GLPoint centre = At(i);
            EXPECT_GT(centre.x - Item(i)->hw, page.GetViewLeft());
            EXPECT_LT(centre.x + Item(i)->hw, page.GetViewRight());
            EXPECT_GT(centre.y - Item(i)->hh, page.GetViewBottom());
            EXPECT_LT(centre.y + Item(i)->hh, page.GetViewTop());
        }
    }
    EXPECT_FLOAT_EQ(At(0).x, 0.0f);  // where there is room, it opens over the selector
    EXPECT_FLOAT_EQ(At(0).y, 0.0f);
}

TEST_F(Menu, OpensOverASelectorInsideAMovedAndScaledParent) {
    auto* box = new GLView;
    box->SetPosition(0.25f, 0.25f);
    box->SetScale(0.5f);
    page.AddChild(box);
    auto* nested = new GLView_MenuSelector;
    nested->SetPosition(0.5f, 0.5f);
    nested->SetSize(60.0f * kScale, 20.0f * kScale);
    box->AddChild(nested);
    nested->AddItem(kPort, 1.0f, 110.0f * kScale, "one");
    nested->AddItem(kPort, 2.0f, 110.0f * kScale, "two");
    nested->MouseDown({0.5f, 0.5f}, {});
    EXPECT_FLOAT_EQ(nested->menu.x, 0.5f);
    EXPECT_FLOAT_EQ(nested->menu.y, 0.5f);
    nested->MouseUp({0.5f, 0.5f});  // its own place on the page, and the first entry's
    EXPECT_EQ(page.dialog, &nested->menu);
    EXPECT_THAT(page.sent, IsEmpty());
}

TEST_F(Menu, MarksTheEntryThatTheEngineReads) {
    struct Row {
        float reported;
        int entry;
    };
    for (const Row& row : {Row{1.0f, 0}, Row{5.5f, 1}, Row{4.95f, 1}, Row{4.85f, -1}, Row{9.0f, 2},
                           Row{0.0f, -1}, Row{-7.0f, -1}}) {
        SCOPED_TRACE(row.reported);
        page.Report(kPort, row.reported);
        EXPECT_EQ(selector->menu.PresentItem(), row.entry < 0 ? nullptr : Item(row.entry));
    }
}

TEST_F(Menu, GoesWithItsSelector) {
    Opened();
    page.RemoveChild(selector);
    delete selector;
    EXPECT_EQ(page.dialog, nullptr);
}

TEST_F(Menu, WithoutAPageThereIsNothingToOpen) {
    GLView_MenuSelector alone;
    alone.AddItem(kPort, 1.0f, 1.0f, "one");
    alone.MouseDown({}, {});
    EXPECT_EQ(alone.menu.CountChildren(), 0);
    EXPECT_EQ(page.dialog, nullptr);
}

}  // namespace
}  // namespace brindle
