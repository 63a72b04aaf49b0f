#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "support/run_time_error.hpp"
#include "support/scoped_env.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

namespace fs = std::filesystem;

TEST(PathBasics, JoinPathPutsOneSeparatorBetween) {
    struct Row { const char* dir; const char* file; bool forward; const char* joined; };
    const Row rows[] = {
        {"C:\\D\\", "\\f", false, "C:\\D\\f"}, {"C:\\D\\", "f", false, "C:\\D\\f"}, {"C:\\D", "\\f", false, "C:\\D\\f"},
        {"C:\\D", "f", false, "C:\\D\\f"},     {"", "f", false, "f"},               {"C:\\D", "", false, "C:\\D"},
        {"\\", "\\", false, "\\"},             {"/a/", "/b", true, "/a/b"},         {"/a/", "b", false, "/a/\\b"},
        {"a\\", "\\b", true, "a\\/\\b"}};
    for (const Row& row : rows)
        EXPECT_EQ(lib_JoinPath(row.dir, row.file, row.forward), row.joined) << row.dir << " + " << row.file;
}

TEST(PathBasics, GetFolderGivesTheDirectoryPart) {
    struct Row { const char* path; bool drive; bool forward; const char* folder; };
    const Row rows[] = {
        {"C:\\Data\\Ostrivane\\f.ini", true, false, "C:\\Data\\Ostrivane"},
        {"C:\\Data\\Ostrivane\\f.ini", false, false, "\\Data\\Ostrivane"},
        {"C:\\f.ini", true, false, "C:"},  {"C:\\f.ini", false, false, ""},  {"C:f.ini", true, false, "C:"},
        {"f.ini", true, false, ""},        {"  \"C:\\D\\f.ini\"  ", true, false, "C:\\D"}, {"/f.ini", true, true, ""},
        {"x:/a:b/c", false, true, "/a:b"}, {"C:\\D\\f.ini", true, true, "C:"}};  // the other separator is plain text
    for (const Row& row : rows)
        EXPECT_EQ(lib_GetFolder(row.path, row.drive, row.forward), row.folder) << row.path << row.drive << row.forward;
}

TEST(PathBasics, StripQuotesTrimsAndDropsOnePair) {
    const std::pair<const char*, const char*> rows[] = {
        {"\"", "\""}, {"\"\"", ""}, {"  \"a b\"  ", "a b"}, {"\"a", "\"a"}, {"\" a \"", " a "},
        {"\"a\"b\"", "a\"b"}, {"\ta\t", "\ta\t"}, {"", ""}};
    for (const auto& [text, stripped] : rows) EXPECT_EQ(lib_StripQuotes(text), stripped) << text;
}

TEST(PathBasics, SpecialFoldersAreTheXdgPlaces) {
    const ScopedEnv home("HOME", "/home/u");
    const ScopedEnv data("XDG_DATA_HOME", nullptr);
    const ScopedEnv config("XDG_CONFIG_HOME", "relative/is/ignored");
    const std::pair<std::int32_t, const char*> rows[] = {
        {35, "/home/u/.local/share"}, {28, "/home/u/.local/share"}, {26, "/home/u/.config"},
        {5, "/home/u/Documents"}, {0, "/home/u/Desktop"}, {1, ""}, {-1, ""}};
    for (const auto& [number, folder] : rows) EXPECT_EQ(lib_GetSpecialFolder(number), folder) << number;
    const ScopedEnv dataSet("XDG_DATA_HOME", "/x/data");
    const ScopedEnv configSet("XDG_CONFIG_HOME", "/x/cfg");
    const ScopedEnv noHome("HOME", nullptr);
    EXPECT_EQ(lib_GetSpecialFolder(35), "/x/data");
    EXPECT_EQ(lib_GetSpecialFolder(26), "/x/cfg");
    EXPECT_EQ(lib_GetSpecialFolder(5), "");
}

// Every level is made but a server and share ("//server/share/..."); a
// relative path is made under "/" but then looked for under the current
// directory. A directory is there only as a directory, against the current one.
TEST(PathBasics, MakePathAndDirExists) {
    TempDir dir, elsewhere;
    fs::create_directory(dir.path() / "sub");
    std::ofstream(dir.path() / "file") << "x";
    // Quotes and blanks around, doubled and trailing separators, a blank inside a name.
    EXPECT_TRUE(lib_MakePath("  \"" + dir.path().string() + "//x y//z/\"  "));
    EXPECT_TRUE(fs::is_directory(dir.path() / "x y" / "z"));
    EXPECT_TRUE(lib_MakePath("/" + dir.path().string() + "/n1"));  // "//tmp/ostrivane-test-.../n1"
    EXPECT_TRUE(fs::is_directory(dir.path() / "n1"));
    // A share that is not there is not made either: the first level below it fails.
    const fs::path share = dir.path().root_path() / *dir.path().relative_path().begin() /
                           ("ostrivane-no-share-" + dir.path().filename().string());
    const std::string path = "/" + share.string() + "/d";
    EXPECT_EQ(FailureOf([&] { lib_MakePath(path); }), "75 Vexil.lib_MakePath: Path/File access error");
    EXPECT_FALSE(fs::exists(share));
    {
        const ScopedCurrentDir cwd(dir.path());
        EXPECT_TRUE(lib_DirExists(dir.file("sub")) && lib_DirExists("./sub/"));
        EXPECT_FALSE(lib_DirExists("") || lib_DirExists("file") || lib_DirExists("none"));
    }
    const ScopedCurrentDir cwd(elsewhere.path());
    EXPECT_FALSE(lib_MakePath((dir.path() / "r1").relative_path().string()));
    EXPECT_TRUE(fs::is_directory(dir.path() / "r1"));
    EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

}  // namespace
}  // namespace ostrivane
