// The clock of the mouse-hook benchmarks, on the X server of $DISPLAY:
//   click_timer clicks COUNT [--at X Y] [--gap MS] [--timeout MS]
//       puts a small target window at X,Y or else where no marker line and
//       no other window is near, then COUNT times, MS apart (default 0),
//       moves the pointer onto it and sends a fake press and release of
//       button 1. Prints the time from the fake press request to the press
//       the target receives: "median_ms P p99_ms Q max_ms R clicks N at X Y".
//       A program that grabs the button adds its own answer to that time.
//       Lines that come and go while it runs should be given a place found
//       while they stood.
//   click_timer moves SECONDS
//       moves the pointer about the screen, outside any window but the
//       marker lines, a step a millisecond; prints "moves N".
// Exit status 0 on success, 1 on a timeout or an X failure, 2 on bad usage.
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "desktop/xcb_client.hpp"

namespace {

using namespace ostrivane::desktop;
using Clock = std::chrono::steady_clock;

xcb_connection_t* conn = nullptr;
xcb_screen_t* screen = nullptr;

constexpr int kTargetSize = 24;
// Beyond the grab distance of any line (10 by default) with room to spare.
constexpr int kClearance = 40;

struct Span {
    int from, to;  // inclusive
};
struct Box {
    Span x, y;
};

bool IsMarker(xcb_window_t w) {
    return PropertyBytes(conn, w, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING).compare(0, 7, std::string("marker\0", 7)) == 0;
}

bool Near(const Span& s, int from) { return from - kClearance <= s.to && from + kTargetSize - 1 + kClearance >= s.from; }

// What a click must keep away from: the columns of the vertical lines and the
// rows of the horizontal ones as whole bands across the screen (the hit test
// reaches farther along a line than its window, never across), and every
// other window, which the program may raise over the target at any moment.
struct Obstacles {
    std::vector<Span> columns, rows;
    std::vector<Box> windows;

    bool Clear(int x, int y) const {
        const auto near = [](int at) { return [at](const Span& s) { return Near(s, at); }; };
        return std::none_of(columns.begin(), columns.end(), near(x)) &&
               std::none_of(rows.begin(), rows.end(), near(y)) &&
               std::none_of(windows.begin(), windows.end(), [&](const Box& b) { return Near(b.x, x) && Near(b.y, y); });
    }
};

Obstacles FindObstacles() {
    Obstacles found;
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(conn, xcb_query_tree(conn, screen->root), nullptr));
    if (!tree) return found;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const Reply<xcb_get_window_attributes_reply_t> a(
            xcb_get_window_attributes_reply(conn, xcb_get_window_attributes(conn, children[i]), nullptr));
        if (!a || a->map_state != XCB_MAP_STATE_VIEWABLE) continue;
        const Reply<xcb_get_geometry_reply_t> g(
            xcb_get_geometry_reply(conn, xcb_get_geometry(conn, children[i]), nullptr));
        if (!g) continue;
        const Span x{g->x, g->x + g->width + 2 * g->border_width - 1};
        const Span y{g->y, g->y + g->height + 2 * g->border_width - 1};
        if (!IsMarker(children[i])) {
            found.windows.push_back({x, y});
            continue;
        }
        if (g->height >= g->width) found.columns.push_back(x);
        if (g->width >= g->height) found.rows.push_back(y);
    }
    return found;
}

// The first place, scanning from the top left, that keeps its distance from
// every obstacle; false when the screen has none.
bool FreePlace(int& x, int& y) {
    const Obstacles obstacles = FindObstacles();
    for (y = kClearance; y + kTargetSize + kClearance < screen->height_in_pixels; y += 4)
        for (x = kClearance; x + kTargetSize + kClearance < screen->width_in_pixels; x += 4)
            if (obstacles.Clear(x, y)) return true;
    return false;
}

bool HasXTest() {
    const xcb_query_extension_reply_t* ext = xcb_get_extension_data(conn, &xcb_test_id);
    return ext != nullptr && ext->present;
}

