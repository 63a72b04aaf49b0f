// The small pieces of arithmetic between the marker table and the X server:
// a colour as the visual wants it, the dotted tile, the 16-bit geometry of
// the protocol and the opacity property. Plain C++, so they can be tested
// without a server.
#pragma once

#include <bit>
#include <cstdint>

namespace ostrivane::desktop {

// One 8-bit component placed into a TrueColor mask of any width.
constexpr std::uint32_t ScaleIntoMask(std::uint32_t component, std::uint32_t mask) {
    if (mask == 0) return 0;
    const int shift = std::countr_zero(mask);
    const int bits = std::popcount(mask);
    std::uint32_t value = component & 0xFFu;
    if (bits < 8) {
        value >>= (8 - bits);
    } else {
        // Repeat the component's bits so that 0xFF fills a wider mask.
        std::uint32_t wide = 0;
        int filled = 0;
        while (filled < bits) {
            wide = (wide << 8) | value;
            filled += 8;
        }
        value = wide >> (filled - bits);
    }
    return (value << shift) & mask;
}

// A colour of the table (red in the low byte, blue in the third) as a pixel
// of a TrueColor visual. Bits above the 24 colour bits are ignored.
constexpr std::uint32_t PixelFromColour(std::int32_t colour, std::uint32_t redMask, std::uint32_t greenMask,
                                        std::uint32_t blueMask) {
    const auto c = static_cast<std::uint32_t>(colour);
    return ScaleIntoMask(c & 0xFFu, redMask) | ScaleIntoMask((c >> 8) & 0xFFu, greenMask) |
           ScaleIntoMask((c >> 16) & 0xFFu, blueMask);
}

// The 8x8 diagonal cross hatch: both diagonals of the cell are drawn.
inline constexpr int kHatchSize = 8;
constexpr bool HatchPixelSet(int x, int y) { return x == y || x + y == kHatchSize - 1; }

// Window positions are 16-bit in the protocol. A window further out than
// that is off every screen either way, and stays so after the clamp, since
// a line is never wider than 32767.
constexpr std::int16_t ClampPosition(std::int32_t v) {
    if (v < INT16_MIN) return INT16_MIN;
    if (v > INT16_MAX) return INT16_MAX;
    return static_cast<std::int16_t>(v);
}

// Sizes are 16-bit unsigned and at least 1; a size of 0 or less cannot be
// an X window, and such a window is kept unmapped instead (see Visible).
constexpr std::uint16_t ClampExtent(std::int32_t v) {
    if (v < 1) return 1;
    if (v > UINT16_MAX) return UINT16_MAX;
    return static_cast<std::uint16_t>(v);
}

// Whether a line of this size shows at all: a line window of width or
// height 0 or less exists, but shows nothing.
constexpr bool Visible(std::int32_t width, std::int32_t height) { return width > 0 && height > 0; }

// _NET_WM_WINDOW_OPACITY: 0 is transparent, 0xFFFFFFFF opaque.
constexpr std::uint32_t OpacityCardinal(std::uint8_t alpha) { return alpha * 0x01010101u; }

}  // namespace ostrivane::desktop
