// Start-up and shutdown: the single-instance guard, the order in which the
// program comes up and goes down, the settings of the main form, and the
// stay-on-top switch.
#include <string>

#include "editor/main_form.hpp"
#include "lib/errors.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "lib/text.hpp"
#include "platform/setting_store.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr std::int32_t kObjectNotSet = 91;
constexpr int kStartLeftTwips = 1000;
constexpr int kStartTopTwips = 1000;
// The unload modes of the form: the user's close box, and the program's own.
constexpr int kUnloadFromFrame = 0;
constexpr int kUnloadFromCode = 1;

std::string DefaultsKey(const MainForm& frm, const char* key, const char* defaultValue) {
    return lib_ProfileGetString(kDefaultsSection, key, defaultValue, frm.DataFile);
}

// The program's own unload: the form may still refuse in QueryUnload.
void UnloadForm(MainForm& frm) {
    bool cancel = false;
    frm.Form_QueryUnload(cancel, kUnloadFromCode);
    if (!cancel) frm.Form_Unload();
}

}  // namespace

std::string InstanceName() { return std::string("i") + kAppTitle + "i"; }

void MainForm::WireStartupEvents() {
    cmdExit.Click.Connect([this] { cmdExit_Click(); });
    mnuExit.Click.Connect([this] { cmdExit.PerformClick(); });
    mnuPopupExit.Click.Connect([this] { cmdExit.PerformClick(); });
    mnuStayOnTop.Click.Connect([this] { ToggleStayOnTop(true); });
}

bool MainForm::Form_Load(const std::string& commandLine) {
    // Lower case from here on: a group name too, and what a second copy forwards.
    const std::string CommandText = LCase(Trim(commandLine));

    InstanceGuard.owned = desktop_.AcquireInstance(InstanceName());
    if (InstanceGuard.InstExists()) {
        if (!CommandText.empty())
            desktop_.ForwardCommand(InstanceName(), CommandText);
        else
            dialogs_.MsgBox("Sorry, another copy of this app is already running", vbInformation, kAppTitle);
        return false;
    }
    if (CommandText == "/quit") return false;  // before any setting is read

    // The trailing blank is part of what a second copy looks for.
    SetCaption(std::string(kAppTitle) + " ");
    ReadScreenMetrics();
    txtVmax.SetText(DecimalText(screen.ScreenHeight));
    txtHmax.SetText(DecimalText(screen.ScreenWidth));
    LoadSettings();

    SetVisible(true);
    Left = kStartLeftTwips;
    Top = kStartTopTwips;
    FormChanged.Raise(*this);

    CreateTrayIcon();
    HookKeyboard();
    // The program's own command line takes the road of a forwarded one.
    if (!CommandText.empty()) txtChangeModeHid.SetText(CommandText);
    return true;
}

void MainForm::ReadScreenMetrics() {
    screen.ScreenHeight = CheckedInt16(desktop_.GetSystemMetrics(SM_CYVIRTUALSCREEN));
    screen.ScreenWidth = CheckedInt16(desktop_.GetSystemMetrics(SM_CXVIRTUALSCREEN));
    screen.ScreenLeft = CheckedInt16(desktop_.GetSystemMetrics(SM_XVIRTUALSCREEN));
    screen.ScreenTop = CheckedInt16(desktop_.GetSystemMetrics(SM_YVIRTUALSCREEN));
}

void MainForm::LoadSettings() {
    if (settings == nullptr) Raise(kObjectNotSet);
    DataFile = InitDataFile(*settings);
    LoadGlobalDefaults(store.GlobalDefaults, DataFile, screen, !txtHmax.Text().empty());

    AddMarkerThickness = TextToInt16(DefaultsKey(*this, "AddMarkerThickness", "1"));
    // Not under Loading: each box's Click runs as for the user's click.
    chkCopyCurrOnAdd.SetValue(TextToInt16(DefaultsKey(*this, "CopyCurrOnAdd", "0")));
    chkFlashSelected.SetValue(TextToInt16(DefaultsKey(*this, "FlashSelected", "0")));
    chkAllowGrabMarkers.SetValue(TextToInt16(DefaultsKey(*this, "AllowGrabMarkers", "1")));
    mnuFlashSelected.SetChecked(chkFlashSelected.Value() != kCheckUnchecked);
    if (TextToInt16(DefaultsKey(*this, "StayOnTop", "0")) == 1) mnuStayOnTop.SetChecked(true);
    GrabProximity = TextToInt16(DefaultsKey(*this, "GrabProximity", "10"));
    desktop_.SetTopmost(*this, mnuStayOnTop.Checked());

    LoadGroupList();
    lstGroups.SetListIndex(-1);
    CurrentGroup = -1;
    SetNudgeRanges();
}

void MainForm::Form_QueryUnload(bool& cancel, int unloadMode) {
    // The close box sends the program to the tray; it never ends it.
    if (unloadMode != kUnloadFromFrame) return;
    SetWindowState(form::WindowState::Minimized);
    SetVisible(false);
    cancel = true;
}

void MainForm::cmdExit_Click() {
    UpdateMarkerTable();
    UnloadForm(*this);
}

void MainForm::Form_Unload() {
    UnhookKeyboard();
    UnhookMouse();
    Unloading = true;
    Showing = false;
    // The lines go before the question, so the user answers with them gone.
    DestroyAllMarkerWindows();
    UpdateMarkerTable();
    PromptToSave(false);
    overlay_.UnregisterMarkerClasses();

    SkipOnFailure([&] {
        if (TrayIconCreated) desktop_.RemoveTrayIcon();
    });
    SkipOnFailure([&] {
        if (InstanceGuard.owned) desktop_.ReleaseInstance();
        InstanceGuard.owned = false;
    });
    SkipOnFailure([&] { desktop_.EndProgram(); });
}

void MainForm::ToggleStayOnTop(bool /*flag: has no effect*/) {
    if (Loading) return;
    Loading = true;
    mnuStayOnTop.SetChecked(!mnuStayOnTop.Checked());
    lib_ProfileWriteString(kDefaultsSection, "StayOnTop", mnuStayOnTop.Checked() ? "1" : "0", DataFile);
    desktop_.SetTopmost(*this, mnuStayOnTop.Checked());
    Loading = false;
}

}  // namespace ostrivane
