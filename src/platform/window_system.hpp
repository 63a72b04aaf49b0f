// The windows of the whole desktop as the library's helpers see them: the
// tree, rectangles, titles, the busy cursor and the file dialogs.
#pragma once

#include <cstdint>
#include <string>

namespace ostrivane {

namespace form {
class Form;
}  // namespace form

// A window of the desktop; 0 is none.
using WindowHandle = std::int32_t;

// In pixels, screen coordinates unless said otherwise.
struct Rectangle {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;
    bool operator==(const Rectangle&) const = default;
};

// Steps of GetWindow.
enum GetWindowCommand : int {
    GW_HWNDNEXT = 2,
    GW_CHILD = 5,
};

// Commands of ShowWindow.
enum ShowWindowCommand : int {
    SW_HIDE = 0,
    SW_SHOWNORMAL = 1,
    SW_MINIMIZE = 6,
    SW_RESTORE = 9,
};

// Flags of the file dialogs.
enum FileDialogFlags : std::int32_t {
    OFN_HIDEREADONLY = 4,
    OFN_FILEMUSTEXIST = 4096,
};

struct FileDialogRequest {
    WindowHandle owner = 0;
    std::string initialDir;
    // Pairs of description and pattern, each ended by a NUL.
    std::string filter;
    std::string defaultExtension;
    // The proposed file, padded with NULs to the buffer's size.
    std::string file;
    std::string title;
    std::int32_t flags = 0;
};

class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    // The screen less the panels and docks.
    virtual Rectangle GetWorkArea() = 0;
    virtual Rectangle GetWindowRect(WindowHandle window) = 0;
    // Relative to the window itself: 0, 0, width, height.
    virtual Rectangle GetClientRect(WindowHandle window) = 0;
    // 0 for a top-level window.
    virtual WindowHandle GetParent(WindowHandle window) = 0;
    virtual void MoveWindow(WindowHandle window, std::int32_t left, std::int32_t top, std::int32_t width,
                            std::int32_t height) = 0;
    virtual std::string GetWindowText(WindowHandle window) = 0;
    virtual WindowHandle GetForegroundWindow() = 0;
    virtual WindowHandle GetDesktopWindow() = 0;
    // GW_CHILD: the first child; GW_HWNDNEXT: the next sibling; 0 at the end.
    virtual WindowHandle GetWindow(WindowHandle window, int command) = 0;
    // 0 when the window says nothing of its process.
    virtual std::int32_t GetWindowProcessId(WindowHandle window) = 0;
    virtual void ShowWindow(WindowHandle window, int command) = 0;
    // The hourglass over the whole program, or back to the usual pointers.
    virtual void SetBusyCursor(bool on) = 0;
    // The file buffer as the user left it, or "" on cancel.
    virtual std::string GetOpenFileName(const FileDialogRequest& request) = 0;
    virtual std::string GetSaveFileName(const FileDialogRequest& request) = 0;
    // The window that shows a form; 0 while it has none.
    virtual WindowHandle FormHandle(form::Form& form) = 0;
};

}  // namespace ostrivane
