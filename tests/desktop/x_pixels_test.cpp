#include "desktop/x_pixels.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace ostrivane::desktop {
namespace {

TEST(XPixels, ColourIntoTrueColourMasks) {
    struct Case { std::int32_t colour; std::uint32_t r, g, b, pixel; };  // r, g, b: the masks
    const Case cases[] = {
        // The usual 24-bit visual: red high, blue low; the table has red low.
        {0x0000FF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFF0000},
        {0x00FF00, 0xFF0000, 0x00FF00, 0x0000FF, 0x00FF00},
        {0xFF0000, 0xFF0000, 0x00FF00, 0x0000FF, 0x0000FF},
        {0x0080FF, 0xFF0000, 0x00FF00, 0x0000FF, 0xFF8000},
        {0x123456, 0xFF0000, 0x00FF00, 0x0000FF, 0x563412},
        // Bits above the colour are not part of it.
        {static_cast<std::int32_t>(0x7F0000FF), 0xFF0000, 0x00FF00, 0x0000FF, 0xFF0000},
        {-1, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF},
        // A BGR visual.
        {0x0000FF, 0x0000FF, 0x00FF00, 0xFF0000, 0x0000FF},
        // 16-bit 5-6-5: the top bits of each component.
        {0x0000FF, 0xF800, 0x07E0, 0x001F, 0xF800},
        {0xFFFFFF, 0xF800, 0x07E0, 0x001F, 0xFFFF},
        {0x008000, 0xF800, 0x07E0, 0x001F, 0x0400},
        // 30-bit 10-10-10: full intensity fills the wider field.
        {0x0000FF, 0x3FF00000, 0x000FFC00, 0x000003FF, 0x3FF00000},
        {0x000080, 0x3FF00000, 0x000FFC00, 0x000003FF, 0x20200000},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(PixelFromColour(c.colour, c.r, c.g, c.b), c.pixel) << std::hex << c.colour << " " << c.r;
    }
}

TEST(XPixels, PositionsAndSizesFitTheProtocol) {
    struct Case { std::int32_t value, position, extent; };
    const Case cases[] = {{0, 0, 1},         {1, 1, 1},          {-5, -5, 1},   {1920, 1920, 1920},
                          {-1280, -1280, 1}, {32767, 32767, 32767}, {32768, 32767, 32768}, {70000, 32767, 65535},
                          {-32769, -32768, 1}, {INT32_MIN, -32768, 1}};
    for (const Case& c : cases) {
        EXPECT_EQ(ClampPosition(c.value), c.position) << c.value;
        EXPECT_EQ(ClampExtent(c.value), c.extent) << c.value;
    }
    EXPECT_TRUE(Visible(1, 1));
    EXPECT_FALSE(Visible(0, 3));
    EXPECT_FALSE(Visible(5, -2));
}

}  // namespace
}  // namespace ostrivane::desktop
