// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <memory>
#include <string>

namespace brindle {

class GLView_StripEqView;
class PuglWindow;

/// An open editor.
struct EditorInstance {
    EditorInstance(const char* uri, const char* path);
    /// Frees the tree with the GL context that its textures belong to, then that with its window.
    ~EditorInstance();
    EditorInstance(const EditorInstance&) = delete;
    EditorInstance& operator=(const EditorInstance&) = delete;

    std::unique_ptr<PuglWindow> puglView;          ///< null until the window is made
    std::unique_ptr<GLView_StripEqView> rootView;  ///< null until the tree is made
    void* reserved = nullptr;
    std::string pluginUri;
    std::string bundlePath;
    LV2UI_Write_Function writeFunction = nullptr;
    LV2UI_Controller controller = nullptr;
    LV2_URID_Map* map = nullptr;  ///< the host's features, null if it has none
    LV2UI_Touch* touch = nullptr;
};

/// Opens an editor in the features' parent window and stores its window in `widget`. Null, with a
/// line on standard error, if that fails; throws if the tree cannot be created. Nothing is left
/// behind in either case. UI thread, like all functions here.
EditorInstance* OpenEditor(const char* pluginUri, const char* bundlePath,
                           LV2UI_Write_Function writeFunction, LV2UI_Controller controller,
                           LV2UI_Widget* widget, const LV2_Feature* const* features);
/// Notifies the engine and frees everything the editor has made. The parent window may be gone.
void CloseEditor(EditorInstance* instance);
/// Dispatches window events and requests the next frame.
void IdleEditor(EditorInstance& instance);

}  // namespace brindle
