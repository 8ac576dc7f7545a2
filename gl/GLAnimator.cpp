// SPDX-License-Identifier: ISC
#include "gl/GLAnimator.h"

#include <sys/time.h>

#include <cmath>
#include <ctime>
#include <numbers>

#include "gl/gl.h"

namespace brindle {
namespace {

int64_t NowMs() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_usec / 1000;
}

}  // namespace

GLAnimator_Translator::GLAnimator_Translator(std::vector<Segment> path)
    : GLAnimator(std::move(path)) {
    startTime = NowMs();
}

void GLAnimator_Translator::Restart() {
    startTime = NowMs();
}

GLAnimator_Translator::Step GLAnimator_Translator::At(float seconds) const {
    for (const Segment& segment : segments) {
        if (seconds >= segment.duration) {
            seconds -= segment.duration;
            continue;
        }
        const float f = std::sin(seconds / segment.duration * std::numbers::pi_v<float> * 0.5f);
        return {f,
                {segment.from.x + (segment.to.x - segment.from.x) * f,
                 segment.from.y + (segment.to.y - segment.from.y) * f}};
    }
    return {-1.0f, {0.0f, 0.0f}};
}

float GLAnimator_Translator::Apply() {
    const Step step = At(static_cast<float>(NowMs() - startTime) / 1000.0f);
    glTranslatef(step.position.x, step.position.y, 0.0f);
    return step.progress;
}

float Pulse(float period_ms) {
    if (!(period_ms > 0.0f)) return 0.5f;
    const double t_ms = std::floor(static_cast<double>(std::clock()) / 1e6 * 1000.0);
    const double phase = std::fmod(t_ms, static_cast<double>(period_ms)) / period_ms;
    return static_cast<float>((std::sin(2.0 * std::numbers::pi * phase) + 1.0) * 0.5);
}

}  // namespace brindle
