// The arithmetic of the hot keys on X, apart from the server so that it can
// be tested alone: which modifier sets to grab, and what the hook is told of
// Ctrl and Shift before a hot key.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "platform/input.hpp"

namespace ostrivane::desktop {

inline constexpr std::uint16_t kShiftMask = 1;    // XCB_MOD_MASK_SHIFT
inline constexpr std::uint16_t kControlMask = 4;  // XCB_MOD_MASK_CONTROL

// A passive grab matches one modifier set exactly, so Control is grabbed
// together with every subset of the modifiers the user may have on or held
// by chance (the locks, Alt, Super). Shift is never among them: Ctrl+Shift
// with the key belongs to the focused program. Zero bits (a lock that is not
// on the keyboard) and repeated bits count once.
inline std::vector<std::uint16_t> GrabModifierSets(const std::vector<std::uint16_t>& extras) {
    std::vector<std::uint16_t> bits;
    for (const std::uint16_t bit : extras) {
        const bool taken = (bit & (kShiftMask | kControlMask)) != 0;
        bool seen = false;
        for (const std::uint16_t b : bits) seen = seen || b == bit;
        if (bit != 0 && !taken && !seen) bits.push_back(bit);
    }
    std::vector<std::uint16_t> sets;
    for (std::uint32_t subset = 0; subset < (1u << bits.size()); ++subset) {
        std::uint16_t mods = kControlMask;
        for (std::size_t i = 0; i < bits.size(); ++i) {
            if ((subset >> i) & 1u) mods = static_cast<std::uint16_t>(mods | bits[i]);
        }
        sets.push_back(mods);
    }
    return sets;
}

// Left Ctrl, right Ctrl, left Shift, right Shift: true while down.
using SideKeys = std::array<bool, 4>;
inline constexpr std::array<std::uint32_t, 4> kSideKeyCodes{VK_LCONTROL, VK_RCONTROL, VK_LSHIFT, VK_RSHIFT};

struct KeyMessage {
    std::uint32_t message = 0;
    KeyboardRecord record;
    bool operator==(const KeyMessage& o) const {
        return message == o.message && record.vkCode == o.record.vkCode && record.flags == o.record.flags;
    }
};

inline KeyMessage KeyMessageOf(std::uint32_t vk, bool down, std::uint32_t time) {
    return {down ? static_cast<std::uint32_t>(WM_KEYDOWN) : static_cast<std::uint32_t>(WM_KEYUP),
            {vk, 0, down ? 0u : LLKHF_UP, time, 0}};
}

// The messages that bring the hook from what it was told to what is down now.
inline std::vector<KeyMessage> SideKeyChanges(const SideKeys& told, const SideKeys& now, std::uint32_t time) {
    std::vector<KeyMessage> out;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (told[i] != now[i]) out.push_back(KeyMessageOf(kSideKeyCodes[i], now[i], time));
    }
    return out;
}

}  // namespace ostrivane::desktop
