#include <gtest/gtest.h>

#include "support/run_time_error.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "fakes/memory_setting_store.hpp"
#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"
#include "store/ini_setting_store.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

void WriteAll(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}


class DataFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir.file("data/nested/Ostrivane"));
        screen.ScreenWidth = 1920;
        screen.ScreenHeight = 1080;
    }
    std::string NewDataFile(const std::string& contents) {
        const std::string path = dir.file("given.ini");
        WriteAll(path, contents);
        return path;
    }

    TempDir dir;
    fakes::MemorySettingStore settings;
    ScreenMetrics screen;
    MarkerRow defaults = BuiltInGlobalDefaults();
};

TEST_F(DataFileTest, PathIsDataDirAndExecutableName) {
    EXPECT_EQ(DataFilePath(settings), dir.file("data/nested/Ostrivane") + "/ostrivane.ini");
    fakes::MemorySettingStore empty;
    EXPECT_EQ(DataDirSetting(empty), DefaultDataDir());
}

TEST_F(DataFileTest, DefaultDataDirFollowsXdgDataHome) {
    const char* old = std::getenv("XDG_DATA_HOME");
    const std::string saved = old ? old : "";
    setenv("XDG_DATA_HOME", "/tmp/xdg-data-test", 1);
    EXPECT_EQ(DefaultDataDir(), "/tmp/xdg-data-test/Ostrivane");
    if (old)
        setenv("XDG_DATA_HOME", saved.c_str(), 1);
    else
        unsetenv("XDG_DATA_HOME");
}

TEST_F(DataFileTest, FirstRunCreatesDirectoryAndKeysInOrder) {
    const std::string file = InitDataFile(settings);
    ASSERT_TRUE(std::filesystem::is_regular_file(file));
    EXPECT_EQ(ReadAll(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n");

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

TEST_F(DataFileTest, FormatZeroLeavesDottedAndIgnoresTheEighthValue) {
    const std::string file = NewDataFile("[Defaults]\nDefaults=0,0,40,50,65280,3,60,1,\nScreenRes=1x1\nPC=x\n");
    defaults[Dotted] = 7;  // an earlier value survives a reload
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(defaults[Hlen], 40);
    EXPECT_EQ(defaults[Vlen], 50);
    EXPECT_EQ(defaults[Colour], 65280);
    EXPECT_EQ(defaults[Thickness], 3);
    EXPECT_EQ(defaults[Opacity], 60);
    EXPECT_EQ(defaults[HwndH], 0);
    EXPECT_EQ(defaults[Dotted], 7);
}

TEST_F(DataFileTest, FormatOneReadsDottedFromThePartSeven) {
    const std::string file =
        NewDataFile("[Defaults]\r\nDataFormat=1\r\nDefaults=0,0,-2,30,255,5,90,1,\r\nScreenRes=1x1\r\nPC=x\r\n");
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(defaults[Vlen], 30);
    EXPECT_EQ(defaults[Thickness], 5);
    EXPECT_EQ(defaults[Opacity], 90);
    EXPECT_EQ(defaults[HwndH], 1);  // part 7 also lands one column above its index
    EXPECT_EQ(defaults[Dotted], 1);
}

TEST_F(DataFileTest, OtherFormatsReadNothing) {
    const std::string file = NewDataFile("[Defaults]\r\nDataFormat=2\r\nDefaults=garbage\r\nScreenRes=1x1\r\nPC=x\r\n");
    LoadGlobalDefaults(defaults, file, screen, true);
    EXPECT_EQ(defaults.cells(), BuiltInGlobalDefaults().cells());
}

TEST_F(DataFileTest, BadDefaultsLinesRaiseWithPartialAssignments) {
    struct Row { const char* contents; int error; std::int32_t hlenAfter; };
    const Row rows[] = {
        {"[Defaults]\r\nDefaults=0,0,40,x,255,1,100,0,\r\n", kTypeMismatch, 40},
        {"[Defaults]\r\nDefaults=0,0,41,50\r\n", kSubscriptOutOfRange, 41},
        {"[Defaults]\r\nDefaults=0,0,45,50,\r\n", kTypeMismatch, 45},  // the empty last part is read too
        {"[Defaults]\r\nDataFormat=1\r\nDefaults=0,0,42,50,255,1,100\r\n", kSubscriptOutOfRange, 42},
        {"[Defaults]\r\nDataFormat=1\r\nDefaults=0,0,43,4,5,6,7,8,9,10,11,12,13,14,\r\n", kSubscriptOutOfRange, 43},
        {"[Defaults]\r\nDataFormat=one\r\nDefaults=0,0,44,50,255,1,100,0,\r\n", kTypeMismatch, -2},
        {"[Defaults]\r\nDefaults=0,0,99999999999,50,255,1,100,0,\r\n", kOverflow, -2},
    };
    for (const Row& r : rows) {
        MarkerRow d = BuiltInGlobalDefaults();
        const std::string file = NewDataFile(r.contents);
        EXPECT_EQ(ErrorOf([&] { LoadGlobalDefaults(d, file, screen, true); }), r.error) << r.contents;
        EXPECT_EQ(d[Hlen], r.hlenAfter) << r.contents;
    }
}

TEST(GroupSection, BuildsTheDocumentedLines) {
    MarkerTable t;
    for (int c : {Hlen, Vlen, Colour, Thickness, Opacity, Dotted}) t(0, c) = -1;
    const std::int32_t one[] = {400, 300, -2, -2, 65280, 3, 60, 0};
    const std::int32_t two[] = {100, 100, 50, 50, -1, -1, -1, -1};
    const int cols[] = {Hpos, Vpos, Hlen, Vlen, Colour, Thickness, Opacity, Dotted};
    for (int i = 0; i < 8; ++i) {
        t(1, cols[i]) = one[i];
        t(2, cols[i]) = two[i];
    }
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
    EXPECT_EQ(NotesToFileText("a\r\nb\r\n"), "a\xff" "b\xff");
    EXPECT_EQ(NotesToFileText("lone\ncr\r"), "lone\ncr\r");
    EXPECT_EQ(FileTextToNotes("a\xff" "b"), "a\r\nb");
    EXPECT_EQ(FileTextToNotes(NotesToFileText("x\r\ny")), "x\r\ny");
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
