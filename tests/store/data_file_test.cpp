#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <functional>

#include "fakes/memory_setting_store.hpp"
#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"
#include "store/ini_setting_store.hpp"
#include "support/run_time_error.hpp"
#include "support/scoped_env.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class DataFileTest : public ::testing::Test {
protected:
    void SetUp() override { settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir.file("data/nested/Ostrivane")); }
    std::string NewDataFile(const std::string& contents) {
        WriteBytes(dir.file("given.ini"), contents);
        return dir.file("given.ini");
    }

    TempDir dir;
    fakes::MemorySettingStore settings;
    ScreenMetrics screen{1920, 1080, 0, 0};
    MarkerRow defaults = BuiltInGlobalDefaults();
};

TEST_F(DataFileTest, PathIsDataDirAndExecutableName) {
    EXPECT_EQ(DataFilePath(settings), dir.file("data/nested/Ostrivane") + "/ostrivane.ini");
    const ScopedEnv data("XDG_DATA_HOME", "/tmp/xdg-data-test");
    EXPECT_EQ(DataDirSetting(fakes::MemorySettingStore()), "/tmp/xdg-data-test/Ostrivane");
}

// An empty file is a first run; a place that holds no usable file ends the
// start with the file's name and what is wrong with it.
TEST_F(DataFileTest, InitCreatesAMissingOrEmptyFileAndTellsWhyOthersCannotServe) {
    const std::string file = DataFilePath(settings), data = dir.file("data"), home = DataDirSetting(settings);
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[] {}, ""},
        {[&] { fs::create_directories(home), std::ofstream(file).flush(); }, ""},
        {[&] { fs::create_directories(file); }, "is a directory, not a file"},
        {[&] { fs::create_directories(home), fs::create_symlink(file, file); },
         "cannot be read: Too many levels of symbolic links"},
        {[&] { fs::create_directories(data), std::ofstream(data + "/nested").flush(); }, "cannot be created: Not a directory"},
        {[&] { fs::create_directories(home), mkfifo(file.c_str(), 0600); }, "is not a regular file"}};
    for (const auto& [make, problem] : rows) {
        fs::remove_all(data);
        make();
        const std::string error = FailureOf([&] { EXPECT_EQ(InitDataFile(settings), file); });
        EXPECT_EQ(problem.empty() ? ReadBytes(file) : error,
                  problem.empty() ? "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n"s
                                  : "75 Ostrivane.InitDataFile: The data file " + file + " " + problem + ".");
    }
    // What a write that was killed left beside the file goes at the next start.
    const std::string leftover = home + "/.ostrivane.ini.999999999.1.tmp";
    fs::remove(file);
    std::ofstream(leftover).flush();
    InitDataFile(settings);
    EXPECT_FALSE(fs::exists(leftover));
}

