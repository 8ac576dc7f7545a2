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

/// A view that records the calls it gets, and can leave the tree while it is drawn.
class Probe : public GLView {
  public:
    Probe(std::string id, std::vector<std::string>& journal) : id_(std::move(id)), log_(journal) {}
    ~Probe() override { log_.push_back("~" + id_); }

    void Draw() override {
        log_.push_back("draw " + id_);
        if (leavesWhenDrawn) parent->RemoveChild(this);
        GLView::Draw();
    }
    void ParameterChanged(uint32_t index) override {
        log_.push_back(id_ + " hears " + std::to_string(index));
        GLView::ParameterChanged(index);
    }
    void MouseDown(GLPoint point, GLPoint pagePoint) override {
        log_.push_back("press " + id_);
        GLView::MouseDown(point, pagePoint);
    }

    bool leavesWhenDrawn = false;

  private:
    std::string id_;
    std::vector<std::string>& log_;
};

/// A page with two overlapping views; the child of the first extends beyond it.
struct Tree : ::testing::Test {
    std::vector<std::string> log;
    std::unique_ptr<FakePage> page = std::make_unique<FakePage>();
    Probe* a = new Probe("a", log);
    Probe* b = new Probe("b", log);
    Probe* c = new Probe("c", log);

    Tree() {
        a->SetPosition(-1.0f, 0.0f);
        a->SetSize(4.0f, 2.0f);
        b->SetPosition(1.0f, 0.0f);
        b->SetSize(4.0f, 2.0f);
        c->SetPosition(0.0f, 3.0f);
        page->AddChild(a);
        page->AddChild(b);
        a->AddChild(c);
    }
    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }
};

TEST_F(Tree, KeepsItsOrderAndGoesWithItsRoot) {
    page->AddChild(a);
    page->AddChild(nullptr);
    page->AddChild(page.get());
    page->RemoveChild(c);  // a grandchild is not a child
    EXPECT_EQ(page->CountChildren(), 2);
    page->RemoveChild(a);
    page->AddChild(a);  // now after b, which does not come along
    page->ParameterChanged(7);
    EXPECT_THAT(TakeLog(), ElementsAre("b hears 7", "a hears 7", "c hears 7"));
    b->leavesWhenDrawn = true;
    page->Draw();
    page->Draw();
    EXPECT_THAT(TakeLog(), ElementsAre("draw b", "draw a", "draw c", "draw a", "draw c"));
    page.reset();
    EXPECT_THAT(TakeLog(), ElementsAre("~a", "~c"));
    delete b;
}

TEST_F(Tree, HitsReachBeyondTheParentButNoBorderAndNoHiddenView) {
    page->MouseDown({0.0f, 0.0f}, {});  // a and b overlap here
    EXPECT_THAT(TakeLog(), ElementsAre("press a"));
    page->MouseDown({-1.0f, 3.5f}, {});  // only c, outside a
    EXPECT_THAT(TakeLog(), ElementsAre("press a", "press c"));
    c->SetInfoTitle("Band 1");
    c->SetInfoText("Frequency");
    page->ShowInfoAt({-1.0f, 3.0f});
    EXPECT_EQ(page->selectedView, c);
    EXPECT_STREQ(page->infoTitle, "Band 1");
    EXPECT_STREQ(page->infoText, "Frequency");
    EXPECT_FALSE(b->HitTest({3.0f, 0.0f}));
    EXPECT_TRUE(b->HitTest({2.999f, 0.0f}));
    b->SetScale(0.5f);  // half widths count in local units
    EXPECT_FALSE(b->HitTest({2.001f, 0.0f}));
    EXPECT_TRUE(b->HitTest({1.999f, 0.0f}));
    a->SetVisible(false);
    EXPECT_FALSE(a->HitTest({-1.0f, 0.0f}));
    EXPECT_FALSE(a->HitTest({-1.0f, 3.0f}));
    c->SetVisible(true);
    EXPECT_TRUE(a->HitTest({-1.0f, 3.0f}));

    a->SetScale(2.0f);
    c->SetScale(0.25f);
    // c's (2, 4) is a's (0.5, 1 + 3), is the page's (1 - 1, 8).
    const GLPoint onPage = c->LocalToPage({2.0f, 4.0f});
    EXPECT_FLOAT_EQ(onPage.x, 0.0f);
    EXPECT_FLOAT_EQ(onPage.y, 8.0f);
    EXPECT_FLOAT_EQ(c->PageToLocal(onPage).x, 2.0f);
    EXPECT_FLOAT_EQ(c->PageToLocal(onPage).y, 4.0f);
}

