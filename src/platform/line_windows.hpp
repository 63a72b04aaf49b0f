// The line windows of the overlay: borderless, topmost, translucent,
// click-through windows that the window system fills with their class's
// background (a solid colour, or a diagonal cross hatch for a dotted line).
#pragma once

#include <cstdint>
#include <string>

namespace ostrivane {

// A window handle as the table keeps it; 0 is no window.
using WindowHandle = std::int32_t;

struct PixelRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const PixelRect&) const = default;
};

// A line window lets clicks through and takes an alpha; a plain one is
// solid and takes the clicks (the arms of the placement cross).
enum class LineStyle { Layered, Plain };

class LineWindows {
public:
    virtual ~LineWindows() = default;
    // Registers a window class whose background is colour (red in the low
    // byte), solid, or hatched when dotted is not 0.
    virtual void RegisterClass(const std::string& className, std::int32_t colour, std::int32_t dotted) = 0;
    virtual void UnregisterClass(const std::string& className) = 0;
    // A visible, topmost window of that class; 0 when the class is not
    // registered or the window cannot be made.
    virtual WindowHandle CreateLineWindow(const std::string& className, const PixelRect& rect, LineStyle style) = 0;
    // Nothing on a plain window. Alpha 0 makes a layered window invisible.
    virtual void SetAlpha(WindowHandle window, std::uint8_t alpha) = 0;
    virtual void MoveWindow(WindowHandle window, const PixelRect& rect) = 0;
    // Paints the window over in place with the class's background; the
    // window keeps its own class, so a later system repaint shows the old one.
    virtual void PaintWithClass(WindowHandle window, const std::string& className) = 0;
    virtual void DestroyWindow(WindowHandle window) = 0;
};

}  // namespace ostrivane
