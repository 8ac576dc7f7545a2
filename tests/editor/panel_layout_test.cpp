// SPDX-License-Identifier: ISC
// The positions of the panel's parts.
#include <cmath>

#include "gl/GLView_DecoratorBox.h"
#include "gl/drawing.h"
#include "tests/editor/panel_fixture.h"

namespace brindle {
namespace {

bool Overlap(const GLRect& a, const GLRect& b) {
    return a.left < b.right && b.left < a.right && a.bottom < b.top && b.bottom < a.top;
}

bool Contains(const GLRect& outer, const GLRect& inner) {
    return outer.left <= inner.left && inner.right <= outer.right && outer.bottom <= inner.bottom &&
           inner.top <= outer.top;
}

TEST_F(Panel, NoTwoPartsOverlapAndHelpHasItsRoom) {
    struct Part {
        GLView* view;
        GLRect area;
    };
    std::vector<Part> parts;
    const float m = Root().GetPixelSize();
    const std::function<void(GLView&)> collect = [&](GLView& parent) {
        for (GLView* view = parent.firstChild; view != nullptr; view = view->nextSibling) {
            // Help is told between the presets and flat-all.
            EXPECT_LT(
                792.0f + 8.0f * (TextWidth(view->infoTitle) + 1.0f + TextWidth(view->infoText)),
                kFlatAll.x - 13.0f)
                << view->infoTitle;
            const GLPoint at = view->LocalToPage({0.0f, 0.0f});
            GLRect area = {at.x - view->hw, at.y - view->hh, at.x + view->hw, at.y + view->hh};
            if (view == &Graph()) {  // with its frame and keyboard
                area = {area.left - 32.0f * m, area.bottom - 112.0f * m, area.right + 32.0f * m,
                        area.top + 32.0f * m};
            }
            if (&parent != &Graph()) parts.push_back({view, area});  // handles move
            collect(*view);
        }
    };
    collect(Root());
    EXPECT_GT(parts.size(), 80u);
    const GLRect panel = {Root().GetViewLeft(), Root().GetViewBottom(), Root().GetViewRight(),
                          Root().GetViewTop()};
    for (const Part& part : parts) {
        EXPECT_TRUE(Contains(panel, part.area)) << part.view->infoTitle << part.view->label;
        for (const Part& other : parts) {
            const bool isAround = dynamic_cast<GLView_DecoratorBox*>(part.view) != nullptr &&
                                  Contains(part.area, other.area);
            EXPECT_TRUE(&part >= &other || isAround || !Overlap(part.area, other.area))
                << part.view->infoTitle << part.view->label << " and " << other.view->infoTitle
                << other.view->label;
        }
    }
    // The grid's lines are on whole pixels; otherwise some are thicker than others.
    for (int db = -18; db <= 18; db += 3) {
        const float place = (Graph().y + Graph().hh * static_cast<float>(db) / 18.0f) / m;
        EXPECT_NEAR(place, std::round(place), 0.01f) << db;
    }
}

}  // namespace
}  // namespace brindle
