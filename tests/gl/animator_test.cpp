// SPDX-License-Identifier: ISC
#include "gl/GLAnimator.h"

#include <gtest/gtest.h>

#include <ctime>

namespace brindle {
namespace {

TEST(Animator, EasesAlongEachSegmentInTurn) {
    const GLAnimator_Translator slide({{0.25f, {0.0f, -10.0f}, {0.0f, 0.0f}},
                                       {0.0f, {9.0f, 9.0f}, {9.0f, 9.0f}},
                                       {1.0f, {2.0f, 0.0f}, {4.0f, 0.0f}}});
    EXPECT_NEAR(slide.At(0.125f).progress, 0.7071f, 1e-4f);
    EXPECT_NEAR(slide.At(0.125f).position.y, -2.929f, 1e-3f);
    EXPECT_FLOAT_EQ(slide.At(0.25f).position.x, 2.0f);  // the second segment takes no time
    EXPECT_NEAR(slide.At(0.25f + 1.0f / 3.0f).progress, 0.5f, 1e-4f);
    EXPECT_NEAR(slide.At(0.25f + 1.0f / 3.0f).position.x, 3.0f, 1e-3f);
    EXPECT_EQ(slide.At(1.25f).progress, -1.0f);
    EXPECT_EQ(slide.At(1.25f).position.x, 0.0f);
    EXPECT_EQ(GLAnimator_Translator().At(0.0f).progress, -1.0f);
}

TEST(Animator, PulseFollowsTheProcessorTime) {
    // Use enough time to make the rounding to milliseconds negligible.
    while (std::clock() < CLOCKS_PER_SEC / 5) {
    }
    const auto used_ms = 1000.0f * static_cast<float>(std::clock()) / CLOCKS_PER_SEC;
    EXPECT_NEAR(Pulse(used_ms * 4.0f), 1.0f, 0.02f);         // a quarter of the period is over
    EXPECT_NEAR(Pulse(used_ms * 4.0f / 3.0f), 0.0f, 0.02f);  // three quarters
    EXPECT_NEAR(Pulse(used_ms * 2.0f / 3.0f), 0.5f, 0.1f);   // one and a half
    EXPECT_EQ(Pulse(0.0f), 0.5f);
}

}  // namespace
}  // namespace brindle
