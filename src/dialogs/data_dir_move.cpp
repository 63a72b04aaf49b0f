#include "dialogs/data_dir_move.hpp"

#include "dialogs/options_form.hpp"
#include "editor/main_form.hpp"
#include "form/controls.hpp"
#include "lib/errors.hpp"
#include "lib/file_finder.hpp"
#include "lib/file_ops.hpp"
#include "lib/file_test.hpp"
#include "lib/path_basics.hpp"
#include "platform/setting_store.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr int kYesNoDefaultYes = vbYesNo | vbQuestion;
constexpr int kYesNoDefaultNo = vbYesNo | vbQuestion | vbDefaultButton2;

bool FileThere(const std::string& path) {
    std::string found;
    return lib_FileExists(path, found, true);
}

}  // namespace

bool MoveDataDirectory(OptionsForm& options, MainForm& frm, SettingStore& settings) {
    form::TextBox& txtDataDir = options.txtDataDir;
    const auto ask = [&](const std::string& prompt, int flags) { return frm.dialogs().MsgBox(prompt, flags, kAppTitle); };
    if (txtDataDir.Text().empty()) txtDataDir.SetText(DefaultDataDir());
    const std::string dir = txtDataDir.Text();
    const std::string newPath = lib_JoinPath(dir, ExecutableBaseName() + ".ini", true);
    // The library routines tell their own failures; the move goes on regardless.
    if (!lib_DirExists(dir)) {
        if (ask("Dir not found. Do you want to create it?", kYesNoDefaultYes) == vbNo) return false;
        SkipOnFailure([&] { lib_MakePath(dir); });
    }
    settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir);
    const std::string& oldPath = frm.DataFile;
    if (oldPath.empty() || oldPath == newPath) return true;

    if (FileThere(newPath)) {
        if (ask("There is already a data file in the new data dir you have selected. Do you wish to use that one?",
                kYesNoDefaultNo) != vbYes) {
            return true;
        }
        if (FileThere(oldPath) &&
            ask("Do you wish to delete the data file in the original data dir?", kYesNoDefaultNo) == vbYes) {
            SkipOnFailure([&] { lib_KillFile(oldPath, false); });
        }
        return true;
    }
    if (!FileThere(oldPath)) return true;
    SkipOnFailure([&] { lib_MoveFile(frm.desktop(), oldPath, newPath, true, false, 0); });
    ask("The data file from moved from the original data dir to the new one", vbInformation);
    const std::string oldDir = lib_GetFolder(oldPath, true, true);
    std::string found, relDir;
    bool entered = false;
    bool anyFile = false;
    SkipOnFailure([&] { anyFile = lib_GetNextFile(frm.desktop(), true, "*.*", oldDir, true, found, relDir, entered, "", false); });
    if (!anyFile && ask("There appears to be no files left in the original data dir '" + oldDir + "'. Delete it?",
                        kYesNoDefaultNo) == vbYes) {
        SkipOnFailure([&] { lib_Deltree(frm.desktop(), oldDir, false, 0, false); });
    }
    return true;
}

}  // namespace ostrivane
