#include "desktop/x_input_rules.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace ostrivane::desktop {
namespace {

TEST(XInputRules, ControlWithEverySubsetOfTheOthersButNeverShift) {
    struct Case { std::vector<std::uint16_t> extras; std::vector<std::uint16_t> sets; };
    const Case cases[] = {
        {{}, {4}},
        {{2}, {4, 6}},
        // Lock, Num Lock on Mod2, Alt on Mod1: eight sets.
        {{2, 16, 8}, {4, 6, 20, 22, 12, 14, 28, 30}},
        // No Scroll Lock key (0), Super on the same bit as Num Lock, Shift and Control offered.
        {{2, 16, 0, 16, 1, 4}, {4, 6, 20, 22}},
    };
    for (const Case& c : cases) EXPECT_EQ(GrabModifierSets(c.extras), c.sets);
    const std::vector<std::uint16_t> all = GrabModifierSets({2, 16, 128, 8, 64});
    EXPECT_EQ(all.size(), 32u);
    EXPECT_TRUE(std::none_of(all.begin(), all.end(), [](std::uint16_t m) { return (m & kShiftMask) != 0; }));
}

TEST(XInputRules, SideKeysReportOnlyWhatChangedInTheirOrder) {
    const auto down = [](std::uint32_t vk) { return KeyMessageOf(vk, true, 0); };
    const auto up = [](std::uint32_t vk) { return KeyMessageOf(vk, false, 0); };
    struct Case { SideKeys told, now; std::vector<KeyMessage> messages; };
    const Case cases[] = {
        {{false, false, false, false}, {false, false, false, false}, {}},
        {{false, false, false, false}, {true, false, false, false}, {down(VK_LCONTROL)}},
        {{true, false, false, false}, {false, true, false, false}, {up(VK_LCONTROL), down(VK_RCONTROL)}},
        {{false, true, true, false}, {false, true, false, true}, {up(VK_LSHIFT), down(VK_RSHIFT)}},
    };
    for (const Case& c : cases) EXPECT_EQ(SideKeyChanges(c.told, c.now, 0), c.messages);
    EXPECT_EQ(up(VK_1).message, static_cast<std::uint32_t>(WM_KEYUP));
    EXPECT_EQ(up(VK_1).record.flags, LLKHF_UP);
    EXPECT_EQ(down(VK_1).record.flags, 0u);
}

}  // namespace
}  // namespace ostrivane::desktop
