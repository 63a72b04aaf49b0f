// "Check for updates" of the Help menu. The server's host is the build's,
// unless the per-user store names another (UpdateHost in Settings, not blank).
#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "net/update_check.hpp"
#include "platform/setting_store.hpp"
#include "shell/deployment.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {
constexpr std::int32_t kObjectNotSet = 91;
}  // namespace

void MainForm::WireUpdateCheckEvents() {
    mnuHelpCheckOnlineForUpdates.Click.Connect([this] { mnuHelpCheckOnlineForUpdates_Click(); });
}

void MainForm::mnuHelpCheckOnlineForUpdates_Click() {
    if (internet == nullptr) Raise(kObjectNotSet);
    std::string host = settings ? settings->GetSetting(kAppTitle, "Settings", "UpdateHost", "") : "";
    if (host.empty()) host = UpdateHost();
    lib_CheckOnlineForUpdates(*internet, desktop_, dialogs_, kAppTitle, VersionText(), true, host, false);
}

}  // namespace ostrivane
