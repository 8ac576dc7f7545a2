// SPDX-License-Identifier: ISC
/// A root view for tests of views: its fields answer the page services, and it records the calls of
/// the views under test.
#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "gl/GLView.h"

namespace brindle {

class FakePage : public GLView {
  public:
    /// The children may still call page services while they are destroyed.
    ~FakePage() override { FakePage::DeleteChildren(); }

    GLView* Page() override { return this; }

    void SendParameter(uint32_t index, float value) override { sent.emplace_back(index, value); }
    float GetParameter(uint32_t index) override {
        return index < parameters.size() ? parameters[index] : 0.0f;
    }
    /// What the editor does when the host reports a value: stores it and tells the tree.
    void Report(uint32_t index, float value) {
        if (index < parameters.size()) parameters[index] = value;
        ParameterChanged(index);
    }

    bool IsResetPress() override { return resetPress; }
    uint32_t GetModifiers() override { return modifiers; }
    uint32_t GetEventTime() override { return eventTime; }
    GLResources* GetResources() override { return resources; }
    float GetPageWidth() override { return pageWidth; }
    float GetPageHeight() override { return pageHeight; }
    float GetInterfaceScale() override { return interfaceScale; }
    float GetViewRight() override { return viewRight; }
    float GetViewLeft() override { return -viewRight; }
    float GetViewTop() override { return viewTop; }
    float GetViewBottom() override { return -viewTop; }
    float GetPixelSize() override { return pixelSize; }
    GLColor GetBackgroundColor() override { return backgroundColor; }
    GLColor GetContrastColor() override { return contrastColor; }
    bool IsBoxy() override { return boxy; }
    bool IsFlat() override { return flat; }

    GLView* GetSelectedView() override { return selectedView; }
    GLView* GetHoverView() override { return hoverView; }
    GLView* GetCapturedView() override { return capturedView; }
    void SetSelectedView(GLView* view) override { selectedView = view; }
    void SetHoverView(GLView* view) override { hoverView = view; }
    void SetCapturedView(GLView* view) override {
        capturedView = view;
        redrawNeeded = true;
    }

    void ShowMessage(const char* line1, const char* line2, const char* line3, const char* line4,
                     const char* line5) override {
        for (const char* line : {line1, line2, line3, line4, line5}) {
            messages.emplace_back(line != nullptr ? line : "");
        }
    }
    void OpenDialog(GLView* view) override {
        dialog = view;
        if (view != nullptr) {
            view->parent = this;
            view->SetVisible(true);
        }
    }
    void CloseDialog(bool outside) override {
        closings.push_back(outside);
        if (dialog != nullptr) std::exchange(dialog, nullptr)->SetVisible(false);
    }

    // What the services return.
    std::array<float, 128> parameters{};
    bool resetPress = false;
    uint32_t modifiers = 0;
    uint32_t eventTime = 0;
    GLResources* resources = nullptr;
    float pageWidth = 1000.0f;
    float pageHeight = 600.0f;
    float interfaceScale = 2.0f / 800.0f;
    float viewRight = 5.0f / 3.0f;
    float viewTop = 1.0f;
    float pixelSize = 2.0f / 600.0f;
    GLColor backgroundColor = kCream;
    GLColor contrastColor = kAmber;
    bool boxy = false;
    bool flat = false;
    GLView* selectedView = nullptr;
    GLView* hoverView = nullptr;
    GLView* capturedView = nullptr;
    GLView* dialog = nullptr;

    // What the views asked for, in order.
    std::vector<std::pair<uint32_t, float>> sent;
    std::vector<std::string> messages;
    std::vector<bool> closings;
};

}  // namespace brindle
