// The window system on X11: the window tree, titles, rectangles and window
// states through xcb and the EWMH properties of the window manager; the busy
// cursor and the file dialogs through Qt.
//
// Sibling order is the stacking order from the top down, as a walk of the
// window list expects. A top-level window is a child of the root; under a
// reparenting window manager the client window sits inside the manager's
// frame, which is then the top-level one and its parent.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/window_system.hpp"

struct xcb_connection_t;

namespace ostrivane::desktop {

class X11WindowSystem final : public WindowSystem {
public:
    // The X connection of the running Qt application, on its default screen.
    X11WindowSystem();
    // Any connection (not taken over), on the given screen.
    X11WindowSystem(xcb_connection_t* connection, int screenNumber);

    Rectangle GetWorkArea() override;
    Rectangle GetWindowRect(WindowHandle window) override;
    Rectangle GetClientRect(WindowHandle window) override;
    WindowHandle GetParent(WindowHandle window) override;
    void MoveWindow(WindowHandle window, std::int32_t left, std::int32_t top, std::int32_t width,
                    std::int32_t height) override;
    std::string GetWindowText(WindowHandle window) override;
    WindowHandle GetForegroundWindow() override;
    WindowHandle GetDesktopWindow() override;
    WindowHandle GetWindow(WindowHandle window, int command) override;
    std::int32_t GetWindowProcessId(WindowHandle window) override;
    // 0 unmaps, 1 and 9 map (which also brings an iconified window back),
    // 6 asks the window manager to iconify; other commands do nothing.
    void ShowWindow(WindowHandle window, int command) override;
    void SetBusyCursor(bool on) override;
    std::string GetOpenFileName(const FileDialogRequest& request) override;
    std::string GetSaveFileName(const FileDialogRequest& request) override;
    WindowHandle FormHandle(form::Form& form) override;

    // False when there is no X connection: the queries then give 0 and empty
    // texts, the work area is 0,0,0,0, and nothing is moved or shown.
    bool Connected() const { return conn_ != nullptr; }

private:
    struct Tree {
        std::uint32_t parent = 0;
        std::vector<std::uint32_t> children;  // from the top of the stack down
    };

    bool QueryTree(std::uint32_t window, Tree& tree);
    // The 32-bit items of a property; empty when it is absent.
    std::vector<std::uint32_t> CardinalProperty(std::uint32_t window, std::uint32_t property, std::uint32_t type);
    bool TextProperty(std::uint32_t window, std::uint32_t property, std::uint32_t type, std::string& text);
    Rectangle RootRect();
    std::string FileDialog(const FileDialogRequest& request, bool save);

    xcb_connection_t* conn_ = nullptr;
    std::uint32_t root_ = 0;
    std::uint32_t netWmName_ = 0;
    std::uint32_t utf8String_ = 0;
    std::uint32_t netActiveWindow_ = 0;
    std::uint32_t netWorkarea_ = 0;
    std::uint32_t netCurrentDesktop_ = 0;
    std::uint32_t netWmPid_ = 0;
    std::uint32_t wmChangeState_ = 0;
    bool busy_ = false;
};

// The Qt form of a filter text of pairs (description NUL pattern NUL ...):
// "Description (patterns)" entries joined by ";;".
std::string QtFilterOf(const std::string& filter);

}  // namespace ostrivane::desktop
