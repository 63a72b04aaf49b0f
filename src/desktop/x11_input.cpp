#include "desktop/x11_input.hpp"

#include <QCursor>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>

#include "desktop/entry_point.hpp"
#include "desktop/x11_cursor.hpp"
#include "desktop/x11_key_grabs.hpp"
#include "desktop/x11_pointer_grab.hpp"
#include "desktop/xcb_client.hpp"

namespace ostrivane::desktop {

namespace {

constexpr HookHandle kKeyboardHook = 1;
constexpr HookHandle kMouseHook = 2;

}  // namespace

X11Input::X11Input() {
    xcb_screen_t* screen = ConnectToDisplay(grabsConn_);
    xcb_screen_t* queryScreen = ConnectToDisplay(queryConn_);
    cursor_ = std::make_unique<X11Cursor>(queryScreen != nullptr ? queryConn_ : nullptr,
                                          queryScreen != nullptr ? queryScreen->root : 0);
    if (screen == nullptr) return;
    keys_ = std::make_unique<X11KeyGrabs>(grabsConn_, screen->root);
    pointer_ = std::make_unique<X11PointerGrab>(grabsConn_, screen->root);
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(grabsConn_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { Pump(); });
}

X11Input::~X11Input() {
    notifier_.reset();
    // Lets go of the grabs and shows the pointer before the connections end.
    pointer_.reset();
    keys_.reset();
    cursor_.reset();
    xcb_disconnect(grabsConn_);
    xcb_disconnect(queryConn_);
}

void X11Input::Pump() {
    if (!keys_) return;
    while (xcb_generic_event_t* event = xcb_poll_for_event(grabsConn_)) {
        const Reply<xcb_generic_event_t> owned(event);
        // A hook may open a modal loop after a reply has read a frozen press
        // into xcb's queue: the loop must still come to it.
        PumpSoon();
        if (!pointer_->Handle(event)) keys_->Handle(event);
    }
}

// A round trip outside Pump may have read events into xcb's queue, which no
// socket notice announces.
void X11Input::PumpSoon() {
    if (notifier_) QTimer::singleShot(0, notifier_.get(), [this] { Pump(); });
}

HookHandle X11Input::SetKeyboardHook(KeyboardProc proc) {
    if (!keys_) return 0;
    const bool on = keys_->Grab([proc](std::uint32_t message, const KeyboardRecord& record) {
        std::optional<HookAnswer> answer;
        RunEntryPoint([&] { answer = proc(0, message, record); });
        return answer;
    });
    PumpSoon();
    return on ? kKeyboardHook : 0;
}

HookHandle X11Input::SetMouseHook(MouseProc proc) {
    if (!pointer_) return 0;
    const bool on = pointer_->Grab([this, proc](std::uint32_t message) {
        std::optional<HookAnswer> answer;
        RunEntryPoint([&] {
            try {
                answer = proc(0, message);
            } catch (...) {
                // The error box that follows must take clicks: the press
                // goes on and the button is let go before the box shows.
                pointer_->Ungrab();
                throw;
            }
        });
        // No answer (the program is ending) replays the press.
        return answer;
    });
    PumpSoon();
    return on ? kMouseHook : 0;
}

void X11Input::Unhook(HookHandle hook) {
    if (hook == kKeyboardHook && keys_) keys_->Ungrab();
    if (hook == kMouseHook && pointer_) pointer_->Ungrab();
}

PixelPoint X11Input::GetCursorPos() { return cursor_->Position(); }

int X11Input::ShowCursor(bool show) { return cursor_->Show(show); }

void X11Input::SetMousePointer(int pointer) {
    const bool crosshair = pointer == vbCrosshair;
    if (pointer_) pointer_->SetCrosshair(crosshair);
    // The program's own windows, when the pointer is over them without a grab.
    if (crosshair && !crosshair_) QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    if (!crosshair && crosshair_) QGuiApplication::restoreOverrideCursor();
    crosshair_ = crosshair;
}

}  // namespace ostrivane::desktop
