// What every X client of the project asks of xcb: replies it owns, atoms by
// name, a property's bytes, the next event within a deadline. Free of Qt,
// so that the program and its X tools (tests, benchmarks) share it.
#pragma once

#include <poll.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace ostrivane::desktop {

struct FreeReply {
    void operator()(void* p) const { std::free(p); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

// XCB_ATOM_NONE when the server does not answer.
inline xcb_atom_t InternAtom(xcb_connection_t* conn, const char* name) {
    const auto cookie = xcb_intern_atom(conn, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(conn, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// Up to 256 KiB of the value; empty when the window has no such property.
inline std::string PropertyBytes(xcb_connection_t* conn, xcb_window_t window, xcb_atom_t property, xcb_atom_t type) {
    const Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(conn, xcb_get_property(conn, 0, window, property, type, 0, 1 << 16), nullptr));
    if (!reply) return {};
    const auto* data = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return std::string(data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

// The next event, waiting at most until the deadline; null on timeout or a broken connection.
inline xcb_generic_event_t* NextEvent(xcb_connection_t* conn, std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        if (xcb_generic_event_t* e = xcb_poll_for_event(conn)) return e;
        if (xcb_connection_has_error(conn)) return nullptr;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0) return nullptr;
        pollfd p{xcb_get_file_descriptor(conn), POLLIN, 0};
        ::poll(&p, 1, static_cast<int>(left));
    }
}

// The screen of $DISPLAY on a new connection; null when there is none.
inline xcb_screen_t* ConnectToDisplay(xcb_connection_t*& conn) {
    int screenNumber = 0;
    conn = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(conn)) return nullptr;
    auto it = xcb_setup_roots_iterator(xcb_get_setup(conn));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i) xcb_screen_next(&it);
    return it.data;
}

}  // namespace ostrivane::desktop
