#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "lib/profile.hpp"
#include "support/scoped_env.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string ReadBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

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

TEST_F(Profile, KeyReadIsCutTo254AndAbsentKeysGiveTheDefault) {
    ASSERT_TRUE(lib_ProfileWriteString("Defaults", "Long", std::string(300, 'v'), file));
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Long", "", file), std::string(254, 'v'));
    EXPECT_EQ(lib_ApiResult, 254);
    EXPECT_EQ(lib_ProfileGetString("NoSection", "Long", "1", file), "1");
    EXPECT_EQ(lib_ApiResult, 1);
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Long", "dflt", dir.file("none.ini")), "dflt");
    EXPECT_EQ(lib_ProfileGetString("Defaults", "Absent", std::string(300, 'd'), file).size(), 254u);
    EXPECT_EQ(Listing(dir.path()), std::set<std::string>{"data.ini"});
}

TEST_F(Profile, FileOfAnotherEditorIsReadWithoutCase) {
    WriteBytes(file, "; kept\n\n   [Defaults]\n\tDataFormat = 1\n\n[Bench]\r1=400,300,\r\nno equals\nNotes=a\xff" "b");
    EXPECT_EQ(lib_ProfileGetString("DEFAULTS", "dataformat", "0", file), "1");
    EXPECT_EQ(lib_ProfileGetString("bench", "NOTES", "", file), "a\xff" "b");
    EXPECT_EQ(lib_ProfileGetSection("Bench", file), "1=400,300,\0no equals\0Notes=a\xff" "b\0"s);
    // Every byte but the line ends and blanks comes back, character 255 included.
    std::string all;
    for (int c = 1; c <= 255; ++c)
        if (std::string_view(" \t\v\f\r\n").find(static_cast<char>(c)) == std::string_view::npos) all += char(c);
    ASSERT_TRUE(lib_ProfileWriteString("Bench", "Notes", all, file));
    EXPECT_EQ(lib_ProfileGetString("Bench", "Notes", "", file), all);
}

TEST_F(Profile, SectionWriteReplacesInPlaceOrAppendsAndEmptyReadsEmpty) {
    WriteBytes(file, "[Defaults]\r\nDefaults=1\r\n[Bench]\r\n1=1,2,\r\n2=3,4,\r\n[Last]\r\nx=y\r\n");
    ASSERT_TRUE(lib_ProfileWriteSection("bench", "DataFormat=1\0Notes=\0\0"s, file));
    ASSERT_TRUE(lib_ProfileWriteSection("Empty", "", file));
    EXPECT_EQ(ReadBytes(file), "[Defaults]\r\nDefaults=1\r\n[Bench]\r\nDataFormat=1\r\nNotes=\r\n[Last]\r\nx=y\r\n"
                               "[Empty]\r\n");
    EXPECT_EQ(lib_ProfileGetSection("BENCH", file), "DataFormat=1\0Notes=\0"s);
    EXPECT_EQ(lib_ApiResult, 20);
    EXPECT_EQ(lib_ProfileGetSection("Empty", file), "");
    EXPECT_EQ(lib_ApiResult, 0);
    EXPECT_EQ(lib_ProfileGetSection("Missing", dir.file("none.ini")), "");
}

TEST_F(Profile, LongSectionComesBackTwoShortOfTheBuffer) {
    // One entry "k=..." and its NUL: text lengths around the 32767 buffer.
    const std::pair<std::size_t, std::size_t> rows[] = {{32766, 32766}, {32767, 32765}, {40000, 32765}};
    for (const auto& [length, returned] : rows) {
        const std::string text = "k=" + std::string(length - 3, 'x') + '\0';
        ASSERT_TRUE(lib_ProfileWriteSection("Long", text, file));
        EXPECT_EQ(lib_ProfileGetSection("Long", file), text.substr(0, returned)) << length;
        EXPECT_EQ(lib_ApiResult, static_cast<std::int32_t>(returned));
    }
}

TEST_F(Profile, RenameKeepsTheKeysInOrderAndDeleteRemoves) {
    WriteBytes(file, "[A]\r\nz=1\r\n[Old]\r\nDataFormat=1\r\n2=b\r\n1=a\r\n[C]\r\nk=v\r\n");
    EXPECT_FALSE(lib_ProfileRenameSection("old", "New", file));
    EXPECT_EQ(ReadBytes(file), "[A]\r\nz=1\r\n[C]\r\nk=v\r\n[New]\r\nDataFormat=1\r\n2=b\r\n1=a\r\n");
    // Write under the new name finds the section itself; the delete then takes it.
    EXPECT_FALSE(lib_ProfileRenameSection("New", "NEW", file));
    EXPECT_EQ(ReadBytes(file), "[A]\r\nz=1\r\n[C]\r\nk=v\r\n");
    lib_ProfileDeleteSection("a", file);
    EXPECT_EQ(ReadBytes(file), "[C]\r\nk=v\r\n");
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

// A file-size limit makes the write itself fail, whoever runs the test.
TEST_F(Profile, FailedWriteLeavesTheOldFileByteForByte) {
    const std::string original = "[Defaults]\nDefaults=0,0,-2,-2,255,1,100,0,\n[Bench]\nNotes=keep\n";
    WriteBytes(file, original);
    const std::string big(20000, 'n');
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit limit = old;
    limit.rlim_cur = 4096;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool section = lib_ProfileWriteSection("Bench", "Notes=" + big, file);
    const bool key = lib_ProfileWriteString("Bench", "Notes", big, file);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(section || key);
    EXPECT_EQ(ReadBytes(file), original);
    EXPECT_EQ(Listing(dir.path()), std::set<std::string>{"data.ini"});
}

}  // namespace
}  // namespace ostrivane
