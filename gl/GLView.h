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

/// The layers of a frame, bottom to top: static parts, values, and parts that move by themselves.
/// The back, main and front pass draw them in this order.
enum class Layer { Back, Main, Front };

/// The pointer's shape over a view: where it can be dragged to, or that it can be pressed.
enum class PointerShape { Arrow, UpDown, Sideways, FourWays, Hand };

/// A node of the editor's view tree. It is drawn in three passes and receives the mouse events that
/// are routed down the tree. The root, called the page, implements the page services: the base
/// version of each calls the same service of `Page()`, and returns 0, null or false, or does
/// nothing, if there is no page or the page does not implement the service.
///
/// A view's rectangle is centred on (x, y) in its parent's coordinates; sizes are half extents.
/// Events carry points in the parent's coordinates; drawing uses the view's own origin. Hit tests
/// ask the first child first; drawing leaves the last child on top.
///
/// UI thread; drawing needs a current GL context.
class GLView {
  public:
    GLView() = default;
    GLView(const GLView&) = delete;
    GLView& operator=(const GLView&) = delete;
    /// Destroys all children. Before a view of a living tree is destroyed, remove it from its
    /// parent and release its roles (`ReleaseAll`).
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
    /// The tree's root. Null, with a line on standard output, if the topmost view is not a page.
    virtual GLView* Page();
    /// Appends a child and takes ownership. Null, this view and existing children are ignored.
    virtual void AddChild(GLView* child);
    /// Unlinks a child and passes ownership to the caller; the child's `parent` stays set. Does
    /// nothing if the view is not a child.
    virtual void RemoveChild(GLView* child);
    virtual void DeleteChildren();
    virtual int32_t CountChildren();

    // Control ports
    /// Page service: writes a control port of the plugin.
    virtual void SendParameter(uint32_t index, float value);
    /// Tells every child that a control port's value was reported.
    virtual void ParameterChanged(uint32_t index);
    /// Page service: a control port's last known value, 0 if there is none.
    virtual float GetParameter(uint32_t index);

    /// Closes popups in all children.
    virtual void Close();

    // Drawing
    virtual void PreDraw() {}   ///< before it is decided whether a frame is due, on the page
    virtual void PrePress() {}  ///< before each press is routed, on the page
    /// The three passes. Each runs over the whole tree before the next one starts. A pass applies
    /// the view's translation and scale, then draws the children. The caller saves the matrix.
    virtual void DrawBack();
    virtual void Draw();
    virtual void DrawFront();
    virtual void DrawChildrenBack();
    virtual void DrawChildren();
    virtual void DrawChildrenFront();

    // Coordinates
    virtual GLPoint LocalToPage(GLPoint point);
    virtual GLPoint PageToLocal(GLPoint point);

    // Events; points are in the parent's coordinates, page points in pixels of the frame
    /// True if a child is hit, or if a visible view's rectangle contains the point (edges
    /// excluded).
    virtual bool HitTest(GLPoint point);
    /// Selects the innermost view at a point and shows its two help texts on the page.
    virtual void ShowInfoAt(GLPoint point);
    virtual void MouseDown(GLPoint point, GLPoint pagePoint);
    virtual void MouseUp(GLPoint point);
    virtual void MouseDragTo(GLPoint pagePoint);
    virtual void Scroll(float delta);
    virtual void DoubleClick(GLPoint point);
    virtual bool IsResetPress();         ///< page service: this press is a double click
    virtual int32_t GetPressedButton();  ///< page service: held button, 0 for none

    // Texts
    /// Keeps a copy; null clears the name.
    virtual void SetName(const char* newName);
    /// Help texts, at most 255 characters. The text is a format: "%%" gives a percent sign, the
    /// first integer conversion gives the text's own length; everything else is kept as it is.
    virtual void SetInfoTitle(const char* text);
    virtual void SetInfoText(const char* text);
    /// Keeps at most 255 characters.
    virtual void SetLabel(const char* text);

    // Roles: the page knows at most one selected, one hovered and one captured view
    /// Makes the holder of each role give it up, whichever view that is.
    virtual void ReleaseAll();
    /// Taking a role makes its holder give it up; giving up a role clears it, whoever holds it.
    virtual void SetHover(bool on);
    virtual void SetCaptured(bool on);
    virtual void SetSelected(bool on);
    /// Shows or hides this view and its descendants; a hidden view gives up the selection.
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
    virtual bool IsFlat();  ///< the host asks for no shadows or gloss

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
    /// Page service: closes the dialog; `outside` is true for a press outside the dialog.
    virtual void CloseDialog(bool outside);
    /// Page services: set the holder of each role, null for none. The page observes it.
    virtual void SetSelectedView(GLView* view);
    virtual void SetHoverView(GLView* view);
    virtual void SetCapturedView(GLView* view);

    /// Converts a point in place: p = (p - (x, y)) / scale.
    virtual void ParentToLocal(GLPoint& point);
    /// Converts a point in place: p = p · scale + (x, y).
    virtual void LocalToParent(GLPoint& point);

    // Redrawing. A view asks for it when its picture changes: when its value is reported, when it
    // is held or enabled, or when its look changes. A part that moves by itself asks for the next
    // frame while it is drawn. The page itself sees which view is selected, and its help texts.
    /// Asks the page to redraw this view in a layer and all layers above. Does nothing without a
    /// page.
    void Redraw(Layer layer);
    /// Page service: requests a redraw of an area in this view's local coordinates.
    virtual void RedrawArea(const GLRect& area, Layer layer);
    /// Page service: whether an area in this view's local coordinates is being drawn. Always true,
    /// except while a page redraws a part of a layer.
    virtual bool IsDrawn(const GLRect& area);
    /// The area that the back and main passes draw, children included, in the parent's coordinates.
    /// A redraw does not clear pixels outside it. Default: the rectangle plus two design points for
    /// shadows and edges, joined with the children's areas.
    virtual GLRect DrawnArea();
    /// Whether this is a page, which implements `RedrawArea` and `IsDrawn`.
    virtual bool IsPage() const { return false; }
    /// Whether the tree's root is a page.
    bool IsOnPage() const;

    /// Constructs a child of class `View`, owned by this view.
    template <typename View, typename... Arguments>
    View& Add(Arguments&&... arguments) {
        auto* child = new View(std::forward<Arguments>(arguments)...);
        AddChild(child);
        return *child;
    }
    /// The first child that a point in local coordinates hits, or null.
    GLView* ChildAt(GLPoint local) const;
    /// The child that is drawn above the others, or null for the last one.
    virtual GLView* TopChild() { return nullptr; }
    /// Applies the view's position and scale to the matrix. Most passes start with it.
    void Enter() const;
    void SetEnabled(bool on);

    GLView* nextSibling = nullptr;  ///< owned by the parent
    GLView* firstChild = nullptr;   ///< owned, like its siblings
    GLView* parent = nullptr;       ///< observed

    /// Space for the sample positions of a plotted curve, in Hz.
    std::array<float, 3072> curvePoints{};
    int32_t curvePointCount = 420;
    float curveLowHz = 20.0f;
    float curveHighHz = 20000.0f;

    float textSize = 7.0f;  ///< design points per text unit
    float labelSize = 8.0f;
    GLColor color = kCream;
    PointerShape pointerShape = PointerShape::Arrow;
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
    /// Changes look or position, and redraws the area before and after the change.
    template <typename Change>
    void ChangeLook(Change change) {
        Redraw(Layer::Back);
        change();
        Redraw(Layer::Back);
    }
    GLRect ToParent(const GLRect& area) const;
};

}  // namespace brindle