TEST_F(Tree, EachRoleHasOneHolder) {
    struct Role {
        void (GLView::*take)(bool);
        GLView* (GLView::*holder)();
    };
    for (const Role& role : {Role{&GLView::SetSelected, &GLView::GetSelectedView},
                             Role{&GLView::SetHover, &GLView::GetHoverView},
                             Role{&GLView::SetCaptured, &GLView::GetCapturedView}}) {
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
    b->SetCaptured(true);
    page->MouseUp({4.0f, 4.0f});  // over no view
    EXPECT_EQ(page->capturedView, nullptr);
}

TEST_F(Tree, ServicesReachThePageFromAnyDepth) {
    for (const auto query :
         {&GLView::GetPageWidth, &GLView::GetPageHeight, &GLView::GetInterfaceScale,
          &GLView::GetViewRight, &GLView::GetViewLeft, &GLView::GetViewTop, &GLView::GetViewBottom,
          &GLView::GetPixelSize}) {
        EXPECT_EQ((c->*query)(), (page.get()->*query)());
    }
    EXPECT_EQ(c->GetBackgroundColor(), page->backgroundColor);
    EXPECT_EQ(c->GetContrastColor(), page->contrastColor);
    page->modifiers = 2;
    page->eventTime = 99;
    EXPECT_EQ(c->GetModifiers(), 2u);
    EXPECT_EQ(c->GetEventTime(), 99u);
    page->flat = true;
    EXPECT_TRUE(c->IsFlat());
    EXPECT_FALSE(c->IsBoxy());
    c->ShowMessage("1", "2", "3", "4", "5");
    c->CloseDialog(false);
    EXPECT_THAT(page->messages, ElementsAre("1", "2", "3", "4", "5"));
    EXPECT_THAT(page->closings, ElementsAre(false));
}

TEST(View, WithoutAPageItSaysSoAndServicesAnswerNothing) {
    GLView alone;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(alone.Page(), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Page() called with no parent.  crash.\n");
    EXPECT_EQ(alone.GetParameter(1), 0.0f);
    alone.SetSelected(true);
    alone.ShowInfoAt({0.0f, 0.0f});
}

TEST(View, InfoTextsAreFormatsOfTheirOwnLengthAndCutAtTheirBuffers) {
    GLView view;
    const std::string text(1000, 'w');
    const std::string cut(255, 'w');
    using Case = std::pair<const char*, const char*>;
    for (const auto& [format, shown] :
         {Case{nullptr, ""}, Case{"100%% wet", "100% wet"}, Case{"%04zu!", "0006!"},
          Case{"%d then %d", "10 then %d"}, Case{"50% louder", "50% louder"},
          Case{"%s %n %f %", "%s %n %f %"}, Case{"%*d", "%*d"}, Case{"%999999d", "%999999d"},
          Case{"%.3ld", "005"}, Case{"%hhx", "4"}, Case{text.c_str(), cut.c_str()}}) {
        view.SetInfoText(format);
        EXPECT_STREQ(view.infoText, shown);
    }
    view.SetLabel(text.c_str());
    EXPECT_EQ(view.label, cut);
    view.SetLabel(view.label + 250);
    EXPECT_STREQ(view.label, "wwwww");
    view.SetLabel(nullptr);
    EXPECT_STREQ(view.label, "");
}

}  // namespace
}  // namespace brindle
