// SPDX-License-Identifier: ISC
/// The editor's entry point for hosts: LV2's function tables, which call the editor's operations.
#include <lv2/ui/ui.h>

#include <cstring>

#include "contract/brindle.h"
#include "editor/GLView_StripEqView.h"
#include "editor/contain.h"
#include "editor/editor_instance.h"

namespace brindle {
namespace {

LV2UI_Handle Instantiate(const LV2UI_Descriptor*, const char* pluginUri, const char* bundlePath,
                         LV2UI_Write_Function writeFunction, LV2UI_Controller controller,
                         LV2UI_Widget* widget, const LV2_Feature* const* features) {
    EditorInstance* instance = nullptr;
    Contain([&] {
        instance = OpenEditor(pluginUri, bundlePath, writeFunction, controller, widget, features);
    });
    return instance;
}

// Hosts may call these functions with a null handle if the editor has refused to open.

void Cleanup(LV2UI_Handle handle) {
    if (handle == nullptr) return;
    Contain([&] { CloseEditor(static_cast<EditorInstance*>(handle)); });
}

void PortEvent(LV2UI_Handle handle, uint32_t port, uint32_t size, uint32_t format,
               const void* buffer) {
    auto* instance = static_cast<EditorInstance*>(handle);
    // The tree is null if a host reports a value at once for a write of the tree's destructor.
    if (instance == nullptr || instance->rootView == nullptr) return;
    Contain([&] { instance->rootView->PortEvent(port, size, format, buffer); });
}

int Idle(LV2UI_Handle handle) {
    if (handle == nullptr) return 0;
    Contain([&] { IdleEditor(*static_cast<EditorInstance*>(handle)); });
    return 0;
}

constexpr LV2UI_Idle_Interface kIdleInterface = {Idle};

const void* ExtensionData(const char* uri) {
    return uri != nullptr && std::strcmp(uri, LV2_UI__idleInterface) == 0 ? &kIdleInterface
                                                                          : nullptr;
}

constexpr LV2UI_Descriptor kDescriptor = {kEditorUri, Instantiate, Cleanup, PortEvent,
                                          ExtensionData};

}  // namespace
}  // namespace brindle

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index) {
    return index == 0 ? &brindle::kDescriptor : nullptr;
}
