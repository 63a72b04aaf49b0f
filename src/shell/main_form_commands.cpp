// The command channel: whatever lands in the hidden box txtChangeModeHid is
// an instruction, from this copy's own command line or forwarded by a second
// start. Its change handler is the whole command language.
#include <iterator>
#include <string>

#include "dialogs/about_form.hpp"
#include "dialogs/message_box.hpp"
#include "editor/main_form.hpp"
#include "lib/path_basics.hpp"
#include "lib/text.hpp"
#include "lib/window_helpers.hpp"
#include "shell/deployment.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

std::string HelpText() {
    const std::string lines[] = {
        "Commandline:   " + ExecutableBaseName() + ".exe  [options]",
        "",
        "\"group name\" - load and show the named group.",
        "/show - show the currently selected group.",
        "/stop - stop showing the currently selected group.",
        "/quit - unload the program.",
        "",
        "Note: if the program is already running, running again with a commandline will send these instructions "
        "to the running program.",
    };
    std::string text = lines[0];
    for (std::size_t i = 1; i < std::size(lines); ++i) text += "\r\n" + lines[i];
    return text;
}

}  // namespace

void MainForm::WireCommandEvents() {
    txtChangeModeHid.Change.Connect([this] { txtChangeModeHid_Change(); });
    mnuHelpHelp.Click.Connect([this] { mnuHelpHelp_Click(); });
    mnuHelpAbout.Click.Connect([this] { mnuHelpAbout_Click(); });
}

void MainForm::txtChangeModeHid_Change() {
    // The sender has trimmed and lower-cased the text; the keywords are exact.
    const std::string text = txtChangeModeHid.Text();
    if (text == "/quit") {
        cmdExit.PerformClick();
        return;
    }
    if (text == "/show") {
        if (!Showing) cmdShow.PerformClick();
        return;
    }
    if (text == "/stop") {
        if (Showing) cmdShow.PerformClick();
        return;
    }

    // Anything else is one group name, bare or in quotes, blanks and all.
    const std::string name = Trim(lib_StripQuotes(Trim(text)));
    // Selecting the item loads the group through the list's Click.
    if (!lib_SelectFindInList(lstGroups, name, false)) {
        lib_ShowInfo(desktop_, "Group \"" + text + "\" requested on commandline was not found", 0);
        return;
    }
    if (!Showing) cmdShow.PerformClick();
}

void MainForm::mnuHelpHelp_Click() { dialogs_.MsgBox(HelpText(), vbOKOnly, kAppTitle); }

void MainForm::mnuHelpAbout_Click() {
    lib_ShowAbout(desktop_, this, ExecutableBaseName(), VersionText(), "Tarnwick", HomePage(), SupportEmail(), "",
                  Icon);
}

}  // namespace ostrivane
