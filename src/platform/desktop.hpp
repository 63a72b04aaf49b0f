// What the shell asks of the desktop besides questions and line windows:
// the screen, the main window, the event loop, the tray icon, the clipboard,
// the printer, and the guard and carrier between two starts.
#pragma once

#include <cstdint>
#include <string>

namespace ostrivane {

namespace form {
class Form;
class MenuItem;
}  // namespace form

// The picture of the program's icon, which its main window, the tray and the
// about box show.
inline constexpr char kProgramIcon[] = "icoCrosshair";

// Indexes of the screen metrics: the primary screen, the virtual screen.
enum SystemMetric : int {
    SM_CXSCREEN = 0,
    SM_CYSCREEN = 1,
    SM_XVIRTUALSCREEN = 76,
    SM_YVIRTUALSCREEN = 77,
    SM_CXVIRTUALSCREEN = 78,
    SM_CYVIRTUALSCREEN = 79,
};

class Desktop {
public:
    virtual ~Desktop() = default;

    virtual std::int32_t GetSystemMetrics(int index) = 0;

    // Whether the form's window is the foreground window.
    virtual bool IsForegroundWindow(form::Form& form) = 0;
    // The form's window: raised and given the input focus.
    virtual void SetForegroundWindow(form::Form& form) = 0;
    // Topmost or not, without moving or resizing; shows the form if hidden.
    virtual void SetTopmost(form::Form& form, bool on) = 0;
    // Shows the form and returns when it is hidden again; the program's
    // timers and other events run on meanwhile.
    virtual void ShowModal(form::Form& form) = 0;
    // Handles every pending event once.
    virtual void DoEvents() = 0;
    // Leaves the event loop; the program ends.
    virtual void EndProgram() = 0;

    virtual void Beep() = 0;
    virtual bool SetClipboardText(const std::string& text) = 0;
    // An image of the form on the default printer; nothing where there is none.
    virtual void PrintForm(form::Form& form) = 0;

    // The tray icon with its tip; the desktop reports clicks on it to the
    // main form as tray notifications.
    virtual void AddTrayIcon(const std::string& tip) = 0;
    virtual void RemoveTrayIcon() = 0;
    // Shows a menu's entries as a popup at the cursor.
    virtual void ShowPopupMenu(form::MenuItem& menu) = 0;

    // The single-instance guard: true when this copy now owns the name, false
    // when another copy does.
    virtual bool AcquireInstance(const std::string& name) = 0;
    virtual void ReleaseInstance() = 0;
    // Hands a command line to the running copy and waits until it has been
    // handled there; nothing happens when no copy answers.
    virtual void ForwardCommand(const std::string& name, const std::string& commandText) = 0;
};

}  // namespace ostrivane
