// The keyboard and the mouse of the whole desktop, as the hooks, the
// placement cross and the drag of a line see them.
#pragma once

#include <cstdint>
#include <functional>

namespace ostrivane {

// A hook as its owner keeps it; 0 is none.
using HookHandle = std::int32_t;

// The messages a hook procedure is given.
enum HookMessage : std::uint32_t {
    WM_KEYDOWN = 0x100,
    WM_KEYUP = 0x101,
    WM_SYSKEYDOWN = 0x104,
    WM_SYSKEYUP = 0x105,
    WM_MOUSEMOVE = 0x200,
    WM_LBUTTONDOWN = 0x201,
    WM_LBUTTONUP = 0x202,
};

// The virtual keys the keyboard hook looks at.
enum VirtualKey : std::uint32_t {
    VK_1 = 0x31,
    VK_LSHIFT = 0xA0,
    VK_RSHIFT = 0xA1,
    VK_LCONTROL = 0xA2,
    VK_RCONTROL = 0xA3,
    VK_OEM_3 = 0xC0,  // the grave accent key
};

// Bit of KeyboardRecord::flags: the key went up.
inline constexpr std::uint32_t LLKHF_UP = 0x80;

// What the keyboard hook is told of a key: the first 20 bytes of the record.
struct KeyboardRecord {
    std::uint32_t vkCode = 0;
    std::uint32_t scanCode = 0;
    std::uint32_t flags = 0;
    std::uint32_t time = 0;
    std::uint32_t extraInfo = 0;
};

// A hook procedure's answer: the event goes on to the programs beneath, or
// no other program sees it.
enum class HookAnswer { PassOn, Swallow };

struct PixelPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const PixelPoint&) const = default;
};

// The program's screen-wide mouse pointer.
enum MousePointer : int { vbDefault = 0, vbCrosshair = 2 };

class Input {
public:
    using KeyboardProc = std::function<HookAnswer(int code, std::uint32_t message, const KeyboardRecord& record)>;
    using MouseProc = std::function<HookAnswer(int code, std::uint32_t message)>;

    virtual ~Input() = default;
    // System-wide hooks, called on the program's own thread between two of
    // its events; 0 when the hook cannot be installed. The mouse hook is
    // given the presses and releases of the left button.
    virtual HookHandle SetKeyboardHook(KeyboardProc proc) = 0;
    virtual HookHandle SetMouseHook(MouseProc proc) = 0;
    virtual void Unhook(HookHandle hook) = 0;

    // In screen pixels.
    virtual PixelPoint GetCursorPos() = 0;
    // One step of the pointer's display counter, which is returned; the
    // pointer shows while the counter is 0 or more.
    virtual int ShowCursor(bool show) = 0;
    virtual void SetMousePointer(int pointer) = 0;
};

}  // namespace ostrivane
