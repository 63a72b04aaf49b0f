// What the end-to-end tests need of the X server that the stock X tools do not offer:
//   x11_probe close WINDOW     the close box: WM_DELETE_WINDOW, as a window manager sends it
//   x11_probe activate WINDOW  _NET_ACTIVE_WINDOW of the root, as a window manager sets it
//   x11_probe clipboard        prints the text of the CLIPBOARD selection
//   x11_probe target X Y W H   a window named "target" that prints, one line each, the keys
//                              ("key 49 4" keycode and state) and the left button presses
//                              and releases ("press 300 200", "release ...") it receives,
//                              until it is killed
//   x11_probe hold-key KEYSYM MODIFIERS
//                              grabs the key with exactly these modifiers on the root window,
//                              as another program's hot key, and prints "held" until killed
//   x11_probe cursor           prints the size and hot spot of the pointer's shape
// Exit status 0 on success, 1 on a timeout or an X failure, 2 on bad usage.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <xcb/xfixes.h>

#include "desktop/xcb_client.hpp"

namespace {

using namespace ostrivane::desktop;

xcb_connection_t* conn = nullptr;
xcb_screen_t* screen = nullptr;

xcb_atom_t Atom(const char* name) { return InternAtom(conn, name); }

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
    while (xcb_generic_event_t* e = NextEvent(conn, deadline)) {
        Reply<xcb_generic_event_t> event(e);
        if ((e->response_type & 0x7F) != XCB_SELECTION_NOTIFY) continue;
        const auto* n = reinterpret_cast<xcb_selection_notify_event_t*>(e);
        if (n->property == XCB_ATOM_NONE) return 1;
        const std::string text = PropertyBytes(conn, w, into, XCB_GET_PROPERTY_TYPE_ANY);
        std::fwrite(text.data(), 1, text.size(), stdout);
        return 0;
    }
    return 1;
}

int Target(char** geometry) {
    const auto number = [&](int i) { return static_cast<std::uint16_t>(std::strtoul(geometry[i], nullptr, 0)); };
    const xcb_window_t w = xcb_generate_id(conn);
    const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
    // Override-redirect: exactly where asked, whatever the window manager makes of new windows.
    const std::uint32_t values[] = {screen->white_pixel, 1, mask};
    xcb_create_window(conn, XCB_COPY_FROM_PARENT, w, screen->root, static_cast<std::int16_t>(number(0)),
                      static_cast<std::int16_t>(number(1)), number(2), number(3), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_change_property(conn, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 6, "target");
    xcb_map_window(conn, w);
    xcb_flush(conn);
    while (xcb_generic_event_t* e = xcb_wait_for_event(conn)) {
        Reply<xcb_generic_event_t> event(e);
        const auto* k = reinterpret_cast<xcb_key_press_event_t*>(e);  // buttons share the layout
        const int type = e->response_type & 0x7F;
        if (type == XCB_KEY_PRESS) std::printf("key %d %d\n", k->detail, k->state);
        if (type == XCB_BUTTON_PRESS || type == XCB_BUTTON_RELEASE)
            std::printf("%s %d %d\n", type == XCB_BUTTON_PRESS ? "press" : "release", k->root_x, k->root_y);
        std::fflush(stdout);
    }
    return 1;
}

int HoldKey(std::uint32_t keysym, std::uint16_t modifiers) {
    const xcb_setup_t* setup = xcb_get_setup(conn);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    Reply<xcb_get_keyboard_mapping_reply_t> map(
        xcb_get_keyboard_mapping_reply(conn, xcb_get_keyboard_mapping(conn, setup->min_keycode, count), nullptr));
    if (!map) return 1;
    const xcb_keysym_t* syms = xcb_get_keyboard_mapping_keysyms(map.get());
    const int perCode = map->keysyms_per_keycode;
    for (int i = 0; i < count * perCode; ++i) {
        if (syms[i] != keysym) continue;
        const auto code = static_cast<xcb_keycode_t>(setup->min_keycode + i / perCode);
        Reply<xcb_generic_error_t> error(xcb_request_check(
            conn, xcb_grab_key_checked(conn, 0, screen->root, modifiers, code, XCB_GRAB_MODE_ASYNC,
                                       XCB_GRAB_MODE_ASYNC)));
        if (error) return 1;
    }
    std::printf("held\n");
    std::fflush(stdout);
    while (xcb_generic_event_t* e = xcb_wait_for_event(conn)) std::free(e);
    return 1;
}

int Cursor() {
    Reply<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(conn, xcb_xfixes_query_version(conn, 4, 0), nullptr));
    Reply<xcb_xfixes_get_cursor_image_reply_t> image(
        xcb_xfixes_get_cursor_image_reply(conn, xcb_xfixes_get_cursor_image(conn), nullptr));
    if (!version || !image) return 1;
    std::printf("%d %d %d %d\n", image->width, image->height, image->xhot, image->yhot);
    return 0;
}

int Usage() {
    std::fprintf(stderr, "usage: x11_probe close WINDOW | activate WINDOW | clipboard | target X Y W H | hold-key KEYSYM MODIFIERS | cursor\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Usage();
    screen = ConnectToDisplay(conn);
    if (screen == nullptr) {
        std::fprintf(stderr, "x11_probe: cannot connect to the X server\n");
        xcb_disconnect(conn);
        return 1;
    }
    const std::string command = argv[1];
    int rc = 2;
    if (command == "close" && argc >= 3) {
        rc = Close(static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 0)));
    } else if (command == "activate" && argc >= 3) {
        const auto window = static_cast<xcb_window_t>(std::strtoul(argv[2], nullptr, 0));
        const xcb_void_cookie_t set = xcb_change_property_checked(
            conn, XCB_PROP_MODE_REPLACE, screen->root, Atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &window);
        Reply<xcb_generic_error_t> error(xcb_request_check(conn, set));
        rc = error ? 1 : 0;
    } else if (command == "target" && argc >= 6) {
        rc = Target(argv + 2);
    } else if (command == "hold-key" && argc >= 4) {
        rc = HoldKey(static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 0)),
                     static_cast<std::uint16_t>(std::strtoul(argv[3], nullptr, 0)));
    } else if (command == "cursor") {
        rc = Cursor();
    } else if (command == "clipboard") {
        rc = Clipboard();
    } else {
        rc = Usage();
    }
    xcb_disconnect(conn);
    return rc;
}
