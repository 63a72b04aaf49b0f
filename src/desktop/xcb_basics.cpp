#include "desktop/xcb_basics.hpp"

#include <QGuiApplication>

#include <cstdlib>
#include <cstring>

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

xcb_atom_t Atom(xcb_connection_t* conn, const char* name) {
    const auto cookie = xcb_intern_atom(conn, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(conn, cookie, nullptr);
    if (reply == nullptr) return XCB_ATOM_NONE;
    const xcb_atom_t atom = reply->atom;
    std::free(reply);
    return atom;
}

}  // namespace ostrivane::desktop
