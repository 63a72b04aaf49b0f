// The move of the data directory: every question, its order and each answer,
// on real directories.
#include "dialogs/data_dir_move.hpp"

#include <filesystem>
#include <map>
#include <utility>

#include "dialogs/options_form.hpp"
#include "editor/main_form_fixture.hpp"
#include "support/scoped_env.hpp"

namespace ostrivane::testing {
namespace {

namespace fs = std::filesystem;

using Asked = std::vector<std::pair<std::string, int>>;

// C create, U use the new file, D delete the old file, M moved, E delete the emptied old directory.
Asked Questions(const std::string& keys, const std::string& oldDir) {
    const std::map<char, std::pair<std::string, int>> texts = {
        {'C', {"Dir not found. Do you want to create it?", 36}},
        {'U', {"There is already a data file in the new data dir you have selected. Do you wish to use that one?", 292}},
        {'D', {"Do you wish to delete the data file in the original data dir?", 292}},
        {'M', {"The data file from moved from the original data dir to the new one", 64}},
        {'E', {"There appears to be no files left in the original data dir '" + oldDir + "'. Delete it?", 292}},
    };
    Asked asked;
    for (const char key : keys) asked.push_back(texts.at(key));
    return asked;
}

class DataDirMoveTest : public MainFormTest {};

TEST_F(DataDirMoveTest, EveryQuestionWithEachAnswer) {
    const ScopedEnv dataHome("XDG_DATA_HOME", dir.file("xdg").c_str());
    enum Extra { Nothing, FileBelow, EmptyBelow };
    const struct {
        const char* name;
        std::string field;  // "new", "missing", "old" or blank, under the row's directory
        bool newDirThere, fileAtNew, fileAtOld;
        Extra oldHolds;
        std::vector<int> answers;
        bool result;
        std::string asked, newFile;  // newFile: content at the new place afterwards, "" for none
        bool oldFileStays, oldDirStays;
    } rows[] = {
        {"no to create", "missing", false, false, true, Nothing, {vbNo}, false, "C", "", true, true},
        {"created, moved, old dir deleted", "missing", false, false, true, Nothing, {vbYes, vbOK, vbYes}, true, "CME", "old", false, false},
        {"moved, old dir holds a file below", "new", true, false, true, FileBelow, {vbOK}, true, "M", "old", false, true},
        {"moved, old dir kept on No", "new", true, false, true, EmptyBelow, {vbOK, vbNo}, true, "ME", "old", false, true},
        {"no file anywhere", "new", true, false, false, Nothing, {}, true, "", "", false, true},
        {"no to use", "new", true, true, true, Nothing, {vbNo}, true, "U", "new", true, true},
        {"use, delete old", "new", true, true, true, Nothing, {vbYes, vbYes}, true, "UD", "new", false, true},
        {"use, keep old", "new", true, true, true, Nothing, {vbYes, vbNo}, true, "UD", "new", true, true},
        {"use, no old file", "new", true, true, false, Nothing, {vbYes}, true, "U", "new", false, true},
        {"path unchanged", "old", true, false, true, Nothing, {}, true, "", "old", true, true},
        {"blank: the default dir", "", false, false, true, Nothing, {vbYes, vbOK, vbNo}, true, "CME", "old", false, true},
    };
    int n = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const fs::path root = dir.path() / ("row" + std::to_string(++n));
        const std::string oldDir = (root / "old").string();
        const std::string newDir = row.field.empty() ? DefaultDataDir() : (root / row.field).string();
        fs::create_directories(oldDir);
        if (row.newDirThere) fs::create_directories(newDir);
        if (row.oldHolds != Nothing) fs::create_directories(root / "old/below/deeper");
        if (row.oldHolds == FileBelow) WriteBytes(root / "old/below/deeper/notes.txt", "");
        frm.DataFile = oldDir + "/ostrivane.ini";
        if (row.fileAtOld) WriteBytes(frm.DataFile, "old");
        if (row.fileAtNew) WriteBytes(newDir + "/ostrivane.ini", "new");
        settings.SaveSetting(kAppTitle, "Settings", "DataDir", oldDir);
        dialogs.asked.clear();
        dialogs.msgBoxAnswers.assign(row.answers.begin(), row.answers.end());
        OptionsForm options(frm, settings);
        options.txtDataDir.SetText(row.field.empty() ? "" : newDir);

        EXPECT_EQ(MoveDataDirectory(options, frm, settings), row.result);
        Asked asked;
        for (const auto& q : dialogs.asked) asked.emplace_back(q.title == kAppTitle ? q.prompt : q.title, q.flags);
        EXPECT_EQ(asked, Questions(row.asked, oldDir));
        EXPECT_EQ(options.txtDataDir.Text(), newDir);
        EXPECT_EQ(settings.GetSetting(kAppTitle, "Settings", "DataDir", ""), row.result ? newDir : oldDir);
        EXPECT_EQ(fs::exists(newDir), row.result);
        EXPECT_EQ(ReadBytes(newDir + "/ostrivane.ini"), row.newFile);
        EXPECT_EQ(fs::exists(frm.DataFile), row.oldFileStays);
        EXPECT_EQ(fs::exists(oldDir), row.oldDirStays);
        EXPECT_TRUE(dialogs.msgBoxAnswers.empty()) << "every scripted answer was asked for";
        if (row.field.empty()) fs::remove_all(newDir);
    }
}

}  // namespace
}  // namespace ostrivane::testing
