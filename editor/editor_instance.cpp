// SPDX-License-Identifier: ISC
#include "editor/editor_instance.h"

#include <lv2/options/options.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <memory>

#include "contract/brindle.h"
#include "editor/GLView_StripEqView.h"
#include "editor/host_context.h"
#include "editor/host_options.h"
#include "editor/pugl_window.h"
#include "gl/settings.h"

namespace brindle {
namespace {

/// Host features that are only used while the editor is opened.
struct HostFeatures {
    void* parent = nullptr;
    const LV2UI_Resize* resize = nullptr;
    const LV2_Options_Option* options = nullptr;
};

HostFeatures ReadFeatures(EditorInstance& instance, const LV2_Feature* const* features) {
    HostFeatures host;
    for (; features != nullptr && *features != nullptr; ++features) {
        const char* uri = (*features)->URI;
        void* data = (*features)->data;
        if (uri == nullptr) continue;
        if (std::strcmp(uri, LV2_UI__parent) == 0) {
            host.parent = data;
        } else if (std::strcmp(uri, LV2_UI__resize) == 0) {
            host.resize = static_cast<const LV2UI_Resize*>(data);
        } else if (std::strcmp(uri, LV2_URID__map) == 0) {
            instance.map = static_cast<LV2_URID_Map*>(data);
        } else if (std::strcmp(uri, LV2_UI__touch) == 0) {
            instance.touch = static_cast<LV2UI_Touch*>(data);
        } else if (std::strcmp(uri, LV2_OPTIONS__options) == 0) {
            host.options = static_cast<const LV2_Options_Option*>(data);
        }
    }
    // A host's object without its function is of no use.
    if (instance.map != nullptr && instance.map->map == nullptr) instance.map = nullptr;
    if (instance.touch != nullptr && instance.touch->touch == nullptr) instance.touch = nullptr;
    return host;
}

void ApplyLooks(const HostOptions& options) {
    ApplyHostColor(hostBackgroundColor, options.backgroundColor);
    ApplyHostColor(hostContrastColor, options.contrastColor);
    themeBoxy = options.boxy;
    themeFlat = options.flat;
}

EditorInstance* Fail(const char* message) {
    std::fputs(message, stderr);
    return nullptr;
}

}  // namespace

EditorInstance::EditorInstance(const char* uri, const char* path)
    : pluginUri(uri != nullptr ? uri : ""), bundlePath(path != nullptr ? path : "") {}

EditorInstance::~EditorInstance() {
    const HostContext hostContext;
    if (puglView != nullptr) puglView->MakeCurrent();
    rootView.reset();
    puglView.reset();
}

EditorInstance* OpenEditor(const char* pluginUri, const char* bundlePath,
                           LV2UI_Write_Function writeFunction, LV2UI_Controller controller,
                           LV2UI_Widget* widget, const LV2_Feature* const* features) {
    auto instance = std::make_unique<EditorInstance>(pluginUri, bundlePath);
    resourceDirectory = instance->bundlePath;
    instance->writeFunction = writeFunction;
    instance->controller = controller;
    const HostFeatures host = ReadFeatures(*instance, features);
    HostOptions options;
    if (host.options != nullptr && instance->map != nullptr) {
        options = ReadHostOptions(host.options, instance->map);
    }
    if (instance->touch == nullptr) {
        return Fail("error: Required touch interface extension is not available.\n");
    }
    instance->puglView = PuglWindow::Create(reinterpret_cast<uintptr_t>(host.parent), kProductName,
                                            kEditorWidthPx, kEditorHeightPx);
    if (instance->puglView == nullptr) return Fail("error: No window with OpenGL can be opened.\n");
    ApplyLooks(options);
    instance->rootView = std::make_unique<GLView_StripEqView>(HostWriter{writeFunction, controller},
                                                              instance->map, instance->touch);
    instance->rootView->SetSampleRate(options.sampleRate);
    if (host.resize != nullptr && host.resize->ui_resize != nullptr) {
        host.resize->ui_resize(host.resize->handle, kEditorWidthPx, kEditorHeightPx);
    }
    if (host.parent == nullptr) return Fail("error: No parent window provided.\n");
    if (widget != nullptr) {
        *widget = std::bit_cast<LV2UI_Widget>(instance->puglView->GetNativeWindow());
    }
    instance->puglView->SetRoot(*instance->rootView);
    instance->rootView->EditorOpened();
    return instance.release();
}

void CloseEditor(EditorInstance* instance) {
    const std::unique_ptr<EditorInstance> owned(instance);
    owned->rootView->EditorClosed();
}

void IdleEditor(EditorInstance& instance) {
    if (instance.rootView == nullptr) return;
    instance.rootView->AssumeUnreportedWrites();
    instance.puglView->ProcessEvents();
    instance.puglView->PostRedisplay();
}

}  // namespace brindle
