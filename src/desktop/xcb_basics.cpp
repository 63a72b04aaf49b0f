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

}  // namespace ostrivane::desktop
