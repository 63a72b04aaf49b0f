#include "desktop/x_pixels.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace ostrivane::desktop {
namespace {

TEST(XPixels, ColourIntoTrueColourMasks) {
    struct Case {
        std::int32_t colour;
        std::uint32_t r, g, b;  // masks
        std::uint32_t pixel;
    };
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

TEST(XPixels, HatchIsBothDiagonalsOfTheCell) {
    int set = 0;
    for (int y = 0; y < kHatchSize; ++y) {
        for (int x = 0; x < kHatchSize; ++x) {
            const bool expected = x == y || x == kHatchSize - 1 - y;
            EXPECT_EQ(HatchPixelSet(x, y), expected) << x << "," << y;
            set += HatchPixelSet(x, y) ? 1 : 0;
        }
    }
    EXPECT_EQ(set, 16);  // the diagonals do not meet on a pixel in an even cell
}

TEST(XPixels, PositionsAndSizesFitTheProtocol) {
    EXPECT_EQ(ClampPosition(0), 0);
    EXPECT_EQ(ClampPosition(-1280), -1280);
    EXPECT_EQ(ClampPosition(32767), 32767);
    EXPECT_EQ(ClampPosition(32768), 32767);
    EXPECT_EQ(ClampPosition(-32769), -32768);
    EXPECT_EQ(ClampPosition(INT32_MIN), -32768);
    EXPECT_EQ(ClampExtent(1), 1);
    EXPECT_EQ(ClampExtent(1920), 1920);
    EXPECT_EQ(ClampExtent(0), 1);
    EXPECT_EQ(ClampExtent(-5), 1);
    EXPECT_EQ(ClampExtent(70000), 65535);
    EXPECT_TRUE(Visible(1, 1));
    EXPECT_FALSE(Visible(0, 3));
    EXPECT_FALSE(Visible(5, -2));
}

TEST(XPixels, OpacityCardinalSpansTheWholeRange) {
    EXPECT_EQ(OpacityCardinal(0), 0u);
    EXPECT_EQ(OpacityCardinal(255), 0xFFFFFFFFu);
    EXPECT_EQ(OpacityCardinal(128), 0x80808080u);
    EXPECT_EQ(OpacityCardinal(3), 0x03030303u);
}

}  // namespace
}  // namespace ostrivane::desktop
