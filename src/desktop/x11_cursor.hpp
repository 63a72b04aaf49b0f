// The mouse pointer of the whole screen: where it is, and whether it shows.
// Hidden through XFixes, which the server undoes by itself when the
// connection ends, so a killed program never leaves the pointer hidden.
#pragma once

#include <xcb/xcb.h>

#include "platform/input.hpp"

namespace ostrivane::desktop {

class X11Cursor {
public:
    // The connection stays the caller's; null makes every call do nothing.
    X11Cursor(xcb_connection_t* conn, xcb_window_t root);
    // Shows the pointer again if the counter still hides it.
    ~X11Cursor();
    X11Cursor(const X11Cursor&) = delete;
    X11Cursor& operator=(const X11Cursor&) = delete;

    PixelPoint Position();
    // One step of the display counter (from 0); the new value.
    int Show(bool show);

private:
    xcb_connection_t* conn_;
    xcb_window_t root_;
    bool xfixes_ = false;
    int counter_ = 0;
};

}  // namespace ostrivane::desktop
