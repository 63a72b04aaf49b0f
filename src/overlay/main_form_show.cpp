// Go: the one switch between stopped (the markers are data) and showing (the
// markers are on the screen, every edit shows at once, the mouse is watched).
#include "editor/main_form.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"

namespace ostrivane {

namespace {

constexpr char kShowCaption[] = "&Show";
constexpr char kStopCaption[] = "&Stop";
constexpr char kNoMarkersMessage[] = "Select a group or add a marker";
constexpr int kUnloadFromFrame = 0;

// A switch of the Defaults section, read when it is needed: on when it is 1.
bool DefaultsSwitch(const MainForm& frm, const char* key) {
    return TextToInt16(lib_ProfileGetString(kDefaultsSection, key, "0", frm.DataFile)) == 1;
}

}  // namespace

void MainForm::WireShowEvents() {
    cmdShow.Click.Connect([this] { Go(); });
    mnuShow.Click.Connect([this] { cmdShow.PerformClick(); });
    mnuPopupShow.Click.Connect([this] { cmdShow.PerformClick(); });
}

void MainForm::Go() {
    if (!Showing) {
        UpdateMarkerTable();  // edits in the fields reach the table first
        Showing = true;
        cmdShow.SetCaption(kStopCaption);
        mnuPopupShow.SetCaption(kStopCaption);
        FlashPhase = false;
        ShowAllMarkers();
        timFlashSelected.SetTimerEnabled(chkFlashSelected.Value() == kCheckChecked);
        if (lstMarkers.ListCount() == 0) {
            // Still showing: a marker added now comes up at once. The form
            // comes forward so that the message is seen.
            lblMsg.SetCaption(kNoMarkersMessage);
            mnuPopupRestore.PerformClick();
        } else if (DefaultsSwitch(*this, "HideOnGo")) {
            bool cancel = false;  // the close box's road: minimised and hidden
            Form_QueryUnload(cancel, kUnloadFromFrame);
        }
        MouseMode = 0;
        HookMouse();
    } else {
        UnhookMouse();
        Showing = false;
        FlashPhase = false;
        timFlashSelected.SetTimerEnabled(false);
        timAddMarker.SetTimerEnabled(false);
        timAddMarkerComplete.SetTimerEnabled(false);
        DestroyAllMarkerWindows();  // the placement cross too
        cmdShow.SetCaption(kShowCaption);
        mnuPopupShow.SetCaption(kShowCaption);
        lblMsg.SetCaption("");
        if (DefaultsSwitch(*this, "RestoreOnStop")) mnuPopupRestore.PerformClick();
    }
}

}  // namespace ostrivane
