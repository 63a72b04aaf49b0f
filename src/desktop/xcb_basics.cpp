#include "desktop/xcb_basics.hpp"

#include "desktop/xcb_client.hpp"

#include <QGuiApplication>

#include <cstdlib>

namespace ostrivane::desktop {

xcb_connection_t* QtConnection() {
    auto* app = qGuiApp;
    if (app == nullptr) return nullptr;
    auto* x11 = app->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

int DefaultScreenNumber() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) screen = 0;
    std::free(host);
    return screen;
}

xcb_atom_t Atom(xcb_connection_t* conn, const char* name) { return InternAtom(conn, name); }

bool HasInputFocus(xcb_connection_t* conn, xcb_window_t window) {
    const Reply<xcb_get_input_focus_reply_t> focus(xcb_get_input_focus_reply(conn, xcb_get_input_focus(conn), nullptr));
    if (!focus) return false;
    xcb_window_t at = focus->focus;
    // Up the tree to the root; the depth bound only guards against a server gone wrong.
    for (int depth = 0; depth < 64 && at != XCB_NONE && at != XCB_INPUT_FOCUS_POINTER_ROOT; ++depth) {
        if (at == window) return true;
        const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(conn, xcb_query_tree(conn, at), nullptr));
        if (!tree || tree->parent == XCB_NONE) return false;
        at = tree->parent;
    }
    return false;
}

}  // namespace ostrivane::desktop
