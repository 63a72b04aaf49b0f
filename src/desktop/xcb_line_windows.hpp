// Line windows as raw X windows. The server paints them: a solid background
// pixel, or an 8x8 cross-hatch tile for a dotted line. They are
// override-redirect (no window manager frame, above the others), have an
// empty input shape so that clicks fall through to the window beneath, and
// carry their alpha in _NET_WM_WINDOW_OPACITY for the compositor. Nothing
// makes an X window topmost for good, so the lines are raised again each
// time an ordinary (managed) window is mapped or restacked above them.
// The alpha only shows where a compositing manager runs; where none owns
// _NET_WM_CM_S<screen>, alpha 0 unmaps a layered window and any other alpha
// maps it again, so that a flash still blinks.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/line_windows.hpp"

struct xcb_connection_t;

namespace ostrivane::desktop {

class XcbLineWindows final : public LineWindows {
public:
    // The X connection of the running Qt application, on its default screen.
    XcbLineWindows();
    // Any connection (not taken over), on the given screen.
    XcbLineWindows(xcb_connection_t* connection, int screenNumber);
    ~XcbLineWindows() override;
    XcbLineWindows(const XcbLineWindows&) = delete;
    XcbLineWindows& operator=(const XcbLineWindows&) = delete;

    void RegisterClass(const std::string& className, std::int32_t colour, std::int32_t dotted) override;
    void UnregisterClass(const std::string& className) override;
    // A window of width or height 0 or less is made, but kept unmapped until
    // a move gives it a size: X has no empty windows, and a 0 handle would
    // leave the marker's other window without an owner in the table.
    WindowHandle CreateLineWindow(const std::string& className, const PixelRect& rect, LineStyle style) override;
    void SetAlpha(WindowHandle window, std::uint8_t alpha) override;
    void MoveWindow(WindowHandle window, const PixelRect& rect) override;
    void PaintWithClass(WindowHandle window, const std::string& className) override;
    void DestroyWindow(WindowHandle window) override;

    // False when there is no X connection (not running on X11): every call
    // then does nothing and no window is made.
    bool Connected() const { return conn_ != nullptr; }

private:
    class StackWatcher;

    struct LineClass {
        std::int32_t colour = 0;
        std::int32_t dotted = 0;
        std::uint32_t pixel = 0;
        std::uint32_t tile = 0;  // the hatch pixmap of a dotted class, else 0
    };
    struct LineWindow {
        PixelRect rect;
        bool mapped = false;
        bool layered = true;
        bool transparent = false;  // alpha 0
    };

    void Init(int screenNumber);
    std::uint32_t PixelOf(std::int32_t colour);
    std::uint32_t MakeHatchTile(std::uint32_t pixel);
    void Place(std::uint32_t window, LineWindow& state, const PixelRect& rect);
    void RaiseAll();
    void ApplyMapState(std::uint32_t window, LineWindow& state);
    void SetComposited(bool composited);

    xcb_connection_t* conn_ = nullptr;
    std::uint32_t root_ = 0;
    std::uint32_t visual_ = 0;
    std::uint8_t depth_ = 0;
    std::uint32_t colormap_ = 0;
    std::uint32_t whitePixel_ = 0;
    bool trueColour_ = false;
    std::uint32_t redMask_ = 0, greenMask_ = 0, blueMask_ = 0;
    bool shape_ = false;
    std::uint32_t gc_ = 0;
    std::uint32_t opacityAtom_ = 0;
    std::uint32_t compositorAtom_ = 0;
    bool composited_ = false;

    std::map<std::string, LineClass> classes_;
    std::unordered_map<WindowHandle, LineWindow> windows_;
    std::unique_ptr<StackWatcher> watcher_;
};

}  // namespace ostrivane::desktop
