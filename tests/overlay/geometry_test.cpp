#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "lib/errors.hpp"
#include "overlay/geometry.hpp"
#include "support/run_time_error.hpp"

namespace ostrivane {

static std::ostream& operator<<(std::ostream& os, const LineRect& r) {
    return os << '{' << r.left << ", " << r.top << ", " << r.width << ", " << r.height << '}';
}

namespace {

constexpr std::int16_t S = kWholeScreenLength;

TEST(GeometryMarkerLines, Rows) {
    struct Row { std::int32_t hpos, vpos; std::int16_t hlen, vlen, thick, sl, st, sw; LineRect h, v; };
    const Row rows[] = {
        {100, 200, 20, 20, 3, 0, 0, 1920, {89, 199, 20, 3}, {99, 189, 3, 20}},
        {100, 200, S, S, 1, 0, 0, 1920, {0, 200, 1920, 1}, {100, 0, 1, 1920}},
        {5, 200, 100, 0, 1, 0, 0, 1920, {0, 200, 100, 1}, {5, 200, 1, 1}},
        // even thickness from a file: Half 2, band Vpos - 2 .. Vpos + 1
        {100, 200, 20, 21, 4, 0, 0, 1920, {88, 198, 20, 4}, {98, 188, 4, 21}},
        // "S" on a virtual screen left of the origin; the vertical spans the width too
        {-500, 100, S, S, 1, -1280, -300, 3200, {-1280, 100, 3200, 1}, {-500, -300, 1, 3200}},
        // clamped starts keep their full length
        {-1270, -290, 40, 30, 1, -1280, -300, 3200, {-1280, -290, 40, 1}, {-1270, -300, 1, 30}},
        // odd length: the tie follows the parity of the position
        {100, 100, 11, 11, 1, 0, 0, 1920, {94, 100, 11, 1}, {100, 94, 1, 11}},
        {101, 101, 11, 11, 1, 0, 0, 1920, {96, 101, 11, 1}, {101, 96, 1, 11}},
        // length 0 is placed as 0 (moved back by Half) and only then drawn as 1
        {300, 400, 0, 0, 3, 0, 0, 1920, {299, 399, 1, 3}, {299, 399, 3, 1}},
        // the cross-axis coordinate is neither clamped nor held to 16 bits
        {40000, -50000, S, S, 1, 0, 0, 1920, {0, -50000, 1920, 1}, {40000, 0, 1, 1920}},
        // a length from a file that is negative but no sentinel is passed on
        {100, 100, -5, 10, 1, 0, 0, 1920, {102, 100, -5, 1}, {100, 95, 1, 10}},
    };
    for (const Row& r : rows) {
        const MarkerLineRects got = MarkerLines(r.hpos, r.vpos, r.hlen, r.vlen, r.thick, r.sl, r.st, r.sw);
        EXPECT_EQ(got.horizontal, r.h) << r.hpos << ',' << r.vpos << " len " << r.hlen << ',' << r.vlen;
        EXPECT_EQ(got.vertical, r.v) << r.hpos << ',' << r.vpos << " len " << r.hlen << ',' << r.vlen;
    }
}

TEST(GeometryAlpha, TableAndOverflowOutsideTheProductAndTheByte) {
    const std::pair<std::int16_t, int> rows[] = {{0, 0}, {1, 3}, {2, 5}, {10, 26}, {30, 76}, {50, 128}, {70, 178},
                                                 {90, 230}, {99, 252}, {100, 255}};
    for (const auto& [opacity, alpha] : rows) EXPECT_EQ(AlphaFromOpacity(opacity), alpha) << opacity;
    // 129 * 255 leaves 16 bits; 101..128 fit the product but not the byte
    for (std::int16_t opacity : {129, 1000, -129, 128, 101, -1})
        EXPECT_EQ(ErrorOf([&] { AlphaFromOpacity(opacity); }), kOverflow) << opacity;
}

TEST(GeometryAddLineRects, Rows) {
    struct Row { std::int32_t x, y; std::int16_t t, sl, st, sw, sh; std::array<LineRect, 4> arms; };
    const Row rows[] = {
        // gap 2
        {500, 300, 1, 0, 0, 1920, 1080, {{{0, 300, 498, 1}, {502, 300, 1418, 1}, {500, 0, 1, 298}, {500, 302, 1, 778}}}},
        // gap 6, Half 1
        {500, 300, 3, 0, 0, 1920, 1080, {{{0, 299, 494, 3}, {506, 299, 1414, 3}, {499, 0, 3, 294}, {499, 306, 3, 774}}}},
        // origin off zero: arms 1 and 2 sit at ScreenTop + y, arm 2 runs past the right edge
        {100, 50, 1, -1280, -200, 3200, 1280,
         {{{-1280, -150, 1378, 1}, {102, -150, 3098, 1}, {100, -200, 1, 248}, {100, 52, 1, 1228}}}},
        // near the edges widths and heights go negative and stay so
        {1, 0, 3, 0, 0, 1920, 1080, {{{0, -1, -5, 3}, {7, -1, 1913, 3}, {0, 0, 3, -6}, {0, 6, 3, 1074}}}},
        {1919, 1079, 1, 0, 0, 1920, 1080,
         {{{0, 1079, 1917, 1}, {1921, 1079, -1, 1}, {1919, 0, 1, 1077}, {1919, 1081, 1, -1}}}},
    };
    for (const Row& r : rows) {
        const auto got = AddLineRects(r.x, r.y, r.t, r.sl, r.st, r.sw, r.sh);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(got[i], r.arms[i]) << "cursor " << r.x << ',' << r.y << " arm " << i + 1;
    }
}

TEST(GeometryHitTest, Rows) {
    struct Point { std::int32_t x, y; std::int16_t hit; };
    struct Row { std::int32_t hpos, vpos; std::int16_t hlen, vlen, thick, prox, sl, st, sw; std::vector<Point> points; };
    constexpr std::int16_t V = kHitVertical, H = kHitHorizontal, N = kHitNone;
    const Row rows[] = {
        // l 450, t 350, l + h 551, l + w 551: the crossing, inclusive corners, the bottom limit l + h past the line
        {500, 400, 101, 101, 1, 3, 0, 0, 1920, {{500, 400, V}, {497, 350, V}, {503, 551, V}, {500, 552, N}, {500, 349, N},
                                                {496, 400, H}, {450, 403, H}, {551, 397, H}, {449, 400, N}, {552, 400, N},
                                                {470, 404, N}}},
        // proximity 0, thickness 1: only the exact column or row
        {500, 400, 101, 101, 1, 0, 0, 0, 1920, {{500, 420, V}, {501, 420, N}, {470, 400, H}, {470, 401, N}}},
        // half thickness 4 beats proximity 2; proximity 5 beats half thickness 1
        {500, 400, 101, 101, 9, 2, 0, 0, 1920, {{504, 420, V}, {505, 420, N}}},
        {500, 400, 101, 101, 3, 5, 0, 0, 1920, {{505, 420, V}, {506, 420, N}}},
        // near the left edge l is clamped to 0, so l + h = 100 lies above t = 550:
        // the vertical line cannot be grabbed and the crossing goes to the horizontal
        {10, 600, 200, 100, 1, 2, 0, 0, 1920, {{10, 600, H}, {10, 560, N}}},
        // near the right edge the band reaches far below the line's end at 150
        {1800, 100, 200, 100, 1, 2, 0, 0, 1920, {{1800, 1800, V}, {1800, 1801, N}}},
        // Hlen 0: a horizontal target one pixel wide at l (the vertical misses, l + h = 30)
        {20, 400, 0, 10, 1, 0, 0, 0, 1920, {{20, 400, H}, {21, 400, N}, {19, 400, N}}},
        // "S" on a shifted virtual screen: l -1280, l + h = 1920
        {0, 0, S, S, 1, 1, -1280, -300, 3200, {{0, 1920, V}, {0, 1921, N}, {-1280, 1, H}, {-1281, 1, N}}},
    };
    for (const Row& r : rows)
        for (const Point& p : r.points)
            EXPECT_EQ(HitTestMarker(p.x, p.y, r.hpos, r.vpos, r.hlen, r.vlen, r.thick, r.prox, r.sl, r.st, r.sw), p.hit)
                << "point " << p.x << ',' << p.y << " marker " << r.hpos << ',' << r.vpos;
}

// Each 16-bit step overflows where its value leaves the width, whatever the point.
TEST(Geometry, SixteenBitOverflows) {
    const std::function<void()> overflows[] = {
        [] { MarkerLines(40000, 0, 10, 10, 1, 0, 0, 1920); },
        [] { MarkerLines(0, -40000, 10, 10, 1, 0, 0, 1920); },  // rounding comes before the clamp
        [] { MarkerLines(32768, 0, 1, 0, 1, 0, 0, 1920); },     // 32767.5 ties to 32768
        [] { MarkerLines(0, INT32_MIN, S, S, 3, 0, 0, 1920); },
        [] { MarkerLines(INT32_MIN, 0, S, S, 3, 0, 0, 1920); },
        [] { AddLineRects(33000, 0, 1, 0, 0, 1920, 1080); },  // the 32-bit width of arm 1 does not fit its field
        [] { AddLineRects(0, -40000, 1, 0, 0, 1920, 1080); },
        [] { AddLineRects(0, 0, 16384, 0, 0, 1920, 1080); },  // the gap 2 * T
        [] { AddLineRects(0, INT32_MAX, 1, 0, 1, 1920, 1080); },
        [] { HitTestMarker(0, 0, 30000, 100, 10, 5000, 1, 3, 0, 0, 1920); },  // l + h
        [] { HitTestMarker(0, 0, 30000, 100, 6000, 100, 1, 3, 0, 0, 1920); },  // l + w, once the vertical missed
        [] { HitTestMarker(0, 0, 40000, 100, 10, 10, 1, 3, 0, 0, 1920); },
        [] { HitTestMarker(0, 0, INT32_MAX, 0, S, S, 1, 3, 0, 0, 1920); }};
    for (std::size_t i = 0; i < std::size(overflows); ++i) EXPECT_EQ(ErrorOf(overflows[i]), kOverflow) << "row " << i;
    EXPECT_EQ(MarkerLines(32767, 0, 0, 0, 1, 0, 0, 1920).horizontal.left, 32767);
    EXPECT_EQ(HitTestMarker(30000, 100, 30000, 100, 6000, 100, 1, 3, 0, 0, 1920), kHitVertical);  // l + w not reached
}

}  // namespace
}  // namespace ostrivane
