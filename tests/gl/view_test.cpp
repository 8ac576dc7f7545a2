// SPDX-License-Identifier: ISC
#include "gl/GLView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/fake_page.h"

namespace brindle {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A view that records the calls it gets, and can leave the tree while it is drawn.
class Probe : public GLView {
  public:
    Probe(std::string id, std::vector<std::string>& journal) : id_(std::move(id)), log_(journal) {}
    ~Probe() override { log_.push_back("~" + id_); }

    void Draw() override {
        log_.push_back("draw " + id_);
        if (leaves_when_drawn) parent->RemoveChild(this);
        GLView::Draw();
    }
    void DrawBack() override {
        log_.push_back("back " + id_);
        GLView::DrawBack();
    }
    void DrawFront() override {
        log_.push_back("front " + id_);
        GLView::DrawFront();
    }
    void ParameterChanged(uint32_t index) override {
        log_.push_back(id_ + " hears " + std::to_string(index));
        GLView::ParameterChanged(index);
    }
    void MouseDown(GLPoint point, GLPoint pagePoint) override {
        pressed_at = point;
        page_point = pagePoint;
        log_.push_back("press " + id_);
        GLView::MouseDown(point, pagePoint);
    }

    bool leaves_when_drawn = false;
    GLPoint pressed_at{};
    GLPoint page_point{};

  private:
    std::string id_;
    std::vector<std::string>& log_;
};

/// A page of 10 x 10 with two overlapping views; the child of the first extends beyond it.
struct Tree : ::testing::Test {
    std::vector<std::string> log;
    std::unique_ptr<FakePage> page = std::make_unique<FakePage>();
    Probe* a = new Probe("a", log);
    Probe* b = new Probe("b", log);
    Probe* c = new Probe("c", log);

