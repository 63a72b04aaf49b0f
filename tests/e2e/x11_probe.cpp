// What the end-to-end tests and the whole-program benchmark need of the X
// server that the stock X tools do not offer:
//   x11_probe close WINDOW             the close box: WM_DELETE_WINDOW, as a window manager sends it
//   x11_probe activate WINDOW          _NET_ACTIVE_WINDOW of the root, as a window manager sets it
//   x11_probe clipboard                prints the text of the CLIPBOARD selection
//   x11_probe wait-markers COUNT [TIMEOUT_MS]
//   x11_probe wait-title TITLE [TIMEOUT_MS]
//       prints "ready" once it watches the root window, then, when COUNT line
//       windows (WM_CLASS instance "marker") or a window named TITLE are
//       mapped, the CLOCK_REALTIME time of that moment in nanoseconds.
// Exit status 0 on success, 1 on a timeout or an X failure, 2 on bad usage.
#include <poll.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>

namespace {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

xcb_connection_t* conn = nullptr;
xcb_screen_t* screen = nullptr;

xcb_atom_t Atom(const char* name) {
    Reply<xcb_intern_atom_reply_t> r(
        xcb_intern_atom_reply(conn, xcb_intern_atom(conn, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr));
    return r ? r->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::string Property(xcb_window_t w, xcb_atom_t property, xcb_atom_t type) {
    Reply<xcb_get_property_reply_t> r(
        xcb_get_property_reply(conn, xcb_get_property(conn, 0, w, property, type, 0, 1 << 16), nullptr));
    if (!r) return {};
    const auto* data = static_cast<const char*>(xcb_get_property_value(r.get()));
    return std::string(data, static_cast<size_t>(xcb_get_property_value_length(r.get())));
}

long long NowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// Waits for the next event for at most the time left; null on timeout.
xcb_generic_event_t* NextEvent(std::chrono::steady_clock::time_point deadline) {
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

int Close(xcb_window_t window) {
    xcb_client_message_event_t e{};
    e.response_type = XCB_CLIENT_MESSAGE;
    e.format = 32;
    e.window = window;
    e.type = Atom("WM_PROTOCOLS");
    e.data.data32[0] = Atom("WM_DELETE_WINDOW");
    e.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(conn, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&e));
    xcb_flush(conn);
    return 0;
}

int Clipboard() {
    const xcb_window_t w = xcb_generate_id(conn);
    xcb_create_window(conn, XCB_COPY_FROM_PARENT, w, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const xcb_atom_t target = Atom("UTF8_STRING");
    const xcb_atom_t into = Atom("X11_PROBE_CLIPBOARD");
    xcb_convert_selection(conn, w, Atom("CLIPBOARD"), target, into, XCB_CURRENT_TIME);
    xcb_flush(conn);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (xcb_generic_event_t* e = NextEvent(deadline)) {
        Reply<xcb_generic_event_t> event(e);
        if ((e->response_type & 0x7F) != XCB_SELECTION_NOTIFY) continue;
        const auto* n = reinterpret_cast<xcb_selection_notify_event_t*>(e);
        if (n->property == XCB_ATOM_NONE) return 1;
        const std::string text = Property(w, into, XCB_GET_PROPERTY_TYPE_ANY);
        std::fwrite(text.data(), 1, text.size(), stdout);
        return 0;
    }
    return 1;
}

bool IsMarker(xcb_window_t w) {
    const std::string cls = Property(w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    return cls.compare(0, 7, std::string("marker\0", 7)) == 0;
}

bool HasTitle(xcb_window_t w, const std::string& title) {
    return Property(w, Atom("_NET_WM_NAME"), Atom("UTF8_STRING")) == title ||
           Property(w, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY) == title;
}

// Counts mapped windows that match, from the tree as it stands and then
// from each map and unmap on the root window, until count of them are up.
template <class Match>
int WaitMapped(size_t count, int timeoutMs, Match match) {
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(conn, screen->root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(conn);
    std::set<xcb_window_t> up;
    Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(conn, xcb_query_tree(conn, screen->root), nullptr));
    if (tree) {
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            Reply<xcb_get_window_attributes_reply_t> a(
                xcb_get_window_attributes_reply(conn, xcb_get_window_attributes(conn, children[i]), nullptr));
            if (a && a->map_state == XCB_MAP_STATE_VIEWABLE && match(children[i])) up.insert(children[i]);
        }
    }
    std::printf("ready\n");
    std::fflush(stdout);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (up.size() < count) {
        xcb_generic_event_t* e = NextEvent(deadline);
        if (e == nullptr) return 1;
        Reply<xcb_generic_event_t> event(e);
        switch (e->response_type & 0x7F) {
            case XCB_MAP_NOTIFY: {
                const xcb_window_t w = reinterpret_cast<xcb_map_notify_event_t*>(e)->window;
                if (match(w)) up.insert(w);
                break;
            }
            case XCB_UNMAP_NOTIFY: up.erase(reinterpret_cast<xcb_unmap_notify_event_t*>(e)->window); break;
            case XCB_DESTROY_NOTIFY: up.erase(reinterpret_cast<xcb_destroy_notify_event_t*>(e)->window); break;
            default: break;
        }
    }
    std::printf("%lld\n", NowNs());
    return 0;
}

int Usage() {
    std::fprintf(stderr,
                 "usage: x11_probe close WINDOW | activate WINDOW | clipboard | wait-markers COUNT [MS] | wait-title TITLE [MS]\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Usage();
    int screenNumber = 0;
    conn = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(conn)) {
        std::fprintf(stderr, "x11_probe: cannot connect to the X server\n");
        xcb_disconnect(conn);
        return 1;
    }
    auto it = xcb_setup_roots_iterator(xcb_get_setup(conn));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i) xcb_screen_next(&it);
    screen = it.data;
    const std::string command = argv[1];
    const auto timeoutArg = [&](int index, int fallback) { return argc > index ? std::atoi(argv[index]) : fallback; };
    int rc = 2;
    if (command == "close" && argc >= 3) {
        rc = Close(static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 0)));
    } else if (command == "activate" && argc >= 3) {
        const auto window = static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 0));
        const xcb_void_cookie_t set = xcb_change_property_checked(
            conn, XCB_PROP_MODE_REPLACE, screen->root, Atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &window);
        std::unique_ptr<xcb_generic_error_t, FreeDeleter> error(xcb_request_check(conn, set));
        rc = error ? 1 : 0;
    } else if (command == "clipboard") {
        rc = Clipboard();
    } else if (command == "wait-markers" && argc >= 3) {
        rc = WaitMapped(std::strtoul(argv[2], nullptr, 10), timeoutArg(3, 30000), IsMarker);
    } else if (command == "wait-title" && argc >= 3) {
        const std::string title = argv[2];
        rc = WaitMapped(1, timeoutArg(3, 30000), [&](xcb_window_t w) { return HasTitle(w, title); });
    } else {
        rc = Usage();
    }
    xcb_disconnect(conn);
    return rc;
}
