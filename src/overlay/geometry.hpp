// Marker line geometry: from a marker's effective values to the rectangles of
// its two lines, from opacity to alpha, the four arms of the placement cross,
// and the grab test of the mouse. Pure arithmetic, exact to the pixel.
//
// Widths follow the data: lengths, thickness, opacity, proximity and the
// screen metrics are 16-bit; positions and cursor coordinates are 32-bit.
// Callers read 32-bit table cells and narrow them with CheckedInt16 before the
// call, so a cell that does not fit fails there with Overflow (6). Inside,
// every 16-bit sum, difference or product that leaves the 16-bit range, every
// 32-bit one that leaves 32 bits, and every result that does not fit the field
// it lands in, raises Overflow (6) as a RuntimeError.
#pragma once

#include <array>
#include <cstdint>

namespace ostrivane {

// The place of one line on the screen, virtual-screen pixels.
struct LineRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int16_t width = 0;
    std::int16_t height = 0;

    friend bool operator==(const LineRect&, const LineRect&) = default;
};

struct MarkerLineRects {
    LineRect horizontal;
    LineRect vertical;

    friend bool operator==(const MarkerLineRects&, const MarkerLineRects&) = default;
};

// Values of a hit, as MouseMode takes them.
inline constexpr std::int16_t kHitNone = 0;
inline constexpr std::int16_t kHitVertical = 2;
inline constexpr std::int16_t kHitHorizontal = 3;

// Length sentinel "S": the line runs over the whole screen.
inline constexpr std::int16_t kWholeScreenLength = -2;

// Nearest integer, a tie to the even neighbour; Overflow outside 16 bits.
std::int16_t RoundHalfEven(double x);

// The two lines of a marker. Hlen and Vlen are effective values: a length or
// -2 for the whole screen. Vlen -2 spans ScreenWidth, not the height.
MarkerLineRects MarkerLines(std::int32_t Hpos, std::int32_t Vpos, std::int16_t Hlen, std::int16_t Vlen,
                            std::int16_t Thickness, std::int16_t ScreenLeft, std::int16_t ScreenTop,
                            std::int16_t ScreenWidth);

// Layered-window alpha of an opacity percentage. Overflow for Opacity 129 and
// up (the 16-bit product) and for any alpha outside 0..255 (negative opacity,
// or above 100).
std::uint8_t AlphaFromOpacity(std::int16_t Opacity);

// The four arms of the placement cross around the cursor (x, y): left, right,
// up, down. Widths and heights that come out negative are passed on.
std::array<LineRect, 4> AddLineRects(std::int32_t x, std::int32_t y, std::int16_t AddMarkerThickness,
                                     std::int16_t ScreenLeft, std::int16_t ScreenTop, std::int16_t ScreenWidth,
                                     std::int16_t ScreenHeight);

// Whether the cursor (x, y) grabs a marker: kHitVertical, kHitHorizontal or
// kHitNone. The vertical line is tried first.
std::int16_t HitTestMarker(std::int32_t x, std::int32_t y, std::int32_t Hpos, std::int32_t Vpos, std::int16_t Hlen,
                           std::int16_t Vlen, std::int16_t Thickness, std::int16_t GrabProximity,
                           std::int16_t ScreenLeft, std::int16_t ScreenTop, std::int16_t ScreenWidth);

}  // namespace ostrivane