    Tree() {
        page->SetSize(10.0f, 10.0f);
        a->SetPosition(-1.0f, 0.0f);
        a->SetSize(4.0f, 2.0f);
        b->SetPosition(1.0f, 0.0f);
        b->SetSize(4.0f, 2.0f);
        c->SetPosition(0.0f, 3.0f);
        page->AddChild(a);
        page->AddChild(b);
        a->AddChild(c);
    }
};

TEST_F(Tree, ChildrenKeepTheirOrderAreNeverDoubledAndComeBackAlone) {
    page->AddChild(a);
    page->AddChild(nullptr);
    page->AddChild(page.get());
    page->RemoveChild(c);  // a grandchild is not a child
    EXPECT_EQ(page->CountChildren(), 2);
    EXPECT_EQ(c->CountChildren(), 0);
    EXPECT_EQ(c->Page(), page.get());
    page->RemoveChild(a);
    EXPECT_EQ(a->parent, page.get());
    EXPECT_EQ(page->CountChildren(), 1);
    page->AddChild(a);  // now after b
    page->ParameterChanged(7);
    EXPECT_THAT(log, ElementsAre("b hears 7", "a hears 7", "c hears 7"));
}

TEST_F(Tree, DestroyingAViewDestroysItsSubtree) {
    page->RemoveChild(b);
    page.reset();
    EXPECT_THAT(log, ElementsAre("~a", "~c"));
    b->SetName("kept once");
    b->SetName("replaced");
    EXPECT_STREQ(b->name, "replaced");
    delete b;
}

TEST_F(Tree, PassesGoDepthFirstAndSurviveAViewThatLeaves) {
    a->leaves_when_drawn = true;
    page->DrawBack();
    page->Draw();
    page->Draw();
    page->DrawFront();
    EXPECT_THAT(log, ElementsAre("back a", "back c", "back b", "draw a", "draw c", "draw b",
                                 "draw b", "front b"));
    delete a;
}

TEST_F(Tree, HitsAskTheFirstChildFirstAndReachBeyondTheParent) {
    page->MouseDown({0.0f, 0.0f}, {500.0f, 300.0f});  // a and b overlap here
    EXPECT_THAT(log, ElementsAre("press a"));
    EXPECT_FLOAT_EQ(a->page_point.x, 500.0f);
    log.clear();
    page->MouseDown({-1.0f, 3.5f}, {});  // only c, outside a
    EXPECT_THAT(log, ElementsAre("press a", "press c"));
    EXPECT_FLOAT_EQ(c->pressed_at.y, 3.5f);
    log.clear();
    page->MouseDown({4.0f, 4.0f}, {});
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(Tree, BordersAndHiddenViewsAreNotHitAndScaleAppliesToTheSize) {
    EXPECT_FALSE(b->HitTest({3.0f, 0.0f}));
    EXPECT_TRUE(b->HitTest({2.999f, 0.0f}));
    EXPECT_FALSE(b->HitTest({1.0f, -1.0f}));
    b->SetScale(0.5f);  // half widths count in local units
    EXPECT_FALSE(b->HitTest({2.001f, 0.0f}));
    EXPECT_TRUE(b->HitTest({1.999f, 0.0f}));
    a->SetVisible(false);
    EXPECT_FALSE(a->HitTest({-1.0f, 0.0f}));
    EXPECT_FALSE(a->HitTest({-1.0f, 3.0f}));
    c->SetVisible(true);
    EXPECT_TRUE(a->HitTest({-1.0f, 3.0f}));
}

TEST_F(Tree, PointsTravelBetweenPageAndLocalCoordinates) {
    a->SetScale(2.0f);
    c->SetScale(0.5f);
    // c's (2, 4) is a's (1, 2 + 3), is the page's (2 - 1, 10).
    const GLPoint on_page = c->LocalToPage({2.0f, 4.0f});
    EXPECT_FLOAT_EQ(on_page.x, 1.0f);
    EXPECT_FLOAT_EQ(on_page.y, 10.0f);
    const GLPoint back = c->PageToLocal(on_page);
    EXPECT_FLOAT_EQ(back.x, 2.0f);
    EXPECT_FLOAT_EQ(back.y, 4.0f);
}

TEST_F(Tree, EachRoleHasOneHolder) {
    struct Role {
        void (GLView::*take)(bool);
        GLView* (GLView::*holder)();
    };
    for (const Role& role : {Role{&GLView::SetSelected, &GLView::GetSelectedView},
                             Role{&GLView::SetHover, &GLView::GetHoverView},
                             Role{&GLView::SetCaptured, &GLView::GetCapturedView}}) {
        (a->*role.take)(true);
        EXPECT_EQ((page.get()->*role.holder)(), a);
        (c->*role.take)(true);
        EXPECT_EQ((b->*role.holder)(), c);
        (b->*role.take)(false);  // clears it, whoever holds it
        EXPECT_EQ((page.get()->*role.holder)(), nullptr);
        (b->*role.take)(true);
    }
    a->ReleaseAll();
    EXPECT_EQ(page->selectedView, nullptr);
    EXPECT_EQ(page->hoverView, nullptr);
    EXPECT_EQ(page->capturedView, nullptr);

    c->SetSelected(true);
    b->SetVisible(false);
    EXPECT_EQ(page->selectedView, c);
    a->SetVisible(false);
    EXPECT_EQ(page->selectedView, nullptr);
    for (const GLPoint at : {GLPoint{4.0f, 4.0f}, {-1.0f, 0.0f}}) {  // over no view, over a only
        b->SetCaptured(true);
        page->MouseUp(at);
        EXPECT_EQ(page->capturedView, nullptr);
    }
}

TEST_F(Tree, ShowInfoSelectsTheInnermostViewAndShowsItsTexts) {
    c->SetInfoTitle("Band 1");
    c->SetInfoText("Frequency");
    page->ShowInfoAt({-1.0f, 3.0f});
    EXPECT_EQ(page->selectedView, c);
    EXPECT_THAT(page->titles, ElementsAre("Band 1"));
    EXPECT_THAT(page->texts, ElementsAre("Frequency"));
}

TEST_F(Tree, ServicesReachThePageFromAnyDepth) {
    c->SendParameter(3, -4.5f);
    c->ShowInfo("t", "x");
    c->ShowMessage("1", "2", "3", "4", "5");
    c->OpenDialog(b);
    c->CloseDialog(true);
    EXPECT_THAT(page->sent, ElementsAre(std::pair(3u, -4.5f)));
    EXPECT_STREQ(page->infoText, "x");
    EXPECT_THAT(page->messages, ElementsAre("1", "2", "3", "4", "5"));
    EXPECT_THAT(page->closings, ElementsAre(true));
    EXPECT_FALSE(b->visible);

    page->parameters[42] = 0.5f;
    page->pageWidth = 2.0f;
    page->pageHeight = 3.0f;
    page->interfaceScale = 4.0f;
    page->viewRight = 5.0f;
    page->viewTop = 6.0f;
    page->pixelSize = 7.0f;
    const std::pair<float (GLView::*)(), float> sizes[] = {
        {&GLView::GetPageWidth, 2.0f},      {&GLView::GetPageHeight, 3.0f},
        {&GLView::GetInterfaceScale, 4.0f}, {&GLView::GetViewRight, 5.0f},
        {&GLView::GetViewLeft, -5.0f},      {&GLView::GetViewTop, 6.0f},
        {&GLView::GetViewBottom, -6.0f},    {&GLView::GetPixelSize, 7.0f},
    };
    for (const auto& [query, answer] : sizes) EXPECT_EQ((c->*query)(), answer);
    EXPECT_EQ(c->GetParameter(42), 0.5f);
    EXPECT_EQ(c->GetBackgroundColor().red, kCream.red);
    EXPECT_EQ(c->GetContrastColor().red, kAmber.red);
    page->modifiers = 2;
    page->pressedButton = 3;
    page->eventTime = 99;
    EXPECT_EQ(c->GetModifiers(), 2u);
    EXPECT_EQ(c->GetPressedButton(), 3);
    EXPECT_EQ(c->GetEventTime(), 99u);
    using Flag = std::pair<bool FakePage::*, bool (GLView::*)()>;
    for (const auto& [flag, query] :
         {Flag{&FakePage::resetPress, &GLView::IsResetPress},
          Flag{&FakePage::boxy, &GLView::IsBoxy}, Flag{&FakePage::flat, &GLView::IsFlat}}) {
        EXPECT_FALSE((c->*query)());
        page.get()->*flag = true;
        EXPECT_TRUE((c->*query)());
    }
}

TEST(View, WithoutAPageItSaysSoAndServicesAnswerNothing) {
    GLView alone;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(alone.Page(), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Page() called with no parent.  crash.\n");
    EXPECT_EQ(alone.GetParameter(1), 0.0f);
    EXPECT_EQ(alone.GetResources(), nullptr);
    alone.SetSelected(true);
    alone.ShowInfoAt({0.0f, 0.0f});
}

TEST(View, InfoTextsAreFormatsOfTheirOwnLength) {
    GLView view;
    using Case = std::pair<const char*, const char*>;
    for (const auto& [text, shown] :
         {Case{"", ""}, Case{nullptr, ""}, Case{"100%% wet", "100% wet"},
          Case{"%d bytes", "8 bytes"}, Case{"%04zu!", "0006!"}, Case{"%d then %d", "10 then %d"},
          Case{"50% louder", "50% louder"}, Case{"%s %n %f %", "%s %n %f %"}, Case{"%*d", "%*d"},
          Case{"%.3ld", "005"}, Case{"%hhx", "4"}}) {
        SCOPED_TRACE(text != nullptr ? text : "null");
        view.SetInfoTitle(text);
        EXPECT_STREQ(view.infoTitle, shown);
        view.SetInfoText(text);
        EXPECT_STREQ(view.infoText, shown);
    }
}

TEST(View, TextsAreCutAtTheirBuffers) {
    GLView view;
    const std::string text(1000, 'w');
    view.SetInfoTitle(text.c_str());
    view.SetInfoText("%999999d");
    view.SetLabel(text.c_str());
    EXPECT_EQ(view.infoTitle, std::string(255, 'w'));
    EXPECT_EQ(view.label, std::string(255, 'w'));
    EXPECT_LE(std::string(view.infoText).size(), 255u);
    view.SetLabel(view.label + 250);
    EXPECT_STREQ(view.label, "wwwww");
    view.SetLabel(nullptr);
    EXPECT_STREQ(view.label, "");
}

}  // namespace
}  // namespace brindle
