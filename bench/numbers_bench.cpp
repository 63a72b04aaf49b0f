#include <benchmark/benchmark.h>

#include "lib/numbers.hpp"
#include "lib/text.hpp"

namespace {

void BM_TextToInt32(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::TextToInt32("16777215"));
}
BENCHMARK(BM_TextToInt32);

void BM_LikeWildcardTitle(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ostrivane::Like("OSTRIVANE - BENCH GROUP WITH A LONG TITLE", "OSTRIVANE*GROUP*TITLE"));
}
BENCHMARK(BM_LikeWildcardTitle);

}  // namespace
