// The keyboard and the mouse of the X desktop behind the core's hooks.
#pragma once

#include <memory>

#include "platform/input.hpp"

struct xcb_connection_t;
class QSocketNotifier;

namespace ostrivane::desktop {

class X11Cursor;
class X11KeyGrabs;
class X11PointerGrab;

class X11Input final : public Input {
public:
    X11Input();
    ~X11Input() override;
    X11Input(const X11Input&) = delete;
    X11Input& operator=(const X11Input&) = delete;

    HookHandle SetKeyboardHook(KeyboardProc proc) override;
    HookHandle SetMouseHook(MouseProc proc) override;
    void Unhook(HookHandle hook) override;
    PixelPoint GetCursorPos() override;
    int ShowCursor(bool show) override;
    void SetMousePointer(int pointer) override;

private:
    void Pump();
    void PumpSoon();

    // The grabs' events come on a connection of their own, so that nothing
    // Qt does to its connection (event masks, its reader thread) stands
    // between a frozen press and its answer. The pointer's queries go on a
    // third one: a reply read on the grabs' connection outside Pump could
    // pull a press into xcb's queue, where no socket notice would tell of it.
    xcb_connection_t* grabsConn_ = nullptr;
    xcb_connection_t* queryConn_ = nullptr;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::unique_ptr<X11KeyGrabs> keys_;
    std::unique_ptr<X11PointerGrab> pointer_;
    std::unique_ptr<X11Cursor> cursor_;
    bool crosshair_ = false;
};

}  // namespace ostrivane::desktop
