// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "gl/GLColor.h"
#include "gl/GLPoint.h"
#include "gl/GLRect.h"

namespace brindle {

class GLResources;

/// What a frame is made of, from below: what stands still, values on top, and what moves by itself.
/// The back pass draws the first, the main pass the second, the front pass the last.
enum class Layer { Back, Main, Front };

/// A node of the editor's tree of views: draws itself in three passes and gets the mouse events
/// that are routed down the tree. The root, called the page, answers the page services: operations
/// whose base version asks the same of `Page()`, and which answer 0, null, false, or nothing where
/// there is no page or the page does not know them.
///
/// A view's rectangle is centred on (x, y) in its parent's coordinates; sizes are half extents.
/// Events come with points in the parent's coordinates, drawing happens around the view's own
/// origin. Hit tests ask the child that was added first, painting leaves the last on top.
///
/// UI thread; drawing needs a current GL context.
class GLView {
  public:
    GLView() = default;
    GLView(const GLView&) = delete;
    GLView& operator=(const GLView&) = delete;
    /// Destroys all children. Who destroys a view of a living tree removes it from its parent and
    /// takes its roles away (`ReleaseAll`) before that.
    virtual ~GLView();

    // Geometry
    virtual void SetPosition(float newX, float newY);
    virtual void SetPosition(GLPoint position);
    virtual void SetScale(float newScale);
    virtual void SetWidth(float width);
    virtual void SetHeight(float height);
    virtual void SetSize(float width, float height);
    virtual void SetSize(GLPoint size);
    virtual GLPoint GetPosition();

    // The tree
    /// The tree's root. Null, and a line on standard output, where a view without parent is none.
    virtual GLView* Page();
    /// Appends a child and owns it from now on. Null, and what is a child already, are ignored.
    virtual void AddChild(GLView* child);
    /// Unlinks a child, which its caller owns from now on; it still names its former parent.
    /// Nothing happens where it is no child.
    virtual void RemoveChild(GLView* child);
    virtual void DeleteChildren();
    virtual int32_t CountChildren();

    // Control ports
    /// Page service: writes a control port of the plugin.
    virtual void SendParameter(uint32_t index, float value);
    /// A control port has a new value: tells every child.
    virtual void ParameterChanged(uint32_t index);
    /// Page service: a control port's last known value, 0 where it has none.
    virtual float GetParameter(uint32_t index);

    /// Puts away what pops up, in all children.
    virtual void Close();

    // Drawing
    virtual void PreDraw() {}   ///< before each frame, on the page
    virtual void PrePress() {}  ///< before each press is routed, on the page
    /// The three passes, each over the whole tree before the next: apply the view's translation
    /// and scale, then let the children draw. The caller saves the matrix.
    virtual void DrawBack();
    virtual void Draw();
    virtual void DrawFront();
    virtual void DrawChildrenBack();
    virtual void DrawChildren();
    virtual void DrawChildrenFront();

    // Coordinates
    virtual GLPoint LocalToPage(GLPoint point);
    virtual GLPoint PageToLocal(GLPoint point);

    // Events; points are in the parent's coordinates, page points in window pixels
    /// True where a child is hit, or, for a visible view, inside its rectangle without the border.
    virtual bool HitTest(GLPoint point);
    /// Selects the innermost view at a point and shows its two help texts on the page.
    virtual void ShowInfoAt(GLPoint point);
    virtual void MouseDown(GLPoint point, GLPoint pagePoint);
    virtual void MouseUp(GLPoint point);
    virtual void MouseDragTo(GLPoint pagePoint);
    virtual void Scroll(float delta);
    virtual void DoubleClick(GLPoint point);
    virtual bool IsResetPress();         ///< page service: this press is a double click
    virtual int32_t GetPressedButton();  ///< page service: button held, 0 for none

    // Texts
    /// Keeps a copy; null for none.
    virtual void SetName(const char* newName);
    /// Help texts, at most 255 characters. The text is a format: "%%" stands for a percent sign and
    /// the first integer conversion shows the text's own length; what else it holds stays as is.
    virtual void SetInfoTitle(const char* text);
    virtual void SetInfoText(const char* text);
    /// Keeps at most 255 characters.
    virtual void SetLabel(const char* text);

    // Roles: the page knows at most one selected, one hovered and one captured view
    /// Takes all three roles from whoever has them.
    virtual void ReleaseAll();
    /// Taking a role takes it from its holder; giving it up clears it whoever held it.
    virtual void SetHover(bool on);
    virtual void SetCaptured(bool on);
    virtual void SetSelected(bool on);
    /// Shows or hides this view and all below it; hiding gives up the selection.
    virtual void SetVisible(bool on);
    virtual GLView* GetSelectedView();
    virtual GLView* GetHoverView();
    virtual GLView* GetCapturedView();

