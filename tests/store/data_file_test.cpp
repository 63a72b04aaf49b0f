#include <gtest/gtest.h>

#include "support/run_time_error.hpp"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "fakes/memory_setting_store.hpp"
#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"
#include "store/ini_setting_store.hpp"
#include "support/scoped_env.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class DataFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir.file("data/nested/Ostrivane"));
        screen.ScreenWidth = 1920;
        screen.ScreenHeight = 1080;
    }
    std::string NewDataFile(const std::string& contents) {
        std::ofstream(dir.file("given.ini"), std::ios::binary) << contents;
        return dir.file("given.ini");
    }

    TempDir dir;
    fakes::MemorySettingStore settings;
    ScreenMetrics screen;
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
    namespace fs = std::filesystem;
    const std::string file = DataFilePath(settings), data = dir.file("data");
    const std::pair<std::function<void()>, std::string> rows[] = {
        {[] {}, ""},
        {[&] { fs::create_directories(DataDirSetting(settings)), std::ofstream(file).flush(); }, ""},
        {[&] { fs::create_directories(file); }, "is a directory, not a file"},
        {[&] { fs::create_directories(DataDirSetting(settings)), fs::create_symlink(file, file); },
         "cannot be read: Too many levels of symbolic links"},
        {[&] { fs::create_directories(data), std::ofstream(data + "/nested").flush(); }, "cannot be created: Not a directory"},
        {[&] { fs::create_directories(DataDirSetting(settings)), mkfifo(file.c_str(), 0600); }, "is not a regular file"}};
    for (const auto& [make, problem] : rows) {
        fs::remove_all(data);
        make();
        try {
            EXPECT_EQ(InitDataFile(settings), file);
            EXPECT_EQ(ReadAll(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n");
            EXPECT_EQ(problem, "");
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), kPathFileAccessError);
            EXPECT_EQ(e.description(), "The data file " + file + " " + problem + ".");
        }
    }
    // What a write that was killed left beside the file goes at the next start.
    const std::string leftover = DataDirSetting(settings) + "/.ostrivane.ini.999999999.1.tmp";
    fs::remove(file);
    std::ofstream(leftover).flush();
    InitDataFile(settings);
    EXPECT_FALSE(fs::exists(leftover));
}

TEST_F(DataFileTest, FirstRunWritesTheKeysInOrder) {
    const std::string file = InitDataFile(settings);
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(ReadAll(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nScreenRes=1920x1080\r\nPC=" +
                                 lib_GetComputerName() + "\r\n");

    // a second start leaves an existing file alone and writes nothing more
    const std::string before = ReadAll(file);
    EXPECT_EQ(InitDataFile(settings), file);
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(ReadAll(file), before);
}

TEST_F(DataFileTest, ScreenResWaitsForKnownMetrics) {
    const std::string file = NewDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nPC=box\r\n");
    LoadGlobalDefaults(defaults, file, screen, false);
    EXPECT_EQ(lib_ProfileGetString("Defaults", "ScreenRes", "?", file), "?");
    EXPECT_EQ(lib_ProfileGetString("Defaults", "PC", "", file), "box");
}

// Format 0 leaves Dotted as it was; format 1 puts part 7 in Dotted and, one
// column above its index, in HwndH too; other formats read nothing.
TEST_F(DataFileTest, DefaultsLineByFormat) {
    struct Row { const char* format; const char* line; std::vector<std::int32_t> cells; };
    const Row rows[] = {{"", "0,0,40,50,65280,3,60,1,", {40, 50, 65280, 3, 60, 0, 7}},
                        {"DataFormat=1\r\n", "0,0,-2,30,255,5,90,1,", {-2, 30, 255, 5, 90, 1, 1}},
                        {"DataFormat=2\r\n", "garbage", {-2, -2, 255, 1, 100, 0, 7}}};
    for (const Row& r : rows) {
        MarkerRow d = BuiltInGlobalDefaults();
        d[Dotted] = 7;
        const std::string file = NewDataFile("[Defaults]\r\n" + std::string(r.format) + "Defaults=" + r.line + "\r\nPC=x\r\n");
        LoadGlobalDefaults(d, file, screen, true);
        EXPECT_EQ((std::vector<std::int32_t>{d[Hlen], d[Vlen], d[Colour], d[Thickness], d[Opacity], d[HwndH], d[Dotted]}),
                  r.cells) << r.line;
    }
}

// The error names the file and the line, and keeps its number.
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
        try {
            LoadGlobalDefaults(d, file, screen, true);
            ADD_FAILURE() << r.contents;
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.number(), r.error) << r.contents;
            EXPECT_TRUE(e.description().starts_with("The data file " + file + " cannot be used: ")) << e.description();
            EXPECT_NE(e.description().find(r.told), std::string::npos) << e.description();
        }
        EXPECT_EQ(d[Hlen], r.hlenAfter) << r.contents;
    }
}

