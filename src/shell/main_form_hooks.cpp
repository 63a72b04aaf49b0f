// The two system-wide hooks: the hot keys from any program, and the press
// of the left button that grabs a line or fixes a placement. The keyboard
// hook acts on the spot; the mouse hook only switches on a 1 ms timer, whose
// tick does the work once the hook has answered.
#include "editor/main_form.hpp"
#include "lib/numbers.hpp"
#include "overlay/geometry.hpp"
#include "store/markers.hpp"

namespace ostrivane {

namespace {

constexpr std::int16_t kTrue = -1;
constexpr std::int16_t kFalse = 0;

bool IsKeyMessage(std::uint32_t message) {
    return message == WM_KEYDOWN || message == WM_KEYUP || message == WM_SYSKEYDOWN || message == WM_SYSKEYUP;
}

}  // namespace

void MainForm::HookKeyboard() {
    if (KeyboardHook != 0) return;
    KeyboardHook = input_.SetKeyboardHook(
        [this](int code, std::uint32_t message, const KeyboardRecord& record) {
            return KeyboardProc(code, message, record);
        });
}

void MainForm::UnhookKeyboard() {
    if (KeyboardHook == 0) return;
    input_.Unhook(KeyboardHook);
    KeyboardHook = 0;
}

void MainForm::HookMouse() {
    if (MouseHook != 0) return;
    MouseHook = input_.SetMouseHook([this](int code, std::uint32_t message) { return MouseProc(code, message); });
}

void MainForm::UnhookMouse() {
    MouseMode = 0;
    if (MouseHook == 0) return;
    input_.Unhook(MouseHook);
    MouseHook = 0;
}

HookAnswer MainForm::KeyboardProc(int code, std::uint32_t message, const KeyboardRecord& record) {
    if (code != 0 || !IsKeyMessage(message)) return HookAnswer::PassOn;
    const bool down = (record.flags & LLKHF_UP) == 0;
    const std::int16_t flag = down ? kTrue : kFalse;
    switch (record.vkCode) {
        case VK_LSHIFT: LShiftDown = flag; return HookAnswer::PassOn;
        case VK_RSHIFT: RShiftDown = flag; return HookAnswer::PassOn;
        case VK_LCONTROL: LCtrlDown = flag; return HookAnswer::PassOn;
        case VK_RCONTROL: RCtrlDown = flag; return HookAnswer::PassOn;
        default: break;
    }
    const bool ctrl = LCtrlDown != kFalse || RCtrlDown != kFalse;
    const bool shift = LShiftDown != kFalse || RShiftDown != kFalse;
    if (!ctrl || shift || !down) return HookAnswer::PassOn;
    if (record.vkCode == VK_OEM_3) {
        Go();
        return HookAnswer::Swallow;
    }
    if (record.vkCode == VK_1) {
        ToggleFlashSelected(false);
        return HookAnswer::Swallow;
    }
    return HookAnswer::PassOn;
}

HookAnswer MainForm::MouseProc(int code, std::uint32_t message) {
    if (code != 0 || message == WM_MOUSEMOVE) return HookAnswer::PassOn;
    if (message == WM_LBUTTONDOWN) {
        if (MouseMode == 1) {
            timAddMarkerComplete.SetTimerEnabled(true);
            return HookAnswer::Swallow;
        }
        if (chkAllowGrabMarkers.Value() != kCheckChecked || MouseMode != 0 || !Showing) return HookAnswer::PassOn;
        const PixelPoint at = input_.GetCursorPos();
        // The lowest row wins; an overflow of the test is not caught here.
        for (int row = 1; row <= store.MarkerCount; ++row) {
            const std::int16_t hit = HitTestMarker(
                at.x, at.y, store.Markers(row, Hpos), store.Markers(row, Vpos),
                CheckedInt16(EffectiveValue(store, row, Hlen)), CheckedInt16(EffectiveValue(store, row, Vlen)),
                CheckedInt16(EffectiveValue(store, row, Thickness)), GrabProximity, screen.ScreenLeft,
                screen.ScreenTop, screen.ScreenWidth);
            if (hit != kHitNone) {
                MouseMode = hit;
                GrabbedMarker = static_cast<std::int16_t>(row);
                break;
            }
        }
        if (MouseMode > 1) {
            timMoveMarkerStart.SetTimerEnabled(true);
            return HookAnswer::Swallow;
        }
        return HookAnswer::PassOn;
    }
    if (message == WM_LBUTTONUP && MouseMode > 1) {
        timMoveMarkerComplete.SetTimerEnabled(true);
        return HookAnswer::Swallow;
    }
    return HookAnswer::PassOn;
}

}  // namespace ostrivane
