// SPDX-License-Identifier: ISC
#include "gl/GLView_Message.h"

namespace brindle {
namespace {

// Design points.
constexpr float kWidth = 640.0f;
constexpr float kHeight = 160.0f;
constexpr float kMargin = 20.0f;
constexpr float kLineStep = 26.0f;

}  // namespace

GLView_Message::GLView_Message(float pageScale) {
    SetSize(kWidth * pageScale, kHeight * pageScale);
    float above = 0.5f * kLineStep * static_cast<float>(kLineCount - 1);
    for (GLView_Caption*& line : lines_) {
        line = &Add<GLView_Caption>();
        line->SetLabelSize(11.0f);
        line->SetSize((kWidth - 2.0f * kMargin) * pageScale, kLineStep * pageScale);
        line->SetPosition(0.0f, above * pageScale);
        above -= kLineStep;
    }
}

void GLView_Message::SetLines(const std::array<const char*, kLineCount>& texts) {
    for (size_t i = 0; i < kLineCount; ++i) lines_[i]->SetLabel(texts[i]);
}

void GLView_Message::MouseDown(GLPoint /*point*/, GLPoint /*pagePoint*/) {
    CloseDialog(false);
}

void GLView_Message::Draw() {
    DimPage(0.6f);
    GLView_Dialog::Draw();
}

}  // namespace brindle
