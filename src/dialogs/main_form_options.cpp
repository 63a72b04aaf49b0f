// The options dialog from the main form: what stops it opening, and what a
// running display takes over once it has closed, by OK or by Cancel alike.
#include "dialogs/options_form.hpp"
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "lib/window_helpers.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {
constexpr std::int32_t kObjectNotSet = 91;
}  // namespace

void MainForm::WireOptionsEvents() {
    mnuOptions.Click.Connect([this] { mnuOptions_Click(); });
}

void MainForm::mnuOptions_Click() {
    if (settings == nullptr) Raise(kObjectNotSet);
    PromptToSave(true);
    if (Dirty) return;  // the user cancelled
    timFlashSelected.SetTimerEnabled(false);
    // The dialog is not to stand behind the main form.
    lib_SetTopmost(desktop_, *this, false);
    {
        OptionsForm options(*this, *settings);
        options.Form_Load();
        desktop_.ShowModal(options);
        options.Unload();
    }

    lib_SetTopmost(desktop_, *this, Val(lib_ProfileGetString(kDefaultsSection, "StayOnTop", "0", DataFile)) == 1);
    // The main form's box, which LoadSettings below has not refreshed yet.
    timFlashSelected.SetTimerEnabled(chkFlashSelected.Value() == kCheckChecked);
    // The group in use comes back after the reload, so that a display running
    // with it goes on and repaints with the new defaults. Nothing unsaved is
    // left by now: the question before the dialog saw to that.
    const std::string inUse = CurrentGroup >= 0 ? lstGroups.List(CurrentGroup) : std::string();
    ClearGroupSelection();
    LoadSettings();
    if (!inUse.empty()) {
        const std::int16_t again = FindInList(lstGroups, inUse);
        if (again >= 0) lstGroups.SetListIndex(again);
    }
    ShowAllMarkers();
}

}  // namespace ostrivane
