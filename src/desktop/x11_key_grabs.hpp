// The two hot keys as passive key grabs on the root window: they fire
// whatever window has the focus, and the focused window never sees them.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "desktop/x_input_rules.hpp"
#include "platform/input.hpp"

namespace ostrivane::desktop {

class X11KeyGrabs {
public:
    // The hook procedure; no answer when it did not run (the program is ending).
    using Proc = std::function<std::optional<HookAnswer>(std::uint32_t message, const KeyboardRecord& record)>;

    // The connection stays the caller's; its events are given to Handle.
    X11KeyGrabs(xcb_connection_t* conn, xcb_window_t root);
    ~X11KeyGrabs();
    X11KeyGrabs(const X11KeyGrabs&) = delete;
    X11KeyGrabs& operator=(const X11KeyGrabs&) = delete;

    // False when neither hot key could be grabbed.
    bool Grab(Proc proc);
    void Ungrab();
    // True when the event was one of the hot keys. A change of the keyboard
    // mapping grabs the keys anew.
    bool Handle(const xcb_generic_event_t* event);

private:
    struct HotKey {
        const char* name;
        std::uint32_t keysym;
        std::uint32_t vkCode;
        std::vector<xcb_keycode_t> codes;  // grabbed; empty while off
        bool handedOn = false;              // the press went to the focused window, its release follows
        bool reported = false;              // found held by another program
    };

    SideKeys SideKeysDown();
    void HandOn(const xcb_key_press_event_t& event);

    xcb_connection_t* conn_;
    xcb_window_t root_;
    Proc proc_;
    std::vector<HotKey> keys_;
    std::vector<std::uint16_t> modifierSets_;
    std::array<std::vector<xcb_keycode_t>, 4> sideCodes_;  // the keycodes of kSideKeyCodes
    SideKeys told_{};
};

}  // namespace ostrivane::desktop
