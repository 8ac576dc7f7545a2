// SPDX-License-Identifier: ISC
// Compares the vector loop with the scalar one, on every target that this processor supports.
#include "graph/curves/response_kernel.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <limits>
#include <vector>

namespace brindle {
namespace {

constexpr size_t kMostLanes = 8;  // doubles in the widest vector of an x86 processor
constexpr float kSentinel = 12345.0f;

/// A low-pass of four factors and a bell: high powers, and a difference of nearly equal values.
std::vector<Response> Responses() {
    const double w0 = 6.283185307179586 * 1000.0;
    Response steep;
    for (const double c : {0.038, 0.309, 0.691, 0.962}) {
        steep.factors[steep.count++] = {{.constant = std::pow(w0, 4.0)},
                                        {1.0, w0 * w0, 4.0 * c * w0 * w0, 0.0}};
    }
    Response narrow{.count = 1, .factors = {}, .scale = 5.0, .offset_db = -3.0};
    narrow.factors[0] = {{1.0, w0 * w0, w0 * w0 * 1e-3, 0.0}, {1.0, w0 * w0, w0 * w0 * 1e-5, 0.0}};
    return {steep, narrow};
}

TEST(ResponseKernel, VectorsAgreeWithThePlainLoopOnEveryTarget) {
    for (int64_t targets = hwy::SupportedTargets(); targets != 0; targets &= targets - 1) {
        const int64_t target = targets & -targets;
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        for (const Response& response : Responses()) {
            for (size_t count = 0; count <= 2 * kMostLanes + 1; ++count) {
                for (size_t shift = 0; shift < 4; ++shift) {
                    std::vector<float> hz(count + shift);
                    for (size_t i = 0; i < hz.size(); ++i) {
                        hz[i] = 500.0f + 70.0f * static_cast<float>(i);
                    }
                    std::vector<float> plain(count + shift + 2, kSentinel);
                    for (size_t i = 0; i < count; ++i) {
                        plain[1 + shift + i] = static_cast<float>(i) - 4.0f;
                    }
                    std::vector<float> fast = plain;
                    AddResponseScalar(response, hz.data() + shift, plain.data() + 1 + shift, count);
                    AddResponse(response, hz.data() + shift, fast.data() + 1 + shift, count);
                    for (size_t i = 0; i < fast.size(); ++i) {
                        // One float step at the value's magnitude.
                        const float step =
                            std::abs(plain[i]) * std::numeric_limits<float>::epsilon();
                        ASSERT_NEAR(plain[i], fast[i], step) << count << " points, shift " << shift;
                    }
                    ASSERT_EQ(fast[shift], kSentinel);
                    ASSERT_EQ(fast.back(), kSentinel);
                }
            }
        }
        hwy::SetSupportedTargetsForTest(0);
    }
}

}  // namespace
}  // namespace brindle
