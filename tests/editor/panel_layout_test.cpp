// SPDX-License-Identifier: ISC
// The positions of the panel's parts: separate from each other, inside the panel, and wide enough
// for their content.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "editor/GLView_StripEqView.h"
#include "editor/editor_instance.h"
#include "gl/GLView_Caption.h"
#include "gl/GLView_DecoratorBox.h"
#include "gl/GLView_Knob.h"
#include "gl/GLView_PresetButton.h"
#include "gl/drawing.h"
#include "graph/GLView_ParametricEQ.h"
#include "graph/GLView_TypeSelector.h"
#include "tests/support/ui_host.h"

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index);

namespace brindle {
namespace {

/// The area that a view covers, in page units.
struct Piece {
    std::string name;
    float left, right, bottom, top;
    bool holdsOthers;

    bool Overlaps(const Piece& other) const {
        return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
    }
    bool Contains(const Piece& other) const {
        return left <= other.left && other.right <= right && bottom <= other.bottom &&
               other.top <= top;
    }
};

struct PanelLayout : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(host.Open());
        root = static_cast<EditorInstance*>(host.handle)->rootView.get();
        s = root->GetInterfaceScale();
        Collect(*root);
    }

    /// Collects all views below `parent`, with their areas, except those on the graph: they move.
    void Collect(GLView& parent) {
        for (GLView* view = parent.firstChild; view != nullptr; view = view->nextSibling) {
            views.push_back(view);
            AddPiece(*view);
            if (dynamic_cast<GLView_ParametricEQ*>(view) == nullptr) Collect(*view);
        }
    }
    void AddPiece(GLView& view) {
        const GLPoint at = view.LocalToPage({0.0f, 0.0f});
        std::string name = std::string(view.infoTitle) + "/" + view.label;
        Piece piece = {name, at.x - view.hw, at.x + view.hw, at.y - view.hh, at.y + view.hh, false};
        if (dynamic_cast<GLView_ParametricEQ*>(&view) != nullptr) {
            // The frame around it and its keyboard.
            const float m = root->GetPixelSize();
            piece.left -= 32.0f * m;
            piece.right += 32.0f * m;
            piece.top += 32.0f * m;
            piece.bottom -= 112.0f * m;
        }
        piece.holdsOthers = dynamic_cast<GLView_DecoratorBox*>(&view) != nullptr;
        if (dynamic_cast<GLView_DB60Meter*>(&view) != nullptr) {
            piece.bottom -= 6.0f * s;
            piece.top += 6.0f * s;
        }
        pieces.push_back(piece);
        if (dynamic_cast<GLView_Knob*>(&view) != nullptr && view.hh < 12.0f * s) {
            const float hw = Width(view.label, view.labelSize) / 2.0f;
            const float y = piece.bottom - 7.0f * s;
            const float hh = 0.6f * view.labelSize * s;
            pieces.push_back({name + " below", at.x - hw, at.x + hw, y - hh, y + hh, false});
        }
    }
    float Width(const char* text, float size) const { return TextWidth(text) * size * s; }

    test::UiHost host{lv2ui_descriptor(0)};
    GLView_StripEqView* root = nullptr;
    float s = 0.0f;
    std::vector<GLView*> views;
    std::vector<Piece> pieces;
};

// Otherwise some of the grid's lines are thicker than others.
TEST_F(PanelLayout, TheGridsLinesStandOnWholePixels) {
    const GLView& graph = *root->firstChild->nextSibling;
    const float pixel = root->GetPixelSize();
    for (int db = -18; db <= 18; db += 3) {
        const float place = (graph.y + graph.hh * static_cast<float>(db) / 18.0f) / pixel;
        EXPECT_NEAR(place, std::round(place), 0.01f) << db;
    }
}

TEST_F(PanelLayout, NoTwoPiecesOverlap) {
    const Piece panel = {"panel",
                         root->GetViewLeft(),
                         root->GetViewRight(),
                         root->GetViewBottom(),
                         root->GetViewTop(),
                         true};
    EXPECT_GT(pieces.size(), 90u);
    for (size_t i = 0; i < pieces.size(); ++i) {
        EXPECT_TRUE(panel.Contains(pieces[i])) << pieces[i].name;
        for (size_t k = i + 1; k < pieces.size(); ++k) {
            const bool inside = pieces[i].holdsOthers && pieces[i].Contains(pieces[k]);
            EXPECT_TRUE(inside || !pieces[i].Overlaps(pieces[k]))
                << pieces[i].name << " and " << pieces[k].name;
        }
    }
}

TEST_F(PanelLayout, TextsAreNarrowerThanWhatTheyStandOn) {
    const auto expect_room = [&](const char* text, float size, float room) {
        EXPECT_LT(Width(text, size), room) << text;
    };
    for (GLView* view : views) {
        const float width = 2.0f * view->hw;
        if (auto* button = dynamic_cast<GLView_PresetButton*>(view)) {
            expect_room(button->label[0] != '\0' ? button->label : button->name, button->labelSize,
                        width - 4.0f * s);
        } else if (auto* selector = dynamic_cast<GLView_TypeSelector*>(view)) {
            for (const TypeRow& type : strip_types(selector->strip)) {
                expect_room(type.short_name, selector->labelSize, width - 10.0f * s);
            }
            for (GLView* entry = selector->menu.firstChild; entry != nullptr;
                 entry = entry->nextSibling) {
                expect_room(entry->label, entry->labelSize, 2.0f * entry->hw - 17.0f * s);
            }
        } else if (auto* knob = dynamic_cast<GLView_Knob*>(view)) {
            const bool isTrim = knob->horizontal;
            expect_room(isTrim ? "Output Trim: -9.9dB" : "15.0kHz", knob->textSize,
                        width - 2.0f * s);
        } else if (dynamic_cast<GLView_Caption*>(view) != nullptr) {
            expect_room(view->label, view->labelSize, width);
        }
    }
}

TEST_F(PanelLayout, EachHelpTextEndsBeforeFlatAll) {
    const GLView& flatAll = *root->firstChild;
    GLView* graph = flatAll.nextSibling;
    for (GLView* handle = graph->firstChild; handle != nullptr; handle = handle->nextSibling) {
        views.push_back(handle);
    }
    const float begin = root->GetViewLeft() + 792.0f * s;
    for (GLView* view : views) {
        const float gap = 8.0f * s;
        EXPECT_LT(begin + Width(view->infoTitle, 8.0f) + gap + Width(view->infoText, 8.0f),
                  flatAll.x - flatAll.hw)
            << view->infoTitle;
    }
}

}  // namespace
}  // namespace brindle
