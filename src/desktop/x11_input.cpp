#include "desktop/x11_input.hpp"

#include <QCursor>
#include <QGuiApplication>

namespace ostrivane::desktop {

// Not yet on X: no hook can be installed.
HookHandle X11Input::SetKeyboardHook(KeyboardProc) { return 0; }
HookHandle X11Input::SetMouseHook(MouseProc) { return 0; }
void X11Input::Unhook(HookHandle) {}

PixelPoint X11Input::GetCursorPos() {
    const QPoint at = QCursor::pos();
    return {at.x(), at.y()};
}

int X11Input::ShowCursor(bool show) { return displayCounter_ += show ? 1 : -1; }

void X11Input::SetMousePointer(int pointer) {
    if (pointer == vbCrosshair)
        QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

}  // namespace ostrivane::desktop
