#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "lib/line_parser.hpp"

namespace {

using ostrivane::LineParseOptions;

LineParseOptions PathOptions() {
    LineParseOptions o;
    o.DropDelims = "\\";
    o.QuotePairs = "\"\"";
    o.DelimsUnused = o.DelimToPrevPart = o.KeepPairWhole = o.PairInsidePart = o.TrimParts = true;
    return o;
}

LineParseOptions PageOptions() {
    LineParseOptions o = PathOptions();
    o.DropDelims = "\r\n";
    o.KeepSplitPairs = "<>{}";
    return o;
}

// About 200 KB of markup with attributes in quotes, styles in braces and
// text between the tags; well under 32767 parts.
std::string Page() {
    std::string page = "<HTML>\r\n<HEAD><STYLE>td {color: red}</STYLE></HEAD>\r\n<BODY>\r\n";
    while (page.size() < 200 * 1024) {
        page += "<tr><td class=\"cell\" title=\"a > b\">Some text of a table cell, with words in it</td>";
        page += "<td><a href=\"http://example.invalid/page?id=1&x=2\">a link</a></td></tr>\r\n";
    }
    return page + "</BODY>\r\n</HTML>\r\n";
}

void BM_SplitWebPage(benchmark::State& state) {
    const std::string page = Page();
    const LineParseOptions o = PageOptions();
    std::vector<std::string> parts(100000);
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_GetLineParts3(page, parts, o));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(page.size()));
}
BENCHMARK(BM_SplitWebPage)->Unit(benchmark::kMicrosecond);

void BM_SplitPath(benchmark::State& state) {
    const std::string path = "C:\\Documents and Settings\\User\\Application Data\\\"My Markers\"\\Ostrivane.ini";
    const LineParseOptions o = PathOptions();
    std::vector<std::string> parts(100);
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_GetLineParts3(path, parts, o));
}
BENCHMARK(BM_SplitPath);

}  // namespace
