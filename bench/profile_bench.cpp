// The profile routines on a data file of 1,000 groups of 50 markers.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

#include "lib/profile.hpp"

namespace {

namespace fs = std::filesystem;

std::string GroupSection(int group) {
    std::string text = "DataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\n";
    for (int marker = 1; marker <= 50; ++marker) {
        text += std::to_string(marker) + "=" + std::to_string(400 + marker) + "," + std::to_string(300 + group % 500) +
                ",-2,-2,65280,3,60,0,\r\n";
    }
    text += "Notes=Group " + std::to_string(group) + " first line\xffsecond line\r\n";
    return text;
}

// The data file, made once in a directory of its own and removed at exit.
class DataFile {
public:
    explicit DataFile(const char* lineEnd) {
        std::mt19937_64 random{std::random_device{}()};
        dir_ = fs::temp_directory_path() / ("ostrivane-bench-" + std::to_string(random() & 0xffffffffu));
        fs::create_directories(dir_);
        path_ = (dir_ / "ostrivane.ini").string();
        std::string text = "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nDataFormat=1\r\nScreenRes=1920x1080\r\nPC=BENCH\r\n";
        for (int group = 1; group <= 1000; ++group) text += "[Group" + std::to_string(group) + "]\r\n" + GroupSection(group);
        std::ofstream out(path_, std::ios::binary);
        for (std::size_t pos = 0; pos < text.size();) {
            const std::size_t end = text.find("\r\n", pos);
            out << text.substr(pos, end - pos) << lineEnd;
            pos = end + 2;
        }
    }
    ~DataFile() {
        std::error_code ec;
        fs::remove_all(dir_, ec);
    }
    const std::string& path() const { return path_; }

private:
    fs::path dir_;
    std::string path_;
};

const std::string& Data() {
    static const DataFile file("\r\n");
    return file.path();
}

// The same file as another editor may leave it, with LF line ends.
const std::string& LfData() {
    static const DataFile file("\n");
    return file.path();
}

std::string SectionData(int group) {
    std::string data = ostrivane::lib_ProfileGetSection("Group" + std::to_string(group), Data());
    return data + '\0';
}

void BM_ProfileGetString(benchmark::State& state) {
    const std::string& file = Data();
    state.counters["file_bytes"] = static_cast<double>(fs::file_size(file));
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileGetString("Group500", "25", "", file));
}
BENCHMARK(BM_ProfileGetString)->Unit(benchmark::kMicrosecond);

void BM_ProfileGetStringLastGroup(benchmark::State& state) {
    const std::string& file = Data();
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileGetString("Group1000", "Notes", "", file));
}
BENCHMARK(BM_ProfileGetStringLastGroup)->Unit(benchmark::kMicrosecond);

void BM_ProfileGetStringLfFile(benchmark::State& state) {
    const std::string& file = LfData();
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileGetString("Group1000", "Notes", "", file));
}
BENCHMARK(BM_ProfileGetStringLfFile)->Unit(benchmark::kMicrosecond);

void BM_ProfileGetSection(benchmark::State& state) {
    const std::string& file = Data();
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileGetSection("Group500", file));
}
BENCHMARK(BM_ProfileGetSection)->Unit(benchmark::kMicrosecond);

void BM_ProfileWriteString(benchmark::State& state) {
    const std::string& file = Data();
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileWriteString("Defaults", "PC", "BENCH", file));
}
BENCHMARK(BM_ProfileWriteString)->Unit(benchmark::kMicrosecond);

void BM_ProfileWriteSection(benchmark::State& state) {
    const std::string& file = Data();
    const std::string data = SectionData(500);
    for (auto _ : state) benchmark::DoNotOptimize(ostrivane::lib_ProfileWriteSection("Group500", data, file));
}
BENCHMARK(BM_ProfileWriteSection)->Unit(benchmark::kMicrosecond);

// Each iteration renames the group one way or back: a read, a write and a delete.
void BM_ProfileRenameSection(benchmark::State& state) {
    const std::string& file = Data();
    const std::string names[2] = {"Group700", "Group700 renamed"};
    int from = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ostrivane::lib_ProfileRenameSection(names[from], names[1 - from], file));
        from = 1 - from;
    }
    if (from == 1) ostrivane::lib_ProfileRenameSection(names[1], names[0], file);
}
BENCHMARK(BM_ProfileRenameSection)->Unit(benchmark::kMicrosecond);

void BM_ProfileDeleteSection(benchmark::State& state) {
    const std::string& file = Data();
    const std::string data = SectionData(300);
    for (auto _ : state) {
        ostrivane::lib_ProfileDeleteSection("Group300", file);
        state.PauseTiming();
        ostrivane::lib_ProfileWriteSection("Group300", data, file);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ProfileDeleteSection)->Unit(benchmark::kMicrosecond);

}  // namespace
