// Copy, move and tree deletion on real directories, with the trash a fake.
#include "lib/file_ops.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "dialogs/message_box.hpp"
#include "fakes/fake_platform.hpp"
#include "fakes/fake_trash.hpp"
#include "lib/file_test.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane::testing {
namespace {

namespace fs = std::filesystem;

const std::string kName = "caf\xe9 data.ini";
constexpr std::int32_t kFileOpError = kObjectErrorBase + 1000;

// Names a copy or a move left behind under their temporary form.
std::vector<std::string> TempLeftovers(const fs::path& dir) {
    std::vector<std::string> left;
    for (const auto& e : fs::recursive_directory_iterator(dir)) if (e.path().string().find('~') != std::string::npos) left.push_back(e.path());
    return left;
}

class FileOpsTest : public ::testing::Test {
protected:
    FileOpsTest() {
        lib_AttachTrash(&trash);
        fs::create_directory(dir.path() / "out");
        WriteBytes(source, "new");
        fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(50));
        fs::permissions(source, fs::perms::owner_read | fs::perms::group_read);
    }
    ~FileOpsTest() override { lib_AttachTrash(nullptr); }

    TempDir dir;
    fakes::FakeTrash trash;
    fakes::FakeDesktop desktop;
    const std::string source = dir.file(kName);
};

TEST_F(FileOpsTest, CopyLandsWholeOrNotAtAll) {
    const struct { std::string target, landsAt; bool exists, overwrite, result; std::string content; std::size_t trashed; } rows[] = {
        {kName, kName, true, true, false, "new", 0},  // onto itself
        {"out/t.ini", "out/t.ini", true, false, false, "old", 0},
        {"out/t.ini", "out/t.ini", true, true, true, "new", 1},
        {"out/", "out/" + kName, false, false, true, "new", 0},
        {"bare.ini", "bare.ini", false, false, true, "new", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.target);
        trash.taken.clear();
        const std::string landsAt = dir.file(row.landsAt);
        if (row.exists && landsAt != source) WriteBytes(landsAt, "old");
        const std::string target = row.target.find('/') == std::string::npos && row.target != kName ? row.target : dir.file(row.target);
        std::string error;
        EXPECT_EQ(lib_CopyFile(desktop, source, target, row.overwrite, false, nullptr, 0, error), row.result);
        EXPECT_EQ(ReadBytes(landsAt), row.content);
        EXPECT_EQ(trash.taken.size(), row.trashed);
        EXPECT_EQ(row.result && fs::last_write_time(landsAt) == fs::last_write_time(source) &&
                      fs::status(landsAt).permissions() == fs::status(source).permissions(), row.result) << "times and mode";
        if (row.result) fs::remove(landsAt);
        EXPECT_EQ(ReadBytes(source), "new");
        EXPECT_EQ(TempLeftovers(dir.path()), std::vector<std::string>{});
    }
}

TEST_F(FileOpsTest, FailedCopyRaisesAndLeavesTheTargetAsItWas) {
    const std::string target = dir.file("out/t.ini");
    WriteBytes(target, "old");
    const auto cancel = [](std::uint64_t, std::uint64_t) { return false; };
    const struct { std::string from; CopyProgress progress; std::string reason; } rows[] = {
        {dir.file("out"), nullptr, "Is a directory"},
        {"/dev/null", nullptr, "Invalid argument"},
        {source, +cancel, "Operation canceled"},
    };
    for (const auto& row : rows) {
        std::string error;
        const std::string failure = FailureOf([&] { lib_CopyFile(desktop, row.from, target, true, false, row.progress, 0, error); });
        const std::string prefix = std::to_string(kFileOpError) + " Vexil.lib_CopyFile: Failed to copy file\r\n" +
                                   row.reason + "\r\nSrc=" + row.from + "\r\nTgt=" + target + "~";
        EXPECT_EQ(failure.substr(0, prefix.size()), prefix);
        EXPECT_EQ(failure.size(), prefix.size() + 2) << "two digits of the temporary name";
        EXPECT_EQ(error, failure.substr(failure.find(": ") + 2));
        EXPECT_EQ(ReadBytes(target), "old");
        EXPECT_EQ(lib_CopyTempPath, "");
        EXPECT_EQ(TempLeftovers(dir.path()), std::vector<std::string>{});
    }
    // A folder in the target's place stays; the name not taken is an error.
    std::string error;
    EXPECT_EQ(FailureOf([&] { lib_CopyFile(desktop, source, dir.file("out"), false, false, nullptr, 0, error); }),
              "58 Vexil.lib_CopyFile: File already exists");
    EXPECT_EQ(error, "File already exists");
    EXPECT_TRUE(fs::is_directory(dir.file("out")) && ReadBytes(target) == "old");
    EXPECT_EQ(TempLeftovers(dir.path()), std::vector<std::string>{});
}