void FakeMotion(int x, int y) {
    xcb_test_fake_input(conn, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, screen->root, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
}

void FakeButton(std::uint8_t type) {
    xcb_test_fake_input(conn, type, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(conn);
}

// Waits for an event of the type on the window; false at the deadline.
bool Await(std::uint8_t type, xcb_window_t window, Clock::time_point deadline) {
    for (;;) {
        xcb_generic_event_t* e = NextEvent(conn, deadline);
        if (e == nullptr) return false;
        const Reply<xcb_generic_event_t> event(e);
        if ((e->response_type & 0x7F) != type) continue;
        if (type == XCB_MAP_NOTIFY ? reinterpret_cast<xcb_map_notify_event_t*>(e)->window == window
                                   : reinterpret_cast<xcb_button_press_event_t*>(e)->event == window)
            return true;
    }
}

// Why a click went astray: the window under the pointer, and whether another client holds the pointer.
void Explain(xcb_window_t target) {
    const Reply<xcb_query_pointer_reply_t> at(
        xcb_query_pointer_reply(conn, xcb_query_pointer(conn, screen->root), nullptr));
    const xcb_window_t under = at ? at->child : XCB_NONE;
    const Reply<xcb_grab_pointer_reply_t> grab(xcb_grab_pointer_reply(
        conn,
        xcb_grab_pointer(conn, 0, target, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE,
                         XCB_CURRENT_TIME),
        nullptr));
    xcb_ungrab_pointer(conn, XCB_CURRENT_TIME);
    std::string cls = PropertyBytes(conn, under, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
    for (char& c : cls)
        if (c == '\0') c = ' ';
    std::fprintf(stderr, "click_timer: under the pointer: 0x%x (%s, target 0x%x); the pointer %s\n", under,
                 cls.c_str(), target, grab && grab->status == XCB_GRAB_STATUS_SUCCESS ? "is free" : "is grabbed");
}

void Pause(int ms) {
    struct timespec pause{ms / 1000, (ms % 1000) * 1000000L};
    ::nanosleep(&pause, nullptr);
}

double Ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

struct ClickOptions {
    int timeoutMs = 5000, gapMs = 0;
    bool placed = false;
    int x = 0, y = 0;
};

int Clicks(int count, ClickOptions o) {
    const int timeoutMs = o.timeoutMs;
    int x = o.x, y = o.y;
    if (!o.placed && !FreePlace(x, y)) {
        std::fprintf(stderr, "click_timer: no place on the screen is clear of the lines and windows\n");
        return 1;
    }
    const xcb_window_t target = xcb_generate_id(conn);
    const std::uint32_t values[] = {screen->black_pixel, 1,
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(conn, XCB_COPY_FROM_PARENT, target, screen->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), kTargetSize, kTargetSize, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(conn, target);
    xcb_flush(conn);
    if (!Await(XCB_MAP_NOTIFY, target, Clock::now() + std::chrono::milliseconds(timeoutMs))) {
        std::fprintf(stderr, "click_timer: the target window did not come up\n");
        return 1;
    }

    std::vector<double> waits;
    waits.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (o.gapMs > 0 && i > 0) Pause(o.gapMs);
        // A different pixel of the target each time, so that every click moves.
        FakeMotion(x + 4 + i % 16, y + 4 + (i / 16) % 16);
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(conn, target, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        // The round trip also makes sure the move is done before the press.
        const Reply<xcb_query_pointer_reply_t> at(
            xcb_query_pointer_reply(conn, xcb_query_pointer(conn, screen->root), nullptr));
        if (!at || at->child != target) {
            std::fprintf(stderr, "click_timer: the pointer is not over the target window\n");
            return 1;
        }
        const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
        const auto t0 = Clock::now();
        FakeButton(XCB_BUTTON_PRESS);
        const bool pressed = Await(XCB_BUTTON_PRESS, target, deadline);
        const auto t1 = Clock::now();
        FakeButton(XCB_BUTTON_RELEASE);
        if (!pressed || !Await(XCB_BUTTON_RELEASE, target, deadline)) {
            std::fprintf(stderr, "click_timer: the %s of click %d did not reach the target within %d ms\n",
                         pressed ? "release" : "press", i + 1, timeoutMs);
            Explain(target);
            return 1;
        }
        waits.push_back(Ms(t1 - t0));
    }
    xcb_destroy_window(conn, target);

    std::sort(waits.begin(), waits.end());
    const std::size_t n = waits.size();
    const double median = n % 2 ? waits[n / 2] : (waits[n / 2 - 1] + waits[n / 2]) / 2;
    // Nearest rank: the smallest wait that at least 99 % of the clicks did not exceed.
    const auto rank = static_cast<std::size_t>(std::ceil(0.99 * static_cast<double>(n)));
    std::printf("median_ms %.3f p99_ms %.3f max_ms %.3f clicks %zu at %d %d\n", median, waits[rank - 1], waits.back(),
                n, x, y);
    return 0;
}

int Moves(double seconds) {
    const int w = screen->width_in_pixels, h = screen->height_in_pixels;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    long moves = 0;
    // The program's own windows would see the pointer: the moves pass the lines only.
    const std::vector<Box> windows = FindObstacles().windows;
    // A slow loop over the whole screen, one step a millisecond.
    for (long step = 0; Clock::now() < end; ++step) {
        const double t = static_cast<double>(step) / 1000.0;
        const int x = static_cast<int>(w / 2 + (w / 2 - 20) * std::sin(t * 0.9));
        const int y = static_cast<int>(h / 2 + (h / 2 - 20) * std::sin(t * 1.3));
        if (std::any_of(windows.begin(), windows.end(), [&](const Box& b) { return Near(b.x, x) && Near(b.y, y); }))
            continue;
        FakeMotion(x, y);
        ++moves;
        // Keeps the server's queue short: a round trip every 20 moves.
        if (moves % 20 == 0) std::free(xcb_get_input_focus_reply(conn, xcb_get_input_focus(conn), nullptr));
        Pause(1);
    }
    std::free(xcb_get_input_focus_reply(conn, xcb_get_input_focus(conn), nullptr));
    std::printf("moves %ld\n", moves);
    return 0;
}

}  // namespace

int Usage() {
    std::fprintf(stderr, "usage: click_timer clicks COUNT [--at X Y] [--gap MS] [--timeout MS] | moves SECONDS\n");
    return 2;
}

int main(int argc, char** argv) {
    if (argc < 3) return Usage();
    screen = ConnectToDisplay(conn);
    if (screen == nullptr) {
        std::fprintf(stderr, "click_timer: cannot connect to the X server\n");
        xcb_disconnect(conn);
        return 1;
    }
    if (!HasXTest()) {
        std::fprintf(stderr, "click_timer: the X server has no XTest\n");
        xcb_disconnect(conn);
        return 1;
    }
    const std::string command = argv[1];
    int rc = 2;
    if (command == "clicks") {
        const int count = std::atoi(argv[2]);
        ClickOptions o;
        bool good = count > 0;
        for (int i = 3; good && i < argc; ++i) {
            const std::string option = argv[i];
            if (option == "--at" && i + 2 < argc) {
                o.placed = true;
                o.x = std::atoi(argv[++i]);
                o.y = std::atoi(argv[++i]);
            } else if (option == "--gap" && i + 1 < argc) {
                o.gapMs = std::atoi(argv[++i]);
            } else if (option == "--timeout" && i + 1 < argc) {
                o.timeoutMs = std::atoi(argv[++i]);
            } else {
                good = false;
            }
        }
        if (good) rc = Clicks(count, o);
    } else if (command == "moves") {
        const double seconds = std::atof(argv[2]);
        if (seconds > 0) rc = Moves(seconds);
    }
    xcb_disconnect(conn);
    return rc == 2 ? Usage() : rc;
}
