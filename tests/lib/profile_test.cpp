#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "lib/profile.hpp"
#include "support/file_size_limit.hpp"
#include "support/scoped_env.hpp"
#include "support/temp_dir.hpp"

namespace {

// Where every fsync goes while a test listens: the path that the descriptor
// stands for at that moment.
std::vector<std::string>* synced = nullptr;

}  // namespace

extern "C" int fsync(int fd) {
    static const auto real = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    std::error_code ec;
    if (synced) synced->push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), ec));
    return real(fd);
}

namespace ostrivane {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::set<std::string> Listing(const fs::path& dir) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) names.insert(entry.path().filename().string());
    return names;
}

class Profile : public ::testing::Test {
protected:
    TempDir dir;
    const std::string file = dir.file("data.ini");
};

// Read the platform's way: a key line cut to 254, the default without its
// trailing spaces, every byte but line ends and blanks.
TEST_F(Profile, KeyReadsCutTheValueOrTheDefault) {
    ASSERT_TRUE(lib_ProfileWriteString("Defaults", "Long", std::string(300, 'v'), file));
    EXPECT_EQ(lib_ProfileGetString("defaults", "LONG", "", file), std::string(254, 'v'));
    EXPECT_EQ(lib_ApiResult, 254);
    EXPECT_EQ(lib_ProfileGetString("NoSection", "Long", "1", file), "1");
    EXPECT_EQ(lib_ApiResult, 1);
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Long", "dflt", dir.file("none.ini")), "dflt");
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Absent", std::string(300, 'd'), file).size(), 254u);
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Absent", " d \t  ", file), " d \t");
    std::string all;
    for (int c = 1; c <= 255; ++c)
        if (std::string_view(" \t\v\f\r\n").find(static_cast<char>(c)) == std::string_view::npos) all += char(c);
    ASSERT_TRUE(lib_ProfileWriteString("Bench", "Notes", all, file));
    EXPECT_EQ(lib_ProfileGetString("Bench", "Notes", "", file), all);
    EXPECT_EQ(Listing(dir.path()), std::set<std::string>{"data.ini"});
}

// A section comes back as written, but two short of the buffer when its
// text and NUL reach 32767.
TEST_F(Profile, SectionReadsBackWithinTheBuffer) {
    const std::pair<std::string, std::size_t> rows[] = {{"", 0},
                                                        {"DataFormat=1\0Notes=\0"s, 20},
                                                        {"k=" + std::string(32763, 'x') + '\0', 32766},
                                                        {"k=" + std::string(32764, 'x') + '\0', 32765},
                                                        {"k=" + std::string(39997, 'x') + '\0', 32765}};
    for (const auto& [text, returned] : rows) {
        ASSERT_TRUE(lib_ProfileWriteSection("Long", text, file));
        EXPECT_EQ(lib_ProfileGetSection("long", file), text.substr(0, returned)) << returned;
        EXPECT_EQ(lib_ApiResult, static_cast<std::int32_t>(returned));
    }
    EXPECT_EQ(lib_ProfileGetSection("Missing", dir.file("none.ini")), "");
}

// Every line arrives: one that starts with a NUL, and all of a section
// longer than the read buffer. A delete where there is no file makes none.
TEST_F(Profile, RenameMovesEveryLine) {
    const std::string lines = "DataFormat=1\r\n\0nul=1\r\n1=a\r\nlong="s + std::string(40000, 'x') + "\r\n";
    WriteBytes(file, "[A]\r\nz=1\r\n[Old]\r\n" + lines + "[C]\r\nk=v\r\n");
    EXPECT_FALSE(lib_ProfileRenameSection("old", "New", file));
    EXPECT_EQ(ReadBytes(file), "[A]\r\nz=1\r\n[C]\r\nk=v\r\n[New]\r\n" + lines);
    lib_ProfileDeleteSection("C", dir.file("none.ini"));
    EXPECT_EQ(Listing(dir.path()), std::set<std::string>{"data.ini"});
}

