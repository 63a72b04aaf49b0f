// Time and peak memory of one page fetched through the HTTP client on the
// libcurl transport, the way the update check reads it.
// Usage: http_fetch URL [RUNS]
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "desktop/curl_transport.hpp"
#include "lib/errors.hpp"
#include "fakes/fake_platform.hpp"
#include "fakes/fake_window_system.hpp"
#include "net/http_client.hpp"

namespace {

// A line of /proc/self/status in KiB.
long StatusKib(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":")) return std::stol(line.substr(key.size() + 1));
    return -1;
}

double CpuMs() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) { return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

}  // namespace

int main(int argc, char** argv) {
    using namespace ostrivane;
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s URL [RUNS]\n", argv[0]);
        return 2;
    }
    const std::string url = argv[1];
    const int runs = argc > 2 ? std::stoi(argv[2]) : 5;
    desktop::CurlTransport transport;
    fakes::FakeDesktop desktop;
    fakes::FakeWindowSystem windows;
    std::vector<double> ms;
    std::size_t bytes = 0;
    long rssBefore = 0, peakBefore = 0, peakAfter = 0;
    const double cpuStart = CpuMs();
    for (int run = 0; run < runs; ++run) {
        if (run == 0) {
            rssBefore = StatusKib("VmRSS");
            peakBefore = StatusKib("VmHWM");
        }
        const auto start = std::chrono::steady_clock::now();
        std::string page;
        try {
            lib_clsHTTP http(transport, desktop, windows);
            http.HttpURL(url);
            http.ConnectToHTTPHost(0, false);
            page = http.WriteHTTPDataToString();
        } catch (const RuntimeError& e) {
            std::fprintf(stderr, "%s: %s\n", e.source().c_str(), e.description().c_str());
            return 1;
        }
        ms.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        if (run == 0) peakAfter = StatusKib("VmHWM");
        bytes = page.size();
    }
    const double cpuPerFetch = (CpuMs() - cpuStart) / runs;
    std::sort(ms.begin(), ms.end());
    const double median = ms[ms.size() / 2];
    std::printf("page: %zu bytes (%.1f MiB), %d runs\n", bytes, static_cast<double>(bytes) / 1048576.0, runs);
    std::printf("time: median %.1f ms, min %.1f ms, max %.1f ms (%.0f MiB/s)\n", median, ms.front(), ms.back(),
                static_cast<double>(bytes) / 1048576.0 / (median / 1000.0));
    std::printf("CPU of this process: %.1f ms a fetch\n", cpuPerFetch);
    std::printf("memory: VmRSS before %ld KiB, VmHWM before %ld KiB, after the first fetch %ld KiB\n", rssBefore,
                peakBefore, peakAfter);
    std::printf("peak growth of the first fetch: %ld KiB (%.2f x the page)\n", peakAfter - rssBefore,
                static_cast<double>(peakAfter - rssBefore) * 1024.0 / static_cast<double>(bytes));
    return 0;
}
