// The two walkers over a real directory tree.
#include "lib/file_finder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "dialogs/message_box.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/path_basics.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {
namespace {

namespace fs = std::filesystem;

// Root files, a hidden one, Latin-1 and blanks in names; x1 matches "x*" and
// holds a deeper level; y holds a directory named like the system's page file.
void MakeTree(const fs::path& root) {
    for (const char* d : {"x1/sub", "y/pagefile.sys", "empty"}) fs::create_directories(root / d);
    for (const char* f : {"a.txt", "B.txt", "caf\xe9.ini", "name with space.ini", ".hidden", "noext", "x1/xa.txt",
                          "x1/y.txt", "x1/sub/xb.txt", "y/x2.txt", "y/pagefile.sys/z.txt"}) {
        WriteBytes(root / f, f);
    }
}

TEST(FindFiles, MasksLevelsAndSearchTypes) {
    TempDir dir;
    MakeTree(dir.path());
    const std::string root = dir.path().string();
    const struct { std::string pattern, start; bool subs; std::int32_t type; std::set<std::string> found; } rows[] = {
        {"*.*", root, false, kFindFilesOnly,
         {"a.txt", "B.txt", "caf\xe9.ini", "name with space.ini", ".hidden", "noext"}},
        {"*.TXT", root, false, kFindFilesOnly, {"a.txt", "B.txt"}},
        {root + "/*.ini", "", false, kFindFilesOnly, {"caf\xe9.ini", "name with space.ini"}},
        {"x*", root, true, kFindFilesOnly, {"x1/xa.txt", "x1/sub/xb.txt", "y/x2.txt"}},
        {"x*", root, false, kFindDirsOnly, {"x1/"}},
        {"*", root + "/x1", true, kFindFilesAndDirs, {"xa.txt", "y.txt", "sub/", "sub/xb.txt"}},
        {"none*", root, false, kFindFilesAndDirs, {}},
        {"*", root + "/empty", true, kFindFilesAndDirs, {}},
        {"*", root + "/missing", true, kFindFilesAndDirs, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pattern + " in " + row.start);
        lib_clsFindFiles finder;
        finder.SearchType(row.type);
        std::set<std::string> found;
        for (bool ok = finder.FindFirstFile(row.pattern, row.start, row.subs); ok; ok = finder.FindNextFile()) {
            const std::string rel = lib_JoinPath(finder.RecursedDir(), finder.File(), true);
            EXPECT_TRUE(found.insert(finder.IsDir() ? rel + "/" : rel).second) << "twice: " << rel;
            EXPECT_EQ(finder.FullFile(), lib_JoinPath(finder.Dir(), rel, true));
        }
        EXPECT_EQ(found, row.found);
    }
}

// Each step: skip the directory, or go on with the subdirectories; the name
// expected ("relative/dir/name", "" for the walk's end) and whether the call
// entered a directory.
TEST(GetNextFile, SortedDepthFirstWithSkips) {
    TempDir dir;
    MakeTree(dir.path());
    fakes::FakeDesktop desktop;
    enum Act { Next, Skip, OpenNext };
    struct Step { Act act; std::string expected; bool entered; };
    const struct { const char* name; std::vector<Step> steps; } walks[] = {
        {"whole", {{Next, "a.txt", true}, {Next, "B.txt", false}, {Next, "caf\xe9.ini", false}, {Next, "name with space.ini", false},
                   {Next, "noext", false}, {Next, "x1/xa.txt", true}, {Next, "x1/y.txt", false},
                   {Next, "x1/sub/xb.txt", true}, {Next, "y/x2.txt", true}, {Next, "", false}}},
        {"skips", {{Next, "a.txt", true}, {OpenNext, "x1/xa.txt", true}, {Skip, "y/x2.txt", true}, {Skip, "", false}}},
    };
    for (const auto& walk : walks) {
        SCOPED_TRACE(walk.name);
        bool start = true;
        std::string found, rel;  // the caller's, kept between calls
        for (const Step& step : walk.steps) {
            bool entered = !step.entered;
            const bool ok = lib_GetNextFile(desktop, start, "*.*", dir.path().string(), true, found, rel, entered,
                                            step.act == OpenNext ? "x" : "", step.act == Skip);
            EXPECT_EQ(ok ? rel + found : "", step.expected);
            EXPECT_EQ(entered, step.entered) << step.expected;
            start = false;
        }
    }
    EXPECT_EQ(desktop.calls, std::vector<std::string>{}) << "no message on a plain walk";
}

TEST(GetNextFile, VanishedNamesMissingDirAndTheNameLimit) {
    TempDir dir;
    fakes::FakeDesktop desktop;
    std::string found, rel;
    bool entered = false;
    const std::string root = dir.path().string();
    for (const char* f : {"1", "2", "3"}) WriteBytes(dir.path() / f, f);
    ASSERT_TRUE(lib_GetNextFile(desktop, true, "*", root, false, found, rel, entered, "", false));
    fs::remove(dir.path() / "2");
    ASSERT_TRUE(lib_GetNextFile(desktop, false, "*", root, false, found, rel, entered, "", false));
    EXPECT_EQ(found, "3") << "a name deleted meanwhile is passed over";
    EXPECT_FALSE(lib_GetNextFile(desktop, false, "*", root, false, found, rel, entered, "", false));

    EXPECT_FALSE(lib_GetNextFile(desktop, true, "*", root + "/gone", true, found, rel, entered, "", false));
    EXPECT_EQ(MessageText.substr(5), "Directory " + root + "/gone not found");

    const fs::path many = dir.path() / "many";
    fs::create_directory(many);
    for (int i = 0; i <= kMaxNamesInOneDir; ++i) WriteBytes(many / std::to_string(i), "");
    desktop.calls.clear();
    int names = 0;
    for (bool ok = lib_GetNextFile(desktop, true, "*", many.string(), false, found, rel, entered, "", false); ok;
         ok = lib_GetNextFile(desktop, false, "*", many.string(), false, found, rel, entered, "", false)) {
        ++names;
    }
    EXPECT_EQ(names, kMaxNamesInOneDir);
    EXPECT_EQ(std::count(desktop.calls.begin(), desktop.calls.end(), "ShowModal frmMsgBox"), 1);
    EXPECT_EQ(MessageText, "1   5Too many files in one dir - will process first 10000");
}

}  // namespace
}  // namespace ostrivane::testing
