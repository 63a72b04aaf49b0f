// Whether a file is there, and its deletion through the trash, on a real
// directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "fakes/fake_trash.hpp"
#include "lib/file_test.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {
namespace {

TEST(FileTest, ExistsMatchesFilesNotDirectoriesWithWildcards) {
    TempDir dir;
    std::filesystem::create_directory(dir.path() / "groups.ini");
    WriteBytes(dir.path() / "Bench Export.ini", "x");
    const struct { std::string mask; bool found; std::string name; } rows[] = {
        {"groups.ini", false, ""},           {"g*.ini", false, ""},
        {"Bench Export.ini", true, "Bench Export.ini"}, {"\"Bench Export.ini\"", true, "Bench Export.ini"},
        {"B?nch*", true, "Bench Export.ini"}, {"bench export.ini", false, ""},
        {"*.INI", false, ""},                {"none.ini", false, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mask);
        const bool quoted = row.mask.front() == '"';
        const std::string path = quoted ? "\"" + dir.file(row.mask.substr(1)) : dir.file(row.mask);
        std::string found = "untouched";
        EXPECT_EQ(lib_FileExists(path, found, true), row.found);
        EXPECT_EQ(found, row.found ? row.name : "untouched");
        if (row.found) {
            lib_FileExists(path, found, false);
            EXPECT_EQ(found, dir.file(row.name));
        }
    }
    std::filesystem::create_directory(dir.path() / "plain");
    WriteBytes(dir.path() / "plain/Notes", "x");  // "*.*" takes a name without a dot too
    std::string found;
    EXPECT_TRUE(lib_FileExists(dir.file("plain/*.*"), found, true) && found == "Notes");
}

TEST(FileTest, KillGoesToTheTrashOrForGood) {
    TempDir dir;
    fakes::FakeTrash trash;
    lib_AttachTrash(&trash);
    const std::string file = dir.file("Bench_Export.ini");
    const struct { bool noRecycle, refuse; std::size_t trashed; } rows[] = {
        {false, false, 1}, {true, false, 0}, {false, true, 0},
    };
    for (const auto& row : rows) {
        trash.taken.clear();
        trash.refuse = row.refuse;
        WriteBytes(file, "[Defaults]\r\n");
        EXPECT_TRUE(lib_KillFile(file, row.noRecycle));
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_EQ(trash.taken.size(), row.trashed);
    }
    EXPECT_TRUE(lib_KillFile(file, false)) << "a file that is not there is gone";
    EXPECT_TRUE(trash.taken.empty());
    EXPECT_FALSE(lib_IsFileLocked(file));
    lib_AttachTrash(nullptr);
}

}  // namespace
}  // namespace ostrivane::testing
