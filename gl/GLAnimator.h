// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "gl/GLPoint.h"

namespace brindle {

/// A movement that runs by the clock. UI thread.
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

    /// Plays from the first segment on, starting now.
    virtual void Restart() = 0;
    /// Applies the movement to the current GL matrix. The progress of the current segment from 0
    /// to 1, or -1 when the path is finished.
    virtual float Apply() = 0;

    int64_t startTime = 0;  ///< milliseconds of the wall clock
    std::vector<Segment> segments;
};

/// Translates along its segments, each fast at first and slow at its end (a quarter sine).
/// Starts when it is made.
class GLAnimator_Translator : public GLAnimator {
  public:
    /// Where a path is at one moment.
    struct Step {
        float progress;  ///< eased, 0 to 1; -1 behind the path's end
        GLPoint position;
    };

    explicit GLAnimator_Translator(std::vector<Segment> path = {});
    void Restart() override;
    float Apply() override;

    /// The step that is due `seconds` after the start.
    Step At(float seconds) const;
};

/// Swings between 0 and 1 with a period in milliseconds of the process's own processor time, so it
/// slows down with an idle process. 0.5 where the period is not positive.
float Pulse(float period_ms);

}  // namespace brindle
