// SPDX-License-Identifier: ISC
/// The base versions of the page services, which ask the page.
#include "gl/GLView.h"

namespace brindle {
namespace {

/// Calls a page service of the page. Returns the fallback if there is no page or the view itself is
/// the page (whose class does not implement the service).
template <typename Result, typename... Parameters>
Result AskPage(GLView* view, Result fallback, Result (GLView::*service)(Parameters...),
               Parameters... arguments) {
    GLView* page = view->Page();
    return page != nullptr && page != view ? (page->*service)(arguments...) : fallback;
}

template <typename... Parameters>
void TellPage(GLView* view, void (GLView::*service)(Parameters...), Parameters... arguments) {
    GLView* page = view->Page();
    if (page != nullptr && page != view) (page->*service)(arguments...);
}

}  // namespace

void GLView::SendParameter(uint32_t index, float value) {
    TellPage(this, &GLView::SendParameter, index, value);
}

float GLView::GetParameter(uint32_t index) {
    return AskPage(this, 0.0f, &GLView::GetParameter, index);
}

bool GLView::IsResetPress() {
    return AskPage(this, false, &GLView::IsResetPress);
}

int32_t GLView::GetPressedButton() {
    return AskPage(this, int32_t{0}, &GLView::GetPressedButton);
}

GLView* GLView::GetSelectedView() {
    return AskPage<GLView*>(this, nullptr, &GLView::GetSelectedView);
}

GLView* GLView::GetHoverView() {
    return AskPage<GLView*>(this, nullptr, &GLView::GetHoverView);
}

GLView* GLView::GetCapturedView() {
    return AskPage<GLView*>(this, nullptr, &GLView::GetCapturedView);
}

uint32_t GLView::GetModifiers() {
    return AskPage(this, 0u, &GLView::GetModifiers);
}

uint32_t GLView::GetEventTime() {
    return AskPage(this, 0u, &GLView::GetEventTime);
}

GLResources* GLView::GetResources() {
    return AskPage<GLResources*>(this, nullptr, &GLView::GetResources);
}

float GLView::GetPageWidth() {
    return AskPage(this, 0.0f, &GLView::GetPageWidth);
}

float GLView::GetPageHeight() {
    return AskPage(this, 0.0f, &GLView::GetPageHeight);
}

float GLView::GetInterfaceScale() {
    return AskPage(this, 0.0f, &GLView::GetInterfaceScale);
}

float GLView::GetViewRight() {
    return AskPage(this, 0.0f, &GLView::GetViewRight);
}

float GLView::GetViewLeft() {
    return AskPage(this, 0.0f, &GLView::GetViewLeft);
}

float GLView::GetViewTop() {
    return AskPage(this, 0.0f, &GLView::GetViewTop);
}

float GLView::GetViewBottom() {
    return AskPage(this, 0.0f, &GLView::GetViewBottom);
}

float GLView::GetPixelSize() {
    return AskPage(this, 0.0f, &GLView::GetPixelSize);
}

GLColor GLView::GetBackgroundColor() {
    return AskPage(this, GLColor(), &GLView::GetBackgroundColor);
}

GLColor GLView::GetContrastColor() {
    return AskPage(this, GLColor(), &GLView::GetContrastColor);
}

bool GLView::IsBoxy() {
    return AskPage(this, false, &GLView::IsBoxy);
}

bool GLView::IsFlat() {
    return AskPage(this, false, &GLView::IsFlat);
}

void GLView::ShowMessage(const char* line1, const char* line2, const char* line3, const char* line4,
                         const char* line5) {
    TellPage(this, &GLView::ShowMessage, line1, line2, line3, line4, line5);
}

void GLView::ShowInfo(const char* title, const char* text) {
    TellPage(this, &GLView::ShowInfo, title, text);
}

void GLView::OpenDialog(GLView* dialog) {
    TellPage(this, &GLView::OpenDialog, dialog);
}

void GLView::CloseDialog(bool outside) {
    TellPage(this, &GLView::CloseDialog, outside);
}

void GLView::SetSelectedView(GLView* view) {
    TellPage(this, &GLView::SetSelectedView, view);
}

void GLView::SetHoverView(GLView* view) {
    TellPage(this, &GLView::SetHoverView, view);
}

void GLView::SetCapturedView(GLView* view) {
    TellPage(this, &GLView::SetCapturedView, view);
}

}  // namespace brindle
