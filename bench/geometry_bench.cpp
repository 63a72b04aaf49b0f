#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>

#include "overlay/geometry.hpp"

namespace {

using ostrivane::HitTestMarker;

void BM_MarkerLines(benchmark::State& state) {
    std::int32_t hpos = 100;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hpos);
        benchmark::DoNotOptimize(ostrivane::MarkerLines(hpos, 200, 21, 21, 3, 0, 0, 1920));
    }
}
BENCHMARK(BM_MarkerLines);

void BM_AlphaFromOpacity(benchmark::State& state) {
    std::int16_t opacity = 70;
    for (auto _ : state) {
        benchmark::DoNotOptimize(opacity);
        benchmark::DoNotOptimize(ostrivane::AlphaFromOpacity(opacity));
    }
}
BENCHMARK(BM_AlphaFromOpacity);

struct BenchMarker {
    std::int32_t hpos, vpos;
    std::int16_t hlen, vlen, thickness;
};

// One mouse press against a full group of 50 markers that all miss, so every
// marker is tested to the end.
void BM_HitTestFullGroup(benchmark::State& state) {
    std::array<BenchMarker, 50> markers{};
    for (int i = 0; i < 50; ++i) {
        const auto step = static_cast<std::int16_t>(i);
        markers[static_cast<std::size_t>(i)] = {100 + 30 * i, 80 + 20 * i, static_cast<std::int16_t>(i % 2 ? -2 : 201),
                                                static_cast<std::int16_t>(101 + step), static_cast<std::int16_t>(1 + 2 * (i % 3))};
    }
    std::int32_t x = 1905;
    std::int32_t y = 1075;
    for (auto _ : state) {
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
        int hit = 0;
        for (const BenchMarker& m : markers) {
            hit = HitTestMarker(x, y, m.hpos, m.vpos, m.hlen, m.vlen, m.thickness, 3, 0, 0, 1920);
            if (hit != 0) break;
        }
        benchmark::DoNotOptimize(hit);
    }
}
BENCHMARK(BM_HitTestFullGroup);

}  // namespace
