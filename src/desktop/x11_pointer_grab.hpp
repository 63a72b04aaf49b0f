// The mouse hook as a passive, synchronous grab of the left button on the
// root window: every press waits, frozen, until the hook has answered
// whether it is kept (the window beneath sees neither it nor its release)
// or replayed to the window beneath. Motion is never asked for.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/input.hpp"

namespace ostrivane::desktop {

class X11PointerGrab {
public:
    // The hook procedure; no answer when it did not run (the program is ending).
    using Proc = std::function<std::optional<HookAnswer>(std::uint32_t message)>;

    // The connection stays the caller's; its events are given to Handle.
    X11PointerGrab(xcb_connection_t* conn, xcb_window_t root);
    ~X11PointerGrab();
    X11PointerGrab(const X11PointerGrab&) = delete;
    X11PointerGrab& operator=(const X11PointerGrab&) = delete;

    // False when another program holds the button.
    bool Grab(Proc proc);
    // Lets go of the button, and of a press still waiting (replayed).
    void Ungrab();
    // True when the event was a press or release of the grab.
    bool Handle(const xcb_generic_event_t* event);
    // The press being answered goes on to the window beneath, now.
    void ReplayPending();
    // The pointer shown while a kept press holds the grab: the crosshair or the default.
    void SetCrosshair(bool on);

private:
    void Answer(std::uint8_t mode);

    xcb_connection_t* conn_;
    xcb_window_t root_;
    Proc proc_;
    bool grabbed_ = false;
    bool pending_ = false;  // a press is frozen until answered
    bool held_ = false;     // a kept press holds the grab until its release
    xcb_cursor_t crosshair_ = XCB_NONE;
};

}  // namespace ostrivane::desktop
