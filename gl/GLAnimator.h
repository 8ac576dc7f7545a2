// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "gl/GLPoint.h"

namespace brindle {

/// A movement timed by the wall clock. UI thread.
class GLAnimator {
  public:
    /// One straight move; `duration` is in seconds.
    struct Segment {
        float duration;
        GLPoint from;
        GLPoint to;
    };

    explicit GLAnimator(std::vector<Segment> path = {}) : segments(std::move(path)) {}
    GLAnimator(const GLAnimator&) = delete;
    GLAnimator& operator=(const GLAnimator&) = delete;
    virtual ~GLAnimator() = default;

    /// Restarts the movement at its first segment, now.
    virtual void Restart() = 0;
    /// Applies the movement to the current GL matrix. Returns the current segment's progress from 0
    /// to 1, or -1 when the path is finished.
    virtual float Apply() = 0;

    int64_t startTime = 0;  ///< milliseconds of the wall clock
    std::vector<Segment> segments;
};

/// Translates along its segments. Each segment starts fast and slows down (a quarter sine). The
/// movement starts at construction.
class GLAnimator_Translator : public GLAnimator {
  public:
    /// A position on a path.
    struct Step {
        float progress;  ///< eased, 0 to 1; -1 after the path's end
        GLPoint position;
    };

    explicit GLAnimator_Translator(std::vector<Segment> path = {});
    void Restart() override;
    float Apply() override;

    /// The step at `seconds` after the start.
    Step At(float seconds) const;
};

/// Oscillates between 0 and 1. The period is in milliseconds of the process's processor time, so
/// the oscillation slows down when the process is idle. 0.5 if the period is not positive.
float Pulse(float period_ms);

}  // namespace brindle