// The start writes ScreenRes and PC when missing, ScreenRes only for known
// metrics, and leaves those that are there alone.
TEST_F(DataFileTest, ScreenResAndPcAreWrittenOnceAndOnlyWhenKnown) {
    const std::string file = NewDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nPC=box\r\n");
    LoadGlobalDefaults(defaults, file, screen, false);
    EXPECT_EQ(ReadBytes(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nPC=box\r\n");
    for (int start = 1; start <= 2; ++start) {
        LoadGlobalDefaults(defaults, file, screen, true);
        EXPECT_EQ(ReadBytes(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nPC=box\r\nScreenRes=1920x1080\r\n");
    }
}

// Format 0 leaves Dotted as it was; format 1 puts part 7 in Dotted and, one
// column above its index, in HwndH too; other formats read nothing. A
// byte-order mark and a DataFormat line without "=" are read as the platform
// reads them.
TEST_F(DataFileTest, DefaultsLineByFormat) {
    struct Row { const char* head; const char* line; std::vector<std::int32_t> cells; };
    const Row rows[] = {{"[Defaults]\r\n", "0,0,40,50,65280,3,60,1,", {40, 50, 65280, 3, 60, 0, 7}},
                        {"\xEF\xBB\xBF[Defaults]\r\nDataFormat\r\n", "0,0,40,50,65280,3,60,1,", {40, 50, 65280, 3, 60, 0, 7}},
                        {"[Defaults]\r\nDataFormat=1\r\n", "0,0,-2,30,255,5,90,1,", {-2, 30, 255, 5, 90, 1, 1}},
                        {"[Defaults]\r\nDataFormat=2\r\n", "garbage", {-2, -2, 255, 1, 100, 0, 7}}};
    for (const Row& r : rows) {
        MarkerRow d = BuiltInGlobalDefaults();
        d[Dotted] = 7;
        LoadGlobalDefaults(d, NewDataFile(r.head + "Defaults="s + r.line + "\r\nPC=x\r\n"), screen, true);
        EXPECT_EQ((std::vector<std::int32_t>{d[Hlen], d[Vlen], d[Colour], d[Thickness], d[Opacity], d[HwndH], d[Dotted]}),
                  r.cells) << r.line;
    }
}

// The error keeps its number and names the file and the line.
TEST_F(DataFileTest, BadDefaultsLinesRaiseWithPartialAssignments) {
    struct Row { const char* contents; int error; std::int32_t hlenAfter; const char* told; };
    const Row rows[] = {
        {"[Defaults]\r\nDefaults=0,0,40,x,255,1,100,0,\r\n", kTypeMismatch, 40, "Defaults line \"0,0,40,x,"},
        {"[Defaults]\r\nDefaults=0,0,41,50\r\n", kSubscriptOutOfRange, 41, "(Subscript out of range)"},
        {"[Defaults]\r\nDefaults=0,0,45,50,\r\n", kTypeMismatch, 45, "(Type mismatch)"},  // the empty last part too
        {"[Defaults]\r\nDataFormat=1\r\nDefaults=0,0,42,50,255,1,100\r\n", kSubscriptOutOfRange, 42, "Defaults line"},
        {"[Defaults]\r\nDataFormat=1\r\nDefaults=0,0,43,4,5,6,7,8,9,10,11,12,13,14,\r\n", kSubscriptOutOfRange, 43, ""},
        {"[Defaults]\r\nDataFormat=one\r\nDefaults=0,0,44,50,255,1,100,0,\r\n", kTypeMismatch, -2, "DataFormat line \"one\""},
        {"[Defaults]\r\nDefaults=0,0,99999999999,50,255,1,100,0,\r\n", kOverflow, -2, "(Overflow)"},
        {"[Defaults]\r\nDefaults\r\nPC=x\r\n", kTypeMismatch, -2, "has no Defaults line"},
        {"\x9c\x01[Def\xffults]\nDefaults=1\n\x7f", kTypeMismatch, -2, "has no Defaults line"},
    };
    for (const Row& r : rows) {
        MarkerRow d = BuiltInGlobalDefaults();
        const std::string file = NewDataFile(r.contents);
        const std::string error = FailureOf([&] { LoadGlobalDefaults(d, file, screen, true); });
        EXPECT_TRUE(error.starts_with(std::to_string(r.error) + " Ostrivane.LoadGlobalDefaults: The data file " + file +
                                      " cannot be used: "))
            << error;
        EXPECT_NE(error.find(r.told), std::string::npos) << error;
        EXPECT_EQ(d[Hlen], r.hlenAfter) << r.contents;
    }
}

// Run-time columns and rows beyond the list count never reach the file.
TEST_F(DataFileTest, SaveWritesTheDocumentedLinesInPlaceOrToAnotherFile) {
    const std::string file = NewDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n[Bench]\r\nold=1\r\n[Z]\r\nk=v\r\n");
    MarkerTable t;
    for (int c : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) t(0, c) = -1;
    const std::int32_t rows[2][8] = {{400, 300, -2, -2, 65280, 3, 60, 0}, {100, 100, 50, 50, -1, -1, -1, -1}};
    const int cols[] = {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted};
    for (int i = 0; i < 8; ++i) t(1, cols[i]) = rows[0][i], t(2, cols[i]) = rows[1][i];
    t(1, HwndH) = 12345;
    t(3, Hpos) = 777;
    ASSERT_TRUE(SaveGroupSection("bench", "", file, t, 2, "First line\r\nSecond line"));
    EXPECT_EQ(ReadBytes(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n[Bench]\r\nDataFormat=1\r\n"
                               "Defaults=0,0,-1,-1,-1,-1,-1,-1,\r\n1=400,300,-2,-2,65280,3,60,0,\r\n"
                               "2=100,100,50,50,-1,-1,-1,-1,\r\nNotes=First line\xffSecond line\r\n[Z]\r\nk=v\r\n");
    ASSERT_TRUE(SaveGroupSection("New", dir.file("export.ini"), file, t, 0, ""));
    EXPECT_EQ(ReadBytes(dir.file("export.ini")), "[New]\r\nDataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\nNotes=\r\n");
    EXPECT_EQ(NotesToFileText("a\r\nb\r\n\r\rlone\ncr\r"), "a\xff" "b\xff\r\rlone\ncr\r");
    EXPECT_EQ(FileTextToNotes("a\xff" "b"), "a\r\nb");
}

TEST(IniSettingStoreTest, KeepsDataDirPerApplication) {
    TempDir dir;
    IniSettingStore store(dir.file("config"));
    EXPECT_EQ(store.GetSetting("Ostrivane", "Settings", "DataDir", "dflt"), "dflt");
    store.SaveSetting("Ostrivane", "Settings", "DataDir", "/some/where");
    EXPECT_EQ(store.GetSetting("Ostrivane", "settings", "datadir", "dflt"), "/some/where");
    EXPECT_TRUE(std::filesystem::is_regular_file(dir.file("config") + "/Ostrivane/settings.ini"));
    EXPECT_EQ(IniSettingStore(dir.file("config")).GetSetting("Ostrivane", "Settings", "DataDir", ""), "/some/where");
}

}  // namespace
}  // namespace ostrivane