TEST_F(FileOpsTest, MoveOnOneVolumeAndAcross) {
    const std::string target = dir.file("out/t.ini");
    WriteBytes(target, "old");
    EXPECT_FALSE(lib_MoveFile(desktop, source, target, false, false, 0) || ReadBytes(target) != "old");
    EXPECT_TRUE(lib_MoveFile(desktop, source, target, true, false, 0) && ReadBytes(target) == "new");
    EXPECT_FALSE(fs::exists(source));
    ASSERT_EQ(trash.taken.size(), 1u) << "the replaced target goes to the trash";
    EXPECT_EQ(trash.taken[0].substr(0, target.size() + 1), target + "~");

    // A missing source: the old target is given back, the failure raised.
    const std::string failure = FailureOf([&] { lib_MoveFile(desktop, source, target, true, false, 0); });
    EXPECT_EQ(failure.substr(0, failure.size() - 2),
              std::to_string(kFileOpError) + " Vexil.lib_MoveFile: Failed to move file\r\nNo such file or directory\r\nSrc=" +
                  source + "\r\nTgt=" + target + "~");
    EXPECT_EQ(ReadBytes(target), "new");
    // An old target that cannot take its temporary name stays, and the move is refused.
    const std::string longName = dir.file("out/" + std::string(254, 'x'));
    WriteBytes(longName, "old");
    EXPECT_EQ(FailureOf([&] { lib_MoveFile(desktop, target, longName, true, false, 0); }),
              "75 Vexil.lib_MoveFile: Path/File access error");
    EXPECT_EQ(ReadBytes(longName) + ReadBytes(target), "oldnew");

    // Wildcards move each match into the target folder; none matched is a failure.
    for (const char* f : {"a.ini", "b.ini"}) WriteBytes(dir.file(f), f);
    EXPECT_TRUE(lib_MoveFile(desktop, dir.file("*.ini"), dir.file("out"), true, false, 0));
    EXPECT_EQ(ReadBytes(dir.file("out/a.ini")) + ReadBytes(dir.file("out/b.ini")), "a.inib.ini");
    EXPECT_FALSE(lib_MoveFile(desktop, dir.file("*.ini"), dir.file("out"), true, false, 0));

    TempDir other("/dev/shm");
    struct stat here {}, there {};
    ASSERT_EQ(::stat(dir.path().c_str(), &here) + ::stat(other.path().c_str(), &there), 0);
    if (here.st_dev == there.st_dev) GTEST_SKIP() << "no second file system";
    trash.taken.clear();
    EXPECT_TRUE(lib_MoveFile(desktop, target, other.file("moved.ini"), true, false, 0));
    EXPECT_EQ(ReadBytes(other.file("moved.ini")), "new");
    EXPECT_EQ(trash.taken, std::vector<std::string>{target}) << "across volumes the source goes to the trash";
}

TEST(TempFileName, NeverTheTargetNorAnythingThere) {
    TempDir dir;
    const std::string target = dir.file("data.ini~07");
    for (int i = 0; i < 99; ++i) WriteBytes(target + (i < 10 ? "~0" : "~") + std::to_string(i), "");
    EXPECT_EQ(lib_TempFileName(target), target + "~99");
    WriteBytes(target + "~99", "");
    EXPECT_EQ(ErrorOf([&] { lib_TempFileName(target); }), kFileAlreadyExists);
}

TEST_F(FileOpsTest, DeltreeRefusesRootsAndEmptiesOrRemovesATree) {
    const struct { std::string dir, message; } refused[] = {
        {"relative/dir", "Directory relative/dir invalid (either no drive,share or dir specified)"},
        {"/", "Directory / invalid (drive root not allowed)"},
        {"/proc/", "Directory /proc/ invalid (drive root not allowed)"},
    };
    for (const auto& row : refused) {
        EXPECT_FALSE(lib_Deltree(desktop, row.dir, false, 3, false));
        EXPECT_EQ(MessageText, "1   3" + row.message);
    }
    const struct { bool walk, noRecycle; std::size_t trashed; } rows[] = {{false, false, 1}, {false, true, 0}, {true, false, 3}, {true, true, 0}};
    const fs::path tree = dir.path() / "tree";
    for (const auto& row : rows) {
        trash.taken.clear();
        fs::create_directories(tree / "a b/c");
        for (const fs::path& f : {tree / ".hidden", tree / "a b/c/read-only"}) WriteBytes(f, "");
        WriteBytes(dir.path() / "out" / kName, "kept");
        fs::permissions(tree / "a b/c/read-only", fs::perms::owner_read);
        fs::create_symlink(dir.path() / "out", tree / "link");
        EXPECT_TRUE(lib_Deltree(desktop, tree.string() + "/", row.walk, 0, row.noRecycle));
        EXPECT_EQ(fs::exists(tree) && fs::is_empty(tree), row.walk) << "emptied, or gone";
        EXPECT_EQ(trash.taken.size(), row.trashed);
        EXPECT_EQ(ReadBytes(dir.path() / "out" / kName), "kept") << "a link is removed, not followed";
        fs::remove_all(tree);
    }
    EXPECT_FALSE(lib_Deltree(desktop, tree.string(), false, 0, false)) << "nothing there to delete";
}

}  // namespace
}  // namespace ostrivane::testing
