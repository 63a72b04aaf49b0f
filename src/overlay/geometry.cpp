#include "overlay/geometry.hpp"

#include "lib/errors.hpp"
#include "lib/numbers.hpp"

namespace ostrivane {

namespace {

// Truncates toward zero: 1 gives 0, 3 gives 1, -3 gives -1. Cannot overflow.
std::int16_t HalfOf(std::int16_t thickness) { return static_cast<std::int16_t>(thickness / 2); }

// Start and length of a line along its own axis.
struct Extent {
    std::int16_t start;
    std::int16_t length;
};

// Centred on pos, moved back by a further half, then clamped to the screen
// edge without shortening. pos - len / 2 - half is floating point, because
// len / 2 is a true division; only the rounded start must fit 16 bits.
Extent LineExtent(std::int32_t pos, std::int16_t len, std::int16_t half, std::int16_t screen_start,
                  std::int16_t whole_screen_length) {
    if (len == kWholeScreenLength) return {screen_start, whole_screen_length};
    std::int16_t start = RoundHalfEven(static_cast<double>(pos) - static_cast<double>(len) / 2.0 -
                                       static_cast<double>(half));
    if (start < screen_start) start = screen_start;
    return {start, len};
}

}  // namespace

std::int16_t RoundHalfEven(double x) { return RoundToInt16(x); }

MarkerLineRects MarkerLines(std::int32_t Hpos, std::int32_t Vpos, std::int16_t Hlen, std::int16_t Vlen,
                            std::int16_t Thickness, std::int16_t ScreenLeft, std::int16_t ScreenTop,
                            std::int16_t ScreenWidth) {
    const std::int16_t half = HalfOf(Thickness);
    const Extent horizontal = LineExtent(Hpos, Hlen, half, ScreenLeft, ScreenWidth);
    // An "S" vertical line spans the screen's width too; it runs off the bottom.
    const Extent vertical = LineExtent(Vpos, Vlen, half, ScreenTop, ScreenWidth);
    // After the start was computed, so a zero-length line stands where it was centred.
    const std::int16_t w = horizontal.length == 0 ? std::int16_t{1} : horizontal.length;
    const std::int16_t h = vertical.length == 0 ? std::int16_t{1} : vertical.length;

    MarkerLineRects lines;
    // The cross-axis coordinate is 32-bit and never clamped.
    lines.horizontal = {horizontal.start, Sub32(Vpos, half), w, Thickness};
    lines.vertical = {Sub32(Hpos, half), vertical.start, Thickness, h};
    return lines;
}

std::uint8_t AlphaFromOpacity(std::int16_t Opacity) {
    const std::int16_t p = Mul16(Opacity, 255);
    // The alpha is a byte: anything the rounding puts outside it overflows.
    const double a = RoundTiesToEven(static_cast<double>(p) / 100.0);
    if (a < 0.0 || a > 255.0) Raise(kOverflow);
    return static_cast<std::uint8_t>(a);
}

std::array<LineRect, 4> AddLineRects(std::int32_t x, std::int32_t y, std::int16_t AddMarkerThickness,
                                     std::int16_t ScreenLeft, std::int16_t ScreenTop, std::int16_t ScreenWidth,
                                     std::int16_t ScreenHeight) {
    const std::int16_t t = AddMarkerThickness;
    const std::int16_t half = HalfOf(t);
    const std::int16_t gap = Mul16(2, t);
    // Each expression with the cursor in it is 32-bit from its first step; a
    // width or height must then fit its 16-bit field.
    const std::int32_t arm_top = Sub32(Add32(ScreenTop, y), half);  // adds ScreenTop, on purpose
    const std::int32_t arm_left = Sub32(x, half);

    std::array<LineRect, 4> arms;
    arms[0] = {ScreenLeft, arm_top, CheckedInt16(Sub32(Sub32(x, ScreenLeft), gap)), t};
    // Measured from ScreenWidth alone, whatever the origin.
    arms[1] = {Add32(x, gap), arm_top, CheckedInt16(Sub32(Sub32(ScreenWidth, x), gap)), t};
    arms[2] = {arm_left, ScreenTop, t, CheckedInt16(Sub32(Sub32(y, ScreenTop), gap))};
    arms[3] = {arm_left, Add32(y, gap), t, CheckedInt16(Sub32(Sub32(ScreenHeight, y), gap))};
    return arms;
}

std::int16_t HitTestMarker(std::int32_t x, std::int32_t y, std::int32_t Hpos, std::int32_t Vpos, std::int16_t Hlen,
                           std::int16_t Vlen, std::int16_t Thickness, std::int16_t GrabProximity,
                           std::int16_t ScreenLeft, std::int16_t ScreenTop, std::int16_t ScreenWidth) {
    const std::int16_t half = HalfOf(Thickness);
    // No zero-to-one step here: a zero length stays zero.
    const Extent horizontal = LineExtent(Hpos, Hlen, half, ScreenLeft, ScreenWidth);
    const Extent vertical = LineExtent(Vpos, Vlen, half, ScreenTop, ScreenWidth);
    const std::int16_t l = horizontal.start;
    const std::int16_t w = horizontal.length;
    const std::int16_t t = vertical.start;
    const std::int16_t h = vertical.length;

    const std::int16_t r = half < GrabProximity ? GrabProximity : half;

    // Each test evaluates its whole condition before deciding, so its sums
    // overflow even for a point far from the line. The vertical bottom limit
    // starts from l, the start of the horizontal line; that is intended.
    const std::int32_t v_from = Sub32(Hpos, r);
    const std::int32_t v_to = Add32(Hpos, r);
    const std::int16_t v_bottom = Add16(l, h);
    if (x >= v_from && x <= v_to && y >= t && y <= v_bottom) return kHitVertical;

    const std::int32_t h_from = Sub32(Vpos, r);
    const std::int32_t h_to = Add32(Vpos, r);
    const std::int16_t h_right = Add16(l, w);
    if (y >= h_from && y <= h_to && x >= l && x <= h_right) return kHitHorizontal;

    return kHitNone;
}

}  // namespace ostrivane
