// So far only the directory and the setting: a blank field takes the
// default directory, a missing one is created when the user agrees, and the
// setting follows the field. What becomes of the data files at the old and
// the new place (move, questions, clean-up of the old directory) is still to
// come here; until then the new directory gets a fresh data file from
// InitDataFile unless one is there already.
#include "dialogs/data_dir_move.hpp"

#include "dialogs/options_form.hpp"
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/path_basics.hpp"
#include "platform/setting_store.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

bool MoveDataDirectory(OptionsForm& options, MainForm& frm, SettingStore& settings) {
    if (options.txtDataDir.Text().empty()) options.txtDataDir.SetText(DefaultDataDir());
    const std::string dir = options.txtDataDir.Text();
    if (!lib_DirExists(dir)) {
        if (frm.dialogs().MsgBox("Dir not found. Do you want to create it?", vbYesNo | vbQuestion, kAppTitle) == vbNo)
            return false;
        // A directory that cannot be made has been told; OK goes on regardless.
        SkipOnFailure([&] { lib_MakePath(dir); });
    }
    settings.SaveSetting(kAppTitle, "Settings", "DataDir", dir);
    return true;
}

}  // namespace ostrivane
