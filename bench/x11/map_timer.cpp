// The whole-program benchmarks' clock on the X server:
//   map_timer markers COUNT [TIMEOUT_MS]
//   map_timer title TITLE [TIMEOUT_MS]
//       prints "ready" once it watches the root window, then, when COUNT line
//       windows (WM_CLASS instance "marker") or a window named TITLE are
//       mapped, the CLOCK_REALTIME time of that moment in nanoseconds.
// Exit status 0 on success, 1 on a timeout or an X failure, 2 on bad usage.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "desktop/xcb_client.hpp"

namespace {

using namespace ostrivane::desktop;

xcb_connection_t* conn = nullptr;
xcb_screen_t* screen = nullptr;

bool IsMarker(xcb_window_t w) {
    return PropertyBytes(conn, w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING).compare(0, 7, std::string("marker\0", 7)) == 0;
}

bool HasTitle(xcb_window_t w, const std::string& title) {
    return PropertyBytes(conn, w, InternAtom(conn, "_NET_WM_NAME"), InternAtom(conn, "UTF8_STRING")) == title ||
           PropertyBytes(conn, w, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY) == title;
}

// Counts mapped windows that match, from the tree as it stands and then
// from each map and unmap on the root window, until count of them are up.
template <class Match>
int WaitMapped(std::size_t count, int timeoutMs, Match match) {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(conn, screen->root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(conn);
    std::set<xcb_window_t> up;
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(conn, xcb_query_tree(conn, screen->root), nullptr));
    if (tree) {
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const Reply<xcb_get_window_attributes_reply_t> a(
                xcb_get_window_attributes_reply(conn, xcb_get_window_attributes(conn, children[i]), nullptr));
            if (a && a->map_state == XCB_MAP_STATE_VIEWABLE && match(children[i])) up.insert(children[i]);
        }
    }
    std::printf("ready\n");
    std::fflush(stdout);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (up.size() < count) {
        xcb_generic_event_t* e = NextEvent(conn, deadline);
        if (e == nullptr) return 1;
        const Reply<xcb_generic_event_t> event(e);
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
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::printf("%lld\n", static_cast<long long>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: map_timer markers COUNT [MS] | title TITLE [MS]\n");
        return 2;
    }
    screen = ConnectToDisplay(conn);
    if (screen == nullptr) {
        std::fprintf(stderr, "map_timer: cannot connect to the X server\n");
        xcb_disconnect(conn);
        return 1;
    }
    const std::string command = argv[1], what = argv[2];
    const int timeoutMs = argc > 3 ? std::atoi(argv[3]) : 30000;
    int rc = 2;
    if (command == "markers")
        rc = WaitMapped(std::strtoul(what.c_str(), nullptr, 10), timeoutMs, IsMarker);
    else if (command == "title")
        rc = WaitMapped(1, timeoutMs, [&](xcb_window_t w) { return HasTitle(w, what); });
    xcb_disconnect(conn);
    return rc;
}