    // Page services
    virtual uint32_t GetModifiers();      ///< 1 Shift, 2 Ctrl, 4 Alt, 8 Super
    virtual uint32_t GetEventTime();      ///< milliseconds
    virtual GLResources* GetResources();  ///< textures and glyphs; null before the first frame
    virtual float GetPageWidth();         ///< drawn frame, whole window pixels
    virtual float GetPageHeight();
    virtual float GetInterfaceScale();  ///< page units of one design point of text and panel
    virtual float GetViewRight();       ///< bounds of the page's coordinates
    virtual float GetViewLeft();
    virtual float GetViewTop();
    virtual float GetViewBottom();
    virtual float GetPixelSize();          ///< page units of one design pixel
    virtual GLColor GetBackgroundColor();  ///< the host's theme; white without a page
    virtual GLColor GetContrastColor();
    virtual bool IsBoxy();  ///< the host asks for square corners
    virtual bool IsFlat();  ///< the host asks for no shadows and gloss

    virtual void SetTextSize(float size);
    virtual void SetLabelSize(float size);
    virtual void SetColor(const GLColor& newColor);

    /// Page service: shows up to five lines until the user dismisses them.
    virtual void ShowMessage(const char* line1, const char* line2, const char* line3,
                             const char* line4, const char* line5);
    /// Page service: shows both help texts.
    virtual void ShowInfo(const char* title, const char* text);
    /// Page service: shows a view above all others, with the pointer to itself. The page observes.
    virtual void OpenDialog(GLView* dialog);
    /// Page service: puts the dialog away; `outside` is true for a press beside it.
    virtual void CloseDialog(bool outside);
    /// Page services: who holds each role, null for none. The page observes.
    virtual void SetSelectedView(GLView* view);
    virtual void SetHoverView(GLView* view);
    virtual void SetCapturedView(GLView* view);

    /// Converts a point in place: p = (p - (x, y)) / scale.
    virtual void ParentToLocal(GLPoint& point);
    /// Converts a point in place: p = p · scale + (x, y).
    virtual void LocalToParent(GLPoint& point);

    // What redrawing needs. A view whose picture changes by itself asks for it: when the value that
    // it shows is reported, when it is held, pointed at or enabled, or gets another look.
    /// Asks the page to draw this view anew in a layer and those above. Nothing happens without a
    /// page.
    void Redraw(Layer layer);
    /// Page service: has an area, in this view's local coordinates, drawn anew.
    virtual void RedrawArea(const GLRect& area, Layer layer);
    /// Page service: whether an area, in this view's local coordinates, is being drawn at present:
    /// always, but while a page draws a part of a layer anew.
    virtual bool IsDrawn(const GLRect& area);
    /// All that the back and main passes draw of this view and its children, in the parent's
    /// coordinates; what is drawn beyond stays behind when it changes. By default the rectangle
    /// with two design points around it for shadows and edges, and the children's areas.
    virtual GLRect DrawnArea();
    /// Whether this is a page, which takes `RedrawArea` and answers `IsDrawn`.
    virtual bool IsPage() const { return false; }
    /// Whether the tree's root is a page.
    bool IsOnPage() const;

    /// Makes a child of some class, which this view owns at once.
    template <typename View, typename... Arguments>
    View& Add(Arguments&&... arguments) {
        auto* child = new View(std::forward<Arguments>(arguments)...);
        AddChild(child);
        return *child;
    }
    /// The first child that a point in local coordinates hits, null for none.
    GLView* ChildAt(GLPoint local) const;
    /// Applies the view's place to the matrix, as every pass begins.
    void Enter() const;
    void SetEnabled(bool on);

    GLView* nextSibling = nullptr;  ///< owned by the parent
    GLView* firstChild = nullptr;   ///< owned, as are its siblings
    GLView* parent = nullptr;       ///< observed

    /// Room for the sample positions of a plotted curve, in Hz.
    std::array<float, 3072> curvePoints{};
    int32_t curvePointCount = 420;
    float curveLowHz = 20.0f;
    float curveHighHz = 20000.0f;

    float textSize = 7.0f;  ///< design points to a text unit
    float labelSize = 8.0f;
    GLColor color = kCream;
    bool enabled = true;
    bool redrawNeeded = false;  ///< on the page: all layers are out of date
    bool visible = true;
    char* name = nullptr;  ///< owned, from malloc
    char infoTitle[256] = {};
    char infoText[256] = {};
    char label[256] = {};
    float x = 0.0f;  ///< the centre, in the parent's coordinates
    float y = 0.0f;
    float scale = 1.0f;
    float hw = 1.0f;  ///< half width and height
    float hh = 1.0f;
    float hostRate = 32000.0f;  ///< Hz; set on the page by the editor

  private:
    /// Changes the look or the place, and has both the old and the new picture redrawn.
    template <typename Change>
    void ChangeLook(Change change) {
        Redraw(Layer::Back);
        change();
        Redraw(Layer::Back);
    }
    GLRect ToParent(const GLRect& area) const;
};

}  // namespace brindle
