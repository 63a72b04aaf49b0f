// The keyboard and the mouse of the X desktop behind the core's hooks.
#pragma once

#include "platform/input.hpp"

namespace ostrivane::desktop {

class X11Input final : public Input {
public:
    HookHandle SetKeyboardHook(KeyboardProc proc) override;
    HookHandle SetMouseHook(MouseProc proc) override;
    void Unhook(HookHandle hook) override;
    PixelPoint GetCursorPos() override;
    int ShowCursor(bool show) override;
    void SetMousePointer(int pointer) override;

private:
    int displayCounter_ = 0;
};

}  // namespace ostrivane::desktop