TEST_F(Profile, BlankFileMeansTheSystemProfileNeverAnEmptyName) {
    TempDir work;
    const ScopedEnv env("XDG_CONFIG_HOME", (dir.path() / "cfg").c_str());
    const ScopedCurrentDir cwd(work.path());
    const fs::path expected = dir.path() / "cfg" / "Ostrivane" / "profile.ini";
    EXPECT_TRUE(lib_ProfileWriteString("S", "k", "v", ""));
    EXPECT_TRUE(lib_ProfileWriteSection("T", "a=1\0"s, "  "));
    EXPECT_EQ(lib_ProfileGetString("s", "K", "", ""), "v");
    lib_ProfileDeleteSection("S", "");
    EXPECT_EQ(ReadBytes(expected), "[T]\r\na=1\r\n");
    EXPECT_TRUE(Listing(work.path()).empty());
    const ScopedEnv unset("XDG_CONFIG_HOME", nullptr);
    const ScopedEnv home("HOME", work.path().c_str());
    EXPECT_EQ(SystemProfilePath(), work.path() / ".config" / "Ostrivane" / "profile.ini");
}

// Each write routine fails whole and tells why; the next success clears it.
TEST_F(Profile, FailedWriteLeavesTheOldFileByteForByteAndTellsWhy) {
    const std::string original = "[Defaults]\nDefaults=0,0,-2,-2,255,1,100,0,\n[Bench]\nNotes=keep\n";
    WriteBytes(file, original);
    std::vector<std::string> reasons;  // a braced list runs left to right
    if (const FileSizeLimit full; true)
        reasons = {std::to_string(lib_ProfileWriteSection("Bench", "Notes=big", file)), lib_ProfileLastWriteError(),
                   std::to_string(lib_ProfileWriteString("Bench", "Notes", "big", file)), lib_ProfileLastWriteError(),
                   (lib_ProfileRenameSection("Bench", "B", file), lib_ProfileLastWriteError()),
                   (lib_ProfileDeleteSection("Bench", file), lib_ProfileLastWriteError())};
    const std::string tooLarge = std::strerror(EFBIG);
    EXPECT_EQ(reasons, (std::vector<std::string>{"0", tooLarge, "0", tooLarge, tooLarge, tooLarge}));
    EXPECT_EQ(ReadBytes(file), original);
    EXPECT_EQ(Listing(dir.path()), std::set<std::string>{"data.ini"});
    lib_ProfileDeleteSection("bench", file);
    EXPECT_EQ(lib_ProfileLastWriteError() + ReadBytes(file), "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\n");
}

// A power loss leaves the old file or the whole new one: the new file is
// synced before it takes the old one's name, the directory after.
TEST_F(Profile, WriteSyncsTheFileBeforeItsRenameAndTheDirectoryAfter) {
    const fs::perms perms = fs::perms::owner_read | fs::perms::group_read;  // no umask makes it
    WriteBytes(file, "[S]\r\n");
    fs::permissions(file, perms);  // the new file takes the old one's
    std::vector<std::string> paths;
    synced = &paths;
    const bool written = lib_ProfileWriteString("S", "k", "v", file);
    synced = nullptr;
    ASSERT_TRUE(written && paths.size() == 2u) << paths.size();
    EXPECT_TRUE(fs::path(paths[0]).filename().string().starts_with(".data.ini." + std::to_string(getpid()) + "."))
        << paths[0];
    EXPECT_EQ(paths[1], fs::canonical(dir.path()));
    EXPECT_EQ(fs::status(file).permissions(), perms);
}

// Only temporary files of this file's writes go, and only when their writer
// is gone or they are older than a minute.
TEST_F(Profile, StaleTemporaryFilesOfKilledWritesAreRemoved) {
    const std::string self = std::to_string(getpid()), gone = "999999999";
    const std::tuple<std::string, bool, bool> rows[] = {  // name, older than a minute, removed
        {".data.ini." + self + ".1.tmp", false, false}, {".data.ini." + self + ".2.tmp", true, true},
        {".data.ini." + gone + ".3.tmp", false, true},  {".data.ini.4.tmp", true, true},
        {".data.ini.5.tmp", false, false},              {".other.ini." + gone + ".6.tmp", true, false},
        {"data.ini." + gone + ".7.tmp", true, false},   {".data.ini.x.8.tmp", true, false},
        {".data.ini." + gone + ".99999", true, false}};
    for (const auto& [name, old, removed] : rows) {
        WriteBytes(dir.path() / name, "x");
        if (old) fs::last_write_time(dir.path() / name, fs::file_time_type::clock::now() - std::chrono::minutes(2));
    }
    EXPECT_EQ(RemoveStaleTemporaryFiles(file), 3);
    for (const auto& [name, old, removed] : rows) EXPECT_NE(fs::exists(dir.path() / name), removed) << name;
}

}  // namespace
}  // namespace ostrivane
