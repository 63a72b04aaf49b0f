#include "desktop/x11_cursor.hpp"

#include <xcb/xfixes.h>

#include "desktop/xcb_client.hpp"

namespace ostrivane::desktop {

X11Cursor::X11Cursor(xcb_connection_t* conn, xcb_window_t root) : conn_(conn), root_(root) {
    if (conn_ == nullptr) return;
    const xcb_query_extension_reply_t* ext = xcb_get_extension_data(conn_, &xcb_xfixes_id);
    if (ext == nullptr || ext->present == 0) return;
    // Hiding the pointer needs version 4; the server must hear the version first.
    const Reply<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(conn_, xcb_xfixes_query_version(conn_, 4, 0), nullptr));
    xfixes_ = version && version->major_version >= 4;
}

X11Cursor::~X11Cursor() {
    if (counter_ < 0 && xfixes_) {
        xcb_xfixes_show_cursor(conn_, root_);
        xcb_flush(conn_);
    }
}

PixelPoint X11Cursor::Position() {
    if (conn_ == nullptr) return {};
    const Reply<xcb_query_pointer_reply_t> at(xcb_query_pointer_reply(conn_, xcb_query_pointer(conn_, root_), nullptr));
    return at ? PixelPoint{at->root_x, at->root_y} : PixelPoint{};
}

int X11Cursor::Show(bool show) {
    const int before = counter_;
    counter_ += show ? 1 : -1;
    if (xfixes_ && before == 0 && counter_ == -1) xcb_xfixes_hide_cursor(conn_, root_);
    if (xfixes_ && before == -1 && counter_ == 0) xcb_xfixes_show_cursor(conn_, root_);
    if (xfixes_) xcb_flush(conn_);
    return counter_;
}

}  // namespace ostrivane::desktop