// A byte-order mark before the first header and a key line without "=" are
// read as the platform reads them; a key write then finds the section.
TEST_F(DataFileTest, ByteOrderMarkAndBareKeyLine) {
    const std::string text = "\xEF\xBB\xBF[Defaults]\r\nDataFormat\r\nDefaults=0,0,40,50,65280,3,60,1,\r\nPC=x\r\n";
    const std::string file = NewDataFile(text);
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(defaults[Hlen], 40);
    EXPECT_EQ(ReadAll(file), text + "ScreenRes=1920x1080\r\n");
}

TEST(GroupSection, BuildsTheDocumentedLines) {
    MarkerTable t;
    for (int c : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) t(0, c) = -1;
    const std::int32_t rows[2][8] = {{400, 300, -2, -2, 65280, 3, 60, 0}, {100, 100, 50, 50, -1, -1, -1, -1}};
    const int cols[] = {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted};
    for (int i = 0; i < 8; ++i) t(1, cols[i]) = rows[0][i], t(2, cols[i]) = rows[1][i];
    t(1, HwndH) = 12345;  // run-time columns never reach the file
    t(3, Hpos) = 777;     // a stale row beyond the list count
    using namespace std::string_literals;
    EXPECT_EQ(BuildGroupSection(t, 2, "First line\r\nSecond line"),
              "DataFormat=1\0Defaults=0,0,-1,-1,-1,-1,-1,-1,\0"
              "1=400,300,-2,-2,65280,3,60,0,\0"
              "2=100,100,50,50,-1,-1,-1,-1,\0"
              "Notes=First line\xffSecond line\0\0"s);
    EXPECT_EQ(BuildGroupSection(t, 0, ""), "DataFormat=1\0Defaults=0,0,-1,-1,-1,-1,-1,-1,\0Notes=\0\0"s);
}

TEST(GroupSection, NotesLineBreaks) {
    EXPECT_EQ(NotesToFileText("a\r\nb\r\n\r\rlone\ncr\r"), "a\xff" "b\xff\r\rlone\ncr\r");
    EXPECT_EQ(FileTextToNotes("a\xff" "b"), "a\r\nb");
}

TEST_F(DataFileTest, SaveReplacesTheSectionAndDefaultsToTheDataFile) {
    const std::string file = NewDataFile("[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n[Bench]\r\nold=1\r\n[Z]\r\nk=v\r\n");
    MarkerTable t;
    t(1, Hpos) = 5;
    ASSERT_TRUE(SaveGroupSection("bench", "", file, t, 1, "n"));
    EXPECT_EQ(ReadAll(file),
              "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n[Bench]\r\nDataFormat=1\r\nDefaults=0,0,0,0,0,0,0,0,\r\n"
              "1=5,0,0,0,0,0,0,0,\r\nNotes=n\r\n[Z]\r\nk=v\r\n");
    const std::string other = dir.file("export.ini");
    ASSERT_TRUE(SaveGroupSection("New", other, file, t, 0, ""));
    EXPECT_EQ(ReadAll(other), "[New]\r\nDataFormat=1\r\nDefaults=0,0,0,0,0,0,0,0,\r\nNotes=\r\n");
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
