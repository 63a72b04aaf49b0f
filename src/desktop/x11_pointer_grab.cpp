#include "desktop/x11_pointer_grab.hpp"

#include "desktop/xcb_client.hpp"

namespace ostrivane::desktop {

namespace {

constexpr std::uint16_t kButtonEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
constexpr std::uint16_t kCrosshairGlyph = 34;  // of the standard cursor font

}  // namespace

X11PointerGrab::X11PointerGrab(xcb_connection_t* conn, xcb_window_t root) : conn_(conn), root_(root) {}

X11PointerGrab::~X11PointerGrab() {
    Ungrab();
    if (crosshair_ != XCB_NONE) xcb_free_cursor(conn_, crosshair_);
    xcb_flush(conn_);
}

bool X11PointerGrab::Grab(Proc proc) {
    Ungrab();
    const xcb_void_cookie_t cookie =
        xcb_grab_button_checked(conn_, 0, root_, kButtonEvents, XCB_GRAB_MODE_SYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE,
                                XCB_NONE, XCB_BUTTON_INDEX_1, XCB_MOD_MASK_ANY);
    const Reply<xcb_generic_error_t> error(xcb_request_check(conn_, cookie));
    if (error) return false;
    grabbed_ = true;
    proc_ = std::move(proc);
    return true;
}

void X11PointerGrab::Ungrab() {
    if (!grabbed_) return;
    ReplayPending();
    xcb_ungrab_button(conn_, XCB_BUTTON_INDEX_1, root_, XCB_MOD_MASK_ANY);
    if (held_) xcb_ungrab_pointer(conn_, XCB_CURRENT_TIME);
    grabbed_ = held_ = false;
    proc_ = nullptr;
    xcb_flush(conn_);
}

void X11PointerGrab::Answer(std::uint8_t mode) {
    if (!pending_) return;
    pending_ = false;
    held_ = mode == XCB_ALLOW_ASYNC_POINTER;
    xcb_allow_events(conn_, mode, XCB_CURRENT_TIME);
    xcb_flush(conn_);
}

void X11PointerGrab::ReplayPending() { Answer(XCB_ALLOW_REPLAY_POINTER); }

bool X11PointerGrab::Handle(const xcb_generic_event_t* event) {
    const std::uint8_t type = event->response_type & 0x7F;
    if (type != XCB_BUTTON_PRESS && type != XCB_BUTTON_RELEASE) return false;
    const auto& e = *reinterpret_cast<const xcb_button_press_event_t*>(event);
    if (type == XCB_BUTTON_PRESS && e.detail == XCB_BUTTON_INDEX_1 && !held_) {
        pending_ = true;
        const Proc proc = proc_;  // the procedure may unhook
        const std::optional<HookAnswer> answer = proc ? proc(WM_LBUTTONDOWN) : std::nullopt;
        Answer(answer == HookAnswer::Swallow ? XCB_ALLOW_ASYNC_POINTER : XCB_ALLOW_REPLAY_POINTER);
    } else if (type == XCB_BUTTON_RELEASE && e.detail == XCB_BUTTON_INDEX_1 && held_) {
        // The release of a kept press ends the grab; X gives it to the
        // grabber alone, so whatever the hook answers, it cannot reach the
        // window beneath.
        held_ = false;
        const Proc proc = proc_;
        if (proc) proc(WM_LBUTTONUP);
    }
    return true;
}

void X11PointerGrab::SetCrosshair(bool on) {
    if (on && crosshair_ == XCB_NONE) {
        const xcb_font_t font = xcb_generate_id(conn_);
        xcb_open_font(conn_, font, 6, "cursor");
        crosshair_ = xcb_generate_id(conn_);
        xcb_create_glyph_cursor(conn_, crosshair_, font, font, kCrosshairGlyph, kCrosshairGlyph + 1, 0, 0, 0,
                                0xFFFF, 0xFFFF, 0xFFFF);
        xcb_close_font(conn_, font);
    }
    // Ignored by the server unless a kept press holds the grab.
    xcb_change_active_pointer_grab(conn_, on ? crosshair_ : XCB_NONE, XCB_CURRENT_TIME, kButtonEvents);
    xcb_flush(conn_);
}

}  // namespace ostrivane::desktop
