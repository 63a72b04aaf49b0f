// Flash selected: the selected markers blink by the alpha of their line
// windows, one tick invisible, the next shown as they are.
#include "editor/main_form.hpp"
#include "lib/numbers.hpp"
#include "lib/profile.hpp"
#include "store/data_file.hpp"
#include "store/markers.hpp"

namespace ostrivane {

void MainForm::WireFlashEvents() {
    chkFlashSelected.Click.Connect([this] { ToggleFlashSelected(true); });
    mnuFlashSelected.Click.Connect([this] { ToggleFlashSelected(false); });
    timFlashSelected.Tick.Connect([this] { timFlashSelected_Tick(); });
}

void MainForm::ToggleFlashSelected(bool fromCheckBox) {
    // The check box's own click, raised by step 3, ends here.
    if (Loading) return;
    Loading = true;
    mnuFlashSelected.SetChecked(!mnuFlashSelected.Checked());
    if (!fromCheckBox) chkFlashSelected.SetValue(mnuFlashSelected.Checked() ? kCheckChecked : kCheckUnchecked);
    lib_ProfileWriteString(kDefaultsSection, "FlashSelected", DecimalText(chkFlashSelected.Value()), DataFile);
    FlashPhase = false;
    timFlashSelected.SetTimerEnabled(mnuFlashSelected.Checked());
    if (!mnuFlashSelected.Checked()) ShowAllMarkers();  // brings back what a tick hid
    Loading = false;
}

void MainForm::timFlashSelected_Tick() {
    if (lstMarkers.SelCount() < 1) return;
    for (int i = 0; i < lstMarkers.ListCount(); ++i) {
        if (!lstMarkers.Selected(i)) continue;
        if (!FlashPhase)
            ShowMarker(i + 1);
        else
            overlay_.MakeMarkerInvisible(i + 1);
    }
    FlashPhase = !FlashPhase;
}

}  // namespace ostrivane
